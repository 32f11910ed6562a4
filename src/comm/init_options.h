// InitOptions: the configuration text of GP_Init, "KEY=value" options separated by commas.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corlune {

// Keys and values are matched and read in upper case. A key is found anywhere in the text, also inside a
// longer key; its option runs from there to the next comma.
class InitOptions {
 public:
  explicit InitOptions(std::string_view text);

  // A flag option is on by its presence, whatever its value.
  bool Has(std::string_view key) const;
  // Behind the first "=", blanks trimmed, upper case. Empty when the option is absent, empty or without "=".
  std::string Value(std::string_view key) const;
  // The same in the letters it was written in: file names.
  std::string ValueAsWritten(std::string_view key) const;
  // "LOG_FILE": empty for no log; a relative name starts at `folder`, the application folder.
  std::string LogPath(const std::string& folder) const;
  // Leading decimal integer of the value, 0 when absent; held within the type.
  std::int16_t Number(std::string_view key) const;

 private:
  // Position and length of the value in the text.
  std::optional<std::string_view> Slice(std::string_view key, std::string_view from) const;

  std::string text_;
  std::string upper_;  // same length as text_
};

// `path` as it is when absolute, else below `folder`; an empty path stays empty.
std::string PathBelow(const std::string& folder, const std::string& path);

}  // namespace corlune
