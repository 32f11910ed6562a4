// Letter case of ASCII letters only: every other byte of a UTF-8 text stays, whatever the locale.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace corlune {

constexpr char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char UpperAscii(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr bool SameAsciiLetter(char a, char b) {
  return LowerAscii(a) == LowerAscii(b);
}

inline std::string UpperAscii(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) c = UpperAscii(c);
  return upper;
}
constexpr bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), SameAsciiLetter);
}
constexpr bool EndsWithIgnoringCase(std::string_view text, std::string_view ending) {
  return text.size() >= ending.size() && EqualIgnoringCase(text.substr(text.size() - ending.size()), ending);
}

}  // namespace corlune
