// VISA resource names and search expressions.
#pragma once

#include <cstdint>
#include <optional>
#include <regex>
#include <string>
#include <string_view>

namespace corlune {

// "USB[board]::manufacturer::product::serial[::interface]::INSTR"; numbers decimal or "0x..." hexadecimal.
struct UsbResource {
  std::uint16_t board = 0;
  std::uint16_t manufacturer = 0;
  std::uint16_t product = 0;
  std::string serial;  // upper case
  std::uint16_t interfaceNumber = 0;
  bool operator==(const UsbResource&) const = default;
};

// nullopt when the name is no USB instrument's. Letter case does not matter, "::INSTR" may be missing.
std::optional<UsbResource> ParseUsbResource(std::string_view name);
// A well-formed name of any interface ("GPIB0::7::INSTR"), so that "not found" and "no such name" differ.
bool IsResourceName(std::string_view name);

// A VISA search expression: "?" any character, "*" and "+" repeat what stands before, "[...]" and "[^...]"
// one of a list, "(...)" grouping, "|" alternatives, "\" takes the next character as it is; letter case does
// not matter. nullopt when it is malformed.
std::optional<std::regex> ResourceExpression(std::string_view expression);

}  // namespace corlune
