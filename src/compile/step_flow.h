// Step flow: which steps a run can reach, and what their waveforms ask of the instrument's memory.
#pragma once

#include <array>
#include <string>

#include "sequence/sequence_data.h"

namespace corlune {

// What the reachable steps of one channel use.
struct ChannelUse {
  std::array<bool, kArbNumbers> Arbs{};  // ARB number n at index n - 1
  bool ArbWithoutNumber = false;         // a USER step whose number is not 1..128
  int BuiltInWaveforms = 0;              // distinct ones other than DC, which takes no waveform memory
  bool WorkArea = false;                 // a square wave sweeps its duty
  bool operator==(const ChannelUse&) const = default;
};

struct StepFlow {
  std::array<bool, MAX_STEPS> Reachable{};
  std::array<ChannelUse, MAX_CHANNELS> Channels{};
  bool operator==(const StepFlow&) const = default;
};

// ARB number of a cell of the slot kSlotArbNumber; 0 when it is not 1..128.
int ArbNumberOf(const ParamCell& cell);

// WaveformCode of a step; -1 when the cell holds none.
int WaveformOf(const SequenceData& sequence, int channel, int slot);

// Follows the used steps from the start step of the common parameters over jumps, event and state branches
// and branch-area destinations. A step ends the flow when its terminal says so; an endless jump never goes
// on to the next step; a jump counted 0 times does not jump. Targets outside the used steps lead nowhere.
StepFlow WalkSteps(const SequenceData& sequence, int channels);

// The flow as text, CR LF lines:
//   Use Flag            heading; 128 lines follow: ARB number and a flag (0, 1) for each channel
//   Step No,            heading; a line for each reachable step follows: its number and the ARB number that
//                       each channel plays, 0 for another waveform
std::string UseStepText(const StepFlow& flow, const SequenceData& sequence, int channels);

}  // namespace corlune
