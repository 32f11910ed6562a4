// What can be taken hold of in the graphs, what dragging makes of it, and the brackets above the steps.
#include "graph/graph_drag.h"

#include "graph/graph_rig.h"

namespace corlune {
namespace {

using testing::GraphRig;
using testing::kAmplitude;
using testing::kEnvelope;
using testing::kFrequency;
using testing::kOffset;
using Kind = DragHandle::Kind;

// A plot of 400 x 200 pixels, 100 a step of 1 s; the whole value axis is `low` to `high`.
struct DragRig : GraphRig {
  explicit DragRig(testing::ShippedContent content, double low, double high) : GraphRig(4) {
    ShowArea(0, content);
    scale = {0, 4000, {low, high}, 0, 0, 400, 200};
  }
  std::optional<DragHandle> At(double x, double y) const {
    return HandleAt(sequence, definition, BuildGraphPicture(sequence, definition, catalogue, {2, axis}), 0,
                    scale, {x, y});
  }
  // Text of the cell after a drag from a place by so many pixels; "" when there is nothing to drag.
  std::string Drag(double x, double y, double dx, double dy, bool fine = false) const {
    const auto handle = At(x, y);
    if (!handle) return {};
    ValueDrag drag(state, definition, sequence, catalogue, *handle, scale);
    drag.Move(dx, dy, fine);
    return drag.Refusal() ? "refused " + drag.Text() : drag.Text();
  }
  AppState state;
  MessageCatalogue catalogue{10000};
  PlotScale scale;
  TimeAxis axis = TimeAxis::Time;
};

TEST(GraphDragTest, TakesHoldOfWhatLiesUnderThePointer) {
  DragRig rig(kEnvelope, -10, 10);  // 10 pixels a volt, 0 V at 100
  rig.Set(0, kSlotAmplitude, 8);
  rig.Set(1, kSlotAmplitude, 4, kModeSweep);
  rig.Set(1, kSlotOffset, 0, kModeKeep);
  rig.SetWaveform(3, kWaveDc);
  rig.Set(2, kSlotAmplitude, 0);
  struct Case {
    double x, y;
    std::optional<DragHandle> expected;
  };
  const auto part = [](Kind kind, int step, int slot, double along) {
    return DragHandle{kind, step, 0, slot, along};
  };
  for (const Case& c : std::vector<Case>{
           {50, 61, part(Kind::HighEdge, 0, kSlotAmplitude, 0.5)},
           {50, 139, part(Kind::LowEdge, 0, kSlotAmplitude, 0.5)},
           {50, 101, part(Kind::Level, 0, kSlotOffset, 0.5)},
           {50, 80, std::nullopt},
           {99, 30, part(Kind::StepEnd, 0, 0, 1)},
           {102, 30, part(Kind::StepEnd, 0, 0, 1)},
           {399, 30, part(Kind::StepEnd, 3, 0, 1)},
           {180, 76, part(Kind::HighEdge, 1, kSlotAmplitude, 0.8)},
           {120, 64, std::nullopt},   // the start of a ramp belongs to the step before
           {150, 100, std::nullopt},  // kept
           {250, 99, part(Kind::Level, 2, kSlotOffset, 0.5)},
           {250, 96, part(Kind::HighEdge, 2, kSlotAmplitude, 0.5)},  // no swing: the edges lie on the middle
           {250, 104, part(Kind::LowEdge, 2, kSlotAmplitude, 0.5)},
           {350, 96, part(Kind::Level, 3, kSlotOffset, 0.5)}}) {
    EXPECT_EQ(rig.At(c.x, c.y), c.expected) << c.x << " " << c.y;
  }
  rig.axis = TimeAxis::Steps;
  rig.scale.AxisEnd = 4;
  EXPECT_EQ(rig.At(99, 30), std::nullopt) << "the axis counts steps";
}

TEST(GraphDragTest, GivesRoundValuesWithinTheBounds) {
  DragRig frequency(kFrequency, 0, 20e6);  // 100 kHz a pixel
  for (int step = 0; step < 4; ++step) frequency.Set(step, kSlotFrequency, 10e6);
  frequency.Set(1, kSlotFrequency, 10e6, kModeSweep);
  DragRig offset(kOffset, -20, 20);  // 0.2 V a pixel
  offset.Set(0, kSlotAmplitude, 12);
  offset.Set(1, kSlotOffset, 0, kModeKeep);
  DragRig shown(kAmplitude, 0, 20);
  shown.sequence.Channels.Loads[0] = {1, 50};
  shown.Set(0, kSlotAmplitude, 4);    // shown as 2
  DragRig level(kFrequency, 0, 200);  // 1 dB a pixel
  level.sequence.Channels.UserUnits[0][kSlotFrequency] = {1, 1, "dB", 20, 0};
  level.definition.UserUnitCapability[0][kSlotFrequency] = 1;
  level.Set(0, kSlotFrequency, 1000);  // 60 dB
  DragRig envelope(kEnvelope, -10, 10);
  envelope.Set(0, kSlotAmplitude, 4);
  struct Case {
    const DragRig& rig;
    double x, y, dx, dy;
    const char* text;
    bool fine = false;
  };
  for (const Case& c :
       std::vector<Case>{{frequency, 50, 100, 0, -7, "10700000"},
                         {frequency, 50, 102, 30, -7, "10700000"},  // held beside the line, and moved along
                         {frequency, 50, 100, 0, -7, "10070000", true},
                         {frequency, 50, 100, 0, -900, "20000000"},
                         {frequency, 50, 100, 0, 900, "0.000001"},
                         {frequency, 150, 100, 0, -10, "12000000"},  // half way: the end moves twice as far
                         {frequency, 150, 100, 0, 0, "10000000"},
                         {offset, 50, 100, 0, -10, "2"},
                         {offset, 50, 100, 0, -25, "refused 5"},  // peak of amplitude and offset
                         {shown, 50, 180, 0, -13, "3.3"},
                         {level, 50, 140, 0, -20, "8E+1"},
                         {envelope, 50, 80, 0, -10, "6"},
                         {envelope, 50, 120, 0, 10, "6"},
                         {envelope, 50, 80, 0, 50, "0"},  // not through the middle
                         {offset, 100, 30, 57, 0, "1.57"},
                         {offset, 100, 30, -5, 0, "0.995", true},
                         {offset, 100, 30, -500, 0, "0.001"}}) {
    EXPECT_EQ(c.rig.Drag(c.x, c.y, c.dx, c.dy, c.fine), c.text) << c.x << " " << c.dx << " " << c.dy;
  }
  ValueDrag refused(offset.state, offset.definition, offset.sequence, offset.catalogue, *offset.At(50, 100),
                    offset.scale);
  refused.Move(0, -25, false);
  EXPECT_EQ(refused.Label().substr(0, 12), "Offset: 5 V\n");
  EXPECT_EQ(refused.Sequence().Cell(0, 0, kSlotOffset).Value, 5);
  EXPECT_EQ(refused.Sequence().Cell(0, 1, kSlotOffset).StartValue, 5) << "the next step begins there";
  refused.Move(0, 25, false);
  EXPECT_TRUE(!refused.Changed() && !refused.Refusal() && refused.Sequence() == offset.sequence);
  offset.sequence.StartStep = 11;
  const DragHandle end = *offset.At(100, 30);
  ValueDrag time(offset.state, offset.definition, offset.sequence, offset.catalogue, end, offset.scale);
  EXPECT_EQ(time.Label(), "Step 11: 1 s");
}

TEST(LoopBracketsTest, ShareTheOutermostRowWhereTheyNestTooDeep) {
  const std::vector<Loop> loops{{0, 1, 3, 0}, {4, 5, 0, 0}, {0, 3, 2, 1}, {0, 6, 4, 2}, {6, 9, 0, 3}};
  EXPECT_EQ(NestLoops(loops), (std::vector<LoopBracket>{{0, 1, 0, 3, 1, false},
                                                        {4, 5, 0, 0, 1, true},
                                                        {0, 3, 1, 2, 1, false},
                                                        {0, 6, 2, 4, 1, false},
                                                        {6, 9, 3, 0, 1, true}}));
  const std::vector<LoopBracket> two = NestLoops(loops, 2);
  EXPECT_EQ(two.back(), (LoopBracket{0, 9, 1, 2, 3, true}));
  EXPECT_EQ(LoopRows(two), 2);
}

}  // namespace
}  // namespace corlune
