// Laying out a number by a display pattern.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "core/numbers.h"

namespace corlune {
namespace {

constexpr int kSignificantDigits = 15;

struct Pattern {
  int minWhole = 0;  // digits before the point that are always written
  int whole = 0;     // places before the point, counts for the exponent form
  bool point = false;
  int minFraction = 0;  // decimals that are always written
  int fraction = 0;     // decimals at most
  bool exponent = false;
  bool plusSign = false;  // a positive exponent is written with "+"
  int minExponent = 0;    // exponent digits that are always written
};

Pattern ReadPattern(std::string_view text) {
  Pattern pattern;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '.') {
      pattern.point = true;
    } else if (c == 'E' || c == 'e') {
      pattern.exponent = true;
    } else if (pattern.exponent) {
      pattern.plusSign = pattern.plusSign || c == '+';
      if (c == '0') ++pattern.minExponent;
    } else if (c == '0' || c == '#') {
      if (pattern.point) {
        ++pattern.fraction;
        if (c == '0') pattern.minFraction = pattern.fraction;
      } else {
        ++pattern.whole;
        if (c == '0' || pattern.minWhole > 0) ++pattern.minWhole;
      }
    }
  }
  return pattern;
}

// A decimal number: 0.d1d2d3... times 10 to the power of `point`. Zero has no digits.
struct Decimal {
  std::string digits;
  int point = 0;
};

// Fifteen significant digits: where a tie is decided by the digits a person sees, not by the binary value.
Decimal ToDecimal(double magnitude) {
  Decimal decimal;
  if (magnitude == 0) return decimal;
  std::array<char, 40> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude,
                                 std::chars_format::scientific, kSignificantDigits - 1)
                       .ptr;
  const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  const std::size_t exponentAt = text.find('e');
  decimal.digits += text[0];
  decimal.digits += text.substr(2, exponentAt - 2);
  int exponent = 0;
  const bool negative = text[exponentAt + 1] == '-';
  std::from_chars(text.data() + exponentAt + 2, text.data() + text.size(), exponent);
  decimal.point = (negative ? -exponent : exponent) + 1;
  return decimal;
}

// Keeps `count` digits (may be 0 or negative), a tie is rounded up.
void RoundDigits(Decimal& decimal, int count) {
  const int size = static_cast<int>(decimal.digits.size());
  if (count >= size) return;
  if (count < 0) {
    decimal = {};
    return;
  }
  const bool up = decimal.digits[static_cast<std::size_t>(count)] >= '5';
  decimal.digits.resize(static_cast<std::size_t>(count));
  if (up) {
    while (!decimal.digits.empty() && decimal.digits.back() == '9') decimal.digits.pop_back();
    if (!decimal.digits.empty()) {
      ++decimal.digits.back();
    } else {
      decimal.digits.assign(1, '1');
      ++decimal.point;
    }
  }
  if (decimal.digits.empty()) decimal.point = 0;
}

char DigitAt(const Decimal& decimal, int place) {
  return place >= 0 && place < static_cast<int>(decimal.digits.size())
             ? decimal.digits[static_cast<std::size_t>(place)]
             : '0';
}

void AppendWhole(std::string& out, const Decimal& decimal, const Pattern& pattern) {
  const int places = std::max(decimal.point, pattern.minWhole);
  for (int i = 0; i < places; ++i) out += DigitAt(decimal, decimal.point - places + i);
}

void AppendFraction(std::string& out, const Decimal& decimal, const Pattern& pattern) {
  if (!pattern.point) return;
  out += '.';
  const std::size_t least = out.size() + static_cast<std::size_t>(pattern.minFraction);
  for (int i = 0; i < pattern.fraction; ++i) out += DigitAt(decimal, decimal.point + i);
  while (out.size() > least && out.back() == '0') out.pop_back();
}

void AppendExponent(std::string& out, int exponent, const Pattern& pattern) {
  out += 'E';
  if (exponent < 0) {
    out += '-';
  } else if (pattern.plusSign) {
    out += '+';
  }
  const std::string digits = std::to_string(std::abs(exponent));
  out.append(static_cast<std::size_t>(std::max(0, pattern.minExponent - static_cast<int>(digits.size()))),
             '0');
  out += digits;
}

}  // namespace

std::string FormatPatternRaw(double value, std::string_view patternText) {
  if (!std::isfinite(value)) return NumberText(value);
  const Pattern pattern = ReadPattern(patternText);
  Decimal decimal = ToDecimal(std::fabs(value));
  std::string text = value < 0 ? "-" : "";
  if (!pattern.exponent) {
    RoundDigits(decimal, decimal.point + pattern.fraction);
    AppendWhole(text, decimal, pattern);
    AppendFraction(text, decimal, pattern);
    return text;
  }
  const int whole = std::max(pattern.whole, pattern.point ? 0 : 1);
  int exponent = 0;
  if (!decimal.digits.empty()) {
    RoundDigits(decimal, whole + pattern.fraction);
    exponent = decimal.point - whole;
    decimal.point = whole;
  }
  AppendWhole(text, decimal, pattern);
  AppendFraction(text, decimal, pattern);
  AppendExponent(text, exponent, pattern);
  return text;
}

std::string FormatNumber(double value, std::string_view pattern) {
  std::string text = FormatPatternRaw(value, pattern);
  const std::size_t exponentAt = std::isfinite(value) ? std::min(text.find('E'), text.size()) : text.size();
  std::size_t mantissaEnd = exponentAt;
  if (mantissaEnd > 0 && text[mantissaEnd - 1] == '.') text.erase(--mantissaEnd, 1);
  const std::string_view mantissa(text.data(), mantissaEnd);
  const bool zero = std::isfinite(value) && mantissa.find_first_not_of("-0.") == std::string_view::npos;
  if (zero && !mantissa.empty() && mantissa[0] == '-') text.erase(0, 1);
  const bool digitless = text.empty() || text[0] == 'E';
  return digitless ? "0" + text : text;
}

}  // namespace corlune
