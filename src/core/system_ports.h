// The ports that need no window: the program's clock.
#pragma once

#include "core/ports.h"

namespace corlune {

// The machine's steady clock; setting the time of day does not move it.
class SteadyTickClock : public TickClock {
 public:
  std::uint32_t Now() const override;
};

}  // namespace corlune
