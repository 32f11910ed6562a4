#include "sequence/run_times.h"

#include <algorithm>
#include <cmath>

#include "core/step_numbering.h"

namespace corlune {

namespace {

constexpr double kMsPerSecond = 1000;

double RoundTo4Decimals(double value) {
  const double rounded = std::nearbyint(value * 1e4) / 1e4;
  return std::isfinite(rounded) ? rounded : value;
}

// Period in ms of channel 1's frequency in this step; 0 for a frequency of 0.
double Period(const ParamCell& frequency) {
  if (frequency.Value == 0) return 0;
  return (frequency.UnitIndex == 0 ? kMsPerSecond : 1.0) / frequency.Value;
}

double StepRunTimeOf(const StepRow& row, const ParamCell& frequency) {
  double time = RoundTo4Decimals(row.StepTime * kMsPerSecond);
  if (row.StopPhaseOn == 1) {
    const double period = Period(frequency);
    time = std::max(time, period) + period / 360 * row.StopPhase;
  }
  return time;
}

// One pass of the loop that the step in `slot` jumps back over, in ms.
double LoopTime(const SequenceData& sequence, int slot) {
  const StepIndex first = IndexOf(StepNumber{sequence.Step(slot).JumpTo});
  if (first.value < 0) return 0;
  double time = 0;
  for (int step = first.value; step <= slot; ++step) {
    time += sequence.Step(step).StepTime * kMsPerSecond;
  }
  return time;
}

}  // namespace

RunTimes ComputeRunTimes(SequenceData& sequence) {
  double total = 0;
  bool endless = false;
  const int used = std::clamp<int>(sequence.StepCount, 0, MAX_STEPS);
  for (int slot = 0; slot < used; ++slot) {
    StepRow& row = sequence.Step(slot);
    total += row.StepTime * kMsPerSecond;
    row.StepRunTime = StepRunTimeOf(row, sequence.Cell(0, slot, kSlotFrequency));
    if (row.JumpOn != 1) continue;
    if (row.JumpCountOn == 0) endless = true;
    if (row.JumpCount > 0) total += row.JumpCount * LoopTime(sequence, slot);
  }
  if (endless) return {kEndless, kEndless};
  return {total, total};
}

}  // namespace corlune
