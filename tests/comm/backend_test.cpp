// One table over the four back-ends that drive a library: what an operation calls, what it returns and what
// it logs.
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "comm/ieee32m_backend.h"
#include "comm/ni_gpib_backend.h"
#include "comm/usb488_backend.h"
#include "comm/usbtmc_backend.h"
#include "comm_fixture.h"
#include "fake_libraries.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

using Calls = std::vector<std::string>;
using Lines = std::vector<std::string>;

constexpr CommStatus kOk = CommStatus::Success;
constexpr CommStatus kTimeOut = CommStatus::TimeOut;
constexpr CommStatus kError = CommStatus::Error;
constexpr CommStatus kNoBoard = CommStatus::NoBoard;
constexpr CommStatus kOverflow = CommStatus::BufferOverflow;

std::unique_ptr<GpBackendBase> MakeBackend(InterfaceKind kind, CommWorld& world, FakeLibrary& library) {
  switch (kind) {
    case InterfaceKind::NiGpib:
      return std::make_unique<NiGpibMdl>(world.Services(), library.Ni488(true));
    case InterfaceKind::KiGpib:
      return std::make_unique<KiGpibMdl>(world.Services(), library.Ieee32m());
    case InterfaceKind::Usb488:
      return std::make_unique<Usb488Mdl>(world.Services(), library.Usb488());
    default:
      return std::make_unique<UsbTmcMdl>(world.Services(), library.Visa());
  }
}

constexpr InterfaceKind kNi = InterfaceKind::NiGpib;
constexpr InterfaceKind kKi = InterfaceKind::KiGpib;
constexpr InterfaceKind kUsb = InterfaceKind::Usb488;
constexpr InterfaceKind kTmc = InterfaceKind::UsbTmc;

constexpr const char* kInit = "MYADRS=1,LOG_FILE=comm.log,USBTMC_DEVNO=0,USBTMC_NAME=usb0::a/USB0::B";

struct Operation {
  std::string name;
  std::function<CommStatus(GpFamily&, std::string& result)> run;
};

Operation Send(int address, const std::string& text) {
  return {"send", [=](GpFamily& gp, std::string&) {
            return gp.GP_Send_Str(static_cast<std::int16_t>(address), text);
          }};
}
Operation Receive(int address) {
  return {"receive", [=](GpFamily& gp, std::string& result) {
            return gp.GP_Receive_Str(static_cast<std::int16_t>(address), result);
          }};
}
Operation Poll(int address) {
  return {"poll", [=](GpFamily& gp, std::string& result) {
            std::int16_t byte = -1;
            const CommStatus status = gp.GP_Spoll(static_cast<std::int16_t>(address), byte);
            result = std::to_string(byte);
            return status;
          }};
}
Operation TimeOutCode(int code) {
  return {"timeout",
          [=](GpFamily& gp, std::string&) { return gp.GP_Time_Out(static_cast<std::int16_t>(code)); }};
}
Operation Terminate(int code) {
  return {"mterm", [=](GpFamily& gp, std::string&) { return gp.GP_MTerm(static_cast<std::int16_t>(code)); }};
}
Operation InterfaceClear() {
  return {"ifc", [](GpFamily& gp, std::string&) { return gp.GP_IFC(); }};
}
Operation DeviceClear() {
  return {"dcl", [](GpFamily& gp, std::string&) { return gp.GP_DCL(); }};
}
Operation End() {
  return {"end", [](GpFamily& gp, std::string&) { return gp.GP_End(); }};
}
Operation Block(std::vector<std::uint8_t> data, int format = 0, bool swap = false) {
  return {"block", [=](GpFamily& gp, std::string&) {
            return gp.GP_Send_AsciiBinary_Data("#H", data, 0, static_cast<std::int16_t>(format), swap);
          }};
}
Operation ToFile() {
  return {"file", [](GpFamily& gp, std::string& result) {
            std::uint32_t count = 99;
            const CommStatus status = gp.Gp_Recv_ToFile(0, "f.bin", 1000, count);
            result = std::to_string(count);
            return status;
          }};
}

struct Row {
  std::string what;
  InterfaceKind kind;
  std::vector<Operation> before;  // not looked at
  Operation operation;
  std::vector<Scripted> script;
  Calls calls;
  CommStatus status;
  Lines log;
  std::string result = "unchanged";
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << "kind " << static_cast<int>(row.kind) << " " << row.operation.name << ": " << row.what;
}

class BackendTable : public ::testing::TestWithParam<Row> {};

TEST_P(BackendTable, CallsStatusAndLog) {
  const Row& row = GetParam();
  CommWorld world;
  FakeLibrary library;
  const auto backend = MakeBackend(row.kind, world, library);
  ASSERT_EQ(backend->GP_Init(kInit, true), kOk);
  std::string result = "unchanged";
  for (const Operation& operation : row.before) operation.run(*backend, result);
  library.calls.clear();
  world.ClearLog();
  for (const Scripted& line : row.script) library.Answer(line.call, line.answer);

  result = "unchanged";
  EXPECT_EQ(row.operation.run(*backend, result), row.status);

  EXPECT_THAT(library.calls, ElementsAreArray(row.calls));
  EXPECT_THAT(world.Log(), ElementsAreArray(row.log));
  EXPECT_EQ(result, row.result);
}

