// One table over the four back-ends that drive a library: what an operation calls, what it returns and what
// it logs.
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
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
using ::testing::HasSubstr;

constexpr CommStatus kOk = CommStatus::Success;
constexpr CommStatus kTimeOut = CommStatus::TimeOut;
constexpr CommStatus kError = CommStatus::Error;
constexpr CommStatus kNoBoard = CommStatus::NoBoard;
constexpr CommStatus kOverflow = CommStatus::BufferOverflow;

constexpr InterfaceKind kNi = InterfaceKind::NiGpib;
constexpr InterfaceKind kKi = InterfaceKind::KiGpib;
constexpr InterfaceKind kUsb = InterfaceKind::Usb488;
constexpr InterfaceKind kTmc = InterfaceKind::UsbTmc;

std::unique_ptr<GpBackendBase> MakeBackend(InterfaceKind kind, CommWorld& world, FakeLibrary& library) {
  if (kind == kNi) return std::make_unique<NiGpibMdl>(world.Services(), library.Ni488());
  if (kind == kKi) return std::make_unique<Ieee32mMdl>(world.Services(), library.Ieee32m());
  if (kind == kUsb) return std::make_unique<Usb488Mdl>(world.Services(), library.Usb488());
  return std::make_unique<UsbTmcMdl>(world.Services(), library.Visa());
}

using Operation = std::function<CommStatus(GpFamily&, std::string& result)>;

Operation Send(std::int16_t address, const std::string& text) {
  return [=](GpFamily& gp, std::string&) { return gp.GP_Send_Str(address, text); };
}
Operation Receive(int address) {
  return [=](GpFamily& gp, std::string& result) {
    return gp.GP_Receive_Str(static_cast<std::int16_t>(address), result);
  };
}
Operation Poll(std::int16_t address) {
  return [=](GpFamily& gp, std::string& result) {
    std::int16_t byte = -1;
    const CommStatus status = gp.GP_Spoll(address, byte);
    result = std::to_string(byte);
    return status;
  };
}
Operation TimeOutCode(std::int16_t code) {
  return [=](GpFamily& gp, std::string&) { return gp.GP_Time_Out(code); };
}
Operation Terminate(std::int16_t code) {
  return [=](GpFamily& gp, std::string&) { return gp.GP_MTerm(code); };
}
const Operation kInterfaceClear = [](GpFamily& gp, std::string&) { return gp.GP_IFC(); };
const Operation kDeviceClear = [](GpFamily& gp, std::string&) { return gp.GP_DCL(); };
const Operation kEndUse = [](GpFamily& gp, std::string&) { return gp.GP_End(); };
Operation Block(std::vector<std::uint8_t> data, std::int16_t format = 0, bool swap = false) {
  return [=](GpFamily& gp, std::string&) { return gp.GP_Send_AsciiBinary_Data("#H", data, 0, format, swap); };
}
const Operation kToFile = [](GpFamily& gp, std::string& result) {
  std::uint32_t count = 99;
  const CommStatus status = gp.Gp_Recv_ToFile(0, "f.bin", 1000, count);
  result = std::to_string(count);
  return status;
};

// Calls and log lines stand behind one another, with "|" in between.
struct Row {
  std::string what;
  Operation operation;
  std::string calls;
  CommStatus status;
  std::string log;
  std::vector<Scripted> script = {};
  std::string result = "unchanged";
  std::vector<Operation> before = {};  // not looked at
};

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "|") + line;
  return text;
}

void Check(InterfaceKind kind, const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    CommWorld world;
    FakeLibrary library;
    const auto backend = MakeBackend(kind, world, library);
    ASSERT_EQ(backend->GP_Init("MYADRS=1,LOG_FILE=comm.log,USBTMC_DEVNO=0,USBTMC_NAME=usb0::a/USB0::B", true),
              kOk);
    std::string result;
    for (const Operation& operation : row.before) operation(*backend, result);
    library.calls.clear();
    world.ClearLog();
    for (const Scripted& line : row.script) library.Answer(line.call, line.answer);
    result = "unchanged";
    EXPECT_EQ(row.operation(*backend, result), row.status);
    EXPECT_EQ(Joined(library.calls), row.calls);
    EXPECT_EQ(Joined(world.Log()), row.log);
    EXPECT_EQ(result, row.result);
  }
}

