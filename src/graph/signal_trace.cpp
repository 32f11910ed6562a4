#include "graph/signal_trace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <optional>

namespace corlune {

namespace {

constexpr double kLineSpan = 1.0 / 16;  // periods in a column, up to which the signal is a line
constexpr int kPointsPerPeriod = 64;    // of such a line
constexpr double kPointsPerColumn = 2;  // of a waveform, up to which it is a line
constexpr double kPercent = 100;
constexpr double kMostPlainPeriods = 20;  // of a step that is shown whole
constexpr double kFirstPeriods = 5;

// The same sequence of numbers for the same column, so that a repaint shows the same noise. -1..1, more often
// near 0.
double NoiseAt(std::uint32_t index) {
  double sum = 0;
  constexpr int kTurns = 3;
  for (int turn = 0; turn < kTurns; ++turn) {
    std::uint32_t mixed = index * kTurns + static_cast<std::uint32_t>(turn);
    mixed = (mixed ^ (mixed >> 16)) * 0x45D9F3BU;
    mixed = (mixed ^ (mixed >> 16)) * 0x45D9F3BU;
    mixed ^= mixed >> 16;
    sum += static_cast<double>(mixed) / 4294967295.0 * 2 - 1;
  }
  return sum / kTurns;
}

class TraceBuilder {
 public:
  TraceBuilder(const ChannelSignal& signal, const SignalWave* wave, double length)
      : signal_(signal), wave_(wave), length_(length) {}

  double At(double time) const { return LevelOf(WaveAt(time), time); }

  SignalTrace Build(const AxisWindow& window, int columns) {
    if (signal_.Waveform == kWaveDc) {
      trace_.Columns.resize(static_cast<std::size_t>(columns));
      trace_.Lines = {{{window.Start, At(window.Start)}, {window.End, At(window.End)}}};
      return std::move(trace_);
    }
    const double width = (window.End - window.Start) / columns;
    trace_.Columns.reserve(static_cast<std::size_t>(columns));
    for (int i = 0; i < columns; ++i) {
      const double from = window.Start + width * i;
      const double to = i + 1 == columns ? window.End : from + width;
      if (signal_.Waveform == kWaveNoise) {
        AddNoise(from, to, static_cast<std::uint32_t>(i));
      } else {
        AddColumn(from, to);
      }
    }
    return std::move(trace_);
  }

 private:
  // Of the waveform, -1..1.
  double WaveAt(double time) const {
    if (!signal_.Periodic()) return 0;
    const double periods = signal_.Periods(time, length_);
    const double phase = periods - std::floor(periods);
    switch (signal_.Waveform) {
      case kWaveSquare:
        return phase < DutyAt(time) ? 1 : -1;
      case kWaveUser:
        return wave_ != nullptr ? wave_->At(phase) : 0;
      default:
        return std::sin(2 * std::numbers::pi * phase);
    }
  }
  double Part(double time) const { return length_ > 0 ? time / length_ : 0; }
  double DutyAt(double time) const { return signal_.Duty.At(Part(time)) / kPercent; }

  double LevelOf(double wave, double time) const {
    const double turned = signal_.Inverted ? -wave : wave;
    const double part = signal_.Below + (turned + 1) / 2 * (signal_.Above - signal_.Below);
    return signal_.Offset.At(Part(time)) + signal_.Amplitude.At(Part(time)) * part;
  }

  struct PhaseSpan {
    double From;
    double To;
  };
  // The periods that pass between two times; a phase that is swept back can turn round in between.
  PhaseSpan SpanOf(double from, double to) const {
    const double begin = signal_.Periods(from, length_);
    const double end = signal_.Periods(to, length_);
    PhaseSpan span{std::min(begin, end), std::max(begin, end)};
    const double change = signal_.Frequency.To - signal_.Frequency.From;
    constexpr double kFullTurn = 360;
    if (change != 0 && length_ > 0) {
      const double turn =
          -(signal_.Frequency.From * length_ + (signal_.Phase.To - signal_.Phase.From) / kFullTurn) / change;
      if (turn > from && turn < to) {
        const double there = signal_.Periods(turn, length_);
        span = {std::min(span.From, there), std::max(span.To, there)};
      }
    }
    return span;
  }

  bool IsLine(const PhaseSpan& span, double from, double to) const {
    const double periods = span.To - span.From;
    switch (signal_.Waveform) {
      case kWaveSquare:
        return SquareIn(span, from, to).Low == SquareIn(span, from, to).High;
      case kWaveUser:
        return wave_ == nullptr ||
               (periods <= kLineSpan && periods * static_cast<double>(wave_->Points()) <= kPointsPerColumn);
      default:
        return periods <= kLineSpan;
    }
  }

  WaveRange WaveIn(const PhaseSpan& span, double from, double to) const {
    switch (signal_.Waveform) {
      case kWaveSquare:
        return SquareIn(span, from, to);
      case kWaveUser:
        return wave_ != nullptr ? wave_->Between(span.From, span.To) : WaveRange{};
      default:
        return SineIn(span, from, to);
    }
  }

