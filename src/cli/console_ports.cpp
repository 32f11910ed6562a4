#include "cli/console_ports.h"

#include <iostream>
#include <unistd.h>
#include <utility>

#include "core/time_text.h"

namespace corlune {
namespace {

// Texts of several lines become one, so that a message is one line on the console.
std::string OneLine(const std::string& text) {
  std::string line;
  for (const char c : text) {
    if (c == '\r') continue;
    line += c == '\n' ? ' ' : c;
  }
  while (!line.empty() && line.back() == ' ') line.pop_back();
  return line;
}

}  // namespace

ConsolePrompts::ConsolePrompts(ConsoleLoop& loop, ConsoleAnswers answers)
    : loop_(loop), answers_(std::move(answers)), person_(isatty(STDIN_FILENO) != 0) {}

std::optional<std::string> ConsolePrompts::ReadLine(const std::string& question) {
  loop_.RawKeys(false);
  std::cerr << question << std::flush;
  std::string line;
  const bool got = static_cast<bool>(std::getline(std::cin, line));
  loop_.RawKeys(true);
  if (!got) return std::nullopt;
  return line;
}

PromptAnswer ConsolePrompts::Message(const MessageRequest& request) {
  const bool notice = request.icon == PromptIcon::Information && request.buttons == PromptButtons::Ok;
  (notice ? std::cout : std::cerr) << OneLine(request.text) << std::endl;
  const bool yesNo = request.buttons == PromptButtons::YesNo || request.buttons == PromptButtons::YesNoCancel;
  if (request.buttons == PromptButtons::Ok) return PromptAnswer::Ok;
  const PromptAnswer yes = yesNo ? PromptAnswer::Yes : PromptAnswer::Ok;
  const PromptAnswer no = request.Unanswered();
  if (answers_.Yes) return yes;
  if (!person_) return no;
  while (true) {
    const auto line = ReadLine(yesNo ? "[y/n] " : "[Enter = OK, c = Cancel] ");
    if (!line) return no;
    if (*line == "y" || *line == "Y" || (!yesNo && line->empty())) return yes;
    if (*line == "n" || *line == "N") return yesNo ? PromptAnswer::No : no;
    if (*line == "c" || *line == "C") return no;
  }
}

std::optional<std::string> ConsolePrompts::Input(const InputRequest& request) {
  if (answers_.Name && request.prompt == namePrompt_) {
    // Given on the command line once; when it is refused the prompt comes again and counts as cancelled.
    return std::exchange(answers_.Name, std::string()).value();
  }
  if (answers_.Yes) return request.defaultText;
  if (!person_) return std::nullopt;
  const auto line = ReadLine(OneLine(request.prompt) + " [" + request.defaultText + "] ");
  if (!line) return std::nullopt;
  return line->empty() ? request.defaultText : *line;
}

ConsoleProgress::ConsoleProgress() : out_(&std::cout), terminal_(isatty(STDOUT_FILENO) != 0) {}

void ConsoleProgress::UseStandardError() {
  out_ = &std::cerr;
  terminal_ = isatty(STDERR_FILENO) != 0;
}

void ConsoleProgress::Draw(char end) const {
  *out_ << "\r" << text_;
  if (steps_ > 0) *out_ << " " << done_ << "/" << steps_ << " s";
  *out_ << end << std::flush;
}

void ConsoleProgress::Begin(const std::string& text, int steps) {
  text_ = OneLine(text);
  steps_ = steps;
  done_ = 0;
  if (terminal_) {
    Draw(' ');
  } else if (steps_ > 0) {
    *out_ << text_ << " (" << steps_ << " s)" << std::endl;
  } else {
    *out_ << text_ << std::endl;
  }
}

void ConsoleProgress::Advance() {
  ++done_;
  if (terminal_) Draw(' ');
}

void ConsoleProgress::End() {
  if (terminal_) Draw('\n');
}

ConsoleDisplay::ConsoleDisplay() : terminal_(isatty(STDOUT_FILENO) != 0) {}

void ConsoleDisplay::Attach(const AppState& state, const SequenceData& sequence,
                            const MessageCatalogue& catalogue) {
  state_ = &state;
  sequence_ = &sequence;
  catalogue_ = &catalogue;
}

void ConsoleDisplay::RefreshControls() {
  const StepIndex step{state_->CurrentStep};
  const bool running = state_->RunState == RunState::Running;
  if (RunsHeldSequence(*state_) && running && RowOf(step).value != shownRow_) {
    shownRow_ = RowOf(step).value;
    ShowStep(NumberOf(step).value);
  }
  if (state_->RunState == shownState_) return;
  shownState_ = state_->RunState;
  if (shownState_ == RunState::Held) {
    std::cout << TimeText(state_->ElapsedTime) << "  " << catalogue_->GetResString(TextId::ButtonHold)
              << std::endl;
  }
}

void ConsoleDisplay::ShowModeLayout(int operationMode) {
  std::cout << catalogue_->GetResString(operationMode == 1 ? TextId::StateExecutionMode
                                                           : TextId::StateEditMode)
            << std::endl;
}

void ConsoleDisplay::HighlightRow(GridRow row, bool on) {
  if (!on) return;
  // The monitor sets the mark anew at every poll; only a change of the step is worth a line.
  if (row.value == shownRow_) return;
  shownRow_ = row.value;
  ShowStep(ShownNumber(NumberOf(IndexOf(row)), sequence_->StartStep));
}

void ConsoleDisplay::ShowStep(int number) const {
  std::cout << TimeText(state_->ElapsedTime) << "  " << catalogue_->GetResString(TextId::StepWord) << " "
            << number << std::endl;
}

void ConsoleDisplay::ScrollTo(GridRow) {}

void ConsoleDisplay::ShowTotalTime(double milliseconds) {
  std::cout << TimePanelText(*catalogue_, TextId::TotalTime, milliseconds) << std::endl;
}

void ConsoleDisplay::ShowNotice(NoticeLevel, const std::string& text) {
  std::cerr << text << std::endl;
}

void ConsoleDisplay::ShowElapsedTime(std::int32_t milliseconds) {
  if (terminal_ && state_->RunState == RunState::Running)
    std::cout << TimeText(milliseconds) << '\r' << std::flush;
}

}  // namespace corlune
