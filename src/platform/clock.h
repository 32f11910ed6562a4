// The machine's steady clock.
#pragma once

#include <cstdint>

namespace corlune {

// Milliseconds since an unknown moment; wraps after 49.7 days. Only differences have a meaning. Not moved
// by setting the time of day.
std::uint32_t TickMilliseconds();

}  // namespace corlune
