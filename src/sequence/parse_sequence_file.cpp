// Reading the text of a sequence file.
#include <algorithm>
#include <memory>
#include <utility>

#include "core/ascii_case.h"
#include "core/profile_file.h"
#include "sequence/defaults.h"
#include "sequence/profile_lines.h"
#include "sequence/run_times.h"
#include "sequence/sequence_file.h"
#include "sequence/start_values.h"

namespace corlune {

namespace {

constexpr int kMaxSetupChannels = 20;  // of all instruments together, so of one at most
constexpr int kUnusedArbSlot = 128;    // older files may carry one slot more than there are ARB numbers
constexpr int kUnstoredUserUnit = 10;  // parameter slot whose user units files do not hold
constexpr std::size_t kDetailLength = 80;

// Bodies of the sections; the first of a name counts.
struct SectionTable {
  std::optional<std::string_view> File, System, Common, Mode, WorkSteps, UserSteps, View;
};

SectionTable FindSections(std::string_view text) {
  SectionTable table;
  const std::pair<std::string_view, std::optional<std::string_view>*> known[] = {
      {"FILE", &table.File},   {"SYSTEM", &table.System},     {"COMMON", &table.Common},
      {"MODE", &table.Mode},   {"FRMEDIT", &table.WorkSteps}, {"DATA", &table.UserSteps},
      {"FRMVIEW", &table.View}};
  ProfileSections sections(text);
  std::string_view name;
  std::string_view body;
  while (sections.Next(name, body)) {
    for (const auto& [knownName, target] : known) {
      if (!*target && EqualIgnoringCase(name, knownName)) *target = body;
    }
  }
  return table;
}

bool HasEntry(const std::optional<std::string_view>& section) {
  ProfileLine line;
  return section && ProfileLines(*section).Next(line);
}

bool ReadOne(std::string_view value, auto& target) {
  ProfileFields fields(value);
  return fields.Read(target) && fields.AtEnd();
}

// Reads the numbers of a value in order; all must be there, and no more.
template <typename... T>
bool ReadAll(std::string_view value, T&... targets) {
  ProfileFields fields(value);
  return (fields.Read(targets) && ...) && fields.AtEnd();
}

bool ReadSystemLine(const ProfileLine& line, SystemSettings& settings) {
  const std::string_view kind = line.Key.substr(0, 6);
  if (kind == "SS_MOD") {
    settings.ModelName = std::string(TrimBlanks(line.Value));
    return true;
  }
  if (kind == "SS_CNT") {
    return ReadOne(line.Value, settings.InstrumentCount) && settings.InstrumentCount >= 1 &&
           settings.InstrumentCount <= kMaxInstruments;
  }
  const bool numbered = kind == "SS_INT" || kind == "SS_ADD" || kind == "SS_SER" || kind == "SS_CHN";
  if (!numbered) return true;
  const auto number = DigitIndex(line.Key.back(), kMaxInstruments);
  if (!number) return false;
  InstrumentEntry& instrument = settings.Instruments[static_cast<std::size_t>(*number)];
  if (kind == "SS_INT") return ReadOne(line.Value, instrument.Interface);
  if (kind == "SS_ADD") return ReadOne(line.Value, instrument.Address);
  if (kind == "SS_CHN") {
    return ReadOne(line.Value, instrument.ChannelCount) && instrument.ChannelCount >= 1 &&
           instrument.ChannelCount <= kMaxSetupChannels;
  }
  // Where the search or the person at the program chose the first instrument, that choice stays.
  if (*number > 0 || instrument.SerialNo.empty())
    instrument.SerialNo = std::string(TrimBlanks(line.RawValue));
  return true;
}

// The instrument whose interface index lies outside the model's list. A name that stands for no kind leaves
// the instrument's kind as it is.
std::optional<int> WithoutInterface(SystemSettings& settings, const ModelDefinition& definition) {
  const auto& names = definition.InterfaceOf(settings.ModelIndex).InterfaceNames;
  for (int i = 0; i < settings.InstrumentCount; ++i) {
    InstrumentEntry& instrument = settings.Instruments[static_cast<std::size_t>(i)];
    if (instrument.Interface < 0) return i;
    const auto position = static_cast<std::size_t>(instrument.Interface);
    if (names.empty()) continue;  // a model without an interface section
    if (position >= names.size()) return i;
    instrument.InterfaceKind = KindOfInterface(names[position]).value_or(instrument.InterfaceKind);
  }
  return std::nullopt;
}

bool ReadUserUnit(std::string_view value, UserUnitDef& unit) {
  // The unit text stands between the first two and the last two commas, whatever it holds.
  const std::size_t use = value.find(',');
  const std::size_t form = use == std::string_view::npos ? use : value.find(',', use + 1);
  const std::size_t n = value.rfind(',');
  if (form == std::string_view::npos || n <= form) return false;
  const std::size_t m = value.rfind(',', n - 1);
  if (m <= form) return false;
  unit.UnitText = std::string(value.substr(form + 1, m - form - 1));
  return ReadAll(value.substr(0, form), unit.UseUserUnit, unit.Form) &&
         ReadAll(value.substr(m + 1), unit.M, unit.N);
}

bool ReadCommonLine(const ProfileLine& line, ChannelSettings& settings) {
  const std::string_view kind = line.Key.substr(0, 7);
  if (kind == "CP_LOAD") {
    const auto channel = KeyIndex(line.Key, 1, kChannelSlots);
    if (!channel) return false;
    OutputLoad& load = settings.Loads[static_cast<std::size_t>(*channel)];
    return ReadAll(line.Value, load.LoadType, load.LoadValue);
  }
  if (kind == "CP_USER") {
    const auto channel = KeyIndex(line.Key, 1, kChannelSlots);
    const auto param = KeyIndex(line.Key, 2, MAX_PARAMS);
    if (!channel || !param) return false;
    return ReadUserUnit(
        line.RawValue,
        settings.UserUnits[static_cast<std::size_t>(*channel)][static_cast<std::size_t>(*param)]);
  }
  if (kind == "CP_ARBF") {
    const auto slot = KeyIndex(line.Key, 1, kUnusedArbSlot + 1);
    if (!slot) return false;
    if (*slot == kUnusedArbSlot) return true;
    ArbFileEntry& entry = settings.ArbFiles[static_cast<std::size_t>(*slot)];
    if (!line.RawValue.empty()) entry = EntryWithFile(entry, std::string(line.RawValue));
  }
  return true;
}

bool ReadModeLine(const ProfileLine& line, SequenceData& sequence) {
  constexpr std::string_view kKey = "MD_MODESET";
  if (line.Key.substr(0, kKey.size()) != kKey) return true;
  if (line.Key.size() != kKey.size() + 2) return false;
  const auto device = DigitIndex(line.Key[kKey.size()], kModeDevices);
  const auto channel = DigitIndex(line.Key[kKey.size() + 1], kModeSlots);
  if (!device || !channel) return false;
  if (TrimBlanks(line.Value).empty()) return true;  // a model without mode sets
  ProfileFields fields(line.Value);
  for (int set = 0; set < kModeSets && !fields.AtEnd(); ++set) {
    const int index = set * kModeSlots + *channel;
    auto& selections = sequence.ModeSettings[static_cast<std::size_t>(*device)];
    if (!fields.Read(selections[static_cast<std::size_t>(index)])) return false;
  }
  return fields.AtEnd();
}

bool ReadStep(const ProfileLine& line, SequenceData& sequence) {
  const auto slot = KeyIndex(line.Key, 1, MAX_STEPS);
  if (!slot) return false;
  StepRow& row = sequence.Step(*slot);
  return ReadAll(line.Value, row.StepTime, row.TimeUnit, row.AutoHold, row.StopPhaseOn, row.StopPhase,
                 row.EventBranchOn, row.EventBranchStep, row.StateBranchOn, row.StateBranchStep, row.JumpOn,
                 row.JumpTo, row.JumpCountOn, row.JumpCount, row.StepTerm, row.StepCode);
}

bool ReadCells(const ProfileLine& line, SequenceData& sequence) {
  const auto channel = KeyIndex(line.Key, 1, MAX_CHANNELS);
  const auto slot = KeyIndex(line.Key, 2, MAX_STEPS);
  if (!channel || !slot) return false;
  if (TrimBlanks(line.Value).empty()) return true;  // a model without parameters
  ProfileFields fields(line.Value);
  for (int param = 0; param < MAX_PARAMS && !fields.AtEnd(); ++param) {
    ParamCell& cell = sequence.Cell(*channel, *slot, param);
    if (!fields.Read(cell.ChangeMode) || !fields.Read(cell.Value) || !fields.Read(cell.UnitIndex))
      return false;
  }
  return fields.AtEnd();
}

bool ReadBranches(const ProfileLine& line, SequenceData& sequence) {
  const auto slot = KeyIndex(line.Key, 1, MAX_STEPS);
  if (!slot) return false;
  auto& targets = sequence.Step(*slot).BranchStep;
  return ReadAll(line.Value, targets[0], targets[1], targets[2], targets[3], targets[4]);
}

bool ReadStepLine(const ProfileLine& line, SequenceFileForm form, SequenceData& sequence) {
  const std::string_view kind = line.Key.substr(0, 7);
  if (kind == "SE_SETV") return ReadCells(line, sequence);
  if (kind == "ST_SETV") {
    if (form == SequenceFileForm::User && ++sequence.StepCount > MAX_STEPS) return false;
    return ReadStep(line, sequence);
  }
  if (kind == "BR_SETV") return ReadBranches(line, sequence);
  CommonParams& common = sequence.Common;
  if (kind == "CM_STAR") return ReadOne(line.Value, common.StartStepNo);
  if (kind == "CM_TRIG") return ReadOne(line.Value, common.Trigger);
  if (kind == "CM_EXTC") return ReadOne(line.Value, common.ExtCtrl);
  if (kind == "CM_MLTI") return ReadOne(line.Value, common.MultiIo);
  if (kind == "CM_SYNC") return ReadOne(line.Value, common.SyncOut);
  if (form == SequenceFileForm::User) return true;
  if (kind == "FI_STEP") {
    return ReadOne(line.Value, sequence.StepCount) && sequence.StepCount >= 0 &&
           sequence.StepCount <= MAX_STEPS;
  }
  if (kind == "FI_STAR") return ReadOne(line.Value, sequence.StartStep);
  if (kind == "FI_BRCH") return ReadOne(line.Value, sequence.BranchChannel);
  return true;
}

bool ReadViewLine(const ProfileLine& line, SequenceData& sequence) {
  constexpr std::string_view kKey = "FV_AREASET";
  if (line.Key.substr(0, kKey.size()) != kKey) return true;
  if (line.Key.size() != kKey.size() + 1) return false;
  const auto area = DigitIndex(line.Key.back(), kViewAreas);
  if (!area) return false;
  auto& values = sequence.ViewAreas[static_cast<std::size_t>(*area)];
  return ReadAll(line.Value, values[0], values[1], values[2], values[3]);
}

// Calls `read` for every entry; the result tells the first line it refused.
template <typename Reader>
std::optional<std::string_view> RefusedLine(std::string_view section, Reader read) {
  ProfileLines lines(section);
  ProfileLine line;
  while (lines.Next(line)) {
    if (!read(line)) return line.Whole;
  }
  return std::nullopt;
}

ReadResult Missing(const SystemSettings& settings, std::string what) {
  return {SequenceFileProblem::Malformed, settings.ModelName, std::move(what), 0};
}

// `line` is a part of `text`.
ReadResult Refused(const SystemSettings& settings, std::string_view text, std::string_view line) {
  const auto number = 1 + std::count(text.data(), line.data(), '\n');
  return {SequenceFileProblem::Malformed, settings.ModelName, std::string(line.substr(0, kDetailLength)),
          static_cast<int>(number)};
}

// Makes `sequence` an empty one but for what a load keeps.
void Clear(SequenceData& sequence, SequenceFileForm form, const ModelDefinition& definition) {
  std::array<UserUnitDef, kChannelSlots> kept;
  for (std::size_t channel = 0; channel < kept.size(); ++channel) {
    kept[channel] = std::move(sequence.Channels.UserUnits[channel][kUnstoredUserUnit]);
  }
  const std::int16_t startStep = sequence.StartStep;
  const std::int16_t branchChannel = sequence.BranchChannel;
  ResetSequence(sequence, definition);
  for (std::size_t channel = 0; channel < kept.size(); ++channel) {
    sequence.Channels.UserUnits[channel][kUnstoredUserUnit] = std::move(kept[channel]);
  }
  if (form == SequenceFileForm::User) {
    sequence.StartStep = startStep;
    sequence.BranchChannel = branchChannel;
  }
}

}  // namespace

std::optional<SequenceFileForm> DetectForm(std::string_view text) {
  const SectionTable sections = FindSections(text);
  if (sections.UserSteps) return SequenceFileForm::User;
  if (sections.WorkSteps) return SequenceFileForm::Work;
  return std::nullopt;
}

ReadResult ParseSequenceFile(std::string_view text, SequenceFileForm form, const DefinitionFor& definitions,
                             SequenceData& sequence, SystemSettings& settings) {
  const SectionTable sections = FindSections(text);
  SystemSettings setup = settings;
  if (!HasEntry(sections.File)) return Missing(setup, "[FILE]");
  if (!HasEntry(sections.System)) return Missing(setup, "[SYSTEM]");
  if (const auto line =
          RefusedLine(*sections.System, [&](auto& entry) { return ReadSystemLine(entry, setup); })) {
    return Refused(setup, text, *line);
  }
  const std::optional<const ModelDefinition*> found = definitions(setup.ModelName);
  if (!found) return {SequenceFileProblem::UnknownModel, setup.ModelName, {}, 0};
  const ModelDefinition* const definition = *found;
  if (definition == nullptr) return {SequenceFileProblem::NoDefinition, setup.ModelName, {}, 0};
  setup.ModelIndex = static_cast<std::int16_t>(definition->IndexOfModel(setup.ModelName));
  if (const auto instrument = WithoutInterface(setup, *definition)) {
    const std::string key = "SS_INTERFACE" + std::to_string(*instrument);
    const auto line = RefusedLine(*sections.System, [&](auto& entry) { return entry.Key != key; });
    return line ? Refused(setup, text, *line) : Missing(setup, key);
  }

  const auto& steps = form == SequenceFileForm::User ? sections.UserSteps : sections.WorkSteps;
  if (!HasEntry(sections.Common)) return Missing(setup, "[COMMON]");
  if (!HasEntry(sections.Mode)) return Missing(setup, "[MODE]");
  if (!HasEntry(steps)) return Missing(setup, form == SequenceFileForm::User ? "[DATA]" : "[FRMEDIT]");

  // The whole sequence is too large for a stack that a caller may share with other things.
  const auto loaded = std::make_unique<SequenceData>(sequence);
  Clear(*loaded, form, *definition);
  auto refused =
      RefusedLine(*sections.Common, [&](auto& entry) { return ReadCommonLine(entry, loaded->Channels); });
  if (!refused)
    refused = RefusedLine(*sections.Mode, [&](auto& entry) { return ReadModeLine(entry, *loaded); });
  if (!refused)
    refused = RefusedLine(*steps, [&](auto& entry) { return ReadStepLine(entry, form, *loaded); });
  if (!refused && sections.View) {
    refused = RefusedLine(*sections.View, [&](auto& entry) { return ReadViewLine(entry, *loaded); });
  }
  if (refused) return Refused(setup, text, *refused);

  ComputeStartValues(*loaded);
  ComputeRunTimes(*loaded, *definition);
  sequence = std::move(*loaded);
  settings = std::move(setup);
  return {SequenceFileProblem::None, settings.ModelName, {}, 0};
}

}  // namespace corlune
