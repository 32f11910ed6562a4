#include "sequence/user_units.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "core/numbers.h"
#include "sequence/units.h"

namespace corlune {

namespace {

constexpr std::array<int, kUserUnitQuantities> kQuantitySlots{kSlotFrequency, kSlotAmplitude, kSlotOffset,
                                                              kSlotPhase, kSlotDuty};
constexpr std::int32_t kHighImpedance = 0;
constexpr std::int32_t kVariableLoad = 1;
// Values of the polarity and range slot with the full range; in the others the amplitude counts half.
constexpr double kNormalFullScale = 0;
constexpr double kInvertedFullScale = 3;

constexpr const char* kDefaultUnitText = "usr";
constexpr const char* kLogarithmicFormat = "0.000E+0";

double Factor(const UserUnitDef& unit) {
  return unit.M == 0 ? 1 : unit.M;
}

bool IsFlag(std::int32_t value) {
  return value == 0 || value == 1;
}

FieldCheck Refused(TextId message) {
  return {message, {}, 0};
}

// Adds `count` decimals; a pattern without any gets its point first.
void AddDecimals(std::string& format, int count) {
  if (format.find('.') == std::string::npos) format += '.';
  format.append(static_cast<std::size_t>(count), '0');
}

}  // namespace

std::optional<int> QuantitySlot(int quantity) {
  if (quantity < 0 || quantity >= kUserUnitQuantities) return std::nullopt;
  return kQuantitySlots[static_cast<std::size_t>(quantity)];
}

std::string DisplayFormat(const ParamDef& definition) {
  const double resolution = std::fabs(ParseNumber(definition.ResolutionText).value_or(definition.Resolution));
  if (definition.ValueKind != 0 || resolution == 0) return "0";
  std::array<char, 400> digits{};  // the longest fixed form of a double
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), resolution, std::chars_format::fixed).ptr;
  const auto point = std::find(digits.data(), end, '.');
  std::string format = "0";
  if (point != end) AddDecimals(format, static_cast<int>(end - point) - 1);
  return format;
}

bool UserUnits::Active(int channel, int slot) const {
  return definition_.UserUnitCapability[static_cast<std::size_t>(channel)][static_cast<std::size_t>(slot)] ==
             1 &&
         Unit(channel, slot).UseUserUnit == 1;
}

bool UserUnits::HalvesAmplitude(int channel, int step, int slot) const {
  if (slot != kSlotAmplitude) return false;
  const double code = sequence_.Cell(channel, step, kSlotPolarityRange).Value;
  return code != kNormalFullScale && code != kInvertedFullScale;
}

std::optional<double> UserUnits::Load(int channel, int slot) const {
  if (slot != kSlotAmplitude && slot != kSlotOffset) return std::nullopt;
  const OutputLoad& load = sequence_.Channels.Loads[static_cast<std::size_t>(channel)];
  // A load that only a damaged file holds must not turn every voltage into 0 or infinity.
  if (load.LoadType != kVariableLoad || load.LoadValue <= 0) return std::nullopt;
  return load.LoadValue;
}

double UserUnits::Volts(double value, int channel, int step, int slot) const {
  const double inRange = HalvesAmplitude(channel, step, slot) ? value / 2 : value;
  const auto load = Load(channel, slot);
  return load ? inRange * *load / (*load + kSourceResistance) : inRange;
}

double UserUnits::SystemToUser(double value, int channel, int step, int slot) const {
  const double shown = Volts(value, channel, step, slot);
  if (!Active(channel, slot)) {
    return FromBase(SlotColumn(definition_, slot), shown, ShownUnit(definition_, sequence_, channel, slot));
  }
  const UserUnitDef& unit = Unit(channel, slot);
  if (unit.Form != kLogarithmic) return (shown + unit.N) * Factor(unit);
  if (shown <= 0) return shown;
  return (std::log10(shown) + unit.N) * Factor(unit);
}

double UserUnits::UserToSystem(double value, int channel, int step, int slot) const {
  double stored = value;
  if (Active(channel, slot)) {
    const UserUnitDef& unit = Unit(channel, slot);
    stored = value / Factor(unit) - unit.N;
    if (unit.Form == kLogarithmic) stored = std::pow(10, stored);
  } else {
    stored = ToBase(SlotColumn(definition_, slot), value, ShownUnit(definition_, sequence_, channel, slot));
  }
  if (const auto load = Load(channel, slot)) stored = (*load + kSourceResistance) * stored / *load;
  return HalvesAmplitude(channel, step, slot) ? stored * 2 : stored;
}

