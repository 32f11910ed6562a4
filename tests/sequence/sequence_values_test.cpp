// Defaults, start values, run times and channel tabs.
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

// A jump of the second of three steps of 1, 2 and 4 s.
TEST(RunTimes, CountEveryPassOfALoop) {
  struct Row {
    std::int16_t target, counted, count;
    double seconds;  // kEndless for a loop without an end
  };
  for (const Row& row : {Row{1, 1, 3, 16}, Row{2, 1, 1, 9}, Row{3, 1, 5, 7}, Row{0, 1, 5, 7},
                         Row{-1, 1, 5, 7}, Row{1, 1, -2, 7}, Row{1, 0, 3, kEndless}}) {
    SequenceData sequence;
    sequence.StepCount = 3;
    for (const std::size_t slot : {0U, 1U, 2U}) sequence.Steps[slot].StepTime = 1 << slot;
    sequence.Steps[1].JumpOn = 1;
    sequence.Steps[1].JumpTo = row.target;
    sequence.Steps[1].JumpCountOn = row.counted;
    sequence.Steps[1].JumpCount = row.count;
    const RunTimes times = ComputeRunTimes(sequence, SampleDefinition());
    EXPECT_EQ(times.Total, row.seconds == kEndless ? kEndless : row.seconds * 1000)
        << row.target << " x " << row.count;
    EXPECT_EQ(times.Second, times.Total);
  }
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
