// A sequence of the shipped QM2220, as the graphs are drawn from it.
#pragma once

#include "sequence/defaults.h"
#include "sequence/sequence_data.h"
#include "sequence/start_values.h"
#include "support/samples.h"

namespace corlune::testing {

// Contents of the shipped definition (VS_SELCT2).
enum ShippedContent : std::int16_t { kFrequency, kAmplitude, kOffset, kPhase, kDuty, kEnvelope };

class GraphRig {
 public:
  explicit GraphRig(int steps = 4, bool english = true) : definition(ShippedDefinition(english)) {
    ResetSequence(sequence, definition);
    sequence.StepCount = static_cast<std::int16_t>(steps);
    for (StepRow& row : sequence.Steps) row.StepTime = 1;
    ComputeStartValues(sequence);
  }

  // One area: channel 0 or 1.
  void ShowArea(int area, ShippedContent content, int channel = 0, std::int16_t scale = 0) {
    sequence.ViewAreas[static_cast<std::size_t>(area)] = {1, scale, content,
                                                          static_cast<std::int16_t>(channel)};
  }
  void Set(int step, Slot slot, double value, ChangeModeCode mode = kModeConst, int channel = 0) {
    ParamCell& cell = sequence.Cell(channel, step, slot);
    cell.Value = value;
    cell.ChangeMode = mode;
    ComputeStartValues(sequence);
  }
  void SetWaveform(int step, WaveformCode waveform, int channel = 0) {
    Set(step, kSlotWaveform, waveform, kModeConst, channel);
  }

  ModelDefinition definition;
  SequenceData sequence;
};

}  // namespace corlune::testing
