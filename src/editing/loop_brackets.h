// LoopBrackets: the loops of a sequence as brackets beside the step numbers, and in words.
#pragma once

#include <string>
#include <vector>

#include "core/catalogue.h"
#include "sequence/loops.h"

namespace corlune {

// Brackets side by side; deeper nested loops share the outermost place.
inline constexpr int kLoopLanes = 3;

// What of a bracket stands beside one step.
struct LoopPart {
  int Lane = 0;         // 0 next to the number, below kLoopLanes
  bool Begins = false;  // the jump's target
  bool Ends = false;    // the step that jumps; one loop at most ends in a step
  int Count = 0;        // times that the jump is taken; 0: without end
  bool operator==(const LoopPart&) const = default;
};

class LoopBrackets {
 public:
  LoopBrackets() = default;
  explicit LoopBrackets(const SequenceData& sequence);

  int Lanes() const { return lanes_; }  // 0: no loops
  // The parts beside a step, outer ones first. `slot` 0-based; none outside the sequence.
  std::vector<LoopPart> At(int slot) const;
  // The loops that a step belongs to in words, a line each, inner ones first.
  std::string Text(int slot, int startStep, const MessageCatalogue& catalogue) const;

  bool operator==(const LoopBrackets&) const = default;

 private:
  std::vector<Loop> loops_;
  int lanes_ = 0;
};

// "Steps 3 to 7 are repeated 5 times (6 passes)"; the numbers as the grids show them.
std::string LoopText(const Loop& loop, int startStep, const MessageCatalogue& catalogue);

}  // namespace corlune
