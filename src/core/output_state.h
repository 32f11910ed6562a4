// What is known of the instruments' outputs, and what the output button does about it.
#pragma once

#include "core/app_state.h"

namespace corlune {

enum class OutputState {
  None,     // no instrument that could have outputs
  Unknown,  // see AppState::OutputInDoubt
  Off,
  On,
};
constexpr OutputState OutputStateOf(const AppState& state) {
  if (state.OutputInDoubt) return OutputState::Unknown;
  if (state.Online != 1) return OutputState::None;
  return state.OutputOn ? OutputState::On : OutputState::Off;
}

// An instrument may be giving its voltage: it can be switched off in every mode.
constexpr bool OutputMayBeOn(const AppState& state) {
  const OutputState output = OutputStateOf(state);
  return state.MayStillRun || output == OutputState::On || output == OutputState::Unknown;
}

// The output button and F8 switch off: an output is on, or nobody can say that it is not. They switch on
// otherwise.
constexpr bool OutputSwitchesOff(const AppState& state) {
  return state.OutputOn || state.OutputInDoubt || state.MayStillRun;
}

}  // namespace corlune
