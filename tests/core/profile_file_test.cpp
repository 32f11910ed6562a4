#include "core/profile_file.h"

#include <gtest/gtest.h>

#include "core/files.h"
#include "support/environment.h"
#include "support/temp_folder.h"

namespace corlune {
namespace {

using testing::TempFolder;

TEST(GetIniString, AddsTheCommentRuleToTheProfileRule) {
  const TempFolder folder;
  const std::string path =
      folder.Write("a.ini",
                   "[S]\r\nA= 1 \r\nB= ;off\r\nC=\";off\"\r\nD=\" x \"\r\nE=a;b\r\nF=\r\n"
                   "G=\"  \"\r\nlong=" +
                       std::string(3100, 'x') + "\r\n");
  const struct {
    const char* key;
    const char* value;
  } kRows[] = {{"a", "1"},   {"B", ""}, {"C", ""}, {"D", " x "},
               {"E", "a;b"}, {"F", ""}, {"G", ""}, {"none", ""}};
  for (const auto& row : kRows) EXPECT_EQ(GetIniString(path, "s", row.key), row.value) << row.key;
  EXPECT_EQ(GetIniString(path, "S", "long"), std::string(2999, 'x'));
  EXPECT_EQ(GetIniString(path, "T", "A"), "");
  EXPECT_EQ(GetIniString(folder.File("none.ini"), "S", "A"), "");
  EXPECT_EQ(GetIniString(folder.Path(), "S", "A"), "");
}

TEST(GetIniString, CutsAtTheBufferInBytesOfTheCodePage) {
  const testing::Environment locale({"LC_ALL"});
  locale.Set("ja_JP.UTF-8");
  const TempFolder folder;
  const std::string path = folder.Write("a.ini", "[S]\r\nk=\x9F\x5C\x9F\x5C\r\n");
  // Two bytes a character, three in UTF-8; never half of one.
  EXPECT_EQ(GetIniString(path, "S", "k", 5), "歃歃");
  EXPECT_EQ(GetIniString(path, "S", "k", 4), "歃");
  EXPECT_EQ(GetIniString(path, "S", "k", 3), "歃");
}

TEST(WriteIniString, KeepsEveryOtherByteInTheFilesOwnEncoding) {
  const struct {
    const char* locale;
    std::string before;
    std::string value;
    std::string after;
  } kRows[] = {
      {"C", "", "1", "[E]\r\nM=1\r\n"},
      {"C", ";\xB5\r\n[E]\r\nM=0\r\n", "é", ";\xB5\r\n[E]\r\nM=\xE9\r\n"},
      {"C", ";µ\r\n[E]\r\nM=0\r\n", "é", ";µ\r\n[E]\r\nM=é\r\n"},
      {"C", "[E]\r\nM=0\r\n", "表", "[E]\r\nM=表\r\n"},
      {"C", ";\xB5\r\n[E]\r\nM=0\r\n", "表", ";µ\r\n[E]\r\nM=表\r\n"},  // the code page cannot hold both
      {"ja_JP", ";\x83\x5C\r\n[E]\r\nM=0\r\n", "表", ";\x83\x5C\r\n[E]\r\nM=\x95\x5C\r\n"},
      {"ja_JP", "\xEF\xBB\xBF[E]\r\nM=0\r\n", "表", "\xEF\xBB\xBF[E]\r\nM=表\r\n"},
      {"C", ";\x83\x5C\r\n[E]\r\n m = 0\n[F]\r\n", "1",
       ";\x83\x5C\r\n[E]\r\nm=1\n[F]\r\n"},  // the key as spelt
  };
  for (const auto& row : kRows) {
    const testing::Environment locale({"LC_ALL"});
    locale.Set(row.locale);
    const TempFolder folder;
    const std::string path = folder.Write("a.ini", row.before);
    EXPECT_TRUE(WriteIniString(path, "E", "M", row.value));
    EXPECT_EQ(TempFolder::Read(path), row.after);
    EXPECT_EQ(GetIniString(path, "E", "M"), row.value);
  }
}

TEST(WriteIniString, RefusesWhatItCannotWrite) {
  const TempFolder folder;
  EXPECT_FALSE(WriteIniString(folder.File("none/a.ini"), "E", "M", "1"));
  EXPECT_FALSE(WriteIniString(folder.Path(), "E", "M", "1"));
  const std::string path = folder.Write("a.ini", "[E]\r\nM=0\r\n");
  EXPECT_FALSE(WriteIniString(path, "E", "M", "1\r\n[F]"));
  EXPECT_FALSE(WriteIniString(path, "E", std::string("M\0", 2), "1"));
  EXPECT_EQ(TempFolder::Read(path), "[E]\r\nM=0\r\n");
}

}  // namespace
}  // namespace corlune
