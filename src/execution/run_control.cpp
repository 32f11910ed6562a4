#include "execution/run_control.h"

#include <string>
#include <utility>

#include "commands/expand_template.h"
#include "core/flag_guard.h"
#include "sequence/channel_tabs.h"

namespace corlune {

namespace {

constexpr const char* kResumeCommand = ":TRIG1:SEL:EXEC RES";
constexpr std::int32_t kResumeWait = 400;  // ms
constexpr int kRowsBelow = 9;              // with more steps following, the grids scroll to the step

// Counts a command for as long as it runs.
class DepthGuard {
 public:
  explicit DepthGuard(int& depth) : depth_(depth) { ++depth_; }
  ~DepthGuard() { --depth_; }
  DepthGuard(const DepthGuard&) = delete;
  DepthGuard& operator=(const DepthGuard&) = delete;

 private:
  int& depth_;
};

}  // namespace

RunControl::RunControl(RunContext run, Measure& measure, RunQueries& queries, RunActivity& activity,
                       std::function<bool()> download)
    : run_(run), measure_(measure), queries_(queries), activity_(activity), download_(std::move(download)) {}

bool RunControl::SetOperationMode(OperationMode mode) {
  AppState& state = run_.state;
  if (BusyOrRunning()) return false;
  if (mode == OperationMode::Execution) {
    if (run_.sequence.StepCount == 0) {
      ShowMessage(run_.prompts, run_.catalogue, 9204, PromptIcon::Information);
      return false;
    }
    const FlagGuard guard(activity_.modeChange);
    run_.commands.SelectInstrument(0);
    if (!download_()) return false;
    state.OutputOn = queries_.OutputQuery(0) == 1;
    state.OperationMode = OperationMode::Execution;
    SetRunState(state, RunState::Stopped);
  } else {
    state.OperationMode = OperationMode::Edit;
  }
  run_.display.ShowModeLayout(static_cast<int>(mode));
  RefreshBoth(run_);
  return true;
}

bool RunControl::RunCommand(Run command) {
  if (activity_.CommandUnderWay()) return false;
  const DepthGuard guard(activity_.commandDepth);
  stopAfterCommand_ = false;
  current_ = command;
  const bool done = Execute(command);
  if (std::exchange(stopAfterCommand_, false)) {
    run_.state.PendingRequest = PendingRequest::None;
    current_ = Run::Stop;
    Stop();
  }
  current_.reset();
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
    const std::int32_t address = run_.commands.SelectInstrument(i);
    if (Failed(run_.commands.SendCommand(address, command(i), wait))) return i;
  }
  return -1;
}

bool RunControl::FailRun(int instrument) {
  ShowCommunicationError(run_, instrument, PromptIcon::Critical);
  run_.state.OutputOn = false;
  measure_.EndRun();
  RefreshBoth(run_);
  return false;
}

bool RunControl::SwitchOutputsForStart() {
  if (ShowMessage(run_.prompts, run_.catalogue, 9200, PromptIcon::Information, PromptButtons::OkCancel) !=
      PromptAnswer::Ok) {
    return false;
  }
  const CommandEntry& outputOn = run_.commands.Definition().Commands.OutputOn;
  const int failed = SendToAll([&](int) { return outputOn.Template; }, outputOn.Wait);
  if (failed >= 0) {
    ShowCommunicationError(run_, failed, PromptIcon::Critical);
    return false;
  }
  run_.state.OutputOn = true;
  return true;
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

  if (resume) {
    const int step = state.CurrentStep;
    const int count = run_.sequence.StepCount;
    if (step >= 1 && step != count - 1 && count - step > kRowsBelow) run_.display.ScrollTo(GridRow{step});
    SetRunState(state, RunState::Running);
    measure_.MeasureReStart();
  } else {
    const std::uint32_t endCount = measure_.EndCount();
    const int step = queries_.StepQuery(0);
    if (measure_.EndCount() != endCount) {
      state.OutputOn = false;
      RefreshBoth(run_);
      return false;
    }
    state.CurrentStep = static_cast<std::int16_t>(step);
    SetRunState(state, RunState::Running);
    measure_.MeasureStart();
  }
  RefreshBoth(run_);
  return true;
}

bool RunControl::Stop() {
  const CommandTable& table = run_.commands.Definition().Commands;
  const int failed = SendToAll([&](int) { return table.Stop.Template; }, table.Stop.Wait);
  if (failed >= 0) return FailRun(failed);
  measure_.MarkEndedWell();
  measure_.EndRun();
  // The instrument clears its run status when it is read; nobody needs the answer.
  std::string discarded;
  const std::int32_t address = run_.commands.SelectInstrument(0);
  if (!Failed(run_.commands.SendCommand(address, table.Status.Template, table.Status.Wait))) {
    run_.commands.ReceiveReply(address, discarded);
  }
  RefreshBoth(run_);
  return true;
}

