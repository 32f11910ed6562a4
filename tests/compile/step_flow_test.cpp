#include "compile/step_flow.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace corlune {
namespace {

struct FlowCase {
  const char* what;
  std::function<void(SequenceData&)> edit;
  std::vector<int> numbers;  // of the reachable steps
};

std::vector<int> Numbers(const StepFlow& flow) {
  std::vector<int> numbers;
  for (int slot = 0; slot < MAX_STEPS; ++slot) {
    if (flow.Reachable[static_cast<std::size_t>(slot)]) numbers.push_back(slot + 1);
  }
  return numbers;
}

std::vector<int> AllNumbers() {
  std::vector<int> all(MAX_STEPS);
  std::iota(all.begin(), all.end(), 1);
  return all;
}

void Jump(StepRow& row, int to, bool counted, int count) {
  row.JumpOn = 1;
  row.JumpTo = static_cast<std::int16_t>(to);
  row.JumpCountOn = counted ? 1 : 0;
  row.JumpCount = static_cast<std::int16_t>(count);
}

TEST(StepFlow, ReachableSteps) {
  // clang-format off
  const FlowCase cases[] = {
      {"straight on to the last used step", [](SequenceData&) {}, {1, 2, 3, 4, 5}},
      {"no steps", [](SequenceData& s) { s.StepCount = 0; }, {}},
      {"start step", [](SequenceData& s) { s.Common.StartStepNo = 4; }, {4, 5}},
      {"start step without a step", [](SequenceData& s) { s.Common.StartStepNo = 6; }, {}},
      {"terminal", [](SequenceData& s) { s.Steps[1].StepTerm = 1; }, {1, 2}},
      {"endless jump does not go on", [](SequenceData& s) { Jump(s.Steps[1], 1, false, 0); }, {1, 2}},
      {"counted jump goes on", [](SequenceData& s) { Jump(s.Steps[1], 5, true, 2); }, {1, 2, 3, 4, 5}},
      {"counted jump, then the end", [](SequenceData& s) { Jump(s.Steps[1], 4, true, 2);
       s.Steps[1].StepTerm = 1; s.Steps[3].StepTerm = 1; }, {1, 2, 4}},
      {"jump counted 0 times", [](SequenceData& s) { Jump(s.Steps[1], 5, true, 0); s.Steps[2].StepTerm = 1;
       }, {1, 2, 3}},
      {"jump to itself", [](SequenceData& s) { Jump(s.Steps[0], 1, false, 0); }, {1}},
      {"jump behind the last step", [](SequenceData& s) { Jump(s.Steps[0], 6, false, 0); }, {1}},
      {"branches", [](SequenceData& s) { for (StepRow& row : s.Steps) row.StepTerm = 1;
       s.Steps[0].EventBranchOn = 1; s.Steps[0].EventBranchStep = 3; s.Steps[2].StateBranchOn = 1;
       s.Steps[2].StateBranchStep = 5; s.Steps[4].EventBranchStep = 2; }, {1, 3, 5}},
      {"branch-area destinations", [](SequenceData& s) { for (StepRow& row : s.Steps) row.StepTerm = 1;
       s.Steps[0].BranchStep = {0, 0, 0, 0, 4}; }, {1, 4}},
      {"all 256 steps", [](SequenceData& s) { s.StepCount = 256; }, AllNumbers()},
  };
  // clang-format on
  for (const FlowCase& c : cases) {
    auto sequence = std::make_unique<SequenceData>();
    sequence->StepCount = 5;
    c.edit(*sequence);
    EXPECT_EQ(Numbers(WalkSteps(*sequence, 2)), c.numbers) << c.what;
  }
}

TEST(StepFlow, UseOfTheReachableStepsByChannel) {
  auto sequence = std::make_unique<SequenceData>();
  SequenceData& s = *sequence;
  s.StepCount = 6;
  s.Steps[4].StepTerm = 1;  // step 6 is out of reach
  const double first[] = {kWaveSine, kWaveSine, kWaveDc, kWaveUser, kWaveUser, kWaveNoise};
  const double second[] = {kWaveSquare, kWaveNoise, kWaveSine, kWaveSquare, kWaveUser, kWaveUser};
  for (int slot = 0; slot < 6; ++slot) {
    s.Cell(0, slot, kSlotWaveform).Value = first[slot];
    s.Cell(1, slot, kSlotWaveform).Value = second[slot];
  }
  s.Cell(0, 3, kSlotArbNumber).Value = 1;
  s.Cell(0, 4, kSlotArbNumber).Value = 128;
  s.Cell(1, 5, kSlotArbNumber).Value = 5;
  s.Cell(0, 1, kSlotDuty).ChangeMode = kModeSweep;  // of a sine, which has no duty
  s.Cell(1, 3, kSlotDuty).ChangeMode = kModeSweep;

  const StepFlow flow = WalkSteps(s, 2);
  ChannelUse one;
  one.Arbs[0] = one.Arbs[127] = true;
  one.BuiltInWaveforms = 1;
  EXPECT_EQ(flow.Channels[0], one);
  ChannelUse two;
  two.ArbWithoutNumber = true;
  two.BuiltInWaveforms = 3;
  two.WorkArea = true;
  EXPECT_EQ(flow.Channels[1], two);
  EXPECT_EQ(WalkSteps(s, 1).Channels[1], ChannelUse{});

  const std::string text = UseStepText(flow, s, 2);
  EXPECT_EQ(text.substr(0, 24), "Use Flag\r\n1,1,0\r\n2,0,0\r\n");
  const std::string tail = "128,1,0\r\nStep No,\r\n1,0,0\r\n2,0,0\r\n3,0,0\r\n4,1,0\r\n5,128,0\r\n";
  ASSERT_GT(text.size(), tail.size());
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

TEST(StepFlow, ArbNumbers) {
  const std::pair<double, int> cases[] = {{0, 0},   {1, 1},       {128, 128}, {129, 0}, {-1, 0},
                                          {1.5, 2}, {128.4, 128}, {1e300, 0}, {0.5, 0}};
  for (const auto& [value, number] : cases) {
    ParamCell cell;
    cell.Value = value;
    EXPECT_EQ(ArbNumberOf(cell), number) << value;
  }
}

}  // namespace
}  // namespace corlune
