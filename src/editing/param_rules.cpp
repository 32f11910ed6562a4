#include "editing/param_rules.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/numbers.h"
#include "sequence/defaults.h"
#include "sequence/units.h"

namespace corlune {

namespace {

// Names that definitions give to the three modes, in any order.
constexpr const char* kConstName = "CONST";
constexpr const char* kKeepName = "KEEP";
constexpr const char* kSweepName = "SWEEP";
constexpr int kLongestRangeList = 1000;  // entries of a list made from a range

struct SwitchFields {
  std::int16_t StepRow::*On;
  std::int16_t StepRow::*Value;  // null: a double
};

SwitchFields FieldsOf(int column) {
  switch (column) {
    case kGridStopPhase:
      return {&StepRow::StopPhaseOn, nullptr};
    case kGridEventBranch:
      return {&StepRow::EventBranchOn, &StepRow::EventBranchStep};
    case kGridStateBranch:
      return {&StepRow::StateBranchOn, &StepRow::StateBranchStep};
    case kGridJumpTo:
      return {&StepRow::JumpOn, &StepRow::JumpTo};
    case kGridJumpCount:
      return {&StepRow::JumpCountOn, &StepRow::JumpCount};
    case kGridAutoHold:
      return {nullptr, &StepRow::AutoHold};
    case kGridStepTerm:
      return {nullptr, &StepRow::StepTerm};
    case kGridStepCode:
      return {nullptr, &StepRow::StepCode};
    default:
      return {nullptr, nullptr};
  }
}

ChoiceList ChoicesOf(const std::vector<std::string>& texts) {
  ChoiceList list;
  for (const std::string& text : texts) {
    list.Values.push_back(static_cast<std::int16_t>(list.Texts.size()));
    list.Texts.push_back(text);
  }
  return list;
}

ValueBounds BoundsOf(const ParamDef& definition, const SequenceData& sequence) {
  if (definition.ValueKind == 2) {
    return {0, std::max(0.0, static_cast<double>(definition.Choices.size()) - 1)};
  }
  if (definition.ValueKind != 0) return {};
  const auto bound = [&](const std::string& placeholder, double number) -> std::optional<double> {
    if (placeholder.empty()) return number;
    if (placeholder.rfind("$MAXSTE", 0) == 0) return sequence.StepCount;
    return std::nullopt;
  };
  return {bound(definition.RangePlaceholder[0], definition.Minimum),
          bound(definition.RangePlaceholder[1], definition.Maximum)};
}

int GroupOf(const ModelDefinition& definition, const SequenceData& sequence, int channel, int step) {
  const double code = sequence.Cell(channel, step, kSlotWaveform).Value;
  const int group = code >= 0 && code < kAreaParams ? static_cast<int>(code) : 0;
  return definition.Sequence.GroupEnabled[static_cast<std::size_t>(group)] ? group : 0;
}

}  // namespace

double ValueBounds::Nearest(double value) const {
  if (Maximum) value = std::min(value, *Maximum);
  if (Minimum) value = std::max(value, *Minimum);
  return value;
}

int ChoiceList::IndexOf(std::int16_t value) const {
  const auto found = std::find(Values.begin(), Values.end(), value);
  return found == Values.end() ? -1 : static_cast<int>(found - Values.begin());
}

const ParamDef& CommonDefinition(const ModelDefinition& definition, int column) {
  return definition.Common.Params[static_cast<std::size_t>(column - 1)];
}

bool CommonSwitch(const StepRow& row, int column) {
  const auto on = FieldsOf(column).On;
  return on == nullptr || row.*on != 0;
}

void SetCommonSwitch(StepRow& row, int column, bool on) {
  if (const auto field = FieldsOf(column).On; field != nullptr) row.*field = on ? 1 : 0;
}

double CommonValue(const StepRow& row, int column) {
  if (column == kGridStepTime) return row.StepTime;
  if (column == kGridStopPhase) return row.StopPhase;
  const auto field = FieldsOf(column).Value;
  return field == nullptr ? 0 : row.*field;
}

double CommonBaseValue(const ModelDefinition& definition, const StepRow& row, int column) {
  return column == kGridStepTime ? BaseTime(definition, row) : CommonValue(row, column);
}

void SetCommonBaseValue(const ModelDefinition& definition, StepRow& row, int column, double base) {
  SetCommonValue(row, column,
                 column == kGridStepTime ? FromBase(TimeColumn(definition), base, row.TimeUnit) : base);
}

void SetCommonValue(StepRow& row, int column, double value) {
  if (column == kGridStepTime) {
    row.StepTime = value;
  } else if (column == kGridStopPhase) {
    row.StopPhase = value;
  } else if (const auto field = FieldsOf(column).Value; field != nullptr) {
    row.*field = ToInt16(value).value_or(0);
  }
}

bool CommonInUse(const ModelDefinition& definition, const StepRow& row, int column) {
  return !HasSwitch(column) || !SwitchedByStep(CommonDefinition(definition, column)) ||
         CommonSwitch(row, column);
}

void CopyCommonField(const ModelDefinition& definition, const StepRow& from, StepRow& to, int column) {
  if (column == kGridStepTime) {
    to.StepTime = Converted(TimeColumn(definition), from.StepTime, from.TimeUnit, to.TimeUnit);
    return;
  }
  SetCommonSwitch(to, column, CommonSwitch(from, column));
  SetCommonValue(to, column, CommonValue(from, column));
}

void ResetCommonField(StepRow& row, const ModelDefinition& definition, int column) {
  SetCommonSwitch(row, column, false);
  SetCommonBaseValue(definition, row, column, DefaultValue(CommonDefinition(definition, column)));
}

ChoiceList CommonChoices(const ModelDefinition& definition, int column) {
  const bool listColumn = column == kGridAutoHold || column == kGridStepTerm || column == kGridStepCode;
  if (!listColumn) return {};
  const ParamDef& param = CommonDefinition(definition, column);
  if (param.ValueKind == 2) return ChoicesOf(param.Choices);
  // A step code may be given as a range instead of a list.
  const double step = param.Resolution > 0 ? param.Resolution : 1;
  const double count = std::floor((param.Maximum - param.Minimum) / step) + 1;
  ChoiceList list;
  if (param.ValueKind != 0 || column != kGridStepCode || !(count <= kLongestRangeList)) return list;
  for (int i = 0; i < static_cast<int>(count); ++i) {
    const std::int16_t value = ToInt16(param.Minimum + i * step).value_or(0);
    list.Values.push_back(value);
    list.Texts.push_back(std::to_string(value));
  }
  return list;
}

ValueBounds CommonBounds(const ModelDefinition& definition, const SequenceData& sequence, int column) {
  return BoundsOf(CommonDefinition(definition, column), sequence);
}

ValueBounds BranchBounds(const ModelDefinition& definition, const SequenceData& sequence) {
  if (definition.Branches.ValueKind == 2) {
    return {0, std::max(0.0, static_cast<double>(definition.Branches.Choices.size()) - 1)};
  }
  const bool range = definition.Branches.ValueKind == 0;
  return {definition.Branches.Minimum,
          range ? std::min(definition.Branches.Maximum, sequence.StepCount) : sequence.StepCount};
}

ChoiceList BranchChoices(const ModelDefinition& definition) {
  return definition.Branches.ValueKind == 2 ? ChoicesOf(definition.Branches.Choices) : ChoiceList{};
}

int ChannelParams(const ModelDefinition& definition) {
  return std::clamp<int>(definition.Sequence.ParamCount, 0, MAX_PARAMS);
}

const ParamDef& ChannelColumn(const ModelDefinition& definition, int param) {
  return definition.Sequence.Params[0][static_cast<std::size_t>(param)];
}

const ParamDef& ChannelDefinition(const ModelDefinition& definition, const SequenceData& sequence,
                                  int channel, int step, int param) {
  const int group = param == kSlotWaveform ? 0 : GroupOf(definition, sequence, channel, step);
  return definition.Sequence.Params[static_cast<std::size_t>(group)][static_cast<std::size_t>(param)];
}

bool ChannelInUse(const ModelDefinition& definition, const SequenceData& sequence, int channel, int step,
                  int param) {
  return ChannelDefinition(definition, sequence, channel, step, param).InUse;
}

ChoiceList ChannelChoices(const ModelDefinition& definition, int param) {
  const ParamDef& column = ChannelColumn(definition, param);
  return column.ValueKind == 2 ? ChoicesOf(column.Choices) : ChoiceList{};
}

ValueBounds ChannelBounds(const ModelDefinition& definition, const SequenceData& sequence, int channel,
                          int step, int param) {
  // Choices come from group 0, so their number does, too.
  const ParamDef& column = ChannelColumn(definition, param);
  if (column.ValueKind == 2) return BoundsOf(column, sequence);
  return BoundsOf(ChannelDefinition(definition, sequence, channel, step, param), sequence);
}

bool PeakFits(const ModelDefinition& definition, const SequenceData& sequence, int channel, int step) {
  const auto volts = [&](int slot) {
    return BaseValue(definition, slot, sequence.Cell(channel, step, slot));
  };
  const bool direct = sequence.Cell(channel, step, kSlotWaveform).Value == static_cast<double>(kWaveDc);
  const double amplitude = direct ? 0 : volts(kSlotAmplitude);
  const double offset = volts(kSlotOffset);
  // 9.95 V and 0.1 Vp-p are within the limit, their sum in binary fractions may lie just above it.
  return std::abs(offset) + amplitude / 2 <= kPeakLimit * (1 + 1e-12);
}

std::vector<std::int16_t> ChangeModesOf(const ParamDef& definition) {
  std::vector<std::int16_t> codes;
  if (definition.ModeKind != 2) return codes;
  for (std::size_t i = 0; i < definition.ModeNames.size() && i < kChangeModes; ++i) {
    const std::string& name = definition.ModeNames[i];
    auto code = static_cast<std::int16_t>(i);
    if (name == kConstName) code = kModeConst;
    if (name == kKeepName) code = kModeKeep;
    if (name == kSweepName) code = kModeSweep;
    codes.push_back(code);
  }
  return codes;
}

}  // namespace corlune
