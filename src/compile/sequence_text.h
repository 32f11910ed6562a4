// The sequence text: the textual form of one instrument's sequence, input of the sequence compiler and
// answer of the instrument to the sequence query. CR LF lines, all 256 step slots whatever the step count.
#pragma once

#include <string>

#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune {

// Appends the text of `sequence` for a model with `channels` channels (1 or 2). Values are in base units.
void AppendSequenceText(std::string& out, const SequenceData& sequence, const ModelDefinition& definition,
                        const std::string& model, int channels);

// Appends only the lines of one step slot (0..255): its "STEP#" line and a "CHAN#" line for each channel.
void AppendStepLines(std::string& out, const SequenceData& sequence, const ModelDefinition& definition,
                     int slot, int channels);

// Writes the text to the file `path`, replacing it as a whole. On failure the old file stays and *error
// (may be null) says what failed.
[[nodiscard]] bool BuildSequenceText(const std::string& path, const SequenceData& sequence,
                                     const ModelDefinition& definition, const std::string& model,
                                     int channels, std::string* error = nullptr);

}  // namespace corlune
