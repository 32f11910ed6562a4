#include "compile/step_flow.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/numbers.h"
#include "core/step_numbering.h"

namespace corlune {

namespace {

// Stored numbers of the steps that can follow; some may name no step.
std::vector<StepNumber> Successors(const SequenceData& sequence, int slot) {
  const StepRow& row = sequence.Step(slot);
  std::vector<StepNumber> next;
  const bool endless = row.JumpOn != 0 && row.JumpCountOn == 0;
  if (endless || (row.JumpOn != 0 && row.JumpCount > 0)) next.push_back({row.JumpTo});
  if (row.EventBranchOn != 0) next.push_back({row.EventBranchStep});
  if (row.StateBranchOn != 0) next.push_back({row.StateBranchStep});
  for (const std::int16_t target : row.BranchStep) next.push_back({target});
  if (row.StepTerm == 0 && !endless) next.push_back(NumberOf(StepIndex{slot + 1}));
  return next;
}

void MarkReachable(const SequenceData& sequence, std::array<bool, MAX_STEPS>& reachable) {
  std::vector<int> waiting;
  const auto enter = [&](StepNumber number) {
    const int slot = IndexOf(number).value;
    if (slot < 0 || slot >= sequence.StepCount || slot >= MAX_STEPS) return;
    if (reachable[static_cast<std::size_t>(slot)]) return;
    reachable[static_cast<std::size_t>(slot)] = true;
    waiting.push_back(slot);
  };
  enter({sequence.Common.StartStepNo});
  while (!waiting.empty()) {
    const int slot = waiting.back();
    waiting.pop_back();
    for (const StepNumber number : Successors(sequence, slot)) enter(number);
  }
}

ChannelUse UseOf(const SequenceData& sequence, int channel, const std::array<bool, MAX_STEPS>& reachable) {
  ChannelUse use;
  bool sine = false;
  bool square = false;
  bool noise = false;
  for (int slot = 0; slot < MAX_STEPS; ++slot) {
    if (!reachable[static_cast<std::size_t>(slot)]) continue;
    switch (WaveformOf(sequence, channel, slot)) {
      case kWaveSine:
        sine = true;
        break;
      case kWaveSquare:
        square = true;
        if (sequence.Cell(channel, slot, kSlotDuty).ChangeMode == kModeSweep) use.WorkArea = true;
        break;
      case kWaveNoise:
        noise = true;
        break;
      case kWaveUser: {
        const int number = ArbNumberOf(sequence.Cell(channel, slot, kSlotArbNumber));
        if (number == 0) use.ArbWithoutNumber = true;
        if (number != 0) use.Arbs[static_cast<std::size_t>(number - 1)] = true;
        break;
      }
      default:
        break;
    }
  }
  use.BuiltInWaveforms = int{sine} + int{square} + int{noise};
  return use;
}

}  // namespace

int ArbNumberOf(const ParamCell& cell) {
  const std::optional<std::int32_t> number = ToInt32(cell.Value);
  return number && *number >= 1 && *number <= kArbNumbers ? *number : 0;
}

int WaveformOf(const SequenceData& sequence, int channel, int slot) {
  return ToInt32(sequence.Cell(channel, slot, kSlotWaveform).Value).value_or(-1);
}

StepFlow WalkSteps(const SequenceData& sequence, int channels) {
  StepFlow flow;
  MarkReachable(sequence, flow.Reachable);
  for (int channel = 0; channel < channels; ++channel) {
    flow.Channels[static_cast<std::size_t>(channel)] = UseOf(sequence, channel, flow.Reachable);
  }
  return flow;
}

std::string UseStepText(const StepFlow& flow, const SequenceData& sequence, int channels) {
  std::string text = "Use Flag\r\n";
  for (int number = 1; number <= kArbNumbers; ++number) {
    AppendInteger(text, number);
    for (int channel = 0; channel < channels; ++channel) {
      const ChannelUse& use = flow.Channels[static_cast<std::size_t>(channel)];
      text += use.Arbs[static_cast<std::size_t>(number - 1)] ? ",1" : ",0";
    }
    text += "\r\n";
  }
  text += "Step No,\r\n";
  for (int slot = 0; slot < MAX_STEPS; ++slot) {
    if (!flow.Reachable[static_cast<std::size_t>(slot)]) continue;
    AppendInteger(text, NumberOf(StepIndex{slot}).value);
    for (int channel = 0; channel < channels; ++channel) {
      const bool user = WaveformOf(sequence, channel, slot) == kWaveUser;
      text += ',';
      AppendInteger(text, user ? ArbNumberOf(sequence.Cell(channel, slot, kSlotArbNumber)) : 0);
    }
    text += "\r\n";
  }
  return text;
}

}  // namespace corlune
