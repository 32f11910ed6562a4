// DownloadSequence: from the sequence in memory to an instrument that is ready to start. Shows its own
// messages; pumps events in its prompts, waits and progress windows.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "comm/command_layer.h"
#include "commands/instrument_dialogues.h"
#include "compile/compiler_library.h"
#include "compile/waveform_transfer.h"
#include "core/activity.h"
#include "core/catalogue.h"
#include "sequence/sequence_data.h"

namespace corlune {

inline constexpr const char* kUseStepFileName = "UseStep.txt";

// How the last download ended. Only Refused has always been shown; the places that must not stay silent (a
// terminal, a log) say the others themselves.
enum class DownloadEnd {
  Done,
  UnderWay,         // refused: another download has not ended yet
  Cancelled,        // RequestEnd, or the interface question was answered with Cancel; nothing was taken over
  NoName,           // no name was given
  Refused,          // the sequence, its waveform files or the compiler; a message said why
  NotSent,          // an exchange with the instrument failed
  InstrumentError,  // the instrument reported an error number
  ReplyUnreadable,  // its reply to the error query is no error number
  NotCompiled,      // the instrument did not take the sequence over
};

struct DownloadOutcome {
  DownloadEnd End = DownloadEnd::Done;
  std::int32_t ErrorNumber = 0;  // with InstrumentError
  // With Refused: what the message does not say, such as the file and the reason why it is no waveform, or
  // where the compiler library was looked for (in the system's words). Empty when there is nothing to add.
  std::string Detail;
};

struct DownloadPorts {
  Prompts& prompts;
  Progress& progress;
  RunDisplay& display;
  Activity& activity;
};

// Catalogue id of the parameter that a compiler error names; 0 for a code without one.
std::optional<TextId> CompilerParameterMessage(std::int32_t code);
// Of the library's call, where its record holds no code.
bool IsGoodCompilerResult(std::int32_t result);

class Downloader {
 public:
  Downloader(AppState& state, const ModelDefinition& definition, SequenceData& sequence,
             CommandLayer& commands, InstrumentDialogues& dialogues, CompilerLibrary& compiler,
             const MessageCatalogue& catalogue, DownloadPorts ports);

  // True on success, also off-line, where nothing is sent and only the run times are computed. On success
  // the run-time table is filled and the total time shown. Over an interface without blocks, when the person
  // agrees, the instrument is only made ready to run what it holds: AppState::HeldSequence, no run times.
  // SequenceData::SequenceNumber says which instrument memory (0..10) is used; the caller sets it from its
  // field before the call. The output query that ends a download is the caller's (execution/). False also
  // when a download is under way: a handler that runs inside its waits cannot start a second.
  [[nodiscard]] bool DownloadSequence();
  bool UnderWay() const { return ports_.activity.Under(Work::Download); }
  // Asks the download under way to end, which it does between two of its parts: between waveforms, before the
  // sequence block, before the instrument takes the sequence over, while it does. A block under way is sent
  // to its end. The button of the progress does the same.
  void RequestEnd() { endRequested_ = true; }
  // Of the last download; nothing to tell before the first and after ForgetOutcome.
  const DownloadOutcome& Outcome() const { return outcome_; }
  void ForgetOutcome() { outcome_ = {}; }

  // 0 on success, -1 when the compiler reported an error, else the ARB check code (4096, 4097, 4100, 4104);
  // every failure has been shown.
  [[nodiscard]] std::int32_t CompileSequence(const std::string& workFile);
  // Sets the use flags of the ARB entries that the steps name; shows ArbNumberZero for a USER step with
  // number 0.
  void MarkUsedArbs();
  // Sends the used waveforms that the instrument does not have yet. 0, or the ARB number whose transfer
  // failed. A full waveform memory (message ArbMemoryFull) ends the transfers but counts as success.
  [[nodiscard]] int TransferUsedArbs();
  // Progress window for `milliseconds`, in steps of one second. Pumps events.
  void ShowTimedProgress(std::int32_t milliseconds, const std::string& text);

 private:
  DownloadEnd Send();
  // Over an interface without blocks nothing is compiled, sent or recorded.
  DownloadEnd TakeUpHeldSequence();
  DownloadEnd Prepare();
  DownloadEnd SendWaveforms();
  DownloadEnd SendBlock(const std::string& workFile);
  DownloadEnd RecordInMemory();
  DownloadEnd TakeOver();
  bool WaitForCompilation();
  // A progress with a button that has the effect of RequestEnd.
  void BeginProgress(const std::string& text, int seconds);
  void EndProgress();
  DownloadEnd WaitAndQueryError(std::int32_t milliseconds);
  // Between two parts: `end` is that of the first one, and becomes Cancelled after RequestEnd.
  bool GoesOn(DownloadEnd& end) const;
  bool AgreeToHeldSequence();
  bool AskName();
  void ReportCompileError(const CompileErrorRecord& record);
  void ShowCritical(TextId id);

  AppState& state_;
  const ModelDefinition& definition_;
  SequenceData& sequence_;
  CommandLayer& commands_;
  InstrumentDialogues& dialogues_;
  CompilerLibrary& compiler_;
  const MessageCatalogue& catalogue_;
  DownloadPorts ports_;
  WaveformTransfer waveforms_;
  bool endRequested_ = false;
  ArbTransfer transferEnd_ = ArbTransfer::Done;  // of the last TransferUsedArbs
  DownloadOutcome outcome_;
};

}  // namespace corlune
