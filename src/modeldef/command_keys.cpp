// The instrument command table: keys CM_.
#include <array>

#include "modeldef/definition_entry.h"

namespace corlune::modeldef {

namespace {

int LastEntry() {
  return static_cast<int>(CommandList{}.Entries.size()) - 1;
}

// The library's initialisation text may hold "=" and ",", so it is cut from the whole entry by position:
// twelve characters before it, two behind it.
void ReadLibraryInit(const DefinitionEntry& entry, ModelDefinition& definition) {
  constexpr std::size_t kBefore = 12;
  constexpr std::size_t kBehind = 2;
  const std::string_view whole = entry.Whole();
  std::vector<std::size_t> starts;  // byte offset of each character
  for (std::size_t i = 0; i < whole.size(); ++i) {
    if ((static_cast<unsigned char>(whole[i]) & 0xC0U) != 0x80U) starts.push_back(i);
  }
  if (starts.size() < kBefore + kBehind) Refuse("the entry is shorter than the frame of its text");
  starts.push_back(whole.size());
  const std::size_t begin = starts[kBefore];
  const std::size_t end = starts[starts.size() - 1 - kBehind];
  definition.Commands.LibraryInit = whole.substr(begin, end - begin);
}

template <CommandEntry CommandTable::*Member>
void ReadCommand(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Commands.*Member = {entry.Text(0), entry.Int32(1)};
}

template <CommandList CommandTable::*Member>
void StoreInList(const DefinitionEntry& entry, ModelDefinition& definition, CommandEntry command) {
  CommandList& list = definition.Commands.*Member;
  const int number = entry.KeyDigit(LastEntry());
  list.Entries[static_cast<std::size_t>(number)] = std::move(command);
  list.Size = static_cast<std::int16_t>(number);
}

template <CommandList CommandTable::*Member>
void ReadListed(const DefinitionEntry& entry, ModelDefinition& definition) {
  StoreInList<Member>(entry, definition, {entry.Text(0), entry.Int32(1)});
}

// A template that may contain commas: the last item is the wait, everything before it the template.
template <CommandList CommandTable::*Member>
void ReadListedWithCommas(const DefinitionEntry& entry, ModelDefinition& definition) {
  StoreInList<Member>(entry, definition, {entry.AllButLast(), entry.Int32(entry.ItemCount() - 1)});
}

// A query without its mask, or an empty one, switches busy polling off.
void ReadBusy(const DefinitionEntry& entry, ModelDefinition& definition) {
  BusyQuery& busy = definition.Commands.Busy;
  if (entry.ItemCount() < 2 || entry.TrimmedText(0).empty()) {
    busy.Query.clear();
    busy.Mask.clear();
    return;
  }
  (void)entry.Int32(1);  // a mask that is no number would make every poll succeed
  busy = {entry.TrimmedText(0), entry.TrimmedText(1), entry.Int32(2)};
}

void ReadErrorQuery(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Commands.ErrorQuery = entry.TrimmedText(0);
  definition.Commands.ErrorQueryText = entry.TrimmedText(1);
}

constexpr std::array<KeyRow<ModelDefinition>, 18> kKeys{{
    {"CM_LIBI", KeyMatch::Beginning, ReadLibraryInit},
    {"CM_DEVI", KeyMatch::Beginning, ReadListed<&CommandTable::Device>},
    {"CM_BSCS", KeyMatch::Beginning, ReadListed<&CommandTable::Basic>},
    {"CM_SNDS", KeyMatch::Beginning, ReadListedWithCommas<&CommandTable::SendStep>},
    {"CM_MODL", KeyMatch::Beginning, ReadCommand<&CommandTable::Model>},
    {"CM_OUTPON", KeyMatch::Beginning, ReadCommand<&CommandTable::OutputOn>},
    {"CM_OUTPOF", KeyMatch::Beginning, ReadCommand<&CommandTable::OutputOff>},
    {"CM_OUTPQR", KeyMatch::Beginning, ReadCommand<&CommandTable::OutputQuery>},
    {"CM_CSTP", KeyMatch::Beginning, ReadCommand<&CommandTable::CurrentStep>},
    {"CM_SSTS", KeyMatch::Beginning, ReadCommand<&CommandTable::Status>},
    {"CM_STAR", KeyMatch::Beginning, ReadCommand<&CommandTable::Start>},
    {"CM_HOLD", KeyMatch::Beginning, ReadCommand<&CommandTable::Hold>},
    {"CM_STOP", KeyMatch::Beginning, ReadCommand<&CommandTable::Stop>},
    {"CM_BRAN", KeyMatch::Beginning, ReadCommand<&CommandTable::Branch>},
    {"CM_SNDA", KeyMatch::Beginning, ReadListedWithCommas<&CommandTable::SendAll>},
    {"CM_ARBM", KeyMatch::Beginning, ReadListed<&CommandTable::ArbMemory>},
    {"CM_BUSY", KeyMatch::Beginning, ReadBusy},
    {"CM_ERRO", KeyMatch::Beginning, ReadErrorQuery},
}};

}  // namespace

std::span<const KeyRow<ModelDefinition>> CommandKeys() {
  return kKeys;
}

}  // namespace corlune::modeldef
