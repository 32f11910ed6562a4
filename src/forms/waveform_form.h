// WaveformForm: which waveform file stands under which ARB number while the dialog of the arbitrary waveforms
// is open. The files are edited on a copy, which reaches the sequence with ApplyTo; what the instrument holds
// is known to all of the program at once, whether the copy is applied or dropped.
//
// ARB numbers are 1..128. Paths are as they stand in the sequence: relative ones count from its folder.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "compile/waveform_transfer.h"
#include "core/app_state.h"
#include "core/catalogue.h"
#include "graph/signal_wave.h"
#include "modeldef/model_definition.h"
#include "sequence/wave_facts.h"
#include "session/waveform_work.h"

namespace corlune {

// Where a waveform is.
enum class WavePlace {
  Nowhere,
  File,
  Instrument,  // it has no file
  Both,        // as the file is now
  NotSent,     // the instrument holds one that was not sent from this file
  Changed      // sent, but the file is another one since
};

// A row of the dialog's grid.
struct WaveformRow {
  std::string Use;       // channels whose steps play it: "CH1 CH2"
  std::string UseSteps;  // the steps, a line for each channel
  std::string Path;
  std::string Form;
  std::string Points;
  WavePlace Place = WavePlace::Nowhere;
  std::string PlaceText;
  std::string Problem;  // why the file cannot be used; empty: it can, or is not looked at yet
};

// Memory of one channel when everything that its steps play is in the instrument.
struct ChannelMemory {
  std::int64_t Used = 0;  // points, of kWaveformMemory
  ArbCheck Check = ArbCheck::Passed;
  std::string Text;  // how much is left, or too much
};

// What the model definition lets a person do with the instrument's waveforms, in its order.
enum class WaveformAction { Transfer, Clear, ClearAll, Update };

class WaveformForm {
 public:
  // All must outlive the form. `facts` outlives the dialogs, so that the next one knows the files.
  WaveformForm(const SequenceData& sequence, const AppState& state, const ModelDefinition& definition,
               WaveFacts& facts, const MessageCatalogue& catalogue);

  // "- - - -" stands where there is nothing.
  WaveformRow Row(int number);
  const std::string& Path(int number) const;
  // As it can be opened; empty: none.
  std::string FileOf(int number) const;
  WaveFacts& Facts() { return facts_; }
  int Channels() const { return static_cast<int>(uses_.size()); }
  ChannelMemory Memory(int channel);
  std::vector<WaveformAction> Actions() const;

  // Assigns files in the order of their names: the first to `first`, the others to the following numbers
  // without a file. Those that no number or no sequence file can take are left out; `problem`: why, a line
  // for each.
  struct Assigned {
    std::vector<int> Numbers;
    std::string Problem;
  };
  Assigned Assign(int first, std::vector<std::string> paths);
  void RemoveFiles(const std::vector<int>& numbers);

  // Counts the values of one file that needs it; its ARB number, 0 when all are known.
  int CountNext();

  // Of `numbers` those with a file; with a file and played by a step; in the instrument.
  std::vector<int> WithFile(const std::vector<int>& numbers) const;
  std::vector<int> UsedWithFile() const;
  std::vector<int> UsedToSend() const;  // those that the instrument does not hold as the file is now
  std::vector<int> Held(const std::vector<int>& numbers) const;

  // What the instrument holds, for the session's work on it. Before a transfer PrepareToSend puts the files
  // of `numbers` there.
  ArbEntries& Instrument() { return held_; }
  void PrepareToSend(const std::vector<int>& numbers);
  // The connection was opened anew: it may be another instrument.
  void ForgetInstrument();

  // OK and Cancel.
  void ApplyTo(SequenceData& sequence) const;
  void KeepInstrument(SequenceData& sequence) const;

  std::string ProgressText(const WaveformStep& step) const;
  // Highest and lowest point and the mean, in the numbers of the file.
  std::string PeakText(const SignalWave& wave) const;

 private:
  struct Use {
    ChannelUse Flow;                                  // of the steps that a run reaches
    std::array<std::vector<int>, kArbNumbers> Steps;  // as shown, ascending
  };
  ArbFileEntry EntryOf(int number) const;
  WavePlace PlaceOf(const ArbFileEntry& entry) const;
  std::string Refusal(const std::string& path) const;
  std::string Text(TextId id, const std::vector<std::string>& arguments = {}) const {
    return catalogue_.GetResString(id, arguments);
  }

  const AppState& state_;
  const ModelDefinition& definition_;
  WaveFacts& facts_;
  const MessageCatalogue& catalogue_;
  std::vector<Use> uses_;  // of the channels
  std::array<std::string, kArbNumbers> paths_;
  // Each with the file that was last dealt with under its number, whose name the flags belong to.
  ArbEntries held_;
};

// 1..128
std::vector<int> AllArbNumbers();
// "1, 3-7, 12" of ascending numbers.
std::string NumberList(const std::vector<int>& numbers);
// "524,288"
std::string GroupedNumber(std::int64_t number);

}  // namespace corlune
