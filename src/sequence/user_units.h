// User units and output load: how values (base units, open circuit) are shown and typed, and the rules of the
// channel settings. A parameter without a user unit is shown in the unit of its column (sequence/units.h).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/text_id.h"
#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune {

inline constexpr double kSourceResistance = 50;  // ohms, of the generator's output
inline constexpr double kMinLoad = 1;            // ohms
inline constexpr double kMaxLoad = 10000;
inline constexpr double kDefaultLoad = 50;
inline constexpr std::size_t kMaxUnitText = 4;
inline constexpr std::int32_t kLogarithmic = 1;  // form of a user unit

// The quantities that can have a user unit, in the order of the channel settings dialog: frequency,
// amplitude, offset, phase, duty.
inline constexpr int kUserUnitQuantities = 5;
// Parameter slot of a quantity; nullopt outside 0..4.
std::optional<int> QuantitySlot(int quantity);

// Display pattern of a parameter: as many decimals as its resolution has ("0.001" gives "0.000"), "0" for a
// parameter without a range.
std::string DisplayFormat(const ParamDef& definition);

// Conversions for one sequence. Refers to both arguments; cheap to make where it is needed. Channel slots
// 0..2 (0 is channel 1), step slots 0..255, parameter slots 0..10; not checked.
class UserUnits {
 public:
  UserUnits(const SequenceData& sequence, const ModelDefinition& definition)
      : sequence_(sequence), definition_(definition) {}

  bool Active(int channel, int slot) const;

  // The displayed number of a base value. A logarithmic unit returns 0 and negative values unconverted.
  double SystemToUser(double value, int channel, int step, int slot) const;
  // A stored amplitude or offset in volts at the load, whatever unit shows it.
  double Volts(double value, int channel, int step, int slot) const;
  // The base value of a displayed number; the inverse of SystemToUser.
  double UserToSystem(double value, int channel, int step, int slot) const;
  // The cell text of a base value; "Inf" for 0 and "Over" below 0 in a logarithmic unit.
  std::string UserUnitText(double value, int channel, int step, int slot) const;
  // Display pattern of the converted value.
  std::string UserUnitFormat(int channel, int slot) const;
  // Name of the unit shown; empty for none.
  std::string UnitText(int channel, int slot) const;

 private:
  const UserUnitDef& Unit(int channel, int slot) const {
    return sequence_.Channels.UserUnits[static_cast<std::size_t>(channel)][static_cast<std::size_t>(slot)];
  }
  // Displayed units in one base unit, before a logarithm.
  double DisplayFactor(int channel, int slot) const;
  bool HalvesAmplitude(int channel, int step, int slot) const;
  // Load in ohms that divides the value of this slot; nullopt where none does.
  std::optional<double> Load(int channel, int slot) const;

  const SequenceData& sequence_;
  const ModelDefinition& definition_;
};

// Repairs what a file may have brought: load type and value, and of the five quantities use, form, unit text
// and factor.
void NormalizeChannelSettings(ChannelSettings& settings);

// Characters 32..126 without the double quote and the comma, at most four.
bool IsUnitText(std::string_view text);

// Judgement of one typed field: the message to show (nullopt: accepted) with its arguments, and the value.
struct FieldCheck {
  std::optional<TextId> Message;  // ValueOutOfRange with Arguments, or InputError
  std::vector<std::string> Arguments;
  double Value = 0;
};

FieldCheck CheckLoadValue(std::string_view text);  // 1..10000 ohms, digits only
FieldCheck CheckUnitText(std::string_view text);
FieldCheck CheckFactor(std::string_view text);   // m: a number, not 0
FieldCheck CheckSummand(std::string_view text);  // n: a number

}  // namespace corlune
