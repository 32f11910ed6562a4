// The command set of the virtual instrument.
#pragma once

#include <vector>

#include "standins/virtual_instrument/instrument_state.h"
#include "standins/virtual_instrument/scpi_parser.h"

namespace corlune {

// Carries out one unit of a message. `path` holds the nodes that a header without a leading ":" continues
// (empty at the start of a message) and is moved on. Answers go to `state.reply`. Errors are returned, not
// reported.
ScpiError ExecuteUnit(InstrumentState& state, const ScpiUnit& unit, std::vector<ScpiNode>& path);

}  // namespace corlune
