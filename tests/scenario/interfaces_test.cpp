// Runs over every interface and over mixes of them: instruments that stand on several at once, loaded over
// USBTMC and run over whatever the set-up says.
#include <filesystem>

#include "scenario/exchange_table.h"
#include "support/program_rig.h"

namespace corlune::testing {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::StartsWith;

constexpr InterfaceKind kNi = InterfaceKind::NiGpib;
constexpr InterfaceKind kKi = InterfaceKind::KiGpib;
constexpr InterfaceKind kUsb = InterfaceKind::Usb488;
constexpr InterfaceKind kTmc = InterfaceKind::UsbTmc;
constexpr const char* kAsksHeld =
    "question: The interface to the instrument carries no sequence data. The instrument will run the "
    "sequence "
    "that it holds. Is it OK?";
constexpr const char* kSaysNoBlocks =
    "exclamation: The interface to the instrument carries neither sequences nor waveforms; they go over "
    "USBTMC.";

// All instruments hold four steps of 0.4 s; the sequence in the editor is another one.
struct Rig : ProgramRig {
  explicit Rig(int instruments) : ProgramRig(Instruments(instruments), Options()) {
    for (std::size_t i = 0; i < bench.Count(); ++i) {
      bench.At(i).SetTrace([this, i](ExchangeKind kind, std::string_view bytes, bool) {
        if (kind != ExchangeKind::Write) return;
        if (bytes.ends_with('\n')) bytes.remove_suffix(1);
        wire.push_back(std::to_string(i + 1) + " < " + std::string(bytes.substr(0, 40)));
      });
    }
    Connect();
    UseSteps({0.4, 0.4, 0.4, 0.4});
    EXPECT_TRUE(Download());
    ExpectPrompts({kAsksName});
    EXPECT_TRUE(session->Control().SetOperationMode(OperationMode::Edit));
    block = TempFolder::Read(folder.File("sendata.bin"));
    for (int i = 2; i <= instruments; ++i) {
      Load(Instrument(i));
      Instrument(i).Write(":TRIG:COMP\n", true);
    }
    clock.Advance(kCompileMs);
    UseSteps({9});
    std::filesystem::remove(folder.File("sendata.bin"));
  }
  static ProgramOptions Options() {
    ProgramOptions options;
    options.allInterfaces = true;
    return options;
  }
  static std::string Instruments(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i) text += (i == 1 ? "" : ",") + ("QM2220:QM00000" + std::to_string(i));
    return text;
  }
  // Through the front door, not compiled.
  void Load(VirtualInstrument& to) const {
    const std::string length = std::to_string(block.size());
    to.Write(":SOUR1:SEQ:STAT 1\n", true);
    to.Write(":TRAC:SEQ 0,\"E2E\",#" + std::to_string(length.size()) + length + block, true);
  }
  // The set-up dialog's OK: the n-th instrument by the n-th kind, at the addresses that the bench gives.
  bool Use(const std::vector<InterfaceKind>& kinds) {
    SystemSettings setup = SettingsOf(session->State());
    setup.InstrumentCount = static_cast<std::int16_t>(kinds.size());
    for (std::size_t i = 0; i < kinds.size(); ++i) {
      InstrumentEntry& entry = setup.Instruments[i] = session->State().Instruments[0];
      entry.Interface = kinds[i] == kTmc ? 0 : kinds[i] == kNi ? 1 : kinds[i] == kKi ? 2 : 3;
      entry.Address = static_cast<std::int32_t>(kinds[i] == kUsb ? i + 1 : i + 2);
      entry.SerialNo = bench.At(i).Identity().serial;
    }
    const bool opened = session->ApplySetup(setup) && session->State().Online == 1;
    wire.clear();
    events.clear();
    return opened;
  }
  void ExpectWire(const EventList& expected) { EXPECT_EQ(std::exchange(wire, {}), expected); }
  EventList ToAll(const std::string& command) const {
    EventList lines;
    for (std::size_t i = 1; i <= bench.Count(); ++i) lines.push_back(std::to_string(i) + " < " + command);
    return lines;
  }

