// RunControl: edit and execution mode, the six run commands, and the menu and buttons that lead to them.
// Everything here pumps events while commands wait. A command never starts inside another one, nor inside a
// tick of the monitor: such a press is deferred or ignored, see MenuItem.
#pragma once

#include <functional>
#include <optional>

#include "core/activity.h"
#include "execution/measure.h"
#include "execution/queries.h"
#include "execution/run_state.h"

namespace corlune {

enum class Run : int { Start = 0, Stop = 1, Hold = 2, Branch = 3, OutputOn = 4, OutputOff = 5 };

class RunControl {
 public:
  // `download` sends the sequence; false when it failed or was cancelled.
  // `reopen` opens the connection again after it was lost; false, with its message shown, when it cannot.
  RunControl(RunContext run, Measure& measure, RunQueries& queries, Activity& activity,
             std::function<bool()> download, std::function<bool()> reopen = {});

  // Execution: needs a step (else message StepNeeded) and a successful download. Refused while anything is
  // under way and while a run is going or held. True when the mode was entered. Asks AgreeToGoOn first.
  bool SetOperationMode(OperationMode mode);

  // Carries out a command at once, on every instrument. False when it was refused (another command under
  // way, or nothing to do in this run state), cancelled or failed; failures have been shown. Stop and Output
  // OFF go to every instrument even when one fails. A Start, resume, Hold or Branch that fails at one stops
  // all. While AppState::MayStillRun, Start and Output ON are refused, and Stop is sent whatever the run
  // state.
  bool RunCommand(Run command);

  // While AppState::MayStillRun: asks whether to go on without a stop (GoOnQuestion). True when there is
  // nothing to ask, or the person agreed.
  bool AgreeToGoOn();

  // A press on run menu item 0..5 (Run's order).
  //   Stop: held, at once; running, at the monitor's next tick; during a command, when that command ends, and
  //   a Start sends no start command any more. While MayStillRun at once, or behind what is under way.
  //   Hold, Branch: at the monitor's next tick, Branch with the channel of the press; ignored unless running,
  //   and behind a waiting stop.
  //   Start, Output: at once; during a tick, at its end; during a command, ignored.
  // Start and Output need execution mode; Output OFF does not while MayStillRun or OutputInDoubt.
  void MenuItem(int item);

  // Something is under way that a close request, a file command or a mode change must not interrupt.
  bool Busy() const { return activity_.Busy(); }
  // Also while a run is going or held.
  bool BusyOrRunning() const { return Busy() || run_.state.RunState != RunState::Stopped; }

  // The program ends at once: stops what runs, is held, is being started or may still run, on every
  // instrument. Handles no events and waits for nothing but the instruments, 300 ms for each.
  void StopForEnd();

  // The monitor calls this at the end of each tick: carries out what was deferred to it.
  void TickEnded();
  // To be called when something else that exchanged with an instrument has ended: carries out the stop that
  // was pressed meanwhile.
  void ExchangeEnded();

 private:
  void PressStop();
  void PressAtNextTick(PendingRequest request);
  void PressAtOnce(Run command);
  bool ChangeMode(OperationMode mode);
  bool Execute(Run command);
  bool Start();
  bool SwitchOutputsForStart();
  bool Stop();
  bool Hold();
  bool Branch();
  bool SwitchOutput(bool on);
  // What the outputs do after a switch that all instruments took, or not all.
  void SetOutput(bool on, bool taken);
  // Sends to every instrument in index order; the index of the first that fails, -1 when none does,
  // kBrokenOff when a Start was stopped on the way.
  int SendToAll(const std::function<std::string(int)>& command, std::int32_t wait);
  bool FailRun(int instrument);
  void SayFailure(int instrument);
  std::string BranchCommand(int instrument, int branchChannel) const;

  RunContext run_;
  Measure& measure_;
  RunQueries& queries_;
  Activity& activity_;
  std::function<bool()> download_;
  std::function<bool()> reopen_;
  std::optional<Run> current_;  // the command under way
  // A stop that was pressed and not yet carried out. Unlike PendingRequest it outlives the end of the run:
  // when a failed query ended it, the stop is sent all the same.
  bool stopWaits_ = false;
  bool outputOffWaits_ = false;  // pressed while a Stop, Hold or Branch is being carried out
  std::optional<Run> afterTick_;
  std::optional<std::int16_t> pressedChannel_;  // the branch channel when Branch was pressed
};

}  // namespace corlune
