// CompiledSequence: the content of a sequence text and of the binary form that the generators take, with the
// conversions between the three. The compiler writes the binary, the virtual instrument reads it and writes
// the text again when it is asked for its sequence. The binary form is described in
// docs/compiled-sequence.md.
//
// Nothing here pumps events or shows messages. Step numbers (jump and branch targets, start step) are
// 1-based, 0 means none; tables are indexed by 0-based slot.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corlune {

inline constexpr int kSequenceSlots = 256;
inline constexpr int kSequenceChannels = 2;

// The codes stand in the binary form and must not change.
enum class SeqWaveform : std::uint8_t { Sine = 0, Square = 1, Noise = 2, Dc = 3, User = 4 };
enum class SeqRange : std::uint8_t { Full = 0, PlusFull = 1, MinusFull = 2 };
enum class SeqChange : std::uint8_t { Constant = 0, Keep = 1, Sweep = 2 };
enum class SeqTrigger : std::uint8_t { Rise = 0, Fall = 1, Off = 2 };

// One value of a step. Sweep: from the value at the end of the step before to `Value`, linearly over the
// step time. Keep: `Value` is ignored, the value at the end of the step before stays.
struct SeqValue {
  double Value = 0;
  SeqChange Change = SeqChange::Constant;
  bool operator==(const SeqValue&) const = default;
};

// One "STEP#" line.
struct SeqStep {
  double StepTime = 0;  // s
  bool Stop = false;    // the flow ends after this step
  std::int16_t AutoHold = 0;
  std::int16_t StepCode = 0;
  std::int16_t StateBranchOn = 0;
  std::int16_t StateBranchStep = 0;
  std::int16_t EventBranchOn = 0;
  std::int16_t EventBranchStep = 0;
  std::int16_t JumpOn = 0;
  std::int16_t JumpTo = 0;
  bool JumpCounted = false;  // false: the jump repeats without limit
  std::int16_t JumpCount = 0;
  std::int16_t StopPhaseOn = 0;
  double StopPhase = 0;  // degrees
  bool operator==(const SeqStep&) const = default;
};

// One "CHAN#" line.
struct SeqCell {
  SeqWaveform Waveform = SeqWaveform::Sine;
  double ArbNumber = 0;  // has a meaning for User only, then 1..128
  bool Inverted = false;
  SeqRange Range = SeqRange::Full;
  double External = 0;
  SeqValue Frequency;  // Hz
  SeqValue Amplitude;  // Vp-p
  SeqValue Offset;     // V
  SeqValue Phase;      // degrees
  SeqValue Duty;       // %
  bool operator==(const SeqCell&) const = default;
};

struct CompiledSequence {
  std::string Model;           // at most 255 bytes, no quotation marks or line ends
  int Channels = 1;            // 1 or 2
  std::int16_t StartStep = 1;  // 1..256
  bool SyncStepCode = false;   // false: sync, true: step code (LSB)
  std::int16_t ExternalControl = 0;
  bool StateBranchInput = false;  // multi I/O pin 14: false start, true state branch
  SeqTrigger Trigger = SeqTrigger::Rise;
  std::array<SeqStep, kSequenceSlots> Steps{};
  // [channel][slot]; channel 1 of a one-channel sequence stays empty.
  std::array<std::array<SeqCell, kSequenceSlots>, kSequenceChannels> Cells{};
  bool operator==(const CompiledSequence&) const = default;
};

// A slot that nobody ever filled: step time 0 and every other field zero, too. The flow ends before it.
bool IsUnsetSlot(const CompiledSequence& sequence, int slot);

// Slots (0..255) to which the flow can go on after `slot`, each once: jump and branch targets that are on,
// and the next slot unless the step stops or its jump repeats without limit. Unset slots are left out.
std::vector<int> NextSlots(const CompiledSequence& sequence, int slot);

// Where a sequence text is wrong.
struct TextProblem {
  std::string Reason;  // with the line's number
  int Channel = 0;     // 0-based
  int Step = 0;        // 1-based, 0: not in the line of a step
};

// Strict: exactly the lines the program writes, in their order, with CR LF. On failure `out` stays as it was
// and *problem (may be null) says what is wrong.
[[nodiscard]] bool ParseSequenceText(std::string_view text, CompiledSequence& out,
                                     TextProblem* problem = nullptr);
// The sequence text, byte for byte in the program's form.
std::string WriteSequenceText(const CompiledSequence& sequence);

// CRC-32 (IEEE 802.3, reflected) of the bytes in front of it closes a compiled sequence, low byte first.
std::uint32_t Crc32(std::span<const std::uint8_t> bytes);
std::vector<std::uint8_t> EncodeCompiledSequence(const CompiledSequence& sequence);
// nullopt when magic, version, checksum or a field is wrong; *error (may be null) says why.
std::optional<CompiledSequence> DecodeCompiledSequence(std::span<const std::uint8_t> bytes,
                                                       std::string* error = nullptr);

}  // namespace corlune