const std::string kLong(kReceiveBuffer, 'x');
const Calls kOpenSecond{"viOpen USB0::B",
                        "viGpibControlREN 101 1",
                        "viGpibControlREN 102 1",
                        "viSetAttribute TMO 102 3000",
                        "viSetAttribute TERMCHAR 101 10",
                        "viSetAttribute TERMCHAR_EN 101 1",
                        "viSetAttribute TERMCHAR 102 10",
                        "viSetAttribute TERMCHAR_EN 102 1"};

Calls operator+(Calls first, const Calls& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(UsbTmc, BackendTable, ::testing::ValuesIn(std::vector<Row>{
    {"names the resource in the log", kTmc, {}, Send(0, "*CLS"), {}, {"viWrite 101 *CLS\\n"}, kOk,
     {"USB0::A <  GP_Send_Str \"*CLS\""}},
    {"-1 is the last device", kTmc, {Send(1, "*CLS")}, Send(-1, "*RST"), {}, {"viWrite 102 *RST\\n"}, kOk,
     {"USB0::B <  GP_Send_Str \"*RST\""}},
    {"time-out is 1, not 2", kTmc, {}, Send(0, "*CLS"), {{"viWrite", {.status = VI_ERROR_TMO}}},
     {"viWrite 101 *CLS\\n"}, kTimeOut, {"USB0::A <  GP_Send_Str \"*CLS\" Time Out"}},
    {"any other error is 2", kTmc, {}, Send(0, "*CLS"), {{"viWrite", {.status = VI_ERROR_CONN_LOST}}},
     {"viWrite 101 *CLS\\n"}, kError, {"USB0::A <  GP_Send_Str \"*CLS\" Error"}},
    {"second device opens on first use", kTmc, {TimeOutCode(12)}, Send(1, "A"), {},
     kOpenSecond + Calls{"viWrite 102 A\\n"}, kOk,
     {"ALL < GP_REN", "ALL < GP_MTerm\"LF\"", "USB0::B <  GP_Send_Str \"A\""}},
    {"a device that refuses its time-out is closed again", kTmc, {}, Send(1, "A"),
     {{"viSetAttribute TMO", {.status = VI_ERROR_CONN_LOST}}},
     {"viOpen USB0::B", "viGpibControlREN 101 1", "viGpibControlREN 102 1", "viSetAttribute TMO 102 300",
      "viClose 102"}, kError, {"ALL < GP_REN", "USB0::B <  GP_Send_Str \"A\" Error"}},
    {"no resource name", kTmc, {}, Send(20, "A"), {}, {}, kError, {" <  GP_Send_Str \"A\" Error"}},
    {"index beyond the list", kTmc, {}, Send(21, "A"), {}, {}, kError, {" <  GP_Send_Str \"A\" Error"}},
    {"reply cut at CR, blanks removed", kTmc, {}, Receive(0), {{"viRead", {.text = "1, 2 \r\n"}}},
     {"viRead 101 256"}, kOk, {"USB0::A >  GP_Receive_Str \"1, 2\""}, "1, 2"},
    {"reply cut at LF", kTmc, {}, Receive(0), {{"viRead", {.text = "ab\ncd"}}}, {"viRead 101 256"}, kOk,
     {"USB0::A >  GP_Receive_Str \"ab\""}, "ab"},
    {"reply without terminator", kTmc, {}, Receive(0), {{"viRead", {.text = "ab  "}}}, {"viRead 101 256"},
     kOk, {"USB0::A >  GP_Receive_Str \"ab\""}, "ab"},
    {"terminator alone is the empty text", kTmc, {}, Receive(0), {{"viRead", {.text = "\n"}}},
     {"viRead 101 256"}, kOk, {"USB0::A >  GP_Receive_Str \"\""}, ""},
    {"failed read leaves the reply", kTmc, {}, Receive(0),
     {{"viRead", {.status = VI_ERROR_TMO, .text = "12"}}}, {"viRead 101 256"}, kTimeOut,
     {"USB0::A >  GP_Receive_Str \"\" Time Out"}},
    {"the rest of a long reply is dropped", kTmc, {}, Receive(0),
     {{"viRead", {.status = VI_SUCCESS_MAX_CNT, .text = kLong}}, {"viRead", {.text = "rest\n"}}},
     {"viRead 101 256", "viRead 101 4096"}, kOk, {"USB0::A >  GP_Receive_Str \"" + kLong + "\""}, kLong},
    {"a long reply that stalls is kept", kTmc, {}, Receive(0),
     {{"viRead", {.status = VI_SUCCESS_MAX_CNT, .text = kLong}}, {"viRead", {.status = VI_ERROR_TMO}}},
     {"viRead 101 256", "viRead 101 4096"}, kOk, {"USB0::A >  GP_Receive_Str \"" + kLong + "\""}, kLong},
    {"poll", kTmc, {}, Poll(0), {{"viReadSTB", {.value = 0x80}}}, {"viReadSTB 101"}, kOk,
     {"USB0::A < GP_Spoll\"128\""}, "128"},
    {"a device that is not open is not polled", kTmc, {}, Poll(1), {}, {}, kOk, {"USB0::B < GP_Spoll\"0\""},
     "0"},
    {"time-out of every session", kTmc, {Send(1, "A")}, TimeOutCode(13), {},
     {"viSetAttribute TMO 101 10000", "viSetAttribute TMO 102 10000"}, kOk, {"ALL < GP_Time_Out\"10s\""}},
    {"stops at the first failing session", kTmc, {Send(1, "A")}, TimeOutCode(18),
     {{"viSetAttribute TMO", {.status = VI_ERROR_NSUP_ATTR_STATE}}}, {"viSetAttribute TMO 101 0"}, kError,
     {"ALL < GP_Time_Out\"\" Error"}},
    {"terminator CR", kTmc, {}, Terminate(2), {},
     {"viSetAttribute TERMCHAR 101 13", "viSetAttribute TERMCHAR_EN 101 1"}, kOk, {"ALL < GP_MTerm\"CR\""}},
    {"CR LF is written, LF ends a read", kTmc, {Terminate(3)}, Send(0, "A"), {}, {"viWrite 101 A\\r\\n"},
     kOk, {"USB0::A <  GP_Send_Str \"A\""}},
    {"unknown terminator", kTmc, {}, Terminate(4), {}, {}, kError, {"ALL < GP_MTerm\"\" Error"}},
    {"unknown terminator empties the written one", kTmc, {Terminate(4)}, Send(0, "A"), {},
     {"viWrite 101 A"}, kOk, {"USB0::A <  GP_Send_Str \"A\""}},
    {"IFC calls nothing", kTmc, {}, InterfaceClear(), {}, {}, kOk, {"ALL < GP_IFC"}},
    {"clears every session", kTmc, {Send(1, "A")}, DeviceClear(), {}, {"viClear 101", "viClear 102"}, kOk,
     {"USB0::A < GP_SDC", "USB0::B < GP_SDC", "ALL < DCL"}},
    {"end closes everything although the device is gone", kTmc, {Send(1, "A")}, End(),
     {{"viGpibControlREN", {.status = VI_ERROR_CONN_LOST}}},
     {"viGpibControlREN 101 2", "viClose 101", "viClose 102", "viClose 1"}, kError,
     {"ALL < GP_REN Error", "ALL < GP_END Error"}},
    {"block: END only behind the data", kTmc, {}, Block({0, 10, 255}), {},
     {"viSetAttribute SEND_END 101 0", "viWrite 101 #H", "viSetAttribute SEND_END 101 1",
      "viWrite 101 <00>\\n<FF>"}, kOk,
     {"ALL < GP_EOI", "ALL < GP_EOI", "USB0::A <  GP_Send_AsciiBinary_Data \"0,10,255\""}},
    {"block: no data after a failed header, which is taken back", kTmc, {}, Block({1}),
     {{"viWrite", {.status = VI_ERROR_TMO}}},
     {"viSetAttribute SEND_END 101 0", "viWrite 101 #H", "viSetAttribute SEND_END 101 1", "viClear 101"},
     kTimeOut,
     {"ALL < GP_EOI", "ALL < GP_EOI", "USB0::A < GP_SDC", "USB0::A <  GP_Send_AsciiBinary_Data \"1\" Time Out"}},
    {"block: data that fail are taken back by a clear", kTmc, {}, Block({1}),
     {{"viWrite", {}}, {"viWrite", {.status = VI_ERROR_TMO}}},
     {"viSetAttribute SEND_END 101 0", "viWrite 101 #H", "viSetAttribute SEND_END 101 1", "viWrite 101 <01>",
      "viClear 101"}, kTimeOut,
     {"ALL < GP_EOI", "ALL < GP_EOI", "USB0::A < GP_SDC", "USB0::A <  GP_Send_AsciiBinary_Data \"1\" Time Out"}},
    {"block: nothing sent when END cannot be held back", kTmc, {}, Block({1}),
     {{"viSetAttribute SEND_END", {.status = VI_ERROR_NSUP_ATTR_STATE}}},
     {"viSetAttribute SEND_END 101 0", "viSetAttribute SEND_END 101 1"}, kError,
     {"ALL < GP_EOI Error", "ALL < GP_EOI", "USB0::A <  GP_Send_AsciiBinary_Data \"1\" Error"}},
    {"block: swapped 16-bit values are logged as given", kTmc, {},
     Block({'a', 'b', 0xFF, 0xFF, 'e'}, 1, true), {},
     {"viSetAttribute SEND_END 101 0", "viWrite 101 #H", "viSetAttribute SEND_END 101 1",
      "viWrite 101 ba<FF><FF>e"}, kOk,
     {"ALL < GP_EOI", "ALL < GP_EOI", "USB0::A <  GP_Send_AsciiBinary_Data \"25185,-1,101\""}},
    {"block: swapped bytes change places in pairs", kTmc, {}, Block({'a', 'b'}, 0, true), {},
     {"viSetAttribute SEND_END 101 0", "viWrite 101 #H", "viSetAttribute SEND_END 101 1", "viWrite 101 ba"},
     kOk, {"ALL < GP_EOI", "ALL < GP_EOI", "USB0::A <  GP_Send_AsciiBinary_Data \"97,98\""}},
    {"block: swapped 32-bit values", kTmc, {}, Block({1, 0, 0, 0x80}, 2, true), {},
     {"viSetAttribute SEND_END 101 0", "viWrite 101 #H", "viSetAttribute SEND_END 101 1",
      "viWrite 101 <80><00><00><01>"}, kOk,
     {"ALL < GP_EOI", "ALL < GP_EOI", "USB0::A <  GP_Send_AsciiBinary_Data \"-2147483647\""}},
    {"block: 15 values are logged", kTmc, {}, Block(std::vector<std::uint8_t>(20, 65)), {},
     {"viSetAttribute SEND_END 101 0", "viWrite 101 #H", "viSetAttribute SEND_END 101 1",
      "viWrite 101 AAAAAAAAAAAAAAAAAAAA"}, kOk,
     {"ALL < GP_EOI", "ALL < GP_EOI",
      "USB0::A <  GP_Send_AsciiBinary_Data \"65,65,65,65,65,65,65,65,65,65,65,65,65,65,65\""}},
    {"file read is not cut at a line feed", kTmc, {}, ToFile(), {{"viReadToFile", {.value = 321}}},
     {"viSetAttribute TERMCHAR_EN 101 0", "viReadToFile 101 f.bin 1000",
      "viSetAttribute TERMCHAR_EN 101 1"}, kOk, {}, "321"},
    {"file read restores the terminator after a failure", kTmc, {}, ToFile(),
     {{"viReadToFile", {.status = VI_ERROR_TMO}}},
     {"viSetAttribute TERMCHAR_EN 101 0", "viReadToFile 101 f.bin 1000",
      "viSetAttribute TERMCHAR_EN 101 1"}, kTimeOut, {"USB0::A <  Gp_Recv_ToFile \" Time Out"}, "0"},
    {"file read drops what is beyond the count", kTmc, {}, ToFile(),
     {{"viReadToFile", {.status = VI_SUCCESS_MAX_CNT, .value = 1000}}, {"viRead", {.text = "rest"}}},
     {"viSetAttribute TERMCHAR_EN 101 0", "viReadToFile 101 f.bin 1000", "viRead 101 4096",
      "viSetAttribute TERMCHAR_EN 101 1"}, kOk, {}, "1000"},
    {"a terminator that cannot be restored is an error", kTmc, {}, ToFile(),
     {{"viSetAttribute TERMCHAR_EN", {}}, {"viSetAttribute TERMCHAR_EN", {.status = VI_ERROR_CONN_LOST}}},
     {"viSetAttribute TERMCHAR_EN 101 0", "viReadToFile 101 f.bin 1000",
      "viSetAttribute TERMCHAR_EN 101 1"}, kError, {"USB0::A <  Gp_Recv_ToFile \" Error"}, "0"}}));
// clang-format on

constexpr int kEnd = NI488_END;

// clang-format off
INSTANTIATE_TEST_SUITE_P(NiGpib, BackendTable, ::testing::ValuesIn(std::vector<Row>{
    {"own address talks", kNi, {}, Send(5, "*CLS"), {}, {"ibcmd _?A%", "ibwrt *CLS\\n"}, kOk,
     {"5 <  GP_Send_Str \"*CLS\""}},
    {"device talks", kNi, {}, Receive(5), {{"ibrd", {.status = kEnd, .text = "123\r\n"}}},
     {"ibcmd _?E!", "ibrd 256"}, kOk, {"5 >  GP_Receive_Str \"123\""}, "123"},
    {"65535 keeps the bus as it is addressed", kNi, {Send(5, "A")}, Receive(65535),
     {{"ibrd", {.status = kEnd, .text = "1"}}}, {"ibrd 256"}, kOk, {"5 >  GP_Receive_Str \"1\""}, "1"},
    {"failed addressing sends nothing", kNi, {}, Send(5, "A"),
     {{"ibcmd", {.status = NI488_ERR, .error = NI488_ENOL}}}, {"ibcmd _?A%"}, kError,
     {"5 <  GP_Send_Str \"A\" Error"}},
    {"error and time-out bits together are an error", kNi, {}, Receive(5),
     {{"ibrd", {.status = NI488_ERR | NI488_TIMO, .error = NI488_EABO}}}, {"ibcmd _?E!", "ibrd 256"},
     kError, {"5 >  GP_Receive_Str \"\" Error"}},
    {"time-out bit alone", kNi, {}, Send(5, "A"), {{"ibwrt", {.status = NI488_TIMO}}},
     {"ibcmd _?A%", "ibwrt A\\n"}, kTimeOut, {"5 <  GP_Send_Str \"A\" Time Out"}},
    {"board gone", kNi, {}, Send(5, "A"), {{"ibcmd", {.status = NI488_ERR, .error = NI488_ENEB}}},
     {"ibcmd _?A%"}, kNoBoard, {"5 <  GP_Send_Str \"A\" Board does not exit"}},
    {"a long reply is read to its end", kNi, {}, Receive(5),
     {{"ibrd", {.text = kLong}}, {"ibrd", {.status = kEnd, .text = "rest"}}},
     {"ibcmd _?E!", "ibrd 256", "ibrd 4096"}, kOk, {"5 >  GP_Receive_Str \"" + kLong + "\""}, kLong},
    {"a reply that just fits has no rest", kNi, {}, Receive(5), {{"ibrd", {.status = kEnd, .text = kLong}}},
     {"ibcmd _?E!", "ibrd 256"}, kOk, {"5 >  GP_Receive_Str \"" + kLong + "\""}, kLong},
    {"poll needs no addressing", kNi, {}, Poll(5), {{"ReadStatusByte", {.value = 64}}},
     {"ReadStatusByte 0 5"}, kOk, {"5 < GP_Spoll\"64\""}, "64"},
    {"device clear byte", kNi, {}, DeviceClear(), {}, {"ibcmd <14>"}, kOk, {"ALL < DCL"}},
    {"codes are the library's", kNi, {}, TimeOutCode(17), {}, {"ibtmo 17"}, kOk,
     {"ALL < GP_Time_Out\"1000s\""}},
    {"CR LF", kNi, {}, Terminate(3), {}, {"ibeos 5130"}, kOk, {"ALL < GP_MTerm\"CRLF\""}},
    {"CR", kNi, {}, Terminate(2), {}, {"ibeos 5133"}, kOk, {"ALL < GP_MTerm\"CR\""}},
    {"none", kNi, {}, Terminate(0), {}, {"ibeos 0"}, kOk, {"ALL < GP_MTerm\"NONE\""}},
    {"unknown terminator", kNi, {}, Terminate(5), {}, {}, kError, {"ALL < GP_MTerm\"\" Error"}},
    {"unknown terminator changes nothing", kNi, {Terminate(5)}, Send(-1, "A"), {}, {"ibwrt A\\n"}, kOk,
     {"0 <  GP_Send_Str \"A\""}},
    {"carries no blocks", kNi, {}, Block({1}), {}, {}, kOk, {}},
    {"reads no files", kNi, {}, ToFile(), {}, {}, kError, {}, "99"},
    {"end", kNi, {}, End(), {}, {"ibsre 0"}, kOk, {"ALL < GP_REN", "ALL < GP_END"}}}));
// clang-format on

const Calls kOpenUsb{"UsbOpenDevice 3", "UsbSetIFC 53", "UsbEnableRemote 53", "UsbSetTimeout 53 300"};
const Lines kOpenUsbLog{"ALL < GP_IFC", "ALL < GP_REN", "ALL < GP_MTerm\"LF\"", "ALL < GP_EOI",
                        "ALL < GP_Time_Out\"300ms\""};

// clang-format off
INSTANTIATE_TEST_SUITE_P(Usb488, BackendTable, ::testing::ValuesIn(std::vector<Row>{
    {"opens the device of the call", kUsb, {}, Send(3, "*CLS"), {},
     kOpenUsb + Calls{"UsbSendTextData 53 *CLS\\n"}, kOk, kOpenUsbLog + Lines{"3 <  GP_Send_Str \"*CLS\""}},
    {"an open device stays open", kUsb, {Send(3, "A")}, Send(3, "B"), {}, {"UsbSendTextData 53 B\\n"}, kOk,
     {"3 <  GP_Send_Str \"B\""}},
    {"another device closes the first", kUsb, {Send(4, "A")}, Send(3, "B"), {},
     Calls{"UsbCloseDevice 54"} + kOpenUsb + Calls{"UsbSendTextData 53 B\\n"}, kOk,
     kOpenUsbLog + Lines{"3 <  GP_Send_Str \"B\""}},
    {"device 0 is opened too", kUsb, {}, Poll(0), {{"UsbSTBQuery", {.value = 16}}},
     {"UsbOpenDevice 0", "UsbSetIFC 50", "UsbEnableRemote 50", "UsbSetTimeout 50 300", "UsbSTBQuery 50"},
     kOk, kOpenUsbLog + Lines{"0 < GP_Spoll\"16\""}, "16"},
    {"no such device", kUsb, {}, Send(3, "A"),
     {{"UsbOpenDevice", {.status = USB488_STATUS_ERROR, .error = USB488_ERROR_NO_DEVICE}}},
     {"UsbOpenDevice 3"}, kNoBoard, {"3 <  GP_Send_Str \"A\" Board does not exit"}},
    {"error and time-out bits together are a time-out", kUsb, {Send(3, "A")}, Receive(3),
     {{"UsbReceiveTextData", {.status = USB488_STATUS_ERROR | USB488_STATUS_TIMEOUT}}},
     {"UsbReceiveTextData 53 256"}, kTimeOut, {"3 >  GP_Receive_Str \"\" Time Out"}},
    {"reply", kUsb, {Send(3, "A")}, Receive(3), {{"UsbReceiveTextData", {.text = "abc\n"}}},
     {"UsbReceiveTextData 53 256"}, kOk, {"3 >  GP_Receive_Str \"abc\""}, "abc"},
    {"a full buffer without line end goes on", kUsb, {Send(3, "A")}, Receive(3),
     {{"UsbReceiveTextData", {.text = kLong}}, {"UsbReceiveTextData", {.text = "x\n"}}},
     {"UsbReceiveTextData 53 256", "UsbReceiveTextData 53 4096"}, kOk,
     {"3 >  GP_Receive_Str \"" + kLong + "\""}, kLong},
    {"time-out waits for a device", kUsb, {}, TimeOutCode(12), {}, {}, kOk, {"ALL < GP_Time_Out\"3s\""}},
    {"time-out of the open device", kUsb, {Send(3, "A")}, TimeOutCode(5), {}, {"UsbSetTimeout 53 1"}, kOk,
     {"ALL < GP_Time_Out\"1ms\""}},
    {"clear", kUsb, {Send(3, "A")}, DeviceClear(), {}, {"UsbDevClear 53"}, kOk, {"ALL < DCL"}},
    {"end", kUsb, {Send(3, "A")}, End(), {}, {"UsbEnableLocal 53", "UsbCloseDevice 53", "UsbFinalize"}, kOk,
     {"ALL < GP_REN", "ALL < GP_END"}}}));
// clang-format on

// clang-format off
INSTANTIATE_TEST_SUITE_P(Ieee32m, BackendTable, ::testing::ValuesIn(std::vector<Row>{
    {"terminator behind EOI", kKi, {}, Send(5, "*CLS"), {},
     {"transmit UNT UNL TALK MTA LISTEN 5", "transmit DATA '*CLS' EOI  10"}, kOk,
     {"5 <  GP_Send_Str \"*CLS\""}},
    {"without terminator EOI goes with the last character", kKi, {Terminate(0)}, Send(-1, "*CLS"), {},
     {"transmit DATA '*CL' EOI DATA 'S'"}, kOk, {"0 <  GP_Send_Str \"*CLS\""}},
    {"a quote goes as its byte value", kKi, {}, Send(-1, "A 'b'"), {},
     {"transmit DATA 'A ' 39 'b' 39 '' EOI  10"}, kOk, {"0 <  GP_Send_Str \"A 'b'\""}},
    {"positive status is a time-out", kKi, {}, Send(5, "A"), {{"transmit", {.status = 3}}},
     {"transmit UNT UNL TALK MTA LISTEN 5"}, kTimeOut, {"5 <  GP_Send_Str \"A\" Time Out"}},
    {"negative status is an error", kKi, {}, InterfaceClear(), {{"transmit", {.status = -1}}},
     {"transmit IFC"}, kError, {"ALL < GP_IFC Error"}},
    {"device talks", kKi, {}, Receive(5), {{"receive", {.text = "7 \r\n"}}},
     {"transmit UNT UNL LISTEN MLA TALK 5", "receive 256"}, kOk, {"5 >  GP_Receive_Str \"7\""}, "7"},
    {"poll", kKi, {}, Poll(5), {{"spoll", {.value = 200}}}, {"spoll 5"}, kOk, {"5 < GP_Spoll\"200\""},
     "200"},
    {"short time-outs are 55 ms", kKi, {}, TimeOutCode(8), {}, {"settimeout 55"}, kOk,
     {"ALL < GP_Time_Out\"55ms\""}},
    {"long time-outs", kKi, {}, TimeOutCode(17), {}, {"settimeout 1000010"}, kOk,
     {"ALL < GP_Time_Out\"1000s\""}},
    {"no time-out", kKi, {}, TimeOutCode(0), {}, {"settimeout 0"}, kOk, {"ALL < GP_Time_Out\"NONE\""}},
    {"CR LF", kKi, {}, Terminate(3), {}, {"setinputEOS 10"}, kOk, {"ALL < GP_MTerm\"CRLF\""}},
    {"clear", kKi, {}, DeviceClear(), {}, {"transmit DCL"}, kOk, {"ALL < GP_DCL"}},
    {"end", kKi, {Send(5, "A")}, End(), {}, {"transmit UNL LISTEN 5 GTL"}, kOk, {"ALL < GP_END"}}}));
// clang-format on

// --- GP_Init -----------------------------------------------------------------------------------------

struct InitRow {
  std::string what;
  InterfaceKind kind;
  std::string options;
  std::vector<Scripted> script;
  Calls calls;
  CommStatus status;
  Lines log;
};

class InitTable : public ::testing::TestWithParam<InitRow> {};
void PrintTo(const InitRow& row, std::ostream* out) {
  *out << "kind " << static_cast<int>(row.kind) << " init: " << row.what;
}

TEST_P(InitTable, CallsStatusAndLog) {
  const InitRow& row = GetParam();
  CommWorld world;
  FakeLibrary library;
  for (const Scripted& line : row.script) library.Answer(line.call, line.answer);
  const auto backend = MakeBackend(row.kind, world, library);
  EXPECT_EQ(backend->GP_Init("LOG_FILE=comm.log" + row.options, true), row.status);
  EXPECT_THAT(library.calls, ElementsAreArray(row.calls));
  EXPECT_THAT(world.Log(), ElementsAreArray(row.log));
}

const Lines kInitialLog{"ALL < GP_IFC", "ALL < GP_REN", "ALL < GP_MTerm\"LF\"", "ALL < GP_EOI",
                        "ALL < GP_Time_Out\"300ms\""};

// clang-format off
INSTANTIATE_TEST_SUITE_P(Every, InitTable, ::testing::ValuesIn(std::vector<InitRow>{
    {"initial state", kNi, ",BOARD_NAME=gpib2", {},
     {"RegisterGpibGlobalsForThread", "ibfind GPIB2", "ibconfig 7 0", "ibsic 9", "ibsre 1", "ibeos 5130",
      "ibeot 1", "ibtmo 10"}, kOk, kInitialLog + Lines{"GP_INIT"}},
    {"unknown board", kNi, "", {{"ibfind", {.status = NI488_ERR, .error = NI488_EDVR}}},
     {"RegisterGpibGlobalsForThread", "ibfind gpib0"}, kError, {"GP_INIT Error"}},
    {"no board", kNi, "", {{"ibfind", {.status = NI488_ERR, .error = NI488_ENEB}}},
     {"RegisterGpibGlobalsForThread", "ibfind gpib0"}, kNoBoard, {"GP_INIT Board does not exit"}},
    {"the five statuses are combined", kNi, "",
     {{"ibsic", {.status = NI488_TIMO}}, {"ibtmo", {.status = NI488_ERR}}},
     {"RegisterGpibGlobalsForThread", "ibfind gpib0", "ibconfig 7 0", "ibsic 9", "ibsre 1", "ibeos 5130",
      "ibeot 1", "ibtmo 10"}, kTimeOut | kError,
     {"ALL < GP_IFC Time Out", "ALL < GP_REN", "ALL < GP_MTerm\"LF\"", "ALL < GP_EOI",
      "ALL < GP_Time_Out\"300ms\" Error", "GP_INIT Time Out"}},
    {"registered by someone else", kNi, "", {{"RegisterGpibGlobalsForThread", {.value = 1}}},
     {"RegisterGpibGlobalsForThread", "UnregisterGpibGlobalsForThread", "RegisterGpibGlobalsForThread",
      "ibfind gpib0", "ibconfig 7 0", "ibsic 9", "ibsre 1", "ibeos 5130", "ibeot 1", "ibtmo 10"}, kOk,
     kInitialLog + Lines{"GP_INIT"}},
    {"registration refused", kNi, "", {{"RegisterGpibGlobalsForThread", {.value = 3}}},
     {"RegisterGpibGlobalsForThread", "UnregisterGpibGlobalsForThread"}, kError,
     {"NI-488.2 library refuses to report its status to this thread", "GP_INIT Error"}},
    {"initial state", kKi, ",MYADRS=21", {},
     {"board_present", "initialize 21 0", "transmit REN", "setinputEOS 10", "settimeout 330"}, kOk,
     {"ALL < GP_REN", "ALL < GP_MTerm\"LF\"", "ALL < GP_EOI", "ALL < GP_Time_Out\"300ms\"", "GP_INIT"}},
    {"no board", kKi, "", {{"board_present", {.value = 1}}}, {"board_present"}, kNoBoard,
     {"GP_INIT Board does not exit"}},
    {"opens no device yet", kUsb, "", {}, {"UsbInitialize"}, kOk, {"GP_INIT"}},
    {"library does not start", kUsb, "", {{"UsbInitialize", {.status = USB488_STATUS_ERROR, .error = 1}}},
     {"UsbInitialize"}, kError, {"GP_INIT Error"}},
    {"the chosen device", kTmc, ",USBTMC_DEVNO=1,USBTMC_NAME=A/B", {},
     {"viOpenDefaultRM", "viOpen B", "viGpibControlREN 101 1", "viSetAttribute TMO 101 300",
      "viSetAttribute TERMCHAR 101 10", "viSetAttribute TERMCHAR_EN 101 1"}, kOk,
     {"ALL < GP_REN", "ALL < GP_MTerm\"LF\"", "GP_INIT"}},
    {"no device named", kTmc, "", {}, {"viOpenDefaultRM"}, kOk, {"GP_INIT"}},
    {"a missing device leaves nothing open", kTmc, ",USBTMC_NAME=A",
     {{"viOpen", {.status = VI_ERROR_RSRC_NFOUND}}}, {"viOpenDefaultRM", "viOpen A", "viClose 1"}, kError,
     {"A does not open: status BFFF0011", "GP_INIT Error"}},
    {"an instrument without remote state", kTmc, ",USBTMC_NAME=A",
     {{"viGpibControlREN", {.status = VI_ERROR_NSUP_OPER}}},
     {"viOpenDefaultRM", "viOpen A", "viGpibControlREN 101 1", "viSetAttribute TMO 101 300",
      "viSetAttribute TERMCHAR 101 10", "viSetAttribute TERMCHAR_EN 101 1"}, kOk,
     {"ALL < GP_REN Error", "ALL < GP_MTerm\"LF\"", "GP_INIT"}},
    {"resource manager does not open", kTmc, ",USBTMC_NAME=A",
     {{"viOpenDefaultRM", {.status = VI_ERROR_SYSTEM_ERROR}}}, {"viOpenDefaultRM"}, kError,
     {"VISA resource manager does not open: status BFFF0000", "GP_INIT Error"}}}));
// clang-format on

TEST(Init, AgainClosesWhatWasOpen) {
  CommWorld world;
  FakeLibrary library;
  UsbTmcMdl backend(world.Services(), library.Visa());
  ASSERT_EQ(backend.GP_Init("USBTMC_NAME=A", true), kOk);
  library.calls.clear();
  ASSERT_EQ(backend.GP_Init("", true), kOk);
  EXPECT_THAT(library.calls, ElementsAre("viClose 101", "viClose 1", "viOpenDefaultRM"));
}

TEST(Init, LogIsEmptiedOnlyWhenAsked) {
  CommWorld world;
  FakeLibrary library;
  UsbTmcMdl backend(world.Services(), library.Visa());
  world.folder.Write("Comm Log.txt", "old\r\n");
  ASSERT_EQ(backend.GP_Init("LOG_FILE= Comm Log.txt ,X=1", false), kOk);
  EXPECT_THAT(world.Log("Comm Log.txt"), ElementsAre("old", "GP_INIT"));
  ASSERT_EQ(backend.GP_Init("LOG_FILE=" + world.folder.File("Comm Log.txt"), true), kOk);
  EXPECT_THAT(world.Log("Comm Log.txt"), ElementsAre("GP_INIT"));
}

TEST(NiGpib, WithoutRegistrationTheStatusComesFromTheThreadCalls) {
  CommWorld world;
  FakeLibrary library;
  NiGpibMdl backend(world.Services(), library.Ni488(false));
  ASSERT_EQ(backend.GP_Init("", true), kOk);
  library.Answer("ibrd", {.status = kEnd, .text = "42"});
  std::string reply;
  EXPECT_EQ(backend.GP_Receive_Str(5, reply), kOk);
  EXPECT_EQ(reply, "42");
  library.Answer("ibcmd", {.status = NI488_ERR, .error = NI488_ENEB});
  EXPECT_EQ(backend.GP_Send_Str(5, "A"), kNoBoard);
}

// The library must stop writing into the back-end's variables when the back-end goes.
TEST(NiGpib, UnregistersAtTheEnd) {
  CommWorld world;
  FakeLibrary library;
  {
    NiGpibMdl backend(world.Services(), library.Ni488(true));
    ASSERT_EQ(backend.GP_Init("", true), kOk);
  }
  EXPECT_EQ(library.calls.back(), "UnregisterGpibGlobalsForThread");
}

TEST(UsbTmc, AnEndlessReplyIsGivenUp) {
  CommWorld world;
  FakeLibrary library;
  UsbTmcMdl backend(world.Services(), library.Visa());
  ASSERT_EQ(backend.GP_Init("USBTMC_NAME=A", true), kOk);
  library.AlwaysAnswer("viRead", {.status = VI_SUCCESS_MAX_CNT, .text = kLong});
  std::string reply = "before";
  EXPECT_EQ(backend.GP_Receive_Str(0, reply), kOverflow);
  EXPECT_EQ(reply, "before");
}

// --- The fatal prompt --------------------------------------------------------------------------------

// Two bits: the prompt names the error, the log the time-out. The value of the option does not matter.
TEST(FatalPrompt, ShowsErrorBeforeTimeOut) {
  CommWorld world;
  FakeLibrary library;
  library.Answer("transmit", {.status = 1});     // REN: time-out
  library.Answer("settimeout", {.status = -1});  // error
  for (int i = 0; i < 3; ++i) world.prompts.Answer(PromptAnswer::No);
  KiGpibMdl backend(world.Services(), library.Ieee32m());
  EXPECT_EQ(backend.GP_Init("LOG_FILE=comm.log,VIEW_ERR_DIALOG=0", true), kTimeOut | kError);

  ASSERT_EQ(world.prompts.messages.size(), 3U);
  EXPECT_THAT(world.prompts.messages[0].text, HasSubstr("GP_REN\nTime Out\n"));
  const MessageRequest& last = world.prompts.messages[2];
  EXPECT_EQ(last.text, "GP_Init\nError\nアプリケーションを終了しますか?");
  EXPECT_EQ(last.caption, "NI_GPIB");
  EXPECT_EQ(last.buttons, PromptButtons::YesNo);
  EXPECT_EQ(last.icon, PromptIcon::Question);
  EXPECT_FALSE(world.endProgram.ended);
  EXPECT_EQ(world.Log().back(), "GP_INIT Time Out");
}

TEST(FatalPrompt, YesEndsTheProgram) {
  CommWorld world;
  FakeLibrary library;
  library.Answer("UsbOpenDevice", {.status = USB488_STATUS_ERROR, .error = USB488_ERROR_NO_DEVICE});
  Usb488Mdl backend(world.Services(), library.Usb488());
  ASSERT_EQ(backend.GP_Init("VIEW_ERR_DIALOG", true), kOk);
  world.prompts.Answer(PromptAnswer::Yes);
  EXPECT_EQ(backend.GP_Send_Str(3, "A"), kNoBoard);
  EXPECT_EQ(world.prompts.messages.at(0).text,
            "Device Open Error\nBoard is Northing\nアプリケーションを終了しますか?");
  EXPECT_TRUE(world.endProgram.ended);
}

}  // namespace
}  // namespace corlune::testing