bool RunControl::Hold() {
  if (run_.state.RunState != RunState::Running) return false;
  const CommandEntry& hold = run_.commands.Definition().Commands.Hold;
  const int failed = SendToAll([&](int) { return hold.Template; }, hold.Wait);
  if (failed >= 0) return FailRun(failed);
  SetRunState(run_.state, RunState::Held);
  measure_.MeasureHold();
  RefreshBoth(run_);
  return true;
}

std::string RunControl::BranchCommand(int instrument) const {
  // The template's digit names an entry of the branch table; the person's branch channel takes its place.
  std::string command = run_.commands.Definition().Commands.Branch.Template;
  constexpr std::string_view kBranchStep = "$BNHSTP";
  const std::size_t at = command.find('$');
  if (at != std::string::npos && command.compare(at, kBranchStep.size(), kBranchStep) == 0) {
    const std::size_t digit = at + kBranchStep.size();
    if (digit < command.size() && command[digit] >= '0' && command[digit] <= '9') {
      command[digit] = static_cast<char>('0' + run_.sequence.BranchChannel - 1);
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
  const int channel = run_.sequence.BranchChannel;
  if (state.RunState != RunState::Running || !row || channel < 1 || channel > kBranchEntries) return false;
  const std::int16_t target = row->BranchStep[static_cast<std::size_t>(channel - 1)];
  if (target == 0) return false;
  state.BranchRequested = true;
  state.BranchTarget = target;
  const std::int32_t wait = run_.commands.Definition().Commands.Branch.Wait;
  const int failed = SendToAll([this](int instrument) { return BranchCommand(instrument); }, wait);
  if (failed >= 0) return FailRun(failed);
  RefreshBoth(run_);
  return true;
}

bool RunControl::SwitchOutput(bool on) {
  const CommandTable& table = run_.commands.Definition().Commands;
  const CommandEntry& output = on ? table.OutputOn : table.OutputOff;
  run_.display.SetControlsEnabled(RunControls::Output, false);
  const int failed = SendToAll([&](int) { return output.Template; }, output.Wait);
  if (failed >= 0) {
    ShowCommunicationError(run_, failed, PromptIcon::Critical);
  } else {
    run_.state.OutputOn = on;
  }
  run_.display.SetControlsEnabled(RunControls::Output, true);
  RefreshBoth(run_);
  return failed < 0;
}

void RunControl::PressStop() {
  AppState& state = run_.state;
  if (activity_.commandDepth > 0) {
    if (current_ == Run::Stop) return;
    state.PendingRequest = PendingRequest::Stop;
    stopAfterCommand_ = true;
  } else if (activity_.CommandUnderWay()) {
    return;
  } else if (state.RunState == RunState::Running || (state.RunState == RunState::Held && activity_.inTick)) {
    state.PendingRequest = PendingRequest::Stop;
  } else if (state.RunState == RunState::Held) {
    RunCommand(Run::Stop);
  }
}

void RunControl::PressAtNextTick(PendingRequest request) {
  AppState& state = run_.state;
  if (state.PendingRequest == PendingRequest::Stop) return;
  // Without a running run no tick carries it out; kept, it would strike when the run resumes.
  if (state.RunState != RunState::Running && activity_.commandDepth == 0) return;
  state.PendingRequest = request;
}

void RunControl::PressAtOnce(Run command) {
  const AppState& state = run_.state;
  if (state.OperationMode != OperationMode::Execution || activity_.CommandUnderWay()) return;
  if (command == Run::Start && state.RunState == RunState::Running) return;
  if (activity_.inTick) {
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

void RunControl::Button(int index) {
  if (index == 0) {
    SetOperationMode(run_.state.OperationMode == OperationMode::Edit ? OperationMode::Execution
                                                                     : OperationMode::Edit);
  } else if (index == 5) {
    MenuItem(run_.state.OutputOn ? 5 : 4);
  } else if (index >= 1 && index <= 4) {
    MenuItem(index - 1);
  }
}

void RunControl::TickEnded() {
  const std::optional<Run> waiting = std::exchange(afterTick_, std::nullopt);
  AppState& state = run_.state;
  if (state.RunState == RunState::Held && state.PendingRequest == PendingRequest::Stop) {
    state.PendingRequest = PendingRequest::None;
    RunCommand(Run::Stop);
  } else if (waiting && state.OperationMode == OperationMode::Execution) {
    RunCommand(*waiting);
  }
}

}  // namespace corlune
