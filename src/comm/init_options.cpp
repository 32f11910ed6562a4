#include "comm/init_options.h"

#include <algorithm>
#include <filesystem>

#include "core/ascii_case.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/profile_file.h"

namespace corlune {

InitOptions::InitOptions(std::string_view text) : text_(text), upper_(UpperAscii(text)) {}

bool InitOptions::Has(std::string_view key) const {
  return upper_.find(key) != std::string::npos;
}

std::optional<std::string_view> InitOptions::Slice(std::string_view key, std::string_view from) const {
  const std::size_t begin = upper_.find(key);
  if (begin == std::string::npos) return std::nullopt;
  const std::string_view option =
      from.substr(begin, std::min(upper_.find(',', begin), upper_.size()) - begin);
  const std::size_t equals = option.find('=');
  if (equals == std::string_view::npos) return std::string_view();
  return TrimBlanks(option.substr(equals + 1));
}

std::string InitOptions::Value(std::string_view key) const {
  return std::string(Slice(key, upper_).value_or(std::string_view()));
}

std::string InitOptions::ValueAsWritten(std::string_view key) const {
  return std::string(Slice(key, text_).value_or(std::string_view()));
}

std::string InitOptions::LogPath(const std::string& folder) const {
  return PathBelow(folder, ValueAsWritten("LOG_FILE"));
}

std::int16_t InitOptions::Number(std::string_view key) const {
  return static_cast<std::int16_t>(std::clamp(LeadingInteger(Value(key)), INT16_MIN, INT16_MAX));
}

std::string PathBelow(const std::string& folder, const std::string& path) {
  if (path.empty()) return path;
  const std::filesystem::path given(std::u8string(path.begin(), path.end()));
  return given.is_absolute() || given.has_root_directory() ? path : JoinPath(folder, path);
}

}  // namespace corlune
