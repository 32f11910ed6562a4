#include "graph/axis_ticks.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/numbers.h"

namespace corlune {

namespace {

constexpr double kHeadroom = 0.08;  // of the values' range, above and below a fitted scale

int DecimalsOf(double step) {
  constexpr int kMostDecimals = 9;
  return std::clamp(static_cast<int>(-std::floor(std::log10(step) + 1e-9)), 0, kMostDecimals);
}

std::string FixedText(double value, int decimals) {
  std::string pattern = "0";
  if (decimals > 0) pattern += "." + std::string(static_cast<std::size_t>(decimals), '0');
  return FormatNumber(value, pattern);
}

bool StandApart(const AxisTicks& ticks, const TickRoom& room) {
  if (ticks.Values.size() < 2) return true;
  const double distance = ticks.Step * room.PixelsPerUnit;
  return std::all_of(ticks.Values.begin(), ticks.Values.end(), [&](double tick) {
    return room.WidthOf(PlainTickText(tick, ticks)) + room.Gap <= distance;
  });
}

}  // namespace

ValueRange FitRange(double low, double high) {
  if (low == high) {
    if (low == 0) return {-1, 1};
    low = std::min(low, 0.0);
    high = std::max(high, 0.0);
  }
  const double room = (high - low) * kHeadroom;
  // Values that differ in their last digits only would leave no room for a scale.
  const double least = std::max(std::fabs(low), std::fabs(high)) * 1e-9;
  return {low - std::max(room, least), high + std::max(room, least)};
}

AxisTicks NiceTicks(const ValueRange& range, int most) {
  AxisTicks ticks;
  const double length = range.High - range.Low;
  if (!(length > 0) || !std::isfinite(length) || most < 1) return ticks;
  const double slack = length * 1e-9;
  double power = std::pow(10, std::floor(std::log10(length / most)));
  for (int attempt = 0; attempt < 6; ++attempt, power *= attempt % 3 == 0 ? 10 : 1) {
    constexpr std::array<double, 3> kSteps{1, 2, 5};
    const double step = kSteps[static_cast<std::size_t>(attempt % 3)] * power;
    const double first = std::ceil((range.Low - slack) / step);
    const double last = std::floor((range.High + slack) / step);
    if (!(last - first + 1 <= most)) continue;
    ticks.Step = step;
    const int count = static_cast<int>(last - first) + 1;
    for (int i = 0; i < count; ++i) ticks.Values.push_back((first + i) * step);
    return ticks;
  }
  return ticks;
}

AxisTicks ChoiceTicks(const ValueRange& range, std::size_t choices, int most) {
  AxisTicks ticks = NiceTicks(range, most);
  std::erase_if(ticks.Values, [&](double value) {
    return value != std::floor(value) || value < 0 || value >= static_cast<double>(choices);
  });
  return ticks;
}

AxisTicks FittingTicks(const ValueRange& range, int most, const TickRoom& room) {
  AxisTicks ticks = NiceTicks(range, most);
  while (most > 1 && !StandApart(ticks, room)) ticks = NiceTicks(range, --most);
  return ticks;
}

std::string TickText(double value, const AxisTicks& ticks) {
  constexpr double kPlainMost = 9999;
  constexpr double kPlainLeast = 1e-3;
  double largest = 0;
  for (const double tick : ticks.Values) largest = std::max(largest, std::fabs(tick));
  double unit = 1;
  std::string suffix;
  struct Prefix {
    double Factor;
    const char* Text;
  };
  constexpr std::array<Prefix, 6> kPrefixes{
      {{1e9, "G"}, {1e6, "M"}, {1e3, "k"}, {1e-3, "m"}, {1e-6, "µ"}, {1e-9, "n"}}};
  if (largest > kPlainMost || (largest > 0 && ticks.Step < kPlainLeast)) {
    for (const Prefix& prefix : kPrefixes) {
      if (largest < prefix.Factor * (1 - 1e-9)) continue;
      if (prefix.Factor > 1 && largest <= kPlainMost) continue;
      // Below a thousand the plain number reads better until its decimals run out.
      if (prefix.Factor == 1e-3 && largest >= 1) break;
      unit = prefix.Factor;
      suffix = prefix.Text;
      break;
    }
  }
  const int decimals = ticks.Step > 0 ? DecimalsOf(ticks.Step / unit) : 0;
  return FixedText(value / unit, decimals) + (value == 0 ? std::string() : suffix);
}

std::string PlainTickText(double value, const AxisTicks& ticks) {
  return FixedText(value, DecimalsOf(ticks.Step));
}

}  // namespace corlune
