// ModeForm: the choices of the mode sets while their dialog is open, for one instrument and channel or for
// several at once. A copy is edited; nothing reaches the sequence before ApplyTo, and nothing the instrument.
#pragma once

#include <optional>
#include <vector>

#include "core/app_state.h"
#include "sequence/sequence_data.h"

namespace corlune {

class ModeForm {
 public:
  static constexpr int kAll = -1;  // in place of an instrument or channel

  // `state` and `definition` must outlive the form.
  ModeForm(const SequenceData& sequence, const AppState& state, const ModelDefinition& definition);

  int Devices() const;
  // Of the chosen instrument; of all the greatest number.
  int Channels() const;
  bool PerChannel() const { return definition_.ModePerChannel; }
  // Counted from 0, or kAll. Another instrument keeps the channel where it has it, else all are chosen.
  void SelectDevice(int device);
  void SelectChannel(int channel) { channel_ = channel; }
  int Device() const { return device_; }
  int Channel() const { return channel_; }

  // The mode sets that offer a choice, by number 0..7.
  std::vector<int> Sets() const;
  const ModeSetSpec& Set(int set) const { return definition_.ModeSets[static_cast<std::size_t>(set)]; }
  // What all chosen channels have; nullopt: they differ, or the list does not have it.
  std::optional<int> Selection(int set) const;
  // For every chosen channel; with all of them, also for the slot that the file keeps behind the last one.
  void Choose(int set, int choice);
  void ApplyTo(SequenceData& sequence) const { sequence.ModeSettings = edited_; }

 private:
  struct Place {
    std::size_t device;
    std::size_t channel;
  };
  // `saved`: with the slots that no channel has but the file keeps.
  std::vector<Place> Places(bool saved) const;
  int ChannelsOf(int device) const;

  const AppState& state_;
  const ModelDefinition& definition_;
  decltype(SequenceData::ModeSettings) edited_;
  int device_ = kAll;
  int channel_ = kAll;
};

}  // namespace corlune
