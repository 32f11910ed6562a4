#include "core/system_ports.h"

#include "platform/clock.h"

namespace corlune {

std::uint32_t SteadyTickClock::Now() const {
  return TickMilliseconds();
}

}  // namespace corlune