  // The phase comes behind the beginning of the span, or at its end.
  static bool Passes(const PhaseSpan& span, double phase) {
    return std::floor(span.To - phase) > std::floor(span.From - phase);
  }

  WaveRange SineIn(const PhaseSpan& span, double from, double to) const {
    const double begin = WaveAt(from);
    const double end = WaveAt(to);
    return {Passes(span, 0.75) ? -1 : std::min(begin, end), Passes(span, 0.25) ? 1 : std::max(begin, end)};
  }

  WaveRange SquareIn(const PhaseSpan& span, double from, double to) const {
    const double begin = WaveAt(from);
    const bool edge = begin != WaveAt(to) || Passes(span, 0) || Passes(span, DutyAt((from + to) / 2));
    return edge ? WaveRange{-1, 1} : WaveRange{begin, begin};
  }

  void AddColumn(double from, double to) {
    const PhaseSpan span = SpanOf(from, to);
    if (IsLine(span, from, to)) {
      const double points = signal_.Waveform == kWaveSine ? (span.To - span.From) * kPointsPerPeriod : 1;
      Draw(from, to, std::max(1, static_cast<int>(std::ceil(points))));
      return;
    }
    open_ = false;
    const bool whole = span.To - span.From >= 1;
    const WaveRange wave = WaveIn(span, from, to);
    const std::array levels{LevelOf(wave.Low, from), LevelOf(wave.High, from), LevelOf(wave.Low, to),
                            LevelOf(wave.High, to)};
    const auto [low, high] = std::minmax_element(levels.begin(), levels.end());
    trace_.Columns.push_back({whole ? ColumnKind::Shade : ColumnKind::Stroke, *low, *high});
    trace_.Shaded = trace_.Shaded || whole;
  }

  // A line through the column, of `parts` straight pieces.
  void Draw(double from, double to, int parts) {
    trace_.Columns.push_back({});
    if (!open_) trace_.Lines.push_back({{from, At(from)}});
    open_ = true;
    for (int part = 1; part <= parts; ++part) {
      const double time = part == parts ? to : from + (to - from) * part / parts;
      std::vector<SignalPoint>& line = trace_.Lines.back();
      const double value = At(time);
      const std::size_t count = line.size();
      const bool level = count > 1 && line[count - 2].Value == value && line[count - 1].Value == value;
      if (level) {
        line.back().Time = time;
      } else {
        line.push_back({time, value});
      }
    }
  }

  void AddNoise(double from, double to, std::uint32_t column) {
    const double middle = (from + to) / 2;
    const double one = LevelOf(-1, middle);
    const double other = LevelOf(1, middle);
    trace_.Columns.push_back({ColumnKind::Shade, std::min(one, other), std::max(one, other)});
    if (trace_.Lines.empty()) trace_.Lines.emplace_back();
    trace_.Lines.back().push_back({from, LevelOf(NoiseAt(2 * column), from)});
    trace_.Lines.back().push_back({middle, LevelOf(NoiseAt(2 * column + 1), middle)});
  }

  const ChannelSignal& signal_;
  const SignalWave* wave_;
  double length_;
  SignalTrace trace_;
  bool open_ = false;  // a line ends where the next column begins
};

}  // namespace

ValueRange SignalRange(const ChannelSignal& signal) {
  const auto level = [&](double part, double swing) {
    return signal.Offset.At(part) + signal.Amplitude.At(part) * swing;
  };
  const std::array levels{level(0, signal.Below), level(0, signal.Above), level(1, signal.Below),
                          level(1, signal.Above)};
  const auto [low, high] = std::minmax_element(levels.begin(), levels.end());
  return {*low, *high};
}

double SignalAt(const ChannelSignal& signal, const SignalWave* wave, double time, double length) {
  return TraceBuilder(signal, wave, length).At(time);
}

SignalTrace TraceOf(const ChannelSignal& signal, const SignalWave* wave, double length,
                    const AxisWindow& window, int columns) {
  return TraceBuilder(signal, wave, length).Build(window, columns);
}

AxisWindow FirstPeriods(const SignalSubject& subject) {
  const AxisWindow whole{0, subject.Length};
  const ChannelSignal* slowest = nullptr;
  double fewest = 0;
  for (const ChannelSignal& signal : subject.Channels) {
    if (!signal.Periodic() || !signal.Note.empty()) continue;
    const double periods = signal.Periods(subject.Length, subject.Length) - signal.Periods(0, subject.Length);
    if (slowest == nullptr || periods < fewest) {
      slowest = &signal;
      fewest = periods;
    }
  }
  if (slowest == nullptr || fewest <= kMostPlainPeriods) return whole;
  const double wanted = slowest->Periods(0, subject.Length) + kFirstPeriods;
  double low = 0;
  double high = subject.Length;
  constexpr int kHalvings = 60;
  for (int i = 0; i < kHalvings; ++i) {
    const double middle = (low + high) / 2;
    (slowest->Periods(middle, subject.Length) < wanted ? low : high) = middle;
  }
  return {0, high};
}

}  // namespace corlune
