// StepGraph: the sequence view's drawing as numbers. Which areas are drawn, the lines of their graphs over
// the steps, the marker's place. No toolkit: the window only paints what this computes.
//
// The horizontal axis is measured in axis units: milliseconds from the start of the first step, or, by steps,
// one unit a step. Steps are slots, 0-based. Values are those of the grids: load and user units applied.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "graph/axis_ticks.h"
#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune {

enum class TimeAxis { Time = 0, Steps = 1 };  // order of VS_SELCT4

// Where a step's length comes from. Run times know stop phases, but stand still while the sequence is edited.
enum class StepLength { Entered, RunTime };

struct StepSpan {
  double Start = 0;  // axis units
  double End = 0;
  double StartTime = 0;  // ms
  double EndTime = 0;
  bool operator==(const StepSpan&) const = default;
};

// The used steps. With StepLength::RunTime a step whose run time is not known (0) has its step time.
std::vector<StepSpan> StepSpans(const SequenceData& sequence, const ModelDefinition& definition,
                                TimeAxis axis, StepLength length);
// The step at an axis position, held inside the sequence; nullopt without steps.
std::optional<int> StepAt(const std::vector<StepSpan>& spans, double position);

// Axis position of the run marker: inside the step in proportion to the time since the step was entered, at
// its end once that time is over. Ticks wrap. nullopt for a step that is not there.
std::optional<double> MarkerPosition(const std::vector<StepSpan>& spans, int step, std::uint32_t changedAt,
                                     std::uint32_t tick);

// Items of one view area (FV_AREASET): each is an index into the list VS_SELCT of the same number.
enum AreaItem : std::size_t { kAreaDisplay = 0, kAreaScale = 1, kAreaContent = 2, kAreaTarget = 3 };
using ViewAreaTable = decltype(SequenceData::ViewAreas);

// The stored areas; when none of them is switched on, an arrangement that shows every channel: the contents
// in use, shared evenly between the channels.
ViewAreaTable AreasInEffect(const SequenceData& sequence, const ModelDefinition& definition, int channels);

// One area that is switched on.
struct GraphArea {
  int Number = 0;            // 0..4
  int Content = 0;           // index into VS_SELCT2
  int Target = 0;            // index into VS_SELCT3
  int Channel = -1;          // channel of the sequence, -1: the sequence holds nothing for the target
  double Magnification = 0;  // of the full scale; 0: the scale fits the values
  bool operator==(const GraphArea&) const = default;
};

// `channels`: channels of the edited instrument.
std::vector<GraphArea> GraphAreas(const SequenceData& sequence, const ModelDefinition& definition,
                                  int channels);
// Parameter slots that a content lists (DP_SELCT), in their order; what is no slot of the model is left out.
std::vector<int> ContentSlots(const ModelDefinition& definition, int content);
// Instrument and channel of a target such as "1-CH2", both 1-based.
struct TargetName {
  int Device = 0;
  int Channel = 0;
  bool operator==(const TargetName&) const = default;
};
std::optional<TargetName> ParseTarget(std::string_view text);

struct GraphPoint {
  double X = 0;  // axis units
  double Y = 0;
  bool Begins = false;  // no line leads to this point
  bool operator==(const GraphPoint&) const = default;
};

// One parameter over all steps; steps that do not use it leave a gap.
struct GraphCurve {
  int Slot = 0;
  std::vector<GraphPoint> Points;
  bool operator==(const GraphCurve&) const = default;
};

// The voltages between which the output moves during one step.
struct EnvelopePiece {
  double Start = 0;  // axis units
  double End = 0;
  double LowStart = 0;
  double HighStart = 0;
  double LowEnd = 0;
  double HighEnd = 0;
  bool operator==(const EnvelopePiece&) const = default;
};

struct AreaGraph {
  GraphArea Area;
  std::vector<GraphCurve> Curves;
  // Amplitude and offset in one area, both in volts or in like user units: the envelope takes the amplitude's
  // place.
  std::vector<EnvelopePiece> Envelope;
  ValueRange Range;
  bool operator==(const AreaGraph&) const = default;
};

AreaGraph BuildAreaGraph(const SequenceData& sequence, const ModelDefinition& definition,
                         const GraphArea& area, const std::vector<StepSpan>& spans);

// First and last value of a parameter in a step; nullopt when the step does not use it, or where a
// logarithmic user unit has no value.
struct StepValue {
  double From = 0;
  double To = 0;
  bool operator==(const StepValue&) const = default;
};
// What a cell of `slot` holds at the two ends of its step, in base units.
StepValue StoredValue(const ModelDefinition& definition, int slot, const ParamCell& cell);
// As shown; nullopt when the step does not use the parameter, or where a logarithmic user unit has no value.
std::optional<StepValue> ValueInStep(const SequenceData& sequence, const ModelDefinition& definition,
                                     int channel, int step, int slot);
// The same at a place of the step, 0 at its start, 1 at its end.
std::optional<double> ShownValue(const SequenceData& sequence, const ModelDefinition& definition, int channel,
                                 int step, int slot, double along);

}  // namespace corlune
