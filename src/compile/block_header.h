// The header of an IEEE 488.2 definite-length block.
#pragma once

#include <cstddef>
#include <string>

namespace corlune {

// `command`, "#", the number of digits of `length`, and `length` (bytes of the block that follows).
inline std::string BlockHeader(const std::string& command, std::size_t length) {
  const std::string digits = std::to_string(length);
  return command + "#" + std::to_string(digits.size()) + digits;
}

}  // namespace corlune
