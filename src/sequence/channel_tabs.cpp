#include "sequence/channel_tabs.h"

#include <algorithm>

#include "sequence/sequence_data.h"

namespace corlune {

namespace {

int TableChannels(const InstrumentEntry& instrument) {
  return std::clamp<int>(instrument.ChannelCount, 0, MAX_CHANNELS);
}

}  // namespace

std::vector<ChannelTab> ChannelTabs(const AppState& state) {
  std::vector<ChannelTab> tabs;
  const int devices = std::clamp<int>(state.InstrumentCount, 0, kMaxInstruments);
  for (int device = 0; device < devices; ++device) {
    const int channels = TableChannels(state.Instruments[static_cast<std::size_t>(device)]);
    for (int channel = 0; channel < channels; ++channel) tabs.push_back({device, channel});
  }
  return tabs;
}

int EditedChannels(const AppState& state) {
  return state.InstrumentCount > 0 ? TableChannels(state.Instruments[0]) : 0;
}

}  // namespace corlune
