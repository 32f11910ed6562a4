#include <iostream>

#include "cli/commands.h"
#include "compile/download_outcome_text.h"

namespace corlune {
namespace {

// Drives one run from the keyboard: h hold, Enter resume, b branch, s or Ctrl+C stop.
class RunKeys {
 public:
  explicit RunKeys(ConsoleProgram& program) : program_(program), session_(program.GetSession()) {
    program_.Loop().OnKey([this](char key) { Press(key); });
    program_.Loop().OnInterrupt([this](int count) { Interrupt(count); });
    program_.Loop().RawKeys(true);
  }
  ~RunKeys() {
    program_.Loop().RawKeys(false);
    program_.Loop().OnKey({});
    program_.Loop().OnInterrupt({});
  }
  RunKeys(const RunKeys&) = delete;
  RunKeys& operator=(const RunKeys&) = delete;

  bool Stopped() const { return stopped_; }

 private:
  void Press(char key) {
    switch (key) {
      case 's':
        Stop();
        break;
      case 'h':
        session_.Control().MenuItem(static_cast<int>(Run::Hold));
        break;
      case 'b':
        session_.Control().MenuItem(static_cast<int>(Run::Branch));
        break;
      case '\r':
      case '\n':
        if (session_.State().RunState == RunState::Held)
          session_.Control().MenuItem(static_cast<int>(Run::Start));
        break;
      default:
        break;
    }
  }
  void Interrupt(int count) {
    if (count == 1 && session_.Download().UnderWay()) {
      // The instrument runs nothing yet; the block under way ends first, then the program does.
      std::cerr << program_.Catalogue().GetResString(TextId::EndsAfterBlock) << std::endl;
    }
    Stop();
  }
  void Stop() {
    stopped_ = true;
    session_.Download().RequestEnd();
    session_.Control().MenuItem(static_cast<int>(Run::Stop));
  }

  ConsoleProgram& program_;
  Session& session_;
  bool stopped_ = false;
};

// Sleeps in the event loop while ticks and keys carry the run on.
void FollowRun(ConsoleProgram& program) {
  Session& session = program.GetSession();
  while (session.Control().BusyOrRunning()) {
    session.Commands().DelayMs(100);
  }
}

// Messages have said what could be said with a message; the rest is said here.
int TellDownloadEnd(ConsoleProgram& program, bool stopped) {
  const DownloadOutcome& outcome = program.GetSession().Download().Outcome();
  if (outcome.End == DownloadEnd::Cancelled || (outcome.End == DownloadEnd::NoName && stopped)) {
    return Fail(program.Catalogue().GetResString(TextId::TransferEnded));
  }
  if (outcome.End == DownloadEnd::NoName) {
    return Fail(program.Catalogue().GetResString(TextId::NoSequenceName));
  }
  const std::string text = DownloadOutcomeText(outcome, program.Catalogue());
  return text.empty() ? kExitFailed : Fail(text);
}

// An instrument that was not seen to stop gets one more stop before the connection goes.
int StopWhatMayStillRun(Session& session, int exitCode) {
  if (!session.State().MayStillRun) return exitCode;
  session.Control().RunCommand(Run::Stop);
  return Fail(session.Catalogue().GetResString(session.State().MayStillRun ? TextId::CouldNotStop
                                                                           : TextId::StoppedAgain));
}

int RunConnected(ConsoleProgram& program, const RunKeys& keys, int number) {
  Session& session = program.GetSession();
  session.Sequence().SequenceNumber = static_cast<std::int16_t>(number);
  const std::string stopped = program.Catalogue().GetResString(TextId::ExecutionStopped);
  const std::string notStarted = program.Catalogue().GetResString(TextId::TransferEnded);
  const std::string broken = program.Catalogue().GetResString(TextId::ExecutionEndedBadly);
  program.Loop().HandlePending();
  if (keys.Stopped()) return Fail(notStarted);
  if (!session.Control().SetOperationMode(OperationMode::Execution)) {
    return TellDownloadEnd(program, keys.Stopped());
  }
  if (keys.Stopped()) return Fail(notStarted);
  if (!session.Control().RunCommand(Run::Start)) {
    if (keys.Stopped()) return Fail(session.Monitor().EndedWell() ? stopped : broken);
    // Back in edit mode: it was started, but does not say where it is.
    return session.State().OperationMode == OperationMode::Edit ? Fail(broken) : kExitFailed;
  }
  FollowRun(program);
  if (!session.Monitor().EndedWell()) return Fail(broken);
  return keys.Stopped() ? Fail(stopped) : kExitSuccess;
}

}  // namespace

int RunSequenceCommand(ConsoleProgram& program, const RunOptions& options) {
  if (!program.Load(options.file)) return kExitFailed;
  if (options.offline) return PrintTimes(program);
  if (program.GetSession().Sequence().StepCount == 0) {
    return Fail(program.Catalogue().GetResString(TextId::StepNeeded));
  }
  const RunKeys keys(program);
  if (!program.Connect(options.serial)) return kExitFailed;
  const int exitCode = StopWhatMayStillRun(program.GetSession(), RunConnected(program, keys, options.number));
  program.GetSession().Disconnect();
  return exitCode;
}

}  // namespace corlune
