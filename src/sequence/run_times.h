// Run times: how long each step and the whole sequence take.
#pragma once

#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune {

// Milliseconds; both -1 when the sequence never ends by itself.
struct RunTimes {
  double Total = 0;
  double Second = 0;  // set together with Total
  bool operator==(const RunTimes&) const = default;
};

inline constexpr double kEndless = -1;

// Fills StepRunTime (ms) of the used steps and returns the total: the step times, each counted jump adding
// its loop once per count. Stop phases lengthen StepRunTime, not the total. A jump without a target, or to a
// step behind it, adds nothing. The time does not grow with the jump counts.
RunTimes ComputeRunTimes(SequenceData& sequence, const ModelDefinition& definition);

// What ComputeRunTimes stores for the step in `slot` (0..255): its length with the stop phase, ms.
double RunTimeOf(const SequenceData& sequence, const ModelDefinition& definition, int slot);

}  // namespace corlune
