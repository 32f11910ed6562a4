// Units: the one place where a stored value meets its base unit (s, Hz, Vp-p, V, degrees, %). A stored value
// is given in the unit that its index names; bounds, defaults and the sequence text are in base units, and
// the grids show a whole column in one unit.
//
// Unit 1 of a list is 1000 times unit 0, as the file format has it; any other index counts as unit 0. How
// many base units the first unit has is the first conversion text of the definition (1 without one). With one
// fixed unit that is unit 0, the base unit; without any the index means nothing.
#pragma once

#include <cstdint>
#include <string>

#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune {

inline constexpr int kUnits = 2;  // units of a list that a value can have

// `value` of unit `from` in unit `to` of the same list. Converted numbers are rounded to 15 digits, so that
// there and back gives the same decimal number.
double InUnit(double value, int from, int to);
double ToBase(const ParamDef& column, double value, int unit);
double FromBase(const ParamDef& column, double base, int unit);
// From one unit of the column to another.
double Converted(const ParamDef& column, double value, int from, int to);

// The unit of a new value.
std::int16_t DefaultUnit(const ParamDef& column);
// Empty for a parameter without unit.
std::string UnitName(const ParamDef& column, int unit);

const ParamDef& TimeColumn(const ModelDefinition& definition);
// Group 0, which names the units of a parameter; slot 0..10.
const ParamDef& SlotColumn(const ModelDefinition& definition, int slot);

double BaseTime(const ModelDefinition& definition, const StepRow& row);  // s
double BaseValue(const ModelDefinition& definition, int slot, const ParamCell& cell);
// Stores a base value in the cell's own unit.
void SetBaseValue(const ModelDefinition& definition, int slot, double base, ParamCell& cell);

// The unit in which a column is headed and shown: that of its first step.
int ShownTimeUnit(const ModelDefinition& definition, const SequenceData& sequence);
int ShownUnit(const ModelDefinition& definition, const SequenceData& sequence, int channel, int slot);

}  // namespace corlune
