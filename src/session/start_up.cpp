// Session: from the profile files to a program that can show its window.
#include <algorithm>
#include <vector>

#include "core/files.h"
#include "modeldef/read_model_definition.h"
#include "platform/file_access.h"
#include "sequence/defaults.h"
#include "sequence/sequence_file.h"
#include "session/edit_model.h"
#include "session/session.h"
#include "session/system_defaults.h"

namespace corlune {

namespace {

// "file: section SPEC QM2220: key CM_STAR: the wait is no number"
std::string Describe(const std::string& path, const DefinitionProblem& problem) {
  std::string text = path;
  if (!problem.section.empty()) text += ": section " + problem.section;
  if (!problem.key.empty()) text += ": key " + problem.key;
  return text + ": " + problem.reason;
}

// The instrument that `serial` names, by serial number or whole resource name; without it the first one.
const FoundInstrument* FindSerial(const std::vector<FoundInstrument>& found,
                                  const std::optional<std::string>& serial) {
  const auto chosen = std::find_if(found.begin(), found.end(), [&](const FoundInstrument& instrument) {
    return !serial || instrument.SerialNo == *serial || instrument.Resource == *serial;
  });
  return chosen == found.end() ? nullptr : &*chosen;
}

}  // namespace

bool Session::LoadDefinitionOf(AppState& state, ModelDefinition& definition, bool showBadValue) {
  DefinitionProblem problem;
  if (ReadModelDefinition(state, definition, ports_.prompts, catalogue_, &problem)) {
    loadProblem_.clear();
    return true;
  }
  loadProblem_ = Describe(state.StdIniPath, problem);
  if (showBadValue && !problem.section.empty()) {
    HideWait();
    ShowMessage(ports_.prompts, catalogue_, TextId::BadModelDefinition, PromptIcon::Exclamation,
                PromptButtons::Ok, {loadProblem_});
  }
  return false;
}

void Session::ApplySimulated() {
  if (!options_.simulated) return;
  for (InstrumentEntry& entry : state_.Instruments) entry.InterfaceKind = InterfaceKind::Simulated;
}

bool Session::SettleModel() {
  if (!LoadDefinitionOf(state_, definition_, true)) return false;
  const int index = definition_.IndexOfModel(state_.ModelName);
  if (index >= 0) {
    state_.ModelIndex = static_cast<std::int16_t>(index);
    return true;
  }
  // The first model takes its place, so that a settings file left over from an older definition does not lock
  // the person out.
  ShowMessage(ports_.prompts, catalogue_, TextId::UnknownModel, PromptIcon::Exclamation, PromptButtons::Ok,
              {state_.ModelName});
  state_.ModelName = definition_.Models[0];
  state_.ModelIndex = 0;
  return LoadDefinitionOf(state_, definition_, true);
}

InstrumentEntry Session::UsbTmcInstrument(int modelIndex, const std::string& serialNo) const {
  const ModelInterfaceSpec& model = definition_.InterfaceOf(modelIndex);
  InstrumentEntry instrument;
  instrument.SerialNo = serialNo;
  instrument.ChannelCount = model.ChannelSelectable
                                ? static_cast<std::int16_t>(model.Channels.Maximum)
                                : ChannelsOfModel(definition_.Models[static_cast<std::size_t>(modelIndex)]);
  instrument.InterfaceKind = InterfaceKind::UsbTmc;
  for (std::size_t i = 0; i < model.InterfaceNames.size(); ++i) {
    if (model.InterfaceNames[i] == "USBTMC") instrument.Interface = static_cast<std::int16_t>(i);
  }
  return instrument;
}

void Session::SetUpUsbTmc(const std::string& serialNo) {
  state_.InstrumentCount = 1;
  state_.Instruments[0] = UsbTmcInstrument(state_.ModelIndex, serialNo);
  state_.CurrentInterface = InterfaceKind::UsbTmc;
  ApplySimulated();
}

int Session::FindInstruments(int modelIndex) {
  const std::string& prefix = definition_.InterfaceOf(modelIndex).UsbTmcId;
  return prefix.empty() ? 0 : Gp().GP_Find_Devices(prefix + "?*INSTR");
}

void Session::SearchAtStartUp(const StartUpChecks& checks) {
  SetUpUsbTmc({});
  if (options_.simulated) return;
  // Without a library the search has nothing to wait for.
  if (Gp().CanSearch() && !WaitFor(TextId::SearchingInstruments)) return;
  const int found = FindInstruments(state_.ModelIndex);
  if (found == 0) {
    state_.Online = 0;
  } else if (found == 1) {
    state_.Instruments[0].SerialNo = Gp().Found().front().SerialNo;
  } else if (!HideWait()) {
    ShowMessage(ports_.prompts, catalogue_, TextId::SelectSerialNumber, PromptIcon::Information);
    TakeChoice(checks.chooseInstrument);
  }
}

void Session::TakeChoice(const ChooseInstrument& choose) {
  state_.Online = 0;
  const auto choice = choose ? choose() : std::nullopt;
  if (!choice) return;
  if (choice->ModelName != state_.ModelName) {
    AppState next = state_;
    next.ModelName = choice->ModelName;
    if (!LoadDefinitionOf(next, definition_, true)) return;
    state_.ModelName = choice->ModelName;
    state_.ModelIndex = static_cast<std::int16_t>(definition_.IndexOfModel(choice->ModelName));
  }
  SetUpUsbTmc(choice->SerialNo);
  state_.Online = 1;
  chosen_ = true;
}

bool Session::ReadWorkFile(bool& mayReplace) {
  const DefinitionFor definitions =
      [this](const std::string& model) -> std::optional<const ModelDefinition*> {
    if (definition_.IndexOfModel(model) < 0) return std::nullopt;
    if (model == state_.ModelName) return &definition_;
    AppState next = state_;
    next.ModelName = model;
    return LoadDefinitionOf(next, definition_, true) ? &definition_ : nullptr;
  };
  const ReadResult result =
      ReadSeqFile(state_.WorkFilePath, SequenceFileForm::Work, definitions, state_, sequence_);
  if (result.Problem == SequenceFileProblem::None) {
    SetWorkFilePath();
    return true;
  }
  HideWait();
  // The definition of its model has been named as faulty; the file is good and stays for when that is put
  // right.
  if (result.Problem == SequenceFileProblem::NoDefinition) {
    mayReplace = false;
    return false;
  }
  const auto kept = SetAside(state_.WorkFilePath);
  mayReplace = kept.has_value();
  ShowReadProblem(state_.WorkFilePath, result,
                  kept ? catalogue_.GetResString(TextId::WorkFileSetAside, {*kept})
                       : catalogue_.GetResString(TextId::WorkFileNotSetAside));
  return false;
}

bool Session::LoadWorkData() {
  SetWorkFilePath();
  bool mayReplace = true;
  if (!PathExists(state_.WorkFilePath) || !ReadWorkFile(mayReplace)) {
    if (!LoadDefinitionOf(state_, definition_, true)) return false;
    InitSystemDefaults(state_, definition_, sequence_);
  }
  if (chosen_) ResetModeSettings();
  ApplySimulated();
  workDataLoaded_ = mayReplace;
  return true;
}

StartUpResult Session::EndOfStartUp(StartUpResult result) {
  HideWait();
  waitsFrom_.reset();
  state_.StartupDone = result == StartUpResult::Show;
  if (result != StartUpResult::Show) Disconnect();
  return result;
}

StartUpResult Session::StartUp(const StartUpChecks& checks) {
  state_.StartupDone = false;
  if (checks.otherInstance && checks.otherInstance()) return StartUpResult::ActivateOther;
  state_.Connected = false;
  if (checks.siblingRunning &&
      checks.siblingRunning(MessageCatalogue::GetFixedString(FixedText::SiblingTitle))) {
    ShowMessage(ports_.prompts, catalogue_, TextId::SiblingRunning, PromptIcon::Exclamation);
    return StartUpResult::EndProcess;
  }
  ResetChannelTables(sequence_, state_.Online == 1);
  state_.Online = 1;
  if (!ReadEditModel(state_.SysIniPath, state_, ports_.prompts, catalogue_)) UseDefaultModel(state_);
  if (!SettleModel()) return StartUpResult::EndProcess;
  waitsFrom_ = ports_.clock.Now();
  SearchAtStartUp(checks);
  if (state_.Online == 1 && !state_.Connected && WaitFor(TextId::ConnectingInstrument) && OpenConnection() &&
      chosen_) {
    CheckModels();
    if (end_.Ended()) return EndOfStartUp(StartUpResult::EndProcess);
  }
  const SystemSettings opened = SettingsOf(state_);
  if (!LoadWorkData() || !LoadDefinitionOf(state_, definition_, true)) {
    return EndOfStartUp(StartUpResult::EndProcess);
  }
  if (state_.Online == 1 && SetupChangedSince(opened)) {
    Reconnect();
    if (end_.Ended()) return EndOfStartUp(StartUpResult::EndProcess);
  } else {
    QueryArbDirectory();
  }
  return EndOfStartUp(StartUpResult::Show);
}

bool Session::StartUpFromFile(const std::string& path) {
  state_.Online = 0;
  anyModel_ = false;
  const auto bytes = ReadWholeFile(path);
  if (!bytes) {
    ShowMessage(ports_.prompts, catalogue_, TextId::CannotReadFile, PromptIcon::Exclamation,
                PromptButtons::Ok, {path});
    return false;
  }
  // Without a name only the list of models is loaded; the file's own follows when its name is known.
  state_.ModelName.clear();
  if (!LoadDefinitionOf(state_, definition_, false)) return false;
  const DefinitionFor definitions =
      [this](const std::string& model) -> std::optional<const ModelDefinition*> {
    if (definition_.IndexOfModel(model) < 0) return std::nullopt;
    AppState next = state_;
    next.ModelName = model;
    if (!LoadDefinitionOf(next, definition_, false)) return nullptr;
    ResetSequence(sequence_, definition_);  // what the file does not carry has the model's defaults
    return &definition_;
  };
  const std::string text = DecodeText(*bytes);
  SystemSettings settings = SettingsOf(state_);
  const SequenceFileForm form = DetectForm(text).value_or(SequenceFileForm::User);
  const ReadResult result = ParseSequenceFile(text, form, definitions, sequence_, settings);
  if (result.Problem == SequenceFileProblem::NoDefinition) return false;
  if (result.Problem != SequenceFileProblem::None) {
    const bool unknown = result.Problem == SequenceFileProblem::UnknownModel;
    ShowMessage(ports_.prompts, catalogue_, unknown ? TextId::UnknownModel : TextId::MalformedSequenceFile,
                PromptIcon::Exclamation, PromptButtons::Ok, {result.Model});
    loadProblem_ = path + ": " + (result.Line > 0 ? "line " + std::to_string(result.Line) + ": " : "") +
                   (unknown ? "unknown model " + result.Model : result.Detail);
    return false;
  }
  ApplySettings(state_, settings);
  state_.ProgId = definition_.ProgId;
  state_.VerNo = definition_.VerNo;
  state_.CurrentFilePath = path;
  SetWorkFilePath();
  ApplySimulated();
  state_.StartupDone = true;
  return true;
}

bool Session::StartUpWithoutFile() {
  state_.Online = 0;
  anyModel_ = true;
  if (!ReadEditModelQuietly(state_.SysIniPath, state_)) UseDefaultModel(state_);
  if (!LoadDefinitionOf(state_, definition_, false)) return false;
  if (definition_.IndexOfModel(state_.ModelName) < 0 && !definition_.Models.empty()) {
    state_.ModelName = definition_.Models[0];
    if (!LoadDefinitionOf(state_, definition_, false)) return false;
  }
  state_.ModelIndex = static_cast<std::int16_t>(definition_.IndexOfModel(state_.ModelName));
  ResetSequence(sequence_, definition_);
  SetUpUsbTmc({});
  SetWorkFilePath();
  state_.StartupDone = true;
  return true;
}

ConnectResult Session::FindModelOfInstrument(const std::optional<std::string>& serial) {
  ConnectResult result = ConnectResult::NoneFound;
  const std::vector<std::string> models = definition_.Models;
  for (std::size_t i = 0; i < models.size(); ++i) {
    state_.ModelIndex = static_cast<std::int16_t>(i);
    state_.ModelName = models[i];
    if (FindInstruments(state_.ModelIndex) == 0) continue;
    if (FindSerial(Gp().Found(), serial) == nullptr) {
      result = ConnectResult::NotFound;
      continue;
    }
    if (!LoadDefinitionOf(state_, definition_, false)) return ConnectResult::NoneFound;
    ResetSequence(sequence_, definition_);
    SetUpUsbTmc({});
    return ConnectResult::Connected;
  }
  return result;
}

ConnectResult Session::Connect(const std::optional<std::string>& serial) {
  const WorkGuard guard(activity_, Work::Exchange);
  if (state_.Instruments[0].InterfaceKind == InterfaceKind::UsbTmc) {
    if (anyModel_) {
      const ConnectResult result = FindModelOfInstrument(serial);
      if (result != ConnectResult::Connected) return result;
    } else if (FindInstruments(state_.ModelIndex) == 0) {
      return ConnectResult::NoneFound;
    }
    const std::vector<FoundInstrument>& found = Gp().Found();
    if (found.size() > 1 && !serial && !anyModel_) return ConnectResult::SeveralFound;
    const FoundInstrument* const chosen = FindSerial(found, serial);
    if (chosen == nullptr) return ConnectResult::NotFound;
    state_.Instruments[0].SerialNo = chosen->SerialNo;
  }
  if (!OpenConnection()) return ConnectResult::OpenFailed;
  if (!CheckModels()) return ConnectResult::Offline;
  QueryArbDirectory();
  return ConnectResult::Connected;
}

}  // namespace corlune
