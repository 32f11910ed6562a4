// LoopRows: the loops of the sequence as rows of brackets above the steps, in as many rows as they need,
// up to a limit.
#pragma once

#include <vector>

#include "sequence/loops.h"

namespace corlune {

inline constexpr int kMostLoopRows = 4;

struct LoopBracket {
  int First = 0;  // slots, both included
  int Last = 0;
  int Row = 0;           // 0 next to the steps
  int Count = 0;         // times that the jump is taken; 0: without end
  int Loops = 1;         // more than 1: stands for so many outer loops, Count says nothing
  bool Endless = false;  // one of its loops is
  bool operator==(const LoopBracket&) const = default;
};

// By row, then by first step; `most` at least 1. Loops that are nested deeper than the rows reach share the
// last row: those that overlap become one bracket. Two brackets of a row never share a step.
std::vector<LoopBracket> NestLoops(const std::vector<Loop>& loops, int most = kMostLoopRows);

// Rows that the brackets take.
int LoopRows(const std::vector<LoopBracket>& brackets);

}  // namespace corlune
