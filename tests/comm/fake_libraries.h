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
  // The answer of every further call.
  void AlwaysAnswer(const std::string& call, LibraryAnswer answer) { always_[call] = std::move(answer); }

  // Notes "call arguments" and takes the answer scripted for `call`.
  LibraryAnswer Take(const std::string& call, const std::string& arguments = {}) {
    calls.push_back(arguments.empty() ? call : call + " " + arguments);
    last_ = {};
    if (const auto always = always_.find(call); always != always_.end()) last_ = always->second;
    if (auto& queue = script_[call]; !queue.empty()) {
      last_ = queue.front();
      queue.pop_front();
    }
    return last_;
  }
  const LibraryAnswer& Last() const { return last_; }

  std::vector<std::string> calls;

  LibraryLoader<VisaTable> Visa();
  LibraryLoader<Ni488Table> Ni488(bool withRegistration);
  LibraryLoader<Usb488Table> Usb488();
  LibraryLoader<Ieee32mTable> Ieee32m();

 private:
  template <typename Table>
  static LibraryLoader<Table> LoaderOf(const Table& table) {
    return [table](std::string*) { return &table; };
  }

  std::map<std::string, std::deque<LibraryAnswer>> script_;
  std::map<std::string, LibraryAnswer> always_;
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
    if (c == '\n') {
      text += "\\n";
    } else if (c == '\r') {
      text += "\\r";
    } else if (c < 0x20 || c > 0x7E) {
      text += {'<', kHex[c >> 4], kHex[c & 15], '>'};
    } else {
      text += static_cast<char>(c);
    }
  }
  return text;
}
template <typename Count>
void Store(const std::string& text, void* buffer, Count size, Count* count) {
  *count = static_cast<Count>(std::min(text.size(), static_cast<std::size_t>(size)));
  std::memcpy(buffer, text.data(), static_cast<std::size_t>(*count));
}
inline std::string AttributeName(ViAttr attribute) {
  switch (attribute) {
    case VI_ATTR_TMO_VALUE:
      return "TMO";
    case VI_ATTR_TERMCHAR:
      return "TERMCHAR";
    case VI_ATTR_TERMCHAR_EN:
      return "TERMCHAR_EN";
    case VI_ATTR_SEND_END_EN:
      return "SEND_END";
    default:
      return Num(attribute);
  }
}

}  // namespace fake

// Resource manager sessions are 1, find lists 2, device sessions 101, 102, ... in opening order.
inline LibraryLoader<VisaTable> FakeLibrary::Visa() {
  using fake::Num;
  using fake::Take;
  static ViSession next;
  next = 101;
  VisaTable t;
  t.OpenDefaultRM = [](ViPSession session) -> ViStatus {
    *session = 1;
    return Take("viOpenDefaultRM").status;
  };
  t.FindRsrc = [](ViSession, ViConstString expression, ViPFindList list, ViPUInt32 matches,
                  ViChar* description) -> ViStatus {
    const LibraryAnswer answer = Take("viFindRsrc", expression);
    if (answer.status < 0) return answer.status;
    *list = 2;
    *matches = static_cast<ViUInt32>(answer.value);
    std::strncpy(description, answer.text.c_str(), VI_FIND_BUFLEN);
    return answer.status;
  };
  t.FindNext = [](ViFindList, ViChar* description) -> ViStatus {
    const LibraryAnswer answer = Take("viFindNext");
    std::strncpy(description, answer.text.c_str(), VI_FIND_BUFLEN);
    return answer.status;
  };
  t.Open = [](ViSession, ViConstRsrc name, ViAccessMode, ViUInt32, ViPSession session) -> ViStatus {
    const LibraryAnswer answer = Take("viOpen", name);
    if (answer.status >= 0) *session = next++;
    return answer.status;
  };
  t.Close = [](ViObject object) -> ViStatus { return Take("viClose", Num(object)).status; };
  t.SetAttribute = [](ViObject object, ViAttr attribute, ViAttrState state) -> ViStatus {
    const std::string name = "viSetAttribute " + fake::AttributeName(attribute);
    return Take(name, Num(object) + " " + Num(static_cast<long long>(state))).status;
  };
  t.Read = [](ViSession session, ViPBuf buffer, ViUInt32 size, ViPUInt32 count) -> ViStatus {
    const LibraryAnswer answer = Take("viRead", Num(session) + " " + Num(size));
    fake::Store(answer.text, buffer, size, count);
    return answer.status;
  };
  t.Write = [](ViSession session, ViConstBuf data, ViUInt32 size, ViPUInt32) -> ViStatus {
    return Take("viWrite", Num(session) + " " + fake::Shown(data, size)).status;
  };
  t.ReadToFile = [](ViSession session, ViConstString name, ViUInt32 size, ViPUInt32 count) -> ViStatus {
    const LibraryAnswer answer = Take("viReadToFile", Num(session) + " " + name + " " + Num(size));
    *count = static_cast<ViUInt32>(answer.value);
    return answer.status;
  };
  t.ReadSTB = [](ViSession session, ViPUInt16 byte) -> ViStatus {
    const LibraryAnswer answer = Take("viReadSTB", Num(session));
    *byte = static_cast<ViUInt16>(answer.value);
    return answer.status;
  };
  t.Clear = [](ViSession session) -> ViStatus { return Take("viClear", Num(session)).status; };
  t.GpibControlREN = [](ViSession session, ViUInt16 mode) -> ViStatus {
    return Take("viGpibControlREN", Num(session) + " " + Num(mode)).status;
  };
  return LoaderOf(t);
}

