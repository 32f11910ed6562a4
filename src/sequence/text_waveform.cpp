#include "sequence/text_waveform.h"

#include <cmath>
#include <optional>

#include "core/numbers.h"
#include "core/profile_file.h"
#include "sequence/waveform_file.h"

namespace corlune {

namespace {

constexpr std::int32_t kLargestValue = 32767;  // the smallest is its negative
constexpr int kValueDigits = 5;

bool IsSeparator(char c) {
  return c == ',' || c == '\n' || c == '\r';
}

std::optional<std::int32_t> IntegerValue(std::string_view text) {
  const auto value = ParseNumber(text);
  if (!value || *value != std::trunc(*value) || std::fabs(*value) > kLargestValue) return std::nullopt;
  return static_cast<std::int32_t>(*value);
}

}  // namespace

bool TextWaveform::Full() const {
  return count_ > kMaxWaveformPoints;
}

inline void TextWaveform::Store(std::int32_t value) {
  if (count_ < kMaxWaveformPoints) {
    std::uint8_t* point = points_ + std::size_t{2} * static_cast<std::size_t>(count_);
    point[0] = static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) >> 8);
    point[1] = static_cast<std::uint8_t>(value);
  }
  ++count_;
}

void TextWaveform::StoreInvalid() {
  Store(0);
  if (firstInvalid_ == 0) firstInvalid_ = count_;
}

void TextWaveform::Take(std::string_view text) {
  const char* next = text.data();
  const char* const end = next + text.size();
  // The usual value is a sign, up to five digits and one separator right behind; the text's last character
  // is a separator, so the digits need no look at the end.
  while (next < end && !Full()) {
    const char* at = next;
    const bool negative = *at == '-';
    if (negative) ++at;
    unsigned value = static_cast<unsigned char>(*at) - unsigned{'0'};
    if (value > 9) {
      next = TakeSlowly(next, end);
      continue;
    }
    ++at;
    for (int digits = 1; digits < kValueDigits; ++digits) {
      const unsigned digit = static_cast<unsigned char>(*at) - unsigned{'0'};
      if (digit > 9) break;
      value = value * 10 + digit;
      ++at;
    }
    if (!IsSeparator(*at) || value > kLargestValue) {
      next = TakeSlowly(next, end);
      continue;
    }
    Store(negative ? -static_cast<std::int32_t>(value) : static_cast<std::int32_t>(value));
    afterComma_ = *at == ',';
    next = at + 1;
    if (*at == '\r' && next < end && *next == '\n') ++next;
  }
}

const char* TextWaveform::TakeSlowly(const char* next, const char* end) {
  const char* at = next;
  while (!IsSeparator(*at)) ++at;
  const std::string_view item = TrimBlanks({next, static_cast<std::size_t>(at - next)});
  if (item.empty()) {
    if (*at == ',') {
      if (afterComma_) StoreInvalid();
      afterComma_ = true;
    }
    return at + 1 < end ? at + 1 : end;
  }
  if (const auto value = IntegerValue(item)) {
    Store(*value);
  } else {
    StoreInvalid();
  }
  afterComma_ = *at == ',';
  return at + 1;
}

}  // namespace corlune
