#include "standins/virtual_instrument/visa_resources.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

#include "core/ascii_case.h"

namespace corlune {
namespace {

constexpr std::size_t kLongestName = 255;

// `text` is in upper case.
std::optional<std::uint16_t> ReadNumber(std::string_view text) {
  int base = 10;
  if (text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  std::uint16_t value = 0;
  const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (problem != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::vector<std::string> Fields(const std::string& name) {
  std::vector<std::string> fields;
  std::size_t at = 0;
  for (;;) {
    const std::size_t next = name.find("::", at);
    fields.push_back(name.substr(at, next - at));
    if (next == std::string::npos) return fields;
    at = next + 2;
  }
}

}  // namespace

std::optional<UsbResource> ParseUsbResource(std::string_view name) {
  if (name.size() > kLongestName) return std::nullopt;
  std::vector<std::string> fields = Fields(UpperAscii(name));
  if (fields.back() == "INSTR") fields.pop_back();
  if (fields.size() < 4 || fields.size() > 5 || !fields[0].starts_with("USB")) return std::nullopt;
  const std::string board = fields[0].substr(3);
  const auto boardNumber = board.empty() ? std::optional<std::uint16_t>(0) : ReadNumber(board);
  const auto manufacturer = ReadNumber(fields[1]);
  const auto product = ReadNumber(fields[2]);
  const auto interfaceNumber = fields.size() == 5 ? ReadNumber(fields[4]) : std::optional<std::uint16_t>(0);
  if (!boardNumber || !manufacturer || !product || !interfaceNumber || fields[3].empty()) return std::nullopt;
  return UsbResource{*boardNumber, *manufacturer, *product, fields[3], *interfaceNumber};
}

bool IsResourceName(std::string_view name) {
  static constexpr std::array kInterfaces{"USB", "GPIB", "ASRL", "TCPIP", "VXI", "PXI"};
  if (name.size() > kLongestName) return false;
  const std::vector<std::string> fields = Fields(UpperAscii(name));
  if (fields.size() < 2) return false;
  if (std::any_of(fields.begin(), fields.end(), [](const std::string& field) { return field.empty(); })) {
    return false;
  }
  if (fields[0].starts_with("USB")) return ParseUsbResource(name).has_value();
  return std::any_of(kInterfaces.begin(), kInterfaces.end(), [&](std::string_view prefix) {
    if (!fields[0].starts_with(prefix)) return false;
    const std::string board = fields[0].substr(prefix.size());
    return board.empty() || ReadNumber(board).has_value();
  });
}

std::optional<std::regex> ResourceExpression(std::string_view expression) {
  if (expression.empty() || expression.size() > kLongestName) return std::nullopt;
  std::string pattern;
  bool inList = false;
  for (std::size_t i = 0; i < expression.size(); ++i) {
    const char c = expression[i];
    if (c == '\\') {
      if (++i == expression.size()) return std::nullopt;
      const char literal = expression[i];
      const bool word = (literal >= '0' && literal <= '9') || (literal >= 'A' && literal <= 'Z') ||
                        (literal >= 'a' && literal <= 'z') || literal == '_';
      if (!word) pattern += '\\';
      pattern += literal;
    } else if (inList) {
      inList = c != ']';
      pattern += c;
    } else if (c == '?') {
      pattern += '.';
    } else if (c == '.' || c == '{' || c == '}' || c == '^' || c == '$' || c == '/') {
      pattern += '\\';
      pattern += c;
    } else {
      inList = c == '[';
      pattern += c;
    }
  }
  try {
    return std::regex(pattern, std::regex::ECMAScript | std::regex::icase);
  } catch (const std::regex_error&) {
    return std::nullopt;
  }
}

}  // namespace corlune
