// SignalSubject: what the channels put out during one step, as numbers and words. Everything that the drawing
// of the step's signal depends on but the points of waveform files; two equal subjects look the same.
//
// The values are those of the grids: the output load divides amplitude and offset, a user unit that both have
// alike is the unit of the axis; otherwise it is volts.
#pragma once

#include <string>
#include <vector>

#include "core/catalogue.h"
#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune {

// A value that goes in a straight line through the step.
struct SignalRamp {
  double From = 0;
  double To = 0;
  double At(double part) const { return From + (To - From) * part; }  // 0..1 of the step
  bool operator==(const SignalRamp&) const = default;
};

struct ChannelSignal {
  WaveformCode Waveform = kWaveSine;
  SignalRamp Frequency;  // Hz
  SignalRamp Amplitude;  // as shown, in the unit of the axis
  SignalRamp Offset;     // in the unit of the axis
  SignalRamp Phase;      // degrees
  SignalRamp Duty;       // %
  double Below = -0.5;   // parts of the amplitude that the waveform reaches from the offset
  double Above = 0.5;
  bool Inverted = false;
  int ArbNumber = 0;     // with kWaveUser
  std::string WavePath;  // as it can be opened; empty: none, or no file needed
  std::string Caption;   // "CH1  V, into High-Z"
  std::string Legend;    // "SIN  1000 → 2000 Hz  2 Vp-p"
  std::string Note;      // in place of the signal: why it cannot be shown
  bool operator==(const ChannelSignal&) const = default;

  // Repeats itself, so that it has a phase.
  bool Periodic() const { return Waveform != kWaveDc && Waveform != kWaveNoise; }
  // Periods since phase 0, at `time` seconds of a step of `length` seconds.
  double Periods(double time, double length) const;
};

struct SignalSubject {
  std::vector<ChannelSignal> Channels;
  double Length = 0;        // of the step, with its stop phase; s
  std::string StepText;     // "Step 3: 0.5 s"
  std::string Description;  // every value by its name, for those who do not see the drawing
  std::string Note;         // in place of everything
  bool operator==(const SignalSubject&) const = default;
};

struct SignalWish {
  int Channels = 0;            // of the edited instrument
  int Step = 0;                // slot; outside the used steps nothing is shown
  bool Running = false;        // the instrument is executing it
  std::string WaveformFolder;  // that relative paths count from
};

SignalSubject BuildSignalSubject(const SequenceData& sequence, const ModelDefinition& definition,
                                 const MessageCatalogue& catalogue, const SignalWish& wish);

}  // namespace corlune
