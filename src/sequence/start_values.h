// Start values: the value with which each cell's step begins. A constant cell begins with its own value, a
// kept or swept one where the step before it ended. Computed anew after every edit that touches a value, a
// change mode or a unit, and after a load.
#pragma once

#include "sequence/sequence_data.h"

namespace corlune {

// Every cell of both channels, all 256 slots.
void ComputeStartValues(SequenceData& sequence);

// One parameter of one channel from slot `firstStep` (0..255) to the last slot; the slots before it must be
// up to date. An edit in slot s needs firstStep = s.
void ComputeStartValues(SequenceData& sequence, int channel, int param, int firstStep);

}  // namespace corlune
