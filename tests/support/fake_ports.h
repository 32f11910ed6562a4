// Test doubles for the ports: a person who answers from a script, a clock that only waits move, an event
// pump that runs scripted presses inside a wait, and displays that record what they were told.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/ports.h"

namespace corlune::testing {

// One ordered list of everything that happened; fakes that share it keep the order across ports.
using EventList = std::vector<std::string>;

inline const char* IconName(PromptIcon icon) {
  constexpr std::array kNames{"none", "information", "question", "exclamation", "critical"};
  return kNames.at(static_cast<std::size_t>(icon));
}

// Answers from queues; a message or input that nobody queued fails the test, unless the person agrees to all.
// Keeps what was said: "icon: text", "input: default text".
class ScriptedPrompts : public Prompts {
 public:
  explicit ScriptedPrompts(EventList* events = nullptr) : events_(events) {}
  ~ScriptedPrompts() override {
    if (agreesIn_) return;
    EXPECT_TRUE(answers_.empty()) << answers_.size() << " queued answers were never asked for";
    EXPECT_TRUE(inputs_.empty()) << inputs_.size() << " queued inputs were never asked for";
  }

  ScriptedPrompts& Answer(PromptAnswer answer) {
    answers_.push_back(answer);
    return *this;
  }
  ScriptedPrompts& Type(std::optional<std::string> text) {
    inputs_.push_back(std::move(text));
    return *this;
  }
  // Runs while the next message is open, before it is answered.
  ScriptedPrompts& WhileOpen(std::function<void()> action) {
    whileOpen_ = std::move(action);
    return *this;
  }
  // What nobody queued is answered with Yes or OK, and a name with "E2E", behind the events of `pump`.
  void AgreeToAll(EventPump& pump) { agreesIn_ = &pump; }

  PromptAnswer Message(const MessageRequest& request) override {
    messages.push_back(request);
    Open(std::string(IconName(request.icon)) + ": " + request.text, "message ");
    if (!answers_.empty() && (!agreesIn_ || Offers(request.buttons, answers_.front()))) {
      const PromptAnswer answer = answers_.front();
      answers_.pop_front();
      EXPECT_TRUE(Offers(request.buttons, answer)) << "the queued answer is no button of: " << request.text;
      return answer;
    }
    if (agreesIn_) return Offers(request.buttons, PromptAnswer::Ok) ? PromptAnswer::Ok : PromptAnswer::Yes;
    ADD_FAILURE() << "a message that nobody queued: " << request.text;
    return request.buttons == PromptButtons::Ok ? PromptAnswer::Ok : PromptAnswer::Cancel;
  }
  std::optional<std::string> Input(const InputRequest& request) override {
    inputRequests.push_back(request);
    Open("input: " + request.defaultText, "");
    if (inputs_.empty() && agreesIn_) return "E2E";
    if (inputs_.empty()) {
      ADD_FAILURE() << "an input that nobody queued: " << request.prompt;
      return std::nullopt;
    }
    auto text = std::move(inputs_.front());
    inputs_.pop_front();
    return text;
  }

  std::vector<MessageRequest> messages;
  std::vector<InputRequest> inputRequests;
  EventList said;

 private:
  void Open(const std::string& what, const char* kind) {
    said.push_back(what);
    if (events_) events_->push_back(kind + what);
    if (whileOpen_) std::exchange(whileOpen_, nullptr)();
    if (agreesIn_) agreesIn_->HandlePending();
  }
  static bool Offers(PromptButtons buttons, PromptAnswer answer) {
    const bool ok = buttons == PromptButtons::Ok || buttons == PromptButtons::OkCancel;
    if (answer == PromptAnswer::Ok) return ok;
    if (answer == PromptAnswer::Cancel)
      return buttons != PromptButtons::Ok && buttons != PromptButtons::YesNo;
    return !ok;
  }

  EventList* events_;
  std::deque<PromptAnswer> answers_;
  std::deque<std::optional<std::string>> inputs_;
  std::function<void()> whileOpen_;
  EventPump* agreesIn_ = nullptr;
};

class FakeClock : public TickClock {
 public:
  explicit FakeClock(std::uint32_t start = 1000) : now_(start) {}
  std::uint32_t Now() const override { return now_; }
  void Set(std::uint32_t now) { now_ = now; }
  void Advance(std::uint32_t milliseconds) { now_ += milliseconds; }

 private:
  std::uint32_t now_;
};

// Sleeping moves the fake clock, in slices that let timed actions run at their time. On its n-th call
// (HandlePending and SleepUntil both count, from 1) it runs a scripted action, as a button or timer would.
class FakePump : public EventPump {
 public:
  explicit FakePump(FakeClock& clock) : clock_(clock) {}

