// Activity: the one record of what is under way right now. Waits, messages and dialogs handle events, so a
// button, a timer tick or a close request can arrive inside anything; everyone who could start something asks
// here first, and the controls that are shown follow from it.
#pragma once

#include <array>
#include <cstddef>

namespace corlune {

enum class Work : std::size_t {
  Command,     // Stop, Hold or Branch
  Start,       // Start, from the press on: question, outputs, start commands, first step
  Output,      // Output ON or OFF
  ModeChange,  // edit to execution mode with its download, or back
  Download,    // blocks are being sent or read
  Exchange,    // another exchange with an instrument: opening, model check, waveform directory
  File,        // a file command with its questions and dialogs
  Tick,        // the monitor's tick
};

class Activity {
 public:
  bool Under(Work work) const { return count_[static_cast<std::size_t>(work)] > 0; }
  // A run command.
  bool Commanding() const { return Under(Work::Command) || Under(Work::Start) || Under(Work::Output); }
  // Exchanges that no run command may come between.
  bool Exchanging() const {
    return Under(Work::ModeChange) || Under(Work::Download) || Under(Work::Exchange);
  }
  // No run command and no tick can begin.
  bool CommandUnderWay() const { return Commanding() || Exchanging(); }
  bool Busy() const { return CommandUnderWay() || Under(Work::File) || Under(Work::Tick); }

 private:
  friend class WorkGuard;
  std::array<int, static_cast<std::size_t>(Work::Tick) + 1> count_{};
};

// `work` is under way for as long as the object lives.
class WorkGuard {
 public:
  WorkGuard(Activity& activity, Work work) : count_(activity.count_[static_cast<std::size_t>(work)]) {
    ++count_;
  }
  ~WorkGuard() { --count_; }
  WorkGuard(const WorkGuard&) = delete;
  WorkGuard& operator=(const WorkGuard&) = delete;

 private:
  int& count_;
};

}  // namespace corlune