const std::string kLong(kReceiveBuffer, 'x');
const std::string kReceivedLong = " >  GP_Receive_Str \"" + kLong + "\"";
// The header of a block, before the data.
const std::string kHeader = "viSetAttribute SEND_END 101 0|viWrite 101 #H|viSetAttribute SEND_END 101 1";
const std::string kBlockLog = "ALL < GP_EOI|ALL < GP_EOI|USB0::A <  GP_Send_AsciiBinary_Data ";
// A file read is not cut at a line feed.
const std::string kFile = "viSetAttribute TERMCHAR_EN 101 0|viReadToFile 101 f.bin 1000|";
const std::string kFileEnd = "viSetAttribute TERMCHAR_EN 101 1";
const std::string kOpenSecond = "viOpen USB0::B|viGpibControlREN 101 1|viGpibControlREN 102 1|";

// clang-format off
TEST(Backend, UsbTmc) {
  Check(kTmc, {
    {"-1 is the last device", Send(-1, "*RST"), "viWrite 102 *RST\\n", kOk,
     "USB0::B <  GP_Send_Str \"*RST\"", {}, "unchanged", {Send(1, "*CLS")}},
    {"time-out is 1, not 2", Send(0, "*CLS"), "viWrite 101 *CLS\\n", kTimeOut,
     "USB0::A <  GP_Send_Str \"*CLS\" Time Out", {{"viWrite", {.status = VI_ERROR_TMO}}}},
    {"any other error is 2", Send(0, "*CLS"), "viWrite 101 *CLS\\n", kError,
     "USB0::A <  GP_Send_Str \"*CLS\" Error", {{"viWrite", {.status = VI_ERROR_CONN_LOST}}}},
    {"second device opens on first use", Send(1, "A"),
     kOpenSecond + "viSetAttribute TMO 102 3000|viSetAttribute TERMCHAR 101 10|viSetAttribute TERMCHAR_EN 101 1|"
     "viSetAttribute TERMCHAR 102 10|viSetAttribute TERMCHAR_EN 102 1|viWrite 102 A\\n", kOk,
     "ALL < GP_REN|ALL < GP_MTerm\"LF\"|USB0::B <  GP_Send_Str \"A\"", {}, "unchanged", {TimeOutCode(12)}},
    {"a device that refuses its time-out is closed again", Send(1, "A"),
     kOpenSecond + "viSetAttribute TMO 102 300|viClose 102", kError,
     "ALL < GP_REN|USB0::B <  GP_Send_Str \"A\" Error", {{"viSetAttribute TMO", {.status = VI_ERROR_CONN_LOST}}}},
    {"no resource name", Send(20, "A"), "", kError, " <  GP_Send_Str \"A\" Error"},
    {"index beyond the list", Send(21, "A"), "", kError, " <  GP_Send_Str \"A\" Error"},
    {"reply cut at CR, blanks removed", Receive(0), "viRead 101 256", kOk, "USB0::A >  GP_Receive_Str \"1, 2\"",
     {{"viRead", {.text = "1, 2 \r\n"}}}, "1, 2"},
    {"reply cut at LF", Receive(0), "viRead 101 256", kOk, "USB0::A >  GP_Receive_Str \"ab\"",
     {{"viRead", {.text = "ab\ncd"}}}, "ab"},
    {"terminator alone is the empty text", Receive(0), "viRead 101 256", kOk, "USB0::A >  GP_Receive_Str \"\"",
     {{"viRead", {.text = "\n"}}}, ""},
    {"failed read leaves the reply", Receive(0), "viRead 101 256", kTimeOut,
     "USB0::A >  GP_Receive_Str \"\" Time Out", {{"viRead", {.status = VI_ERROR_TMO, .text = "12"}}}},
    {"the rest of a long reply is dropped", Receive(0), "viRead 101 256|viRead 101 4096", kOk,
     "USB0::A" + kReceivedLong,
     {{"viRead", {.status = VI_SUCCESS_MAX_CNT, .text = kLong}}, {"viRead", {.text = "rest\n"}}}, kLong},
    {"a long reply that stalls is kept", Receive(0), "viRead 101 256|viRead 101 4096", kOk,
     "USB0::A" + kReceivedLong,
     {{"viRead", {.status = VI_SUCCESS_MAX_CNT, .text = kLong}}, {"viRead", {.status = VI_ERROR_TMO}}}, kLong},
    {"poll", Poll(0), "viReadSTB 101", kOk, "USB0::A < GP_Spoll\"128\"", {{"viReadSTB", {.value = 0x80}}}, "128"},
    {"a device that is not open is not polled", Poll(1), "", kOk, "USB0::B < GP_Spoll\"0\"", {}, "0"},
    {"time-out of every session", TimeOutCode(13), "viSetAttribute TMO 101 10000|viSetAttribute TMO 102 10000",
     kOk, "ALL < GP_Time_Out\"10s\"", {}, "unchanged", {Send(1, "A")}},
    {"stops at the first failing session", TimeOutCode(18), "viSetAttribute TMO 101 0", kError,
     "ALL < GP_Time_Out\"\" Error", {{"viSetAttribute TMO", {.status = VI_ERROR_NSUP_ATTR_STATE}}}, "unchanged",
     {Send(1, "A")}},
    {"terminator CR", Terminate(2), "viSetAttribute TERMCHAR 101 13|viSetAttribute TERMCHAR_EN 101 1", kOk,
     "ALL < GP_MTerm\"CR\""},
    {"CR LF is written", Send(0, "A"), "viWrite 101 A\\r\\n", kOk, "USB0::A <  GP_Send_Str \"A\"", {},
     "unchanged", {Terminate(3)}},
    {"unknown terminator", Terminate(4), "", kError, "ALL < GP_MTerm\"\" Error"},
    {"unknown terminator empties the written one", Send(0, "A"), "viWrite 101 A", kOk,
     "USB0::A <  GP_Send_Str \"A\"", {}, "unchanged", {Terminate(4)}},
    {"clears every session", kDeviceClear, "viClear 101|viClear 102", kOk,
     "USB0::A < GP_SDC|USB0::B < GP_SDC|ALL < DCL", {}, "unchanged", {Send(1, "A")}},
    {"end closes everything although the device is gone", kEndUse,
     "viGpibControlREN 101 2|viClose 101|viClose 102|viClose 1", kError, "ALL < GP_REN Error|ALL < GP_END Error",
     {{"viGpibControlREN", {.status = VI_ERROR_CONN_LOST}}}, "unchanged", {Send(1, "A")}},
    {"block: END only behind the data", Block({0, 10, 255}), kHeader + "|viWrite 101 <00>\\n<FF>", kOk,
     kBlockLog + "\"0,10,255\""},
    {"block: nothing sent when END cannot be held back", Block({1}),
     "viSetAttribute SEND_END 101 0|viSetAttribute SEND_END 101 1", kError,
     "ALL < GP_EOI Error|ALL < GP_EOI|USB0::A <  GP_Send_AsciiBinary_Data \"1\" Error",
     {{"viSetAttribute SEND_END", {.status = VI_ERROR_NSUP_ATTR_STATE}}}},
    {"block: swapped 16-bit values are logged as given", Block({'a', 'b', 0xFF, 0xFF, 'e'}, 1, true),
     kHeader + "|viWrite 101 ba<FF><FF>e", kOk, kBlockLog + "\"25185,-1,101\""},
    {"block: swapped bytes change places in pairs", Block({'a', 'b'}, 0, true), kHeader + "|viWrite 101 ba", kOk,
     kBlockLog + "\"97,98\""},
    {"block: swapped 32-bit values", Block({1, 0, 0, 0x80}, 2, true), kHeader + "|viWrite 101 <80><00><00><01>",
     kOk, kBlockLog + "\"-2147483647\""},
    {"block: 15 values are logged", Block(std::vector<std::uint8_t>(17, 65)),
     kHeader + "|viWrite 101 AAAAAAAAAAAAAAAAA", kOk, kBlockLog + "\"65,65,65,65,65,65,65,65,65,65,65,65,65,65,65\""},
    {"file read", kToFile, kFile + kFileEnd, kOk, "", {{"viReadToFile", {.value = 321}}}, "321"},
    {"file read restores the terminator after a failure", kToFile, kFile + kFileEnd, kTimeOut,
     "USB0::A <  Gp_Recv_ToFile \" Time Out", {{"viReadToFile", {.status = VI_ERROR_TMO}}}, "0"},
    {"file read drops what is beyond the count", kToFile, kFile + "viRead 101 4096|" + kFileEnd, kOk, "",
     {{"viReadToFile", {.status = VI_SUCCESS_MAX_CNT, .value = 1000}}, {"viRead", {.text = "rest"}}}, "1000"},
    {"a terminator that cannot be restored is an error", kToFile, kFile + kFileEnd, kError,
     "USB0::A <  Gp_Recv_ToFile \" Error",
     {{"viSetAttribute TERMCHAR_EN", {}}, {"viSetAttribute TERMCHAR_EN", {.status = VI_ERROR_CONN_LOST}}}, "0"}});
}

