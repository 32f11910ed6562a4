#include "editing/row_colors.h"

#include <algorithm>

namespace corlune {

RowColors JumpColorSet(const SequenceData& sequence, const ModelDefinition& definition) {
  RowColors colors;
  colors.fill(definition.DefaultSequence);
  const int count = std::clamp<int>(sequence.StepCount, 0, MAX_STEPS);
  for (int slot = 0; slot < count; ++slot) {
    const StepRow& step = sequence.Step(slot);
    const int target = step.JumpTo - 1;
    if (step.JumpOn == 0 || target < 0 || target >= slot) continue;
    const bool endless = step.JumpCountOn == 0 || step.JumpCount == 0;
    const Color color = endless ? definition.EndlessSequence : definition.LoopSequence;
    std::fill(colors.begin() + target, colors.begin() + slot + 1, color);
  }
  return colors;
}

}  // namespace corlune
