// ConsoleLoop: the console program's event loop. It sleeps in poll() until a key arrives, Ctrl+C is
// pressed, the monitor's tick is due or the awaited time has come.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "core/ports.h"

namespace corlune {

class ConsoleLoop : public EventPump, public TickSource {
 public:
  // Keys are taken from standard input while `RawKeys` is on; with a terminal they arrive one by one.
  explicit ConsoleLoop(TickClock& clock);
  ~ConsoleLoop() override;
  ConsoleLoop(const ConsoleLoop&) = delete;
  ConsoleLoop& operator=(const ConsoleLoop&) = delete;

  // Handlers; both may be empty. They run inside HandlePending and SleepUntil.
  void OnKey(std::function<void(char)> handler) { onKey_ = std::move(handler); }
  void OnTick(std::function<void()> handler) { onTick_ = std::move(handler); }
  // Called for every Ctrl+C, and when the program is asked to end or its terminal goes away, with the number
  // of times since the handler was set. Without a handler such a signal ends the process at once. While there
  // is one, a reader of the output that goes away does not: the instrument may be running.
  void OnInterrupt(std::function<void(int)> handler);

  // Switches a terminal to single keys without echo; back off for prompts that read a line.
  void RawKeys(bool on);

  void HandlePending() override;
  void SleepUntil(std::uint32_t tick) override;
  void Enable(bool on) override;  // the monitor's timer

 private:
  // Handles what is due; waits at most `milliseconds` for something to come.
  void Turn(int milliseconds);
  void ReadKeys();

  TickClock& clock_;
  std::function<void(char)> onKey_;
  std::function<void()> onTick_;
  std::function<void(int)> onInterrupt_;
  std::optional<std::uint32_t> nextTick_;
  bool inTick_ = false;
  bool rawKeys_ = false;
  bool terminalChanged_ = false;
  bool inputEnded_ = false;
  int interruptsSeen_ = 0;
};

}  // namespace corlune