TEST(Backend, NiGpib) {
  const int end = NI488_END;
  Check(kNi, {
    {"own address talks", Send(5, "*CLS"), "ibcmd _?A%|ibwrt *CLS\\n", kOk, "5 <  GP_Send_Str \"*CLS\""},
    {"device talks", Receive(5), "ibcmd _?E!|ibrd 256", kOk, "5 >  GP_Receive_Str \"123\"",
     {{"ibrd", {.status = end, .text = "123\r\n"}}}, "123"},
    {"65535 keeps the bus as it is addressed", Receive(65535), "ibrd 256", kOk, "5 >  GP_Receive_Str \"1\"",
     {{"ibrd", {.status = end, .text = "1"}}}, "1", {Send(5, "A")}},
    {"failed addressing sends nothing", Send(5, "A"), "ibcmd _?A%", kError, "5 <  GP_Send_Str \"A\" Error",
     {{"ibcmd", {.status = NI488_ERR, .error = NI488_ENOL}}}},
    {"error and time-out bits together are an error", Receive(5), "ibcmd _?E!|ibrd 256", kError,
     "5 >  GP_Receive_Str \"\" Error", {{"ibrd", {.status = NI488_ERR | NI488_TIMO, .error = NI488_EABO}}}},
    {"time-out bit alone", Send(5, "A"), "ibcmd _?A%|ibwrt A\\n", kTimeOut, "5 <  GP_Send_Str \"A\" Time Out",
     {{"ibwrt", {.status = NI488_TIMO}}}},
    {"board gone", Send(5, "A"), "ibcmd _?A%", kNoBoard, "5 <  GP_Send_Str \"A\" Board does not exit",
     {{"ibcmd", {.status = NI488_ERR, .error = NI488_ENEB}}}},
    {"a long reply is read to its end", Receive(5), "ibcmd _?E!|ibrd 256|ibrd 4096", kOk, "5" + kReceivedLong,
     {{"ibrd", {.text = kLong}}, {"ibrd", {.status = end, .text = "rest"}}}, kLong},
    {"a reply that just fits has no rest", Receive(5), "ibcmd _?E!|ibrd 256", kOk, "5" + kReceivedLong,
     {{"ibrd", {.status = end, .text = kLong}}}, kLong},
    {"poll needs no addressing", Poll(5), "ReadStatusByte 0 5", kOk, "5 < GP_Spoll\"64\"",
     {{"ReadStatusByte", {.value = 64}}}, "64"},
    {"device clear byte", kDeviceClear, "ibcmd <14>", kOk, "ALL < DCL"},
    {"codes are the library's", TimeOutCode(17), "ibtmo 17", kOk, "ALL < GP_Time_Out\"1000s\""},
    {"CR LF", Terminate(3), "ibeos 5130", kOk, "ALL < GP_MTerm\"CRLF\""},
    {"CR", Terminate(2), "ibeos 5133", kOk, "ALL < GP_MTerm\"CR\""},
    {"none", Terminate(0), "ibeos 0", kOk, "ALL < GP_MTerm\"NONE\""},
    {"unknown terminator changes nothing", Send(-1, "A"), "ibwrt A\\n", kOk, "0 <  GP_Send_Str \"A\"", {},
     "unchanged", {Terminate(5)}},
    {"carries no blocks", Block({1}), "", kOk, ""},
    {"reads no files", kToFile, "", kError, "", {}, "99"},
    {"end", kEndUse, "ibsre 0", kOk, "ALL < GP_REN|ALL < GP_END"}});
}

