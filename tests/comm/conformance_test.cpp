// What every interface does, run over all five back-ends; what they differ in stands in interface_rig.h.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interface_rig.h"

namespace corlune::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct EveryInterface : ::testing::TestWithParam<Kind> {
  const Kind& kind = GetParam();
  InterfaceRig rig{kind};
  std::string Status(CommStatus status) const { return "status " + std::to_string(static_cast<int>(status)); }
};
INSTANTIATE_TEST_SUITE_P(Kinds, EveryInterface, ::testing::ValuesIn(Kinds()),
                         [](const auto& row) { return row.param.name; });

TEST_P(EveryInterface, OpensAndEnds) {
  rig.folder.Write("comm.log", "of the last run\r\n");
  EXPECT_EQ(rig.Init(), kOk);
  EXPECT_EQ(rig.TakeLog(), kind.initLog);
  EXPECT_EQ(rig.gp->GP_Send_Str(kind.first, "*ESE 60"), kOk);
  EXPECT_EQ(rig.TakeLog(), kind.useLog + kind.firstName + " <  GP_Send_Str \"*ESE 60\"");
  EXPECT_EQ(rig.bench.At(0).Remote(), kind.wired);
  EXPECT_EQ(rig.gp->GP_Init("LOG_FILE=comm.log", false), kOk) << "again";
  EXPECT_EQ(rig.Init(), kOk);
  EXPECT_EQ(rig.Ask(kind.first), "60");
  EXPECT_EQ(rig.gp->GP_End(), kOk);
  EXPECT_FALSE(rig.bench.At(0).Remote());
  EXPECT_THAT(rig.TakeLog(), ::testing::EndsWith("|ALL < GP_END"));
  EXPECT_EQ(rig.faces.visa.OpenObjects() + rig.devices.OpenDevices(), 0U);
  rig.gp.reset();
  EXPECT_FALSE(rig.faces.ni488.Registered()) << "the variables are gone";
}

TEST_P(EveryInterface, TalksToTheDeviceThatIsAddressed) {
  rig.Use();
  EXPECT_EQ(rig.Ask(kind.first), "60");
  EXPECT_EQ(rig.Ask(kind.second), "36");
  EXPECT_EQ(rig.gp->GP_Send_Str(kind.first, "*ESE?"), kOk);
  EXPECT_EQ(rig.Receive(kind.first), "60");
  EXPECT_EQ(rig.TakeWire(), rig.Wired("A<*ESE?\n^|A>60\n^|B<*ESE?\n^|B>36\n^|A<*ESE?\n^|A>60\n^|"));
  // Without an address it is the last one; the bus stays as it is.
  EXPECT_EQ(rig.gp->GP_Send_Str(kind.second, "*CLS"), kOk);
  EXPECT_EQ(rig.gp->GP_Send_Str(kSameDevice, "*ESE?"), kOk);
  EXPECT_EQ(rig.Receive(kSameDevice), kind.turnsWithoutAddress ? "36" : Status(kError));
  if (!kind.turnsWithoutAddress) {
    EXPECT_EQ(rig.Receive(kind.second), "36");
  }
  EXPECT_EQ(rig.TakeWire(), rig.Wired("B<*CLS\n^|B<*ESE?\n^|B>36\n^|"));
}

