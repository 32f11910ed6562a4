// Ports: how the toolkit-free rooms talk to a person, to time and to the windows. The window program, the
// console program and the tests each bring their own implementation; no type of a toolkit stands here.
//
// All calls come from the single user-interface thread. Where a call "may pump events", other handlers
// (buttons, timers, a close request) can run inside it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/step_numbering.h"

namespace corlune {

enum class PromptIcon { None, Information, Question, Exclamation, Critical };
enum class PromptButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class PromptAnswer { Ok, Cancel, Yes, No };

struct MessageRequest {
  std::string text;  // UTF-8, lines separated by "\n" or "\r\n"
  PromptIcon icon = PromptIcon::None;
  PromptButtons buttons = PromptButtons::Ok;
  std::string caption;  // empty: the application title
  // The answer of Escape and of the box's close button, which is then the default button, too: for a question
  // of which another answer does what nobody may do by mistake. Absent: Cancel, else No, else OK.
  std::optional<PromptAnswer> escape = std::nullopt;

  // What counts when nobody answers.
  PromptAnswer Unanswered() const {
    if (escape) return *escape;
    if (buttons == PromptButtons::Ok) return PromptAnswer::Ok;
    return buttons == PromptButtons::YesNo ? PromptAnswer::No : PromptAnswer::Cancel;
  }
};

struct InputRequest {
  std::string prompt;
  std::string caption;      // empty: the application title
  std::string defaultText;  // shown in the box, selected
};

// Modal questions to the person at the program. Both calls block and pump events.
class Prompts {
 public:
  virtual ~Prompts() = default;
  // Answers only with a button of `request.buttons`; closing the box gives
  // `request.Unanswered()`.
  virtual PromptAnswer Message(const MessageRequest& request) = 0;
  // nullopt when the input was cancelled.
  virtual std::optional<std::string> Input(const InputRequest& request) = 0;
};

// Unsigned 32-bit milliseconds that wrap after 49.7 days. Only differences have a meaning; compare two
// ticks with TickReached or TicksSince, never with <.
class TickClock {
 public:
  virtual ~TickClock() = default;
  virtual std::uint32_t Now() const = 0;
};

// Milliseconds from `since` to `now`, right across the wrap.
constexpr std::int32_t TicksSince(std::uint32_t now, std::uint32_t since) {
  return static_cast<std::int32_t>(now - since);
}
// True when `now` is at or after `deadline` (signed difference).
constexpr bool TickReached(std::uint32_t now, std::uint32_t deadline) {
  return TicksSince(now, deadline) >= 0;
}

class EventPump {
 public:
  virtual ~EventPump() = default;
  // Runs the handlers of everything that is waiting, then returns. Handlers run inside.
  virtual void HandlePending() = 0;
  // Returns when the clock has reached `tick`; sleeps in the event loop meanwhile, never spins. Handlers
  // run inside.
  virtual void SleepUntil(std::uint32_t tick) = 0;
};

// The monitor's 100 ms timer.
class TickSource {
 public:
  virtual ~TickSource() = default;
  virtual void Enable(bool on) = 0;
};

// A window or line that shows how far a long operation is. Does not pump events itself.
class Progress {
 public:
  virtual ~Progress() = default;
  // `steps`: seconds; 0: not known.
  virtual void Begin(const std::string& text, int steps) = 0;
  virtual void Advance() = 0;
  virtual void End() = 0;
  // Says what the next blocking call is for, in place of what was shown before, until End; `done` of `steps`
  // (0: not known). A button with the text `cancel` gives up. The default shows nothing.
  virtual void ShowWait(const std::string& /*text*/, const std::string& /*cancel*/, int /*done*/,
                        int /*steps*/) {}
  // Adds a button with the text `cancel` to what Begin has opened, until End. Once it was pressed, `pressed`
  // says what comes before the end.
  virtual void OfferCancel(const std::string& /*cancel*/, const std::string& /*pressed*/) {}
  // The button was pressed since it was offered.
  virtual bool Cancelled() const { return false; }
  // What was opened can be read on the screen. Events have to be handled for that.
  virtual bool Painted() const { return true; }
};

// How much a notice matters.
enum class NoticeLevel { Information, Warning, Error };

// What the run commands and the monitor show in the main window.
class RunDisplay {
 public:
  virtual ~RunDisplay() = default;
  // Derives every control's state anew from the application state and what is under way (main window and
  // sequence view).
  virtual void RefreshControls() = 0;
  // Edit layout (0) or execution layout (1) of the main window.
  virtual void ShowModeLayout(int operationMode) = 0;
  // Marks (CellColorChange) or unmarks (CellColorBack) a row in the step grids.
  virtual void HighlightRow(GridRow row, bool on) = 0;
  // Scrolls the step grids so that `top` is their first visible step row (row 1 is the first step).
  virtual void ScrollTo(GridRow top) = 0;
  // Total time in ms (-1: endless), elapsed time in ms; status bars of main window and sequence view.
  virtual void ShowTotalTime(double milliseconds) = 0;
  virtual void ShowElapsedTime(std::int32_t milliseconds) = 0;
  // Says something that must not interrupt. The default says nothing.
  virtual void ShowNotice(NoticeLevel /*level*/, const std::string& /*text*/) {}
};

// The sequence view's part in a run. Called only while AppState::SequenceViewShown.
class ViewDisplay {
 public:
  virtual ~ViewDisplay() = default;
  virtual void PicDisp() = 0;
  virtual void MoveShape(std::uint32_t tick) = 0;
  virtual void MeasureStart() = 0;
  virtual void MeasureEnd() = 0;
};

// Ends the program at once, without close handling. The real ones do not return; a test's does, and its
// caller must then come to a quick end.
class EndProgram {
 public:
  virtual ~EndProgram() = default;
  virtual void EndNow(int exitCode) = 0;
};

}  // namespace corlune