double UserUnits::DisplayFactor(int channel, int slot) const {
  if (Active(channel, slot)) return Factor(Unit(channel, slot));
  return FromBase(SlotColumn(definition_, slot), 1, ShownUnit(definition_, sequence_, channel, slot));
}

std::string UserUnits::UnitText(int channel, int slot) const {
  if (Active(channel, slot)) return Unit(channel, slot).UnitText;
  return UnitName(SlotColumn(definition_, slot), ShownUnit(definition_, sequence_, channel, slot));
}

std::string UserUnits::UserUnitFormat(int channel, int slot) const {
  std::string format = DisplayFormat(SlotColumn(definition_, slot));
  if (Active(channel, slot) && Unit(channel, slot).Form == kLogarithmic) return kLogarithmicFormat;
  const double factor = DisplayFactor(channel, slot);
  if (factor == 1) return format;
  const double digits = std::ceil(std::log10(std::fabs(factor)));
  if (digits < 0) {
    AddDecimals(format, static_cast<int>(-digits));
  } else if (digits < static_cast<double>(format.size()) - 2) {
    format.resize(format.size() - static_cast<std::size_t>(digits));
  } else {
    format = "0";
  }
  return format;
}

std::string UserUnits::UserUnitText(double value, int channel, int step, int slot) const {
  if (Active(channel, slot) && Unit(channel, slot).Form == kLogarithmic) {
    if (value == 0) return "Inf";
    if (value < 0) return "Over";
  }
  std::string pattern = UserUnitFormat(channel, slot);
  // Trailing zeros are not shown.
  if (pattern.size() > 2) std::replace(pattern.begin() + 2, pattern.end(), '0', '#');
  std::string text = FormatNumber(SystemToUser(value, channel, step, slot), pattern);
  const std::size_t point = text.find('.');
  if (point == std::string::npos) return text;
  if (point + 1 == text.size() || text[point + 1] == 'E') text.erase(point, 1);
  return text;
}

void NormalizeChannelSettings(ChannelSettings& settings) {
  for (OutputLoad& load : settings.Loads) {
    if (!IsFlag(load.LoadType)) load.LoadType = kHighImpedance;
    if (!(load.LoadValue >= kMinLoad && load.LoadValue <= kMaxLoad)) load.LoadValue = kDefaultLoad;
  }
  for (auto& channel : settings.UserUnits) {
    for (const int slot : kQuantitySlots) {
      UserUnitDef& unit = channel[static_cast<std::size_t>(slot)];
      if (!IsFlag(unit.UseUserUnit)) unit.UseUserUnit = 0;
      if (!IsFlag(unit.Form)) unit.Form = 0;
      if (!IsUnitText(unit.UnitText)) unit.UnitText = kDefaultUnitText;
      unit.M = Factor(unit);
    }
  }
}

bool IsUnitText(std::string_view text) {
  return text.size() <= kMaxUnitText && std::all_of(text.begin(), text.end(), [](char c) {
           return c >= ' ' && c <= '~' && c != '"' && c != ',';
         });
}

FieldCheck CheckLoadValue(std::string_view text) {
  const bool digits =
      !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!digits) return Refused(TextId::InputError);
  const auto value = ParseNumber(text);
  if (!value || *value < kMinLoad || *value > kMaxLoad) {
    return {TextId::ValueOutOfRange, {std::string(text), NumberText(kMinLoad), NumberText(kMaxLoad)}, 0};
  }
  return {std::nullopt, {}, *value};
}

FieldCheck CheckUnitText(std::string_view text) {
  return IsUnitText(text) ? FieldCheck{} : Refused(TextId::InputError);
}

FieldCheck CheckFactor(std::string_view text) {
  const auto value = ParseNumber(text);
  return value && *value != 0 ? FieldCheck{std::nullopt, {}, *value} : Refused(TextId::InputError);
}

FieldCheck CheckSummand(std::string_view text) {
  const auto value = ParseNumber(text);
  return value ? FieldCheck{std::nullopt, {}, *value} : Refused(TextId::InputError);
}

}  // namespace corlune
