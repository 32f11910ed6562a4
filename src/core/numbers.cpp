#include "core/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace corlune {
namespace {

constexpr int kSignificantDigits = 15;
constexpr double kFirstExponentForm = 1e15;  // from here on the general form has an exponent

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

template <typename Integer>
std::optional<Integer> RoundInto(double value) {
  const double rounded = std::nearbyint(value);  // the default rounding mode is half to even
  if (!(rounded >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
        rounded <= static_cast<double>(std::numeric_limits<Integer>::max()))) {
    return std::nullopt;  // NaN comes here, too
  }
  return static_cast<Integer>(rounded);
}

// Removes blanks, tabs and the two blanks that arrive by copying from other programs (no-break and
// ideographic) from both ends.
std::string_view TrimNumberText(std::string_view text) {
  constexpr std::array<std::string_view, 4> kBlanks = {" ", "\t", "\xC2\xA0", "\xE3\x80\x80"};
  for (bool found = true; found;) {
    found = false;
    for (const std::string_view blank : kBlanks) {
      while (text.substr(0, blank.size()) == blank) {
        text.remove_prefix(blank.size());
        found = true;
      }
      while (text.size() >= blank.size() && text.substr(text.size() - blank.size()) == blank) {
        text.remove_suffix(blank.size());
        found = true;
      }
    }
  }
  return text;
}

// True when a number whose text from_chars calls out of range is too small, not too large.
bool IsUnderflow(std::string_view number) {
  const std::size_t exponentAt = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, exponentAt);
  const std::size_t first = mantissa.find_first_not_of("0.");
  if (first == std::string_view::npos) return true;
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  long long exponent = 0;
  if (exponentAt < number.size()) {
    std::string_view digits = number.substr(exponentAt + 1);
    if (digits[0] == '+') digits.remove_prefix(1);
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (parsed.ec != std::errc{}) return digits[0] == '-';
  }
  // Compared, not added: the exponent may be as large as its type holds.
  return exponent < static_cast<long long>(first) - static_cast<long long>(point);
}

struct NumberPrefix {
  double value = 0;
  std::size_t length = 0;  // characters read, 0: there is no number
  bool overflow = false;
};

// A reply's text behind its leading blanks and line ends.
std::string_view SkipBlanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
}

// Reads [sign] digits [. digits] [exponent] at the beginning of `text`.
NumberPrefix ReadPrefix(std::string_view text) {
  std::size_t start = 0;
  bool negative = false;
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
    negative = text[0] == '-';
    start = 1;
  }
  // from_chars would also take "inf" and "nan".
  if (start == text.size() || !(IsDigit(text[start]) || text[start] == '.')) return {};
  NumberPrefix number;
  const char* const begin = text.data() + start;
  const auto result = std::from_chars(begin, text.data() + text.size(), number.value);
  if (result.ec == std::errc::invalid_argument) return {};
  number.length = static_cast<std::size_t>(result.ptr - text.data());
  if (result.ec == std::errc::result_out_of_range) {
    number.overflow = !IsUnderflow({begin, static_cast<std::size_t>(result.ptr - begin)});
    number.value = number.overflow ? std::numeric_limits<double>::infinity() : 0;
  }
  if (negative) number.value = -number.value;
  return number;
}

}  // namespace

void AppendInteger(std::string& out, std::int64_t value) {
  std::array<char, 24> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  out.append(buffer.data(), end);
}

void AppendNumber(std::string& out, double value) {
  if (value == 0) {
    out += '0';
    return;
  }
  if (std::fabs(value) < kFirstExponentForm && value == std::trunc(value)) {
    AppendInteger(out, static_cast<std::int64_t>(value));
    return;
  }
  std::array<char, 32> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::general, kSignificantDigits)
                       .ptr;
  std::replace(buffer.data(), end, 'e', 'E');
  out.append(buffer.data(), end);
}

std::string NumberText(double value) {
  std::string text;
  AppendNumber(text, value);
  return text;
}

std::optional<std::int16_t> ToInt16(double value) {
  return RoundInto<std::int16_t>(value);
}
std::optional<std::int32_t> ToInt32(double value) {
  return RoundInto<std::int32_t>(value);
}

std::optional<double> ParseNumber(std::string_view text) {
  // The usual text has no blank at all.
  NumberPrefix number = ReadPrefix(text);
  if (number.length != text.size() || number.length == 0) {
    text = TrimNumberText(text);
    const bool blankBehindSign = text.size() > 2 && (text[1] == ' ' || text[1] == '\t');
    if (blankBehindSign && (text[0] == '+' || text[0] == '-')) {
      const bool negative = text[0] == '-';
      text = TrimNumberText(text.substr(1));
      if (text[0] == '+' || text[0] == '-') return std::nullopt;
      number = ReadPrefix(text);
      if (negative) number.value = -number.value;
    } else {
      number = ReadPrefix(text);
    }
    if (number.length != text.size() || number.length == 0) return std::nullopt;
  }
  if (number.overflow) return std::nullopt;
  return number.value;
}

std::optional<std::int16_t> ParseInt16(std::string_view text) {
  const auto value = ParseNumber(text);
  return value ? ToInt16(*value) : std::nullopt;
}

std::optional<std::int32_t> ParseInt32(std::string_view text) {
  const auto value = ParseNumber(text);
  return value ? ToInt32(*value) : std::nullopt;
}

double LeadingNumber(std::string_view text) {
  return ReadPrefix(SkipBlanks(text)).value;
}

bool BeginsWithNumber(std::string_view text) {
  return ReadPrefix(SkipBlanks(text)).length != 0;
}

std::int32_t LeadingInteger(std::string_view text) {
  const double value = std::clamp(LeadingNumber(text), -2147483648.0, 2147483647.0);
  return static_cast<std::int32_t>(std::nearbyint(value));
}

}  // namespace corlune