// With registration the status goes to the registered variables, else to the Thread calls; these are not
// noted.
inline LibraryLoader<Ni488Table> FakeLibrary::Ni488(bool withRegistration) {
  using fake::Num;
  struct Status {
    int ibsta = 0;
    int iberr = 0;
    long count = 0;
    int* ibstaPlace = nullptr;
    int* iberrPlace = nullptr;
    long* countPlace = nullptr;
    LibraryAnswer Take(const std::string& call, const std::string& arguments, long transferred = 0) {
      LibraryAnswer answer = fake::Take(call, arguments);
      ibsta = answer.status;
      iberr = answer.error;
      count = transferred;
      if (ibstaPlace) {
        *ibstaPlace = ibsta;
        *iberrPlace = iberr;
        *countPlace = count;
      }
      return answer;
    }
  };
  static Status s;
  s = {};
  Ni488Table t;
  t.Find = [](const char* name) -> int {
    const LibraryAnswer answer = s.Take("ibfind", name);
    return answer.status & NI488_ERR ? -1 : 9;
  };
  t.Config = [](int, int option, int value) -> int {
    return s.Take("ibconfig", Num(option) + " " + Num(value)).status;
  };
  t.SendInterfaceClear = [](int board) -> int { return s.Take("ibsic", Num(board)).status; };
  t.RemoteEnable = [](int, int on) -> int { return s.Take("ibsre", Num(on)).status; };
  t.Command = [](int, const void* bytes, long count) -> int {
    return s.Take("ibcmd", fake::Shown(bytes, static_cast<std::size_t>(count))).status;
  };
  t.Write = [](int, const void* data, long count) -> int {
    return s.Take("ibwrt", fake::Shown(data, static_cast<std::size_t>(count))).status;
  };
  t.Read = [](int, void* buffer, long size) -> int {
    const LibraryAnswer answer = s.Take("ibrd", Num(size));
    fake::Store(answer.text, buffer, size, &s.count);
    if (s.countPlace) *s.countPlace = s.count;
    return answer.status;
  };
  t.EndOfString = [](int, int value) -> int { return s.Take("ibeos", Num(value)).status; };
  t.EndOfTransfer = [](int, int on) -> int { return s.Take("ibeot", Num(on)).status; };
  t.TimeOut = [](int, int code) -> int { return s.Take("ibtmo", Num(code)).status; };
  t.ReadStatusByte = [](int board, short address, short* result) {
    *result = static_cast<short>(s.Take("ReadStatusByte", Num(board) + " " + Num(address)).value);
  };
  t.Status = []() -> int { return s.ibsta; };
  t.ErrorCode = []() -> int { return s.iberr; };
  t.Count = []() -> long { return s.count; };
  if (withRegistration) {
    t.RegisterGlobals = [](int* ibsta, int* iberr, int*, long* ibcntl) -> int {
      s.ibstaPlace = ibsta;
      s.iberrPlace = iberr;
      s.countPlace = ibcntl;
      return fake::Take("RegisterGpibGlobalsForThread").value;
    };
    t.UnregisterGlobals = []() -> int {
      s.ibstaPlace = nullptr;
      return fake::Take("UnregisterGpibGlobalsForThread").value;
    };
  }
  return LoaderOf(t);
}

