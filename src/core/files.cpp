#include "core/files.h"

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "platform/code_page.h"
#include "platform/file_access.h"

namespace corlune {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

#ifdef _WIN32
constexpr std::string_view kSeparators = "\\/";
#else
constexpr std::string_view kSeparators = "/";
#endif

// Length of the valid UTF-8 sequence at the beginning of `text`, 0 when there is none. Overlong forms,
// surrogates and values above U+10FFFF are not valid.
std::size_t SequenceLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return 1;
  std::size_t length = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  }
  if (length == 0 || text.size() < length || byte(1) < low || byte(1) > high) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  return length;
}

// Files are mostly ASCII, so eight bytes are looked at together.
std::size_t AsciiPrefix(std::string_view text) {
  std::size_t at = 0;
  while (at + sizeof(std::uint64_t) <= text.size()) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + at, sizeof(word));
    if ((word & 0x8080808080808080u) != 0) break;
    at += sizeof(word);
  }
  while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
  return at;
}

}  // namespace

bool IsValidUtf8(std::string_view text) {
  for (;;) {
    text.remove_prefix(AsciiPrefix(text));
    if (text.empty()) return true;
    const std::size_t length = SequenceLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
}

std::string JoinPath(std::string_view folder, std::string_view name) {
  if (folder.empty()) return std::string(name);
  std::string path(folder);
  if (kSeparators.find(path.back()) == std::string_view::npos) path += kSeparators[0];
  return path.append(name);
}

std::optional<std::string> SetAside(const std::string& path) {
  constexpr int kMostKept = 9999;
  for (int number = 1; number <= kMostKept; ++number) {
    const std::string kept = path + ".bad" + std::to_string(number);
    if (PathExists(kept)) continue;
    const auto native = [](const std::string& utf8) {
      return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
    };
    std::error_code error;
    std::filesystem::rename(native(path), native(kept), error);
    return error ? std::nullopt : std::optional(kept);
  }
  return std::nullopt;
}

bool FileExists(const std::string& path) {
  return IsRegularFile(path);
}

std::optional<std::string> ReadWholeFile(const std::string& path) {
  return ReadFileBytes(path);
}

bool ReplaceFile(const std::string& path, std::string_view bytes, std::string* error) {
  return ReplaceFileBytes(path, bytes, error);
}

std::string DecodeText(std::string_view bytes, int codePage) {
  if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    const std::string_view rest = bytes.substr(kByteOrderMark.size());
    if (IsValidUtf8(rest)) return std::string(rest);
  }
  if (IsValidUtf8(bytes)) return std::string(bytes);
  return CodePageToUtf8(bytes, codePage).value_or(std::string(bytes));
}

std::string EncodeText(std::string_view text, int codePage) {
  if (AsciiPrefix(text) == text.size()) return std::string(text);
  auto bytes = Utf8ToCodePage(text, codePage);
  if (bytes && DecodeText(*bytes, codePage) == text) return *std::move(bytes);
  // Reading drops one mark, so a text that begins with one needs another.
  const bool marked = text.substr(0, kByteOrderMark.size()) == kByteOrderMark;
  return (marked ? std::string(kByteOrderMark) : std::string()).append(text);
}

std::string DecodeText(std::string_view bytes) {
  if (AsciiPrefix(bytes) == bytes.size()) return std::string(bytes);
  return DecodeText(bytes, SystemCodePage());
}

std::string EncodeText(std::string_view text) {
  if (AsciiPrefix(text) == text.size()) return std::string(text);
  return EncodeText(text, SystemCodePage());
}

}  // namespace corlune
