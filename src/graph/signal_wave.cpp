#include "graph/signal_wave.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace corlune {

namespace {

constexpr double kFullScale = 32767;
constexpr std::size_t kBlock = 512;  // points whose extent is kept
// Transfer block
constexpr std::size_t kHead = 8;
constexpr std::size_t kPointBytes = 2;
constexpr std::size_t kPairBytes = 6;

std::int16_t Value(const std::uint8_t* bytes) {
  return static_cast<std::int16_t>(bytes[0] << 8 | bytes[1]);
}

std::int32_t Position(const std::uint8_t* bytes) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) value = value << 8 | bytes[i];
  return static_cast<std::int32_t>(value);
}

}  // namespace

SignalWave::SignalWave(const WaveformRead& read) {
  const auto count = static_cast<std::size_t>(read.pointCount);
  const std::uint8_t* next = read.block.data() + kHead;
  if (read.arrayForm) {
    values_.resize(count);
    for (std::int16_t& value : values_) {
      value = Value(next);
      next += kPointBytes;
    }
  } else {
    std::vector<std::pair<std::int32_t, std::int16_t>> pairs(count);
    for (auto& [position, value] : pairs) {
      position = Position(next);
      value = Value(next + 4);
      next += kPairBytes;
    }
    std::stable_sort(pairs.begin(), pairs.end(),
                     [](const auto& one, const auto& other) { return one.first < other.first; });
    const double first = pairs.front().first;
    const double length = pairs.back().first - first;
    values_.reserve(count);
    places_.reserve(count);
    for (const auto& [position, value] : pairs) {
      values_.push_back(value);
      places_.push_back(length > 0 ? (position - first) / length : 0);
    }
  }
  for (std::size_t first = 0; first < values_.size(); first += kBlock) {
    const auto begin = values_.begin() + static_cast<std::ptrdiff_t>(first);
    const auto length = static_cast<std::ptrdiff_t>(std::min(kBlock, values_.size() - first));
    const auto [low, high] = std::minmax_element(begin, begin + length);
    blocks_.push_back({*low, *high});
  }
  mean_ = ComputeMean();
}

double SignalWave::ComputeMean() const {
  double sum = 0;
  if (!Pairs()) {
    for (const std::int16_t value : values_) sum += value;
    return sum / static_cast<double>(values_.size()) / kFullScale;
  }
  // Straight lines from pair to pair; a single one is a constant.
  if (places_.back() <= 0) return values_.back() / kFullScale;
  for (std::size_t i = 1; i < values_.size(); ++i) {
    sum += (places_[i] - places_[i - 1]) * (values_[i] + values_[i - 1]) / 2;
  }
  return sum / kFullScale;
}

double SignalWave::PlaceOf(std::size_t point) const {
  return Pairs() ? places_[point] : static_cast<double>(point) / static_cast<double>(values_.size());
}

std::size_t SignalWave::PointBefore(double phase) const {
  if (!Pairs()) {
    const double point = std::floor(phase * static_cast<double>(values_.size()));
    return std::min(static_cast<std::size_t>(point), values_.size() - 1);
  }
  const auto next = std::upper_bound(places_.begin(), places_.end(), phase);
  return static_cast<std::size_t>(std::max<std::ptrdiff_t>(next - places_.begin() - 1, 0));
}

double SignalWave::At(double phase) const {
  const std::size_t point = PointBefore(phase);
  const bool last = point + 1 == values_.size();
  const double here = PlaceOf(point);
  const double next = last ? 1 : PlaceOf(point + 1);
  const double value = values_[point];
  if (next <= here) return value / kFullScale;
  const double nextValue = values_[last ? 0 : point + 1];
  return (value + (nextValue - value) * (phase - here) / (next - here)) / kFullScale;
}

SignalWave::Extent SignalWave::ExtentOf(std::size_t first, std::size_t last) const {
  Extent extent{std::numeric_limits<std::int16_t>::max(), std::numeric_limits<std::int16_t>::min()};
  const auto take = [&extent](const Extent& other) {
    extent.Low = std::min(extent.Low, other.Low);
    extent.High = std::max(extent.High, other.High);
  };
  while (first <= last) {
    if (first % kBlock == 0 && first + kBlock <= last + 1) {
      take(blocks_[first / kBlock]);
      first += kBlock;
    } else {
      take({values_[first], values_[first]});
      ++first;
    }
  }
  return extent;
}

WaveRange SignalWave::Within(double from, double to) const {
  const double begin = At(from);
  const double end = At(to);
  WaveRange range{std::min(begin, end), std::max(begin, end)};
  std::size_t first = PointBefore(from);
  if (PlaceOf(first) < from) ++first;
  const std::size_t last = PointBefore(to);
  if (first <= last && first < values_.size()) {
    const Extent extent = ExtentOf(first, last);
    range.Low = std::min(range.Low, extent.Low / kFullScale);
    range.High = std::max(range.High, extent.High / kFullScale);
  }
  return range;
}

WaveRange SignalWave::Between(double from, double to) const {
  if (to - from >= 1) return Within(0, 1);
  const double whole = std::floor(from);
  const double begin = from - whole;
  const double end = to - whole;
  if (end <= 1) return Within(begin, end);
  const WaveRange head = Within(begin, 1);
  const WaveRange tail = Within(0, end - 1);
  return {std::min(head.Low, tail.Low), std::max(head.High, tail.High)};
}

}  // namespace corlune
