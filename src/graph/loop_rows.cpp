#include "graph/loop_rows.h"

#include <algorithm>

namespace corlune {

std::vector<LoopBracket> NestLoops(const std::vector<Loop>& loops, int most) {
  std::vector<LoopBracket> brackets;
  std::vector<LoopBracket> outer;
  for (const Loop& loop : loops) {
    const int row = std::min(loop.Level, most - 1);
    const LoopBracket bracket{loop.First, loop.Last, row, loop.Count, 1, loop.Count == 0};
    (row == most - 1 ? outer : brackets).push_back(bracket);
  }
  std::stable_sort(outer.begin(), outer.end(),
                   [](const LoopBracket& a, const LoopBracket& b) { return a.First < b.First; });
  for (const LoopBracket& bracket : outer) {
    const bool overlaps =
        !brackets.empty() && brackets.back().Row == bracket.Row && bracket.First <= brackets.back().Last;
    if (!overlaps) {
      brackets.push_back(bracket);
      continue;
    }
    LoopBracket& shared = brackets.back();
    shared.Last = std::max(shared.Last, bracket.Last);
    shared.Endless = shared.Endless || bracket.Endless;
    ++shared.Loops;
  }
  return brackets;
}

int LoopRows(const std::vector<LoopBracket>& brackets) {
  return brackets.empty() ? 0 : brackets.back().Row + 1;
}

}  // namespace corlune
