#include "sequence/profile_lines.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "core/numbers.h"
#include "core/profile_bytes.h"

namespace corlune {

namespace {

template <typename T>
std::optional<T> SlowNumber(std::string_view item) {
  if constexpr (std::is_same_v<T, double>) return ParseNumber(item);
  if constexpr (std::is_same_v<T, std::int16_t>) return ParseInt16(item);
  if constexpr (std::is_same_v<T, std::int32_t>) return ParseInt32(item);
}

template <typename T>
bool IsUsable(T value) {
  if constexpr (std::is_floating_point_v<T>) return std::isfinite(value);
  return true;
}

}  // namespace

bool ProfileLines::Next(ProfileLine& line) {
  profile::Line at;
  while (reader_.Next(at)) {
    if (at.text.empty() || profile::IsComment(at.text)) continue;
    // Blanks at the end belong to the value.
    const auto begin = static_cast<std::size_t>(at.text.data() - section_.data());
    line.Whole = section_.substr(begin, at.contentEnd - begin);
    const std::size_t equals = line.Whole.find('=');
    line.Key = profile::Trim(line.Whole.substr(0, equals));
    line.RawValue = equals == std::string_view::npos ? line.Whole.substr(line.Whole.size())
                                                     : line.Whole.substr(equals + 1);
    line.Value = line.RawValue.substr(0, line.RawValue.find('='));
    return true;
  }
  return false;
}

bool ProfileSections::IsHeading(const profile::Line& line) {
  heading_ = profile::HeaderName(line.text, kUtf8CodePage);
  bodyBegin_ = line.end;
  return heading_.has_value();
}

bool ProfileSections::Next(std::string_view& name, std::string_view& body) {
  profile::Line line;
  while (!heading_) {
    if (!reader_.Next(line)) return false;
    IsHeading(line);
  }
  name = *heading_;
  heading_.reset();
  const std::size_t begin = bodyBegin_;
  std::size_t end = text_.size();
  while (reader_.Next(line)) {
    if (!IsHeading(line)) continue;
    end = line.begin;
    break;
  }
  body = text_.substr(begin, end - begin);
  return true;
}

std::string_view ProfileFields::Item() const {
  const std::string_view rest(next_, static_cast<std::size_t>(end_ - next_));
  return rest.substr(0, rest.find(','));
}

void ProfileFields::StepOver(const char* itemEnd) {
  atEnd_ = itemEnd == end_;
  next_ = atEnd_ ? end_ : itemEnd + 1;
}

template <typename T>
bool ProfileFields::ReadNumber(T& value) {
  if (atEnd_) return false;
  // Flags, modes and unit indexes: most fields are a single digit.
  if (next_ != end_ && *next_ >= '0' && *next_ <= '9' && (next_ + 1 == end_ || next_[1] == ',')) {
    value = static_cast<T>(*next_ - '0');
    StepOver(next_ + 1);
    return true;
  }
  T parsed{};
  const auto [stop, error] = std::from_chars(next_, end_, parsed);
  if (error == std::errc() && (stop == end_ || *stop == ',') && IsUsable(parsed)) {
    value = parsed;
    StepOver(stop);
    return true;
  }
  const std::string_view item = Item();
  const std::optional<T> slow = SlowNumber<T>(item);
  if (!slow) return false;
  value = *slow;
  StepOver(item.data() + item.size());
  return true;
}

bool ProfileFields::Read(std::int16_t& value) {
  return ReadNumber(value);
}
bool ProfileFields::Read(std::int32_t& value) {
  return ReadNumber(value);
}
bool ProfileFields::Read(double& value) {
  return ReadNumber(value);
}

std::optional<int> KeyIndex(std::string_view key, int position, int limit) {
  for (; position > 0; --position) {
    const std::size_t mark = key.find('#');
    if (mark == std::string_view::npos) return std::nullopt;
    key.remove_prefix(mark + 1);
  }
  const std::string_view digits = key.substr(0, key.find('#'));
  int index = -1;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), index);
  if (error != std::errc() || stop != digits.data() + digits.size()) return std::nullopt;
  if (index < 0 || index >= limit) return std::nullopt;
  return index;
}

std::optional<int> DigitIndex(char digit, int limit) {
  if (digit < '0' || digit > '9' || digit - '0' >= limit) return std::nullopt;
  return digit - '0';
}

}  // namespace corlune
