#include "sequence/start_values.h"

#include <algorithm>

namespace corlune {

namespace {

constexpr double kUnitFactor = 1000;  // between the first two units of a list, e.g. Hz and kHz

double EndOf(const ParamCell& previous, std::int16_t unit) {
  const double value = previous.ChangeMode == kModeKeep ? previous.StartValue : previous.Value;
  if (previous.UnitIndex == 1 && unit == 0) return value * kUnitFactor;
  if (previous.UnitIndex == 0 && unit == 1) return value / kUnitFactor;
  return value;
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
