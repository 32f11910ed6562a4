// Walking through profile text without copying it: sections, entries, comma-separated fields. For
// text that is large and read often; values are views into the text (UTF-8).
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "core/profile_reader.h"

namespace corlune {

struct ProfileLine {
  std::string_view Whole;     // without line break and leading blanks
  std::string_view Key;       // before the first "=", blanks around it removed
  std::string_view Value;     // between the first and the second "="
  std::string_view RawValue;  // everything behind the first "="
};

// Entries of a section: lines that are neither blank nor a comment.
class ProfileLines {
 public:
  explicit ProfileLines(std::string_view section) : section_(section), reader_(section) {}
  // False at the end.
  bool Next(ProfileLine& line);

 private:
  std::string_view section_;
  profile::LineReader reader_;
};

// Section headings of a text in file order.
class ProfileSections {
 public:
  explicit ProfileSections(std::string_view text) : text_(text), reader_(text) {}
  // Name as written and the lines up to the next heading. False at the end.
  bool Next(std::string_view& name, std::string_view& body);

 private:
  bool IsHeading(const profile::Line& line);

  std::string_view text_;
  profile::LineReader reader_;
  std::optional<std::string_view> heading_;  // found, its section not yet handed out
  std::size_t bodyBegin_ = 0;                // of that section
};

// Fields of a value in order. Every reader returns false, and stays where it is, when there is no further
// field or the field is no number of the type.
class ProfileFields {
 public:
  explicit ProfileFields(std::string_view value) : next_(value.data()), end_(value.data() + value.size()) {}
  bool AtEnd() const { return atEnd_; }
  bool Read(std::int16_t& value);
  bool Read(std::int32_t& value);
  bool Read(double& value);

 private:
  template <typename T>
  bool ReadNumber(T& value);
  std::string_view Item() const;
  void StepOver(const char* itemEnd);

  const char* next_;
  const char* end_;
  bool atEnd_ = false;
};

// The index behind "#" number `position` (1, 2) of a key such as "SE_SETVAL#0#12". nullopt when there is
// none, or it is no plain number below `limit`.
std::optional<int> KeyIndex(std::string_view key, int position, int limit);

// The index that one character of a key gives ('0'..'9'), below `limit`.
std::optional<int> DigitIndex(char digit, int limit);

}  // namespace corlune
