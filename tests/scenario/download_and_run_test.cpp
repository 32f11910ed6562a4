// A sequence goes the whole way: downloaded, started, followed step by step, ended.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/program_rig.h"

namespace corlune::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

// Compares with a file below tests/data/golden, byte for byte. With CORLUNE_WRITE_GOLDEN=1 in the
// environment the file is written anew instead, and the test fails once to say so.
void ExpectGolden(const std::string& name, const std::string& bytes) {
  const std::string path = std::string(CORLUNE_TEST_DATA) + "/golden/" + name;
  if (std::getenv("CORLUNE_WRITE_GOLDEN") != nullptr) {
    std::ofstream(path, std::ios::binary) << bytes;
    ADD_FAILURE() << path << " was written anew; look at the difference and run again without the variable";
    return;
  }
  const std::string golden = TempFolder::Read(path);
  ASSERT_FALSE(golden.empty()) << path << " is missing";
  if (bytes == golden) return;
  std::size_t at = 0;
  while (at < bytes.size() && at < golden.size() && bytes[at] == golden[at]) ++at;
  const auto lineAt = [at](const std::string& text) {
    const std::size_t begin = at == 0 ? std::string::npos : text.rfind('\n', at - 1);
    return text.substr(begin == std::string::npos ? 0 : begin + 1, 160);
  };
  ADD_FAILURE() << path << " differs at byte " << at << "\n  is:     " << lineAt(bytes)
                << "\n  golden: " << lineAt(golden);
}

// The highlighted rows, each once for as long as it stays.
std::vector<int> RowsFollowed(const EventList& events) {
  std::vector<int> rows;
  for (const std::string& event : events) {
    if (!event.starts_with("highlight ")) continue;
    const int row = std::stoi(event.substr(10));
    if (rows.empty() || rows.back() != row) rows.push_back(row);
  }
  return rows;
}

TEST(DownloadAndRun, AShippedExampleIsFollowedToItsEnd) {
  ProgramRig rig("QM2220:QM000001", {.communicationLog = true});
  rig.Connect("arb-burst.dat");
  ASSERT_TRUE(rig.Download());
  rig.ExpectPrompts({kAsksName});
  rig.ExpectAtRest(OperationMode::Execution, false);
  rig.ExpectSent({"1 < *CLS;:SYST:REM;*ESE 60", "1 < :SOUR1:SEQ:STAT?", "1 < :SOUR1:SEQ:STAT 1",
                  "1 < :STAT:OPER:CH1:COND?",
                  // both waveforms
                  "1 < *CLS", "1 < :TRACe:DATA 1,\"Arb1\",#48200", "1 < (8200 bytes)", "1 < :SYST:ERR?",
                  "1 < *CLS", "1 < :TRACe:DATA 2,\"Arb2\",#48200", "1 < (8200 bytes)", "1 < :SYST:ERR?",
                  // the sequence; memory 0 is not recorded
                  "1 < :TRAC:SEQ 0,\"E2E\",#3909", "1 < (909 bytes)", "1 < :SYST:ERR?",
                  // taken over
                  "1 < *CLS", "1 < :TRIG:COMP", "1 < :STAT:OPER:CH1:COND?", "1 < :OUTP1?;:OUTP2?"});
  EXPECT_EQ(rig.session->State().TotalTime, 3900);
  EXPECT_THAT(rig.events, Contains("total 3900"));

  rig.events.clear();
  rig.Press(Run::Start);
  rig.ExpectPrompts({kAsksOutput});
  rig.ExpectSent(
      {"1 < :OUTP1 ON;:OUTP2 ON", "1 < :SYST:BUSY?", "1 < :TRIG1:SEL:EXEC STAR", "1 < :SOUR1:SEQ:CST?"});
  const std::uint32_t started = rig.clock.Now();
  rig.RunToEnd();
  // The end is seen at the first poll behind it and told 1.5 s later.
  EXPECT_EQ(TicksSince(rig.clock.Now(), started), 3800 + 1500);  // the start command waits 100 ms
  // 200 ms, then ten times 50 ms and 200 ms: a poll every 100 ms meets all of the pauses and few bursts.
  const std::vector<int> rows = RowsFollowed(rig.events);
  EXPECT_EQ(rows.front(), 1);
  EXPECT_EQ(rows.back(), 5);
  EXPECT_THAT(rows, Contains(3));
  EXPECT_TRUE(std::is_sorted(std::find(rows.begin(), rows.end(), 4), rows.end()));
  rig.ExpectPrompts({kSaysEnd});
  rig.ExpectAtRest(OperationMode::Execution, true);
  rig.session->Disconnect();
  ExpectGolden("arb-burst-run.log", rig.Log());
}

