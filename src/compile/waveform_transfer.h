// Arbitrary waveforms on their way to the instrument: transfer, deletion, what the instrument holds, and
// the memory check before a download. Exchanges go to instrument 0 unless another is named (0-based).
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "comm/command_layer.h"
#include "commands/instrument_dialogues.h"
#include "compile/step_flow.h"
#include "core/catalogue.h"
#include "platform/abi/cmplseq.h"
#include "sequence/sequence_data.h"
#include "sequence/waveform_file.h"

namespace corlune {

using ArbEntries = std::array<ArbFileEntry, kArbNumbers>;

enum class ArbTransfer {
  Done,
  FileRefused,      // no such file, or not a waveform; shown, except for a wrong count of values
  NotSent,          // an exchange failed; not shown
  ReplyUnreadable,  // sent, but the reply to the error query is no error number; not shown
  MemoryFull,       // sent, but the instrument's waveform memory is exhausted; shown
};

// Codes of CheckArbResources.
enum class ArbCheck : std::int32_t {
  Passed = 0,
  TooManyWaveforms = 4096,  // too little memory is left for the waveforms of unknown size
  MemoryFull = 4097,
  ArbMissing = 4100,  // a used number has no file and the instrument holds nothing under it
  NoArbNumber = 4104,
};

inline constexpr std::int32_t kWaveformMemory = 524288;  // points of one channel
inline constexpr std::int32_t kSweepWorkArea = 32768;    // points that a duty sweep takes
inline constexpr std::int32_t kSmallestWaveform = 4096;  // points
inline constexpr std::int32_t kErrorMemoryFull = -225;   // SCPI "Out of memory"

class WaveformTransfer {
 public:
  WaveformTransfer(CommandLayer& commands, InstrumentDialogues& dialogues, Prompts& prompts,
                   const MessageCatalogue& catalogue);

  // Reads the entry's file and hands its block over as ARB `number` (1..128); messages ArbCannotAccess,
  // ArbTooShort, ArbInvalid. The form and size of the file go into the entry, also when the exchange fails.
  [[nodiscard]] ArbTransfer TransferArbFile(ArbFileEntry& entry, int number);
  // Why the last TransferArbFile returned FileRefused, for a place that does not interrupt.
  WaveformProblem Problem() const { return read_.problem; }
  std::string Reason() const { return ReasonText(read_.reason, catalogue_); }

  // TransferArbFile, `wait` for the time that the instrument needs (ms), error query; sets Transferred and
  // InInstrument. Message ArbMemoryFull when the memory is full. Unless Done the flags are as before the
  // transfer.
  [[nodiscard]] ArbTransfer SendAndCheck(ArbFileEntry& entry, int number,
                                         const std::function<void(std::int32_t)>& wait);
  // The same with the long time-out. Pumps events while it waits.
  [[nodiscard]] ArbTransfer TransferOne(ArbFileEntry& entry, int number);
  // Deletes the waveform in the instrument; a file of the entry then counts as not transferred.
  CommStatus ClearOne(ArbFileEntry& entry, int number);

  CommStatus DeleteArb(int number, int instrument = 0);
  // Form, size and presence of what the instrument holds under `number`; a file counts as transferred no
  // longer when that is something else. False, with the entry unchanged, when the exchange failed or the
  // reply is malformed.
  bool QueryArbInfo(ArbFileEntry& entry, int number, int instrument = 0);
  // QueryArbInfo for 1..128 until one fails, or `goOn`, called before each with the number asked so far,
  // returns false; the number of entries brought up to date.
  int QueryArbDirectory(ArbEntries& entries, const std::function<bool(int)>& goOn, int instrument = 0);

  void SetTimeOut(std::int16_t code);

 private:
  CommandLayer& commands_;
  InstrumentDialogues& dialogues_;
  Prompts& prompts_;
  const MessageCatalogue& catalogue_;
  WaveformRead read_;  // kept, so that many waveforms need the memory of one
};

// Time the instrument needs to take the entry's waveform over: 25 s for each whole MiB, at least 1 s. ms.
std::int32_t TransferTime(const ArbFileEntry& entry);

// The entry has a file that the instrument does not hold, or not as the file is now. A file that is gone is
// as it was sent.
bool NeedsTransfer(const ArbFileEntry& entry, const std::string& folder);

// Points of the waveforms that a channel's steps use, and how many waveforms have a size that is not known.
struct MemoryUse {
  std::int64_t Points = 0;
  std::int64_t Unknown = 0;
};
MemoryUse MemoryUseOf(const ChannelUse& use, const ArbEntries& entries);
// Passed, MemoryFull or TooManyWaveforms.
[[nodiscard]] ArbCheck CheckMemory(const MemoryUse& memory);

// Whether the instrument's memory can hold what the reachable steps play. Looks into the files of entries
// that are still to be transferred and notes their form and size in the entries. `folder`: where relative
// waveform paths count from.
[[nodiscard]] ArbCheck CheckArbResources(const StepFlow& flow, int channels, ArbEntries& entries,
                                         const std::string& folder);

// The table that the compiler is given.
std::array<ArbInformation, kArbNumbers> ArbInformationTable(const ArbEntries& entries);

}  // namespace corlune
