#include "core/time_text.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace corlune {
namespace {

std::string TwoDigits(std::int64_t value) {
  return (value < 10 ? "0" : "") + std::to_string(value);
}

}  // namespace

std::string TimeText(double milliseconds) {
  if (!(milliseconds >= 0)) return "--:--:--.-";
  constexpr double kLongest = 1e15;  // ms; keeps the arithmetic inside 64 bits
  const auto tenths = static_cast<std::int64_t>(std::floor(std::fmin(milliseconds, kLongest) / 100 + 0.5));
  const std::int64_t seconds = tenths / 10;
  return ReplaceArgs("$1:$2:$3.$4", {TwoDigits(seconds / 3600), TwoDigits(seconds / 60 % 60),
                                     TwoDigits(seconds % 60), std::to_string(tenths % 10)});
}

std::string TimePanelText(const MessageCatalogue& catalogue, TextId captionId, double milliseconds) {
  return ReplaceArgs("$1:$2", {catalogue.GetResString(captionId), TimeText(milliseconds)});
}

std::string AboutDate(int year, int month, int day) {
  static constexpr std::array<const char*, 12> kMonths{"Jan.",  "Feb.", "Mar.",  "Apr.", "May ", "June ",
                                                       "July ", "Aug.", "Sept.", "Oct.", "Nov.", "Dec."};
  if (month < 1 || month > 12) return {};
  return kMonths[static_cast<std::size_t>(month - 1)] + std::to_string(day) + "," + std::to_string(year);
}

}  // namespace corlune
