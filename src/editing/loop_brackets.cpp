#include "editing/loop_brackets.h"

#include <algorithm>

namespace corlune {

namespace {

bool Includes(const Loop& loop, int slot) {
  return loop.First <= slot && slot <= loop.Last;
}

}  // namespace

LoopBrackets::LoopBrackets(const SequenceData& sequence) : loops_(LoopsOf(sequence)) {
  if (!loops_.empty()) lanes_ = std::min(loops_.back().Level + 1, kLoopLanes);
}

std::vector<LoopPart> LoopBrackets::At(int slot) const {
  std::vector<LoopPart> parts;
  for (auto loop = loops_.rbegin(); loop != loops_.rend(); ++loop) {
    if (!Includes(*loop, slot)) continue;
    parts.push_back(
        {std::min(loop->Level, kLoopLanes - 1), loop->First == slot, loop->Last == slot, loop->Count});
  }
  return parts;
}

std::string LoopBrackets::Text(int slot, int startStep, const MessageCatalogue& catalogue) const {
  std::string text;
  for (const Loop& loop : loops_) {
    if (!Includes(loop, slot)) continue;
    if (!text.empty()) text += '\n';
    text += LoopText(loop, startStep, catalogue);
  }
  return text;
}

std::string LoopText(const Loop& loop, int startStep, const MessageCatalogue& catalogue) {
  const TextId id = loop.Count == 0   ? TextId::LoopEndless
                    : loop.Count == 1 ? TextId::LoopOnce
                                      : TextId::LoopTimes;
  return catalogue.GetResString(
      id, {std::to_string(startStep + loop.First), std::to_string(startStep + loop.Last),
           std::to_string(loop.Count), std::to_string(loop.Count + 1)});
}

}  // namespace corlune
