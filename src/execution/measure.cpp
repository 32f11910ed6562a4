#include "execution/measure.h"

#include <algorithm>
#include <utility>

namespace corlune {

namespace {
// Longer steps keep the deadline within the half range in which two ticks can be compared; the deadline is
// renewed at every poll anyway.
constexpr double kLongestDeadline = 1 << 30;
constexpr std::int32_t kPollInterval = 100;  // ms
constexpr int kRowsBelow = 9;                // following steps that need no scrolling
constexpr int kRowsShown = 10;               // rows kept visible above the last one
}  // namespace

std::uint32_t Measure::DeadlineFrom(std::uint32_t start) const {
  const StepRow* step = CurrentStepRow(run_);
  const double runTime = step ? std::clamp(step->StepRunTime, 0.0, kLongestDeadline) : 0.0;
  return start + static_cast<std::uint32_t>(runTime);
}

void Measure::HighlightCurrent(bool on) {
  if (CurrentStepRow(run_)) run_.display.HighlightRow(RowOf(StepIndex{run_.state.CurrentStep}), on);
}

void Measure::MoveTo(std::int16_t step) {
  HighlightCurrent(false);
  const bool moved = std::exchange(run_.state.CurrentStep, step) != step;
  HighlightCurrent(true);
  // The step's number alone is shown.
  if (moved && RunsHeldSequence(run_.state)) RefreshBoth(run_);
}

void Measure::ScrollToTop() {
  run_.display.ScrollTo(GridRow{1});
}

void Measure::ScrollToStep() {
  if (RunsHeldSequence(run_.state)) return;
  const int step = run_.state.CurrentStep;
  const int count = run_.sequence.StepCount;
  if (step < 1) {
    ScrollToTop();
  } else if (count - step > kRowsBelow) {
    run_.display.ScrollTo(GridRow{step});
  } else if (count > kRowsShown) {
    run_.display.ScrollTo(GridRow{count - kRowsShown});
  }
}

void Measure::MeasureStart() {
  AppState& state = run_.state;
  state.PendingRequest = PendingRequest::None;
  state.BranchRequested = false;
  if (CurrentStepRow(run_)) run_.display.ScrollTo(RowOf(StepIndex{state.CurrentStep}));
  HighlightCurrent(true);
  const std::uint32_t now = run_.commands.Clock().Now();
  state.RunStartTime = now;
  state.StepChangedAt = now;
  state.StepDeadline = DeadlineFrom(state.RunStartTime);
  state.ElapsedTime = 0;
  monitoring_ = true;
  endedWell_ = false;
  SwitchTimerOn();
  if (state.SequenceViewShown) run_.view.MeasureStart();
}

void Measure::MeasureReStart() {
  AppState& state = run_.state;
  const std::uint32_t now = run_.commands.Clock().Now();
  state.RunStartTime += now - state.HoldStartTime;
  state.StepChangedAt = now;
  state.StepDeadline = DeadlineFrom(state.RunStartTime);
  SwitchTimerOn();
  // A view that was opened during the hold follows from now on.
  if (state.SequenceViewShown) run_.view.MeasureStart();
}

void Measure::SwitchTimerOn() {
  timerOn_ = run_.commands.Clock().Now();
  lastPoll_.reset();
  run_.timer.Enable(true);
}

bool Measure::PollDue() {
  const std::uint32_t since = run_.commands.Clock().Now() - timerOn_;
  const std::uint32_t due = timerOn_ + since / kPollInterval * kPollInterval;
  if (lastPoll_ && TicksSince(due, *lastPoll_) < kPollInterval) return false;
  lastPoll_ = due;
  return true;
}

void Measure::MeasureHold() {
  if (run_.state.PendingRequest != PendingRequest::Stop) run_.state.PendingRequest = PendingRequest::None;
  run_.state.HoldStartTime = run_.commands.Clock().Now();
  run_.timer.Enable(false);
}

void Measure::MeasureEnd() {
  AppState& state = run_.state;
  const bool highlighted = std::exchange(monitoring_, false);
  ++endCount_;
  run_.timer.Enable(false);
  SetRunState(state, RunState::Stopped);
  state.PendingRequest = PendingRequest::None;
  state.BranchRequested = false;
  if (highlighted) HighlightCurrent(false);
  state.ElapsedTime = 0;
  run_.display.ShowElapsedTime(0);
  state.CurrentStep = static_cast<std::int16_t>(run_.sequence.StartStep + 1);
  ScrollToTop();
  if (state.SequenceViewShown) run_.view.MeasureEnd();
}

void Measure::EndRun() {
  if (monitoring_) {
    MeasureEnd();
  } else {
    SetRunState(run_.state, RunState::Stopped);
  }
}

}  // namespace corlune
