// Single waveforms sent, deleted and looked for from a dialog: what the entries say afterwards, whatever goes
// wrong.
#include <filesystem>
#include <gmock/gmock.h>

#include "support/program_rig.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;

const WaveformWatch kGoOn = [](const WaveformStep&) { return true; };

// ARB 1 to 3 with files of 4,096 values.
struct WaveformRig : ProgramRig {
  WaveformRig() {
    Connect();
    for (int number = 1; number <= 3; ++number) Write(number, std::to_string(number));
  }
  void Write(int number, const std::string& value) {
    std::string text;
    for (int i = 0; i < 4096; ++i) text += value + "\n";
    Entry(number).FilePath = folder.Write(std::to_string(number) + ".txt", text);
  }
  ArbFileEntry& Entry(int number) { return entries[static_cast<std::size_t>(number - 1)]; }
  WaveformOutcome Send(const std::vector<int>& numbers, const WaveformWatch& watch = kGoOn) {
    return session->SendWaveforms(entries, numbers, facts, watch);
  }
  // Of ARB 1 to 3: "s" sent, "i" in the instrument.
  std::string Flags() {
    std::string flags;
    for (int number = 1; number <= 3; ++number) {
      flags += Entry(number).Transferred != 0 ? "s" : "-";
      flags += Entry(number).InInstrument != 0 ? "i" : "-";
    }
    return flags;
  }

  ArbEntries entries{};
  WaveFacts facts;
};

TEST(Waveforms, AreSentOneAfterTheOtherUntilThePersonEndsIt) {
  WaveformRig rig;
  std::vector<std::string> steps;
  bool goesOn = true;
  const auto watch = [&](const WaveformStep& step) {
    steps.push_back(std::to_string(step.Number) + ": " + std::to_string(step.BytesDone) + "/" +
                    std::to_string(step.BytesAll) + " " + std::to_string(step.TimeLeft));
    if (steps.size() == 4) {
      // A press inside the wait starts nothing else and ends nothing.
      EXPECT_EQ(rig.Send({1}).End, WaveformEnd::Refused);
      EXPECT_FALSE(rig.session->RequestClose());
      goesOn = false;
    }
    return goesOn;
  };
  const WaveformOutcome outcome = rig.Send({1, 2, 3}, watch);
  EXPECT_EQ(outcome.End, WaveformEnd::Ended);
  EXPECT_EQ(outcome.Done, 2);
  EXPECT_THAT(steps, ElementsAre("1: 0/24576 3000", "1: 0/24576 3000", "2: 8192/24576 2000",
                                 "2: 8192/24576 2000", "3: 16384/24576 1000"));
  EXPECT_EQ(rig.Flags(), "sisi--");
  EXPECT_EQ(rig.Instrument().WaveformPoints(), 8192u);

  // A program that has to end does not wait for the third.
  rig.Write(1, "7");
  EXPECT_TRUE(NeedsTransfer(rig.Entry(1), rig.folder.Path())) << "changed since it was sent";
  int seen = 0;
  const auto ends = [&](const WaveformStep&) { return ++seen != 2 || !rig.session->EndFromOutside(); };
  EXPECT_EQ(rig.Send({1, 3}, ends).End, WaveformEnd::Ended);
  EXPECT_EQ(rig.Flags(), "sisi--");
  rig.ExpectAtRest(OperationMode::Edit, false);
}

TEST(Waveforms, AFileThatCannotBeUsedIsNamedBeforeOrWhenItsTurnComes) {
  WaveformRig rig;
  rig.folder.Write("2.txt", "1\n2\n");
  EXPECT_EQ(rig.Send({1, 2}).End, WaveformEnd::Refused);
  ASSERT_EQ(rig.prompts.said.size(), 1u);
  EXPECT_THAT(rig.prompts.said[0],
              ::testing::EndsWith("2.txt: Values: 2. A waveform has 4096, 8192, 16384 and "
                                  "so on up to 524288."));
  rig.prompts.said.clear();
  EXPECT_EQ(rig.CountSent("1 < :TRACe:DATA"), 0);

  rig.Write(2, "2");
  const auto vanish = [&](const WaveformStep& step) {
    if (step.Done == 1) std::filesystem::remove(rig.Entry(2).FilePath);
    return true;
  };
  const WaveformOutcome outcome = rig.Send({1, 2, 3}, vanish);
  EXPECT_EQ(outcome.End, WaveformEnd::Failed);
  EXPECT_EQ(outcome.Number, 2);
  rig.ExpectPrompts(
      {"exclamation: Cannot access arbitrary waveform data. Please specify a correct file name."});
  EXPECT_EQ(rig.Flags(), "si----");
}

