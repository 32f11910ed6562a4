// Defaults: what a new step, a new sequence and a freshly started program hold.
#pragma once

#include <tuple>

#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune {

// The value that a new step gets for this parameter, in base units: the definition's default; for a range the
// value within the range that is nearest to it. A bound given as a placeholder does not limit.
double DefaultValue(const ParamDef& definition);

static_assert(MAX_PARAMS == kAreaParams);
static_assert(kModeSets == std::tuple_size_v<decltype(ModelDefinition::ModeSets)>);

// Columns of the step table, as numbered by the common area definitions.
enum CommonColumn : int {
  kColumnStepTime = 0,
  kColumnAutoHold = 1,
  kColumnStopPhase = 2,
  kColumnEventBranch = 3,
  kColumnStateBranch = 4,
  kColumnJumpTo = 5,
  kColumnJumpCount = 6,
  kColumnStepTerm = 7,
  kColumnStepCode = 8,
};

// Makes `slot` (0..255) a new step: its fields and the cells of both channels take the defaults of the
// definition, everything that can be switched is off. StartValue becomes the value itself; the slots behind
// are left alone (start_values.h brings them up to date).
void ResetStep(SequenceData& sequence, int slot, const ModelDefinition& definition);

// An empty sequence: no steps used, all 256 slots new, start step and branch channel as the definition's
// selectors say, common parameters and channel settings at their defaults. What is known about the
// instrument's waveform memory (InInstrument and the count that goes with it) stays.
void ResetSequence(SequenceData& sequence, const ModelDefinition& definition);

// The per-channel tables when the program starts: no waveform files, loads and user units at their
// defaults. Off-line, the waveform sizes are forgotten too.
void ResetChannelTables(SequenceData& sequence, bool online);

// The entry of an ARB number that now has `path` (empty: none): not yet transferred, its size unknown,
// except that without a file the size of what the instrument holds is kept.
ArbFileEntry EntryWithFile(const ArbFileEntry& before, std::string path);

}  // namespace corlune
