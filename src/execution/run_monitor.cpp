#include "execution/run_monitor.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace corlune {

namespace {
constexpr std::int32_t kOutputsSettle = 1500;  // ms between the last step and the check of the outputs
constexpr double kShortestMarkedStep = 100;    // ms
constexpr int kStatusStop = 2;
constexpr int kStatusRunning = 4;
constexpr int kStatusHeld = 8;
constexpr std::int16_t kTermWithMessage = 2;
}  // namespace

void RunMonitor::Tick() {
  if (activity_.CommandUnderWay() || activity_.Under(Work::Tick)) return;
  if (!measure_.Monitoring() || run_.state.RunState != RunState::Running) return;
  {
    const WorkGuard ticking(activity_, Work::Tick);
    endCountAtStart_ = measure_.EndCount();
    RunSteps();
  }
  control_.TickEnded();
}

void RunMonitor::RunSteps() {
  AppState& state = run_.state;
  const std::uint32_t now = run_.commands.Clock().Now();
  if (state.BranchRequested) state.StepDeadline = now;
  CountElapsed(now);
  ShowElapsed();

  Next next = Poll();
  if (next == Next::Requests) next = CarryOutRequest();
  if (next == Next::EndOfTick) return;
  FollowStep();
  MoveMarker();
}

RunMonitor::Next RunMonitor::Poll() {
  if (!measure_.PollDue()) return Next::Requests;
  Next next = PollOutput();
  if (next == Next::GoOn) next = PollStep();
  if (next == Next::GoOn) next = PollStatus();
  return next;
}

RunMonitor::Next RunMonitor::PollOutput() {
  // A failed query is no reason to believe the output off: the step query finds out more.
  if (queries_.OutputQuery(0) != 0) return Next::GoOn;
  run_.state.OutputOn = false;
  RefreshBoth(run_);
  return Next::EndOfTick;
}

RunMonitor::Next RunMonitor::PollStep() {
  const std::uint32_t endCount = measure_.EndCount();
  step_ = queries_.StepQuery(0);
  if (measure_.EndCount() != endCount) {
    DoubtOutput(run_.state);
    RefreshBoth(run_);
    return Next::EndOfTick;
  }
  if (RunEnded()) return Next::EndOfTick;
  if (step_ == kNoStep) return AfterLastStep();
  if (step_ < 0) {
    control_.RunCommand(Run::Stop);
    measure_.MarkEndedBadly();
    return Next::EndOfTick;
  }
  const bool beyond = step_ > run_.sequence.StepCount && !RunsHeldSequence(run_.state);
  return beyond ? BeyondLastStep() : Next::GoOn;
}

RunMonitor::Next RunMonitor::AfterLastStep() {
  ShowElapsed();
  run_.commands.DelayMs(kOutputsSettle);
  // The others run on their own clocks; the run is over when the first one says so.
  if (const int failed = SendToEach(run_, run_.commands.Definition().Commands.Stop, 1); failed >= 0) {
    DoubtOutput(run_.state);
    run_.state.MayStillRun = true;
    ShowCommunicationError(run_, failed, PromptIcon::Critical);
    measure_.MeasureEnd();
    RefreshBoth(run_);
    return Next::EndOfTick;
  }
  for (int i = 0; i < run_.state.InstrumentCount; ++i) {
    if (queries_.OutputQuery(i, OutputCheck::AfterEnd) == 1) continue;
    run_.state.OutputOn = false;
    if (!RunEnded()) measure_.MeasureEnd();
    RefreshBoth(run_);
    return Next::EndOfTick;
  }
  measure_.MarkEndedWell();
  measure_.MeasureEnd();
  RefreshBoth(run_);
  ShowMessage(run_.prompts, run_.catalogue, TextId::ExecutionEnded, PromptIcon::Information);
  return Next::EndOfTick;
}

