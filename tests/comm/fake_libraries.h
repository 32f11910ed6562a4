// Fake I/O libraries: tables of functions that record every call as one line and answer from a script.
//
//   FakeLibrary library;
//   library.Answer("viRead", {.status = VI_ERROR_TMO});
//   UsbTmcMdl backend(services, library.Visa());
//
// A call without a scripted answer succeeds.
#pragma once

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "comm/io_libraries.h"

namespace corlune::testing {

struct LibraryAnswer {
  int status = 0;         // VISA status, NI-488.2 or USB488 status word, IEEE_32M status
  int error = 0;          // error code behind an error bit
  std::string text = {};  // data read
  int value = 0;          // status byte, descriptor, number of matches
};

// One line of a table's script.
struct Scripted {
  std::string call;
  LibraryAnswer answer;
};

// The library in use by the fakes below; C functions carry no object.
class FakeLibrary;
inline FakeLibrary* activeLibrary = nullptr;

class FakeLibrary {
 public:
  FakeLibrary() { activeLibrary = this; }
  ~FakeLibrary() { activeLibrary = nullptr; }
  FakeLibrary(const FakeLibrary&) = delete;
  FakeLibrary& operator=(const FakeLibrary&) = delete;

  void Answer(const std::string& call, LibraryAnswer answer) { script_[call].push_back(std::move(answer)); }
  // Notes "call arguments" and takes the answer scripted for `call`.
  LibraryAnswer Take(const std::string& call, const std::string& arguments = {}) {
    calls.push_back(arguments.empty() ? call : call + " " + arguments);
    last_ = {};
    if (auto& queue = script_[call]; !queue.empty()) {
      last_ = queue.front();
      queue.pop_front();
    }
    return last_;
  }
  const LibraryAnswer& Last() const { return last_; }

  std::vector<std::string> calls;

  LibraryLoader<VisaTable> Visa();
  LibraryLoader<Ni488Table> Ni488();
  LibraryLoader<Usb488Table> Usb488();
  LibraryLoader<Ieee32mTable> Ieee32m();

 private:
  template <typename Table>
  static LibraryLoader<Table> LoaderOf(const Table& table) {
    return [table](std::string*) { return &table; };
  }

