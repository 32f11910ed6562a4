#include "platform/file_access.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/temp_folder.h"

namespace corlune {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using testing::TempFolder;

std::vector<std::string> Names(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  return names;
}

mode_t Mode(const std::string& path) {
  struct stat info {};
  EXPECT_EQ(stat(path.c_str(), &info), 0) << path;
  return info.st_mode & 07777;
}

// No file of this process may grow beyond the limit while the object lives: a disk that is full.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &old_);
    const rlimit limit{bytes, old_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit old_{};
  void (*handler_)(int);
};

TEST(ReplaceFileBytes, AFullDiskLeavesTheOldFile) {
  const TempFolder folder;
  const std::string path = folder.Write("a.dat", "old");
  std::string error;
  bool done = true;
  {
    const FullDisk full(1000);
    done = ReplaceFileBytes(path, std::string(5000, 'x'), &error);
  }
  EXPECT_FALSE(done);
  EXPECT_THAT(error, HasSubstr(path));
  EXPECT_THAT(error, HasSubstr("too large"));
  EXPECT_EQ(TempFolder::Read(path), "old");
  EXPECT_EQ(Names(folder.Path()), std::vector<std::string>{"a.dat"});
}

TEST(ReplaceFileBytes, AProcessKilledWhileWritingLeavesTheOldFile) {
  const TempFolder folder;
  const std::string path = folder.Write("a.dat", "old");
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // SIGXFSZ, raised by the write that meets the limit, ends the child in the middle of its writing.
    const rlimit limit{1000, 1000};
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, SIG_DFL);
    ReplaceFileBytes(path, std::string(5000, 'x'), nullptr);
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(TempFolder::Read(path), "old");
  // The next save removes what it left behind, not what is still being written.
  const int held = open(folder.Write(".corlune-1-0.tmp", "").c_str(), O_RDONLY);
  ASSERT_EQ(flock(held, LOCK_EX), 0);
  EXPECT_TRUE(ReplaceFileBytes(path, "new", nullptr));
  EXPECT_THAT(Names(folder.Path()), ::testing::UnorderedElementsAre(".corlune-1-0.tmp", "a.dat"));
  close(held);
  EXPECT_EQ(TempFolder::Read(path), "new");
}

TEST(ReplaceFileBytes, KeepsPermissionsAndLinks) {
  const TempFolder folder;
  const std::string real = folder.Write("real.dat", "old");
  ASSERT_EQ(chmod(real.c_str(), 0640), 0);
  fs::create_directory(folder.File("sub"));
  const std::string link = folder.File("sub/link.dat");
  fs::create_symlink("../real.dat", link);
  ASSERT_TRUE(ReplaceFileBytes(link, "new", nullptr));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_FALSE(fs::is_symlink(real));
  EXPECT_EQ(TempFolder::Read(real), "new");
  EXPECT_EQ(Mode(real), 0640u);

  const std::string dangling = folder.File("dangling.dat");
  fs::create_symlink("fresh.dat", dangling);
  const mode_t mask = umask(027);
  ASSERT_TRUE(ReplaceFileBytes(dangling, "fresh", nullptr));
  umask(mask);
  EXPECT_EQ(TempFolder::Read(folder.File("fresh.dat")), "fresh");
  EXPECT_EQ(Mode(folder.File("fresh.dat")), 0640u);
  EXPECT_TRUE(fs::is_symlink(dangling));
}

TEST(ReplaceFileBytes, RefusesWithAReason) {
  const TempFolder folder;
  fs::create_symlink("loop", folder.File("loop"));
  for (const std::string& path :
       {folder.Path(), folder.File("none/a.dat"), folder.File("loop"), std::string()}) {
    std::string error;
    EXPECT_FALSE(ReplaceFileBytes(path, "new", &error)) << path;
    EXPECT_THAT(error, HasSubstr(path));
  }
  EXPECT_EQ(Names(folder.Path()), std::vector<std::string>{"loop"});
  ASSERT_EQ(mkfifo(folder.File("pipe").c_str(), 0600), 0);
  EXPECT_EQ(ReadFileBytes(folder.File("pipe")), std::nullopt);
}

}  // namespace
}  // namespace corlune
