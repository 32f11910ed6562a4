#include "core/catalogue.h"

#include <gtest/gtest.h>
#include <set>

#include "core/catalogue_texts.h"
#include "core/files.h"

namespace corlune {
namespace {

std::set<char> Placeholders(std::string_view text) {
  std::set<char> found;
  for (std::size_t i = text.find('$'); i != std::string_view::npos; i = text.find('$', i + 1)) {
    found.insert(i + 1 < text.size() ? text[i + 1] : '\0');
  }
  return found;
}

TEST(Catalogue, EveryTextStandsInBothLanguages) {
  for (int id = 0; id < 20000; ++id) {
    const CatalogueText text = TextOf(TextId{id});
    EXPECT_EQ(*text.english != '\0', *text.japanese != '\0') << id;
    EXPECT_TRUE(IsValidUtf8(text.japanese)) << id;
    EXPECT_EQ(Placeholders(text.english), Placeholders(text.japanese)) << id;
    EXPECT_TRUE(*text.english == '\0' || (id >= 1000 && id < 10000)) << id;
    // English must show in every font.
    for (const char* c = text.english; *c != '\0'; ++c) EXPECT_GE(*c, '\n') << id;
  }
}

TEST(Catalogue, AnswersInItsLanguage) {
  const MessageCatalogue english(10000);
  const MessageCatalogue japanese(0);
  EXPECT_EQ(english.GetResString(TextId{1103}), "Step\nTime");
  EXPECT_EQ(japanese.GetResString(TextId{1103}), "Time");
  for (const int missing : {9999, 0, -1, 19000, 20000}) {
    EXPECT_EQ(english.GetResString(TextId{missing}) + japanese.GetResString(TextId{missing}), "") << missing;
  }
  EXPECT_EQ(MessageCatalogue::GetFixedString(FixedText{20000}), "Tavrin Plindor for QM2210/20");
  EXPECT_DEBUG_DEATH(Next(TextId::MenuOutputOff, 1), "");
}

TEST(ReplaceArgs, FillsPlaceholdersFromLeftToRight) {
  const struct {
    const char* text;
    std::vector<std::string> arguments;
    const char* result;
  } kRows[] = {
      // clang-format off
      {"value $1  Range of Input $2-$3", {"5", "0", "3"}, "value 5  Range of Input 0-3"},
      {"no placeholder", {"5"}, "no placeholder"}, {"$12", {"a"}, "a2"}, {"$$1", {"a"}, "$1"}, {"", {"a"}, ""},
      {"$0$x$", {"a"}, "0x"}, {"$2$1$2", {"a", "b"}, "bab"}, {"<$2>", {"a"}, "<>"}, {"$1", {"$2"}, "$2"},
      // clang-format on
  };
  for (const auto& row : kRows) EXPECT_EQ(ReplaceArgs(row.text, row.arguments), row.result) << row.text;
}

}  // namespace
}  // namespace corlune
