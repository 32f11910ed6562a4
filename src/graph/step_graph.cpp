#include "graph/step_graph.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "editing/param_rules.h"
#include "graph/output_swing.h"
#include "sequence/units.h"
#include "sequence/user_units.h"

namespace corlune {

namespace {

constexpr double kMsPerSecond = 1000;
constexpr int kLogPoints = 16;  // lines that stand for a ramp in a logarithmic unit

int UsedSteps(const SequenceData& sequence) {
  return std::clamp<int>(sequence.StepCount, 0, MAX_STEPS);
}

std::size_t Index(int value) {
  return static_cast<std::size_t>(value);
}

bool IsNumber(const ModelDefinition& definition, int slot) {
  return ChannelColumn(definition, slot).ValueKind != 2;
}

// Converts stored values of one channel and parameter into those shown.
class Shown {
 public:
  Shown(const SequenceData& sequence, const ModelDefinition& definition, int channel, int slot)
      : units_(sequence, definition),
        channel_(channel),
        slot_(slot),
        converts_(IsNumber(definition, slot)),
        logarithmic_(units_.Active(channel, slot) &&
                     sequence.Channels.UserUnits[Index(channel)][Index(slot)].Form == kLogarithmic) {}

  std::optional<double> operator()(double stored, int step) const {
    if (logarithmic_ && stored <= 0) return std::nullopt;
    const double value = converts_ ? units_.SystemToUser(stored, channel_, step, slot_) : stored;
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
  }
  bool Logarithmic() const { return logarithmic_; }

 private:
  UserUnits units_;
  int channel_;
  int slot_;
  bool converts_;
  bool logarithmic_;
};

GraphCurve BuildCurve(const SequenceData& sequence, const ModelDefinition& definition, int channel, int slot,
                      const std::vector<StepSpan>& spans) {
  GraphCurve curve;
  curve.Slot = slot;
  const Shown shown(sequence, definition, channel, slot);
  bool gap = true;
  for (std::size_t step = 0; step < spans.size(); ++step) {
    const int number = static_cast<int>(step);
    if (!ChannelInUse(definition, sequence, channel, number, slot)) {
      gap = true;
      continue;
    }
    const StepValue stored = StoredValue(definition, slot, sequence.Cell(channel, number, slot));
    const int parts = shown.Logarithmic() && stored.From != stored.To ? kLogPoints : 1;
    for (int part = 0; part <= parts; ++part) {
      const double along = static_cast<double>(part) / parts;
      const double value = part == parts ? stored.To : stored.From + (stored.To - stored.From) * along;
      const std::optional<double> y = shown(value, number);
      if (y) {
        const StepSpan& span = spans[step];
        curve.Points.push_back(
            {part == parts ? span.End : span.Start + (span.End - span.Start) * along, *y, gap});
      }
      gap = !y;
    }
  }
  return curve;
}

bool DrawsEnvelope(const SequenceData& sequence, const ModelDefinition& definition, int channel,
                   const std::vector<int>& slots) {
  const auto lists = [&slots](int slot) {
    return std::find(slots.begin(), slots.end(), slot) != slots.end();
  };
  return slots.size() == 2 && lists(kSlotAmplitude) && lists(kSlotOffset) &&
         SameUnit(sequence, definition, channel);
}

std::vector<EnvelopePiece> BuildEnvelope(const SequenceData& sequence, const ModelDefinition& definition,
                                         int channel, const std::vector<StepSpan>& spans) {
  std::vector<EnvelopePiece> pieces;
  for (std::size_t i = 0; i < spans.size(); ++i) {
    const int step = static_cast<int>(i);
    const auto offset = ValueInStep(sequence, definition, channel, step, kSlotOffset);
    const auto amplitude = ValueInStep(sequence, definition, channel, step, kSlotAmplitude);
    if (!offset && !amplitude) continue;
    const StepValue middle = offset.value_or(StepValue{});
    const StepValue swing = amplitude.value_or(StepValue{});
    const auto [below, above] = SwingParts(sequence, channel, step);
    pieces.push_back({spans[i].Start, spans[i].End, middle.From + below * swing.From,
                      middle.From + above * swing.From, middle.To + below * swing.To,
                      middle.To + above * swing.To});
  }
  return pieces;
}

class RangeFinder {
 public:
  void Take(double value) {
    low_ = any_ ? std::min(low_, value) : value;
    high_ = any_ ? std::max(high_, value) : value;
    any_ = true;
  }
  std::optional<ValueRange> Found() const {
    return any_ ? std::optional(ValueRange{low_, high_}) : std::nullopt;
  }

