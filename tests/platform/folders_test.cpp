#include "platform/folders.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/language.h"
#include "support/environment.h"
#include "support/temp_folder.h"

namespace corlune {
namespace {

namespace fs = std::filesystem;
using testing::TempFolder;

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
  const testing::Environment environment({"XDG_CONFIG_HOME", "HOME"});
  environment.Set("/home/u", 1);
  for (const auto& [config, folder] : {std::pair<const char*, const char*>{"/x/config", "/x/config"},
                                       {"relative", "/home/u/.config"},
                                       {nullptr, "/home/u/.config"}}) {
    environment.Set(config);
    EXPECT_EQ(UserConfigFolder(), folder);
  }
}

TEST(Language, FollowsTheLocaleOfMessages) {
  const struct {
    const char *all, *messages, *lang;
    bool english;
  } kRows[] = {
      {"", "", "", true},         {"ja_JP.UTF-8", "en_US", "C", false},
      {"", "ja", "en_US", false}, {"", "", "ja_JP", false},
      {"C", "ja", "ja", true},    {"", "de_DE", "ja_JP", true},
      {"", "", "ja@x", false},    {"", "", "jam_JM", true},
  };
  const testing::Environment environment({"LC_ALL", "LC_MESSAGES", "LANG"});
  for (const auto& row : kRows) {
    environment.Set(row.all, 0);
    environment.Set(row.messages, 1);
    environment.Set(row.lang, 2);
    EXPECT_EQ(CheckLanguage(), row.english) << row.all << "," << row.messages << "," << row.lang;
  }
}

}  // namespace
}  // namespace corlune
