// Profile text, answered exactly as the platform's profile calls do, on bytes in a code page.
//
// The rules: CR, LF and CR LF end a line; a NUL ends it early. Blanks (also tabs and the end-of-file mark
// of old editors, 1A) around a line do not count; a line that begins with ";" is a comment. "[" begins a
// header; its name ends at the first "]" and is trimmed. Names are compared without regard to the case of
// ASCII letters. The first section and the first key of a name win. In code page 932 the second byte of a
// character can be "[", "\", "]" or a letter and is never taken for one.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corlune {

// Code page of texts in UTF-8, for the functions below: no byte of a longer character looks like ASCII.
inline constexpr int kUtf8CodePage = 65001;

// The value of a key: everything behind the first "=", trimmed, without the pair of equal quotes that
// encloses all of it. nullopt when section or key is missing or the key's line has no "=".
std::optional<std::string_view> FindProfileValue(std::string_view file, std::string_view section,
                                                 std::string_view key, int codePage);

// Reads one value, or `defaultValue` without the blanks at its end; cut to size - 1 bytes.
std::string ReadProfileString(std::string_view file, std::string_view section, std::string_view key,
                              std::string_view defaultValue, std::size_t size, int codePage);

// Reads a section: its entries, each followed by NUL. Comments and blank lines are dropped, entries and the
// blanks around their first "=" trimmed. Cut to size - 2 bytes; size 0: no limit.
std::string ReadProfileSection(std::string_view file, std::string_view section, std::size_t size,
                               int codePage);

// The file after one write. Only the line of the key changes, every other byte stays, also the letter case
// of the key. A missing key is
// added behind the last line of the section that is not blank, a missing section at the end. Without a
// value the key is deleted, without a key the section. An added line ends like the line before it.
std::string WriteProfileString(std::string_view file, std::string_view section,
                               std::optional<std::string_view> key, std::optional<std::string_view> value,
                               int codePage);

}  // namespace corlune