RunMonitor::Next RunMonitor::BeyondLastStep() {
  // Stopping moves CurrentStep away from the step that ran last.
  const StepRow* last = CurrentStepRow(run_);
  const bool tellEnd = last && last->StepTerm == kTermWithMessage;
  if (control_.RunCommand(Run::Stop) && tellEnd) {
    ShowMessage(run_.prompts, run_.catalogue, TextId::ExecutionEnded, PromptIcon::Information);
  } else {
    measure_.MarkEndedBadly();
  }
  return Next::EndOfTick;
}

RunMonitor::Next RunMonitor::PollStatus() {
  AppState& state = run_.state;
  const int status = queries_.StatusQuery(0);
  const std::uint32_t now = run_.commands.Clock().Now();
  if (RunEnded()) return Next::EndOfTick;
  // The queries may have waited for a late instrument; the step is told with the time of its answer.
  CountElapsed(now);
  switch (status) {
    case kStatusStop:
      state.PendingRequest = PendingRequest::Stop;
      return Next::Requests;
    case kStatusRunning: {
      state.StepDeadline = now;
      const StepRow* row = CurrentStepRow(run_);
      if (!row || row->StepTerm != kTermWithMessage) ShowElapsed();
      if (step_ != state.CurrentStep) state.StepChangedAt = now;
      measure_.MoveTo(static_cast<std::int16_t>(step_));
      return Next::Requests;
    }
    case kStatusHeld:
      ShowElapsed();
      SetRunState(state, RunState::Held);
      RefreshBoth(run_);
      measure_.MeasureHold();
      return Next::Follow;
    default:
      return Next::Requests;
  }
}

RunMonitor::Next RunMonitor::CarryOutRequest() {
  // Taken before the command, so that a press during its waits is not lost.
  switch (std::exchange(run_.state.PendingRequest, PendingRequest::None)) {
    case PendingRequest::Stop:
      control_.RunCommand(Run::Stop);
      return Next::EndOfTick;
    case PendingRequest::Hold:
      return HoldNow();
    case PendingRequest::Branch:
      control_.RunCommand(Run::Branch);
      return Next::EndOfTick;
    case PendingRequest::None:
      break;
  }
  return Next::Follow;
}

RunMonitor::Next RunMonitor::HoldNow() {
  control_.RunCommand(Run::Hold);
  if (RunEnded()) return Next::EndOfTick;
  const int step = queries_.StepQuery(0);
  if (RunEnded()) return Next::EndOfTick;
  if (step >= 1) {
    measure_.HighlightCurrent(false);
    measure_.HighlightCurrent(true);
  }
  return Next::Follow;
}

void RunMonitor::FollowStep() {
  AppState& state = run_.state;
  const std::uint32_t now = run_.commands.Clock().Now();
  if (!TickReached(now, state.StepDeadline)) return;
  if (std::exchange(state.BranchRequested, false)) {
    const auto target = static_cast<std::int16_t>(IndexOf(StepNumber{state.BranchTarget}).value);
    if (target != state.CurrentStep) {
      state.StepChangedAt = now;
      measure_.MoveTo(target);
    }
    RefreshBoth(run_);  // the branch button goes dark
  }
  measure_.ScrollToStep();
  if (state.SequenceViewShown) run_.view.PicDisp();
}

void RunMonitor::MoveMarker() {
  if (!run_.state.SequenceViewShown) return;
  const StepRow* row = CurrentStepRow(run_);
  if (row && row->StepRunTime > kShortestMarkedStep) run_.view.MoveShape(run_.commands.Clock().Now());
}

void RunMonitor::CountElapsed(std::uint32_t now) {
  AppState& state = run_.state;
  // Past its maximum the difference turns negative, and positive again after as long; the maximum stays.
  constexpr std::int32_t kLongest = std::numeric_limits<std::int32_t>::max();
  const std::int32_t elapsed = TicksSince(now, state.RunStartTime);
  state.ElapsedTime = elapsed >= 0 && state.ElapsedTime != kLongest ? elapsed : kLongest;
}

void RunMonitor::ShowElapsed() {
  run_.display.ShowElapsedTime(run_.state.ElapsedTime);
}

}  // namespace corlune