TEST(Backend, Usb488) {
  const std::string open = "UsbOpenDevice 3|UsbSetIFC 53|UsbEnableRemote 53|UsbSetTimeout 53 300|";
  const std::string opened = "ALL < GP_IFC|ALL < GP_REN|ALL < GP_MTerm\"LF\"|ALL < GP_EOI|"
                             "ALL < GP_Time_Out\"300ms\"|";
  const std::string sentB = "3 <  GP_Send_Str \"B\"";
  Check(kUsb, {
    {"opens the device of the call", Send(3, "B"), open + "UsbSendTextData 53 B\\n", kOk, opened + sentB},
    {"an open device stays open", Send(3, "B"), "UsbSendTextData 53 B\\n", kOk, sentB, {}, "unchanged",
     {Send(3, "A")}},
    {"another device closes the first", Send(3, "B"), "UsbCloseDevice 54|" + open + "UsbSendTextData 53 B\\n", kOk,
     opened + sentB, {}, "unchanged", {Send(4, "A")}},
    {"device 0 is opened too", Poll(0),
     "UsbOpenDevice 0|UsbSetIFC 50|UsbEnableRemote 50|UsbSetTimeout 50 300|UsbSTBQuery 50", kOk,
     opened + "0 < GP_Spoll\"16\"", {{"UsbSTBQuery", {.value = 16}}}, "16"},
    {"error and time-out bits together are a time-out", Receive(3), "UsbReceiveTextData 53 256|UsbClearStatus", kTimeOut,
     "3 >  GP_Receive_Str \"\" Time Out",
     {{"UsbReceiveTextData", {.status = USB488_STATUS_ERROR | USB488_STATUS_TIMEOUT}}}, "unchanged",
     {Send(3, "A")}},
    {"a full buffer without line end goes on", Receive(3), "UsbReceiveTextData 53 256|UsbReceiveTextData 53 4096",
     kOk, "3" + kReceivedLong, {{"UsbReceiveTextData", {.text = kLong}}, {"UsbReceiveTextData", {.text = "x\n"}}},
     kLong, {Send(3, "A")}},
    {"time-out waits for a device", TimeOutCode(12), "", kOk, "ALL < GP_Time_Out\"3s\""},
    {"time-out of the open device", TimeOutCode(5), "UsbSetTimeout 53 1", kOk, "ALL < GP_Time_Out\"1ms\"", {},
     "unchanged", {Send(3, "A")}},
    {"clear", kDeviceClear, "UsbDevClear 53", kOk, "ALL < DCL", {}, "unchanged", {Send(3, "A")}},
    {"end", kEndUse, "UsbEnableLocal 53|UsbCloseDevice 53|UsbFinalize", kOk, "ALL < GP_REN|ALL < GP_END", {},
     "unchanged", {Send(3, "A")}}});
}

