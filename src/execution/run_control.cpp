#include "execution/run_control.h"

#include <string>
#include <utility>

#include "comm/gp_codes.h"
#include "commands/expand_template.h"
#include "core/output_state.h"
#include "sequence/channel_tabs.h"

namespace corlune {

namespace {

constexpr const char* kResumeCommand = ":TRIG1:SEL:EXEC RES";
constexpr std::int32_t kResumeWait = 400;  // ms
constexpr int kBrokenOff = -2;             // SendToAll: a stop was pressed before the last instrument

Work WorkOf(Run command) {
  switch (command) {
    case Run::Start:
      return Work::Start;
    case Run::OutputOn:
    case Run::OutputOff:
      return Work::Output;
    default:
      return Work::Command;
  }
}

}  // namespace

RunControl::RunControl(RunContext run, Measure& measure, RunQueries& queries, Activity& activity,
                       std::function<bool()> download, std::function<bool()> reopen)
    : run_(run),
      measure_(measure),
      queries_(queries),
      activity_(activity),
      download_(std::move(download)),
      reopen_(std::move(reopen)) {}

bool RunControl::AgreeToGoOn() {
  return !run_.state.MayStillRun ||
         ShowMessage(run_.prompts, run_.catalogue, TextId::GoOnQuestion, PromptIcon::Question,
                     PromptButtons::OkCancel, {}, PromptAnswer::Cancel) == PromptAnswer::Ok;
}

bool RunControl::SetOperationMode(OperationMode mode) {
  if (BusyOrRunning()) return false;
  bool entered = false;
  {
    const WorkGuard guard(activity_, Work::ModeChange);
    entered = ChangeMode(mode);
  }
  ExchangeEnded();
  RefreshBoth(run_);
  return entered;
}

bool RunControl::ChangeMode(OperationMode mode) {
  AppState& state = run_.state;
  if (!AgreeToGoOn()) return false;
  if (mode == OperationMode::Execution) {
    if (run_.sequence.StepCount == 0) {
      ShowMessage(run_.prompts, run_.catalogue, TextId::StepNeeded, PromptIcon::Information);
      return false;
    }
    run_.commands.SelectInstrument(0);
    if (!download_()) return false;
    // What an instrument that may still run does with its output is known only when it is stopped.
    state.OutputOn = queries_.OutputQuery(0) == 1 && !state.MayStillRun;
    if (state.MayStillRun) state.OutputInDoubt = true;
    SetRunState(state, RunState::Stopped);
  }
  state.OperationMode = mode;
  run_.display.ShowModeLayout(static_cast<int>(mode));
  return true;
}

bool RunControl::RunCommand(Run command) {
  if (activity_.CommandUnderWay()) return false;
  const bool goesOn = command == Run::Start || command == Run::OutputOn;
  if (goesOn && run_.state.MayStillRun) return false;
  if (command == Run::Start || command == Run::Stop) stopWaits_ = false;
  bool done = false;
  {
    const WorkGuard guard(activity_, WorkOf(command));
    current_ = command;
    if (WorkOf(command) != Work::Command) RefreshBoth(run_);
    done = Execute(command);
    if (std::exchange(stopWaits_, false)) {
      run_.state.PendingRequest = PendingRequest::None;
      current_ = Run::Stop;
      Stop();
    }
    current_.reset();
  }
  RefreshBoth(run_);
  if (std::exchange(outputOffWaits_, false)) RunCommand(Run::OutputOff);
  return done;
}

bool RunControl::Execute(Run command) {
  switch (command) {
    case Run::Start:
      return Start();
    case Run::Stop:
      return Stop();
    case Run::Hold:
      return Hold();
    case Run::Branch:
      return Branch();
    case Run::OutputOn:
      return SwitchOutput(true);
    case Run::OutputOff:
      return SwitchOutput(false);
  }
  return false;
}

int RunControl::SendToAll(const std::function<std::string(int)>& command, std::int32_t wait) {
  for (int i = 0; i < run_.state.InstrumentCount; ++i) {
    if (current_ == Run::Start && stopWaits_) return kBrokenOff;
    const std::int32_t address = run_.commands.SelectInstrument(i);
    if (Failed(run_.commands.SendCommand(address, command(i), wait))) return i;
  }
  return -1;
}

void RunControl::SayFailure(int instrument) {
  DoubtOutput(run_.state);
  // The warning stands behind the message already.
  if (run_.state.MayStillRun) RefreshBoth(run_);
  ShowCommunicationError(run_, instrument, PromptIcon::Critical);
  measure_.EndRun();
}

bool RunControl::FailRun(int instrument) {
  // Those that took the command before it run or hold; the one that did not may have taken it all the same.
  const bool stopped = SendToEach(run_, run_.commands.Definition().Commands.Stop) < 0;
  if (!stopped) run_.state.MayStillRun = true;
  SayFailure(instrument);
  return false;
}

bool RunControl::SwitchOutputsForStart() {
  if (ShowMessage(run_.prompts, run_.catalogue, TextId::StartWithOutputQuestion, PromptIcon::Information,
                  PromptButtons::OkCancel) != PromptAnswer::Ok ||
      stopWaits_) {
    return false;
  }
  const CommandEntry& outputOn = run_.commands.Definition().Commands.OutputOn;
  const int failed = SendToAll([&](int) { return outputOn.Template; }, outputOn.Wait);
  if (failed >= 0) {
    run_.state.OutputInDoubt = true;
    ShowCommunicationError(run_, failed, PromptIcon::Critical);
    return false;
  }
  if (failed == kBrokenOff) {
    // Some are on, some are not: together with the stop all go off.
    SetOutput(false, SendToEach(run_, run_.commands.Definition().Commands.OutputOff) < 0);
    return false;
  }
  SetOutput(true, true);
  return !stopWaits_;
}

bool RunControl::Start() {
  AppState& state = run_.state;
  if (state.RunState == RunState::Running) return false;
  const bool resume = state.RunState == RunState::Held;
  if (!state.OutputOn && !SwitchOutputsForStart()) return false;

  const CommandEntry& start = run_.commands.Definition().Commands.Start;
  const int failed = resume ? SendToAll([](int) { return std::string(kResumeCommand); }, kResumeWait)
                            : SendToAll([&](int) { return start.Template; }, start.Wait);
  if (failed >= 0) return FailRun(failed);
  if (stopWaits_) return false;

  if (resume) {
    measure_.ScrollToStep();
    SetRunState(state, RunState::Running);
    measure_.MeasureReStart();
  } else {
    const std::uint32_t endCount = measure_.EndCount();
    const int step = queries_.StepQuery(0);
    if (measure_.EndCount() != endCount) {
      DoubtOutput(state);
      state.MayStillRun = true;
      return false;
    }
    state.CurrentStep = static_cast<std::int16_t>(step);
    SetRunState(state, RunState::Running);
    measure_.MeasureStart();
  }
  return true;
}

bool RunControl::Stop() {
  AppState& state = run_.state;
  const bool unknown = state.MayStillRun;
  if (unknown && !run_.commands.Online() && !(reopen_ && reopen_())) return false;
  const CommandTable& table = run_.commands.Definition().Commands;
  const int failed = SendToEach(run_, table.Stop);
  if (failed >= 0) {
    state.MayStillRun = true;
    SayFailure(failed);
    return false;
  }
  state.MayStillRun = false;
  measure_.MarkEndedWell();
  measure_.EndRun();
  // The instrument clears its run status when it is read; nobody needs the answer.
  std::string discarded;
  const std::int32_t address = run_.commands.SelectInstrument(0);
  if (!Failed(run_.commands.SendCommand(address, table.Status.Template, table.Status.Wait))) {
    run_.commands.ReceiveReply(address, discarded);
  }
  // What became of the output meanwhile nobody has seen.
  if (unknown) state.OutputOn = queries_.OutputQuery(0) == 1;
  return true;
}

bool RunControl::Hold() {
  if (run_.state.RunState != RunState::Running) return false;
  const CommandEntry& hold = run_.commands.Definition().Commands.Hold;
  const int failed = SendToAll([&](int) { return hold.Template; }, hold.Wait);
  if (failed >= 0) return FailRun(failed);
  SetRunState(run_.state, RunState::Held);
  measure_.MeasureHold();
  return true;
}

std::string RunControl::BranchCommand(int instrument, int branchChannel) const {
  // The template's digit names an entry of the branch table; the person's branch channel takes its place.
  std::string command = run_.commands.Definition().Commands.Branch.Template;
  constexpr std::string_view kBranchStep = "$BNHSTP";
  const std::size_t at = command.find('$');
  if (at != std::string::npos && command.compare(at, kBranchStep.size(), kBranchStep) == 0) {
    const std::size_t digit = at + kBranchStep.size();
    if (digit < command.size() && command[digit] >= '0' && command[digit] <= '9') {
      command[digit] = static_cast<char>('0' + branchChannel - 1);
    }
  }
  const std::vector<ChannelTab> tabs = ChannelTabs(run_.state);
  std::int16_t channel = 0;
  while (channel < static_cast<std::int16_t>(tabs.size()) &&
         tabs[static_cast<std::size_t>(channel)].Device != instrument) {
    ++channel;
  }
  ExpandCommandTemplate(command, channel, run_.state.CurrentStep, run_.sequence, tabs);
  return command;
}

bool RunControl::Branch() {
  AppState& state = run_.state;
  const StepRow* row = CurrentStepRow(run_);
  const int channel = std::exchange(pressedChannel_, std::nullopt).value_or(run_.sequence.BranchChannel);
  if (state.RunState != RunState::Running || !row) return false;
  const bool listed = channel >= 1 && channel <= kBranchEntries;
  const std::int16_t target =
      listed ? row->BranchStep[static_cast<std::size_t>(channel - 1)] : std::int16_t{0};
  if (target == 0) {
    run_.display.ShowNotice(NoticeLevel::Warning, run_.catalogue.GetResString(TextId::BranchWithoutTarget,
                                                                              {std::to_string(channel)}));
    return false;
  }
  state.BranchRequested = true;
  state.BranchTarget = target;
  const std::int32_t wait = run_.commands.Definition().Commands.Branch.Wait;
  const int failed = SendToAll([&](int instrument) { return BranchCommand(instrument, channel); }, wait);
  if (failed >= 0) return FailRun(failed);
  return true;
}

bool RunControl::SwitchOutput(bool on) {
  const bool unknown = run_.state.MayStillRun || run_.state.OutputInDoubt;
  if (unknown && !run_.commands.Online() && !(reopen_ && reopen_())) return false;
  const CommandTable& table = run_.commands.Definition().Commands;
  const int failed = on ? SendToAll([&](int) { return table.OutputOn.Template; }, table.OutputOn.Wait)
                        : SendToEach(run_, table.OutputOff);
  if (failed >= 0) {
    run_.state.OutputInDoubt = true;
    ShowCommunicationError(run_, failed, PromptIcon::Critical);
    return false;
  }
  SetOutput(on, true);
  return true;
}

void RunControl::SetOutput(bool on, bool taken) {
  run_.state.OutputOn = on && taken;
  // Without a connection nobody took it.
  if (run_.commands.Online() || !taken) run_.state.OutputInDoubt = !taken;
}

void RunControl::PressStop() {
  AppState& state = run_.state;
  // Takes back what would go on, not what makes safe.
  if (afterTick_ != Run::OutputOff) afterTick_.reset();
  if (current_) {
    if (*current_ == Run::Stop) return;
    state.PendingRequest = PendingRequest::Stop;
    stopWaits_ = true;
  } else if (activity_.Exchanging()) {
    stopWaits_ = state.MayStillRun;
  } else if (state.RunState == RunState::Running ||
             (state.RunState == RunState::Held && activity_.Under(Work::Tick))) {
    state.PendingRequest = PendingRequest::Stop;
    stopWaits_ = true;
  } else if (state.MayStillRun && activity_.Under(Work::Tick)) {
    stopWaits_ = true;
  } else if (state.RunState == RunState::Held || state.MayStillRun) {
    RunCommand(Run::Stop);
  }
}

void RunControl::PressAtNextTick(PendingRequest request) {
  AppState& state = run_.state;
  if (state.PendingRequest == PendingRequest::Stop) return;
  // Without a running run no tick carries it out; kept, it would strike when the run resumes.
  if (state.RunState != RunState::Running && !activity_.Commanding()) return;
  state.PendingRequest = request;
  // The field can be changed before the tick.
  if (request == PendingRequest::Branch) pressedChannel_ = run_.sequence.BranchChannel;
}

void RunControl::PressAtOnce(Run command) {
  const AppState& state = run_.state;
  const bool makesSafe = command == Run::OutputOff && OutputMayBeOn(state);
  if (state.OperationMode != OperationMode::Execution && !makesSafe) return;
  // What makes safe waits for a Stop, Hold or Branch that is being carried out.
  if (command == Run::OutputOff && activity_.Under(Work::Command)) outputOffWaits_ = true;
  if (activity_.CommandUnderWay()) return;
  if (command == Run::Start && state.RunState == RunState::Running) return;
  if (activity_.Under(Work::Tick)) {
    afterTick_ = command;
  } else {
    RunCommand(command);
  }
}

void RunControl::MenuItem(int item) {
  switch (item) {
    case 0:
      PressAtOnce(Run::Start);
      break;
    case 1:
      PressStop();
      break;
    case 2:
      PressAtNextTick(PendingRequest::Hold);
      break;
    case 3:
      PressAtNextTick(PendingRequest::Branch);
      break;
    case 4:
      PressAtOnce(Run::OutputOn);
      break;
    case 5:
      PressAtOnce(Run::OutputOff);
      break;
    default:
      break;
  }
}

void RunControl::TickEnded() {
  std::optional<Run> waiting = std::exchange(afterTick_, std::nullopt);
  AppState& state = run_.state;
  const bool stops = stopWaits_ && state.RunState != RunState::Running;
  if (stops) {
    stopWaits_ = false;
    state.PendingRequest = PendingRequest::None;
    if (state.RunState == RunState::Held || state.MayStillRun) RunCommand(Run::Stop);
    if (waiting != Run::OutputOff) waiting.reset();
  }
  if (waiting && (state.OperationMode == OperationMode::Execution || state.MayStillRun)) {
    RunCommand(*waiting);
  }
}

void RunControl::StopForEnd() {
  const AppState& state = run_.state;
  const bool going = state.RunState != RunState::Stopped || activity_.Under(Work::Start);
  if (!going && !state.MayStillRun) return;
  if (state.MayStillRun && !run_.commands.Online() && reopen_) reopen_();
  for (int i = 0; run_.commands.Online() && i < state.InstrumentCount; ++i) {
    const std::int32_t address = run_.commands.SelectInstrument(i);
    run_.commands.Gp().GP_Time_Out(kTimeOut300ms);
    run_.commands.SendCommand(address, run_.commands.Definition().Commands.Stop.Template, 0);
  }
}

void RunControl::ExchangeEnded() {
  if (!stopWaits_ || !run_.state.MayStillRun) return;
  if (activity_.CommandUnderWay() || activity_.Under(Work::Tick)) return;
  RunCommand(Run::Stop);
}

}  // namespace corlune
