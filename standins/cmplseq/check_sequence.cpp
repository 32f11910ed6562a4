#include "check_sequence.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <map>
#include <set>
#include <tuple>

namespace corlune {

namespace {

// 1-based positions in a "CHAN#" line.
constexpr std::int32_t kFieldArbNumber = 2;
constexpr std::int32_t kFieldFrequency = 6;
constexpr std::int32_t kFieldAmplitude = 8;
constexpr std::int32_t kFieldOffset = 10;
constexpr std::int32_t kFieldDuty = 14;

constexpr std::array<SeqValue SeqCell::*, 5> kValues{&SeqCell::Frequency, &SeqCell::Amplitude,
                                                     &SeqCell::Offset, &SeqCell::Phase, &SeqCell::Duty};
enum ValueIndex : std::size_t { kFrequency, kAmplitude, kOffset, kPhase, kDuty };

using Held = std::array<std::array<double, kValues.size()>, kSequenceChannels>;

// A step together with the values at the end of the step before it. Values that the step replaces are 0, so
// that steps of constants alone are visited once however they are reached.
struct WalkState {
  int Slot = 0;
  Held Before{};
  bool operator<(const WalkState& other) const {
    return std::tie(Slot, Before) < std::tie(other.Slot, other.Before);
  }
};

// Start and end of a value within a step.
struct Course {
  double Start = 0;
  double End = 0;
  double Largest() const { return std::max(Start, End); }
  double Smallest() const { return std::min(Start, End); }
};

Course CourseOf(const SeqValue& value, double before) {
  switch (value.Change) {
    case SeqChange::Keep:
      return {before, before};
    case SeqChange::Sweep:
      return {before, value.Value};
    case SeqChange::Constant:
      break;
  }
  return {value.Value, value.Value};
}

struct Finding {
  SequenceRefusal Refusal = SequenceRefusal::None;
  std::int32_t Field = 0;
};

bool IsPeriodic(SeqWaveform waveform) {
  return waveform == SeqWaveform::Sine || waveform == SeqWaveform::Square || waveform == SeqWaveform::User;
}

double MaxFrequency(SeqWaveform waveform) {
  if (waveform == SeqWaveform::Sine) return kMaxSineFrequency;
  return waveform == SeqWaveform::Square ? kMaxSquareFrequency : kMaxUserFrequency;
}

// A sweep may begin at 0 Hz (nothing plays before the first step), but must not stay there.
bool FrequencyFits(SeqWaveform waveform, const Course& frequency) {
  return frequency.Smallest() >= 0 && frequency.End > 0 && frequency.Largest() <= MaxFrequency(waveform);
}

// Amplitude and offset run linearly at the same time, so the peak is largest at one of the two ends.
bool LevelFits(SeqWaveform waveform, const Course& amplitude, const Course& offset) {
  const auto peak = [&](double vpp, double volts) {
    return std::abs(volts) + (waveform == SeqWaveform::Dc ? 0 : vpp / 2);
  };
  if (waveform != SeqWaveform::Dc && amplitude.Smallest() < 0) return false;
  // A typed 9.95 V with 0.1 Vp-p is exactly at the limit, its sum in binary fractions may lie above.
  const double limit = kMaxPeakVoltage * (1 + 1e-12);
  return peak(amplitude.Start, offset.Start) <= limit && peak(amplitude.End, offset.End) <= limit;
}

// Duty and frequency run linearly, so the width duty / frequency is smallest at one of the two ends.
bool PulsesFit(const Course& frequency, const Course& duty) {
  const auto fits = [](double hertz, double percent) {
    if (percent < kMinDuty || percent > kMaxDuty) return false;
    const double narrow = std::min(percent, 100 - percent) / 100;
    return narrow >= kMinPulseWidth * hertz * (1 - 1e-12);
  };
  return fits(frequency.Start, duty.Start) && fits(frequency.End, duty.End);
}

Finding CheckCell(const SeqCell& cell, const std::array<double, kValues.size()>& before) {
  const Course frequency = CourseOf(cell.Frequency, before[kFrequency]);
  const Course duty = CourseOf(cell.Duty, before[kDuty]);
  if (IsPeriodic(cell.Waveform) && !FrequencyFits(cell.Waveform, frequency)) {
    return {SequenceRefusal::Frequency, kFieldFrequency};
  }
  const Course offset = CourseOf(cell.Offset, before[kOffset]);
  if (!LevelFits(cell.Waveform, CourseOf(cell.Amplitude, before[kAmplitude]), offset)) {
    const bool offsetAlone = std::max(std::abs(offset.Start), std::abs(offset.End)) > kMaxPeakVoltage;
    return {SequenceRefusal::Level, offsetAlone ? kFieldOffset : kFieldAmplitude};
  }
  if (cell.Waveform == SeqWaveform::Square && !PulsesFit(frequency, duty)) {
    return {SequenceRefusal::Duty, kFieldDuty};
  }
  return {};
}

class SequenceWalk {
 public:
  explicit SequenceWalk(const CompiledSequence& sequence) : sequence_(sequence) {}

  // False when the walk was given up.
  bool Run() {
    const int start = sequence_.StartStep - 1;
    if (!IsUnsetSlot(sequence_, start)) Enter(start, Held{});
    while (!waiting_.empty()) {
      if (visited_.size() > kMaxWalkStates) return false;
      const WalkState state = waiting_.front();
      waiting_.pop_front();
      reached_[static_cast<std::size_t>(state.Slot)] = true;
      const Held after = CheckStep(state);
      for (const int next : NextSlots(sequence_, state.Slot)) Enter(next, after);
    }
    return true;
  }
  bool Reached(int slot) const { return reached_[static_cast<std::size_t>(slot)]; }
  // By slot, then channel; empty when every value fits.
  const auto& Findings() const { return findings_; }

