#include "sequence/system_settings.h"

namespace corlune {

SystemSettings SettingsOf(const AppState& state) {
  return {state.ModelName, state.ModelIndex, state.InstrumentCount, state.Instruments};
}

void ApplySettings(AppState& state, const SystemSettings& settings) {
  state.ModelName = settings.ModelName;
  state.ModelIndex = settings.ModelIndex;
  state.InstrumentCount = settings.InstrumentCount;
  state.Instruments = settings.Instruments;
}

std::optional<InterfaceKind> KindOfInterface(std::string_view name) {
  if (name == "NI") return InterfaceKind::NiGpib;
  if (name == "KI") return InterfaceKind::KiGpib;
  if (name == "USB") return InterfaceKind::Usb488;
  if (name == "USBTMC") return InterfaceKind::UsbTmc;
  return std::nullopt;
}

}  // namespace corlune
