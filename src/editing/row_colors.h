// Row colours by jump structure.
#pragma once

#include <array>

#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune {

using RowColors = std::array<Color, MAX_STEPS>;

// By slot. Every step has the default colour; the steps from the target of a backward jump to the jumping
// step have the loop colour, or the endless colour when the jump repeats without limit. Later steps
// colour over earlier ones; a step that jumps to itself colours nothing.
RowColors JumpColorSet(const SequenceData& sequence, const ModelDefinition& definition);

}  // namespace corlune
