#include "core/profile_file.h"

#include <algorithm>
#include <optional>

#include "core/files.h"
#include "core/profile_bytes.h"
#include "platform/code_page.h"
#include "platform/file_access.h"

namespace corlune {
namespace {

// `text` as it fits into `limit` bytes of a file, never ending inside a character. The limit counts the
// bytes of the code page when the text has them, for that is what the file's other readers count.
std::string CutToBytes(std::string text, std::size_t limit) {
  // No character takes fewer bytes in UTF-8 than in a code page.
  if (text.size() <= limit) return text;
  const int codePage = SystemCodePage();
  if (const auto bytes = Utf8ToCodePage(text, codePage)) {
    if (bytes->size() <= limit) return text;
    std::size_t end = 0;
    for (std::size_t next = 0; next <= limit;) {
      end = next;
      next += IsLeadByte(static_cast<unsigned char>((*bytes)[next]), codePage) ? 2 : 1;
    }
    return CodePageToUtf8(std::string_view(*bytes).substr(0, end), codePage).value_or(std::string());
  }
  while (limit > 0 && (static_cast<unsigned char>(text[limit]) & 0xC0) == 0x80) --limit;
  text.resize(limit);
  return text;
}

bool BreaksLine(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

// The file after the write, with the new text in the encoding that the file has, so that no other byte
// changes. Where the file's encoding cannot hold the new text the whole file changes its encoding.
std::string BytesAfterWrite(const std::string& bytes, std::string_view section, std::string_view key,
                            std::string_view value) {
  const std::string text = WriteProfileString(DecodeText(bytes), section, key, value, kUtf8CodePage);
  const auto matches = [&](const std::string& candidate) { return DecodeText(candidate) == text; };

  const int codePage = SystemCodePage();
  const auto codedSection = Utf8ToCodePage(section, codePage);
  const auto codedKey = Utf8ToCodePage(key, codePage);
  const auto codedValue = Utf8ToCodePage(value, codePage);
  if (codedSection && codedKey && codedValue) {
    std::string candidate = WriteProfileString(bytes, *codedSection, *codedKey, *codedValue, codePage);
    if (matches(candidate)) return candidate;
  }
  std::string candidate = WriteProfileString(bytes, section, key, value, kUtf8CodePage);
  if (matches(candidate)) return candidate;
  return EncodeText(text);
}

}  // namespace

std::string_view TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string GetIniString(const std::string& path, std::string_view section, std::string_view key,
                         std::size_t bufferSize) {
  const auto bytes = ReadWholeFile(path);
  if (!bytes || bufferSize == 0) return {};
  const std::string text = DecodeText(*bytes);
  const auto value = FindProfileValue(text, section, key, kUtf8CodePage);
  if (!value) return {};
  const std::string_view trimmed = TrimBlanks(*value);
  if (trimmed.empty() || trimmed[0] == ';') return {};
  return CutToBytes(std::string(*value), bufferSize - 1);
}

std::string GetIniSectionOfText(std::string_view text, std::string_view section) {
  std::string entries = ReadProfileSection(text, section, 0, kUtf8CodePage);
  while (!entries.empty() && entries.back() == '\0') entries.pop_back();
  return entries;
}

bool WriteIniString(const std::string& path, std::string_view section, std::string_view key,
                    std::string_view value) {
  if (BreaksLine(section) || BreaksLine(key) || BreaksLine(value)) return false;
  const auto bytes = ReadWholeFile(path);
  // A file that is there but cannot be read must not be replaced by a new one.
  if (!bytes && PathExists(path)) return false;
  return ReplaceFile(path, BytesAfterWrite(bytes.value_or(std::string()), section, key, value));
}

bool ForEachIniEntry(std::string_view section, const std::function<bool(const IniEntry&)>& handle) {
  while (!section.empty()) {
    const std::size_t end = std::min(section.find('\0'), section.size());
    IniEntry entry;
    entry.whole = section.substr(0, end);
    section.remove_prefix(std::min(end + 1, section.size()));
    const std::string_view trimmed = TrimBlanks(entry.whole);
    if (trimmed.empty() || trimmed[0] == ';') continue;
    const std::size_t equals = std::min(entry.whole.find('='), entry.whole.size());
    entry.key = entry.whole.substr(0, equals);
    if (equals < entry.whole.size()) {
      entry.rawValue = entry.whole.substr(equals + 1);
      entry.value = entry.rawValue.substr(0, entry.rawValue.find('='));
    }
    if (!handle(entry)) return false;
  }
  return true;
}

std::vector<std::string_view> SplitList(std::string_view value, char separator) {
  std::vector<std::string_view> items;
  items.reserve(static_cast<std::size_t>(std::count(value.begin(), value.end(), separator)) + 1);
  for (;;) {
    const std::size_t end = value.find(separator);
    items.push_back(value.substr(0, end));
    if (end == std::string_view::npos) return items;
    value.remove_prefix(end + 1);
  }
}

}  // namespace corlune
