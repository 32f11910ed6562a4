// The instrument set-up and the sequence of a model that has no work file yet.
#pragma once

#include "core/app_state.h"
#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune {

// Output channels of one instrument of the edited model.
std::int16_t ChannelsOfModel(const std::string& model);

// Stopped, unmodified, one instrument on the model's first interface, an empty sequence. The address and
// serial number defaults are those of the first model in the list, whatever model is edited. A serial number
// that the search or a selection found stays, and so does the kind it was found on.
void InitSystemDefaults(AppState& state, const ModelDefinition& definition, SequenceData& sequence);

}  // namespace corlune
