#include "standins/virtual_instrument/instrument_state.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace corlune {
namespace {

// Counts `left` down; true when it ends within `milliseconds`.
bool CountDown(std::optional<std::uint32_t>& left, std::uint32_t milliseconds) {
  if (!left) return false;
  if (*left > milliseconds) {
    *left -= milliseconds;
    return false;
  }
  left.reset();
  return true;
}

// Slots that a run of `sequence` can reach from its start step.
std::vector<int> ReachableSlots(const CompiledSequence& sequence) {
  std::array<bool, kSequenceSlots> seen{};
  std::vector<int> found;
  const int start = sequence.StartStep - 1;
  if (start < 0 || start >= kSequenceSlots || IsUnsetSlot(sequence, start)) return found;
  found.push_back(start);
  seen[static_cast<std::size_t>(start)] = true;
  for (std::size_t i = 0; i < found.size(); ++i) {
    for (const int next : NextSlots(sequence, found[i])) {
      if (std::exchange(seen[static_cast<std::size_t>(next)], true)) continue;
      found.push_back(next);
    }
  }
  return found;
}

}  // namespace

void InstrumentState::Advance(std::uint32_t milliseconds) {
  if (CountDown(compileLeft_, milliseconds)) FinishCompile();
  busyLeft_ -= std::min(busyLeft_, milliseconds);
  replyDelay -= std::min(replyDelay, milliseconds);
  if (CountDown(tripLeft_, milliseconds)) SetAllOutputs(false);
  engine.Advance(milliseconds);
  if (completeWanted && PendingMs() == 0) {
    completeWanted = false;
    status.SetEvent(kEventOperationComplete);
  }
}

std::uint32_t InstrumentState::PendingMs() const {
  return std::max(compileLeft_.value_or(0), busyLeft_);
}

void InstrumentState::Reply(std::string_view text) {
  if (!reply.empty()) reply += ';';
  reply += text;
}

void InstrumentState::KeepBusy() {
  if (const Fault* fault = faults.Standing(FaultKind::SlowBusy)) {
    busyLeft_ = static_cast<std::uint32_t>(fault->value);
  }
}

void InstrumentState::StartRun() {
  if (const Fault* fault = faults.Standing(FaultKind::OutputTrip)) {
    tripLeft_ = static_cast<std::uint32_t>(fault->value);
  }
}

void InstrumentState::BeginCompile() {
  status.SetOperation(false);
  engine.Unload();
  compileLeft_ = kCompileMs;
}

bool InstrumentState::CompileAllowed() const {
  if (faults.Standing(FaultKind::RefuseCompile) != nullptr || !sequences[0]) return false;
  const CompiledSequence& sequence = sequences[0]->content;
  if (sequence.Channels > identity.channels) return false;
  const std::vector<int> slots = ReachableSlots(sequence);
  if (slots.empty()) return false;
  for (int channel = 0; channel < sequence.Channels; ++channel) {
    for (const int slot : slots) {
      const SeqCell& cell = sequence.Cells[static_cast<std::size_t>(channel)][static_cast<std::size_t>(slot)];
      if (cell.Waveform != SeqWaveform::User) continue;
      const double number = std::nearbyint(cell.ArbNumber);
      if (!(number >= 1 && number <= kWaveformNumbers)) return false;
      if (waveforms.At(static_cast<int>(number)).points == 0) return false;
    }
  }
  return true;
}

void InstrumentState::FinishCompile() {
  if (!CompileAllowed()) {
    status.Report(ScpiError::OutOfRange);
    return;
  }
  engine.Load(sequences[0]->content);
  status.SetOperation(true);
}

void InstrumentState::Reset() {
  engine.Stop(true);
  engine.Unload();
  compileLeft_.reset();
  tripLeft_.reset();
  busyLeft_ = 0;
  completeWanted = false;
  SetAllOutputs(false);
  sequenceMode = false;
}

}  // namespace corlune
