// ChannelTabs: the (device, channel) pairs that the sequence area shows as tabs, in device order.
#pragma once

#include <vector>

#include "core/app_state.h"

namespace corlune {

struct ChannelTab {
  int Device = 0;   // instrument index
  int Channel = 0;  // channel index within the device
  bool operator==(const ChannelTab&) const = default;
};

inline constexpr int kMaxChannelTabs = 20;

// At most kMaxChannelTabs pairs.
std::vector<ChannelTab> ChannelTabs(const AppState& state);
// Channels of the edited instrument that the sequence tables hold: 0..2.
int EditedChannels(const AppState& state);

}  // namespace corlune