TEST(DownloadAndRun, EveryStepIsSeenAtItsTime) {
  ProgramRig rig;
  rig.Connect();
  rig.UseSteps({0.5, 1, 0.3, 0.7});
  rig.DownloadAndStart();
  EXPECT_EQ(rig.session->State().TotalTime, 2500);
  rig.events.clear();
  std::vector<std::pair<int, int>> changes;             // ms since the start, slot
  const std::uint32_t started = rig.clock.Now() - 100;  // the start command waits 100 ms
  int shown = -1;
  while (rig.session->State().RunState == RunState::Running) {
    const int step = rig.session->State().CurrentStep;
    if (step != std::exchange(shown, step)) changes.emplace_back(TicksSince(rig.clock.Now(), started), step);
    ASSERT_LT(changes.size(), 10u);
    rig.Advance(100);
  }
  EXPECT_THAT(changes,
              ElementsAre(std::pair(100, 0), std::pair(500, 1), std::pair(1500, 2), std::pair(1800, 3)));
  rig.ExpectPrompts({kSaysEnd});
  rig.ExpectAtRest(OperationMode::Execution, true);
  EXPECT_EQ(rig.Instrument().CurrentSlot(), -1);

  // Once more without a download: the outputs are on, the clock starts anew.
  rig.Press(Run::Start);
  rig.ExpectPrompts({});
  rig.Advance(100);
  EXPECT_EQ(rig.session->State().ElapsedTime, 100);
  rig.RunToEnd();
  rig.ExpectPrompts({kSaysEnd});
  rig.Press(Run::OutputOff);
  EXPECT_FALSE(rig.Instrument().Output(1));
  EXPECT_FALSE(rig.Instrument().Output(2));
  ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
  rig.ExpectAtRest(OperationMode::Edit, false);
}

// The window program's day: start, open, run, close, and the next start finds everything again.
TEST(DownloadAndRun, FromTheStartOfTheProgramToItsClose) {
  ProgramRig rig("QM2220:QM000001", {.writeSettings = true});
  rig.folder.Write("Corlune.ini", "[EDIT]\r\nEDIT_MODEL=1,QM2220\r\n");
  rig.Restart();
  ASSERT_EQ(rig.session->StartUp({}), StartUpResult::Show);
  EXPECT_EQ(rig.session->State().Online, 1);
  ASSERT_TRUE(rig.session->OpenFile(std::string(CORLUNE_DATA) + "/examples/arb-burst.dat"));
  EXPECT_EQ(rig.session->State().Instruments[0].SerialNo, "QM000001");
  ASSERT_TRUE(rig.Download());
  rig.ExpectPrompts({kAsksName});
  rig.Press(Run::Start);
  rig.ExpectPrompts({kAsksOutput});
  rig.Advance(500);
  EXPECT_FALSE(rig.session->RequestClose());
  rig.Press(Run::Stop);
  rig.Advance(200);
  EXPECT_TRUE(rig.session->RequestClose());
  EXPECT_TRUE(std::filesystem::exists(rig.folder.File("Corlune_QM2220.ini")));
  const auto text = std::make_unique<SequenceData>(rig.session->Sequence());

  rig.Restart();
  ASSERT_EQ(rig.session->StartUp({}), StartUpResult::Show);
  rig.ExpectPrompts({});
  const SequenceData& sequence = rig.session->Sequence();
  EXPECT_EQ(sequence.StepCount, text->StepCount);
  EXPECT_EQ(sequence.Cells, text->Cells);
  // The instrument still holds the waveforms, and says so.
  EXPECT_EQ(sequence.Channels.ArbFiles[0].InInstrument, 1);
  EXPECT_EQ(sequence.Channels.ArbFiles[0].PointCount, 4096);
  ASSERT_TRUE(rig.Download());
  rig.ExpectPrompts({kAsksName});
  rig.Press(Run::Start);
  rig.RunToEnd();
  // The outputs were left on.
  rig.ExpectPrompts({kSaysEnd});
}

