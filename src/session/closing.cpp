// Session: closing, and what is kept for the next start.
#include "sequence/sequence_file.h"
#include "session/edit_model.h"
#include "session/session.h"

namespace corlune {

bool Session::WriteWorkFile(std::string* error) {
  // A work file that could not be loaded is not replaced by what happens to be in memory.
  if (!options_.writeSettings || !workDataLoaded_) return true;
  return WriteSeqFile(state_.WorkFilePath, SequenceFileForm::Work, state_, definition_, sequence_, error);
}

void Session::KeepForNextStart() {
  if (!options_.writeSettings || !workDataLoaded_) return;
  WriteEditModel(state_);
  WriteWorkFile(nullptr);
}

bool Session::OfferToSaveBeforeClosing() {
  if (!state_.Modified) return true;
  const PromptAnswer answer = ShowMessage(ports_.prompts, catalogue_, TextId::SaveChangesQuestion,
                                          PromptIcon::Question, PromptButtons::YesNoCancel);
  if (answer == PromptAnswer::No) return true;
  if (answer != PromptAnswer::Yes) return false;
  // Without a name the sequence is kept in the work file alone.
  const auto path =
      ports_.files.ChooseSave(catalogue_.GetResString(TextId::SequenceFilter), state_.CurrentFilePath);
  return !path || path->empty() || WriteUserFile(*path);
}

bool Session::RequestClose() {
  if (!Idle()) return false;
  const WorkGuard guard(activity_, Work::File);
  if (!AgreeToGoOn()) return false;
  if (options_.writeSettings) WriteEditModel(state_);
  if (!OfferToSaveBeforeClosing()) return false;
  std::string error;
  if (!WriteWorkFile(&error) &&
      ShowMessage(ports_.prompts, catalogue_, TextId::StateNotSavedQuestion, PromptIcon::Exclamation,
                  PromptButtons::OkCancel, {state_.WorkFilePath, error}) != PromptAnswer::Ok) {
    return false;
  }
  Disconnect();
  return true;
}

bool Session::EndFromOutside() {
  end_.Save();
  if (activity_.Under(Work::Download)) {
    downloader_->RequestEnd();
    endWaveforms_ = true;
    return false;
  }
  control_->StopForEnd();
  Disconnect();
  end_.EndNow(0);
  return true;
}

}  // namespace corlune
