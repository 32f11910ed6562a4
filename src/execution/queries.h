// The three queries of a run. Each is repeated once after interface clear and device clear when it times
// out. All pump events (command waits, messages) and may end the run.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "execution/measure.h"
#include "execution/run_state.h"

namespace corlune {

inline constexpr int kQueryFailed = -1;      // OutputQuery, StatusQuery: communication failure
inline constexpr int kStepQueryFailed = -2;  // StepQuery: communication failure or no number
inline constexpr int kNoStep = -1;           // StepQuery: the instrument runs no step

enum class OutputCheck {
  WhileRunning,  // an output found off while the run is going was switched off: all stop, OutputTurnedOff
  AfterEnd,      // the run is over anyway: an output found off is only reported back
};

class RunQueries {
 public:
  RunQueries(RunContext run, Measure& measure) : run_(run), measure_(measure) {}

  // `instrument`: 0-based. 1 on, 0 off (also a reply that is no number), kQueryFailed after message
  // CommunicationError, with the monitor stopped. Off-line 1 without traffic.
  int OutputQuery(int instrument, OutputCheck check = OutputCheck::WhileRunning);
  // 2 asks for a stop, 4 running, 8 held; 0 for a reply that is no number and off-line; kQueryFailed after
  // message CommunicationError, in edit mode with the monitor stopped.
  int StatusQuery(int instrument);
  // The step's slot index, kNoStep, another number as the instrument sends it, or kStepQueryFailed, in edit
  // mode with the monitor stopped. Off-line: the current step of a run, else 0.
  int StepQuery(int instrument);

 private:
  // False on a communication failure.
  bool Query(int instrument, const CommandEntry& query, std::string& reply);
  bool Recover(std::int32_t address, const CommandEntry& query);
  void StopAllForOutputOff(int instrument);
  void BackToEditMode();
  // What one instrument answers about its outputs; nullopt: nothing clear.
  void NoteOutput(std::optional<bool> on);
  // After a failed query: the end of the run, if one was followed.
  void GiveUpRun();

  RunContext run_;
  Measure& measure_;
};

}  // namespace corlune