// The device's handle is its id + 50.
inline LibraryLoader<Usb488Table> FakeLibrary::Usb488() {
  using fake::Num;
  using fake::Take;
  static std::int32_t count;
  Usb488Table t;
  t.Initialize = []() -> std::int32_t { return Take("UsbInitialize").status; };
  t.Finalize = []() -> std::int32_t { return Take("UsbFinalize").status; };
  t.OpenDevice = [](std::int32_t id) -> std::int32_t {
    return Take("UsbOpenDevice", Num(id)).status == 0 ? id + 50 : 0;
  };
  t.CloseDevice = [](std::int32_t handle) -> std::int32_t {
    return Take("UsbCloseDevice", Num(handle)).status;
  };
  t.SendTextData = [](std::int32_t handle, const char* text, std::int32_t length) -> std::int32_t {
    return Take("UsbSendTextData", Num(handle) + " " + fake::Shown(text, static_cast<std::size_t>(length)))
        .status;
  };
  t.ReceiveTextData = [](std::int32_t handle, char* buffer, std::int32_t size) -> std::int32_t {
    const LibraryAnswer answer = Take("UsbReceiveTextData", Num(handle) + " " + Num(size));
    fake::Store(answer.text, buffer, size, &count);
    return answer.status;
  };
  t.GetDataCount = []() -> std::int32_t { return count; };
  t.GetStatus = []() -> std::int32_t { return activeLibrary->Last().status; };
  t.GetErrorCode = []() -> std::int32_t { return activeLibrary->Last().error; };
  t.StatusByteQuery = [](std::int32_t handle, std::int32_t* byte) -> std::int32_t {
    const LibraryAnswer answer = Take("UsbSTBQuery", Num(handle));
    *byte = answer.value;
    return answer.status;
  };
  t.SetTimeout = [](std::int32_t handle, std::int32_t milliseconds) -> std::int32_t {
    return Take("UsbSetTimeout", Num(handle) + " " + Num(milliseconds)).status;
  };
  t.DeviceClear = [](std::int32_t handle) -> std::int32_t { return Take("UsbDevClear", Num(handle)).status; };
  t.SetInterfaceClear = [](std::int32_t handle) -> std::int32_t {
    return Take("UsbSetIFC", Num(handle)).status;
  };
  t.EnableRemote = [](std::int32_t handle) -> std::int32_t {
    return Take("UsbEnableRemote", Num(handle)).status;
  };
  t.EnableLocal = [](std::int32_t handle) -> std::int32_t {
    return Take("UsbEnableLocal", Num(handle)).status;
  };
  t.ClearStatus = []() -> std::int32_t { return 0; };
  return LoaderOf(t);
}

inline LibraryLoader<Ieee32mTable> FakeLibrary::Ieee32m() {
  using fake::Num;
  using fake::Take;
  Ieee32mTable t;
  t.BoardPresent = []() -> std::int32_t { return Take("board_present").value == 0 ? 1 : 0; };
  t.Initialize = [](std::int32_t address, std::int32_t level) -> std::int32_t {
    return Take("initialize", Num(address) + " " + Num(level)).status;
  };
  t.Transmit = [](const char* command, std::int32_t, std::int32_t* status) -> std::int32_t {
    *status = Take("transmit", fake::Shown(command, std::strlen(command))).status;
    return 0;
  };
  t.Receive = [](char* buffer, std::int32_t size, std::int32_t* status, std::int32_t* count) -> std::int32_t {
    const LibraryAnswer answer = Take("receive", Num(size));
    fake::Store(answer.text, buffer, size, count);
    *status = answer.status;
    return 0;
  };
  t.SerialPoll = [](std::int32_t address, std::uint8_t* byte, std::int32_t* status) -> std::int32_t {
    const LibraryAnswer answer = Take("spoll", Num(address));
    *byte = static_cast<std::uint8_t>(answer.value);
    *status = answer.status;
    return 0;
  };
  t.SetTimeout = [](std::int32_t milliseconds) -> std::int32_t {
    return Take("settimeout", Num(milliseconds)).status;
  };
  t.SetInputEos = [](std::int32_t character) -> std::int32_t {
    return Take("setinputEOS", Num(character)).status;
  };
  return LoaderOf(t);
}

}  // namespace corlune::testing