TEST(Backend, Ieee32m) {
  const std::string talk = "transmit UNT UNL TALK MTA LISTEN 5";
  Check(kKi, {
    {"terminator behind EOI", Send(5, "*CLS"), talk + "|transmit DATA '*CLS' EOI  10", kOk,
     "5 <  GP_Send_Str \"*CLS\""},
    {"without terminator EOI goes with the last character", Send(-1, "*CLS"), "transmit DATA '*CL' EOI DATA 'S'",
     kOk, "0 <  GP_Send_Str \"*CLS\"", {}, "unchanged", {Terminate(0)}},
    {"a quote goes as its byte value", Send(-1, "A 'b'"), "transmit DATA 'A ' 39 'b' 39 '' EOI  10", kOk,
     "0 <  GP_Send_Str \"A 'b'\""},
    {"positive status is a time-out", Send(5, "A"), talk, kTimeOut, "5 <  GP_Send_Str \"A\" Time Out",
     {{"transmit", {.status = 3}}}},
    {"negative status is an error", kInterfaceClear, "transmit IFC", kError, "ALL < GP_IFC Error",
     {{"transmit", {.status = -1}}}},
    {"device talks", Receive(5), "transmit UNT UNL LISTEN MLA TALK 5|receive 256", kOk, "5 >  GP_Receive_Str \"7\"",
     {{"receive", {.text = "7 \r\n"}}}, "7"},
    {"poll", Poll(5), "spoll 5", kOk, "5 < GP_Spoll\"200\"", {{"spoll", {.value = 200}}}, "200"},
    {"short time-outs are 55 ms", TimeOutCode(8), "settimeout 55", kOk, "ALL < GP_Time_Out\"55ms\""},
    {"long time-outs", TimeOutCode(17), "settimeout 1000010", kOk, "ALL < GP_Time_Out\"1000s\""},
    {"no time-out", TimeOutCode(0), "settimeout 0", kOk, "ALL < GP_Time_Out\"NONE\""},
    {"CR LF", Terminate(3), "setinputEOS 10", kOk, "ALL < GP_MTerm\"CRLF\""},
    {"clear", kDeviceClear, "transmit DCL", kOk, "ALL < GP_DCL"},
    {"end", kEndUse, "transmit UNL LISTEN 5 GTL", kOk, "ALL < GP_END", {}, "unchanged", {Send(5, "A")}}});
}