// The same operations, the same lines.
TEST_P(EveryInterface, LogsAsTheSimulatedInterfaceDoes) {
  const auto session = [](InterfaceRig& each) {
    each.Use();
    each.Ask(each.kind.first);
    std::int16_t byte = 0;
    EXPECT_EQ(each.gp->GP_Spoll(each.kind.first, byte), kOk);
    for (std::int16_t code = 0; code < 18; ++code) EXPECT_EQ(each.gp->GP_Time_Out(code), kOk);
    for (const std::int16_t code : {0, 1, 2, 3}) EXPECT_EQ(each.gp->GP_MTerm(code), kOk);
    EXPECT_EQ(each.gp->GP_IFC(), kOk);
    EXPECT_EQ(each.gp->GP_DCL(), kOk);
    EXPECT_EQ(each.gp->GP_End(), kOk);
    std::vector<std::string> lines;
    for (std::string line : each.Log()) {
      if (line.starts_with(each.kind.firstName + ' ')) line = "5" + line.substr(each.kind.firstName.size());
      if (line == "ALL < DCL") line = "ALL < GP_DCL";
      if (line == "5 < GP_Spoll\"0\"") line = "5 < GP_Spoll\"Debug Spoll\"";
      // Steps of one kind alone.
      if (!line.ends_with(" < GP_SDC") && line != "ALL < GP_REN") lines.push_back(line);
    }
    return Joined(lines);
  };
  InterfaceRig simulated(Kinds().at(4));
  simulated.folder.Write("replies.ini", "[ADRS5]\n*ESE?=60\nspoll=0\n");
  std::string expected = session(simulated);
  if (kind.kind == InterfaceKind::KiGpib) {  // the board's shortest time-out
    for (std::int16_t code = 1; code <= 8; ++code) {
      const std::string name = "Time_Out\"" + std::string(TimeOutName(code)) + "\"";
      expected.replace(expected.find(name), name.size(), "Time_Out\"55ms\"");
    }
  }
  InterfaceRig again(kind);
  EXPECT_EQ(session(again), expected);
}

TEST_P(EveryInterface, WritesTheTerminatorAndReadsToIt) {
  rig.Use();
  const struct {
    std::int16_t code;
    std::string written;
    std::string ends;  // a read
  } rows[] = {{0, "", ""}, {1, "\n", "\n"}, {2, "\r", "\r"}, {3, "\r\n", "\n"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.code);
    EXPECT_EQ(rig.gp->GP_MTerm(row.code), kOk);
    EXPECT_EQ(rig.gp->GP_Send_Str(kind.first, "*ESE 60"), kOk);
    EXPECT_EQ(rig.TakeWire(), rig.Wired("A<*ESE 60" + row.written + "^|"));
    if (!kind.wired) continue;
    rig.Faults("text=1:a" + (row.ends.empty() ? "\n" : row.ends) + "b");
    EXPECT_EQ(rig.Ask(kind.first), "a");
    const bool more = kind.readsEndAtTerminator && !row.ends.empty();
    EXPECT_EQ(rig.Receive(kind.first), more ? "b" : Status(kind.timedOut));
    rig.Faults("");
    rig.TakeWire();
  }
  // Another code is refused; VISA then writes none, the others keep what they had.
  EXPECT_EQ(rig.gp->GP_MTerm(4), kind.badTerminator);
  EXPECT_EQ(rig.gp->GP_Send_Str(kind.first, "*ESE 60"), kOk);
  EXPECT_EQ(rig.TakeWire(),
            rig.Wired(kind.kind == InterfaceKind::UsbTmc ? "A<*ESE 60^|" : "A<*ESE 60\r\n^|"));
  EXPECT_EQ(rig.Ask(kind.first), "60");
}

TEST_P(EveryInterface, TimesOutAfterTheTimeOfTheCode) {
  rig.Use();
  for (std::int16_t code = 0; code <= 18 && kind.wired; ++code) {
    // NI-488.2 refuses a code that it does not have and keeps the one before.
    const bool refused = kind.kind == InterfaceKind::NiGpib && code == 18;
    if (refused) rig.gp->GP_Time_Out(kTimeOut300ms);
    EXPECT_EQ(rig.gp->GP_Time_Out(code), refused ? kError : kOk);
    const std::uint32_t start = rig.clock.Now();
    EXPECT_EQ(rig.Receive(kind.first), Status(kind.timedOut));
    EXPECT_EQ(rig.clock.Now() - start, kind.timeOuts.at(static_cast<std::size_t>(code))) << code;
  }
}

