#include "session/system_defaults.h"

#include <algorithm>

#include "core/catalogue.h"
#include "execution/run_state.h"
#include "sequence/defaults.h"
#include "sequence/system_settings.h"

namespace corlune {

namespace {

// The first interface; where an instrument was found on another one, that one.
void ChooseInterface(AppState& state, const ModelInterfaceSpec& model) {
  InstrumentEntry& instrument = state.Instruments[0];
  instrument.Interface = 0;
  if (model.InterfaceNames.empty()) return;
  const auto& names = model.InterfaceNames;
  const auto found = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
    return KindOfInterface(name) == instrument.InterfaceKind;
  });
  if (state.Online == 1 && found != names.end()) {
    instrument.Interface = static_cast<std::int16_t>(found - names.begin());
  } else if (instrument.InterfaceKind != InterfaceKind::Simulated) {
    instrument.InterfaceKind = KindOfInterface(names[0]).value_or(instrument.InterfaceKind);
  }
}

}  // namespace

std::int16_t ChannelsOfModel(const std::string& model) {
  return model == MessageCatalogue::GetFixedString(FixedText::TwoChannelModel) ? 2 : 1;
}

void InitSystemDefaults(AppState& state, const ModelDefinition& definition, SequenceData& sequence) {
  SetRunState(state, RunState::Stopped);
  state.Modified = false;
  state.InstrumentCount = 1;
  InstrumentEntry& instrument = state.Instruments[0];
  instrument.ChannelCount = ChannelsOfModel(state.ModelName);
  ChooseInterface(state, definition.InterfaceOf(state.ModelIndex));
  const ModelInterfaceSpec& first = definition.InterfaceOf(0);
  if (instrument.InterfaceKind == InterfaceKind::UsbTmc) {
    if (instrument.SerialNo.empty()) instrument.SerialNo = first.SerialNo;
  } else {
    const bool usb =
        !first.InterfaceNames.empty() && first.InterfaceNames[0].find("USB") != std::string::npos;
    instrument.Address = usb ? first.UsbId.Default : first.GpibAddress.Default;
  }
  ResetSequence(sequence, definition);
}

}  // namespace corlune
