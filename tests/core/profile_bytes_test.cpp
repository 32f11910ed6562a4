#include "core/profile_bytes.h"

#include <gtest/gtest.h>

#include "core/vector_table.h"

namespace corlune {
namespace {

using testing::IsSettled;
using testing::ReadVectors;
using testing::Unescape;
using testing::VectorRow;

// The code pages a row holds for.
std::vector<int> CodePages(const VectorRow& row) {
  const std::string& page = row.at("codepage");
  if (page == "any") return {1252, 932};
  return {std::stoi(page)};
}

void CheckRead(const VectorRow& row, const std::string& content, int codePage) {
  const std::string section = Unescape(row.at("section"));
  const std::size_t size = std::stoul(row.at("size"));
  std::string text;
  if (row.at("call") == "string") {
    text = ReadProfileString(content, section, Unescape(row.at("key")), Unescape(row.at("default")), size,
                             codePage);
  } else {
    ASSERT_EQ(row.at("call"), "section");
    text = ReadProfileSection(content, section, size, codePage);
  }
  EXPECT_EQ(text, Unescape(row.at("text"))) << row.at("id") << " in code page " << codePage;
  EXPECT_EQ(text.size(), std::stoul(row.at("ret"))) << row.at("id");
}

TEST(ProfileBytes, ReadsAsMeasured) {
  std::map<std::string, VectorRow> files;
  for (const auto& row : ReadVectors("profile_file")) files[row.at("file")] = row;
  for (const auto& row : ReadVectors("profile_read")) {
    if (!IsSettled(row)) continue;
    const VectorRow& file = files.at(row.at("file"));
    // A file that is not there reads like an empty one.
    const std::string content = file.at("content") == "\\N" ? "" : Unescape(file.at("content"));
    for (const int codePage : CodePages(file)) CheckRead(row, content, codePage);
  }
}

TEST(ProfileBytes, WritesAsMeasured) {
  const auto argument = [](const std::string& field, const std::string& bytes) {
    return field == "\\N" ? std::nullopt : std::optional<std::string_view>(bytes);
  };
  for (const auto& row : ReadVectors("profile_write")) {
    if (!IsSettled(row) || row.at("ret") == "0") continue;  // a missing folder is the file layer's matter
    const std::string before = row.at("before") == "\\N" ? "" : Unescape(row.at("before"));
    const std::string key = Unescape(row.at("key"));
    const std::string value = Unescape(row.at("value"));
    const std::string expected = row.at("expected") == "=" ? row.at("observed") : row.at("expected");
    for (const int codePage : CodePages(row)) {
      EXPECT_EQ(WriteProfileString(before, Unescape(row.at("section")), argument(row.at("key"), key),
                                   argument(row.at("value"), value), codePage),
                Unescape(expected))
          << row.at("id") << " in code page " << codePage;
    }
  }
}

// Cases that the measurements leave open, as this program decides them.
TEST(ProfileBytes, OpenCases) {
  EXPECT_EQ(FindProfileValue("[a] ; see [b]\r\nk=1\r\n", "a", "k", 1252), "1");
  EXPECT_EQ(FindProfileValue("\xEF\xBB\xBF[a]\r\nk=1\r\n", "a", "k", 1252), "1");
  EXPECT_EQ(FindProfileValue("[a]\r\nk=1\r\n\x1A", "a", "k", 1252), "1");
  EXPECT_EQ(FindProfileValue("[a]\r\nk\r\nk=1\r\n", "a", "k", 1252), std::nullopt);
  EXPECT_EQ(WriteProfileString("[A]\na=1\n[B]\nb=2\n", "A", "z", "9", 1252), "[A]\na=1\nz=9\n[B]\nb=2\n");
  EXPECT_EQ(WriteProfileString("[A]\na=1", "B", "z", "9", 1252), "[A]\na=1\n[B]\nz=9\n");
  EXPECT_EQ(WriteProfileString("[A]\na=1\n\n[B]\n", "A", "z", "9", 1252), "[A]\na=1\nz=9\n\n[B]\n");
  EXPECT_EQ(WriteProfileString("[A]\na=1", "A", "z", "9", 1252), "[A]\na=1\nz=9\n");
  EXPECT_EQ(WriteProfileString("\xEF\xBB\xBF", "A", "z", "9", 1252), "\xEF\xBB\xBF[A]\r\nz=9\r\n");
  EXPECT_EQ(ReadProfileString("[a]\r\n", "a", "k", "  de fault  ", 99, 1252), "  de fault");
  // What was written is read again, also over a line without a value.
  EXPECT_EQ(WriteProfileString("[A]\r\nk\r\n", "A", "k", "9", 1252), "[A]\r\nk=9\r\n");
}

}  // namespace
}  // namespace corlune
