#include "graph/output_swing.h"

#include "core/numbers.h"
#include "sequence/user_units.h"

namespace corlune {

std::array<double, 2> SwingParts(const SequenceData& sequence, int channel, int step) {
  constexpr int kRanges = 3;
  const double code = sequence.Cell(channel, step, kSlotPolarityRange).Value;
  switch (ToInt16(code).value_or(0) % kRanges) {
    case 1:
      return {0, 1};
    case 2:
      return {-1, 0};
    default:
      return {-0.5, 0.5};
  }
}

bool SameUnit(const SequenceData& sequence, const ModelDefinition& definition, int channel) {
  const UserUnits units(sequence, definition);
  const bool active = units.Active(channel, kSlotAmplitude);
  if (active != units.Active(channel, kSlotOffset)) return false;
  if (!active) return true;
  const auto& table = sequence.Channels.UserUnits[static_cast<std::size_t>(channel)];
  const UserUnitDef& swing = table[kSlotAmplitude];
  const UserUnitDef& middle = table[kSlotOffset];
  return swing.Form != kLogarithmic && middle.Form != kLogarithmic && swing.UnitText == middle.UnitText &&
         swing.M == middle.M && swing.N == 0;
}

}  // namespace corlune
