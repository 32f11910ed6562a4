// A VISA library as the program binds it, over the virtual instruments of the test, that writes down every
// exchange with an instrument:
//   1 < text            a message to instrument 1 (in the order in which they are plugged in)
//   1 < (1234 bytes)    the data of a block whose header was the message before
//   1 > text            a reply
//   1 > (1234 bytes) file
//   1 poll 128          a status byte
//   1 clear             a device clear
// A failed exchange ends with " !timeout" or " !error". Beside the exchanges it notes what was searched for,
// and the connections: "1 open", "1 open !error", "1 close".
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "comm/io_libraries.h"
#include "standins/virtual_instrument/visa_face.h"
#include "support/fake_ports.h"

namespace corlune::testing {

class VisaRecorder {
 public:
  explicit VisaRecorder(VirtualBench& bench) : bench_(bench) { current_ = this; }
  ~VisaRecorder() { current_ = nullptr; }
  VisaRecorder(const VisaRecorder&) = delete;
  VisaRecorder& operator=(const VisaRecorder&) = delete;

  const VisaTable& Table() const {
    static const VisaTable table{&viOpenDefaultRM, &Find,         &viFindNext, &Open,
                                 &Close,           &SetAttribute, &Read,       &Write,
                                 &ReadToFile,      &ReadStatus,   &Clear,      &viGpibControlREN};
    return table;
  }

  EventList exchanges;
  EventList searches;
  EventList connections;
  // Called with the line of each exchange behind it; may call into the program.
  std::function<void(const std::string&)> onExchange;
  // Messages for which it returns true go nowhere, with success.
  std::function<bool(std::string_view)> swallow;

 private:
  struct Device {
    int number = 0;
    bool endOff = false;     // the next write is the header of a block
    bool blockOpen = false;  // the next write is its data
  };

  Device& At(ViSession session) { return devices_[session]; }
  static std::string Line(int device, const std::string& what, ViStatus status) {
    const char* suffix = status >= VI_SUCCESS ? "" : status == VI_ERROR_TMO ? " !timeout" : " !error";
    return std::to_string(device) + " " + what + suffix;
  }
  void Note(ViSession session, const std::string& what, ViStatus status) {
    const std::string line = Line(At(session).number, what, status);
    exchanges.push_back(line);
    if (const auto hook = onExchange) hook(line);
  }
  static std::string Line(const ViByte* bytes, ViUInt32 count) {
    std::string_view text(reinterpret_cast<const char*>(bytes), count);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
    return std::string(text);
  }

  static ViStatus CORLUNE_LIBRARY_CALL Find(ViSession manager, ViConstString expression, ViPFindList list,
                                            ViPUInt32 count, ViChar* first) {
    current_->searches.emplace_back(expression);
    return viFindRsrc(manager, expression, list, count, first);
  }
  static ViStatus CORLUNE_LIBRARY_CALL Open(ViSession manager, ViConstRsrc name, ViAccessMode mode,
                                            ViUInt32 timeOut, ViPSession session) {
    const ViStatus status = viOpen(manager, name, mode, timeOut, session);
    for (std::size_t i = 0; i < current_->bench_.Count(); ++i) {
      const std::string& serial = current_->bench_.At(i).Identity().serial;
      if (std::string_view(name).find(serial) == std::string_view::npos) continue;
      const int number = static_cast<int>(i) + 1;
      current_->connections.push_back(Line(number, "open", status));
      if (status >= VI_SUCCESS) current_->devices_[*session] = {number, false, false};
    }
    return status;
  }
  static ViStatus CORLUNE_LIBRARY_CALL Close(ViObject object) {
    if (const auto device = current_->devices_.find(object); device != current_->devices_.end()) {
      current_->connections.push_back(Line(device->second.number, "close", VI_SUCCESS));
      current_->devices_.erase(device);
    }
    return viClose(object);
  }
  static ViStatus CORLUNE_LIBRARY_CALL SetAttribute(ViObject object, ViAttr attribute, ViAttrState state) {
    if (attribute == VI_ATTR_SEND_END_EN) current_->At(object).endOff = state == VI_FALSE;
    return viSetAttribute(object, attribute, state);
  }
  static ViStatus CORLUNE_LIBRARY_CALL Write(ViSession session, ViConstBuf bytes, ViUInt32 size,
                                             ViPUInt32 count) {
    ViStatus status = VI_SUCCESS;
    if (current_->swallow && current_->swallow({reinterpret_cast<const char*>(bytes), size})) {
      *count = size;
    } else {
      status = viWrite(session, bytes, size, count);
    }
    Device& device = current_->At(session);
    const bool data = device.blockOpen;
    device.blockOpen = device.endOff && status >= VI_SUCCESS;
    current_->Note(session, "< " + (data ? "(" + std::to_string(size) + " bytes)" : Line(bytes, size)),
                   status);
    return status;
  }
  static ViStatus CORLUNE_LIBRARY_CALL Read(ViSession session, ViPBuf buffer, ViUInt32 size,
                                            ViPUInt32 count) {
    const ViStatus status = viRead(session, buffer, size, count);
    current_->Note(session, "> " + (status >= VI_SUCCESS ? Line(buffer, *count) : std::string()), status);
    return status;
  }
  static ViStatus CORLUNE_LIBRARY_CALL ReadToFile(ViSession session, ViConstString file, ViUInt32 size,
                                                  ViPUInt32 count) {
    const ViStatus status = viReadToFile(session, file, size, count);
    current_->Note(session, "> (" + std::to_string(*count) + " bytes) file", status);
    return status;
  }
  static ViStatus CORLUNE_LIBRARY_CALL ReadStatus(ViSession session, ViPUInt16 byte) {
    const ViStatus status = viReadSTB(session, byte);
    current_->Note(session, "poll" + (status >= VI_SUCCESS ? " " + std::to_string(*byte) : std::string()),
                   status);
    return status;
  }
  static ViStatus CORLUNE_LIBRARY_CALL Clear(ViSession session) {
    const ViStatus status = viClear(session);
    current_->Note(session, "clear", status);
    return status;
  }

  // C function pointers carry no object.
  static inline VisaRecorder* current_ = nullptr;
  VirtualBench& bench_;
  std::map<ViSession, Device> devices_;
};

}  // namespace corlune::testing
