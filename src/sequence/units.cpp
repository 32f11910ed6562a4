#include "sequence/units.h"

#include "core/numbers.h"
#include "sequence/defaults.h"

namespace corlune {

namespace {

constexpr double kUnitRatio = 1000;

double Rounded(double value) {
  return ParseNumber(NumberText(value)).value_or(value);
}

// Base units in unit 0.
double FirstUnit(const ParamDef& column) {
  if (column.UnitKind != 2 || column.UnitConv.empty()) return 1;
  const double factor = ParseNumber(column.UnitConv[0]).value_or(1);
  return factor > 0 ? factor : 1;
}

int UnitOfColumn(const ParamDef& column, bool steps, int first) {
  if (column.UnitKind != 2) return 0;
  if (!steps) return DefaultUnit(column);
  return first == 1 ? 1 : 0;
}

}  // namespace

double InUnit(double value, int from, int to) {
  if ((from == 1) == (to == 1)) return value;
  return Rounded(from == 1 ? value * kUnitRatio : value / kUnitRatio);
}

double ToBase(const ParamDef& column, double value, int unit) {
  if (column.UnitKind == 0) return value;
  const double factor = FirstUnit(column);
  const double inFirst = InUnit(value, unit, 0);
  return factor == 1 ? inFirst : Rounded(inFirst * factor);
}

double FromBase(const ParamDef& column, double base, int unit) {
  if (column.UnitKind == 0) return base;
  const double factor = FirstUnit(column);
  return InUnit(factor == 1 ? base : Rounded(base / factor), 0, unit);
}

double Converted(const ParamDef& column, double value, int from, int to) {
  return column.UnitKind == 0 ? value : InUnit(value, from, to);
}

std::int16_t DefaultUnit(const ParamDef& column) {
  return column.UnitKind == 2 && column.UnitDefault == 1 ? std::int16_t{1} : std::int16_t{0};
}

std::string UnitName(const ParamDef& column, int unit) {
  if (column.UnitKind == 1) return column.UnitName;
  const auto index = static_cast<std::size_t>(unit == 1 ? 1 : 0);
  return column.UnitKind == 2 && index < column.UnitList.size() ? column.UnitList[index] : std::string();
}

const ParamDef& TimeColumn(const ModelDefinition& definition) {
  return definition.Common.Params[kColumnStepTime];
}

const ParamDef& SlotColumn(const ModelDefinition& definition, int slot) {
  return definition.Sequence.Params[0][static_cast<std::size_t>(slot)];
}

double BaseTime(const ModelDefinition& definition, const StepRow& row) {
  return ToBase(TimeColumn(definition), row.StepTime, row.TimeUnit);
}

double BaseValue(const ModelDefinition& definition, int slot, const ParamCell& cell) {
  return ToBase(SlotColumn(definition, slot), cell.Value, cell.UnitIndex);
}

void SetBaseValue(const ModelDefinition& definition, int slot, double base, ParamCell& cell) {
  cell.Value = FromBase(SlotColumn(definition, slot), base, cell.UnitIndex);
}

int ShownTimeUnit(const ModelDefinition& definition, const SequenceData& sequence) {
  return UnitOfColumn(TimeColumn(definition), sequence.StepCount > 0, sequence.Steps[0].TimeUnit);
}

int ShownUnit(const ModelDefinition& definition, const SequenceData& sequence, int channel, int slot) {
  // User units and loads have a slot more than the sequence has channels.
  const bool steps = sequence.StepCount > 0 && channel < MAX_CHANNELS;
  return UnitOfColumn(SlotColumn(definition, slot), steps,
                      steps ? sequence.Cell(channel, 0, slot).UnitIndex : 0);
}

}  // namespace corlune
