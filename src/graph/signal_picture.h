// SignalPicture: the drawing of the current step's signal with its texts, as numbers: one or two panes with
// the channels over each other on one time axis. The first pane is the part of the step that was asked for,
// the second the whole step, when the first is less than that.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/catalogue.h"
#include "graph/signal_trace.h"
#include "graph/wave_cache.h"

namespace corlune {

// The file of each channel's waveform; nullptr: none is needed, or it is not read yet.
using SignalFiles = std::vector<std::shared_ptr<const WaveFile>>;

struct SignalPane {
  AxisWindow Window;                // s from the start of the step
  double UnitsPerSecond = 1;        // of the time axis
  std::vector<SignalTrace> Traces;  // of the channels; empty for one that has a note
  std::string Caption;              // "Time [ms]  first 5 ms of 10 s"
};

struct SignalPicture {
  std::vector<SignalPane> Panes;
  std::vector<ValueRange> Ranges;  // of the channels' axes, for both panes
  std::vector<std::string> Notes;  // of the channels, in place of their signal
};

// Columns of the panes, for the screen's own pixels.
struct PaneColumns {
  int Only = 1;   // where the whole step is asked for
  int Part = 1;   // else: the part,
  int Whole = 1;  // and the whole step beside it
};

// `window` inside the step. The subject must have no note.
SignalPicture BuildSignalPicture(const SignalSubject& subject, const SignalFiles& files,
                                 const MessageCatalogue& catalogue, const AxisWindow& window,
                                 const PaneColumns& columns);

// Why a channel has no signal, its waveform file included; empty when it has one. `file` as in SignalFiles.
std::string SignalNote(const ChannelSignal& signal, const WaveFile* file, const MessageCatalogue& catalogue);

// Paths of the waveform files that the subject needs, without repetition.
std::vector<std::string> WavePathsOf(const SignalSubject& subject);

// "2.5 ms"
std::string ShortTimeText(double seconds);

}  // namespace corlune
