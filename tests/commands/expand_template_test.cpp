#include "commands/expand_template.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "sequence/channel_tabs.h"

namespace corlune {
namespace {

struct Case {
  const char* before;
  std::int16_t channel;
  std::int16_t step;
  const char* after;
  std::int16_t result;
};

TEST(ExpandTemplate, ReplacesTheFirstPlaceholderOnly) {
  const auto first = std::make_unique<SequenceData>();
  SequenceData& sequence = *first;
  sequence.StepCount = 12;
  sequence.BranchChannel = 3;
  sequence.Steps[0].BranchStep = {7, 5, 0, 256, 9};
  sequence.ModeSettings[0][0] = 0;               // device 0, channel 0: coupling
  sequence.ModeSettings[0][kModeSlots] = 1;      // and range
  sequence.ModeSettings[2][1] = 1;               // device 2, channel 1
  sequence.ModeSettings[2][kModeSlots + 1] = 2;  // no such range
  sequence.Cell(0, 0, kSlotAmplitude).Value = 1.5;
  sequence.Cell(1, 0, kSlotAmplitude).Value = 17;
  const auto second = std::make_unique<SequenceData>(sequence);
  SequenceData& other = *second;
  other.Cell(0, 0, kSlotAmplitude).Value = 0.5;  // rounds to the even 0
  other.Cell(1, 0, kSlotAmplitude).Value = 18;
  const std::vector<ChannelTab> tabs{{0, 0}, {2, 1}};

  const Case cases[] = {
      {"*CLS", 0, 0, "*CLS", 0},
      {"", 0, 0, "", 0},
      {":A $MAXSTEP,1", 0, 0, ":A 12,1", 1},
      {":A $MAXSTE", 0, 0, ":A 12", 1},  // ends before the eighth character
      {"$MAXSTEP $MAXSTEP", 0, 0, "12 $MAXSTEP", 1},
      {":COUP $CURMODE;", 0, 0, ":COUP AC-INT;", 1},
      {":COUP $CURMODE;", 1, 0, ":COUP ACDC-INT;", 1},
      {":COUP $CURMODE;", 2, 0, ":COUP ;", 1},  // no such tab
      {":RANG $CURRANG", 0, 0, ":RANG 200", 1},
      {":RANG $CURRANG", 1, 0, ":RANG ", 1},
      {":FUNC $WAVENUM", 0, 0, ":FUNC ARB1", 1},
      {":FUNC $WAVENUM", 1, 0, ":FUNC ARB16", 1},
      {":STEP $STEPNUM", 0, 255, ":STEP 256", 1},
      {":BRAN $BNHSTP1", 0, 0, ":BRAN 5", 1},
      {":BRAN $BNHSTP3,1", 0, 0, ":BRAN 256,1", 1},
      {":BRAN $BNHSTP0", 0, 256, ":BRAN 0", 1},
      {":BRAN $BNHSTP5", 0, 0, ":BRAN $BNHSTP5", 1},
      {":BRAN $BNHCHNtail", 0, 0, ":BRAN 3tail", 1},
      {":ARB $ARBNUMB", 0, 0, ":ARB $ARBNUMB", 1},
      {"$ $MAXSTEP", 0, 0, "$ $MAXSTEP", 1},  // the first "$" decides
  };
  for (const Case& c : cases) {
    std::string text = c.before;
    EXPECT_EQ(ExpandCommandTemplate(text, c.channel, c.step, sequence, tabs), c.result) << c.before;
    EXPECT_EQ(text, c.after) << c.before << " channel " << c.channel << " step " << c.step;
  }
  const Case waveforms[] = {{"$WAVENUM", 0, 0, "SIN", 1}, {"$WAVENUM", 1, 0, "", 1}};
  for (const Case& c : waveforms) {
    std::string text = c.before;
    ExpandCommandTemplate(text, c.channel, c.step, other, tabs);
    EXPECT_EQ(text, c.after);
  }
}

}  // namespace
}  // namespace corlune
