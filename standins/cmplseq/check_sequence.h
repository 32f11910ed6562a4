// CheckSequence: would a generator play this sequence? The rules behind the compiler's error codes.
#pragma once

#include <cstdint>
#include <span>

#include "compiled_sequence.h"
#include "platform/abi/cmplseq.h"

namespace corlune {

// What a QM2210/QM2220 can put out.
inline constexpr double kMaxSineFrequency = 20e6;    // Hz
inline constexpr double kMaxSquareFrequency = 10e6;  // Hz
inline constexpr double kMaxUserFrequency = 10e6;    // Hz, repetition rate of an arbitrary waveform
inline constexpr double kMaxPeakVoltage = 10;        // V, open circuit: |offset| + amplitude / 2
inline constexpr double kMinDuty = 0.1;              // %
inline constexpr double kMaxDuty = 99.9;             // %
inline constexpr double kMinPulseWidth = 20e-9;      // s, of the high and of the low part of a square wave
inline constexpr std::int32_t kWaveMemoryPoints = 524288;  // a channel
inline constexpr std::int32_t kMinFunctionPoints = 4096;   // taken by each built-in function but DC
inline constexpr std::int32_t kDutySweepPoints = 32768;    // work area of a channel that sweeps a duty
// Distinct (step, held values) pairs that are followed before a sequence counts as too complex.
inline constexpr std::size_t kMaxWalkStates = 20000;

// Codes of the error record; the first three are this library's own.
enum class SequenceRefusal : std::int32_t {
  None = 0,
  Text = 1,  // no sequence text
  File = 2,  // the file cannot be read or replaced
  OutOfMemory = 3,
  Frequency = CMPLSEQ_ERROR_FREQUENCY,
  Level = CMPLSEQ_ERROR_LEVEL,
  Duty = CMPLSEQ_ERROR_DUTY,
  ArbUnreadable = CMPLSEQ_ERROR_ARB_UNREADABLE,
  ArbMissing = CMPLSEQ_ERROR_ARB_MISSING,
  MemoryFull = CMPLSEQ_ERROR_MEMORY_FULL,
  TooComplex = CMPLSEQ_ERROR_TOO_COMPLEX,
};

// Looks only at steps that the flow can reach from the start step. `arbs` has an entry for ARB number k + 1
// at k. Fills the record of the refusal that is found first: complexity, then waveform memory by channel,
// then values by step, channel and code.
//
// Record: Channel 0-based; PositionB the step number, 1-based; PositionA and PositionC the 1-based position
// of the refused value among the 15 fields of its "CHAN#" line. All positions are 0 where no single step is
// to blame.
SequenceRefusal CheckSequence(const CompiledSequence& sequence, std::span<const ArbInformation> arbs,
                              CompileErrorRecord& record);

}  // namespace corlune
