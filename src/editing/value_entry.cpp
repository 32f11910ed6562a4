#include "editing/value_entry.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/ascii_case.h"
#include "core/numbers.h"
#include "editing/param_rules.h"
#include "sequence/units.h"
#include "sequence/user_units.h"

namespace corlune {

namespace {

constexpr std::size_t kLongestArgument = 40;  // characters of a typed text that a message repeats
constexpr double kLargestInteger = 32767;

constexpr const char* kTimeEntryFormat = "0.#####";
constexpr const char* kTimeBoundFormat = "0.0000";
constexpr const char* kPhaseFormat = "#0.#";
constexpr const char* kIntegerFormat = "0";

EntryRefusal InputError() {
  return {TextId::InputError, {}};
}

std::string Shortened(const std::string& text) {
  if (text.size() <= kLongestArgument) return text;
  std::size_t end = kLongestArgument;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;  // no half character
  return text.substr(0, end) + "...";
}

EntryRefusal RangeError(const std::string& text, const std::string& minimum, const std::string& maximum) {
  return {TextId::ValueOutOfRange, {Shortened(text), minimum, maximum}};
}

bool AllDigits(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

double Rounded(double value, std::string_view format) {
  return ParseNumber(FormatNumber(value, format)).value_or(value);
}

std::string BoundText(const std::optional<double>& bound, std::string_view format) {
  return bound ? FormatNumber(*bound, format) : std::string();
}

std::optional<std::int16_t> ChoiceNamed(const ChoiceList& list, std::string_view text) {
  for (std::size_t i = 0; i < list.Texts.size(); ++i) {
    if (EqualIgnoringCase(list.Texts[i], text)) return list.Values[i];
  }
  return std::nullopt;
}

StepRow& RowAt(SequenceData& sequence, int step) {
  return sequence.Step(step);
}

// The number typed into a common-area text cell, in base units, or why it cannot be stored.
struct CommonNumber {
  EntryResult Refusal;
  double Value = 0;
};

std::string CommonFormat(int column) {
  if (column == kGridStepTime) return kTimeEntryFormat;
  return column == kGridStopPhase ? kPhaseFormat : kIntegerFormat;
}

// Bounds of a target are given in the numbering of column 0, those of a time in the unit of its column.
double ShownBound(const ModelDefinition& definition, const SequenceData& sequence, int column, double bound) {
  if (column == kGridStepTime) {
    return FromBase(TimeColumn(definition), bound, ShownTimeUnit(definition, sequence));
  }
  if (!IsTargetColumn(column)) return bound;
  return ShownNumber({static_cast<int>(bound)}, sequence.StartStep);
}

EntryRefusal CommonRangeError(const ModelDefinition& definition, const SequenceData& sequence, int column,
                              const ValueBounds& bounds, const std::string& text) {
  const std::string format = column == kGridStepTime ? kTimeBoundFormat : CommonFormat(column);
  ValueBounds shown = bounds;
  if (shown.Minimum) shown.Minimum = ShownBound(definition, sequence, column, *shown.Minimum);
  if (shown.Maximum) shown.Maximum = ShownBound(definition, sequence, column, *shown.Maximum);
  return RangeError(text, BoundText(shown.Minimum, format), BoundText(shown.Maximum, format));
}

CommonNumber ReadCommonNumber(const GridViews& views, const SequenceData& sequence, int column,
                              const std::string& text) {
  const bool integer = column >= kGridEventBranch || column == kGridAutoHold;
  if (integer && HasSwitch(column) && !AllDigits(text)) return {InputError(), 0};
  const std::optional<double> number = ParseNumber(text);
  if (!number) return {InputError(), 0};
  const std::string format = CommonFormat(column);
  double value = Rounded(*number, format);
  if (integer && value != *number) return {InputError(), 0};
  const ValueBounds bounds = CommonBounds(views.Definition(), sequence, column);
  const EntryRefusal outside =
      CommonRangeError(views.Definition(), sequence, column, bounds,
                       FormatNumber(*number, column == kGridStepTime ? kTimeEntryFormat : format));
  if (integer && std::abs(value) > kLargestInteger) return {outside, 0};
  if (IsTargetColumn(column)) value = StoredNumber(static_cast<int>(value), sequence.StartStep).value;
  if (column == kGridStepTime) {
    value = ToBase(TimeColumn(views.Definition()), value, ShownTimeUnit(views.Definition(), sequence));
  }
  if (!bounds.Hold(value)) return {outside, 0};
  return {std::nullopt, value};
}

EntryResult StoreCommonChoice(StepRow& row, int column, const ChoiceList& list, const std::string& text) {
  const auto value = ChoiceNamed(list, text);
  if (!value) return InputError();
  SetCommonValue(row, column, *value);
  return std::nullopt;
}

std::string CellText(const GridViews& views, GridArea area, int channel, int step, int column) {
  CellPlace place;
  place.Area = area;
  place.Channel = channel;
  place.Row = RowOf(StepIndex{step});
  place.Column = column;
  return views.Cell(place).Text;
}

EntryRefusal ChannelRangeError(const GridViews& views, const SequenceData& sequence, int channel, int step,
                               int param, const std::string& text) {
  const UserUnits units(sequence, views.Definition());
  const ValueBounds bounds = ChannelBounds(views.Definition(), sequence, channel, step, param);
  const auto shown = [&](const std::optional<double>& bound) {
    return bound ? units.UserUnitText(*bound, channel, step, param) : std::string();
  };
  std::string low = shown(bounds.Minimum);
  std::string high = shown(bounds.Maximum);
  // A negative factor turns the order round.
  if (bounds.Minimum && bounds.Maximum &&
      units.SystemToUser(*bounds.Minimum, channel, step, param) >
          units.SystemToUser(*bounds.Maximum, channel, step, param)) {
    std::swap(low, high);
  }
  return RangeError(text, low, high);
}

// The base value of a typed number. Without a conversion it is rounded to what the cell shows; through a user
// unit or load the full precision stays, so that the same number is shown again.
double TypedValue(const GridViews& views, const SequenceData& sequence, int channel, int step, int param,
                  double shown) {
  const UserUnits units(sequence, views.Definition());
  const ParamDef& definition = ChannelColumn(views.Definition(), param);
  const double stored = units.UserToSystem(shown, channel, step, param);
  const double plain = ToBase(definition, shown, ShownUnit(views.Definition(), sequence, channel, param));
  const std::string format = DisplayFormat(definition);
  const double rounded = Rounded(stored, format);
  if (!units.Active(channel, param) && stored == plain) return rounded;
  // The way through a load or factor may end a hair outside a bound that was typed exactly.
  const ValueBounds bounds = ChannelBounds(views.Definition(), sequence, channel, step, param);
  return bounds.Hold(rounded) && !bounds.Hold(stored) ? rounded : stored;
}

bool PeakMatters(const GridViews& views, const SequenceData& sequence, int channel, int step) {
  return ChannelInUse(views.Definition(), sequence, channel, step, kSlotOffset);
}

}  // namespace

std::string PlainEntry(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const bool wide = i + 2 < text.size() && byte(i) >= 0xE0U && byte(i) < 0xF0U;
    const unsigned code =
        wide ? ((byte(i) & 0x0FU) << 12U | (byte(i + 1) & 0x3FU) << 6U | (byte(i + 2) & 0x3FU)) : 0;
    if (code >= 0xFF01U && code <= 0xFF5EU) {
      plain += static_cast<char>(code - 0xFF01U + '!');
      i += 3;
    } else if (code == 0x3000U || code == 0x2212U || code == 0x30FCU) {
      // Ideographic blank; minus sign and the long-vowel mark that Japanese input gives for it.
      plain += code == 0x3000U ? ' ' : '-';
      i += 3;
    } else {
      plain += text[i++];
    }
  }
  const auto first = plain.find_first_not_of(" \t");
  if (first == std::string::npos) return {};
  return plain.substr(first, plain.find_last_not_of(" \t") - first + 1);
}

EntryResult StoreCommonText(const GridViews& views, SequenceData& sequence, int step, int column,
                            std::string_view text, EntryMode mode) {
  StepRow& row = RowAt(sequence, step);
  const std::string plain = PlainEntry(text);
  const ParamDef& definition = CommonDefinition(views.Definition(), column);
  if (plain == CellText(views, GridArea::Common, 0, step, column)) return std::nullopt;
  const bool switched = HasSwitch(column) && SwitchedByStep(definition);
  if (mode == EntryMode::Block && switched && plain == kNotInUseText) {
    SetCommonSwitch(row, column, false);
    return std::nullopt;
  }
  if (const ChoiceList list = CommonChoices(views.Definition(), column); !list.Texts.empty()) {
    return StoreCommonChoice(row, column, list, plain);
  }
  if (mode == EntryMode::Typed && !CommonInUse(views.Definition(), row, column)) return std::nullopt;
  const bool mayBeEmpty = column >= kGridEventBranch && column <= kGridJumpCount;
  if (plain.empty() && mayBeEmpty) return std::nullopt;
  const CommonNumber number = ReadCommonNumber(views, sequence, column, plain);
  if (number.Refusal) return number.Refusal;
  if (column == kGridStepTime) {
    row.TimeUnit = static_cast<std::int16_t>(ShownTimeUnit(views.Definition(), sequence));
  }
  SetCommonBaseValue(views.Definition(), row, column, number.Value);
  if (switched) SetCommonSwitch(row, column, true);
  return std::nullopt;
}

EntryResult StoreChannelText(const GridViews& views, SequenceData& sequence, int channel, int step, int param,
                             std::string_view text, EntryMode mode) {
  const std::string plain = PlainEntry(text);
  if (plain.empty() || plain == "Over" || plain == "Inf" || plain == kNotInUseText) return std::nullopt;
  ParamCell& cell = sequence.Cell(channel, step, param);
  if (!ChannelInUse(views.Definition(), sequence, channel, step, param)) return InputError();
  if (plain == CellText(views, GridArea::Sequence, channel, step, param + 1)) return std::nullopt;
  if (const ChoiceList list = ChannelChoices(views.Definition(), param); !list.Texts.empty()) {
    const auto value = ChoiceNamed(list, plain);
    if (!value) return InputError();
    cell.Value = *value;
    return std::nullopt;
  }
  const std::optional<double> number = ParseNumber(plain);
  if (!number) return InputError();
  const double value = TypedValue(views, sequence, channel, step, param, *number);
  if (!std::isfinite(value) ||
      !ChannelBounds(views.Definition(), sequence, channel, step, param).Hold(value)) {
    return ChannelRangeError(views, sequence, channel, step, param, plain);
  }
  const ParamCell old = cell;
  cell.UnitIndex = static_cast<std::int16_t>(ShownUnit(views.Definition(), sequence, channel, param));
  SetBaseValue(views.Definition(), param, value, cell);
  const bool peakParam = param == kSlotAmplitude || param == kSlotOffset;
  if (mode == EntryMode::Typed && peakParam && PeakMatters(views, sequence, channel, step) &&
      !PeakFits(views.Definition(), sequence, channel, step)) {
    cell = old;
    return EntryRefusal{TextId::PeakTooHigh, {}};
  }
  return std::nullopt;
}

EntryResult StoreBranchText(const GridViews& views, SequenceData& sequence, int step, int branchRow,
                            std::string_view text) {
  const std::string plain = PlainEntry(text);
  CellPlace place;
  place.Area = GridArea::Branch;
  place.Row = RowOf(StepIndex{step});
  place.BranchRow = branchRow;
  if (plain == views.Cell(place).Text) return std::nullopt;
  std::int16_t& target = RowAt(sequence, step).BranchStep[static_cast<std::size_t>(branchRow - 1)];
  if (const ChoiceList list = BranchChoices(views.Definition()); !list.Texts.empty()) {
    const auto value = ChoiceNamed(list, plain);
    if (!value) return InputError();
    target = *value;
    return std::nullopt;
  }
  if (plain == kNotInUseText && views.Definition().Branches.Minimum <= 0) {
    target = 0;
    return std::nullopt;
  }
  const std::optional<double> number = ParseNumber(plain);
  if (!number || plain.find('.') != std::string::npos || *number != std::nearbyint(*number))
    return InputError();
  const ValueBounds bounds = BranchBounds(views.Definition(), sequence);
  const auto shown = [&](double bound) {
    return std::to_string(ShownNumber({static_cast<int>(bound)}, sequence.StartStep));
  };
  const EntryRefusal outside = RangeError(plain, shown(*bounds.Minimum), shown(*bounds.Maximum));
  if (std::abs(*number) > kLargestInteger) return outside;
  const double stored = StoredNumber(static_cast<int>(*number), sequence.StartStep).value;
  if (!bounds.Hold(stored)) return outside;
  target = static_cast<std::int16_t>(stored);
  return std::nullopt;
}

void SwitchCommonValue(const GridViews& views, SequenceData& sequence, int step, int column, bool on) {
  StepRow& row = RowAt(sequence, step);
  SetCommonSwitch(row, column, on);
  if (!on) return;
  const ValueBounds bounds = CommonBounds(views.Definition(), sequence, column);
  const double value = CommonBaseValue(views.Definition(), row, column);
  if (!bounds.Hold(value)) SetCommonBaseValue(views.Definition(), row, column, bounds.Nearest(value));
}

void ChangeTimeUnit(const ModelDefinition& definition, SequenceData& sequence, int index) {
  for (int step = 0; step < sequence.StepCount; ++step) {
    StepRow& row = RowAt(sequence, step);
    const int old = std::exchange(row.TimeUnit, static_cast<std::int16_t>(index));
    row.StepTime = Converted(TimeColumn(definition), row.StepTime, old, index);
    if (old == 1 && index == 0) row.StepTime = Rounded(row.StepTime, "0.#");
  }
}

void ChangeColumnUnit(const ModelDefinition& definition, SequenceData& sequence, int channel, int param,
                      int index) {
  for (int step = 0; step < sequence.StepCount; ++step) {
    ParamCell& cell = sequence.Cell(channel, step, param);
    const int old = std::exchange(cell.UnitIndex, static_cast<std::int16_t>(index));
    cell.Value = Converted(ChannelColumn(definition, param), cell.Value, old, index);
  }
}

StepCells CellsOf(const SequenceData& sequence, int channel, int step) {
  StepCells cells;
  for (int param = 0; param < MAX_PARAMS; ++param) {
    cells[static_cast<std::size_t>(param)] = sequence.Cell(channel, step, param);
  }
  return cells;
}

EntryResult CheckCommonValue(const GridViews& views, const SequenceData& sequence, int step, int column) {
  const StepRow& row = sequence.Step(step);
  if (!CommonInUse(views.Definition(), row, column)) return std::nullopt;
  const ValueBounds bounds = CommonBounds(views.Definition(), sequence, column);
  const double value = CommonBaseValue(views.Definition(), row, column);
  if (bounds.Hold(value)) return std::nullopt;
  return CommonRangeError(
      views.Definition(), sequence, column, bounds,
      FormatNumber(ShownBound(views.Definition(), sequence, column, value), CommonFormat(column)));
}

EntryResult CheckChannelValue(const GridViews& views, const SequenceData& sequence, int channel, int step,
                              int param) {
  const ModelDefinition& definition = views.Definition();
  const double value = BaseValue(definition, param, sequence.Cell(channel, step, param));
  if (ChannelBounds(definition, sequence, channel, step, param).Hold(value)) return std::nullopt;
  const std::string text = UserUnits(sequence, definition).UserUnitText(value, channel, step, param);
  return ChannelRangeError(views, sequence, channel, step, param, text);
}

EntryResult SettleChannelStep(const GridViews& views, SequenceData& sequence, int channel, int step,
                              const StepCells& before, int* refused) {
  const ModelDefinition& definition = views.Definition();
  const auto valueOf = [&](int param) {
    return BaseValue(definition, param, sequence.Cell(channel, step, param));
  };
  const auto changed = [&](int param) {
    return valueOf(param) != BaseValue(definition, param, before[static_cast<std::size_t>(param)]);
  };
  const auto seenBefore = [&](int param) {
    const auto oldWave = static_cast<std::size_t>(std::clamp(before[kSlotWaveform].Value, 0.0, 10.0));
    const std::size_t group = definition.Sequence.GroupEnabled[oldWave] ? oldWave : 0;
    return definition.Sequence.Params[group][static_cast<std::size_t>(param)].InUse;
  };
  const bool newWaveform = changed(kSlotWaveform);
  const auto refuse = [&](int param, EntryRefusal refusal) {
    if (refused != nullptr) *refused = param;
    return refusal;
  };
  for (int param = 0; param < ChannelParams(definition); ++param) {
    if (!ChannelInUse(definition, sequence, channel, step, param)) continue;
    if (!newWaveform && !changed(param)) continue;
    const double value = valueOf(param);
    const ValueBounds bounds = ChannelBounds(definition, sequence, channel, step, param);
    if (bounds.Hold(value)) continue;
    if (seenBefore(param) || changed(param)) {
      return refuse(param, *CheckChannelValue(views, sequence, channel, step, param));
    }
    SetBaseValue(definition, param, bounds.Nearest(value), sequence.Cell(channel, step, param));
  }
  const bool level = newWaveform || changed(kSlotAmplitude) || changed(kSlotOffset);
  if (!level || !PeakMatters(views, sequence, channel, step) ||
      PeakFits(definition, sequence, channel, step)) {
    return std::nullopt;
  }
  if (seenBefore(kSlotAmplitude) || changed(kSlotAmplitude)) {
    return refuse(kSlotAmplitude, {TextId::PeakTooHigh, {}});
  }
  const double room = kPeakLimit - std::abs(valueOf(kSlotOffset));
  SetBaseValue(definition, kSlotAmplitude, std::max(0.0, 2 * room),
               sequence.Cell(channel, step, kSlotAmplitude));
  if (PeakFits(definition, sequence, channel, step)) return std::nullopt;
  return refuse(kSlotOffset, {TextId::PeakTooHigh, {}});
}

}  // namespace corlune
