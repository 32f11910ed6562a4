#include "sequence/profile_lines.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "core/numbers.h"

namespace corlune {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

std::string_view TrimLeft(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  return text;
}

std::string_view TrimRight(std::string_view text) {
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Length of the line at the beginning of `text`, without its break. Searching for one character is far
// faster than for one of two; the windows keep that fast where one of the two never comes.
std::size_t LineLength(std::string_view text) {
  constexpr std::size_t kWindow = 4096;
  for (std::size_t begin = 0; begin < text.size(); begin += kWindow) {
    const std::string_view window = text.substr(begin, kWindow);
    const std::size_t feed = std::min(window.find('\n'), window.size());
    const std::size_t end = std::min(window.substr(0, feed).find('\r'), feed);
    if (end < window.size()) return begin + end;
  }
  return text.size();
}

// Takes one line with its break ("\n", "\r\n" or "\r") off `rest`; the line comes back without it.
std::string_view TakeLine(std::string_view& rest) {
  const std::string_view line = rest.substr(0, LineLength(rest));
  rest.remove_prefix(line.size());
  const bool both = rest.substr(0, 2) == "\r\n";
  rest.remove_prefix(std::min<std::size_t>(both ? 2 : 1, rest.size()));
  return line;
}

bool IsHeading(std::string_view line, std::string_view& name) {
  line = TrimLeft(line);
  if (line.empty() || line.front() != '[') return false;
  const std::size_t close = line.find(']');
  if (close == std::string_view::npos) return false;
  name = TrimRight(TrimLeft(line.substr(1, close - 1)));
  return true;
}

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
  while (!rest_.empty()) {
    const std::string_view text = TrimLeft(TakeLine(rest_));
    if (text.empty() || text.front() == ';') continue;
    line.Whole = text;
    const std::size_t equals = text.find('=');
    line.Key = TrimRight(text.substr(0, equals));
    line.RawValue = equals == std::string_view::npos ? text.substr(text.size()) : text.substr(equals + 1);
    line.Value = line.RawValue.substr(0, line.RawValue.find('='));
    return true;
  }
  return false;
}

bool ProfileSections::Next(std::string_view& name, std::string_view& body) {
  bool found = false;
  while (!found && !rest_.empty()) found = IsHeading(TakeLine(rest_), name);
  if (!found) return false;
  const std::string_view start = rest_;
  std::string_view probe = rest_;
  std::string_view nextName;
  while (!probe.empty()) {
    const std::string_view before = probe;
    if (IsHeading(TakeLine(probe), nextName)) {
      rest_ = before;
      break;
    }
    rest_ = probe;
  }
  body = start.substr(0, start.size() - rest_.size());
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
