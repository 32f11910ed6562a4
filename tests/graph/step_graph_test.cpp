// The numbers behind the drawing: steps on the axis, lines, scales, the marker's place.
#include "graph/step_graph.h"

#include <cmath>

#include "graph/graph_rig.h"
#include "graph/plot_lines.h"

namespace corlune {
namespace {

using testing::GraphRig;
using testing::kAmplitude;
using testing::kDuty;
using testing::kEnvelope;
using testing::kFrequency;
using testing::kOffset;

std::vector<StepSpan> TimeSpans(const GraphRig& rig) {
  return StepSpans(rig.sequence, rig.definition, TimeAxis::Time, StepLength::Entered);
}

AreaGraph GraphOf(const GraphRig& rig, int content, int channel = 0, double magnification = 0) {
  return BuildAreaGraph(rig.sequence, rig.definition, {0, content, channel, channel, magnification},
                        TimeSpans(rig));
}

using Points = std::vector<GraphPoint>;

TEST(StepSpansTest, LieEndToEndWithRunTimesOrStepTimes) {
  GraphRig rig(3);
  rig.sequence.Steps[0].StepTime = 0.5;
  rig.sequence.Steps[1].StepTime = 2;
  rig.sequence.Steps[1].StepRunTime = 2250;  // with a stop phase
  EXPECT_EQ(StepSpans(rig.sequence, rig.definition, TimeAxis::Time, StepLength::Entered),
            (std::vector<StepSpan>{{0, 500, 0, 500}, {500, 2500, 500, 2500}, {2500, 3500, 2500, 3500}}));
  EXPECT_EQ(StepSpans(rig.sequence, rig.definition, TimeAxis::Time, StepLength::RunTime),
            (std::vector<StepSpan>{{0, 500, 0, 500}, {500, 2750, 500, 2750}, {2750, 3750, 2750, 3750}}));
  EXPECT_EQ(StepSpans(rig.sequence, rig.definition, TimeAxis::Steps, StepLength::Entered),
            (std::vector<StepSpan>{{0, 1, 0, 500}, {1, 2, 500, 2500}, {2, 3, 2500, 3500}}));
  EXPECT_EQ(StepAt(TimeSpans(rig), 500), 1) << "a border belongs to the step that begins there";
  EXPECT_EQ(StepAt(TimeSpans(rig), 3500), 2);
}

TEST(MarkerPositionTest, RunsThroughTheStepAndStaysAtItsEnd) {
  struct Case {
    int step;
    std::uint32_t changedAt, tick;
    std::optional<double> expected;
  };
  const std::vector<StepSpan> spans{{0, 1000, 0, 1000}, {1000, 5000, 1000, 5000}, {5000, 5000, 5000, 5000}};
  const std::vector<Case> cases{
      {1, 200, 200, 1000},           // just begun
      {1, 200, 1200, 2000},          // a quarter
      {1, 200, 4200, 5000},          // the very end
      {1, 200, 90000, 5000},         // over: stays
      {1, 200, 100, 1000},           // a tick from before the change
      {1, 0xFFFFFF00, 0x2E8, 2000},  // the ticks wrapped
      {2, 0, 0, 5000},               // a step without a length
      {3, 0, 0, std::nullopt},       // the end of a run names no step
      {-1, 0, 0, std::nullopt},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(MarkerPosition(spans, c.step, c.changedAt, c.tick), c.expected) << c.step << " " << c.tick;
  }
  const std::vector<StepSpan> bySteps{{0, 1, 0, 1000}, {1, 2, 1000, 5000}};
  EXPECT_EQ(MarkerPosition(bySteps, 1, 0, 3000), 1.75);
}

TEST(CurveTest, ConstantIsALevelKeepTheLevelBeforeSweepARamp) {
  GraphRig rig(4);
  rig.Set(0, kSlotFrequency, 100);
  rig.Set(1, kSlotFrequency, 300, kModeSweep);
  rig.Set(2, kSlotFrequency, 7777, kModeKeep);
  rig.Set(3, kSlotFrequency, 50);
  const Points expected{{0, 100, true},     {1000, 100, false}, {1000, 100, false}, {2000, 300, false},
                        {2000, 300, false}, {3000, 300, false}, {3000, 50, false},  {4000, 50, false}};
  EXPECT_EQ(GraphOf(rig, kFrequency).Curves.at(0).Points, expected);
}

TEST(CurveTest, LeavesAGapWhereTheWaveformHasNoSuchParameter) {
  GraphRig rig(3);
  rig.SetWaveform(1, kWaveDc);
  for (int step = 0; step < 3; ++step) rig.Set(step, kSlotFrequency, 100);
  EXPECT_EQ(GraphOf(rig, kFrequency).Curves.at(0).Points,
            (Points{{0, 100, true}, {1000, 100, false}, {2000, 100, true}, {3000, 100, false}}));
  EXPECT_TRUE(GraphOf(rig, kDuty).Curves.at(0).Points.empty());  // no square wave at all
}

TEST(CurveTest, ShowsUserUnitsAndLoadsAsTheGridsDo) {
  GraphRig rig(2);
  rig.Set(0, kSlotOffset, 2);
  rig.Set(1, kSlotOffset, 4, kModeSweep);
  rig.sequence.Channels.Loads[0] = {1, 50};  // a matched load halves the voltage
  EXPECT_EQ(ValueInStep(rig.sequence, rig.definition, 0, 1, kSlotOffset), (StepValue{1, 2}));
  rig.sequence.Channels.UserUnits[0][kSlotOffset] = {1, 0, "mV", 1000, 0};
  EXPECT_EQ(GraphOf(rig, kOffset).Curves.at(0).Points,
            (Points{{0, 1000, true}, {1000, 1000, false}, {1000, 1000, false}, {2000, 2000, false}}));
}

TEST(CurveTest, BendsARampInALogarithmicUnitAndSkipsWhatHasNoLogarithm) {
  GraphRig rig(3);
  rig.Set(0, kSlotAmplitude, 0);
  rig.Set(1, kSlotAmplitude, 1);
  rig.Set(2, kSlotAmplitude, 10, kModeSweep);
  rig.sequence.Channels.UserUnits[0][kSlotAmplitude] = {1, 1, "dB", 20, 0};
  const Points points = GraphOf(rig, kAmplitude).Curves.at(0).Points;
  ASSERT_GT(points.size(), 6U);
  EXPECT_EQ(points[0], (GraphPoint{1000, 0, true}));  // nothing for 0 V
  EXPECT_EQ(points.back(), (GraphPoint{3000, 20, false}));
  // Half way through the ramp the output is 5.5 V, 14.8 dB and not 10.
  const auto middle = std::find_if(points.begin(), points.end(), [](const auto& p) { return p.X >= 2500; });
  ASSERT_NE(middle, points.end());
  EXPECT_NEAR(middle->Y, 20 * std::log10(5.5), 1e-9);
}

TEST(EnvelopeTest, LiesAroundTheOffsetAsTheRangeSays) {
  struct Case {
    double range;
    double low, high;
  };
  // Codes: polarity times 3 plus range; PFS swings upwards only, MFS downwards only.
  for (const Case& c : {Case{0, -1, 3}, Case{1, 1, 3}, Case{2, -1, 1}, Case{3, -1, 3}, Case{5, -1, 1}}) {
    GraphRig rig(1);
    rig.Set(0, kSlotPolarityRange, c.range);
    rig.Set(0, kSlotAmplitude, 4);
    rig.Set(0, kSlotOffset, 1);
    const AreaGraph graph = GraphOf(rig, kEnvelope);
    ASSERT_EQ(graph.Envelope.size(), 1U);
    EXPECT_EQ(graph.Envelope[0], (EnvelopePiece{0, 1000, c.low, c.high, c.low, c.high})) << c.range;
    ASSERT_EQ(graph.Curves.size(), 1U);
    EXPECT_EQ(graph.Curves[0].Slot, kSlotOffset);
    EXPECT_LT(graph.Range.Low, c.low);
    EXPECT_GT(graph.Range.High, c.high);
  }
}

TEST(EnvelopeTest, FollowsSweepsAndIsFlatForDc) {
  GraphRig rig(2);
  rig.Set(0, kSlotAmplitude, 2);
  rig.Set(1, kSlotAmplitude, 6, kModeSweep);
  rig.Set(1, kSlotOffset, 1, kModeSweep);
  EXPECT_EQ(GraphOf(rig, kEnvelope).Envelope.at(1), (EnvelopePiece{1000, 2000, -1, 1, -2, 4}));
  rig.SetWaveform(1, kWaveDc);
  EXPECT_EQ(GraphOf(rig, kEnvelope).Envelope.at(1), (EnvelopePiece{1000, 2000, 0, 0, 1, 1}));
}

TEST(EnvelopeTest, GivesWayToTwoLinesWhenAUserUnitMakesTheValuesUnlike) {
  GraphRig rig(1);
  rig.Set(0, kSlotAmplitude, 4);
  auto& units = rig.sequence.Channels.UserUnits[0];
  units[kSlotAmplitude] = {1, 0, "kV", 10, 0};
  units[kSlotOffset] = {1, 0, "kV", 10, 1};
  EXPECT_EQ(GraphOf(rig, kEnvelope).Envelope.at(0), (EnvelopePiece{0, 1000, -10, 30, -10, 30}));
  units[kSlotAmplitude].M = 5;
  const AreaGraph graph = GraphOf(rig, kEnvelope);
  EXPECT_TRUE(graph.Envelope.empty());
  ASSERT_EQ(graph.Curves.size(), 2U);
  EXPECT_EQ(graph.Curves[0].Slot, kSlotAmplitude);
  EXPECT_EQ(graph.Curves[1].Slot, kSlotOffset);
}

TEST(AreasTest, TakeTheStoredChoices) {
  GraphRig rig(1);
  rig.sequence.ViewAreas = {{{0, 0, 0, 0}, {1, 2, kEnvelope, 1}, {1, 0, 3, 2}, {1, 1, 1, 99}, {0, 0, 0, 0}}};
  // x2 on channel 2; the second instrument and a target that the model does not list hold nothing.
  EXPECT_EQ(GraphAreas(rig.sequence, rig.definition, 2),
            (std::vector<GraphArea>{{1, kEnvelope, 1, 1, 2}, {2, 3, 2, -1, 0}, {3, 1, 99, -1, 1}}));
  EXPECT_EQ(GraphAreas(rig.sequence, rig.definition, 1)[0].Channel, -1);  // one channel is set up
}

TEST(AreasTest, ShowEveryChannelWhenNoneIsSwitchedOn) {
  GraphRig rig(2);
  rig.SetWaveform(0, kWaveDc, 1);
  rig.SetWaveform(1, kWaveDc, 1);
  const ViewAreaTable two{{{1, 0, kFrequency, 0}, {1, 0, kAmplitude, 0}, {1, 0, kOffset, 1}, {}, {}}};
  EXPECT_EQ(AreasInEffect(rig.sequence, rig.definition, 2), two);
  const ViewAreaTable one{
      {{1, 0, kFrequency, 0}, {1, 0, kAmplitude, 0}, {1, 0, kOffset, 0}, {1, 0, 3, 0}, {}}};
  EXPECT_EQ(AreasInEffect(rig.sequence, rig.definition, 1), one);
  rig.ShowArea(3, kDuty);
  EXPECT_EQ(AreasInEffect(rig.sequence, rig.definition, 2), rig.sequence.ViewAreas);
}

TEST(AreasTest, ReadTargetsAndLeaveOutForeignSlots) {
  EXPECT_EQ(ParseTarget("1-CH2"), (TargetName{1, 2}));
  for (const char* text : {"", "CH1", "1-CH", "-CH1", "x-CH1", "0-CH1", "1-CH0"}) {
    EXPECT_EQ(ParseTarget(text), std::nullopt) << text;
  }
  ModelDefinition definition = testing::ShippedDefinition();
  definition.DisplaySelections[0].Texts = {"3", "x", "99", "-1", "3", "2"};
  EXPECT_EQ(ContentSlots(definition, 0), (std::vector<int>{3, 2}));
  EXPECT_TRUE(ContentSlots(definition, 99).empty());
}

TEST(RangeTest, MagnifiesTheFullScaleOfTheDefinition) {
  GraphRig rig(1);
  EXPECT_EQ(GraphOf(rig, kOffset, 0, 1).Range, (ValueRange{-10, 10}));
  EXPECT_EQ(GraphOf(rig, kOffset, 0, 5).Range, (ValueRange{-2, 2}));
  EXPECT_EQ(GraphOf(rig, kAmplitude, 0, 2).Range, (ValueRange{0, 10}));
  rig.sequence.Channels.UserUnits[0][kSlotOffset] = {1, 0, "inv", -2, 0};
  EXPECT_EQ(GraphOf(rig, kOffset, 0, 1).Range, (ValueRange{-20, 20}));
}

TEST(RangeTest, FitsEveryValueWithRoomForAScale) {
  for (const auto& [low, high] :
       {std::pair<double, double>(0, 0), {5, 5}, {-5, -5}, {-3, 7}, {1e7, 1e7 + 1e-9}}) {
    const ValueRange range = FitRange(low, high);
    EXPECT_TRUE(range.Low < low && high < range.High) << low << " " << high;
    EXPECT_FALSE(NiceTicks(range, 5).Values.empty()) << low << " " << high;
  }
}

TEST(TicksTest, AreTheFinestNiceRow) {
  struct Case {
    ValueRange range;
    int most;
    std::vector<std::string> texts;
  };
  const std::vector<Case> cases{
      {{0, 10}, 6, {"0", "2", "4", "6", "8", "10"}},
      {{0, 10}, 5, {"0", "5", "10"}},
      {{-1.08, 1.08}, 5, {"-1.0", "-0.5", "0.0", "0.5", "1.0"}},
      {{0, 20e6}, 5, {"0", "5M", "10M", "15M", "20M"}},
      {{0, 20000}, 3, {"0", "10k", "20k"}},
      {{0, 9999}, 5, {"0", "2000", "4000", "6000", "8000"}},
      {{0, 0.0004}, 3, {"0", "200µ", "400µ"}},
      {{99.9, 100.1}, 3, {"99.9", "100.0", "100.1"}},
      {{5, 5}, 5, {}},
      {{0, 10}, 0, {}},
  };
  for (const Case& c : cases) {
    const AxisTicks ticks = NiceTicks(c.range, c.most);
    std::vector<std::string> texts;
    for (const double value : ticks.Values) texts.push_back(TickText(value, ticks));
    EXPECT_EQ(texts, c.texts) << c.range.Low << ".." << c.range.High;
  }
}

TEST(TicksTest, LeaveRoomForTheirTexts) {
  // A text takes 7 pixels a character: ten seconds on 100 pixels have room for "0" to "10" by fives.
  const TickRoom room{10, 8, [](const std::string& text) { return 7.0 * static_cast<double>(text.size()); }};
  EXPECT_EQ(FittingTicks({0, 10}, 10, room).Step, 5);
  EXPECT_EQ(ChoiceTicks({-1, 3}, 3, 9).Values, (std::vector<double>{0, 1, 2}));
}

TEST(VisibleLinesTest, StayNearThePlotAtAnyZoom) {
  GraphCurve curve;
  curve.Points = {{0, 0, true}, {1e7, 1e7, false}, {1e7, -1e9, false}, {2e7, 0, true}, {3e7, 0, false}};
  // A millisecond of ten thousand seconds, half way up the first ramp.
  const PlotScale scale{5e6, 5e6 + 1, {5e6, 5e6 + 1}, 100, 50, 400, 200};
  const auto lines = VisibleLines(curve, scale);
  ASSERT_EQ(lines.size(), 1U);
  ASSERT_EQ(lines[0].size(), 2U);
  for (const PixelPoint& point : lines[0]) {
    EXPECT_GE(point.X, -300 - 1e-3);
    EXPECT_LE(point.X, 900 + 1e-3);
    // The ramp runs from corner to corner of the plot.
    EXPECT_NEAR(50 + 200 - (point.X - 100) / 2, point.Y, 1e-3);
  }
}

TEST(VisibleLinesTest, KeepCornersInOneLineAndGapsApart) {
  GraphCurve curve;
  curve.Points = {{0, 1, true},   {10, 1, false}, {10, 2, false},
                  {20, 2, false}, {30, 0, true},  {40, 0, false}};
  const PlotScale scale{0, 40, {0, 4}, 0, 0, 40, 4};
  EXPECT_EQ(VisibleLines(curve, scale),
            (std::vector<PixelLine>{{{0, 3}, {10, 3}, {10, 2}, {20, 2}}, {{30, 4}, {40, 4}}}));
}

TEST(PlaceLabelsTest, NeverOverlapAndKeepInside) {
  // The wide step's label comes first, then those of narrow steps as far as there is room; the last one is
  // moved in from the edge.
  const std::vector<LabelWish> wishes{{5, 10, 4}, {9, 10, 4}, {50, 10, 60}, {58, 10, 4}, {99, 10, 4}};
  EXPECT_EQ(PlaceLabels(wishes, 0, 100, 2),
            (std::vector<std::optional<double>>{0, std::nullopt, 45, std::nullopt, 90}));
  EXPECT_EQ(PlaceLabels({{-1, 10, 4}, {5, 200, 4}}, 0, 100, 2),
            (std::vector<std::optional<double>>{std::nullopt, std::nullopt}));
}

}  // namespace
}  // namespace corlune
