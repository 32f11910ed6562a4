// Sequence view, waveform dialog and mode sets: keys DP_, VS_, AW_ and MD_.
#include <array>

#include "modeldef/definition_entry.h"

namespace corlune::modeldef {

namespace {

constexpr std::size_t kDisplayTexts = 11;
constexpr std::size_t kViewTexts = 31;
constexpr std::size_t kArbTexts = 16;
constexpr std::size_t kModeChoices = 18;
constexpr std::size_t kModeValues = 11;

int LastIndex(std::size_t count) {
  return static_cast<int>(count) - 1;
}

void ReadReference(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.ReferenceFlag = entry.Flag(0);
  if (definition.ReferenceFlag) definition.ReferenceText = entry.Text(1);
}

void ReadDisplaySelection(const DefinitionEntry& entry, ModelDefinition& definition) {
  const auto list = static_cast<std::size_t>(entry.KeyDigit(LastIndex(definition.DisplaySelections.size())));
  definition.DisplaySelections[list] = entry.CountedTexts(kDisplayTexts);
}

void ReadViewSelection(const DefinitionEntry& entry, ModelDefinition& definition) {
  const auto list = static_cast<std::size_t>(entry.KeyDigit(LastIndex(definition.ViewSelections.size())));
  definition.ViewSelections[list] = entry.CountedTexts(kViewTexts);
}

void ReadArbFormat(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.ArbFormat = {entry.Int16(0), entry.Int16(1)};
}

void ReadArbChannelFlag(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.ArbPerChannel = entry.Flag(0);
}

void ReadArbItems(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.ArbItems = entry.CountedTexts(kArbTexts);
}

void ReadModeSetCount(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.ModeSetCount = entry.Int16In(0, 0, static_cast<int>(definition.ModeSets.size()));
}

void ReadModeChannelFlag(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.ModePerChannel = entry.Flag(0);
}

ModeSetSpec& ModeSet(const DefinitionEntry& entry, ModelDefinition& definition) {
  return definition.ModeSets[static_cast<std::size_t>(entry.KeyDigit(LastIndex(definition.ModeSets.size())))];
}

void ReadModeSetName(const DefinitionEntry& entry, ModelDefinition& definition) {
  ModeSet(entry, definition).Name = entry.Text(0);
}

void ReadModeSetItems(const DefinitionEntry& entry, ModelDefinition& definition) {
  ModeSet(entry, definition).Choices = entry.CountedTexts(kModeChoices);
}

void ReadModeSetValues(const DefinitionEntry& entry, ModelDefinition& definition) {
  std::vector<std::int16_t>& values = ModeSet(entry, definition).Values;
  values.clear();
  if (entry.ItemCount() > kModeValues) Refuse("more than " + std::to_string(kModeValues) + " items");
  for (std::size_t i = 0; i < entry.ItemCount(); ++i) values.push_back(entry.Int16(i));
}

constexpr std::array<KeyRow<ModelDefinition>, 11> kKeys{{
    {"DP_REFFL", KeyMatch::Beginning, ReadReference},
    {"DP_SELCT", KeyMatch::Beginning, ReadDisplaySelection},
    {"VS_SELCT", KeyMatch::Beginning, ReadViewSelection},
    {"AW_FORMAT", KeyMatch::Whole, ReadArbFormat},
    {"AW_CHNFLG", KeyMatch::Whole, ReadArbChannelFlag},
    {"AW_ARBITEM", KeyMatch::Whole, ReadArbItems},
    {"MD_SETCOU", KeyMatch::Beginning, ReadModeSetCount},
    {"MD_CHNFLG", KeyMatch::Beginning, ReadModeChannelFlag},
    {"MD_SETNAM", KeyMatch::Beginning, ReadModeSetName},
    {"MD_SETITE", KeyMatch::Beginning, ReadModeSetItems},
    {"MD_SETVAL", KeyMatch::Beginning, ReadModeSetValues},
}};

}  // namespace

std::span<const KeyRow<ModelDefinition>> ViewKeys() {
  return kKeys;
}

}  // namespace corlune::modeldef
