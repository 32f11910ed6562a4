// ChannelForm: the channel settings (output loads and user units) while their dialog is open. A copy is
// edited, one channel and one quantity at a time; nothing reaches the sequence before ApplyTo.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "core/catalogue.h"
#include "editing/value_entry.h"
#include "sequence/user_units.h"

namespace corlune {

class ChannelForm {
 public:
  // Of the first `channels` channels (1..2). Repairs what a file may have brought. The example takes its
  // values from step slot `step` where it has one. `definition` must outlive the form.
  ChannelForm(const SequenceData& sequence, const ModelDefinition& definition, int channels, int step);

  // What is shown: a channel from 0 and a quantity 0..4 (frequency, amplitude, offset, phase, duty).
  int Channels() const { return channels_; }
  int Channel() const { return channel_; }
  void SelectChannel(int channel) { channel_ = channel; }
  int Quantity() const { return quantity_; }
  void SelectQuantity(int quantity) { quantity_ = quantity; }

  const OutputLoad& Load() const { return edited_->Channels.Loads[At(channel_)]; }
  bool VariableLoad() const { return Load().LoadType != 0; }
  const UserUnitDef& Unit() const { return edited_->Channels.UserUnits[At(channel_)][At(Slot())]; }
  // The model lets the quantity of this channel have a user unit.
  bool UserUnitPossible() const;

  void ChooseLoadType(int type) { OfChannel().LoadType = type; }
  void ChooseUse(int use) { OfQuantity().UseUserUnit = use; }
  void ChooseForm(int form) { OfQuantity().Form = form; }
  // A refused text leaves the value as it was; the text that the value shows is always accepted.
  EntryResult EnterLoad(std::string_view text);  // 1..10000 ohm, digits only
  EntryResult EnterUnitText(std::string_view text);
  EntryResult EnterFactor(std::string_view text);
  EntryResult EnterSummand(std::string_view text);

  // How a value of the quantity reads with load and user unit: "Example: 10 Vp-p into High-Z reads 5 Vp-p
  // into 50 ohm". The value is that of the step, or a usual one where the step has 0.
  std::string Example(const MessageCatalogue& catalogue) const;

  void ApplyTo(SequenceData& sequence) const;

 private:
  static std::size_t At(int index) { return static_cast<std::size_t>(index); }
  int Slot() const;
  OutputLoad& OfChannel() { return edited_->Channels.Loads[At(channel_)]; }
  UserUnitDef& OfQuantity() { return edited_->Channels.UserUnits[At(channel_)][At(Slot())]; }
  EntryResult EnterNumber(std::string_view text, FieldCheck (*check)(std::string_view), double& value) const;
  std::string Reading(const MessageCatalogue& catalogue, const SequenceData& sequence, double value) const;

  const ModelDefinition& definition_;
  int channels_;
  int step_;
  int channel_ = 0;
  int quantity_ = 0;
  std::unique_ptr<SequenceData> plain_;   // open circuit, without user units
  std::unique_ptr<SequenceData> edited_;  // as it would be after OK
};

}  // namespace corlune
