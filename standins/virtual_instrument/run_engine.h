// RunEngine: walks through the steps of a compiled sequence on a clock that the caller moves.
//
// A step lasts its step time, at least 1 ms (the instrument's step clock). With a stop phase it lasts at
// least one period of channel 1 and then goes on to the stop phase. At its end, in this order: auto hold
// holds; a state branch is taken while the state line is on; a jump is taken while its count lasts; a
// stop ends the run; else the next slot follows. A slot that nobody filled ends the run.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "standins/cmplseq/compiled_sequence.h"

namespace corlune {

enum class RunPhase { Idle, Running, Held };

class RunEngine {
 public:
  // How long the condition still reads "running" after the last step has ended.
  static constexpr std::uint32_t kEndGraceMs = 300;

  // Takes over a compiled sequence. Only while idle.
  void Load(const CompiledSequence& sequence);
  void Unload();  // no compiled sequence any more
  bool Loaded() const { return sequence_.has_value(); }

  void Advance(std::uint32_t milliseconds);

  // All four: false when the present phase does not allow it.
  bool Start();  // from idle, at the sequence's start step
  bool Hold();
  bool Resume();
  bool Branch(int step);  // 1-based; from running; leaves the present step at once
  bool EventBranch();     // as the running step's event branch says; false when it has none
  // Ends the run; with `atOnce` false the running step's stop phase is waited for.
  void Stop(bool atOnce);
  void SetStateLine(bool on) { stateLine_ = on; }

  RunPhase Phase() const { return phase_; }
  int CurrentSlot() const { return phase_ == RunPhase::Idle ? -1 : slot_; }
  // 0 nothing compiled, 2 ready or a stop asked for, 4 running, 8 held.
  int Condition() const;

 private:
  void EnterStep(int slot);
  void EndStep();    // at the end of the present step's time
  void LeaveStep();  // to whatever follows the present step
  void Finish(bool grace);
  double StepMilliseconds(int slot) const;
  double PeriodMilliseconds(int slot) const;

  std::optional<CompiledSequence> sequence_;
  RunPhase phase_ = RunPhase::Idle;
  int slot_ = 0;
  double spent_ = 0;     // ms of the present step that have passed
  double duration_ = 0;  // ms of the present step
  bool stopAsked_ = false;
  bool heldAtEnd_ = false;  // auto hold: the step's time is over
  bool stateLine_ = false;
  std::uint32_t grace_ = 0;  // ms left of kEndGraceMs
  std::array<int, kSequenceSlots> jumpsTaken_{};
};

}  // namespace corlune