  std::map<std::string, std::deque<LibraryAnswer>> script_;
  LibraryAnswer last_;
};

namespace fake {

inline LibraryAnswer Take(const std::string& call, const std::string& arguments = {}) {
  return activeLibrary->Take(call, arguments);
}
inline std::string Num(long long value) {
  return std::to_string(value);
}
// Bytes as text, control characters as \n, \r or <hex>.
inline std::string Shown(const void* data, std::size_t size) {
  std::string text;
  for (std::size_t i = 0; i < size; ++i) {
    const unsigned char c = static_cast<const unsigned char*>(data)[i];
    constexpr char kHex[] = "0123456789ABCDEF";
    const bool control = c < 0x20 || c > 0x7E;
    text += c == '\n'   ? "\\n"
            : c == '\r' ? "\\r"
            : control   ? std::string{'<', kHex[c >> 4], kHex[c & 15], '>'}
                        : std::string(1, static_cast<char>(c));
  }
  return text;
}
template <typename Count>
void Store(const std::string& text, void* buffer, Count size, Count* count) {
  *count = static_cast<Count>(std::min(text.size(), static_cast<std::size_t>(size)));
  std::memcpy(buffer, text.data(), static_cast<std::size_t>(*count));
}
inline std::string AttributeName(ViAttr attribute) {
  const std::map<ViAttr, std::string> names{{VI_ATTR_TMO_VALUE, "TMO"},
                                            {VI_ATTR_TERMCHAR, "TERMCHAR"},
                                            {VI_ATTR_TERMCHAR_EN, "TERMCHAR_EN"},
                                            {VI_ATTR_SEND_END_EN, "SEND_END"}};
  const auto name = names.find(attribute);
  return name == names.end() ? Num(attribute) : name->second;
}

}  // namespace fake

// Resource manager sessions are 1, find lists 2, device sessions 101, 102, ... in opening order.
inline LibraryLoader<VisaTable> FakeLibrary::Visa() {
  using fake::Num;
  using fake::Take;
  static ViSession next;
  next = 101;
  VisaTable t;
  t.OpenDefaultRM = [](ViPSession session) {
    *session = 1;
    return Take("viOpenDefaultRM").status;
  };
  t.FindRsrc = [](ViSession, ViConstString expression, ViPFindList list, ViPUInt32 matches,
                  ViChar* description) {
    const LibraryAnswer answer = Take("viFindRsrc", expression);
    if (answer.status < 0) return answer.status;
    *list = 2;
    *matches = static_cast<ViUInt32>(answer.value);
    std::strncpy(description, answer.text.c_str(), VI_FIND_BUFLEN);
    return answer.status;
  };
  t.FindNext = [](ViFindList, ViChar* description) {
    const LibraryAnswer answer = Take("viFindNext");
    std::strncpy(description, answer.text.c_str(), VI_FIND_BUFLEN);
    return answer.status;
  };
  t.Open = [](ViSession, ViConstRsrc name, ViAccessMode, ViUInt32, ViPSession session) {
    const LibraryAnswer answer = Take("viOpen", name);
    if (answer.status >= 0) *session = next++;
    return answer.status;
  };
  t.Close = [](ViObject object) { return Take("viClose", Num(object)).status; };
  t.SetAttribute = [](ViObject object, ViAttr attribute, ViAttrState state) {
    const std::string name = "viSetAttribute " + fake::AttributeName(attribute);
    return Take(name, Num(object) + " " + Num(static_cast<long long>(state))).status;
  };
  t.Read = [](ViSession session, ViPBuf buffer, ViUInt32 size, ViPUInt32 count) {
    const LibraryAnswer answer = Take("viRead", Num(session) + " " + Num(size));
    fake::Store(answer.text, buffer, size, count);
    return answer.status;
  };
  t.Write = [](ViSession session, ViConstBuf data, ViUInt32 size, ViPUInt32) {
    return Take("viWrite", Num(session) + " " + fake::Shown(data, size)).status;
  };
  t.ReadToFile = [](ViSession session, ViConstString name, ViUInt32 size, ViPUInt32 count) {
    const LibraryAnswer answer = Take("viReadToFile", Num(session) + " " + name + " " + Num(size));
    *count = static_cast<ViUInt32>(answer.value);
    return answer.status;
  };
  t.ReadSTB = [](ViSession session, ViPUInt16 byte) {
    const LibraryAnswer answer = Take("viReadSTB", Num(session));
    *byte = static_cast<ViUInt16>(answer.value);
    return answer.status;
  };
  t.Clear = [](ViSession session) { return Take("viClear", Num(session)).status; };
  t.GpibControlREN = [](ViSession session, ViUInt16 mode) {
    return Take("viGpibControlREN", Num(session) + " " + Num(mode)).status;
  };
  return LoaderOf(t);
}

// The status goes to the registered variables.
inline LibraryLoader<Ni488Table> FakeLibrary::Ni488() {
  using fake::Num;
  static int* ibstaPlace;
  static int* iberrPlace;
  static long* countPlace;
  ibstaPlace = iberrPlace = nullptr;
  // The status words are set before the call returns.
  static const auto note = [](const std::string& call, const std::string& arguments) {
    LibraryAnswer answer = fake::Take(call, arguments);
    *ibstaPlace = answer.status;
    *iberrPlace = answer.error;
    *countPlace = 0;
    return answer;
  };
  Ni488Table t;
  t.Find = [](const char* name) {
    const LibraryAnswer answer = note("ibfind", name);
    return answer.status & NI488_ERR ? -1 : 9;
  };
  t.Config = [](int, int option, int value) {
    return note("ibconfig", Num(option) + " " + Num(value)).status;
  };
  t.SendInterfaceClear = [](int board) { return note("ibsic", Num(board)).status; };
  t.RemoteEnable = [](int, int on) { return note("ibsre", Num(on)).status; };
  t.Command = [](int, const void* bytes, long count) {
    return note("ibcmd", fake::Shown(bytes, static_cast<std::size_t>(count))).status;
  };
  t.Write = [](int, const void* data, long count) {
    return note("ibwrt", fake::Shown(data, static_cast<std::size_t>(count))).status;
  };
  t.Read = [](int, void* buffer, long size) {
    const LibraryAnswer answer = note("ibrd", Num(size));
    fake::Store(answer.text, buffer, size, countPlace);
    return answer.status;
  };
  t.EndOfString = [](int, int value) { return note("ibeos", Num(value)).status; };
  t.EndOfTransfer = [](int, int on) { return note("ibeot", Num(on)).status; };
  t.TimeOut = [](int, int code) { return note("ibtmo", Num(code)).status; };
  t.ReadStatusByte = [](int board, short address, short* result) {
    *result = static_cast<short>(note("ReadStatusByte", Num(board) + " " + Num(address)).value);
  };
  t.RegisterGlobals = [](int* ibsta, int* iberr, int*, long* ibcntl) {
    ibstaPlace = ibsta;
    iberrPlace = iberr;
    countPlace = ibcntl;
    return fake::Take("RegisterGpibGlobalsForThread").value;
  };
  t.UnregisterGlobals = []() { return fake::Take("UnregisterGpibGlobalsForThread").value; };
  return LoaderOf(t);
}

// The device's handle is its id + 50.
inline LibraryLoader<Usb488Table> FakeLibrary::Usb488() {
  using fake::Num;
  using fake::Take;
  static std::int32_t count;
  Usb488Table t;
  t.Initialize = []() { return Take("UsbInitialize").status; };
  t.Finalize = []() { return Take("UsbFinalize").status; };
  t.OpenDevice = [](std::int32_t id) { return Take("UsbOpenDevice", Num(id)).status == 0 ? id + 50 : 0; };
  t.CloseDevice = [](std::int32_t handle) { return Take("UsbCloseDevice", Num(handle)).status; };
  t.SendTextData = [](std::int32_t handle, const char* text, std::int32_t length) {
    return Take("UsbSendTextData", Num(handle) + " " + fake::Shown(text, static_cast<std::size_t>(length)))
        .status;
  };
  t.ReceiveTextData = [](std::int32_t handle, char* buffer, std::int32_t size) {
    const LibraryAnswer answer = Take("UsbReceiveTextData", Num(handle) + " " + Num(size));
    fake::Store(answer.text, buffer, size, &count);
    return answer.status;
  };
  t.GetDataCount = []() { return count; };
  t.GetStatus = []() { return activeLibrary->Last().status; };
  t.GetErrorCode = []() { return activeLibrary->Last().error; };
  t.StatusByteQuery = [](std::int32_t handle, std::int32_t* byte) {
    const LibraryAnswer answer = Take("UsbSTBQuery", Num(handle));
    *byte = answer.value;
    return answer.status;
  };
  t.SetTimeout = [](std::int32_t handle, std::int32_t milliseconds) {
    return Take("UsbSetTimeout", Num(handle) + " " + Num(milliseconds)).status;
  };
  t.DeviceClear = [](std::int32_t handle) { return Take("UsbDevClear", Num(handle)).status; };
  t.SetInterfaceClear = [](std::int32_t handle) { return Take("UsbSetIFC", Num(handle)).status; };
  t.EnableRemote = [](std::int32_t handle) { return Take("UsbEnableRemote", Num(handle)).status; };
  t.EnableLocal = [](std::int32_t handle) { return Take("UsbEnableLocal", Num(handle)).status; };
  t.ClearStatus = []() { return Take("UsbClearStatus").status; };
  return LoaderOf(t);
}

inline LibraryLoader<Ieee32mTable> FakeLibrary::Ieee32m() {
  using fake::Num;
  using fake::Take;
  Ieee32mTable t;
  t.BoardPresent = []() { return Take("board_present").value == 0 ? 1 : 0; };
  t.Initialize = [](std::int32_t address, std::int32_t level) {
    return Take("initialize", Num(address) + " " + Num(level)).status;
  };
  t.Transmit = [](const char* command, std::int32_t, std::int32_t* status) {
    *status = Take("transmit", fake::Shown(command, std::strlen(command))).status;
    return 0;
  };
  t.Receive = [](char* buffer, std::int32_t size, std::int32_t* status, std::int32_t* count) {
    const LibraryAnswer answer = Take("receive", Num(size));
    fake::Store(answer.text, buffer, size, count);
    *status = answer.status;
    return 0;
  };
  t.SerialPoll = [](std::int32_t address, std::uint8_t* byte, std::int32_t* status) {
    const LibraryAnswer answer = Take("spoll", Num(address));
    *byte = static_cast<std::uint8_t>(answer.value);
    *status = answer.status;
    return 0;
  };
  t.SetTimeout = [](std::int32_t milliseconds) { return Take("settimeout", Num(milliseconds)).status; };
  t.SetInputEos = [](std::int32_t character) { return Take("setinputEOS", Num(character)).status; };
  return LoaderOf(t);
}

}  // namespace corlune::testing
