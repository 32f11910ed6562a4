#include "graph/graph_drag.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/numbers.h"
#include "editing/param_rules.h"
#include "graph/output_swing.h"
#include "sequence/start_values.h"
#include "sequence/units.h"
#include "sequence/user_units.h"

namespace corlune {

namespace {

using Kind = DragHandle::Kind;

constexpr double kMsPerSecond = 1000;
constexpr double kLeastAlong = 0.5;      // a ramp is held by its second half
constexpr double kFinestTime = 0.00001;  // of a typed step time, in the unit of its column
constexpr const char* kTimeFormat = "0.#####";

struct Candidate {
  DragHandle Handle;
  double Distance = 0;  // pixels
  bool Middle = false;  // of the envelope
};

// What lies at one step of an area.
class HandleFinder {
 public:
  HandleFinder(const SequenceData& sequence, const ModelDefinition& definition, const AreaGraph& graph,
               const StepSpan& span, int step, const PlotScale& scale, PixelPoint place)
      : sequence_(sequence),
        definition_(definition),
        graph_(graph),
        step_(step),
        scale_(scale),
        place_(place),
        width_(std::max(scale.XOf(span.End) - scale.XOf(span.Start), 1.0)),
        along_(std::clamp((place.X - scale.XOf(span.Start)) / width_, 0.0, 1.0)) {}

  std::optional<DragHandle> Find() {
    for (const GraphCurve& curve : graph_.Curves) {
      if (const auto shown = Shown(curve.Slot)) {
        Add(Kind::Level, curve.Slot, [&](double along) { return ShownAt(curve.Slot, along); });
      }
    }
    if (!graph_.Envelope.empty() && Shown(kSlotAmplitude)) {
      const auto [below, above] = SwingParts(sequence_, Channel(), step_);
      if (above != 0) AddEdge(Kind::HighEdge, above);
      if (below != 0) AddEdge(Kind::LowEdge, below);
    }
    return Nearest();
  }

 private:
  int Channel() const { return graph_.Area.Channel; }
  std::optional<double> ShownAt(int slot, double along) const {
    return ShownValue(sequence_, definition_, Channel(), step_, slot, along);
  }

  // The parameter is a number of this step's own, and the place is one where it can be held.
  std::optional<double> Shown(int slot) const {
    if (ChannelColumn(definition_, slot).ValueKind == 2) return std::nullopt;
    const auto mode = sequence_.Cell(Channel(), step_, slot).ChangeMode;
    if (mode == kModeKeep || (mode == kModeSweep && along_ < kLeastAlong)) return std::nullopt;
    return ShownAt(slot, along_);
  }

  void AddEdge(Kind kind, double part) {
    Add(kind, kSlotAmplitude, [this, part](double along) -> std::optional<double> {
      const auto swing = ShownAt(kSlotAmplitude, along);
      if (!swing) return std::nullopt;
      return ShownAt(kSlotOffset, along).value_or(0) + part * *swing;
    });
  }

  template <typename ValueAt>
  void Add(Kind kind, int slot, const ValueAt& valueAt) {
    const auto here = valueAt(along_);
    const auto from = valueAt(0);
    const auto to = valueAt(1);
    if (!here) return;
    const double rise = from && to ? scale_.YOf(*to) - scale_.YOf(*from) : 0;
    const double distance = std::abs(place_.Y - scale_.YOf(*here)) * width_ / std::hypot(width_, rise);
    if (distance > kLineReach) return;
    const bool middle = kind == Kind::Level && slot == kSlotOffset && !graph_.Envelope.empty();
    found_.push_back({{kind, step_, Channel(), slot, along_}, distance, middle});
    (kind == Kind::LowEdge ? low_ : other_) = scale_.YOf(*here);
  }

  // Without a swing the edges lie on the middle: the outer half of the reach is theirs, above and below.
  double Rank(const Candidate& candidate) const {
    const bool outer = candidate.Distance > kLineReach / 2;
    if (candidate.Middle) return candidate.Distance + (outer ? 1 : -1);
    const bool wrongSide = (candidate.Handle.Part == Kind::LowEdge && place_.Y < low_) ||
                           (candidate.Handle.Part == Kind::HighEdge && place_.Y > other_);
    return candidate.Distance + (wrongSide ? 0.5 : 0);
  }

  std::optional<DragHandle> Nearest() const {
    const auto nearest =
        std::min_element(found_.begin(), found_.end(),
                         [this](const Candidate& a, const Candidate& b) { return Rank(a) < Rank(b); });
    return nearest == found_.end() ? std::nullopt : std::optional(nearest->Handle);
  }