// --- GP_Init -----------------------------------------------------------------------------------------

TEST(Init, CallsStatusAndLog) {
  const std::string log = "ALL < GP_IFC|ALL < GP_REN|ALL < GP_MTerm\"LF\"|ALL < GP_EOI|"
                          "ALL < GP_Time_Out\"300ms\"|GP_INIT";
  const std::string bus = "|ibconfig 7 0|ibsic 9|ibsre 1|ibeos 5130|ibeot 1|ibtmo 10";
  const std::string attributes = "viGpibControlREN 101 1|viSetAttribute TMO 101 300|"
                                 "viSetAttribute TERMCHAR 101 10|viSetAttribute TERMCHAR_EN 101 1";
  const std::string enter = "RegisterGpibGlobalsForThread";
  const std::string enterAgain = enter + "|UnregisterGpibGlobalsForThread";
  const struct {
    InterfaceKind kind;
    std::string options, calls;
    CommStatus status;
    std::string log;
    std::vector<Scripted> script = {};
  } rows[] = {
    {kNi, ",BOARD_NAME=gpib2", enter + "|ibfind GPIB2" + bus, kOk, log},
    {kNi, "", enter + "|ibfind gpib0", kError, "GP_INIT Error",
     {{"ibfind", {.status = NI488_ERR, .error = NI488_EDVR}}}},
    {kNi, "", enter + "|ibfind gpib0", kNoBoard, "GP_INIT Board does not exit",
     {{"ibfind", {.status = NI488_ERR, .error = NI488_ENEB}}}},
    // The five statuses are combined.
    {kNi, "", enter + "|ibfind gpib0" + bus, kTimeOut | kError,
     "ALL < GP_IFC Time Out|ALL < GP_REN|ALL < GP_MTerm\"LF\"|ALL < GP_EOI|ALL < GP_Time_Out\"300ms\" Error|"
     "GP_INIT Time Out", {{"ibsic", {.status = NI488_TIMO}}, {"ibtmo", {.status = NI488_ERR}}}},
    // Registered by someone else; refused.
    {kNi, "", enterAgain + "|" + enter + "|ibfind gpib0" + bus, kOk, log, {{enter, {.value = 1}}}},
    {kNi, "", enterAgain, kError, "NI-488.2 library refuses to report its status to this thread|GP_INIT Error",
     {{enter, {.value = 3}}}},
    {kKi, ",MYADRS=21", "board_present|initialize 21 0|transmit REN|setinputEOS 10|settimeout 330", kOk,
     log.substr(std::string("ALL < GP_IFC|").size())},
    {kKi, "", "board_present", kNoBoard, "GP_INIT Board does not exit", {{"board_present", {.value = 1}}}},
    {kUsb, "", "UsbInitialize", kOk, "GP_INIT"},
    {kUsb, "", "UsbInitialize|UsbClearStatus", kError, "GP_INIT Error",
     {{"UsbInitialize", {.status = USB488_STATUS_ERROR, .error = 1}}}},
    {kTmc, ",USBTMC_DEVNO=1,USBTMC_NAME=A/B", "viOpenDefaultRM|viOpen B|" + attributes, kOk,
     "ALL < GP_REN|ALL < GP_MTerm\"LF\"|GP_INIT"},
    {kTmc, "", "viOpenDefaultRM", kOk, "GP_INIT"},
    // A missing device leaves nothing open.
    {kTmc, ",USBTMC_NAME=A", "viOpenDefaultRM|viOpen A|viClose 1", kError,
     "A does not open: status BFFF0011|GP_INIT Error", {{"viOpen", {.status = VI_ERROR_RSRC_NFOUND}}}},
    // An instrument without remote state is used all the same.
    {kTmc, ",USBTMC_NAME=A", "viOpenDefaultRM|viOpen A|" + attributes, kOk,
     "ALL < GP_REN Error|ALL < GP_MTerm\"LF\"|GP_INIT", {{"viGpibControlREN", {.status = VI_ERROR_NSUP_OPER}}}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.calls);
    CommWorld world;
    FakeLibrary library;
    for (const Scripted& line : row.script) library.Answer(line.call, line.answer);
    const auto backend = MakeBackend(row.kind, world, library);
    EXPECT_EQ(backend->GP_Init("LOG_FILE=comm.log" + row.options, true), row.status);
    EXPECT_EQ(Joined(library.calls), row.calls);
    EXPECT_EQ(Joined(world.Log()), row.log);
  }
}
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

