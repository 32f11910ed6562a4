// DownloadSequence: from the sequence in memory to an instrument that is ready to start. Shows its own
// messages; pumps events in its prompts, waits and progress windows.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "comm/command_layer.h"
#include "commands/instrument_dialogues.h"
#include "compile/compiler_library.h"
#include "core/catalogue.h"
#include "sequence/sequence_data.h"

namespace corlune {

struct DownloadPorts {
  Prompts& prompts;
  Progress& progress;
  RunDisplay& display;
};

class Downloader {
 public:
  Downloader(AppState& state, const ModelDefinition& definition, SequenceData& sequence,
             CommandLayer& commands, InstrumentDialogues& dialogues, CompilerLibrary& compiler,
             const MessageCatalogue& catalogue, DownloadPorts ports);

  // True on success, also off-line, where nothing is sent and only the run times are computed. On success
  // the run-time table is filled and the total time shown. SequenceData::SequenceNumber says which
  // instrument memory (0..10) is used; the caller sets it from its field before the call.
  // The output query that ends a download is the caller's (execution/).
  [[nodiscard]] bool DownloadSequence();

  // 0 on success, -1 when the compiler reported an error, else the ARB check code (4096, 4097, 4100, 4104);
  // every failure has been shown.
  [[nodiscard]] std::int32_t CompileSequence(const std::string& workFile);
  // Sets the use flags of the ARB entries that the steps name; shows 9209 for a USER step with number 0.
  void MarkUsedArbs();
  // 0, or the ARB number whose transfer failed.
  [[nodiscard]] int TransferUsedArbs();
  // Progress window for `milliseconds`, in steps of one second. Pumps events.
  void ShowTimedProgress(std::int32_t milliseconds, const std::string& text);

 private:
  AppState& state_;
  const ModelDefinition& definition_;
  SequenceData& sequence_;
  CommandLayer& commands_;
  InstrumentDialogues& dialogues_;
  CompilerLibrary& compiler_;
  const MessageCatalogue& catalogue_;
  DownloadPorts ports_;
};

}  // namespace corlune