TEST_P(EveryInterface, PollsAndClears) {
  rig.folder.Write("replies.ini", "[ADRS5]\n*ESE?=60\nspoll=16\n[ADRS6]\nspoll=0\n");
  rig.Use();
  std::int16_t byte = -1;
  rig.gp->GP_Send_Str(kind.first, "*ESE?");
  EXPECT_EQ(rig.gp->GP_Spoll(kind.first, byte), kOk);
  EXPECT_EQ(byte, 16) << "a reply waits";
  EXPECT_EQ(rig.gp->GP_Spoll(kind.second, byte), kOk);
  EXPECT_EQ(byte, 0);
  EXPECT_EQ(rig.TakeWire(), rig.Wired("A<*ESE?\n^|A poll|B poll|"));
  EXPECT_EQ(rig.gp->GP_DCL(), kOk);
  EXPECT_EQ(rig.TakeWire(), kind.deviceClears);
  EXPECT_EQ(rig.gp->GP_IFC(), kOk);
  EXPECT_EQ(rig.Ask(kind.first), "60") << "addressed anew";
}

TEST_P(EveryInterface, GoesOnAfterATimeOut) {
  rig.Use();
  rig.Faults("timeout=2");
  EXPECT_EQ(rig.Ask(kind.first), kind.wired ? Status(kind.timedOut) : "60");
  const std::string suffix = kind.timedOut == kTimeOut ? " Time Out" : " Error";
  EXPECT_THAT(rig.TakeLog(), HasSubstr(kind.wired ? " >  GP_Receive_Str \"\"" + suffix : ""));
  EXPECT_EQ(rig.gp->GP_IFC(), kOk);
  EXPECT_EQ(rig.gp->GP_DCL(), kOk);
  EXPECT_EQ(rig.Ask(kind.first), "60");
  rig.Faults("timeout=1");
  EXPECT_EQ(rig.Ask(kind.first),
            kind.wired ? "sent " + std::to_string(static_cast<int>(kind.timedOut)) : "60");
  EXPECT_EQ(rig.Ask(kind.first), "60");
}

TEST_P(EveryInterface, TakesRepliesOfEveryShape) {
  rig.Use();
  if (!kind.wired) return;  // see simulated_test.cpp
  const std::string full(kReceiveBuffer, 'x');
  const struct {
    std::string fault;
    std::string reply;
    std::uint32_t waits = 0;  // ms
  } rows[] = {{"long=1", std::string(kReceiveBuffer, '9')},
              {"text=1:" + full, full},  // the terminator is the rest
              {"text=1:" + full.substr(1), full.substr(1)},
              {"bare=1", "60"},
              {"empty=1", ""},
              {"text=1: 1, 2  \r", " 1, 2"},
              {"late=1:200", "60", 200},
              {"drop=1", Status(kind.timedOut), kind.timeOuts[kTimeOut300ms]},
              {"binary=1", std::string("\0\1\2\3\4\5\6\7\10\11\13\14\16\17\20", 15)}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.fault);
    rig.Faults(row.fault);
    const std::uint32_t start = rig.clock.Now();
    const std::string reply = rig.Ask(kind.first);
    EXPECT_EQ(row.fault == "binary=1" ? reply.substr(0, 15) : reply, row.reply);
    EXPECT_EQ(rig.clock.Now() - start, row.waits);
    // A new message would interrupt what is left of the reply.
    EXPECT_EQ(rig.gp->GP_Send_Str(kind.first, ":SYST:ERR?"), kOk);
    EXPECT_EQ(rig.Receive(kind.first), "0,\"No error\"");
  }
}

TEST_P(EveryInterface, TranslatesTheStatusesOfItsLibrary) {
  rig.Use();
  for (const auto& [status, meaning] : kind.errors) {
    SCOPED_TRACE(status);
    rig.Faults("error=1:" + status);
    EXPECT_EQ(rig.gp->GP_Send_Str(kind.first, "*CLS"), meaning);
    EXPECT_EQ(rig.Ask(kind.first), "60") << "a failure is not carried over";
  }
}