 private:
  const SeqCell& CellOf(int channel, int slot) const {
    return sequence_.Cells[static_cast<std::size_t>(channel)][static_cast<std::size_t>(slot)];
  }
  void Enter(int slot, const Held& after) {
    WalkState state{slot, after};
    for (int channel = 0; channel < kSequenceChannels; ++channel) {
      for (std::size_t i = 0; i < kValues.size(); ++i) {
        const bool replaced = (CellOf(channel, slot).*kValues[i]).Change == SeqChange::Constant;
        if (replaced) state.Before[static_cast<std::size_t>(channel)][i] = 0;
      }
    }
    if (visited_.insert(state).second) waiting_.push_back(state);
  }
  Held CheckStep(const WalkState& state) {
    Held after{};
    for (int channel = 0; channel < sequence_.Channels; ++channel) {
      const SeqCell& cell = CellOf(channel, state.Slot);
      const auto& before = state.Before[static_cast<std::size_t>(channel)];
      for (std::size_t i = 0; i < kValues.size(); ++i) {
        after[static_cast<std::size_t>(channel)][i] = CourseOf(cell.*kValues[i], before[i]).End;
      }
      const Finding finding = CheckCell(cell, before);
      if (finding.Refusal == SequenceRefusal::None) continue;
      const auto [place, isNew] = findings_.try_emplace({state.Slot, channel}, finding);
      if (!isNew && finding.Refusal < place->second.Refusal) place->second = finding;
    }
    return after;
  }

  const CompiledSequence& sequence_;
  std::set<WalkState> visited_;
  std::deque<WalkState> waiting_;
  std::array<bool, kSequenceSlots> reached_{};
  std::map<std::pair<int, int>, Finding> findings_;
};

SequenceRefusal Refuse(CompileErrorRecord& record, SequenceRefusal refusal, int channel, std::int32_t step,
                       std::int32_t field) {
  record = {field, channel, step, field, static_cast<std::int32_t>(refusal)};
  return refusal;
}

// Whether the entry of a used ARB number describes a waveform that can be loaded.
SequenceRefusal CheckArb(double number, std::span<const ArbInformation> arbs) {
  if (number != std::floor(number) || number < 1 || number > static_cast<double>(arbs.size())) {
    return SequenceRefusal::ArbMissing;
  }
  const ArbInformation& arb = arbs[static_cast<std::size_t>(number) - 1];
  if (arb.PointPairs == 1) return SequenceRefusal::None;
  const bool readable = arb.PointPairs == 0 && arb.KiloPoints > 0;
  return readable ? SequenceRefusal::None : SequenceRefusal::ArbUnreadable;
}

// Waveform memory of one channel over the steps the walk reached.
SequenceRefusal CheckMemory(const CompiledSequence& sequence, int channel, const SequenceWalk& walk,
                            std::span<const ArbInformation> arbs, CompileErrorRecord& record) {
  std::set<int> usedArbs;
  std::set<SeqWaveform> functions;
  bool dutySweep = false;
  for (int slot = 0; slot < kSequenceSlots; ++slot) {
    if (!walk.Reached(slot)) continue;
    const SeqCell& cell = sequence.Cells[static_cast<std::size_t>(channel)][static_cast<std::size_t>(slot)];
    if (cell.Waveform == SeqWaveform::User) {
      const SequenceRefusal refusal = CheckArb(cell.ArbNumber, arbs);
      if (refusal != SequenceRefusal::None)
        return Refuse(record, refusal, channel, slot + 1, kFieldArbNumber);
      usedArbs.insert(static_cast<int>(cell.ArbNumber));
    } else if (cell.Waveform != SeqWaveform::Dc) {
      functions.insert(cell.Waveform);
    }
    dutySweep = dutySweep || (cell.Waveform == SeqWaveform::Square && cell.Duty.Change == SeqChange::Sweep);
  }
  std::int64_t points = static_cast<std::int64_t>(functions.size()) * kMinFunctionPoints;
  if (dutySweep) points += kDutySweepPoints;
  for (const int number : usedArbs) {
    points += std::int64_t{arbs[static_cast<std::size_t>(number) - 1].KiloPoints} * 1024;
  }
  if (points <= kWaveMemoryPoints) return SequenceRefusal::None;
  return Refuse(record, SequenceRefusal::MemoryFull, channel, 0, 0);
}

}  // namespace

SequenceRefusal CheckSequence(const CompiledSequence& sequence, std::span<const ArbInformation> arbs,
                              CompileErrorRecord& record) {
  SequenceWalk walk(sequence);
  if (!walk.Run()) return Refuse(record, SequenceRefusal::TooComplex, 0, 0, 0);
  for (int channel = 0; channel < sequence.Channels; ++channel) {
    const SequenceRefusal refusal = CheckMemory(sequence, channel, walk, arbs, record);
    if (refusal != SequenceRefusal::None) return refusal;
  }
  if (walk.Findings().empty()) {
    record = {};
    return SequenceRefusal::None;
  }
  const auto& [place, finding] = *walk.Findings().begin();
  return Refuse(record, finding.Refusal, place.second, place.first + 1, finding.Field);
}

}  // namespace corlune