  EventList wire;  // messages to the instruments, whatever the interface
  std::string block;
};

TEST(Interfaces, WithoutBlocksTheInstrumentRunsWhatItHolds) {
  for (const InterfaceKind kind : {kNi, kKi, kUsb}) {
    SCOPED_TRACE(static_cast<int>(kind));
    Rig rig(1);
    const AppState& state = rig.session->State();
    ASSERT_TRUE(rig.Use({kind}));
    rig.prompts.Answer(PromptAnswer::Cancel);
    EXPECT_FALSE(rig.Download());
    rig.ExpectPrompts({kAsksHeld});
    rig.ExpectWire({});

    const int advances = rig.progress.advances;
    EXPECT_TRUE(rig.Download());
    rig.ExpectPrompts({kAsksHeld});
    rig.ExpectWire({"1 < *CLS;:SYST:REM;*ESE 60", "1 < :SOUR1:SEQ:STAT?", "1 < :STAT:OPER:CH1:COND?",
                    "1 < :STAT:OPER:CH1:COND?", "1 < :OUTP1?;:OUTP2?"});
    EXPECT_FALSE(std::filesystem::exists(rig.folder.File("sendata.bin"))) << "nothing was compiled";
    EXPECT_THAT(rig.events, Contains("total -1"));
    EXPECT_EQ(rig.progress.advances, advances);

    // It goes beyond the one step of the editor, and no row stands for what it plays.
    rig.Press(Run::Start);
    rig.ExpectPrompts({kAsksOutput});
    rig.Advance(1000);
    EXPECT_EQ(state.CurrentStep, 2);
    rig.Press(Run::Hold);
    rig.Advance(300);
    EXPECT_EQ(state.RunState, RunState::Held);
    rig.Press(Run::Start);
    rig.Press(Run::Branch);
    rig.RunToEnd();
    rig.ExpectPrompts({kSaysEnd});
    rig.ExpectAtRest(OperationMode::Execution, true);
    EXPECT_THAT(rig.wire, Not(Contains(StartsWith("1 < :TRIG1:SEL:EXEC BRAN"))));
    EXPECT_THAT(rig.events, Not(Contains(StartsWith("highlight"))));

    ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
    rig.wire.clear();
    EXPECT_FALSE(rig.session->ReadBack());
    ArbFileEntry& arb = rig.session->Sequence().Channels.ArbFiles[0];
    EXPECT_EQ(rig.session->Waveforms().TransferOne(arb, 1), ArbTransfer::NotSent);
    EXPECT_EQ(arb.Transferred, 0);
    rig.ExpectPrompts({kSaysNoBlocks, kSaysNoBlocks});
    rig.ExpectWire({});

    // Over USBTMC the sequence of the editor is sent and shown again.
    ASSERT_TRUE(rig.Use({kTmc}));
    EXPECT_TRUE(rig.Download());
    rig.ExpectPrompts({"input: E2E"});
    EXPECT_EQ(state.TotalTime, 9000);
    EXPECT_FALSE(RunsHeldSequence(state));
  }
}

// After a reset what is transferred has to be compiled again; an instrument that holds nothing refuses that.
TEST(Interfaces, WithoutBlocksTheInstrumentTakesOverWhatItHolds) {
  const auto compiles = [](Rig& rig) {
    EXPECT_THAT(rig.wire, IsSupersetOf({"1 < *CLS", "1 < :TRIG:COMP"}));
    return rig.session->State().OperationMode == OperationMode::Execution;
  };
  Rig rig(1);
  ASSERT_TRUE(rig.Use({kNi}));
  rig.Instrument().Write("*RST\n", true);
  EXPECT_TRUE(rig.Download());
  rig.ExpectPrompts({kAsksHeld});
  EXPECT_TRUE(compiles(rig));
  ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));

  rig.Faults("refuse");
  rig.Instrument().Write("*RST\n", true);
  EXPECT_FALSE(rig.Download());
  EXPECT_FALSE(compiles(rig));
  EXPECT_EQ(rig.session->Download().Outcome().End, DownloadEnd::NotCompiled);
  ASSERT_EQ(rig.prompts.said.size(), 2U);
  EXPECT_THAT(std::exchange(rig.prompts.said, {}).back(), StartsWith("critical: "));
}

