// Profile files: bracketed sections of key-and-value lines, the form of all configuration files and of
// sequence files when they are read.
//
// Two layers. The Profile... functions of core/profile_bytes.h answer exactly as the platform's profile
// calls do, on bytes. The functions here work on files, decode the text (valid UTF-8 as UTF-8, anything
// else as the system code page) before any splitting, and add the trimming and comment rules that all
// readers of this program share.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace corlune {

inline constexpr std::size_t kIniValueBuffer = 3000;

// Value of one key; empty when file, section or key is missing, and for a value that begins with ";".
// Cut to bufferSize - 1 characters.
std::string GetIniString(const std::string& path, std::string_view section, std::string_view key,
                         std::size_t bufferSize = kIniValueBuffer);

// The entry lines of a section, each without its line end, joined by NUL, none at the end; from the decoded
// text of a file that was read once. Never cut.
std::string GetIniSectionOfText(std::string_view text, std::string_view section);

// Writes one value: creates file, section and key when missing, else replaces only that line, every other
// byte stays. The file is replaced atomically. False when the folder or file cannot be written.
bool WriteIniString(const std::string& path, std::string_view section, std::string_view key,
                    std::string_view value);

// One entry of a section. Views into the section text.
struct IniEntry {
  std::string_view key;       // untrimmed text before the first "="
  std::string_view value;     // between the first and the second "="
  std::string_view rawValue;  // everything behind the first "="
  std::string_view whole;     // the whole entry
};

// Calls `handle` for every entry that is not blank and not a comment, in file order; stops when it returns
// false and then returns false.
bool ForEachIniEntry(std::string_view section, const std::function<bool(const IniEntry&)>& handle);

// Splits at `separator`; an empty text gives one empty item. Items are taken as they are.
std::vector<std::string_view> SplitList(std::string_view value, char separator = ',');

std::string_view TrimBlanks(std::string_view text);  // blanks and tabs

}  // namespace corlune
