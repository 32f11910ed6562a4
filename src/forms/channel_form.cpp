#include "forms/channel_form.h"

#include <algorithm>
#include <array>

#include "core/numbers.h"
#include "sequence/units.h"

namespace corlune {

namespace {

// Shown where the step has 0: Hz, Vp-p, V, degrees, %.
constexpr std::array<double, kUserUnitQuantities> kUsualValues{1000, 10, 1, 90, 50};

bool IsVoltage(int slot) {
  return slot == kSlotAmplitude || slot == kSlotOffset;
}

EntryResult Result(const FieldCheck& check) {
  if (!check.Message) return std::nullopt;
  return EntryRefusal{*check.Message, check.Arguments};
}

}  // namespace

ChannelForm::ChannelForm(const SequenceData& sequence, const ModelDefinition& definition, int channels,
                         int step)
    : definition_(definition),
      channels_(std::clamp(channels, 1, MAX_CHANNELS)),
      step_(std::clamp(step, 0, MAX_STEPS - 1)),
      plain_(std::make_unique<SequenceData>(sequence)),
      edited_(std::make_unique<SequenceData>(sequence)) {
  plain_->Channels = ChannelSettings{};
  NormalizeChannelSettings(edited_->Channels);
}

int ChannelForm::Slot() const {
  return QuantitySlot(quantity_).value_or(kSlotFrequency);
}

bool ChannelForm::UserUnitPossible() const {
  return definition_.UserUnitCapability[At(channel_)][At(Slot())] == 1;
}

EntryResult ChannelForm::EnterNumber(std::string_view text, FieldCheck (*check)(std::string_view),
                                     double& value) const {
  const std::string plain = PlainEntry(text);
  if (plain == NumberText(value)) return std::nullopt;
  const FieldCheck checked = check(plain);
  if (!checked.Message) value = checked.Value;
  return Result(checked);
}

EntryResult ChannelForm::EnterLoad(std::string_view text) {
  return EnterNumber(text, CheckLoadValue, OfChannel().LoadValue);
}

EntryResult ChannelForm::EnterFactor(std::string_view text) {
  return EnterNumber(text, CheckFactor, OfQuantity().M);
}

EntryResult ChannelForm::EnterSummand(std::string_view text) {
  return EnterNumber(text, CheckSummand, OfQuantity().N);
}

EntryResult ChannelForm::EnterUnitText(std::string_view text) {
  const FieldCheck checked = CheckUnitText(text);
  if (!checked.Message) OfQuantity().UnitText = text;
  return Result(checked);
}

std::string ChannelForm::Reading(const MessageCatalogue& catalogue, const SequenceData& sequence,
                                 double value) const {
  const UserUnits units(sequence, definition_);
  std::string text = units.UserUnitText(value, channel_, step_, Slot());
  if (const std::string unit = units.UnitText(channel_, Slot()); !unit.empty()) text += " " + unit;
  if (!IsVoltage(Slot())) return text;
  const OutputLoad& load = sequence.Channels.Loads[At(channel_)];
  return load.LoadType == 0
             ? catalogue.GetResString(TextId::ExampleOpenCircuit, {text})
             : catalogue.GetResString(TextId::ExampleIntoLoad, {text, NumberText(load.LoadValue)});
}

std::string ChannelForm::Example(const MessageCatalogue& catalogue) const {
  double value = BaseValue(definition_, Slot(), plain_->Cell(channel_, step_, Slot()));
  if (value == 0) value = kUsualValues[At(quantity_)];
  return catalogue.GetResString(TextId::ExampleReading,
                                {Reading(catalogue, *plain_, value), Reading(catalogue, *edited_, value)});
}

void ChannelForm::ApplyTo(SequenceData& sequence) const {
  for (std::size_t channel = 0; channel < At(channels_); ++channel) {
    sequence.Channels.Loads[channel] = edited_->Channels.Loads[channel];
    sequence.Channels.UserUnits[channel] = edited_->Channels.UserUnits[channel];
  }
}

}  // namespace corlune
