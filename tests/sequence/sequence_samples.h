// A small model definition and generated sequences for the tests of this room.
#pragma once

#include <random>

#include "core/app_state.h"
#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune::testing {

inline ParamDef Range(double minimum, double maximum, double resolution, double standard,
                      const char* resolutionText) {
  ParamDef definition;
  definition.Minimum = minimum;
  definition.Maximum = maximum;
  definition.Resolution = resolution;
  definition.ResolutionText = resolutionText;
  definition.Default = standard;
  return definition;
}

// Two models; all 11 parameters and 2 mode sets in use; every default differs from 0 somewhere.
inline ModelDefinition SampleDefinition() {
  ModelDefinition definition;
  definition.Models = {"QM2210", "QM2220"};
  definition.Interfaces.resize(2);
  definition.Interfaces[0].InterfaceNames = {"USBTMC", "NI"};
  definition.Interfaces[1].InterfaceNames = {"NI", "KI", "USB", "USBTMC"};
  definition.StartStep = {true, 1, 1, 255};
  definition.Branch = {true, 2, 1, 5};
  definition.ModeSetCount = 2;
  definition.Branches.Default = 3;
  auto& columns = definition.Common.Params;
  columns[0] = Range(0.001, 10000, 0.001, 1, "0.001");
  columns[2] = Range(0, 360, 0.1, 90, "0.1");
  for (int column : {3, 4, 5}) {
    columns[static_cast<std::size_t>(column)] = Range(1, 0, 1, 0, "1");
    columns[static_cast<std::size_t>(column)].RangePlaceholder[1] = "$MAXSTEP";
  }
  columns[6] = Range(1, 999, 1, 1, "1");
  columns[7].ValueKind = 2;
  columns[7].Default = 1;
  definition.Sequence.ParamCount = 11;
  auto& params = definition.Sequence.Params[0];
  params[kSlotWaveform].ValueKind = 2;
  params[kSlotArbNumber] = Range(1, 128, 1, 0, "1");
  params[kSlotFrequency] = Range(1e-6, 20e6, 1e-6, 1000, "0.000001");
  params[kSlotFrequency].UnitKind = 2;
  params[kSlotFrequency].UnitDefault = 1;
  params[kSlotAmplitude] = Range(0, 20, 0.0001, 0, "0.0001");
  params[kSlotOffset] = Range(-10, 10, 0.0001, 0, "0.0001");
  params[kSlotDuty] = Range(0.1, 99.9, 0.1, 50, "0.1");
  for (auto& channel : definition.UserUnitCapability) channel.fill(1);
  return definition;
}

// A set-up of `instruments` instruments of model QM2220, instrument i with `channels` channels.
inline AppState SampleState(int instruments = 1, int channels = 2) {
  AppState state;
  state.ProgId = "CORLUNE";
  state.VerNo = "1.00";
  state.ModelName = "QM2220";
  state.ModelIndex = 1;
  state.InstrumentCount = static_cast<std::int16_t>(instruments);
  for (int i = 0; i < instruments; ++i) {
    InstrumentEntry& entry = state.Instruments[static_cast<std::size_t>(i)];
    entry.Interface = static_cast<std::int16_t>(3 - i % 4);
    entry.InterfaceKind = static_cast<InterfaceKind>(entry.Interface);
    entry.Address = i + 2;
    entry.SerialNo = "SN" + std::to_string(i);
    entry.ChannelCount = static_cast<std::int16_t>(channels);
  }
  return state;
}

// Fills every stored field with random values that survive the 15 digits of a file.
class SequenceGenerator {
 public:
  explicit SequenceGenerator(unsigned seed) : random_(seed) {}

  int Integer(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
  std::int16_t Short() { return static_cast<std::int16_t>(Integer(-32768, 32767)); }
  std::int16_t Flag() { return static_cast<std::int16_t>(Integer(0, 1)); }
  // Mixed magnitudes and digit counts, some integral.
  double Number() {
    const double digits = Integer(-99999999, 99999999);
    switch (Integer(0, 3)) {
      case 0:
        return Integer(-9, 9);
      case 1:
        return digits;
      default:
        return std::strtod(
            (std::to_string(Integer(-99999999, 99999999)) + "e" + std::to_string(Integer(-18, 8))).c_str(),
            nullptr);
    }
  }
  std::string Text(const char* letters, int longest) {
    std::string text;
    const std::string_view from(letters);
    for (int i = Integer(0, longest); i > 0; --i) {
      text += from[static_cast<std::size_t>(Integer(0, static_cast<int>(from.size()) - 1))];
    }
    return text;
  }

  StepRow Step() {
    StepRow row;
    row.StepTime = Number();
    row.StopPhase = Number();
    for (auto* flag : {&row.AutoHold, &row.StopPhaseOn, &row.EventBranchOn, &row.StateBranchOn, &row.JumpOn,
                       &row.JumpCountOn, &row.TimeUnit}) {
      *flag = Flag();
    }
    for (auto* number :
         {&row.EventBranchStep, &row.StateBranchStep, &row.JumpTo, &row.JumpCount, &row.StepCode}) {
      *number = Short();
    }
    row.StepTerm = static_cast<std::int16_t>(Integer(0, 2));
    if (Flag()) {
      for (auto& target : row.BranchStep) target = static_cast<std::int16_t>(Integer(0, 256));
    } else {
      row.BranchStep = {3, 3, 0, 0, 0};
    }
    return row;
  }

  // Changes what a file with `channels` channels holds, for `steps` steps.
  void Fill(SequenceData& sequence, int steps, int channels) {
    sequence.StepCount = static_cast<std::int16_t>(steps);
    sequence.StartStep = static_cast<std::int16_t>(Integer(0, 255));
    sequence.BranchChannel = static_cast<std::int16_t>(Integer(1, 5));
    sequence.Common = {static_cast<std::int16_t>(Integer(1, 255)), Integer(0, 2), Flag(), Flag(), Flag()};
    for (int slot = 0; slot < steps; ++slot) {
      sequence.Steps[static_cast<std::size_t>(slot)] = Step();
      for (int channel = 0; channel < channels; ++channel) {
        for (int param = 0; param < MAX_PARAMS; ++param) {
          sequence.Cell(channel, slot, param) = {static_cast<std::int16_t>(Integer(0, 2)), Flag(), Number(),
                                                 0};
        }
      }
    }
    auto& settings = sequence.Channels;
    for (int channel = 0; channel <= channels; ++channel) {
      settings.Loads[static_cast<std::size_t>(channel)] = {Integer(-1, 2), Number()};
      if (channel == channels) break;
      for (std::size_t param = 0; param < 10; ++param) {
        settings.UserUnits[static_cast<std::size_t>(channel)][param] = {Flag(), Flag(), Text("aZ%=,; #", 6),
                                                                        Number(), Number()};
      }
    }
    for (auto& entry : settings.ArbFiles) entry.FilePath = Text("ab =;#,/\\.[]", 12);
    for (auto& area : sequence.ViewAreas) area = {Short(), Short(), Flag(), Short()};
  }

 private:
  std::mt19937 random_;
};

}  // namespace corlune::testing