 private:
  bool any_ = false;
  double low_ = 0;
  double high_ = 0;
};

// What the parameter can be set to by any waveform, as shown.
void TakeFullScale(const SequenceData& sequence, const ModelDefinition& definition, int channel, int slot,
                   RangeFinder& finder) {
  if (!IsNumber(definition, slot)) {
    finder.Take(0);
    const auto last = ChannelColumn(definition, slot).Choices.size();
    finder.Take(static_cast<double>(std::max<std::size_t>(last, 1) - 1));
    return;
  }
  const Shown shown(sequence, definition, channel, slot);
  for (const auto& group : definition.Sequence.Params) {
    const ParamDef& bounds = group[Index(slot)];
    if (!bounds.InUse || bounds.ValueKind != 0) continue;
    if (const auto low = shown(bounds.Minimum, 0)) finder.Take(*low);
    if (const auto high = shown(bounds.Maximum, 0)) finder.Take(*high);
  }
}

std::optional<ValueRange> FullScale(const SequenceData& sequence, const ModelDefinition& definition,
                                    const AreaGraph& graph) {
  RangeFinder finder;
  for (const GraphCurve& curve : graph.Curves) {
    TakeFullScale(sequence, definition, graph.Area.Channel, curve.Slot, finder);
  }
  return finder.Found();
}

ValueRange RangeOf(const SequenceData& sequence, const ModelDefinition& definition, const AreaGraph& graph) {
  if (graph.Area.Magnification > 0) {
    const auto full = FullScale(sequence, definition, graph);
    if (full && full->Low < full->High) {
      return {full->Low / graph.Area.Magnification, full->High / graph.Area.Magnification};
    }
  }
  RangeFinder finder;
  for (const GraphCurve& curve : graph.Curves) {
    for (const GraphPoint& point : curve.Points) finder.Take(point.Y);
  }
  for (const EnvelopePiece& piece : graph.Envelope) {
    for (const double value : {piece.LowStart, piece.HighStart, piece.LowEnd, piece.HighEnd})
      finder.Take(value);
  }
  const auto found = finder.Found();
  return found ? FitRange(found->Low, found->High) : FitRange(0, 0);
}

// "x2" gives 2; everything else, "Auto" among it, 0.
double MagnificationOf(const ModelDefinition& definition, int choice) {
  const auto& texts = definition.ViewSelections[kAreaScale].Texts;
  if (choice < 0 || Index(choice) >= texts.size() || texts[Index(choice)].empty()) return 0;
  const std::string& text = texts[Index(choice)];
  if (text[0] != 'x' && text[0] != 'X') return 0;
  const double factor = ParseNumber(std::string_view(text).substr(1)).value_or(0);
  return factor > 0 ? factor : 0;
}

int ChannelOf(const ModelDefinition& definition, int target, int channels) {
  const auto& texts = definition.ViewSelections[kAreaTarget].Texts;
  if (target < 0 || Index(target) >= texts.size()) return -1;
  const auto name = ParseTarget(texts[Index(target)]);
  // The sequence in the editor is that of the first instrument.
  if (!name || name->Device != 1 || name->Channel > std::min(channels, MAX_CHANNELS)) return -1;
  return name->Channel - 1;
}

bool UsesContent(const SequenceData& sequence, const ModelDefinition& definition, int channel, int content) {
  for (const int slot : ContentSlots(definition, content)) {
    for (int step = 0; step < UsedSteps(sequence); ++step) {
      if (ChannelInUse(definition, sequence, channel, step, slot)) return true;
    }
  }
  return false;
}

int TargetOf(const ModelDefinition& definition, int channel) {
  const auto& texts = definition.ViewSelections[kAreaTarget].Texts;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (ParseTarget(texts[i]) == TargetName{1, channel + 1}) return static_cast<int>(i);
  }
  return -1;
}

ViewAreaTable Arrangement(const SequenceData& sequence, const ModelDefinition& definition, int channels) {
  ViewAreaTable areas{};
  const int shared = std::clamp(channels, 1, MAX_CHANNELS);
  const int contents = static_cast<int>(definition.ViewSelections[kAreaContent].Texts.size());
  std::size_t area = 0;
  for (int channel = 0; channel < std::min(channels, MAX_CHANNELS); ++channel) {
    const int target = TargetOf(definition, channel);
    int left = kViewAreas / shared;
    for (int content = 0; content < contents && target >= 0 && left > 0; ++content) {
      // A content of several parameters repeats what the single ones show.
      if (ContentSlots(definition, content).size() != 1) continue;
      if (!UsesContent(sequence, definition, channel, content)) continue;
      areas[area++] = {1, 0, static_cast<std::int16_t>(content), static_cast<std::int16_t>(target)};
      --left;
    }
  }
  return areas;
}

}  // namespace

