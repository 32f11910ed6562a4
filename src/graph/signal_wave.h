// SignalWave: one period of an arbitrary waveform, ready to be drawn at any width. The instrument goes
// through the points once a period; between two of them the line is straight.
#pragma once

#include <cstdint>
#include <vector>

#include "sequence/waveform_file.h"

namespace corlune {

// Parts of the full scale: -1 to 1.
struct WaveRange {
  double Low = 0;
  double High = 0;
  bool operator==(const WaveRange&) const = default;
};

class SignalWave {
 public:
  // `read` must be without a problem. The points of an array stand at equal distances, the last one that far
  // before the next period; pairs stand where their positions put them, the first at the beginning of the
  // period and the last at its end.
  explicit SignalWave(const WaveformRead& read);

  std::size_t Points() const { return values_.size(); }
  bool Pairs() const { return !places_.empty(); }
  // Over one period.
  double Mean() const { return mean_; }
  // `phase` in periods, 0..1.
  double At(double phase) const;
  // Everything between two phases, `from` <= `to`, in periods and of any size. Takes no longer for a longer
  // stretch.
  WaveRange Between(double from, double to) const;

 private:
  struct Extent {
    std::int16_t Low;
    std::int16_t High;
  };
  double PlaceOf(std::size_t point) const;
  // The last point at or before a phase.
  std::size_t PointBefore(double phase) const;
  WaveRange Within(double from, double to) const;
  Extent ExtentOf(std::size_t first, std::size_t last) const;
  double ComputeMean() const;

  std::vector<std::int16_t> values_;
  std::vector<double> places_;  // 0..1, ascending; empty: equal distances
  std::vector<Extent> blocks_;
  double mean_ = 0;
};

}  // namespace corlune
