#include "platform/folders.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/language.h"
#include "support/temp_folder.h"

namespace corlune {
namespace {

namespace fs = std::filesystem;
using testing::TempFolder;

TEST(ProgramFile, IsTheRunningProgram) {
  EXPECT_EQ(fs::path(ProgramFile()).filename(), "test_platform");
  EXPECT_TRUE(fs::equivalent(ProgramFile(), fs::path(ProgramFolder()) / "test_platform"));
}

TEST(ApplicationFolder, IsTheProgramFolderWhenItIsWritable) {
  const TempFolder program;
  const TempFolder config;
  EXPECT_EQ(ApplicationFolderFor(program.Path(), config.Path()), program.Path());
  EXPECT_TRUE(fs::is_empty(config.Path()));
}

// Runs in a child process: root can write everywhere, so there the child becomes another user.
void StartInstalled(const std::string& program, const std::string& config) {
  if (geteuid() == 0 && setuid(65534) != 0) _exit(2);
  const std::string folder = ApplicationFolderFor(program, config);
  const std::string definition = folder + "/" + kModelDefinitionName;
  if (folder != config + "/Corlune") _exit(3);
  if (TempFolder::Read(definition) != "shipped") _exit(4);
  // A definition that the user has changed stays.
  std::ofstream(definition) << "changed";
  ApplicationFolderFor(program, config);
  if (TempFolder::Read(definition) != "changed") _exit(5);
  // Without any folder of his own the user reads the shipped files.
  if (ApplicationFolderFor(program, "") != program || ApplicationFolderFor(program, definition) != program)
    _exit(6);
  _exit(0);
}

TEST(ApplicationFolder, ElseIsTheUsersAndReceivesTheModelDefinition) {
  const TempFolder program;
  const TempFolder config;
  const auto readable = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
  const auto enterable = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
  fs::permissions(program.Write(kModelDefinitionName, "shipped"), readable);
  fs::permissions(program.Path(), readable | enterable);
  fs::permissions(config.Path(), fs::perms::all);
  EXPECT_EXIT(StartInstalled(program.Path(), config.Path()), ::testing::ExitedWithCode(0), "");
  fs::permissions(program.Path(), fs::perms::owner_all);
}

TEST(UserConfigFolder, FollowsTheEnvironment) {
  const auto answer = [](const char* config, const char* home) {
    config != nullptr ? setenv("XDG_CONFIG_HOME", config, 1) : unsetenv("XDG_CONFIG_HOME");
    setenv("HOME", home, 1);
    return UserConfigFolder();
  };
  const char* oldHome = std::getenv("HOME");
  const char* oldConfig = std::getenv("XDG_CONFIG_HOME");
  const std::string home = oldHome != nullptr ? oldHome : "";
  const std::optional<std::string> config =
      oldConfig != nullptr ? std::optional<std::string>(oldConfig) : std::nullopt;
  EXPECT_EQ(answer("/x/config", "/home/u"), "/x/config");
  EXPECT_EQ(answer("relative", "/home/u"), "/home/u/.config");
  EXPECT_EQ(answer(nullptr, "/home/u"), "/home/u/.config");
  answer(config ? config->c_str() : nullptr, home.c_str());
}

TEST(Language, FollowsTheLocaleOfMessages) {
  const struct {
    const char *all, *messages, *lang;
    bool english;
  } kRows[] = {
      {"", "", "", true},
      {"ja_JP.UTF-8", "en_US", "C", false},
      {"", "ja", "en_US", false},
      {"", "", "ja_JP", false},
      {"C", "ja", "ja", true},
      {"", "de_DE", "ja_JP", true},
      {"", "", "ja@x", false},
      {"", "", "jam_JM", true},
      {"zh_CN.UTF-8", "", "", true},
  };
  const char* names[] = {"LC_ALL", "LC_MESSAGES", "LANG"};
  std::optional<std::string> old[3];
  for (int i = 0; i < 3; ++i) {
    if (const char* value = std::getenv(names[i])) old[i] = value;
  }
  for (const auto& row : kRows) {
    setenv("LC_ALL", row.all, 1);
    setenv("LC_MESSAGES", row.messages, 1);
    setenv("LANG", row.lang, 1);
    EXPECT_EQ(CheckLanguage(), row.english) << row.all << "," << row.messages << "," << row.lang;
  }
  for (int i = 0; i < 3; ++i) old[i] ? setenv(names[i], old[i]->c_str(), 1) : unsetenv(names[i]);
}

}  // namespace
}  // namespace corlune
