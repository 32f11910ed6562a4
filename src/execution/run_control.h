// RunControl: edit and execution mode, the six run commands, and the menu and buttons that lead to them.
// Everything here pumps events while commands wait. A command never starts inside another one, nor inside a
// tick of the monitor: such a press is deferred or ignored, see MenuItem.
#pragma once

#include <functional>
#include <optional>

#include "execution/measure.h"
#include "execution/queries.h"
#include "execution/run_activity.h"
#include "execution/run_state.h"

namespace corlune {

enum class Run : int { Start = 0, Stop = 1, Hold = 2, Branch = 3, OutputOn = 4, OutputOff = 5 };

class RunControl {
 public:
  // `download` sends the sequence; false when it failed or was cancelled.
  RunControl(RunContext run, Measure& measure, RunQueries& queries, RunActivity& activity,
             std::function<bool()> download);

  // Execution: needs a step (else message 9204) and a successful download. Refused while anything is under
  // way and while a run is going or held. True when the mode was entered.
  bool SetOperationMode(OperationMode mode);

  // Carries out a command at once, on every instrument. False when it was refused (another command under
  // way, or nothing to do in this run state), cancelled or failed; failures have been shown.
  bool RunCommand(Run command);

  // A press on run menu item 0..5 (Run's order).
  //   Stop: held, at once; running, at the monitor's next tick; during a command, when that command ends.
  //   Hold, Branch: at the monitor's next tick; ignored unless running, and behind a waiting stop.
  //   Start, Output: at once; during a tick, at its end; during a command, ignored.
  // Start and Output need execution mode.
  void MenuItem(int item);
  // A press on button 0..5: change mode, Start, Stop, Hold, Branch, Output on/off.
  void Button(int index);

  // Something is under way that a close request, a file command or a mode change must not interrupt.
  bool Busy() const { return activity_.Busy(); }
  // Also while a run is going or held.
  bool BusyOrRunning() const { return Busy() || run_.state.RunState != RunState::Stopped; }

  // The monitor calls this at the end of each tick: carries out what was deferred to it.
  void TickEnded();

 private:
  void PressStop();
  void PressAtNextTick(PendingRequest request);
  void PressAtOnce(Run command);
  bool Execute(Run command);
  bool Start();
  bool SwitchOutputsForStart();
  bool Stop();
  bool Hold();
  bool Branch();
  bool SwitchOutput(bool on);
  // Sends to every instrument in index order; the index of the first that fails, -1 when none does.
  int SendToAll(const std::function<std::string(int)>& command, std::int32_t wait);
  bool FailRun(int instrument);
  std::string BranchCommand(int instrument) const;

  RunContext run_;
  Measure& measure_;
  RunQueries& queries_;
  RunActivity& activity_;
  std::function<bool()> download_;
  std::optional<Run> current_;     // the command under way
  bool stopAfterCommand_ = false;  // a stop pressed meanwhile; outlives what clears PendingRequest
  std::optional<Run> afterTick_;
};

}  // namespace corlune
