#include "modeldef/read_model_definition.h"

#include <array>
#include <utility>

#include "core/files.h"
#include "core/profile_file.h"
#include "modeldef/definition_entry.h"

namespace corlune {

namespace {

using modeldef::BadEntry;
using modeldef::DefinitionEntry;
using modeldef::KeyMatch;
using modeldef::KeyRow;
using modeldef::Refuse;

// The values of sections FILE and SYSTEM stand beside all others, so both have the same target.
void ReadProgId(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.ProgId = entry.Value();
}
void ReadVerNo(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.VerNo = entry.Value();
}

void ReadModels(const DefinitionEntry& entry, ModelDefinition& definition) {
  constexpr std::size_t kModels = 32767;  // the model index is a 16-bit number
  definition.Models = entry.Texts(0, kModels);
  for (const std::string& name : definition.Models) {
    if (TrimBlanks(name).empty()) Refuse("a model has no name");
  }
}

void ReadInstrumentCount(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.InstrumentCount = entry.Range(0);
  if (definition.InstrumentCount.Minimum < 1 || definition.InstrumentCount.Maximum > kMaxInstruments) {
    Refuse("the number of instruments lies outside 1 to " + std::to_string(kMaxInstruments));
  }
}

constexpr std::array<KeyRow<ModelDefinition>, 2> kFileKeys{{
    {"PROGID", KeyMatch::Whole, ReadProgId},
    {"VERNO", KeyMatch::Whole, ReadVerNo},
}};

constexpr std::array<KeyRow<ModelDefinition>, 2> kSystemKeys{{
    {"SS_MODEL", KeyMatch::Whole, ReadModels},
    {"SS_CNT", KeyMatch::Whole, ReadInstrumentCount},
}};

void ReadInterfaceNames(const DefinitionEntry& entry, ModelInterfaceSpec& spec) {
  constexpr std::size_t kNames = 4;
  spec.InterfaceNames = entry.Texts(0, kNames);
}

void ReadUsbTmcId(const DefinitionEntry& entry, ModelInterfaceSpec& spec) {
  spec.UsbTmcId = TrimBlanks(entry.Value());
}

void ReadSerialNo(const DefinitionEntry& entry, ModelInterfaceSpec& spec) {
  spec.SerialNo = TrimBlanks(entry.Value());
}

template <RangeSpec ModelInterfaceSpec::*Member>
void ReadInterfaceRange(const DefinitionEntry& entry, ModelInterfaceSpec& spec) {
  spec.*Member = entry.Range(0);
}

void ReadChannels(const DefinitionEntry& entry, ModelInterfaceSpec& spec) {
  spec.ChannelSelectable = entry.Flag(0);
  if (spec.ChannelSelectable) spec.Channels = entry.Range(1);
}

constexpr std::array<KeyRow<ModelInterfaceSpec>, 6> kInterfaceKeys{{
    {"IF_USBGPIB", KeyMatch::Whole, ReadInterfaceNames},
    {"IF_USBTMCID", KeyMatch::Whole, ReadUsbTmcId},
    {"IF_SERIALNO", KeyMatch::Whole, ReadSerialNo},
    {"IF_USBID", KeyMatch::Whole, ReadInterfaceRange<&ModelInterfaceSpec::UsbId>},
    {"IF_GPAD", KeyMatch::Whole, ReadInterfaceRange<&ModelInterfaceSpec::GpibAddress>},
    {"IF_CH", KeyMatch::Whole, ReadChannels},
}};

class DefinitionReader {
 public:
  DefinitionReader(std::string text, bool japanese) : text_(std::move(text)), japanese_(japanese) {}

