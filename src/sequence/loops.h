// Loops: the backward jumps of a sequence as nested brackets, for the brackets beside the grids' rows and
// above the steps of the sequence view.
#pragma once

#include <string>
#include <vector>

#include "sequence/sequence_data.h"

namespace corlune {

struct Loop {
  int First = 0;  // slot of the jump's target
  int Last = 0;   // slot that jumps, after First
  int Count = 0;  // times that the jump is taken; 0: without end
  int Level = 0;  // 0 innermost: a loop lies outside every loop of a lower level that it overlaps
  bool operator==(const Loop&) const = default;
};

// The loops of the used steps, by level, then by first step. A jump to itself, forward or without a target is
// no loop: it colours no rows either.
std::vector<Loop> LoopsOf(const SequenceData& sequence);

// The sign of a loop at its bracket, in every language: "×3", "∞" for one without end.
std::string LoopSign(int count);

}  // namespace corlune
