// Session: the set-up of the instruments, checked and taken.
#include <algorithm>
#include <memory>
#include <utility>

#include "session/session.h"

namespace corlune {

namespace {

constexpr int kMostChannels = 20;

bool OnGpib(const InstrumentEntry& entry) {
  return entry.InterfaceKind == InterfaceKind::NiGpib || entry.InterfaceKind == InterfaceKind::KiGpib;
}

// The message that forbids the two instruments beside each other, nullopt for none.
std::optional<TextId> Conflict(const InstrumentEntry& a, const InstrumentEntry& b) {
  if (a.InterfaceKind == InterfaceKind::UsbTmc && b.InterfaceKind == InterfaceKind::UsbTmc) {
    if (a.SerialNo == b.SerialNo) return TextId::SameSerialNumber;
    return std::nullopt;
  }
  const bool bothUsb = a.InterfaceKind == InterfaceKind::Usb488 && b.InterfaceKind == InterfaceKind::Usb488;
  const bool byAddress = bothUsb || (OnGpib(a) && OnGpib(b));
  if (byAddress && a.Address == b.Address) return TextId::SameAddress;
  return std::nullopt;
}

std::array<InstrumentEntry, kMaxInstruments> WithKinds(const SystemSettings& setup,
                                                       const ModelInterfaceSpec& model) {
  auto instruments = setup.Instruments;
  for (InstrumentEntry& entry : instruments) {
    if (entry.Interface < 0 || entry.Interface >= static_cast<int>(model.InterfaceNames.size())) continue;
    const std::string& name = model.InterfaceNames[static_cast<std::size_t>(entry.Interface)];
    entry.InterfaceKind = KindOfInterface(name).value_or(entry.InterfaceKind);
  }
  return instruments;
}

}  // namespace

std::optional<TextId> Session::CheckSetup(const SystemSettings& setup) const {
  const auto count = static_cast<std::size_t>(std::clamp<int>(setup.InstrumentCount, 1, kMaxInstruments));
  const int model = definition_.IndexOfModel(setup.ModelName);
  const auto instruments = WithKinds(setup, definition_.InterfaceOf(model));
  int channels = 0;
  for (std::size_t i = 0; i < count; ++i) channels += instruments[i].ChannelCount;
  if (channels > kMostChannels) return TextId::TooManyChannels;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t j = i + 1; j < count; ++j) {
      if (const auto message = Conflict(instruments[i], instruments[j])) return message;
    }
  }
  return std::nullopt;
}

bool Session::ApplySetup(const SystemSettings& setup) {
  if (!MayReplaceSequence() || !control_->AgreeToGoOn()) return false;
  const WorkGuard guard(activity_, Work::Exchange);
  const bool newModel = setup.ModelName != state_.ModelName;
  if (newModel) {
    auto definition = std::make_unique<ModelDefinition>(definition_);
    AppState next = state_;
    next.ModelName = setup.ModelName;
    next.ModelIndex = static_cast<std::int16_t>(std::max(0, definition_.IndexOfModel(setup.ModelName)));
    if (!AskToSave()) return false;
    if (!LoadDefinitionOf(next, *definition, true)) return false;
    state_.ModelName = next.ModelName;
    state_.ModelIndex = next.ModelIndex;
    definition_ = std::move(*definition);
    SetWorkFilePath();
    ClearSequence();
  }
  state_.InstrumentCount =
      static_cast<std::int16_t>(std::clamp<int>(setup.InstrumentCount, 1, kMaxInstruments));
  state_.Instruments = WithKinds(setup, definition_.InterfaceOf(state_.ModelIndex));
  ApplySimulated();
  ports_.display.SequenceReplaced(newModel ? SequenceChange::New : SequenceChange::SetupChanged);
  ports_.display.ShowCaption(Caption());
  Reconnect();
  return true;
}

}  // namespace corlune
