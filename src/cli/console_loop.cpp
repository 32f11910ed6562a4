#include "cli/console_loop.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

namespace corlune {
namespace {

constexpr std::uint32_t kTickInterval = 100;  // ms, the monitor's timer

// The signal handler may only touch these: the pipe wakes poll(), the count says how often.
volatile sig_atomic_t interruptCount = 0;
int wakePipe[2] = {-1, -1};
termios savedTerminal{};

void HandleSignal(int) {
  interruptCount = interruptCount + 1;
  const char byte = 1;
  const int saved = errno;
  [[maybe_unused]] const auto written = write(wakePipe[1], &byte, 1);
  errno = saved;
}

constexpr std::array<int, 4> kSignals{SIGINT, SIGTERM, SIGHUP, SIGPIPE};
std::array<struct sigaction, kSignals.size()> before;  // while a handler is set

void CatchSignals() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    struct sigaction action {};  // without SA_RESTART: a prompt that waits for a line ends
    action.sa_handler = kSignals[i] == SIGPIPE ? SIG_IGN : HandleSignal;
    sigaction(kSignals[i], nullptr, &before[i]);
    // Started so that it survives its terminal.
    if (kSignals[i] == SIGHUP && before[i].sa_handler == SIG_IGN) continue;
    sigaction(kSignals[i], &action, nullptr);
  }
}

void ReleaseSignals() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &before[i], nullptr);
}

}  // namespace

ConsoleLoop::ConsoleLoop(TickClock& clock) : clock_(clock) {
  // Without the pipe a signal is noticed at the next turn of the loop all the same.
  if (pipe2(wakePipe, O_NONBLOCK | O_CLOEXEC) != 0) wakePipe[0] = wakePipe[1] = -1;
}

ConsoleLoop::~ConsoleLoop() {
  RawKeys(false);
  OnInterrupt({});
  for (int& end : wakePipe) {
    if (end >= 0) close(end);
    end = -1;
  }
}

void ConsoleLoop::OnInterrupt(std::function<void(int)> handler) {
  if (!onInterrupt_ && handler) {
    interruptCount = 0;
    interruptsSeen_ = 0;
    CatchSignals();
  }
  if (onInterrupt_ && !handler) ReleaseSignals();
  onInterrupt_ = std::move(handler);
}

void ConsoleLoop::RawKeys(bool on) {
  rawKeys_ = on;
  // A program in the background would be halted by a change of the terminal, and its run left to itself.
  const bool ours = isatty(STDIN_FILENO) != 0 && tcgetpgrp(STDIN_FILENO) == getpgrp();
  if (on && !terminalChanged_ && ours && tcgetattr(STDIN_FILENO, &savedTerminal) == 0) {
    termios single = savedTerminal;
    single.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    single.c_cc[VMIN] = 1;
    single.c_cc[VTIME] = 0;
    terminalChanged_ = tcsetattr(STDIN_FILENO, TCSANOW, &single) == 0;
  } else if (!on && terminalChanged_) {
    tcsetattr(STDIN_FILENO, TCSANOW, &savedTerminal);
    terminalChanged_ = false;
  }
}

void ConsoleLoop::Enable(bool on) {
  if (on) {
    nextTick_ = clock_.Now() + kTickInterval;
  } else {
    nextTick_.reset();
  }
}

void ConsoleLoop::HandlePending() {
  Turn(0);
}

void ConsoleLoop::SleepUntil(std::uint32_t tick) {
  Turn(0);
  while (!TickReached(clock_.Now(), tick)) Turn(TicksSince(tick, clock_.Now()));
}

void ConsoleLoop::Turn(int milliseconds) {
  if (nextTick_ && !inTick_) {
    milliseconds = std::min(milliseconds, std::max(0, TicksSince(*nextTick_, clock_.Now())));
  }
  std::array<pollfd, 2> waits{{{wakePipe[0], POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
  const nfds_t count = rawKeys_ && !inputEnded_ ? 2 : 1;
  const int ready = poll(waits.data(), count, std::max(0, milliseconds));
  if (ready > 0 && count == 2 && (waits[1].revents & (POLLIN | POLLHUP | POLLERR | POLLNVAL)) != 0)
    ReadKeys();
  std::array<char, 16> drained{};
  while (read(wakePipe[0], drained.data(), drained.size()) > 0) {
  }
  while (interruptsSeen_ < interruptCount) {
    ++interruptsSeen_;
    // A copy: the handler may take itself away.
    if (const auto handler = onInterrupt_) handler(interruptsSeen_);
  }
  // A tick that runs a wait of its own comes back here; the timer does not fire inside its own handler.
  if (nextTick_ && !inTick_ && TickReached(clock_.Now(), *nextTick_)) {
    // From when it was due, so that the ticks keep their distance; one that a long wait swallowed is left
    // out.
    *nextTick_ += kTickInterval;
    if (TickReached(clock_.Now(), *nextTick_)) nextTick_ = clock_.Now() + kTickInterval;
    inTick_ = true;
    if (onTick_) onTick_();
    inTick_ = false;
  }
}

void ConsoleLoop::ReadKeys() {
  std::array<char, 64> keys{};
  const auto count = read(STDIN_FILENO, keys.data(), keys.size());
  if (count <= 0) {
    inputEnded_ = count == 0 || errno != EINTR;
    return;
  }
  for (ssize_t i = 0; i < count; ++i) {
    if (onKey_) onKey_(keys[static_cast<std::size_t>(i)]);
  }
}

}  // namespace corlune
