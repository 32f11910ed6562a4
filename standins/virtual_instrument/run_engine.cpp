#include "standins/virtual_instrument/run_engine.h"

#include <algorithm>
#include <cmath>

namespace corlune {
namespace {

constexpr double kShortestStepMs = 1;
// Milliseconds below which two points in time are one: step times are decimal fractions.
constexpr double kTimeTolerance = 1e-6;

}  // namespace

void RunEngine::Load(const CompiledSequence& sequence) {
  sequence_ = sequence;
  grace_ = 0;
}

void RunEngine::Unload() {
  sequence_.reset();
  grace_ = 0;
}

double RunEngine::PeriodMilliseconds(int slot) const {
  const double frequency = sequence_->Cells[0][static_cast<std::size_t>(slot)].Frequency.Value;
  return frequency > 0 ? 1000 / frequency : 0;
}

double RunEngine::StepMilliseconds(int slot) const {
  const SeqStep& step = sequence_->Steps[static_cast<std::size_t>(slot)];
  double time = step.StepTime * 1000;
  if (step.StopPhaseOn != 0) {
    const double period = PeriodMilliseconds(slot);
    time = std::max(time, period) + period / 360 * step.StopPhase;
  }
  return std::max(time, kShortestStepMs);
}

void RunEngine::EnterStep(int slot) {
  if (slot < 0 || slot >= kSequenceSlots || IsUnsetSlot(*sequence_, slot)) {
    Finish(true);
    return;
  }
  slot_ = slot;
  spent_ = 0;
  duration_ = StepMilliseconds(slot);
  heldAtEnd_ = false;
}

void RunEngine::Finish(bool grace) {
  phase_ = RunPhase::Idle;
  stopAsked_ = false;
  heldAtEnd_ = false;
  grace_ = grace ? kEndGraceMs : 0;
}

void RunEngine::Advance(std::uint32_t milliseconds) {
  double left = milliseconds;
  while (phase_ == RunPhase::Running && spent_ + left >= duration_ - kTimeTolerance) {
    left = std::max(0.0, left - (duration_ - spent_));
    EndStep();
  }
  if (phase_ == RunPhase::Running) {
    spent_ += left;
  } else if (phase_ == RunPhase::Idle) {
    const double grace = grace_ - left;
    grace_ = grace > 0 ? static_cast<std::uint32_t>(std::ceil(grace - kTimeTolerance)) : 0;
  }
}

void RunEngine::EndStep() {
  spent_ = duration_;
  if (stopAsked_) {
    Finish(false);
    return;
  }
  if (sequence_->Steps[static_cast<std::size_t>(slot_)].AutoHold != 0) {
    phase_ = RunPhase::Held;
    heldAtEnd_ = true;
    return;
  }
  LeaveStep();
}

void RunEngine::LeaveStep() {
  const SeqStep& step = sequence_->Steps[static_cast<std::size_t>(slot_)];
  int& taken = jumpsTaken_[static_cast<std::size_t>(slot_)];
  if (step.StateBranchOn != 0 && stateLine_ && sequence_->StateBranchInput && step.StateBranchStep > 0) {
    EnterStep(step.StateBranchStep - 1);
  } else if (step.JumpOn != 0 && step.JumpTo > 0 && (!step.JumpCounted || taken < step.JumpCount)) {
    if (step.JumpCounted) ++taken;
    EnterStep(step.JumpTo - 1);
  } else {
    taken = 0;  // an outer loop counts anew
    if (step.Stop) {
      Finish(true);
    } else {
      EnterStep(slot_ + 1);
    }
  }
}

bool RunEngine::Start() {
  if (!Loaded() || phase_ != RunPhase::Idle) return false;
  phase_ = RunPhase::Running;
  stopAsked_ = false;
  grace_ = 0;
  jumpsTaken_.fill(0);
  EnterStep(sequence_->StartStep - 1);
  return true;
}

bool RunEngine::Hold() {
  if (phase_ != RunPhase::Running) return false;
  phase_ = RunPhase::Held;
  return true;
}

bool RunEngine::Resume() {
  if (phase_ != RunPhase::Held) return false;
  phase_ = RunPhase::Running;
  if (heldAtEnd_) LeaveStep();
  return true;
}

bool RunEngine::Branch(int step) {
  if (phase_ != RunPhase::Running || stopAsked_) return false;
  EnterStep(step - 1);
  return true;
}

bool RunEngine::EventBranch() {
  if (phase_ != RunPhase::Running) return false;
  const SeqStep& step = sequence_->Steps[static_cast<std::size_t>(slot_)];
  if (step.EventBranchOn == 0 || step.EventBranchStep <= 0) return false;
  return Branch(step.EventBranchStep);
}

void RunEngine::Stop(bool atOnce) {
  if (phase_ == RunPhase::Idle) {
    grace_ = 0;
    return;
  }
  const SeqStep& step = sequence_->Steps[static_cast<std::size_t>(slot_)];
  const double period = PeriodMilliseconds(slot_);
  if (atOnce || phase_ == RunPhase::Held || step.StopPhaseOn == 0 || period <= 0) {
    Finish(false);
    return;
  }
  const double phase = period / 360 * step.StopPhase;
  const double periods = std::ceil((spent_ - phase) / period - kTimeTolerance);
  duration_ = phase + std::max(periods, 0.0) * period;
  stopAsked_ = true;
}

int RunEngine::Condition() const {
  if (!Loaded()) return 0;
  if (phase_ == RunPhase::Held) return 8;
  if (phase_ == RunPhase::Running) return stopAsked_ ? 2 : 4;
  return grace_ > 0 ? 4 : 2;
}

}  // namespace corlune