TEST(Waveforms, WhatTheInstrumentHoldsAfterAFailureItIsAsked) {
  struct Row {
    const char* faults;
    const char* message;
    const char* flags;
    bool online;
  };
  const std::string full =
      "critical: The total size of ARB data exceeds the upper bound. Transfer cannot be done.";
  const std::string broken = CommunicationError(1, "critical");
  for (const Row& row :
       {Row{"timeout=1@:TRACe:DATA 2", broken.c_str(), "si----", true},
        Row{"text:-225,\"\"@:SYST:ERR?", full.c_str(), "-i----", true},
        Row{"gone=1", broken.c_str(), "------", false}, Row{"gone=3", broken.c_str(), "------", false}}) {
    SCOPED_TRACE(row.faults);
    WaveformRig rig;
    rig.Faults(row.faults);
    EXPECT_EQ(rig.Send({1, 2, 3}).End, WaveformEnd::Failed);
    rig.ExpectPrompts({row.message});
    EXPECT_EQ(rig.Flags(), row.flags);
    EXPECT_EQ(rig.session->State().Online == 1, row.online);
    EXPECT_TRUE(rig.session->Idle());
  }
}

TEST(Waveforms, AreDeletedAndLookedForInTheInstrumentThatIsNamed) {
  WaveformRig rig;
  rig.Plug("QM2220:QM000002");
  rig.ConnectAll();
  ASSERT_EQ(rig.Send({1, 2, 3}).End, WaveformEnd::Done);
  rig.Forget();
  EXPECT_EQ(rig.session->ClearWaveforms(rig.entries, std::vector{1, 2}, 1, kGoOn).Done, 2);
  rig.ExpectSent({"2 < :TRACe:DELete 1", "2 < :TRACe:DELete 2"});
  EXPECT_EQ(rig.Flags(), "sisisi") << "the other instrument";
  EXPECT_EQ(rig.session->ClearWaveforms(rig.entries, std::vector{1}, 0, kGoOn).Done, 1);
  EXPECT_EQ(rig.Flags(), "--sisi");
  // Somebody else deletes one, and puts another size in the place of the third.
  rig.Faults("text:\"\",0,0@:TRAC:INF? 2;text:\"Arb3\",1,8192@:TRAC:INF? 3");
  EXPECT_EQ(rig.session->AskForWaveforms(rig.entries, std::vector{1, 2, 3}, 0, kGoOn).Done, 3);
  EXPECT_EQ(rig.Flags(), "-----i");
  rig.Faults("gone=1");
  EXPECT_EQ(rig.session->ClearWaveforms(rig.entries, std::vector{3, 4}, 0, kGoOn).Number, 4);
  rig.ExpectPrompts({CommunicationError(1, "critical")});

  // While an instrument may still run, what changes it asks first.
  rig.session->State().MayStillRun = true;
  rig.Forget();
  for (int i = 0; i < 2; ++i) rig.prompts.Answer(PromptAnswer::Cancel);
  EXPECT_EQ(rig.session->ClearWaveforms(rig.entries, std::vector{1}, 1, kGoOn).End, WaveformEnd::Refused);
  EXPECT_EQ(rig.Send({1}).End, WaveformEnd::Refused);
  rig.ExpectPrompts({kAsksToGoOn, kAsksToGoOn});
  rig.ExpectSent({});
  rig.session->State().MayStillRun = false;
}

}  // namespace
}  // namespace corlune::testing
