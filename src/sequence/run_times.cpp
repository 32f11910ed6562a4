#include "sequence/run_times.h"

#include <algorithm>
#include <cmath>

#include "core/step_numbering.h"
#include "sequence/units.h"

namespace corlune {

namespace {

constexpr double kMsPerSecond = 1000;

double RoundTo4Decimals(double value) {
  const double rounded = std::nearbyint(value * 1e4) / 1e4;
  return std::isfinite(rounded) ? rounded : value;
}

double StepTimeMs(const StepRow& row, const ModelDefinition& definition) {
  return BaseTime(definition, row) * kMsPerSecond;
}

// `frequency` is channel 1's in this step, Hz; 0 has no period.
double StepRunTimeOf(const StepRow& row, double stepTime, double frequency) {
  double time = RoundTo4Decimals(stepTime);
  if (row.StopPhaseOn == 1) {
    const double period = frequency == 0 ? 0 : kMsPerSecond / frequency;
    time = std::max(time, period) + period / 360 * row.StopPhase;
  }
  return time;
}

// One pass of the loop that the step in `slot` jumps back over, in ms.
double LoopTime(const SequenceData& sequence, const ModelDefinition& definition, int slot) {
  const StepIndex first = IndexOf(StepNumber{sequence.Step(slot).JumpTo});
  if (first.value < 0) return 0;
  double time = 0;
  for (int step = first.value; step <= slot; ++step) {
    time += StepTimeMs(sequence.Step(step), definition);
  }
  return time;
}

}  // namespace

double RunTimeOf(const SequenceData& sequence, const ModelDefinition& definition, int slot) {
  const StepRow& row = sequence.Step(slot);
  const ParamCell& frequency = sequence.Cell(0, slot, kSlotFrequency);
  return StepRunTimeOf(row, StepTimeMs(row, definition), BaseValue(definition, kSlotFrequency, frequency));
}

RunTimes ComputeRunTimes(SequenceData& sequence, const ModelDefinition& definition) {
  double total = 0;
  bool endless = false;
  const int used = std::clamp<int>(sequence.StepCount, 0, MAX_STEPS);
  for (int slot = 0; slot < used; ++slot) {
    StepRow& row = sequence.Step(slot);
    total += StepTimeMs(row, definition);
    row.StepRunTime = RunTimeOf(sequence, definition, slot);
    if (row.JumpOn != 1) continue;
    if (row.JumpCountOn == 0) endless = true;
    if (row.JumpCount > 0) total += row.JumpCount * LoopTime(sequence, definition, slot);
  }
  if (endless) return {kEndless, kEndless};
  return {total, total};
}

}  // namespace corlune
