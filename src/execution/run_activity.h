// RunActivity: what is under way right now. Waits handle events, so a button, a timer tick or a close
// request can arrive inside a command or a tick; everyone who could start something asks here first.
#pragma once

namespace corlune {

struct RunActivity {
  int commandDepth = 0;     // run commands under way, 0 or 1
  bool modeChange = false;  // SetOperationMode (with its download) is under way
  bool inTick = false;      // the monitor's tick is under way
  int otherWork = 0;        // operations of other rooms that talk to the instrument: transfer, read-back

  bool CommandUnderWay() const { return commandDepth > 0 || modeChange || otherWork > 0; }
  bool Busy() const { return CommandUnderWay() || inTick; }
};

// Marks an operation of another room as under way for its own lifetime.
class WorkGuard {
 public:
  explicit WorkGuard(RunActivity& activity) : activity_(activity) { ++activity_.otherWork; }
  ~WorkGuard() { --activity_.otherWork; }
  WorkGuard(const WorkGuard&) = delete;
  WorkGuard& operator=(const WorkGuard&) = delete;

 private:
  RunActivity& activity_;
};

}  // namespace corlune
