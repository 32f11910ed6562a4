#include "session/session.h"

#include <utility>

#include "compile/read_back.h"
#include "core/files.h"
#include "platform/folders.h"
#include "platform/language.h"

namespace corlune {

namespace {

constexpr std::int32_t kEnglishOffset = 10000;

std::int32_t LanguageOffset(const SessionOptions& options) {
  return options.english.value_or(CheckLanguage()) ? kEnglishOffset : 0;
}

}  // namespace

Session::Session(const SessionPorts& ports, SessionOptions options, const MakeOutsideParts& makeParts)
    : ports_(ports),
      options_(std::move(options)),
      catalogue_(LanguageOffset(options_)),
      end_(ports.end, [this] { KeepForNextStart(); }),
      outside_(makeParts(state_, end_)) {
  state_.UseEnglish = catalogue_.English();
  state_.LangOffset = state_.UseEnglish ? kEnglishOffset : 0;
  state_.UiFontName = state_.UseEnglish ? "Arial" : "ＭＳ Pゴシック";
  state_.AppFolder = options_.appFolder;
  state_.StdIniPath = JoinPath(options_.appFolder, kModelDefinitionName);
  state_.SysIniPath = JoinPath(options_.appFolder, "Corlune.ini");
  state_.WorkFilePath = JoinPath(options_.appFolder, "Corlune_");

  commands_ = std::make_unique<CommandLayer>(state_, definition_, *outside_.gp, ports_.clock, ports_.pump);
  dialogues_ = std::make_unique<InstrumentDialogues>(*commands_, ports_.prompts, catalogue_);
  waveforms_ = std::make_unique<WaveformTransfer>(*commands_, *dialogues_, ports_.prompts, catalogue_);
  downloader_ = std::make_unique<Downloader>(
      state_, definition_, sequence_, *commands_, *dialogues_, *outside_.compiler, catalogue_,
      DownloadPorts{ports_.prompts, ports_.progress, ports_.runDisplay, activity_});
  const RunContext run{state_,         sequence_,    *commands_,        catalogue_,
                       ports_.prompts, ports_.timer, ports_.runDisplay, ports_.view};
  measure_ = std::make_unique<Measure>(run);
  queries_ = std::make_unique<RunQueries>(run, *measure_);
  control_ = std::make_unique<RunControl>(
      run, *measure_, *queries_, activity_, [this] { return downloader_->DownloadSequence(); },
      [this] { return Reopen(); });
  monitor_ = std::make_unique<RunMonitor>(run, *measure_, *queries_, *control_, activity_);
}

Session::~Session() = default;

std::string Session::Caption() const {
  return catalogue_.GetResString(TextId::MainWindowTitle) + "  " + state_.CurrentFilePath;
}

std::string Session::WorkFileOf(const std::string& model) const {
  return JoinPath(state_.AppFolder, "Corlune_" + model + ".ini");
}

void Session::SetWorkFilePath() {
  state_.WorkFilePath = WorkFileOf(state_.ModelName);
}

bool Session::ReadBack() {
  if (commands_->Online() && !commands_->CarriesBlocks()) {
    ShowMessage(ports_.prompts, catalogue_, TextId::CarriesNoBlocks, PromptIcon::Exclamation);
    return false;
  }
  if (!MayReplaceSequence()) return false;
  const WorkGuard guard(activity_, Work::Download);
  ports_.display.ShowWaitCursor(true);
  const ReadBackEnd end = ReadBackSequence(*commands_, ports_.prompts, ports_.progress, catalogue_,
                                           sequence_.SequenceNumber, sequence_);
  ports_.display.ShowWaitCursor(false);
  if (end == ReadBackEnd::Cancelled) {
    ports_.runDisplay.ShowNotice(NoticeLevel::Information,
                                 catalogue_.GetResString(TextId::ReadBackCancelled));
  }
  if (end != ReadBackEnd::Done) return false;
  state_.Modified = true;
  ports_.display.SequenceReplaced(SequenceChange::ReadBack);
  return true;
}

}  // namespace corlune
