// CommStatus: the result of every communication operation.
#pragma once

#include <cstdint>

namespace corlune {

// A 16-bit word; GP_Init may OR several values together.
enum class CommStatus : std::uint16_t {
  Success = 0,
  TimeOut = 1,
  Error = 2,
  NoBoard = 4,  // interface board (or its library) not present
  BufferOverflow = 8,
};

constexpr CommStatus operator|(CommStatus a, CommStatus b) {
  return static_cast<CommStatus>(static_cast<std::uint16_t>(a) | static_cast<std::uint16_t>(b));
}
constexpr bool Has(CommStatus status, CommStatus bit) {
  return (static_cast<std::uint16_t>(status) & static_cast<std::uint16_t>(bit)) != 0;
}
constexpr bool Failed(CommStatus status) {
  return status != CommStatus::Success;
}

}  // namespace corlune
