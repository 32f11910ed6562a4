// ConsoleProgram: a session with the ports of a terminal. One object a run of the program.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/console_loop.h"
#include "cli/console_ports.h"
#include "cli/temporary_folder.h"
#include "core/system_ports.h"
#include "session/program_options.h"
#include "session/session.h"

namespace corlune {

// Exit codes of the console program.
inline constexpr int kExitSuccess = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitOptions = 2;

// No file dialog on a console; nothing asks for one.
class NoFileDialogs : public FileDialogs {
 public:
  std::optional<std::string> ChooseOpen(const std::string&) override { return std::nullopt; }
  std::optional<std::string> ChooseSave(const std::string&, const std::string&) override {
    return std::nullopt;
  }
};

class ExitProgram : public EndProgram {
 public:
  ExitProgram(ConsoleLoop& loop, TemporaryFolder& transferFolder)
      : loop_(loop), transferFolder_(transferFolder) {}
  void EndNow(int exitCode) override;

 private:
  ConsoleLoop& loop_;
  TemporaryFolder& transferFolder_;
};

class ConsoleProgram {
 public:
  // `options` after ResolveProgramOptions.
  ConsoleProgram(const ProgramOptions& options, const ConsoleAnswers& answers);

  Session& GetSession() { return *session_; }
  ConsoleLoop& Loop() { return loop_; }
  ConsoleProgress& ProgressLine() { return progress_; }
  const MessageCatalogue& Catalogue() const { return session_->Catalogue(); }

  // Loads the file with its model and set-up; shows its problem. False: failed.
  bool Load(const std::string& path);
  // The same without a file: the instrument will tell its model.
  bool StartWithoutFile();
  // Goes on-line; says on standard error why it could not. False: failed.
  bool Connect(const std::optional<std::string>& serial);
  // Compiles the loaded sequence into `compiled`; says on standard error what is wrong. False: failed.
  bool Compile(std::string& compiled);
  // Leaves at once, without destructors, with terminal and files tidied up.
  void EndNow(int exitCode) { end_.EndNow(exitCode); }

 private:
  // Says the session's problem unless `done`.
  bool Started(bool done) const;

  SteadyTickClock clock_;
  ConsoleLoop loop_;
  ConsolePrompts prompts_;
  ConsoleProgress progress_;
  NoView view_;
  TemporaryFolder transferFolder_;
  ExitProgram end_;
  NoFileDialogs files_;
  SessionDisplay sessionDisplay_;
  ConsoleDisplay display_;
  std::unique_ptr<Session> session_;
};

// Prints `text` and a line end on standard error; returns kExitFailed.
int Fail(const std::string& text);
// Replaces the file and says on standard error what failed. Exit code.
int WriteOutput(const std::string& path, std::string_view bytes);

}  // namespace corlune
