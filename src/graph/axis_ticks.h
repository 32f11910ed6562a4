// AxisTicks: ranges of an axis and their "nice" ticks, with the texts of these.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace corlune {

struct ValueRange {
  double Low = 0;
  double High = 0;
  bool operator==(const ValueRange&) const = default;
};

// Range that shows `low`..`high` with a little room; a flat line keeps zero in sight.
ValueRange FitRange(double low, double high);

// Multiples of 1, 2 or 5 times a power of ten within the range: the finest such row of at most `most`.
struct AxisTicks {
  double Step = 0;
  std::vector<double> Values;
};
AxisTicks NiceTicks(const ValueRange& range, int most);

// The ticks that are one of the first `choices` indexes: 0, 1, ...
AxisTicks ChoiceTicks(const ValueRange& range, std::size_t choices, int most);

// The finest of these rows whose texts (PlainTickText) stand `gap` pixels apart.
struct TickRoom {
  double PixelsPerUnit = 1;
  double Gap = 0;                                          // pixels
  std::function<double(const std::string& text)> WidthOf;  // pixels
};
AxisTicks FittingTicks(const ValueRange& range, int most, const TickRoom& room);

// Text of a tick with the decimals that its row needs. Beyond 0.001..9999 with a decimal prefix ("20k").
std::string TickText(double value, const AxisTicks& ticks);

// The same without prefixes, as times are written.
std::string PlainTickText(double value, const AxisTicks& ticks);

}  // namespace corlune