  void OnCall(int n, std::function<void()> action) { actions_.emplace(n, std::move(action)); }
  void OnEveryCall(std::function<void()> action) { everyCall_ = std::move(action); }
  // Runs when the clock reaches `tick` inside a sleep.
  void At(std::uint32_t tick, std::function<void()> action) { timed_.emplace_back(tick, std::move(action)); }

  void HandlePending() override { Call(); }
  void SleepUntil(std::uint32_t tick) override {
    Call();
    while (true) {
      std::size_t next = timed_.size();
      for (std::size_t i = 0; i < timed_.size(); ++i) {
        if (!TickReached(tick, timed_[i].first)) continue;
        if (next == timed_.size() || TicksSince(timed_[next].first, timed_[i].first) > 0) next = i;
      }
      if (next == timed_.size()) break;
      auto [at, action] = std::move(timed_[next]);
      timed_.erase(timed_.begin() + static_cast<std::ptrdiff_t>(next));
      if (!TickReached(clock_.Now(), at)) clock_.Set(at);
      action();
    }
    if (!TickReached(clock_.Now(), tick)) clock_.Set(tick);
  }

  int Calls() const { return calls_; }

 private:
  void Call() {
    ++calls_;
    if (everyCall_) everyCall_();
    const auto range = actions_.equal_range(calls_);
    std::vector<std::function<void()>> due;
    for (auto it = range.first; it != range.second; ++it) due.push_back(it->second);
    for (auto& action : due) action();
  }

  FakeClock& clock_;
  int calls_ = 0;
  std::multimap<int, std::function<void()>> actions_;
  std::function<void()> everyCall_;
  std::vector<std::pair<std::uint32_t, std::function<void()>>> timed_;
};

class RecordedTickSource : public TickSource {
 public:
  explicit RecordedTickSource(EventList* events = nullptr) : events_(events) {}
  void Enable(bool on) override {
    enabled = on;
    if (events_) events_->push_back(on ? "timer on" : "timer off");
  }
  bool enabled = false;

 private:
  EventList* events_;
};

class RecordedProgress : public Progress {
 public:
  explicit RecordedProgress(EventList* events = nullptr) : events_(events) {}
  void Begin(const std::string& text, int steps) override {
    ++depth;
    texts.push_back(text);
    if (events_) events_->push_back("progress " + std::to_string(steps) + ": " + text);
  }
  void Advance() override { ++advances; }
  void End() override {
    --depth;
    cancel = cancelled_ = waiting_ = false;
  }
  void ShowWait(const std::string& text, const std::string&, int, int) override {
    if (!std::exchange(waiting_, true)) ++depth;
    waits.push_back(text);
    cancelled_ = text == cancelAt;
  }
  bool Cancelled() const override { return cancelled_ || cancel; }
  std::vector<std::string> waits;
  bool cancel = false;   // pressed, until the end
  std::string cancelAt;  // the wait in which Cancel is pressed
  int depth = 0;
  int advances = 0;
  std::vector<std::string> texts;

 private:
  EventList* events_;
  bool waiting_ = false;
  bool cancelled_ = false;
};

class RecordedDisplay : public RunDisplay {
 public:
  explicit RecordedDisplay(EventList* events = nullptr) : events_(events) {}
  void RefreshControls() override { Note("refresh"); }
  void ShowModeLayout(int mode) override { Note("layout " + std::to_string(mode)); }
  void HighlightRow(GridRow row, bool on) override {
    Note((on ? "highlight " : "unhighlight ") + std::to_string(row.value));
  }
  void ScrollTo(GridRow top) override { Note("scroll " + std::to_string(top.value)); }
  void ShowTotalTime(double ms) override { Note("total " + std::to_string(static_cast<long long>(ms))); }
  void ShowElapsedTime(std::int32_t ms) override { Note("elapsed " + std::to_string(ms)); }
  void ShowNotice(NoticeLevel, const std::string& text) override { Note("notice: " + text); }

 private:
  void Note(std::string what) {
    if (events_) events_->push_back(std::move(what));
  }
  EventList* events_;
};

class RecordedView : public ViewDisplay {
 public:
  explicit RecordedView(EventList* events = nullptr) : events_(events) {}
  void PicDisp() override { Note("view redraw"); }
  void MoveShape(std::uint32_t tick) override { Note("view marker " + std::to_string(tick)); }
  void MeasureStart() override { Note("view start"); }
  void MeasureEnd() override { Note("view end"); }

 private:
  void Note(std::string what) {
    if (events_) events_->push_back(std::move(what));
  }
  EventList* events_;
};

class RecordedEnd : public EndProgram {
 public:
  void EndNow(int exitCode) override {
    ended = true;
    code = exitCode;
  }
  bool ended = false;
  int code = 0;
};

}  // namespace corlune::testing
