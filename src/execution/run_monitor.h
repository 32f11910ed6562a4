// RunMonitor: what happens every 100 ms while a sequence runs. One Tick() polls instrument 0, moves the
// highlight, shows the elapsed time, carries out deferred commands and notices the end of the run.
#pragma once

#include <cstdint>

#include "core/activity.h"
#include "execution/measure.h"
#include "execution/queries.h"
#include "execution/run_control.h"
#include "execution/run_state.h"

namespace corlune {

class RunMonitor {
 public:
  RunMonitor(RunContext run, Measure& measure, RunQueries& queries, RunControl& control, Activity& activity)
      : run_(run), measure_(measure), queries_(queries), control_(control), activity_(activity) {}

  // See Measure::EndedWell.
  bool EndedWell() const { return measure_.EndedWell(); }

  // The timer's handler. Pumps events and may show messages. Does nothing inside another tick, inside a
  // command, and when no run is being followed (a timer event that was already waiting).
  void Tick();

 private:
  enum class Next { GoOn, Requests, Follow, EndOfTick };

  void RunSteps();
  Next Poll();
  Next PollOutput();
  Next PollStep();
  Next AfterLastStep();
  Next BeyondLastStep();
  Next PollStatus();
  Next CarryOutRequest();
  Next HoldNow();
  void FollowStep();
  void MoveMarker();
  void CountElapsed(std::uint32_t now);
  void ShowElapsed();
  bool RunEnded() const { return measure_.EndCount() != endCountAtStart_; }

  RunContext run_;
  Measure& measure_;
  RunQueries& queries_;
  RunControl& control_;
  Activity& activity_;
  std::uint32_t endCountAtStart_ = 0;
  int step_ = 0;  // the reply of this tick's step query
};

}  // namespace corlune