  const SequenceData& sequence_;
  const ModelDefinition& definition_;
  const AreaGraph& graph_;
  int step_;
  const PlotScale& scale_;
  PixelPoint place_;
  double width_;  // of the step
  double along_;
  std::vector<Candidate> found_;
  double low_ = 0;  // y of the low edge
  double other_ = 0;
};

// The step whose end is within reach; narrow steps leave room for their levels.
std::optional<int> EndAt(const GraphPicture& picture, const PlotScale& scale, double x, int step) {
  const auto width = [&](int at) {
    const StepSpan& span = picture.Spans[static_cast<std::size_t>(at)];
    return scale.XOf(span.End) - scale.XOf(span.Start);
  };
  const int last = static_cast<int>(picture.Spans.size()) - 1;
  for (const int at : {step, step - 1}) {
    if (at < 0) continue;
    const double narrow = std::min(width(at), at < last ? width(at + 1) : width(at));
    const double end = scale.XOf(picture.Spans[static_cast<std::size_t>(at)].End);
    if (std::abs(end - x) <= std::clamp(narrow / 4, 1.0, kEndReach)) return at;
  }
  return std::nullopt;
}

// The greatest of 1, 2 and 5 times a power of ten that is not above `limit`.
double RoundStep(double limit) {
  const double power = std::pow(10, std::floor(std::log10(limit)));
  const double times = limit / power;
  return power * (times >= 5 ? 5 : times >= 2 ? 2 : 1);
}

double Snapped(double value, double step) {
  return step > 0 && std::isfinite(step) ? std::round(value / step) * step : value;
}

// What the last place of a display pattern is worth; 0 where the exponent decides.
double LastPlace(const std::string& format) {
  if (format.find('E') != std::string::npos) return 0;
  const std::size_t point = format.find('.');
  const std::size_t decimals = point == std::string::npos ? 0 : format.size() - point - 1;
  return std::pow(10, -static_cast<double>(decimals));
}

}  // namespace

std::optional<DragHandle> HandleAt(const SequenceData& sequence, const ModelDefinition& definition,
                                   const GraphPicture& picture, std::size_t area, const PlotScale& scale,
                                   PixelPoint place) {
  if (area >= picture.Areas.size() || !picture.Areas[area].Note.empty()) return std::nullopt;
  const AreaGraph& graph = picture.Areas[area].Graph;
  const auto step = StepAt(picture.Spans, scale.PositionAt(place.X));
  if (!step || *step >= sequence.StepCount || graph.Area.Channel < 0) return std::nullopt;
  if (picture.Axis == TimeAxis::Time) {
    if (const auto end = EndAt(picture, scale, place.X, *step))
      return DragHandle{Kind::StepEnd, *end, 0, 0, 1};
  }
  const StepSpan& span = picture.Spans[static_cast<std::size_t>(*step)];
  return HandleFinder(sequence, definition, graph, span, *step, scale, place).Find();
}

ValueDrag::ValueDrag(const AppState& state, const ModelDefinition& definition, const SequenceData& sequence,
                     const MessageCatalogue& catalogue, const DragHandle& handle, const PlotScale& scale)
    : definition_(definition),
      catalogue_(catalogue),
      sequence_(std::make_unique<SequenceData>(sequence)),
      views_(state, definition, *sequence_, catalogue),
      handle_(handle),
      scale_(scale),
      row_(sequence.Step(handle.Step)),
      cell_(sequence.Cell(handle.Channel, handle.Step, handle.Slot)),
      before_(views_.Cell(Place()).Text),
      text_(before_) {}

CellPlace ValueDrag::Place() const {
  CellPlace place;
  place.Row = RowOf(StepIndex{handle_.Step});
  place.Column = kGridStepTime;
  if (handle_.Part == Kind::StepEnd) return place;
  place.Area = GridArea::Sequence;
  place.Channel = handle_.Channel;
  place.Column = handle_.Slot + 1;
  return place;
}

void ValueDrag::Move(double dx, double dy, bool fine) {
  dx_ += fine ? dx * kFinePart : dx;
  dy_ += fine ? dy * kFinePart : dy;
  sequence_->Step(handle_.Step) = row_;
  sequence_->Cell(handle_.Channel, handle_.Step, handle_.Slot) = cell_;
  const bool end = handle_.Part == Kind::StepEnd;
  if ((end ? dx_ : dy_) == 0) {
    Take(before_);
  } else {
    Take(end ? TimeTextAt(fine) : ValueTextAt(fine));
  }
}

std::optional<double> ValueDrag::PointedValue() const {
  const int channel = handle_.Channel;
  const int step = handle_.Step;
  const auto at = [&](int slot, double along) {
    return ShownValue(*sequence_, definition_, channel, step, slot, along);
  };
  const bool ramp = cell_.ChangeMode == kModeSweep;
  const double along = ramp ? handle_.Along : 1;
  const auto here = at(handle_.Slot, along);
  if (!here) return std::nullopt;
  if (handle_.Part == Kind::Level) {
    const double pointed = scale_.ValueAt(scale_.YOf(*here) + dy_);
    if (!ramp) return pointed;
    // Ramps are straight in what is stored, not in a logarithmic unit.
    const UserUnits units(*sequence_, definition_);
    const double from = StoredValue(definition_, handle_.Slot, cell_).From;
    const double to = from + (units.UserToSystem(pointed, channel, step, handle_.Slot) - from) / along;
    const ValueBounds bounds = ChannelBounds(definition_, *sequence_, channel, step, handle_.Slot);
    return units.SystemToUser(bounds.Nearest(to), channel, step, handle_.Slot);
  }
  const auto [below, above] = SwingParts(*sequence_, channel, step);
  const double part = handle_.Part == Kind::HighEdge ? above : below;
  const double middle = at(kSlotOffset, handle_.Along).value_or(0);
  const double swing = (scale_.ValueAt(scale_.YOf(middle + part * *here) + dy_) - middle) / part;
  const double from = ramp ? at(handle_.Slot, 0).value_or(0) : 0;
  return from + (swing - from) / along;
}

double ValueDrag::PartOfValue() const {
  double part = cell_.ChangeMode == kModeSweep ? handle_.Along : 1;
  if (handle_.Part != Kind::Level) {
    const auto [below, above] = SwingParts(*sequence_, handle_.Channel, handle_.Step);
    part *= handle_.Part == Kind::HighEdge ? above : below;
  }
  return std::abs(part) > 0 ? std::abs(part) : 1;
}

std::string ValueDrag::ValueTextAt(bool fine) const {
  const auto [channel, step] = std::pair(handle_.Channel, handle_.Step);
  const int slot = handle_.Slot;
  const auto pointed = PointedValue();
  if (!pointed) return text_;
  const UserUnits units(*sequence_, definition_);
  const ValueBounds bounds = ChannelBounds(definition_, *sequence_, channel, step, slot);
  const double pixel =
      (scale_.Values.High - scale_.Values.Low) / scale_.Height / PartOfValue() * (fine ? kFinePart : 1);
  const double round = std::max(RoundStep(pixel), LastPlace(units.UserUnitFormat(channel, slot)));
  const double stored = bounds.Nearest(units.UserToSystem(Snapped(*pointed, round), channel, step, slot));
  if (!std::isfinite(stored)) return text_;
  const std::string text = units.UserUnitText(stored, channel, step, slot);
  // No number in a logarithmic unit: such a text stands for "as before".
  return ParseNumber(text) ? text : text_;
}

std::string ValueDrag::TimeTextAt(bool fine) const {
  const ParamDef& column = TimeColumn(definition_);
  const int unit = ShownTimeUnit(definition_, *sequence_);
  const double pixel = (scale_.AxisEnd - scale_.AxisStart) / scale_.Width / kMsPerSecond;  // s
  const double seconds = BaseTime(definition_, row_) + dx_ * pixel;
  const double finest = std::max(FromBase(column, std::max(column.Resolution, 0.0), unit), kFinestTime);
  const double round = std::max(RoundStep(FromBase(column, pixel * (fine ? kFinePart : 1), unit)), finest);
  const double shown = Snapped(FromBase(column, seconds, unit), round);
  const ValueBounds bounds = CommonBounds(definition_, *sequence_, kGridStepTime);
  const double held = bounds.Nearest(ToBase(column, shown, unit));
  return FormatNumber(FromBase(column, held, unit), kTimeFormat);
}

void ValueDrag::Take(const std::string& text) {
  const auto [channel, step] = std::pair(handle_.Channel, handle_.Step);
  text_ = text;
  if (handle_.Part == Kind::StepEnd) {
    refusal_ = StoreCommonText(views_, *sequence_, step, kGridStepTime, text, EntryMode::Typed);
    return;
  }
  refusal_ = StoreChannelText(views_, *sequence_, channel, step, handle_.Slot, text, EntryMode::Typed);
  if (refusal_) {
    // Shown all the same: where the pointer is, with the reason beside it.
    const UserUnits units(*sequence_, definition_);
    const double shown = ParseNumber(text).value_or(0);
    SetBaseValue(definition_, handle_.Slot, units.UserToSystem(shown, channel, step, handle_.Slot),
                 sequence_->Cell(channel, step, handle_.Slot));
  }
  ComputeStartValues(*sequence_, channel, handle_.Slot, step);
}

std::string ValueDrag::Label() const {
  const auto with = [this](const std::string& unit) { return unit.empty() ? text_ : text_ + " " + unit; };
  std::string label;
  if (handle_.Part == Kind::StepEnd) {
    const StepNumber number = NumberOf(StepIndex{handle_.Step});
    const int unit = ShownTimeUnit(definition_, *sequence_);
    label = catalogue_.GetResString(TextId::GraphTipStep,
                                    {std::to_string(ShownNumber(number, sequence_->StartStep)),
                                     with(UnitName(TimeColumn(definition_), unit))});
  } else {
    const UserUnits units(*sequence_, definition_);
    label = catalogue_.GetResString(
        TextId::GraphTipConstant,
        {ChannelColumn(definition_, handle_.Slot).Name, with(units.UnitText(handle_.Channel, handle_.Slot))});
  }
  if (refusal_) label += "\n" + catalogue_.GetResString(refusal_->Id, refusal_->Arguments);
  return label;
}

}  // namespace corlune
