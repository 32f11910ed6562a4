// SignalTrace: the output of one channel during a part of a step, for a number of pixel columns. Where single
// periods can be told apart it is a line; where the signal turns within a column, the stretch that it covers.
#pragma once

#include <vector>

#include "graph/axis_ticks.h"
#include "graph/plot_lines.h"
#include "graph/signal_subject.h"
#include "graph/signal_wave.h"

namespace corlune {

enum class ColumnKind : unsigned char {
  Line,    // part of a line
  Stroke,  // the signal moves from Low to High and back within the column
  Shade    // at least a whole period: it is somewhere between Low and High
};

struct SignalColumn {
  ColumnKind Kind = ColumnKind::Line;
  double Low = 0;  // unit of the axis
  double High = 0;
};

struct SignalPoint {
  double Time = 0;  // s from the start of the step
  double Value = 0;
};

struct SignalTrace {
  std::vector<SignalColumn> Columns;            // side by side over the whole window
  std::vector<std::vector<SignalPoint>> Lines;  // of the columns that are lines
  bool Shaded = false;                          // one of the columns is, of a signal with periods
};

// Between which values the signal can move during the step.
ValueRange SignalRange(const ChannelSignal& signal);

// The signal at `time` seconds of a step of `length` seconds; noise has its middle. `wave`: with kWaveUser.
double SignalAt(const ChannelSignal& signal, const SignalWave* wave, double time, double length);

// `window` in seconds from the start of the step, inside 0..`length`; `columns` from 1.
SignalTrace TraceOf(const ChannelSignal& signal, const SignalWave* wave, double length,
                    const AxisWindow& window, int columns);

// A few periods from the start of the step for the slowest channel, the whole step where they can all be told
// apart.
AxisWindow FirstPeriods(const SignalSubject& subject);

}  // namespace corlune