TEST(Interfaces, MixedKindsRunTogether) {
  for (const std::vector<InterfaceKind>& kinds : {std::vector{kTmc, kTmc, kNi, kUsb}, std::vector{kNi, kTmc},
                                                  std::vector{kUsb, kKi, kTmc, kUsb, kKi}}) {
    SCOPED_TRACE(static_cast<int>(kinds[0]));
    const int count = static_cast<int>(kinds.size());
    Rig rig(count);
    ASSERT_TRUE(rig.Use(kinds));
    rig.UseSteps({0.4, 0.4, 0.4, 0.4});
    ASSERT_TRUE(rig.Download());
    rig.ExpectPrompts({kinds[0] == kTmc ? "input: E2E" : kAsksHeld});
    rig.wire.clear();
    const std::uint32_t start = rig.clock.Now();
    rig.Press(Run::Start);
    rig.ExpectPrompts({kAsksOutput});
    EXPECT_EQ(rig.clock.Now() - start, 100U * static_cast<unsigned>(count)) << "the waits of the commands";
    EXPECT_THAT(rig.wire, IsSupersetOf(rig.ToAll(":TRIG1:SEL:EXEC STAR")));
    for (int i = 1; i <= count; ++i) EXPECT_EQ(rig.Instrument(i).Phase(), RunPhase::Running) << i;
    rig.Press(Run::Hold);
    rig.Advance(200);
    for (int i = 1; i <= count; ++i) EXPECT_EQ(rig.Instrument(i).Phase(), RunPhase::Held) << i;
    rig.Press(Run::Start);
    rig.RunToEnd();
    rig.ExpectPrompts({kSaysEnd});
    rig.ExpectAtRest(OperationMode::Execution, true);

    // One is gone: the others are stopped, whatever they hang on.
    rig.Press(Run::Start);
    rig.Faults("gone", 1);
    rig.Press(Run::Stop);
    rig.Advance(100);
    rig.ExpectPrompts({CommunicationError(2, "critical")});
    for (int i = 1; i <= count; ++i) {
      EXPECT_EQ(rig.Instrument(i).Phase() == RunPhase::Idle, i != 2) << i;
    }
    EXPECT_TRUE(rig.session->State().MayStillRun);
  }
}

TEST(Interfaces, ALostInstrumentEndsTheRunInWords) {
  for (const InterfaceKind kind : {kNi, kKi, kUsb}) {
    SCOPED_TRACE(static_cast<int>(kind));
    Rig rig(1);
    ASSERT_TRUE(rig.Use({kind}));
    ASSERT_TRUE(rig.Download());
    rig.Press(Run::Start);
    rig.ExpectPrompts({kAsksHeld, kAsksOutput});
    rig.Faults("gone");
    rig.Advance(200);
    const std::string lost = CommunicationError(1, "exclamation");
    rig.ExpectPrompts({lost, lost});
    rig.ExpectAtRest(OperationMode::Edit, false);
    EXPECT_TRUE(rig.session->State().MayStillRun);
    rig.Replug();
    rig.Press(Run::Stop);
    EXPECT_FALSE(rig.session->State().MayStillRun);
    EXPECT_EQ(rig.Instrument().Phase(), RunPhase::Idle);
    // Nobody there when the connection is opened.
    rig.Faults("gone");
    EXPECT_FALSE(rig.Reconnect());
    EXPECT_EQ(rig.prompts.said.size(), 1U);
    rig.prompts.said.clear();
  }
}

}  // namespace
}  // namespace corlune::testing