StepValue StoredValue(const ModelDefinition& definition, int slot, const ParamCell& cell) {
  const double start = ToBase(SlotColumn(definition, slot), cell.StartValue, cell.UnitIndex);
  const double value = BaseValue(definition, slot, cell);
  switch (cell.ChangeMode) {
    case kModeKeep:
      return {start, start};
    case kModeSweep:
      return {start, value};
    default:
      return {value, value};
  }
}

std::vector<StepSpan> StepSpans(const SequenceData& sequence, const ModelDefinition& definition,
                                TimeAxis axis, StepLength length) {
  std::vector<StepSpan> spans;
  const int count = UsedSteps(sequence);
  spans.reserve(Index(count));
  double time = 0;
  for (int i = 0; i < count; ++i) {
    const StepRow& row = sequence.Steps[Index(i)];
    const bool runTime = length == StepLength::RunTime && row.StepRunTime > 0;
    const double ms = std::max(runTime ? row.StepRunTime : BaseTime(definition, row) * kMsPerSecond, 0.0);
    const double end = time + ms;
    if (axis == TimeAxis::Time) {
      spans.push_back({time, end, time, end});
    } else {
      spans.push_back({static_cast<double>(i), static_cast<double>(i) + 1, time, end});
    }
    time = end;
  }
  return spans;
}

std::optional<int> StepAt(const std::vector<StepSpan>& spans, double position) {
  if (spans.empty()) return std::nullopt;
  const auto next = std::upper_bound(spans.begin(), spans.end(), position,
                                     [](double at, const StepSpan& span) { return at < span.End; });
  const auto found = next == spans.end() ? spans.end() - 1 : next;
  return static_cast<int>(found - spans.begin());
}

std::optional<double> MarkerPosition(const std::vector<StepSpan>& spans, int step, std::uint32_t changedAt,
                                     std::uint32_t tick) {
  if (step < 0 || Index(step) >= spans.size()) return std::nullopt;
  const StepSpan& span = spans[Index(step)];
  const double length = span.EndTime - span.StartTime;
  const auto since = static_cast<std::int32_t>(tick - changedAt);
  const double part = length > 0 ? std::clamp(since / length, 0.0, 1.0) : 1.0;
  return span.Start + (span.End - span.Start) * part;
}

