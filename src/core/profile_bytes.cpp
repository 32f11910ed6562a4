#include "core/profile_bytes.h"

#include <algorithm>

#include "core/ascii_case.h"
#include "core/profile_reader.h"
#include "platform/code_page.h"

namespace corlune {
namespace {

using profile::HeaderName;
using profile::IsComment;
using profile::Line;
using profile::LineReader;
using profile::Trim;

constexpr std::string_view kLineEnd = "\r\n";

bool SameName(std::string_view a, std::string_view b, int codePage) {
  if (a.size() != b.size()) return false;
  bool trail = false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (trail ? a[i] != b[i] : !SameAsciiLetter(a[i], b[i])) return false;
    trail = !trail && IsLeadByte(static_cast<unsigned char>(a[i]), codePage);
  }
  return true;
}

// The key of an entry line: all of it when it has no "=".
std::string_view KeyOf(std::string_view text) {
  return Trim(text.substr(0, text.find('=')));
}

// Moves behind the header of the first section of that name; *header (may be null) is its line.
bool FindSection(LineReader& reader, std::string_view section, int codePage, Line* header = nullptr) {
  const std::string_view wanted = Trim(section);
  Line line;
  while (reader.Next(line)) {
    const auto name = HeaderName(line.text, codePage);
    if (!name || !SameName(*name, wanted, codePage)) continue;
    if (header != nullptr) *header = line;
    return true;
  }
  return false;
}

// The next line of the section, header of the next section excluded.
bool NextInSection(LineReader& reader, Line& line, int codePage) {
  return reader.Next(line) && !HeaderName(line.text, codePage);
}

std::string_view Unquote(std::string_view value) {
  const bool quoted =
      value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.front() == value.back();
  return quoted ? value.substr(1, value.size() - 2) : value;
}

// The line end of `line`; of a last line without one, that of the file's first line, else CR LF.
std::string_view LineEndOf(std::string_view file, const Line& line) {
  if (line.end > line.contentEnd) return file.substr(line.contentEnd, line.end - line.contentEnd);
  LineReader reader(file);
  Line first;
  const bool ended = reader.Next(first) && first.end > first.contentEnd;
  return ended ? file.substr(first.contentEnd, first.end - first.contentEnd) : kLineEnd;
}

std::string EntryLine(std::string_view key, std::string_view value, std::string_view lineEnd) {
  std::string text;
  text.append(Trim(key)).append("=").append(value).append(lineEnd);
  return text;
}

std::string Splice(std::string_view file, std::size_t begin, std::size_t end, std::string_view inserted) {
  std::string result;
  result.reserve(file.size() + inserted.size());
  result.append(file.substr(0, begin)).append(inserted).append(file.substr(end));
  return result;
}

std::string DeleteSection(std::string_view file, const Line& header, LineReader& reader, int codePage) {
  std::size_t end = header.end;
  Line line;
  while (NextInSection(reader, line, codePage)) end = line.end;
  return Splice(file, header.begin, end, {});
}

// `lines` behind the line `before`, which gets a line end when it has none.
std::string InsertLines(std::string_view file, const Line& before, std::string_view lines) {
  std::string inserted;
  if (before.end == before.contentEnd) inserted = LineEndOf(file, before);
  inserted += lines;
  return Splice(file, before.end, before.end, inserted);
}

std::string AddSection(std::string_view file, std::string_view section, std::string_view key,
                       std::string_view value) {
  Line last;
  LineReader reader(file);
  bool empty = true;
  while (reader.Next(last)) empty = false;
  const std::string_view lineEnd = LineEndOf(file, last);
  std::string lines;
  lines.append("[").append(Trim(section)).append("]").append(lineEnd).append(EntryLine(key, value, lineEnd));
  return empty ? std::string(file) + lines : InsertLines(file, last, lines);
}

}  // namespace

std::optional<std::string_view> FindProfileValue(std::string_view file, std::string_view section,
                                                 std::string_view key, int codePage) {
  LineReader reader(file);
  if (!FindSection(reader, section, codePage)) return std::nullopt;
  const std::string_view wanted = Trim(key);
  Line line;
  while (NextInSection(reader, line, codePage)) {
    if (line.text.empty() || IsComment(line.text) || !SameName(KeyOf(line.text), wanted, codePage)) continue;
    const std::size_t equals = line.text.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    return Unquote(Trim(line.text.substr(equals + 1)));
  }
  return std::nullopt;
}

std::string ReadProfileString(std::string_view file, std::string_view section, std::string_view key,
                              std::string_view defaultValue, std::size_t size, int codePage) {
  const std::string_view usual = defaultValue.substr(0, defaultValue.find_last_not_of(' ') + 1);
  const std::string_view value = FindProfileValue(file, section, key, codePage).value_or(usual);
  return std::string(value.substr(0, size == 0 ? 0 : size - 1));
}

std::string ReadProfileSection(std::string_view file, std::string_view section, std::size_t size,
                               int codePage) {
  std::string entries;
  LineReader reader(file);
  if (!FindSection(reader, section, codePage)) return entries;
  Line line;
  while (NextInSection(reader, line, codePage)) {
    if (line.text.empty() || IsComment(line.text)) continue;
    const std::size_t equals = line.text.find('=');
    if (equals == std::string_view::npos) {
      entries += line.text;
    } else {
      entries += Trim(line.text.substr(0, equals));
      entries += '=';
      entries += Trim(line.text.substr(equals + 1));
    }
    entries += '\0';
  }
  if (size != 0) entries.resize(std::min(entries.size(), size < 2 ? 0 : size - 2));
  return entries;
}

std::string WriteProfileString(std::string_view file, std::string_view section,
                               std::optional<std::string_view> key, std::optional<std::string_view> value,
                               int codePage) {
  LineReader reader(file);
  Line last;  // the last line of the section that is not blank
  if (!FindSection(reader, section, codePage, &last)) {
    return key && value ? AddSection(file, section, *key, *value) : std::string(file);
  }
  if (!key) return DeleteSection(file, last, reader, codePage);
  const std::string_view wanted = Trim(*key);
  Line line;
  while (NextInSection(reader, line, codePage)) {
    if (line.text.empty()) continue;
    last = line;
    if (IsComment(line.text) || !SameName(KeyOf(line.text), wanted, codePage)) continue;
    if (!value) return Splice(file, line.begin, line.end, {});
    // The key stays as the file spells it.
    return Splice(file, line.begin, line.end, EntryLine(KeyOf(line.text), *value, LineEndOf(file, line)));
  }
  if (!value) return std::string(file);
  return InsertLines(file, last, EntryLine(*key, *value, LineEndOf(file, last)));
}

}  // namespace corlune
