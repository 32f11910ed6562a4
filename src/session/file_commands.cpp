// Session: New, Open, Save, Save As and their questions.
#include <algorithm>
#include <memory>
#include <utility>

#include "core/files.h"
#include "modeldef/read_model_definition.h"
#include "sequence/defaults.h"
#include "sequence/sequence_file.h"
#include "session/session.h"

namespace corlune {

namespace {

SequenceFileForm FormOf(const std::string& path) {
  const auto bytes = ReadWholeFile(path);
  return bytes ? DetectForm(DecodeText(*bytes)).value_or(SequenceFileForm::User) : SequenceFileForm::User;
}

}  // namespace

void Session::ClearSequence() {
  ResetSequence(sequence_, definition_);
  state_.Modified = false;
  state_.CurrentFilePath.clear();
}

void Session::Warn(const std::string& text) {
  MessageRequest request;
  request.text = text;
  request.icon = PromptIcon::Exclamation;
  ports_.prompts.Message(request);
}

void Session::ShowReadProblem(const std::string& path, const ReadResult& result, const std::string& more) {
  const bool known = result.Problem != SequenceFileProblem::UnknownModel;
  std::string text =
      catalogue_.GetResString(known ? TextId::MalformedSequenceFile : TextId::UnknownModel, {result.Model}) +
      "\n";
  if (result.Line > 0) {
    text += catalogue_.GetResString(TextId::LineCannotBeTaken,
                                    {path, std::to_string(result.Line), result.Detail});
  } else if (!result.Detail.empty()) {
    text += catalogue_.GetResString(TextId::KeyMissing, {path, result.Detail});
  } else {
    text += known ? catalogue_.GetResString(TextId::PathUnreadable, {path}) : path;
  }
  if (!more.empty()) text += "\n" + more;
  Warn(text);
}

void Session::ShowWriteProblem(const std::string& path, const std::string& error) {
  ShowMessage(ports_.prompts, catalogue_, TextId::CannotWriteFile, PromptIcon::Exclamation, PromptButtons::Ok,
              {path, error});
}

bool Session::WriteUserFile(std::string path) {
  // A name without the ending of a sequence file gets one when it is written.
  if (!HasSequenceFileEnding(path)) {
    // The file dialog asked about the name that was typed, not about this one.
    path += ".dat";
    if (FileExists(path) &&
        ShowMessage(ports_.prompts, catalogue_, TextId::OverwriteQuestion, PromptIcon::Question,
                    PromptButtons::YesNo, {path}) != PromptAnswer::Yes) {
      return false;
    }
  }
  std::string error;
  if (!WriteSeqFile(path, SequenceFileForm::User, state_, definition_, sequence_, &error)) {
    ShowWriteProblem(path, error);
    return false;
  }
  state_.CurrentFilePath = path;
  state_.Modified = false;
  ports_.display.ShowCaption(Caption());
  return true;
}

bool Session::WriteFile(const std::string& path, bool userForm) {
  const auto copy = std::make_unique<SequenceData>(sequence_);
  std::string error;
  const SequenceFileForm form = userForm ? SequenceFileForm::User : SequenceFileForm::Work;
  if (WriteSeqFile(path, form, state_, definition_, *copy, &error)) return true;
  ShowWriteProblem(path, error);
  return false;
}

bool Session::SaveToCurrentPath() {
  return state_.CurrentFilePath.empty() ? SaveToChosenPath() : WriteUserFile(state_.CurrentFilePath);
}

bool Session::SaveToChosenPath() {
  if (state_.RunState == RunState::Running || activity_.Commanding()) return false;
  const auto path =
      ports_.files.ChooseSave(catalogue_.GetResString(TextId::SequenceFilter), state_.CurrentFilePath);
  return path && !path->empty() && WriteUserFile(*path);
}

bool Session::AskToSave() {
  if (!state_.Modified) return true;
  switch (ShowMessage(ports_.prompts, catalogue_, TextId::SaveSequenceQuestion, PromptIcon::Question,
                      PromptButtons::YesNoCancel)) {
    case PromptAnswer::Yes:
      return SaveToCurrentPath();
    case PromptAnswer::No:
      return true;
    default:
      return false;
  }
}

bool Session::NewSequence() {
  if (!MayReplaceSequence()) return false;
  const WorkGuard guard(activity_, Work::File);
  ports_.display.HideEditors();
  if (!AgreeToGoOn() || !AskToSave()) return false;
  ClearSequence();
  ports_.display.SequenceReplaced(SequenceChange::New);
  ports_.display.ShowCaption(Caption());
  return true;
}

bool Session::OpenWithDialog() {
  if (!MayReplaceSequence()) return false;
  const WorkGuard guard(activity_, Work::File);
  ports_.display.HideEditors();
  if (!AgreeToGoOn() || !AskToSave()) return false;
  const auto path = ports_.files.ChooseOpen(catalogue_.GetResString(TextId::SequenceFilter));
  return path && LoadUserFile(*path);
}

bool Session::OpenFile(const std::string& path) {
  if (!MayReplaceSequence()) return false;
  const WorkGuard guard(activity_, Work::File);
  ports_.display.HideEditors();
  return AgreeToGoOn() && AskToSave() && LoadUserFile(path);
}

bool Session::LoadUserFile(const std::string& path) {
  if (path.empty() || !FileExists(path)) {
    ShowMessage(ports_.prompts, catalogue_, TextId::WrongFileName, PromptIcon::Exclamation);
    return false;
  }
  const SystemSettings before = SettingsOf(state_);
  // The definition of the file's model, when it is another one than the present.
  std::unique_ptr<ModelDefinition> other;
  const DefinitionFor definitions = [&](const std::string& model) -> std::optional<const ModelDefinition*> {
    const int index = definition_.IndexOfModel(model);
    if (index < 0) return std::nullopt;
    if (model == state_.ModelName) return &definition_;
    AppState next = state_;
    next.ModelName = model;
    next.ModelIndex = static_cast<std::int16_t>(index);
    other = std::make_unique<ModelDefinition>(definition_);
    return LoadDefinitionOf(next, *other, true) ? other.get() : nullptr;
  };
  const ReadResult result = ReadSeqFile(path, FormOf(path), definitions, state_, sequence_);
  if (result.Problem != SequenceFileProblem::None) {
    if (result.Problem != SequenceFileProblem::NoDefinition) ShowReadProblem(path, result, {});
    return false;
  }
  if (other) definition_ = std::move(*other);
  ApplySimulated();
  SetWorkFilePath();
  state_.CurrentFilePath = path;
  state_.Modified = false;
  ports_.display.SequenceReplaced(SequenceChange::Opened);
  ports_.display.ShowCaption(Caption());
  if (state_.Online == 1) {
    const bool oneLost = std::find(state_.Lost.begin(), state_.Lost.end(), true) != state_.Lost.end();
    if (SetupChangedSince(before) || oneLost) {
      Reconnect();
    } else {
      CheckModels();
    }
  } else if (MayGoOnlineAgain()) {
    Reconnect();
  }
  return true;
}

bool Session::Save() {
  if (!MaySave()) return false;
  const WorkGuard guard(activity_, Work::File);
  ports_.display.HideEditors();
  return SaveToCurrentPath();
}

bool Session::SaveAs() {
  if (!MaySave()) return false;
  const WorkGuard guard(activity_, Work::File);
  ports_.display.HideEditors();
  return SaveToChosenPath();
}

}  // namespace corlune
