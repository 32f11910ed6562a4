#include "cli/console_program.h"

#include <cstdlib>
#include <iostream>

#include "compile/transfer_file.h"
#include "core/files.h"
#include "platform/folders.h"

namespace corlune {

void ExitProgram::EndNow(int exitCode) {
  loop_.RawKeys(false);
  transferFolder_.Remove();
  std::cout.flush();
  std::_Exit(exitCode);
}

ConsoleProgram::ConsoleProgram(const ProgramOptions& options, const ConsoleAnswers& answers)
    : loop_(clock_), prompts_(loop_, answers), end_(loop_, transferFolder_) {
  SessionOptions sessionOptions;
  sessionOptions.programFolder = ProgramFolder();
  sessionOptions.appFolder = options.folder.empty() ? DefaultApplicationFolder() : options.folder;
  sessionOptions.english = options.english;
  sessionOptions.simulated = options.simulated;
  sessionOptions.writeSettings = false;
  const SessionPorts ports{prompts_, clock_, loop_, loop_,  progress_,
                           display_, view_,  end_,  files_, sessionDisplay_};
  session_ = std::make_unique<Session>(ports, sessionOptions,
                                       MakeParts(options, sessionOptions.programFolder, prompts_, clock_));
  session_->State().TransferFolder = transferFolder_.Path();
  prompts_.TakeNameFor(session_->Catalogue().GetResString(TextId::SequenceNamePrompt));
  display_.Attach(session_->State(), session_->Sequence(), session_->Catalogue());
  loop_.OnTick([this] { session_->Monitor().Tick(); });
}

bool ConsoleProgram::Load(const std::string& path) {
  return Started(session_->StartUpFromFile(path));
}

bool ConsoleProgram::StartWithoutFile() {
  return Started(session_->StartUpWithoutFile());
}

bool ConsoleProgram::Started(bool done) const {
  if (!done && !session_->LoadProblem().empty()) Fail(session_->LoadProblem());
  return done;
}

bool ConsoleProgram::Connect(const std::optional<std::string>& serial) {
  switch (session_->Connect(serial)) {
    case ConnectResult::Connected:
      return true;
    case ConnectResult::NoneFound: {
      const std::string problem = session_->Gp().LibraryProblem();
      Fail(Catalogue().GetResString(TextId::NoInstrument) +
           (problem.empty() ? std::string() : "\n" + problem));
      return false;
    }
    case ConnectResult::SeveralFound: {
      std::string serials;
      for (const FoundInstrument& found : session_->Gp().Found()) serials += " " + found.SerialNo;
      Fail(Catalogue().GetResString(TextId::SeveralInstruments, {serials}));
      return false;
    }
    case ConnectResult::NotFound:
      Fail(Catalogue().GetResString(TextId::SerialNumberNotFound, {serial.value_or("")}));
      return false;
    case ConnectResult::OpenFailed:
      return false;  // the message has been shown
    case ConnectResult::Offline:
      Fail(Catalogue().GetResString(TextId::StateOffLine));
      return false;
  }
  return false;
}

bool ConsoleProgram::Compile(std::string& compiled) {
  const std::string file = TransferFile(session_->State(), kSendFileName);
  if (session_->Download().CompileSequence(file) != 0) {
    const std::string& detail = session_->Download().Outcome().Detail;
    if (!detail.empty()) Fail(detail);
    return false;
  }
  auto bytes = ReadWholeFile(file);
  if (!bytes) {
    Fail(Catalogue().GetResString(TextId::ConsoleCannotReadFile, {file}));
    return false;
  }
  compiled = *std::move(bytes);
  return true;
}

int Fail(const std::string& text) {
  std::cout.flush();
  std::cerr << text << std::endl;
  return kExitFailed;
}

int WriteOutput(const std::string& path, std::string_view bytes) {
  std::string error;
  if (ReplaceFile(path, bytes, &error)) return kExitSuccess;
  return Fail(error);
}

}  // namespace corlune