// Without any instrument: the response file answers, the log is as with a real one.
TEST(DownloadAndRun, SimulatedInstrument) {
  ProgramOptions options;
  options.communicationLog = true;
  options.responses =
      "[ADRS0]\r\n:SOUR1:SEQ:STAT?=1\r\n:STAT:OPER:CH1:COND?=2\r\n:SYST:ERR?=0,\"No error\"\r\n"
      "spoll=128\r\n:OUTP2?=1\r\n:SOUR1:SEQ:CST?=-1\r\n:SYST:BUSY?=0\r\n";
  ProgramRig rig("", options);
  rig.Connect("quick-tour.dat");
  EXPECT_EQ(rig.session->State().Online, 1);
  ASSERT_TRUE(rig.Download());
  rig.ExpectPrompts({kAsksName});
  EXPECT_TRUE(rig.session->State().OutputOn);
  rig.Press(Run::Start);
  rig.RunToEnd();
  rig.ExpectPrompts({kSaysEnd});
  rig.ExpectAtRest(OperationMode::Execution, true);
  const std::string log = rig.Log();
  EXPECT_TRUE(
      log.starts_with("ALL < GP_REN\r\nALL < GP_MTerm\"LF\"\r\nALL < GP_EOI\r\n"
                      "ALL < GP_Time_Out\"300ms\"\r\nGP_INIT\r\nALL < GP_Time_Out\"3s\"\r\n"))
      << log.substr(0, 300);
  for (const char* line :
       {"0 <  GP_Send_Str \":TRIG:COMP\"\r\n", "0 < GP_Spoll\"Debug Spoll\"\r\n",
        "0 >  GP_Receive_Str \"-1\"\r\n", "0 <  GP_Send_AsciiBinary_Data \"0,0,0,0,0,0,16,0,"}) {
    EXPECT_THAT(log, ::testing::HasSubstr(line));
  }
  // No answer to the step query: asked again, then back to edit mode without a message.
  rig.folder.Write("responses.ini", "[ADRS0]\r\n:OUTP2?=1\r\n");
  rig.Press(Run::Start);
  rig.ExpectPrompts({});
  rig.ExpectAtRest(OperationMode::Edit, false);
  // It holds no sequences.
  EXPECT_FALSE(rig.session->ReadBack());
  rig.ExpectPrompts({"critical: The error was detected while receiving data. "});
  // It is not searched for, and has no address that could change: a file does not connect anew.
  const std::string before = rig.Log();
  ASSERT_TRUE(rig.session->WriteFile(rig.folder.File("a.dat"), true));
  rig.session->State().Instruments[0].Address = 7;
  EXPECT_TRUE(rig.session->OpenFile(rig.folder.File("a.dat")));
  EXPECT_EQ(rig.Log(), before);
  rig.Restart();
  ASSERT_EQ(rig.session->StartUp({}), StartUpResult::Show);
  EXPECT_EQ(rig.session->State().Online, 1);
  EXPECT_THAT(rig.progress.waits, ::testing::IsEmpty());
  rig.ExpectPrompts({kAsksToGoOn, "exclamation: Initialization file doesn't exist"});
}

}  // namespace
}  // namespace corlune::testing
