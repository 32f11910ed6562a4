#include "forms/mode_form.h"

#include <algorithm>

namespace corlune {

ModeForm::ModeForm(const SequenceData& sequence, const AppState& state, const ModelDefinition& definition)
    : state_(state), definition_(definition), edited_(sequence.ModeSettings) {}

int ModeForm::Devices() const {
  return std::clamp<int>(state_.InstrumentCount, 0, kMaxInstruments);
}

int ModeForm::ChannelsOf(int device) const {
  return std::clamp<int>(state_.Instruments[static_cast<std::size_t>(device)].ChannelCount, 0, MAX_CHANNELS);
}

int ModeForm::Channels() const {
  if (device_ != kAll) return ChannelsOf(device_);
  int most = 0;
  for (int device = 0; device < Devices(); ++device) most = std::max(most, ChannelsOf(device));
  return most;
}

void ModeForm::SelectDevice(int device) {
  device_ = device;
  if (channel_ >= Channels()) channel_ = kAll;
}

std::vector<int> ModeForm::Sets() const {
  std::vector<int> sets;
  for (int set = 0; set < std::clamp<int>(definition_.ModeSetCount, 0, kModeSets); ++set) {
    if (!Set(set).Choices.Texts.empty()) sets.push_back(set);
  }
  return sets;
}

std::vector<ModeForm::Place> ModeForm::Places(bool saved) const {
  const bool allChannels = channel_ == kAll || !PerChannel();
  std::vector<Place> places;
  for (int device = 0; device < Devices(); ++device) {
    if (device_ != kAll && device != device_) continue;
    const int channels = ChannelsOf(device);
    const int first = allChannels ? 0 : channel_;
    const int end = allChannels ? channels + (saved ? 1 : 0) : std::min(channel_ + 1, channels);
    for (int channel = first; channel < end; ++channel) {
      places.push_back({static_cast<std::size_t>(device), static_cast<std::size_t>(channel)});
    }
  }
  return places;
}

std::optional<int> ModeForm::Selection(int set) const {
  std::optional<int> common;
  for (const auto& [device, channel] : Places(false)) {
    const int selection = edited_[device][static_cast<std::size_t>(set * kModeSlots) + channel];
    if (common && *common != selection) return std::nullopt;
    common = selection;
  }
  const auto choices = static_cast<int>(Set(set).Choices.Texts.size());
  return common && *common >= 0 && *common < choices ? common : std::nullopt;
}

void ModeForm::Choose(int set, int choice) {
  for (const auto& [device, channel] : Places(true)) {
    edited_[device][static_cast<std::size_t>(set * kModeSlots) + channel] = static_cast<std::int16_t>(choice);
  }
}

}  // namespace corlune