ViewAreaTable AreasInEffect(const SequenceData& sequence, const ModelDefinition& definition, int channels) {
  const bool any = std::any_of(sequence.ViewAreas.begin(), sequence.ViewAreas.end(),
                               [](const auto& area) { return area[kAreaDisplay] != 0; });
  return any ? sequence.ViewAreas : Arrangement(sequence, definition, channels);
}

std::vector<GraphArea> GraphAreas(const SequenceData& sequence, const ModelDefinition& definition,
                                  int channels) {
  std::vector<GraphArea> areas;
  const ViewAreaTable table = AreasInEffect(sequence, definition, channels);
  for (std::size_t i = 0; i < table.size(); ++i) {
    const auto& items = table[i];
    if (items[kAreaDisplay] == 0) continue;
    areas.push_back({static_cast<int>(i), items[kAreaContent], items[kAreaTarget],
                     ChannelOf(definition, items[kAreaTarget], channels),
                     MagnificationOf(definition, items[kAreaScale])});
  }
  return areas;
}

std::vector<int> ContentSlots(const ModelDefinition& definition, int content) {
  std::vector<int> slots;
  if (content < 0 || Index(content) >= definition.DisplaySelections.size()) return slots;
  for (const std::string& text : definition.DisplaySelections[Index(content)].Texts) {
    const int slot = ParseInt16(text).value_or(-1);
    if (slot < 0 || slot >= ChannelParams(definition)) continue;
    if (std::find(slots.begin(), slots.end(), slot) == slots.end()) slots.push_back(slot);
  }
  return slots;
}

std::optional<TargetName> ParseTarget(std::string_view text) {
  const std::size_t dash = text.find('-');
  if (dash == std::string_view::npos) return std::nullopt;
  const std::size_t digits = text.find_first_of("0123456789", dash + 1);
  if (digits == std::string_view::npos) return std::nullopt;
  const auto device = ParseInt16(text.substr(0, dash));
  const auto channel = ParseInt16(text.substr(digits));
  if (!device || !channel || *device < 1 || *channel < 1) return std::nullopt;
  return TargetName{*device, *channel};
}

std::optional<StepValue> ValueInStep(const SequenceData& sequence, const ModelDefinition& definition,
                                     int channel, int step, int slot) {
  const auto from = ShownValue(sequence, definition, channel, step, slot, 0);
  const auto to = ShownValue(sequence, definition, channel, step, slot, 1);
  if (!from || !to) return std::nullopt;
  return StepValue{*from, *to};
}

std::optional<double> ShownValue(const SequenceData& sequence, const ModelDefinition& definition, int channel,
                                 int step, int slot, double along) {
  if (!ChannelInUse(definition, sequence, channel, step, slot)) return std::nullopt;
  const StepValue stored = StoredValue(definition, slot, sequence.Cell(channel, step, slot));
  const double value = along == 1 ? stored.To : stored.From + (stored.To - stored.From) * along;
  return Shown(sequence, definition, channel, slot)(value, step);
}

AreaGraph BuildAreaGraph(const SequenceData& sequence, const ModelDefinition& definition,
                         const GraphArea& area, const std::vector<StepSpan>& spans) {
  AreaGraph graph;
  graph.Area = area;
  if (area.Channel >= 0) {
    const std::vector<int> slots = ContentSlots(definition, area.Content);
    const bool envelope = DrawsEnvelope(sequence, definition, area.Channel, slots);
    if (envelope) graph.Envelope = BuildEnvelope(sequence, definition, area.Channel, spans);
    for (const int slot : slots) {
      if (envelope && slot == kSlotAmplitude) continue;
      graph.Curves.push_back(BuildCurve(sequence, definition, area.Channel, slot, spans));
    }
  }
  graph.Range = RangeOf(sequence, definition, graph);
  return graph;
}

}  // namespace corlune