// Blocks go over USBTMC; the others do nothing, the simulated interface logs them.
TEST_P(EveryInterface, SendsBlocksOfAnySize) {
  const bool carries = kind.kind == InterfaceKind::UsbTmc;
  rig.Use();
  for (const std::size_t size :
       {(std::size_t{1} << 20) - 1, std::size_t{1} << 20, (std::size_t{1} << 20) + 1}) {
    std::vector<std::uint8_t> data(size);
    for (std::size_t i = 0; i < size; ++i) data[i] = static_cast<std::uint8_t>(i * 7);
    const std::string header = ":TRAC:SEQ 0,\"x\",#7" + std::to_string(size);
    EXPECT_EQ(rig.gp->GP_Send_AsciiBinary_Data(header, data, kind.first, 0, false), kOk);
    EXPECT_EQ(rig.Ask(kind.first), "60");
    const std::string sent = carries ? "A<" + header + "|A<(block)^|" : "";
    EXPECT_EQ(rig.TakeWire(), sent + rig.Wired("A<*ESE?\n^|A>60\n^|"));
    if (!carries) continue;
    EXPECT_EQ(rig.block, std::string(data.begin(), data.end()));
    rig.gp->GP_Send_Str(kind.first, ":SYST:ERR?");
    EXPECT_EQ(rig.Receive(kind.first).substr(0, 4), "-230") << "taken as one whole";
    rig.TakeWire();
  }
  std::string values;
  for (int i = 0; i < 15; ++i) values += (i ? "," : "") + std::to_string(i * 7);
  const std::string line = kind.firstName + " <  GP_Send_AsciiBinary_Data \"" + values + "\"";
  EXPECT_EQ(rig.TakeLog().find(line) != std::string::npos, carries || !kind.wired);
}

// Formats, the order of bytes, and what is logged of them.
TEST_P(EveryInterface, SendsBlocksInEveryFormat) {
  rig.Use();
  const struct {
    std::string bytes;
    std::int16_t format;
    bool swap;
    std::string sent, logged;
  } rows[] = {{std::string("\0\n\xFF", 3), 0, false, std::string("\0\n\xFF", 3), "0,10,255"},
              {"ab", 0, true, "ba", "97,98"},
              {"ab\xFF\xFF"
               "e",
               1, true,
               "ba\xFF\xFF"
               "e",
               "25185,-1,101"},
              {std::string("\1\0\0\x80", 4), 2, true, std::string("\x80\0\0\1", 4), "-2147483647"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.logged);
    const std::vector<std::uint8_t> data(row.bytes.begin(), row.bytes.end());
    EXPECT_EQ(rig.gp->GP_Send_AsciiBinary_Data("#H", data, kind.first, row.format, row.swap), kOk);
    EXPECT_EQ(rig.TakeWire(), kind.kind == InterfaceKind::UsbTmc ? "A<#H|A<" + row.sent + "^|" : "");
    const std::string log = rig.TakeLog();
    if (kind.kind == InterfaceKind::UsbTmc || !kind.wired) {
      EXPECT_THAT(log, HasSubstr(" GP_Send_AsciiBinary_Data \"" + row.logged + "\""));
    } else {
      EXPECT_EQ(log, "");
    }
  }
}

TEST_P(EveryInterface, ReadsBlocksIntoFiles) {
  rig.Use();
  const std::string file = rig.folder.File("block");
  const bool carries = kind.kind == InterfaceKind::UsbTmc;
  const struct {
    const char* fault;
    std::uint32_t wanted;
    CommStatus status;
    std::string stored;
  } rows[] = {
      {"text=1:a\nb", 100, kOk, "a\nb\n"}, {"text=1:a\nb", 2, kOk, "a\n"}, {"drop=1", 9, kTimeOut, ""}};
  for (const auto& row : rows) {
    rig.Faults(row.fault);
    rig.gp->GP_Send_Str(kind.first, "*ESE?");
    rig.ClearLog();
    std::uint32_t count = 0;
    EXPECT_EQ(rig.gp->Gp_Recv_ToFile(kind.first, file, row.wanted, count), carries ? row.status : kError);
    EXPECT_EQ(count, carries ? row.stored.size() : 0);
    if (!carries) continue;
    EXPECT_EQ(TempFolder::Read(file), row.stored);
    EXPECT_EQ(rig.bench.At(0).ReplyDelay(), std::nullopt) << "nothing is left to be read";
    EXPECT_EQ(rig.TakeLog(), Failed(row.status) ? kind.firstName + " <  Gp_Recv_ToFile \" Time Out" : "");
    rig.Faults("text=1:a\nb");
    EXPECT_EQ(rig.Ask(kind.first), "a") << "the terminator ends a read again";
    EXPECT_EQ(rig.Receive(kind.first), "b");
  }
}

