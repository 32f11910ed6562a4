#include "sequence/start_values.h"

#include <algorithm>

#include "sequence/units.h"

namespace corlune {

namespace {

double EndOf(const ParamCell& previous, std::int16_t unit) {
  const double value = previous.ChangeMode == kModeKeep ? previous.StartValue : previous.Value;
  return InUnit(value, previous.UnitIndex, unit);
}

}  // namespace

void ComputeStartValues(SequenceData& sequence, int channel, int param, int firstStep) {
  for (int step = std::max(firstStep, 0); step < MAX_STEPS; ++step) {
    ParamCell& cell = sequence.Cell(channel, step, param);
    if (cell.ChangeMode == kModeConst) {
      cell.StartValue = cell.Value;
    } else if (step == 0) {
      cell.StartValue = 0;
    } else {
      cell.StartValue = EndOf(sequence.Cell(channel, step - 1, param), cell.UnitIndex);
    }
  }
}

void ComputeStartValues(SequenceData& sequence) {
  for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
    for (int param = 0; param < MAX_PARAMS; ++param) ComputeStartValues(sequence, channel, param, 0);
  }
}

}  // namespace corlune
