#include "platform/single_instance.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/temp_folder.h"

namespace corlune {
namespace {

namespace fs = std::filesystem;
using testing::TempFolder;

TEST(SingleInstance, TheSecondStartSendsToTheFirst) {
  const TempFolder folder;
  SingleInstance first = SingleInstance::Acquire(folder.Path());
  ASSERT_TRUE(first.IsFirst());
  EXPECT_EQ(first.TakeMessage(), std::nullopt);
  EXPECT_FALSE(first.Notify("to itself"));

  // Another way to write the same folder.
  const SingleInstance second =
      SingleInstance::Acquire(folder.Path() + "/../" + fs::path(folder.Path()).filename().string());
  ASSERT_FALSE(second.IsFirst());
  const std::string large(60000, 'x');
  ASSERT_TRUE(second.Notify("open /a b/c.dat"));
  ASSERT_TRUE(second.Notify(""));
  ASSERT_TRUE(second.Notify(large));
  EXPECT_FALSE(second.Notify(std::string(SingleInstance::kLongestMessage + 1, 'x')));

  ASSERT_GE(first.ListenFd(), 0);
  pollfd ready{first.ListenFd(), POLLIN, 0};
  EXPECT_EQ(poll(&ready, 1, 0), 1);
  EXPECT_EQ(first.TakeMessage(), "open /a b/c.dat");
  EXPECT_EQ(first.TakeMessage(), "");
  EXPECT_EQ(first.TakeMessage(), large);
  EXPECT_EQ(first.TakeMessage(), std::nullopt);
}

TEST(SingleInstance, FoldersAreClaimedOneByOne) {
  const TempFolder one;
  const TempFolder other;
  const std::string deep = other.File(std::string(200, 'd'));
  fs::create_directory(deep);
  const SingleInstance first = SingleInstance::Acquire(one.Path());
  SingleInstance third = SingleInstance::Acquire(deep);
  EXPECT_TRUE(first.IsFirst());
  EXPECT_TRUE(third.IsFirst());
  // A folder name longer than a socket name may be.
  EXPECT_TRUE(SingleInstance::Acquire(deep).Notify("deep"));
  EXPECT_EQ(third.TakeMessage(), "deep");
  EXPECT_TRUE(SingleInstance::Acquire(one.File("none")).IsFirst());
}

TEST(SingleInstance, TheClaimEndsWithTheInstance) {
  const TempFolder folder;
  {
    SingleInstance moved = SingleInstance::Acquire(folder.Path());
    const SingleInstance owner = std::move(moved);
    EXPECT_FALSE(SingleInstance::Acquire(folder.Path()).IsFirst());
  }
  SingleInstance next = SingleInstance::Acquire(folder.Path());
  EXPECT_TRUE(next.IsFirst());
  EXPECT_TRUE(fs::is_empty(folder.Path()));
}

TEST(SingleInstance, ACrashLeavesNothingInTheWay) {
  const TempFolder folder;
  int pipeEnds[2];
  ASSERT_EQ(pipe(pipeEnds), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const SingleInstance claim = SingleInstance::Acquire(folder.Path());
    const char answer = claim.IsFirst() ? '1' : '0';
    if (write(pipeEnds[1], &answer, 1) == 1) pause();  // until it is killed
    _exit(1);
  }
  char answer = 0;
  ASSERT_EQ(read(pipeEnds[0], &answer, 1), 1);
  EXPECT_EQ(answer, '1');
  EXPECT_FALSE(SingleInstance::Acquire(folder.Path()).IsFirst());
  kill(child, SIGKILL);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  close(pipeEnds[0]);
  close(pipeEnds[1]);

  // Its socket is still there; the next instance takes its place.
  SingleInstance next = SingleInstance::Acquire(folder.Path());
  ASSERT_TRUE(next.IsFirst());
  EXPECT_TRUE(SingleInstance::Acquire(folder.Path()).Notify("after the crash"));
  EXPECT_EQ(next.TakeMessage(), "after the crash");
}

}  // namespace
}  // namespace corlune
