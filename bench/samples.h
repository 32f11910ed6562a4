// What the benchmarks work on: the shipped definition of the two-channel model, and a sequence that fills it.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

#include "core/app_state.h"
#include "modeldef/read_model_definition.h"
#include "sequence/defaults.h"
#include "sequence/run_times.h"
#include "sequence/sequence_data.h"
#include "sequence/start_values.h"

namespace corlune::bench {

// A benchmark that does not do its work must not print a figure.
[[noreturn]] inline void Fail(const std::string& what) {
  std::cerr << what << std::endl;
  std::exit(1);
}

inline const ModelDefinition& ShippedDefinition() {
  static const ModelDefinition definition = [] {
    ModelDefinition loaded;
    if (ReadModelDefinition(CORLUNE_DATA "/Corlune_Std.ini", "QM2220", false, loaded) != DefinitionLoad::Ok) {
      Fail("the shipped model definition does not load");
    }
    return loaded;
  }();
  return definition;
}

inline AppState TwoChannelState() {
  AppState state;
  state.ProgId = "CORLUNE";
  state.VerNo = "1.00";
  state.ModelName = "QM2220";
  state.ModelIndex = 1;
  state.Instruments[0].InterfaceKind = InterfaceKind::UsbTmc;
  state.Instruments[0].SerialNo = "QM000001";
  state.Instruments[0].ChannelCount = 2;
  return state;
}

// Every field of `steps` steps and both channels at a value of its own, within what the model takes: nothing
// is left at a default that a reader or writer could be quick about.
inline SequenceData FullSequence(int steps) {
  std::mt19937 random(20);
  const auto integer = [&](int low, int high) {
    return static_cast<std::int16_t>(std::uniform_int_distribution<int>(low, high)(random));
  };
  const auto decimal = [&](int low, int high, double scale) {
    return std::uniform_int_distribution<int>(low, high)(random) / scale;
  };
  SequenceData sequence;
  ResetSequence(sequence, ShippedDefinition());
  sequence.StepCount = static_cast<std::int16_t>(steps);
  for (int slot = 0; slot < steps; ++slot) {
    StepRow& row = sequence.Steps[static_cast<std::size_t>(slot)];
    row.StepTime = decimal(1, 9999999, 1000);
    row.AutoHold = integer(0, 1);
    row.StopPhaseOn = integer(0, 1);
    row.StopPhase = decimal(0, 3600, 10);
    row.StepTerm = integer(0, 2);
    row.JumpOn = integer(0, 1);
    row.JumpTo = integer(1, steps);
    row.JumpCountOn = integer(0, 1);
    row.JumpCount = integer(1, 999);
    row.EventBranchOn = integer(0, 1);
    row.EventBranchStep = integer(1, steps);
    row.StateBranchOn = integer(0, 1);
    row.StateBranchStep = integer(1, steps);
    row.StepCode = integer(0, 15);
    row.BranchStep = {integer(1, steps), integer(1, steps), 0, 0, 0};
    for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
      const auto set = [&](int param, double value) {
        sequence.Cell(channel, slot, param).Value = value;
        sequence.Cell(channel, slot, param).ChangeMode = integer(0, 2);
      };
      set(kSlotWaveform, integer(0, 4));
      set(kSlotArbNumber, integer(1, kArbNumbers));
      set(kSlotFrequency, decimal(1, 999999999, 1000));
      set(kSlotAmplitude, decimal(1, 99999, 10000));
      set(kSlotPolarityRange, integer(0, 5));
      set(kSlotOffset, decimal(-49999, 49999, 10000));
      set(kSlotPhase, decimal(-3600000, 3600000, 10000));
      set(kSlotDuty, decimal(1000, 999000, 10000));
      set(kSlotExternal, integer(0, 1));
    }
  }
  ComputeStartValues(sequence);
  ComputeRunTimes(sequence, ShippedDefinition());
  return sequence;
}

}  // namespace corlune::bench
