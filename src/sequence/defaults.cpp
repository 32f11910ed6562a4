#include "sequence/defaults.h"

#include <algorithm>
#include <utility>

#include "core/numbers.h"
#include "sequence/units.h"

namespace corlune {

namespace {

std::int16_t DefaultInteger(const ParamDef& definition) {
  return ToInt16(DefaultValue(definition)).value_or(0);
}

StepRow NewStepRow(const ModelDefinition& definition) {
  const auto& columns = definition.Common.Params;
  StepRow row;
  const ParamDef& time = columns[kColumnStepTime];
  row.TimeUnit = DefaultUnit(time);
  row.StepTime = FromBase(time, DefaultValue(time), row.TimeUnit);
  row.AutoHold = DefaultInteger(columns[kColumnAutoHold]);
  row.StopPhase = DefaultValue(columns[kColumnStopPhase]);
  row.EventBranchStep = DefaultInteger(columns[kColumnEventBranch]);
  row.StateBranchStep = DefaultInteger(columns[kColumnStateBranch]);
  row.JumpTo = DefaultInteger(columns[kColumnJumpTo]);
  row.JumpCount = DefaultInteger(columns[kColumnJumpCount]);
  row.StepTerm = DefaultInteger(columns[kColumnStepTerm]);
  row.StepCode = DefaultInteger(columns[kColumnStepCode]);
  row.BranchStep[0] = definition.Branches.Default;
  row.BranchStep[1] = definition.Branches.Default;
  return row;
}

// Defaults come from group 0, whatever the default waveform is.
ParamCell NewCell(const ModelDefinition& definition, int param) {
  const ParamDef& column = definition.Sequence.Params[0][static_cast<std::size_t>(param)];
  ParamCell cell;
  cell.UnitIndex = DefaultUnit(column);
  cell.Value = FromBase(column, DefaultValue(column), cell.UnitIndex);
  cell.StartValue = cell.Value;
  return cell;
}

}  // namespace

double DefaultValue(const ParamDef& definition) {
  double value = definition.Default;
  if (definition.ValueKind != 0) return value;
  if (definition.RangePlaceholder[1].empty()) value = std::min(value, definition.Maximum);
  if (definition.RangePlaceholder[0].empty()) value = std::max(value, definition.Minimum);
  return value;
}

void ResetStep(SequenceData& sequence, int slot, const ModelDefinition& definition) {
  sequence.Step(slot) = NewStepRow(definition);
  for (int param = 0; param < MAX_PARAMS; ++param) {
    const ParamCell cell = NewCell(definition, param);
    for (int channel = 0; channel < MAX_CHANNELS; ++channel) sequence.Cell(channel, slot, param) = cell;
  }
}

void ResetSequence(SequenceData& sequence, const ModelDefinition& definition) {
  sequence.StepCount = 0;
  sequence.StartStep = definition.StartStep.Default;
  sequence.BranchChannel = definition.Branch.Default;
  sequence.Common = CommonParams{};
  sequence.Steps.fill(NewStepRow(definition));
  for (int param = 0; param < MAX_PARAMS; ++param) {
    const auto first = sequence.Cells.begin() + static_cast<std::ptrdiff_t>(param) * MAX_STEPS * MAX_CHANNELS;
    std::fill_n(first, MAX_STEPS * MAX_CHANNELS, NewCell(definition, param));
  }
  sequence.Channels.Loads.fill(OutputLoad{});
  for (auto& channel : sequence.Channels.UserUnits) channel.fill(UserUnitDef{});
  for (ArbFileEntry& entry : sequence.Channels.ArbFiles) entry = EntryWithFile(entry, {});
  for (auto& device : sequence.ModeSettings) device.fill(0);
  for (auto& area : sequence.ViewAreas) area.fill(0);
  sequence.SequenceName.clear();
  sequence.SequenceNumber = 0;
}

void ResetChannelTables(SequenceData& sequence, bool online) {
  for (ArbFileEntry& entry : sequence.Channels.ArbFiles) {
    ArbFileEntry cleared;
    if (online) cleared.PointCount = entry.PointCount;
    entry = cleared;
  }
  sequence.Channels.Loads.fill(OutputLoad{});
  for (auto& channel : sequence.Channels.UserUnits) channel.fill(UserUnitDef{});
}

ArbFileEntry EntryWithFile(const ArbFileEntry& before, std::string path) {
  ArbFileEntry entry;
  entry.InInstrument = before.InInstrument;
  // The size on record is the instrument's own only when no other file has been looked at since.
  const bool sizeIsInstruments = before.FilePath.empty() || before.Transferred != 0;
  if (path.empty() && before.InInstrument != 0 && sizeIsInstruments) {
    entry.ArrayForm = before.ArrayForm;
    entry.PointCount = before.PointCount;
  }
  entry.FilePath = std::move(path);
  return entry;
}

}  // namespace corlune
