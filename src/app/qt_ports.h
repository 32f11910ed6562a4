// The ports of the window program: message boxes, the event loop, the monitor's timer, file dialogs.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include <QTimer>

#include "core/ports.h"
#include "session/session_ports.h"

namespace corlune {

// Modal boxes over the active window, in the application's language.
class QtPrompts : public Prompts {
 public:
  explicit QtPrompts(const bool& english) : english_(english) {}
  PromptAnswer Message(const MessageRequest& request) override;
  std::optional<std::string> Input(const InputRequest& request) override;

 private:
  const bool& english_;
};

// Waits inside the event loop; the processor sleeps meanwhile.
class QtEventPump : public EventPump {
 public:
  explicit QtEventPump(TickClock& clock) : clock_(clock) {}
  void HandlePending() override;
  void SleepUntil(std::uint32_t tick) override;

 private:
  TickClock& clock_;
};

// Timer1: 100 ms, off until a run starts.
class QtTickSource : public TickSource {
 public:
  QtTickSource();
  void OnTick(std::function<void()> handler);
  void Enable(bool on) override;

 private:
  QTimer timer_;
};

class QtFileDialogs : public FileDialogs {
 public:
  std::optional<std::string> ChooseOpen(const std::string& filter) override;
  std::optional<std::string> ChooseSave(const std::string& filter, const std::string& suggested) override;
};

class QtEndProgram : public EndProgram {
 public:
  void EndNow(int exitCode) override;
};

// "Sequence data(*.dat) | *.dat" in the form that the file dialog takes: "Sequence data (*.dat)".
std::string QtFilter(const std::string& filter);

}  // namespace corlune
