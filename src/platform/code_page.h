// The code pages in which files are written: 932 (Japanese, double-byte) and 1252 (western).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corlune {

inline constexpr int kJapaneseCodePage = 932;
inline constexpr int kWesternCodePage = 1252;

// 932 when the system's default language is Japanese, else 1252.
int SystemCodePage();

// Text of code page bytes. A byte that the code page does not define is shown, not dropped: the five
// undefined bytes of 1252 become the control characters of the same number, everything else U+FFFD.
// nullopt for a code page that the system does not know.
std::optional<std::string> CodePageToUtf8(std::string_view bytes, int codePage);

// nullopt when a character is not in the code page (or `text` is not valid UTF-8).
std::optional<std::string> Utf8ToCodePage(std::string_view text, int codePage);

// True for the first byte of a two-byte character.
bool IsLeadByte(unsigned char byte, int codePage);

}  // namespace corlune
