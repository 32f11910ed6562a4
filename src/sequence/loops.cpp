#include "sequence/loops.h"

#include <algorithm>

namespace corlune {

std::vector<Loop> LoopsOf(const SequenceData& sequence) {
  std::vector<Loop> loops;
  const int count = std::clamp<int>(sequence.StepCount, 0, MAX_STEPS);
  for (int slot = 0; slot < count; ++slot) {
    const StepRow& step = sequence.Step(slot);
    const int target = IndexOf(StepNumber{step.JumpTo}).value;
    if (step.JumpOn == 0 || target < 0 || target >= slot) continue;
    loops.push_back({target, slot, step.JumpCountOn == 0 ? 0 : std::max<int>(step.JumpCount, 0), 0});
  }
  // Short loops take the inner places; two loops on one level never share a step.
  std::stable_sort(loops.begin(), loops.end(),
                   [](const Loop& a, const Loop& b) { return a.Last - a.First < b.Last - b.First; });
  for (std::size_t i = 0; i < loops.size(); ++i) {
    for (std::size_t inner = 0; inner < i; ++inner) {
      const bool overlap = loops[inner].First <= loops[i].Last && loops[i].First <= loops[inner].Last;
      if (overlap) loops[i].Level = std::max(loops[i].Level, loops[inner].Level + 1);
    }
  }
  std::stable_sort(loops.begin(), loops.end(), [](const Loop& a, const Loop& b) {
    return a.Level != b.Level ? a.Level < b.Level : a.First < b.First;
  });
  return loops;
}

std::string LoopSign(int count) {
  return count == 0 ? "∞" : "×" + std::to_string(count);
}

}  // namespace corlune
