// The parameter areas behind the three grids: keys CA_, SA_ and BA_.
#include <array>

#include "core/numbers.h"
#include "modeldef/definition_entry.h"

namespace corlune::modeldef {

namespace {

constexpr std::size_t kUnits = 11;
constexpr std::size_t kModes = 11;
constexpr std::size_t kChoices = 20;
constexpr std::size_t kBranchChoices = 10;
constexpr int kMaxSteps = 256;  // step slots of a sequence

enum class Area { Common, Sequence };

// One key serves every parameter of an area; the object numbers stand at the end of the key.
template <Area A>
ParamDef& Parameter(const DefinitionEntry& entry, ModelDefinition& definition) {
  const auto parameter = static_cast<std::size_t>(entry.KeyDigit(kAreaParams - 1));
  if constexpr (A == Area::Common) {
    return definition.Common.Params[parameter];
  } else {
    const auto group = static_cast<std::size_t>(entry.KeyDigit(kAreaParams - 1, 1));
    return definition.Sequence.Params[group][parameter];
  }
}

// Position within a list of `count` entries, item `index` of the entry.
std::int16_t ListPosition(const DefinitionEntry& entry, std::size_t index, std::size_t count) {
  if (count == 0) Refuse("the list is empty");
  return entry.Int16In(index, 0, static_cast<int>(count) - 1);
}

template <Area A>
void ReadUnits(const DefinitionEntry& entry, ModelDefinition& definition) {
  ParamDef& param = Parameter<A>(entry, definition);
  param.UnitKind = entry.Int16In(0, 0, 2);
  param.UnitName.clear();
  param.UnitTitle.clear();
  param.UnitDefault = 0;
  param.UnitList.clear();
  if (param.UnitKind == 1) param.UnitName = entry.Text(1);
  if (param.UnitKind == 2) {
    param.UnitTitle = entry.Text(1);
    param.UnitList = entry.Texts(3, kUnits);
    param.UnitDefault = ListPosition(entry, 2, param.UnitList.size());
    param.UnitName = param.UnitList[static_cast<std::size_t>(param.UnitDefault)];
  }
}

template <Area A>
void ReadUnitConversions(const DefinitionEntry& entry, ModelDefinition& definition) {
  Parameter<A>(entry, definition).UnitConv = entry.Texts(0, kUnits);
}

template <Area A>
void ReadModes(const DefinitionEntry& entry, ModelDefinition& definition) {
  ParamDef& param = Parameter<A>(entry, definition);
  param.ModeKind = entry.Int16In(0, 0, 2);
  param.ModeName.clear();
  param.ModeNames.clear();
  param.ModeColors.clear();
  if (param.ModeKind == 1) param.ModeName = entry.Text(1);
  if (param.ModeKind != 2) return;
  for (std::size_t i = 1; i == 1 || entry.Has(i); i += 2) {
    param.ModeNames.push_back(entry.Text(i));
    // Without a colour of its own a sequence-area mode looks like a plain cell.
    const bool plain = A == Area::Sequence && (!entry.Has(i + 1) || entry.Text(i + 1).empty());
    param.ModeColors.push_back(plain ? kWindowColor : entry.RedGreenBlue(i + 1));
  }
  if (param.ModeNames.size() > kModes) Refuse("more than " + std::to_string(kModes) + " modes");
}

// Minimum, maximum and resolution. In the common area a text that begins with "$" stands for a number that
// is known only where the bound is used, such as the number of steps.
template <Area A>
void ReadRange(const DefinitionEntry& entry, ParamDef& param) {
  const std::array<double*, 3> numbers{&param.Minimum, &param.Maximum, &param.Resolution};
  bool allNumbers = true;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const std::string text = entry.Text(i + 1);
    if (A == Area::Common && text.substr(0, 1) == "$") {
      param.RangePlaceholder[i] = text;
      allNumbers = false;
    } else {
      *numbers[i] = entry.Number(i + 1);
    }
  }
  if (allNumbers && param.Minimum > param.Maximum) Refuse("the minimum is above the maximum");
  if (A == Area::Sequence) param.ResolutionText = FormatNumber(param.Resolution, "0.###############");
  if (entry.Has(4)) param.Default = entry.Number(4);
}

template <Area A>
void ReadValues(const DefinitionEntry& entry, ModelDefinition& definition) {
  ParamDef& param = Parameter<A>(entry, definition);
  param.ValueKind = entry.Int16In(0, 0, 2);
  param.RangePlaceholder = {};
  param.ResolutionText.clear();
  param.Default = 0;
  param.Choices.clear();
  if (param.ValueKind == 0) ReadRange<A>(entry, param);
  if (param.ValueKind == 1) param.Default = entry.Number(1);
  if (param.ValueKind == 2) {
    param.Choices = entry.Texts(2, kChoices);
    param.Default = ListPosition(entry, 1, param.Choices.size());
  }
}

void ReadButtonColors(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Common.ButtonColors = {entry.RedGreenBlue(0), entry.RedGreenBlue(1)};
}

template <Color CommonAreaDef::*Member>
void ReadCommonColor(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Common.*Member = entry.RedGreenBlue(0);
}

void ReadMaxSteps(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Common.MaxSteps = entry.Int16In(0, 1, kMaxSteps);
}

void ReadCommonLines(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Common.LineNumber = entry.Int16(0);
}

void ReadParamCount(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Sequence.ParamCount = entry.Int16In(0, 0, kAreaParams);
}

void ReadSequenceBackground(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Sequence.Background = entry.RedGreenBlue(0);
}

void ReadGroupFlag(const DefinitionEntry& entry, ModelDefinition& definition) {
  const auto group = static_cast<std::size_t>(entry.KeyDigit(kAreaParams - 1));
  if (entry.ItemCount() > 0) definition.Sequence.GroupEnabled[group] = entry.Flag(0);
}

void ReadInUse(const DefinitionEntry& entry, ModelDefinition& definition) {
  Parameter<Area::Sequence>(entry, definition).InUse = entry.Flag(0);
}

void ReadName(const DefinitionEntry& entry, ModelDefinition& definition) {
  const std::array<std::string, 2> names{entry.Text(0), entry.Text(1)};
  Parameter<Area::Sequence>(entry, definition).Name = names[entry.Japanese() ? 0 : 1];
}

void ReadScript(const DefinitionEntry& entry, ModelDefinition& definition) {
  Parameter<Area::Sequence>(entry, definition).Script = entry.Value();
}

// This key alone names the parameter first; its second digit is the channel.
void ReadUserUnitCapability(const DefinitionEntry& entry, ModelDefinition& definition) {
  const int lastChannel = static_cast<int>(definition.UserUnitCapability.size()) - 1;
  const auto channel = static_cast<std::size_t>(entry.KeyDigit(lastChannel));
  const auto parameter = static_cast<std::size_t>(entry.KeyDigit(kAreaParams - 1, 1));
  definition.UserUnitCapability[channel][parameter] = entry.Int32(0);
}

void ReadBranchVisible(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Branches.Visible = entry.Flag(0);
}

void ReadBranchBackground(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Branches.Background = entry.RedGreenBlue(0);
}

template <std::int16_t BranchAreaDef::*Member>
void ReadBranchNumber(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Branches.*Member = entry.Int16(0);
}

void ReadBranchValues(const DefinitionEntry& entry, ModelDefinition& definition) {
  BranchAreaDef& branches = definition.Branches;
  branches.ValueKind = entry.Int16In(0, 0, 2);
  branches.Default = 0;
  branches.Choices.clear();
  if (branches.ValueKind == 0) {
    branches.Minimum = entry.Int16(1);
    branches.Maximum = entry.Int16(2);
    branches.Resolution = entry.Int16(3);
    if (branches.Minimum > branches.Maximum) Refuse("the minimum is above the maximum");
    if (entry.Has(4)) branches.Default = entry.Int16(4);
  }
  if (branches.ValueKind == 1) branches.Default = entry.Int16(1);
  if (branches.ValueKind == 2) {
    branches.Choices = entry.Texts(2, kBranchChoices);
    branches.Default = ListPosition(entry, 1, branches.Choices.size());
  }
}

constexpr std::array<KeyRow<ModelDefinition>, 25> kKeys{{
    {"CA_BTNCOL", KeyMatch::Beginning, ReadButtonColors},
    {"CA_BGCOLO", KeyMatch::Beginning, ReadCommonColor<&CommonAreaDef::Background>},
    {"CA_CURCOL", KeyMatch::Beginning, ReadCommonColor<&CommonAreaDef::CurrentCell>},
    {"CA_MAXSTE", KeyMatch::Beginning, ReadMaxSteps},
    {"CA_LINENU", KeyMatch::Beginning, ReadCommonLines},
    {"CA_PRMUNI", KeyMatch::Beginning, ReadUnits<Area::Common>},
    {"CA_UNITCV", KeyMatch::Beginning, ReadUnitConversions<Area::Common>},
    {"CA_PRMMOD", KeyMatch::Beginning, ReadModes<Area::Common>},
    {"CA_PRMVAL", KeyMatch::Beginning, ReadValues<Area::Common>},
    {"SA_PRMCOU", KeyMatch::Beginning, ReadParamCount},
    {"SA_BGCOLO", KeyMatch::Beginning, ReadSequenceBackground},
    {"SA_PRMREF", KeyMatch::Beginning, ReadGroupFlag},
    {"SA_PRMCOM", KeyMatch::Beginning, ReadInUse},
    {"SA_PRMNAM", KeyMatch::Beginning, ReadName},
    {"SA_PRMUNI", KeyMatch::Beginning, ReadUnits<Area::Sequence>},
    {"SA_UNITCV", KeyMatch::Beginning, ReadUnitConversions<Area::Sequence>},
    {"SA_PRMMOD", KeyMatch::Beginning, ReadModes<Area::Sequence>},
    {"SA_PRMVAL", KeyMatch::Beginning, ReadValues<Area::Sequence>},
    {"SA_PRMSCR", KeyMatch::Beginning, ReadScript},
    {"SA_PRMUSC", KeyMatch::Beginning, ReadUserUnitCapability},
    {"BA_VISIBLE", KeyMatch::Whole, ReadBranchVisible},
    {"BA_BGCOLOR", KeyMatch::Whole, ReadBranchBackground},
    {"BA_MAXCH", KeyMatch::Whole, ReadBranchNumber<&BranchAreaDef::MaxChannel>},
    {"BA_LINENUM", KeyMatch::Whole, ReadBranchNumber<&BranchAreaDef::LineNumber>},
    {"BA_STPVAL", KeyMatch::Whole, ReadBranchValues},
}};

}  // namespace

std::span<const KeyRow<ModelDefinition>> AreaKeys() {
  return kKeys;
}

}  // namespace corlune::modeldef