// The library must stop writing into the back-end's variables when the back-end goes.
TEST(NiGpib, UnregistersAtTheEnd) {
  CommWorld world;
  FakeLibrary library;
  {
    NiGpibMdl backend(world.Services(), library.Ni488());
    ASSERT_EQ(backend.GP_Init("", true), kOk);
  }
  EXPECT_EQ(library.calls.back(), "UnregisterGpibGlobalsForThread");
}

TEST(UsbTmc, AnEndlessReplyIsGivenUp) {
  CommWorld world;
  FakeLibrary library;
  UsbTmcMdl backend(world.Services(), library.Visa());
  ASSERT_EQ(backend.GP_Init("USBTMC_NAME=A", true), kOk);
  for (int i = 0; i < 10000; ++i) library.Answer("viRead", {.status = VI_SUCCESS_MAX_CNT, .text = kLong});
  std::string reply = "before";
  EXPECT_EQ(backend.GP_Receive_Str(0, reply), kOverflow);
  EXPECT_EQ(reply, "before");
}

TEST(UsbTmc, AnUnpluggedInstrumentIsNoted) {
  CommWorld world;
  FakeLibrary library;
  UsbTmcMdl backend(world.Services(), library.Visa());
  ASSERT_EQ(backend.GP_Init("USBTMC_NAME=USB0::A", true), kOk);
  library.Answer("viWrite", {.status = VI_ERROR_TMO});
  backend.GP_Send_Str(0, "*CLS");
  EXPECT_FALSE(backend.ConnectionLost(0)) << "a time-out";
  std::string reply;
  library.Answer("viRead", {.status = VI_ERROR_TMO});
  backend.GP_Receive_Str(0, reply);
  EXPECT_FALSE(backend.ConnectionLost(0));
  // A block begins with an attribute: the loss can show anywhere.
  library.Answer("viSetAttribute TMO", {.status = VI_ERROR_CONN_LOST});
  backend.GP_Time_Out(kTimeOut300ms);
  EXPECT_TRUE(backend.ConnectionLost(0));
  EXPECT_EQ(backend.LibraryProblem(), "USB0::A was unplugged: status BFFF00A6");
  EXPECT_FALSE(backend.ConnectionLost(1)) << "another device";
  backend.GP_End();
  EXPECT_TRUE(backend.ConnectionLost(0)) << "until it is opened again";
  ASSERT_EQ(backend.GP_Init("USBTMC_NAME=USB0::A", true), kOk);
  EXPECT_FALSE(backend.ConnectionLost(0));
  EXPECT_EQ(backend.LibraryProblem(), "");
}

