// Defaults, start values, run times and channel tabs.
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sequence/channel_tabs.h"
#include "sequence/defaults.h"
#include "sequence/run_times.h"
#include "sequence/start_values.h"
#include "sequence_samples.h"

namespace corlune {
namespace {

using testing::SampleDefinition;
using testing::SampleState;
using testing::SequenceGenerator;

constexpr unsigned kSeed = 20240612;

TEST(Defaults, ANewStepTakesTheDefinitionsDefaults) {
  const ModelDefinition definition = SampleDefinition();
  SequenceData sequence;
  SequenceGenerator(kSeed).Fill(sequence, 10, 2);
  const SequenceData before = sequence;
  ResetStep(sequence, 4, definition);

  StepRow expected;
  expected.StepTime = 1;
  expected.StopPhase = 90;
  expected.EventBranchStep = expected.StateBranchStep = expected.JumpTo = expected.JumpCount = 1;
  expected.StepTerm = 1;
  expected.BranchStep = {3, 3, 0, 0, 0};
  EXPECT_EQ(sequence.Steps[4], expected);
  for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
    EXPECT_EQ(sequence.Cell(channel, 4, kSlotFrequency), (ParamCell{kModeConst, 1, 1, 1}));
    EXPECT_EQ(sequence.Cell(channel, 4, kSlotArbNumber), (ParamCell{kModeConst, 0, 1, 1}));
    EXPECT_EQ(sequence.Cell(channel, 4, kSlotDuty), (ParamCell{kModeConst, 0, 50, 50}));
    EXPECT_EQ(sequence.Cell(channel, 3, kSlotDuty), before.Cell(channel, 3, kSlotDuty));
    EXPECT_EQ(sequence.Cell(channel, 5, kSlotDuty), before.Cell(channel, 5, kSlotDuty));
  }
  EXPECT_EQ(sequence.StepCount, 10);
}

TEST(Defaults, AnEmptySequenceForgetsAllButTheInstrumentsMemory) {
  const ModelDefinition definition = SampleDefinition();
  SequenceData sequence;
  SequenceGenerator(kSeed).Fill(sequence, 256, 2);
  sequence.SequenceName = "x";
  sequence.Channels.ArbFiles.fill({"a.txt", 1, 1, 1, 8192, 1});
  SequenceData expected;
  for (int slot = 0; slot < MAX_STEPS; ++slot) ResetStep(expected, slot, definition);
  expected.StartStep = 1;
  expected.BranchChannel = 2;
  expected.Channels.ArbFiles.fill({"", 0, 0, 1, 8192, 1});
  ResetSequence(sequence, definition);
  EXPECT_TRUE(sequence == expected);

  ResetChannelTables(sequence, true);
  EXPECT_EQ(sequence.Channels.ArbFiles[9], (ArbFileEntry{"", 0, 0, 0, 8192, 0}));
  ResetChannelTables(sequence, false);
  EXPECT_TRUE(sequence.Channels == ChannelSettings{});
}

TEST(StartValues, FollowTheStepBefore) {
  SequenceData sequence;
  const auto set = [&](int step, std::int16_t mode, double value, std::int16_t unit) {
    sequence.Cell(1, step, 2) = {mode, unit, value, -99};
  };
  set(0, kModeKeep, 3, 0);
  set(1, kModeConst, 5, 0);
  set(2, kModeKeep, 8, 0);
  set(3, kModeKeep, 9, 0);
  set(4, kModeSweep, 20, 0);
  set(5, kModeSweep, 2, 1);  // kHz, behind 20 Hz
  set(6, kModeKeep, 0, 0);   // Hz, behind 2 kHz
  set(7, kModeKeep, 0, 1);
  ComputeStartValues(sequence);
  const double expected[] = {0, 5, 5, 5, 5, 0.02, 2000, 2};
  for (int step = 0; step < 8; ++step)
    EXPECT_EQ(sequence.Cell(1, step, 2).StartValue, expected[step]) << step;
}

TEST(StartValues, AnEditNeedsOnlyTheStepsFromThereOn) {
  SequenceGenerator generate(kSeed);
  SequenceData sequence;
  generate.Fill(sequence, MAX_STEPS, 2);
  ComputeStartValues(sequence);
  for (int edit = 0; edit < 100; ++edit) {
    const int step = generate.Integer(0, 255);
    sequence.Cell(1, step, 3) = {static_cast<std::int16_t>(generate.Integer(0, 2)), generate.Flag(),
                                 generate.Number(), 0};
    ComputeStartValues(sequence, 1, 3, step);
    SequenceData whole = sequence;
    ComputeStartValues(whole);
    ASSERT_TRUE(sequence == whole) << "seed " << kSeed << ", edit " << edit;
  }
}

// The rule as it reads, one addition at a time.
double NaiveTotal(const SequenceData& sequence) {
  double total = 0;
  bool endless = false;
  for (int s = 0; s < sequence.StepCount; ++s) {
    const StepRow& row = sequence.Steps[static_cast<std::size_t>(s)];
    total += row.StepTime * 1000;
    if (row.JumpOn != 1) continue;
    if (row.JumpCountOn == 0) endless = true;
    for (int n = 0; n < row.JumpCount; ++n) {
      for (int t = row.JumpTo; t > 0 && t <= s + 1; ++t)
        total += sequence.Steps[static_cast<std::size_t>(t - 1)].StepTime * 1000;
    }
  }
  return endless ? -1 : total;
}

TEST(RunTimes, AgreeWithTheRuleTakenLiterally) {
  SequenceGenerator generate(kSeed);
  int endless = 0;
  for (int round = 0; round < 200; ++round) {
    SequenceData sequence;
    sequence.StepCount = static_cast<std::int16_t>(generate.Integer(0, 20));
    for (int s = 0; s < sequence.StepCount; ++s) {
      StepRow& row = sequence.Steps[static_cast<std::size_t>(s)];
      row.StepTime = generate.Integer(1, 5000) / 1000.0;
      row.JumpOn = generate.Flag();
      row.JumpCountOn = generate.Integer(0, 9) != 0;
      row.JumpTo = static_cast<std::int16_t>(generate.Integer(-2, 25));
      row.JumpCount = static_cast<std::int16_t>(generate.Integer(-3, 30));
    }
    const double naive = NaiveTotal(sequence);
    const RunTimes times = ComputeRunTimes(sequence, SampleDefinition());
    EXPECT_NEAR(times.Total, naive, 1e-9 * std::fabs(naive)) << "seed " << kSeed << ", round " << round;
    EXPECT_EQ(times.Second, times.Total);
    endless += times.Total == kEndless;
  }
  EXPECT_GT(endless, 0);
  EXPECT_LT(endless, 200);
}

TEST(RunTimes, AreQuickWhateverTheCounts) {
  SequenceData sequence;
  sequence.StepCount = MAX_STEPS;
  for (auto& row : sequence.Steps) {
    row.StepTime = 1;
    row.JumpOn = row.JumpCountOn = row.JumpTo = 1;
    row.JumpCount = 32767;
  }
  EXPECT_EQ(ComputeRunTimes(sequence, SampleDefinition()).Total, 1000.0 * (256 + 32767.0 * 256 * 257 / 2));
}

TEST(RunTimes, OfSingleSteps) {
  struct Row {
    const char* name;
    double stepTime;
    std::int16_t stopOn;
    double stopPhase, frequency;
    std::int16_t unit;
    double expected;
  };
  for (const Row& row :
       {Row{"plain", 1.5, 0, 90, 10, 0, 1500}, Row{"rounded to 0.1 us", 0.00000016, 0, 0, 1, 0, 0.0002},
        Row{"half rounds to even", 0.00000025, 0, 0, 1, 0, 0.0002},
        Row{"a quarter period behind", 1, 1, 90, 10, 0, 1025},
        Row{"a period at least", 0.01, 1, 360, 10, 0, 200}, Row{"kHz", 1, 1, 180, 10, 1, 1000.05},
        Row{"frequency 0", 1, 1, 90, 0, 0, 1000}}) {
    SequenceData sequence;
    sequence.StepCount = 1;
    sequence.Steps[0].StepTime = row.stepTime;
    sequence.Steps[0].StopPhaseOn = row.stopOn;
    sequence.Steps[0].StopPhase = row.stopPhase;
    sequence.Cell(0, 0, kSlotFrequency) = {kModeConst, row.unit, row.frequency, 0};
    EXPECT_EQ(ComputeRunTimes(sequence, SampleDefinition()).Total, row.stepTime * 1000) << row.name;
    EXPECT_DOUBLE_EQ(sequence.Steps[0].StepRunTime, row.expected) << row.name;
  }
}

TEST(ChannelTabs, ListTheFirstTwoChannelsOfEveryDevice) {
  using T = ChannelTab;
  EXPECT_THAT(ChannelTabs(SampleState(2, 3)), ::testing::ElementsAre(T{0, 0}, T{0, 1}, T{1, 0}, T{1, 1}));
  AppState state = SampleState(2, 2);
  state.Instruments[0].ChannelCount = 1;
  EXPECT_THAT(ChannelTabs(state), ::testing::ElementsAre(T{0, 0}, T{1, 0}, T{1, 1}));
  EXPECT_EQ(EditedChannels(state), 1);
  EXPECT_EQ(EditedChannels(SampleState(1, 8)), 2);
}

}  // namespace
}  // namespace corlune
