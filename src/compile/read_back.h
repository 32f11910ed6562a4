// Read-back: fetches the sequence that the instrument holds in one of its memories.
#pragma once

#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>

#include "comm/command_layer.h"
#include "core/catalogue.h"
#include "core/ports.h"
#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune {

// Slots of which at least one line was taken over.
using ReceivedSteps = std::bitset<MAX_STEPS>;

enum class ReadBackEnd { Done, Failed, Cancelled };

// Reads the whole memory `number` (0..10) of instrument 0 into `sequence`: exchange, text, step count and
// start values. On failure, also when the answer holds no step, message ReadBackError (CannotWriteFile
// without room for the answer) has been shown and `sequence` is as it was. Shows progress, whose cancelling
// has the instrument drop its answer, and pumps events for 5.5 s; the caller keeps edits away meanwhile.
// Off-line nothing happens: Failed.
[[nodiscard]] ReadBackEnd ReadBackSequence(CommandLayer& commands, Prompts& prompts, Progress& progress,
                                           const MessageCatalogue& catalogue, int number,
                                           SequenceData& sequence);

// Takes the common parameters, steps and channel cells (channels 1..`channels`) of a sequence text over into
// `sequence`, the values in the first unit of their columns. What the text lacks stays as it is; a line with
// too few fields or with a number that is none is skipped whole. Step count, branch destinations and start
// values are left alone.
ReceivedSteps ReadSequenceText(std::string_view text, int channels, const ModelDefinition& definition,
                               SequenceData& sequence);

// Number of the last received step that differs from a new one in anything that a sequence text carries;
// 0 when none does. `fresh` holds new steps in all slots.
std::int16_t ReceivedStepCount(const ReceivedSteps& received, const SequenceData& sequence,
                               const SequenceData& fresh, const ModelDefinition& definition, int channels);

}  // namespace corlune