TEST_P(EveryInterface, OutlivesALostDevice) {
  rig.Use();
  EXPECT_EQ(rig.gp->GP_Send_Str(kind.first, "*ESE?"), kOk);
  rig.Faults("gone");
  EXPECT_EQ(rig.Receive(kind.first), kind.wired ? Status(kind.lostRead) : "60");
  EXPECT_EQ(rig.gp->GP_Send_Str(kind.first, "*CLS"), kind.lostWrite);
  EXPECT_EQ(rig.gp->ConnectionLost(kind.first), kind.kind == InterfaceKind::UsbTmc);
  EXPECT_FALSE(rig.gp->ConnectionLost(kind.second));
  EXPECT_EQ(rig.Ask(kind.second), "36") << "the other one stays";
  if (kind.kind == InterfaceKind::Usb488) rig.gp->GP_Send_Str(kind.first, "A");
  EXPECT_EQ(rig.gp->GP_End(), kind.kind == InterfaceKind::UsbTmc ? kind.lostEnd : kOk);
  EXPECT_EQ(rig.faces.visa.OpenObjects() + rig.devices.OpenDevices(), 0U);
  rig.Faults("");
  rig.bench.At(0).DeviceClear();
  EXPECT_EQ(rig.Init(), kOk);
  EXPECT_EQ(rig.Ask(kind.first), "60");
  EXPECT_FALSE(rig.gp->ConnectionLost(kind.first));

  // In the middle of a block, and one that refuses it: the next command is not taken for the rest.
  for (const std::string fault : {"gone=1", "timeout=2", "error=1:0xBFFF003E"}) {
    rig.Faults(fault);
    const std::vector<std::uint8_t> data(100, 'x');
    const bool carries = kind.kind == InterfaceKind::UsbTmc;
    EXPECT_EQ(rig.gp->GP_Send_AsciiBinary_Data(":TRAC:SEQ 0,\"x\",#3100", data, kind.first, 0, false),
              !carries               ? kOk
              : fault == "timeout=2" ? kTimeOut
                                     : kError);
    if (carries) {
      EXPECT_THAT(rig.TakeLog(), HasSubstr(kind.firstName + " < GP_SDC"));
    }
    rig.Faults("");
    if (fault == "gone=1") rig.bench.At(0).DeviceClear();  // as plugging in does
    EXPECT_EQ(rig.Ask(kind.first), "60") << fault;
  }
}

TEST_P(EveryInterface, IsThereWithoutADevice) {
  rig.Faults("gone");
  const CommStatus opened = kind.kind == InterfaceKind::UsbTmc ? kError : kOk;
  EXPECT_EQ(rig.Init(), opened);
  EXPECT_EQ(rig.faces.visa.OpenObjects() + rig.devices.OpenDevices(), 0U);
  EXPECT_EQ(rig.gp->GP_Send_Str(kind.first, "*CLS"), kind.lostWrite);
  rig.Faults("");
  rig.Use();
  std::int16_t byte = 0;
  EXPECT_EQ(rig.gp->GP_Send_Str(20, "*CLS"), kind.lostWrite) << "nobody at this address";
  EXPECT_EQ(Failed(rig.gp->GP_Spoll(20, byte)), kind.wired && kind.kind != InterfaceKind::UsbTmc);
  EXPECT_EQ(rig.Ask(kind.first), "60");
}

}  // namespace
}  // namespace corlune::testing