  bool Read(const std::string& modelName, ModelDefinition& definition) {
    definition.Models.clear();
    if (!ReadRequired("FILE", {kFileKeys}, definition) ||
        !ReadRequired("SYSTEM", {kSystemKeys}, definition)) {
      return false;
    }
    if (definition.Models.empty()) return Fail("SYSTEM", "SS_MODEL", "no model is listed");
    definition.Interfaces.assign(definition.Models.size(), {});
    for (std::size_t i = 0; i < definition.Models.size(); ++i) {
      const std::string section = "INTERFACE " + definition.Models[i];
      if (!ReadEntries(section, Section(section), {kInterfaceKeys}, definition.Interfaces[i])) return false;
    }
    definition.Commands.SendAll = {};
    definition.Commands.SendStep = {};
    if (definition.IndexOfModel(modelName) < 0) return true;
    return ReadRequired(
        "SPEC " + modelName,
        {modeldef::PanelKeys(), modeldef::ViewKeys(), modeldef::AreaKeys(), modeldef::CommandKeys()},
        definition);
  }

  const DefinitionProblem& Problem() const { return problem_; }

 private:
  template <class Target>
  using Families = std::vector<std::span<const KeyRow<Target>>>;

  std::string Section(const std::string& name) const { return GetIniSectionOfText(text_, name); }

  bool Fail(std::string section, std::string key, std::string reason) {
    problem_ = {std::move(section), std::move(key), std::move(reason)};
    return false;
  }

  // A section that every definition file must have.
  bool ReadRequired(const std::string& name, const Families<ModelDefinition>& families,
                    ModelDefinition& definition) {
    const std::string section = Section(name);
    if (section.empty()) return Fail(name, "", "the section is missing or empty");
    return ReadEntries(name, section, families, definition);
  }

  template <class Target>
  bool ReadEntries(const std::string& name, const std::string& section, const Families<Target>& families,
                   Target& target) {
    return ForEachIniEntry(section, [&](const IniEntry& entry) {
      for (const auto& family : families) {
        for (const KeyRow<Target>& row : family) {
          if (row.Matches(entry.key)) return ReadEntry(name, entry, row, target);
        }
      }
      return true;  // keys that this version does not know are no error
    });
  }

  template <class Target>
  bool ReadEntry(const std::string& name, const IniEntry& entry, const KeyRow<Target>& row, Target& target) {
    try {
      if (entry.whole.find('=') == std::string_view::npos) Refuse("the key has no value");
      row.read(DefinitionEntry(entry, japanese_), target);
      return true;
    } catch (const BadEntry& bad) {
      return Fail(name, std::string(entry.key), bad.reason);
    }
  }

  std::string text_;
  bool japanese_;
  DefinitionProblem problem_;
};

}  // namespace

DefinitionLoad ReadModelDefinition(const std::string& path, const std::string& modelName, bool japanese,
                                   ModelDefinition& definition, DefinitionProblem* problem) {
  const auto bytes = ReadWholeFile(path);
  if (!bytes) {
    if (problem) *problem = {"", "", "the file does not exist or cannot be read"};
    return DefinitionLoad::FileMissing;
  }
  DefinitionReader reader(DecodeText(*bytes), japanese);
  ModelDefinition fresh = definition;
  if (!reader.Read(modelName, fresh)) {
    if (problem) *problem = reader.Problem();
    return DefinitionLoad::BadValue;
  }
  definition = std::move(fresh);
  return DefinitionLoad::Ok;
}

bool ReadModelDefinition(AppState& state, ModelDefinition& definition, Prompts& prompts,
                         const MessageCatalogue& catalogue, DefinitionProblem* problem) {
  const DefinitionLoad result =
      ReadModelDefinition(state.StdIniPath, state.ModelName, !state.UseEnglish, definition, problem);
  if (result == DefinitionLoad::FileMissing) {
    ShowMessage(prompts, catalogue, TextId::NoInitializationFile, PromptIcon::Exclamation);
  }
  if (result != DefinitionLoad::Ok) return false;
  state.ProgId = definition.ProgId;
  state.VerNo = definition.VerNo;
  return true;
}

}  // namespace corlune