TEST(UsbTmc, ASearchThatBreaksOffClosesWhatItOpened) {
  CommWorld world;
  FakeLibrary library;
  library.Answer("viFindRsrc", {.text = "USB0::0x1::0x2::S1::0::INSTR", .value = 3});
  library.Answer("viFindNext", {.status = VI_ERROR_RSRC_NFOUND});
  UsbTmcMdl backend(world.Services(), library.Visa());
  EXPECT_EQ(backend.GP_Find_Devices("X?*INSTR"), 1);
  EXPECT_THAT(backend.Found(), ElementsAre(FoundInstrument{"USB0::0x1::0x2::S1::0::INSTR", "S1"}));
  EXPECT_EQ(Joined(library.calls), "viOpenDefaultRM|viFindRsrc X?*INSTR|viFindNext|viClose 2|viClose 1");
}

TEST(UsbTmc, ASearchKeepsTwentyOne) {
  CommWorld world;
  FakeLibrary library;
  for (int i = 0; i < 30; ++i) library.Answer("viFindNext", {.text = "A::B::C::N::INSTR"});
  library.Answer("viFindRsrc", {.text = "A::B::C::N::INSTR", .value = 30});
  UsbTmcMdl backend(world.Services(), library.Visa());
  EXPECT_EQ(backend.GP_Find_Devices("?*"), 30);
  EXPECT_EQ(backend.Found().size(), 21U);
  // A failing search leaves none of them.
  library.Answer("viOpenDefaultRM", {.status = VI_ERROR_SYSTEM_ERROR});
  EXPECT_EQ(backend.GP_Find_Devices("?*"), 0);
  EXPECT_TRUE(backend.Found().empty());
}

// --- The fatal prompt --------------------------------------------------------------------------------

// Two bits: the prompt names the error, the log the time-out. The value of the option does not matter.
TEST(FatalPrompt, ShowsErrorBeforeTimeOut) {
  CommWorld world;
  FakeLibrary library;
  library.Answer("transmit", {.status = 1});     // REN: time-out
  library.Answer("settimeout", {.status = -1});  // error
  for (int i = 0; i < 3; ++i) world.prompts.Answer(PromptAnswer::No);
  Ieee32mMdl backend(world.Services(), library.Ieee32m());
  EXPECT_EQ(backend.GP_Init("LOG_FILE=comm.log,VIEW_ERR_DIALOG=0", true), kTimeOut | kError);

  ASSERT_EQ(world.prompts.messages.size(), 3U);
  EXPECT_THAT(world.prompts.messages[0].text, HasSubstr("GP_REN\nTime Out\n"));
  const MessageRequest& last = world.prompts.messages[2];
  EXPECT_EQ(last.text, "GP_Init\nError\nアプリケーションを終了しますか?");
  EXPECT_EQ(last.caption, "NI_GPIB");
  EXPECT_EQ(last.buttons, PromptButtons::YesNo);
  EXPECT_EQ(last.escape, PromptAnswer::No);
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
