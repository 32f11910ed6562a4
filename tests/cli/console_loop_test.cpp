#include "cli/console_loop.h"

#include <array>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

#include "support/fake_ports.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;

bool EndsTheProcess(int number) {
  struct sigaction action {};
  sigaction(number, nullptr, &action);
  return action.sa_handler == SIG_DFL;
}

TEST(ConsoleLoop, SignalsReachTheHandlerThatIsSet) {
  FakeClock clock;
  ConsoleLoop loop(clock);
  const std::array<int, 3> asking{SIGINT, SIGTERM, SIGHUP};
  std::vector<int> counts;
  loop.OnInterrupt([&](int count) { counts.push_back(count); });
  for (const int number : asking) std::raise(number);
  loop.HandlePending();
  EXPECT_THAT(counts, ElementsAre(1, 2, 3));

  loop.OnInterrupt({});
  for (const int number : asking) EXPECT_TRUE(EndsTheProcess(number)) << number;
}

// "corlune-cli run ... | tee log": Ctrl+C ends the reader too, and the stop must still be sent.
TEST(ConsoleLoop, AReaderThatIsGoneDoesNotEndARun) {
  FakeClock clock;
  ConsoleLoop loop(clock);
  loop.OnInterrupt([](int) {});
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  EXPECT_EQ(write(ends[1], "x", 1), -1);
  close(ends[1]);
  loop.OnInterrupt({});
  EXPECT_TRUE(EndsTheProcess(SIGPIPE));
}

TEST(ConsoleLoop, TheTerminalIsGivenBackAsItWas) {
  int master = -1;
  const pid_t child = forkpty(&master, nullptr, nullptr, nullptr);
  ASSERT_GE(child, 0);
  if (child == 0) {
    const auto lines = [] {
      termios now{};
      return tcgetattr(STDIN_FILENO, &now) == 0 && (now.c_lflag & ICANON) != 0 && (now.c_lflag & ECHO) != 0;
    };
    FakeClock clock;
    ConsoleLoop loop(clock);
    loop.RawKeys(true);
    const bool changed = !lines();
    loop.RawKeys(false);
    _exit(changed && lines() ? 0 : 1);
  }
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  close(master);
}

TEST(ConsoleLoop, AProgramThatSurvivesItsTerminalKeepsDoingSo) {
  std::signal(SIGHUP, SIG_IGN);
  {
    FakeClock clock;
    ConsoleLoop loop(clock);
    int calls = 0;
    loop.OnInterrupt([&](int) { ++calls; });
    std::raise(SIGHUP);
    loop.HandlePending();
    EXPECT_EQ(calls, 0);
  }
  EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN);
}

}  // namespace
}  // namespace corlune::testing
