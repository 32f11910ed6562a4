// What the console program shows and asks: messages and questions on the terminal, a progress line, and a
// line for every step of a run. Errors go to standard error, everything else to standard output.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

#include "cli/console_loop.h"
#include "core/app_state.h"
#include "core/catalogue.h"
#include "core/ports.h"
#include "sequence/sequence_data.h"

namespace corlune {

struct ConsoleAnswers {
  bool Yes = false;                 // every question is answered OK or Yes, every input with its default
  std::optional<std::string> Name;  // the sequence name, in place of the prompt for it
};

// Without a person at the terminal a message counts as OK, a question as Cancel or No, an input as
// cancelled.
class ConsolePrompts : public Prompts {
 public:
  ConsolePrompts(ConsoleLoop& loop, ConsoleAnswers answers);
  // The text of the prompt that ConsoleAnswers::Name answers; others come from simulated instruments.
  void TakeNameFor(const std::string& prompt) { namePrompt_ = prompt; }
  PromptAnswer Message(const MessageRequest& request) override;
  std::optional<std::string> Input(const InputRequest& request) override;

 private:
  std::optional<std::string> ReadLine(const std::string& question);

  ConsoleLoop& loop_;
  ConsoleAnswers answers_;
  std::string namePrompt_;
  bool person_;
};

class ConsoleProgress : public Progress {
 public:
  ConsoleProgress();
  // For commands whose result goes to standard output.
  void UseStandardError();
  void Begin(const std::string& text, int steps) override;
  void Advance() override;
  void End() override;

 private:
  void Draw(char end) const;
  std::ostream* out_;  // never null
  bool terminal_;
  std::string text_;
  int steps_ = 0;
  int done_ = 0;
};

class ConsoleDisplay : public RunDisplay {
 public:
  ConsoleDisplay();
  // Before the first call of the port: the state that is shown and the words for it. Both must outlive this.
  void Attach(const AppState& state, const SequenceData& sequence, const MessageCatalogue& catalogue);

  void RefreshControls() override;
  void ShowModeLayout(int operationMode) override;
  void HighlightRow(GridRow row, bool on) override;
  void ScrollTo(GridRow top) override;
  void ShowTotalTime(double milliseconds) override;
  void ShowNotice(NoticeLevel level, const std::string& text) override;
  void ShowElapsedTime(std::int32_t milliseconds) override;

 private:
  void ShowStep(int number) const;

  const AppState* state_ = nullptr;
  const SequenceData* sequence_ = nullptr;
  const MessageCatalogue* catalogue_ = nullptr;
  bool terminal_;
  int shownRow_ = 0;
  RunState shownState_ = RunState::Stopped;
};

// The sequence view does not exist on a console.
class NoView : public ViewDisplay {
 public:
  void PicDisp() override {}
  void MoveShape(std::uint32_t) override {}
  void MeasureStart() override {}
  void MeasureEnd() override {}
};

}  // namespace corlune
