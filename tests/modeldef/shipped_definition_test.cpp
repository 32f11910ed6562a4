// The definition file that goes out with the program.
#include <algorithm>
#include <gtest/gtest.h>
#include <set>

#include "core/catalogue.h"
#include "core/files.h"
#include "core/profile_file.h"
#include "modeldef/definition_entry.h"
#include "modeldef/read_model_definition.h"

namespace corlune {
namespace {

const std::string kShipped = CORLUNE_DATA "/Corlune_Std.ini";

class ShippedModel : public ::testing::TestWithParam<const char*> {
 protected:
  ModelDefinition Load(bool japanese = false) const {
    ModelDefinition definition;
    DefinitionProblem problem;
    EXPECT_EQ(DefinitionLoad::Ok, ReadModelDefinition(kShipped, GetParam(), japanese, definition, &problem))
        << problem.section << " " << problem.key << ": " << problem.reason;
    return definition;
  }
};

INSTANTIATE_TEST_SUITE_P(Models, ShippedModel, ::testing::Values("QM2210", "QM2220"));

// A key that the file misspells is ignored in silence, so each must be one that a table knows; and each row
// must be used, but for the unit conversions, which belong to lists of units.
TEST_P(ShippedModel, EveryLineIsAKnownKeyAndEveryKeyIsUsed) {
  const auto text = ReadWholeFile(kShipped);
  ASSERT_TRUE(text);
  std::set<std::string_view> unused;
  std::vector<modeldef::KeyRow<ModelDefinition>> rows;
  for (const auto& family :
       {modeldef::PanelKeys(), modeldef::ViewKeys(), modeldef::AreaKeys(), modeldef::CommandKeys()}) {
    for (const auto& row : family) {
      rows.push_back(row);
      unused.insert(row.key);
    }
  }
  std::set<std::string> seen;
  const std::string section = GetIniSectionOfText(DecodeText(*text), std::string("SPEC ") + GetParam());
  ForEachIniEntry(section, [&](const IniEntry& entry) {
    const auto row =
        std::find_if(rows.begin(), rows.end(), [&](const auto& r) { return r.Matches(entry.key); });
    EXPECT_TRUE(row != rows.end()) << entry.whole;
    if (row != rows.end()) unused.erase(row->key);
    EXPECT_TRUE(seen.insert(std::string(entry.key)).second) << "twice: " << entry.key;
    return true;
  });
  EXPECT_EQ((std::set<std::string_view>{"CA_UNITCV", "SA_UNITCV"}), unused);
}

TEST_P(ShippedModel, EveryParameterIsUsable) {
  const ModelDefinition definition = Load();
  const auto& groups = definition.Sequence.Params;
  ASSERT_EQ(9, definition.Sequence.ParamCount);
  for (std::size_t param = 0; param < 9; ++param) {
    const ParamDef& base = groups[0][param];
    EXPECT_FALSE(base.Name.empty()) << param;
    EXPECT_FALSE(Load(true).Sequence.Params[0][param].Name.empty()) << param;
    for (std::size_t group = 0; group < 5; ++group) {
      const ParamDef& def = groups[group][param];
      if (!def.InUse) continue;
      EXPECT_TRUE(definition.Sequence.GroupEnabled[group]);
      EXPECT_EQ(base.ValueKind, def.ValueKind) << group << param;
      EXPECT_EQ(base.Choices, def.Choices) << group << param;
      if (def.ValueKind != 0) continue;
      EXPECT_LT(def.Minimum, def.Maximum) << group << param;
      EXPECT_GT(def.Resolution, 0) << group << param;
      EXPECT_GE(base.Default, def.Minimum) << group << param;
      EXPECT_LE(base.Default, def.Maximum) << group << param;
    }
  }
  const auto used = [&](std::size_t group) {
    std::string slots;
    for (std::size_t p = 0; p < 9; ++p) slots += groups[group][p].InUse ? std::to_string(p) : "";
    return slots;
  };
  EXPECT_EQ("0234568", used(0));
  EXPECT_EQ("02345678", used(1));
  EXPECT_EQ("03458", used(2));
  EXPECT_EQ("058", used(3));
  EXPECT_EQ("01234568", used(4));
  EXPECT_EQ("0.000001", groups[0][2].ResolutionText);
}

// The numbers stored for a choice are its position, so the order is part of the sequence file.
TEST_P(ShippedModel, ChoicesStandInTheOrderOfTheirCodes) {
  const ModelDefinition definition = Load();
  EXPECT_EQ((std::vector<std::string>{"SIN", "SQU", "NOIS", "DC", "USER"}),
            definition.Sequence.Params[0][0].Choices);
  EXPECT_EQ(6U, definition.Sequence.Params[0][4].Choices.size());
  EXPECT_EQ((std::vector<std::string>{"CONT", "STOP", "END"}), definition.Common.Params[7].Choices);
  const MessageCatalogue english(10000);
  const std::vector<std::string> modes{english.GetResString(TextId{1210}), english.GetResString(TextId{1212}),
                                       english.GetResString(TextId{1211})};
  for (const std::size_t param : {2U, 3U, 5U, 6U, 7U})
    EXPECT_EQ(modes, definition.Sequence.Params[0][param].ModeNames);
}

// Switching the model keeps what the new one does not name; nothing of the old one may shine through.
TEST(ShippedDefinition, SwitchingTheModelLeavesNothingBehind) {
  for (const auto& [first, second] : {std::pair{"QM2220", "QM2210"}, std::pair{"QM2210", "QM2220"}}) {
    ModelDefinition switched;
    ASSERT_EQ(DefinitionLoad::Ok, ReadModelDefinition(kShipped, first, false, switched));
    ASSERT_EQ(DefinitionLoad::Ok, ReadModelDefinition(kShipped, second, false, switched));
    ModelDefinition fresh;
    ASSERT_EQ(DefinitionLoad::Ok, ReadModelDefinition(kShipped, second, false, fresh));
    EXPECT_TRUE(fresh == switched) << second;
  }
}

}  // namespace
}  // namespace corlune
