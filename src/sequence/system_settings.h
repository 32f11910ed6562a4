// SystemSettings: the instrument set-up as sequence files carry it: the model and how each instrument is
// reached. AppState holds the set-up in force.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/app_state.h"

namespace corlune {

struct SystemSettings {
  std::string ModelName;
  std::int16_t ModelIndex = 0;
  std::int16_t InstrumentCount = 1;
  std::array<InstrumentEntry, kMaxInstruments> Instruments{};
  bool operator==(const SystemSettings&) const = default;
};

SystemSettings SettingsOf(const AppState& state);
void ApplySettings(AppState& state, const SystemSettings& settings);

// The kind behind a name of the model's interface list: "NI", "KI", "USB" or "USBTMC"; nullopt for others.
std::optional<InterfaceKind> KindOfInterface(std::string_view name);

}  // namespace corlune
