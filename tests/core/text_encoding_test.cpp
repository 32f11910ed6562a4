#include <gtest/gtest.h>

#include "core/files.h"
#include "platform/code_page.h"

namespace corlune {
namespace {

TEST(DecodeText, TakesValidUtf8ElseTheCodePage) {
  const struct {
    std::string bytes;
    int codePage;
    std::string text;
  } kRows[] = {
      // clang-format off
      {"plain", 932, "plain"}, {"", 932, ""}, {"\xEF\xBB\xBFmarked", 1252, "marked"},
      {"10\xC2\xB5s", 1252, "10µs"}, {"10\xB5s", 1252, "10µs"}, {"\x80", 1252, "€"},
      {"\x95\x5C\x8E\xA6", 932, "表示"}, {"\xB1\xB2", 932, "ｱｲ"}, {"C:\\\x83\x5C", 932, "C:\\ソ"},
      {"~\\", 932, "~\\"}, {"\x81\x60\x87\x40", 932, "～①"}, {"表示", 932, "表示"},
      // Not UTF-8: overlong, surrogate, above U+10FFFF, cut.
      {"\xC0\xAF", 1252, "À¯"}, {"\xED\xA0\xB5", 1252, "í\xC2\xA0µ"}, {"\xF4\xB0\xB0\xB0", 1252, "ô°°°"},
      {"12345678\xE3\x81", 1252, "12345678ã\xC2\x81"}, {"\xEF\xBB\xBF\xE9", 1252, "ï»¿é"},
      // Undefined bytes are shown.
      {"a\x81z\xE9", 1252, "a\xC2\x81zé"}, {"a\x83", 932, "a\xEF\xBF\xBD"},
      {"\x95\x5C\xFC\xFC z", 932, "表\xEF\xBF\xBD\xEF\xBF\xBD z"},
      {std::string(9000, 'x') + "\xE9", 1252, std::string(9000, 'x') + "é"},  // a file, not a line
      // clang-format on
  };
  for (const auto& row : kRows) EXPECT_EQ(DecodeText(row.bytes, row.codePage), row.text) << row.text;
}

TEST(EncodeText, ComesBackUnchanged) {
  const struct {
    std::string text;
    int codePage;
    std::string bytes;
  } kRows[] = {
      // clang-format off
      {"plain", 932, "plain"}, {"10µs", 1252, "10\xB5s"}, {"表示", 932, "\x95\x5C\x8E\xA6"},
      {"～①", 932, "\x81\x60\x87\x40"},
      {"表示", 1252, "表示"}, {"Ω é", 932, "Ω é"},   // not all of it is in the code page
      {"Âµ", 1252, "Âµ"}, {"\xC2\x81", 1252, "\xC2\x81"},  // its code page bytes would be read as UTF-8
      {"\xEF\xBB\xBFx", 1252, "\xEF\xBB\xBF\xEF\xBB\xBFx"},
      {"not\xFFtext", 932, "not\xFFtext"},  // broken text is not made worse
      // clang-format on
  };
  for (const auto& row : kRows) {
    const std::string bytes = EncodeText(row.text, row.codePage);
    EXPECT_EQ(bytes, row.bytes) << row.text;
    if (!IsValidUtf8(row.text)) continue;
    EXPECT_EQ(DecodeText(bytes, row.codePage), row.text);
  }
}

TEST(EncodeText, EveryCharacterOfACodePageComesBack) {
  for (const int codePage : {932, 1252}) {
    for (unsigned lead = 0x80; lead < 0x100; ++lead) {
      const bool pair = IsLeadByte(static_cast<unsigned char>(lead), codePage);
      for (unsigned trail = pair ? 0x40 : 0xFF; trail < 0x100; ++trail) {
        std::string bytes(1, static_cast<char>(lead));
        if (pair) bytes += static_cast<char>(trail);
        const std::string text = DecodeText(bytes, codePage);
        ASSERT_TRUE(IsValidUtf8(text)) << codePage << " " << lead << " " << trail;
        ASSERT_EQ(DecodeText(EncodeText(text, codePage), codePage), text)
            << codePage << " " << lead << " " << trail;
      }
    }
  }
}

}  // namespace
}  // namespace corlune
