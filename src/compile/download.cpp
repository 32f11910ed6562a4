#include "compile/download.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>

#include "comm/gp_codes.h"
#include "compile/block_header.h"
#include "compile/sequence_text.h"
#include "compile/step_flow.h"
#include "compile/transfer_file.h"
#include "core/files.h"
#include "core/numbers.h"
#include "sequence/channel_tabs.h"
#include "sequence/run_times.h"
#include "sequence/waveform_path.h"

namespace corlune {

namespace {

constexpr std::size_t kLongestName = 20;
constexpr std::int32_t kSequenceWait = 10000;  // ms until the instrument has stored a sequence block
constexpr std::int32_t kRecordWait = 5000;     // ms until it has recorded it in a memory
constexpr std::int32_t kQuietTime = 300;       // ms of a compilation that need no words

// What may stand between quotation marks in a command.
bool IsNameText(const std::string& name) {
  return std::all_of(name.begin(), name.end(), [](char c) { return c >= ' ' && c <= '~' && c != '"'; });
}

TextId CheckMessage(ArbCheck check) {
  if (check == ArbCheck::ArbMissing) return TextId::SelectedArbMissing;
  return check == ArbCheck::NoArbNumber ? TextId::ArbNumberZero : TextId::FunctionsTooLarge;
}

}  // namespace

std::optional<TextId> CompilerParameterMessage(std::int32_t code) {
  switch (code) {
    case CMPLSEQ_ERROR_FREQUENCY:
      return TextId::ParameterFrequency;
    case CMPLSEQ_ERROR_LEVEL:
      return TextId::ParameterLevel;
    case CMPLSEQ_ERROR_DUTY:
      return TextId::ParameterDuty;
    case CMPLSEQ_ERROR_ARB_UNREADABLE:
      return TextId::SelectedArbUnreadable;
    case CMPLSEQ_ERROR_ARB_MISSING:
      return TextId::SelectedArbMissing;
    case CMPLSEQ_ERROR_MEMORY_FULL:
      return TextId::FunctionsTooLarge;
    case CMPLSEQ_ERROR_TOO_COMPLEX:
      return TextId::TooComplex;
    default:
      return std::nullopt;
  }
}

bool IsGoodCompilerResult(std::int32_t result) {
  return result == 0 || result == CMPLSEQ_RESULT_ALSO_GOOD;
}

Downloader::Downloader(AppState& state, const ModelDefinition& definition, SequenceData& sequence,
                       CommandLayer& commands, InstrumentDialogues& dialogues, CompilerLibrary& compiler,
                       const MessageCatalogue& catalogue, DownloadPorts ports)
    : state_(state),
      definition_(definition),
      sequence_(sequence),
      commands_(commands),
      dialogues_(dialogues),
      compiler_(compiler),
      catalogue_(catalogue),
      ports_(ports),
      waveforms_(commands, dialogues, ports.prompts, catalogue) {}

bool Downloader::DownloadSequence() {
  if (UnderWay()) return false;
  endRequested_ = false;
  outcome_ = {};
  const bool held = commands_.Online() && !commands_.CarriesBlocks();
  if (commands_.Online()) {
    if (held && !AgreeToHeldSequence()) {
      outcome_.End = DownloadEnd::Cancelled;
      return false;
    }
    {
      const WorkGuard downloading(ports_.activity, Work::Download);
      ports_.display.RefreshControls();
      outcome_.End = held ? TakeUpHeldSequence() : Send();
    }
    ports_.display.RefreshControls();
  }
  if (outcome_.End != DownloadEnd::Done) return false;
  state_.HeldSequence = held;
  if (held) {
    state_.TotalTime = state_.TotalTimeSecond = -1;
    ports_.display.ShowTotalTime(state_.TotalTime);
    return true;
  }
  const RunTimes times = ComputeRunTimes(sequence_, definition_);
  state_.TotalTime = times.Total;
  state_.TotalTimeSecond = times.Second;
  ports_.display.ShowTotalTime(times.Total);
  return true;
}

// GPIB and USB488 send commands but no blocks; the person may still want to run what the instrument holds.
bool Downloader::AgreeToHeldSequence() {
  return ShowMessage(ports_.prompts, catalogue_, TextId::NoBlocksQuestion, PromptIcon::Question,
                     PromptButtons::OkCancel) == PromptAnswer::Ok;
}

DownloadEnd Downloader::Send() {
  if (!AskName()) return DownloadEnd::NoName;
  const std::string workFile = TransferFile(state_, kSendFileName);
  if (CompileSequence(workFile) != 0) return DownloadEnd::Refused;
  DownloadEnd end = Prepare();
  if (GoesOn(end)) end = SendWaveforms();
  if (GoesOn(end)) end = SendBlock(workFile);
  if (GoesOn(end) && sequence_.SequenceNumber != 0) end = RecordInMemory();
  if (GoesOn(end)) end = TakeOver();
  return end;
}

// One that is compiled already starts as it is.
DownloadEnd Downloader::TakeUpHeldSequence() {
  DownloadEnd end = Prepare();
  if (GoesOn(end) && !dialogues_.HoldsCompiledSequence()) end = TakeOver();
  return end;
}

DownloadEnd Downloader::Prepare() {
  BeginProgress(catalogue_.GetResString(TextId::PreparingInstrument), 0);
  const CommandEntry& prepare = definition_.Commands.Device.Entries[0];
  const bool prepared =
      (prepare.Template.empty() ||
       !Failed(commands_.SendCommand(commands_.SelectInstrument(0), prepare.Template, prepare.Wait))) &&
      dialogues_.PrepareSequenceMode();
  EndProgress();
  return prepared ? DownloadEnd::Done : DownloadEnd::NotSent;
}

bool Downloader::GoesOn(DownloadEnd& end) const {
  if (end == DownloadEnd::Done && endRequested_) end = DownloadEnd::Cancelled;
  return end == DownloadEnd::Done;
}

bool Downloader::AskName() {
  const std::string usual = sequence_.SequenceName.empty() ? "Seq" + std::to_string(sequence_.SequenceNumber)
                                                           : sequence_.SequenceName;
  while (true) {
    const std::optional<std::string> name =
        ports_.prompts.Input({catalogue_.GetResString(TextId::SequenceNamePrompt), kApplicationTitle, usual});
    if (!name || name->empty()) return false;
    if (!IsNameText(*name)) {
      ShowCritical(TextId::InputError);
    } else if (name->size() <= kLongestName) {
      sequence_.SequenceName = *name;
      return true;
    }
  }
}

std::int32_t Downloader::CompileSequence(const std::string& workFile) {
  const int channels = EditedChannels(state_);
  const StepFlow flow = WalkSteps(sequence_, channels);
  // Only for the person who wonders why a waveform counts as used; a download does not depend on it.
  const std::string useSteps = UseStepText(flow, sequence_, channels);
  static_cast<void>(ReplaceFile(JoinPath(state_.AppFolder, kUseStepFileName), useSteps));

  const ArbCheck check =
      CheckArbResources(flow, channels, sequence_.Channels.ArbFiles, WaveformFolder(state_));
  if (check != ArbCheck::Passed) {
    ShowCritical(CheckMessage(check));
    return static_cast<std::int32_t>(check);
  }
  const auto arbs = ArbInformationTable(sequence_.Channels.ArbFiles);
  CompileErrorRecord record{};
  std::int32_t result = 0;
  if (!BuildSequenceText(workFile, sequence_, definition_, state_.ModelName, channels, &outcome_.Detail)) {
    ShowCritical(TextId::CompilerDataIllegal);
    return -1;
  }
  if (compiler_.CompileSeqData(workFile, arbs, record, result) != CompilerCall::Done) {
    outcome_.Detail = compiler_.Problem();
    ShowCritical(TextId::CompilerDataIllegal);
    return -1;
  }
  if (record.Code != 0) {
    ReportCompileError(record);
    return -1;
  }
  if (!IsGoodCompilerResult(result)) {
    ports_.prompts.Message({catalogue_.GetResString(TextId::CompilerDataIllegal), PromptIcon::None,
                            PromptButtons::Ok, "for Debug"});
  }
  return 0;
}

void Downloader::ReportCompileError(const CompileErrorRecord& record) {
  const auto parameter = CompilerParameterMessage(record.Code);
  std::string text = parameter ? catalogue_.GetResString(*parameter) : std::string();
  if (record.Code < CMPLSEQ_ERROR_MEMORY_FULL) {
    const std::int32_t second = record.Code == CMPLSEQ_ERROR_FREQUENCY ? record.PositionA : record.PositionC;
    text = catalogue_.GetResString(TextId::SequenceDataErrorInChannel,
                                   {std::to_string(record.Channel + 1),
                                    std::to_string(record.PositionB) + " , " + std::to_string(second), text});
  }
  ports_.prompts.Message({text, PromptIcon::Critical, PromptButtons::Ok, kApplicationTitle});
}

void Downloader::MarkUsedArbs() {
  auto& entries = sequence_.Channels.ArbFiles;
  for (ArbFileEntry& entry : entries) entry.UseFlag = 0;
  bool withoutNumber = false;
  for (int channel = 0; channel < EditedChannels(state_); ++channel) {
    for (int slot = 0; slot < MAX_STEPS; ++slot) {
      if (WaveformOf(sequence_, channel, slot) != kWaveUser) continue;
      const int number = ArbNumberOf(sequence_.Cell(channel, slot, kSlotArbNumber));
      if (number == 0) {
        withoutNumber = true;
      } else {
        entries[static_cast<std::size_t>(number - 1)].UseFlag = 1;
      }
    }
  }
  if (withoutNumber) ShowCritical(TextId::ArbNumberZero);
}

DownloadEnd Downloader::SendWaveforms() {
  MarkUsedArbs();
  const int failed = TransferUsedArbs();
  if (failed == 0) return DownloadEnd::Done;
  const bool refused = transferEnd_ == ArbTransfer::FileRefused;
  // A file with a wrong extension has just been refused with the same message.
  if (!refused || waveforms_.Problem() != WaveformProblem::BadExtension) {
    ShowMessage(ports_.prompts, catalogue_, TextId::WrongFileName, PromptIcon::Exclamation);
  }
  if (transferEnd_ == ArbTransfer::ReplyUnreadable) return DownloadEnd::ReplyUnreadable;
  if (!refused) return DownloadEnd::NotSent;
  const auto index = static_cast<std::size_t>(failed - 1);
  outcome_.Detail = sequence_.Channels.ArbFiles[index].FilePath + ": " + waveforms_.Reason();
  return DownloadEnd::Refused;
}

int Downloader::TransferUsedArbs() {
  transferEnd_ = ArbTransfer::Done;
  int failed = 0;
  waveforms_.SetTimeOut(kTimeOut30s);
  for (int number = 1; number <= kArbNumbers && !endRequested_; ++number) {
    ArbFileEntry& entry = sequence_.Channels.ArbFiles[static_cast<std::size_t>(number - 1)];
    if (entry.UseFlag == 0 || !NeedsTransfer(entry, WaveformFolder(state_))) continue;
    transferEnd_ = waveforms_.SendAndCheck(entry, number, [&](std::int32_t milliseconds) {
      ShowTimedProgress(milliseconds, catalogue_.GetResString(TextId::SendingWaveform) + "...ARB " +
                                          std::to_string(number));
    });
    if (transferEnd_ == ArbTransfer::Done) continue;
    if (transferEnd_ == ArbTransfer::MemoryFull) {
      waveforms_.SetTimeOut(kTimeOut100ms);
    } else {
      failed = number;
    }
    break;
  }
  waveforms_.SetTimeOut(kTimeOut3s);
  return failed;
}

DownloadEnd Downloader::SendBlock(const std::string& workFile) {
  const std::optional<std::string> bytes = ReadWholeFile(workFile);
  if (!bytes) {
    ShowCritical(TextId::CompilerDataIllegal);
    return DownloadEnd::Refused;
  }
  const std::string header = BlockHeader(
      ":TRAC:SEQ " + std::to_string(sequence_.SequenceNumber) + ",\"" + sequence_.SequenceName + "\",",
      bytes->size());
  const std::span<const std::uint8_t> data(reinterpret_cast<const std::uint8_t*>(bytes->data()),
                                           bytes->size());
  if (Failed(commands_.SendBlockData(header, data, commands_.SelectInstrument(0)))) {
    return DownloadEnd::NotSent;
  }
  return WaitAndQueryError(kSequenceWait);
}

DownloadEnd Downloader::RecordInMemory() {
  const std::string command = ":TRAC:SEQ:REC " + std::to_string(sequence_.SequenceNumber);
  if (Failed(commands_.SendCommand(commands_.SelectInstrument(0), command, 0))) return DownloadEnd::NotSent;
  return WaitAndQueryError(kRecordWait);
}

DownloadEnd Downloader::WaitAndQueryError(std::int32_t milliseconds) {
  ShowTimedProgress(milliseconds, catalogue_.GetResString(TextId::SendingSequence));
  const std::optional<std::int32_t> error = dialogues_.QueryErrorNumber();
  if (!error) return DownloadEnd::ReplyUnreadable;
  outcome_.ErrorNumber = *error;
  return outcome_.ErrorNumber == 0 ? DownloadEnd::Done : DownloadEnd::InstrumentError;
}

DownloadEnd Downloader::TakeOver() {
  dialogues_.ClearStatus();
  if (endRequested_) return DownloadEnd::Cancelled;
  if (Failed(commands_.SendCommand(commands_.SelectInstrument(0), ":TRIG:COMP", 0))) {
    return DownloadEnd::NotSent;
  }
  const bool done = WaitForCompilation();
  if (done) return DownloadEnd::Done;
  if (endRequested_) return DownloadEnd::Cancelled;
  return commands_.InstrumentLost(0) ? DownloadEnd::NotSent : DownloadEnd::NotCompiled;
}

bool Downloader::WaitForCompilation() {
  const std::uint32_t begin = commands_.Clock().Now();
  bool shown = false;
  const bool done = dialogues_.WaitCompileDone([&] {
    if (!shown && TicksSince(commands_.Clock().Now(), begin) >= kQuietTime) {
      BeginProgress(catalogue_.GetResString(TextId::WaitingForCompilation), 0);
      shown = true;
    }
    return !endRequested_ && !ports_.progress.Cancelled();
  });
  if (shown) EndProgress();
  return done;
}

void Downloader::BeginProgress(const std::string& text, int seconds) {
  ports_.progress.Begin(text, seconds);
  ports_.progress.OfferCancel(catalogue_.GetResString(TextId::ButtonCancelTransfer),
                              catalogue_.GetResString(TextId::EndsAfterTransfer));
}

void Downloader::EndProgress() {
  if (ports_.progress.Cancelled()) endRequested_ = true;
  ports_.progress.End();
}

void Downloader::ShowTimedProgress(std::int32_t milliseconds, const std::string& text) {
  const std::int32_t seconds = ToInt32(milliseconds / 1000.0 - 1).value_or(0) + 1;
  BeginProgress(text, seconds);
  for (std::int32_t second = 0; second < seconds; ++second) {
    commands_.DelayMs(1000);
    ports_.progress.Advance();
    commands_.Pump().HandlePending();
  }
  EndProgress();
}

void Downloader::ShowCritical(TextId id) {
  ShowMessage(ports_.prompts, catalogue_, id, PromptIcon::Critical);
}

}  // namespace corlune
