// Measure: the run clock, the highlight of the running step and the monitor's timer.
#pragma once

#include <cstdint>
#include <optional>

#include "execution/run_state.h"

namespace corlune {

class Measure {
 public:
  explicit Measure(RunContext run) : run_(run) {}

  // Begins a fresh run at CurrentStep in both windows: first highlight, clock from 0, timer on. Clears
  // PendingRequest and BranchRequested.
  void MeasureStart();
  // Goes on after a hold; the time held does not count. Timer on.
  void MeasureReStart();
  // Timer off while the run is held; notes when the hold began. A Hold or Branch that is still waiting is
  // dropped: kept, it would strike when the run resumes.
  void MeasureHold();
  // Ends the run in both windows: timer off, stopped, highlight and elapsed time taken back, grids at the
  // top. Clears PendingRequest and BranchRequested. CurrentStep becomes StartStep + 1.
  void MeasureEnd();

  // MeasureEnd when a run is monitored or held, else only the stopped state.
  void EndRun();

  // The run has ended as it should: behind its last step, or by a stop that reached every instrument. The
  // next MeasureStart forgets it.
  void MarkEndedWell() { endedWell_ = true; }
  // The instrument spoke of a step that the sequence does not have, and was stopped for it.
  void MarkEndedBadly() { endedWell_ = false; }
  bool EndedWell() const { return endedWell_; }

  // A run is being followed or held: MeasureStart was called, MeasureEnd not yet.
  bool Monitoring() const { return monitoring_; }
  // How often MeasureEnd was called; a tick that sees it grow skips its rest.
  std::uint32_t EndCount() const { return endCount_; }

  // Moves the highlight to `step` and makes it CurrentStep.
  void MoveTo(std::int16_t step);
  void HighlightCurrent(bool on);
  void ScrollToTop();
  // Follows CurrentStep with the step grids: at the top as long as more than nine steps follow, else the last
  // ten rows.
  void ScrollToStep();

  // The monitor may poll now: at most once in each 100 ms counted from when the timer was switched on, so
  // that a tick that comes a little late does not cost the next one. Notes the poll.
  bool PollDue();

 private:
  void SwitchTimerOn();
  std::uint32_t DeadlineFrom(std::uint32_t start) const;

  RunContext run_;
  std::uint32_t timerOn_ = 0;              // tick at which the timer was switched on
  std::optional<std::uint32_t> lastPoll_;  // tick at which the last poll was due; none: poll at once
  bool monitoring_ = false;
  bool endedWell_ = false;
  std::uint32_t endCount_ = 0;
};

}  // namespace corlune
