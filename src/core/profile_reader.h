// LineReader: walks through profile text line by line without copying it. The rules of lines, blanks,
// comments and headers, told in core/profile_bytes.h, have their home here.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/code_page.h"

namespace corlune::profile {

inline std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\v\f\x1A";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// The first `wanted` that is a character of its own; npos when there is none.
inline std::size_t FindCharacter(std::string_view text, char wanted, int codePage) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == wanted) return i;
    if (IsLeadByte(static_cast<unsigned char>(text[i]), codePage)) ++i;
  }
  return std::string_view::npos;
}

// One line: where it stands in the file and what it says.
struct Line {
  std::size_t begin = 0;
  std::size_t contentEnd = 0;  // without the line end
  std::size_t end = 0;         // behind the line end
  std::string_view text;       // trimmed, up to a NUL
};

class LineReader {
 public:
  explicit LineReader(std::string_view file) : file_(file) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (file.substr(0, kByteOrderMark.size()) == kByteOrderMark) at_ = kByteOrderMark.size();
  }

  bool Next(Line& line) {
    if (at_ >= file_.size()) return false;
    line.begin = at_;
    line.contentEnd = FindLineEnd();
    at_ = line.contentEnd;
    if (at_ < file_.size()) at_ += file_.substr(at_, 2) == "\r\n" ? 2 : 1;
    line.end = at_;
    const std::string_view content = file_.substr(line.begin, line.contentEnd - line.begin);
    line.text = Trim(content.substr(0, content.find('\0')));
    return true;
  }

 private:
  // Searching for one character is far faster than for one of two, and a load spends its time here.
  std::size_t FindLineEnd() {
    if (nextFeed_ < at_ || nextFeed_ == 0) nextFeed_ = std::min(file_.find('\n', at_), file_.size());
    return at_ + std::min(file_.substr(at_, nextFeed_ - at_).find('\r'), nextFeed_ - at_);
  }

  std::string_view file_;
  std::size_t at_ = 0;
  std::size_t nextFeed_ = 0;  // the first LF from at_ on
};

inline bool IsComment(std::string_view text) {
  return !text.empty() && text[0] == ';';
}

// The name of a header line; nullopt for any other line.
inline std::optional<std::string_view> HeaderName(std::string_view text, int codePage) {
  if (text.empty() || text[0] != '[') return std::nullopt;
  const std::size_t close = FindCharacter(text, ']', codePage);
  if (close == std::string_view::npos) return std::nullopt;
  return Trim(text.substr(1, close - 1));
}

}  // namespace corlune::profile
