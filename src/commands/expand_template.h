// Placeholder expansion of command templates.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sequence/sequence_data.h"

namespace corlune {

struct ChannelTab;

// Replaces the first placeholder of `commandTemplate` by a value of the sequence or the mode settings.
// `channel`: for "$CURMOD" and "$CURRAN" an index into ChannelTabs (device, channel), for "$WAVENU" the
// channel index 0..1. `step`: slot index 0..255. Returns 0 when the template holds no "$", else 1 (also
// when the placeholder is unknown and the template stays as it is).
std::int16_t ExpandCommandTemplate(std::string& commandTemplate, std::int16_t channel, std::int16_t step,
                                   const SequenceData& sequence, const std::vector<ChannelTab>& tabs);

}  // namespace corlune
