// The definition file that goes out with the program.
#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <set>

#include "core/files.h"
#include "core/profile_file.h"
#include "modeldef/definition_entry.h"
#include "modeldef/read_model_definition.h"

namespace corlune {
namespace {

const std::string kShipped = CORLUNE_DATA "/Corlune_Std.ini";

class ShippedModel : public ::testing::TestWithParam<const char*> {
 protected:
  ModelDefinition Load() const {
    ModelDefinition definition;
    DefinitionProblem problem;
    EXPECT_EQ(DefinitionLoad::Ok, ReadModelDefinition(kShipped, GetParam(), false, definition, &problem))
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
  const std::array slotsInUse{"0234568", "02345678", "03458", "058", "01234568"};
  for (std::size_t group = 0; group < slotsInUse.size(); ++group) {
    EXPECT_TRUE(definition.Sequence.GroupEnabled[group]);
    std::string used;
    for (std::size_t param = 0; param < 9; ++param) {
      const ParamDef& base = groups[0][param];
      const ParamDef& def = groups[group][param];
      EXPECT_FALSE(base.Name.empty()) << param;
      if (!def.InUse) continue;
      used += std::to_string(param);
      EXPECT_EQ(base.ValueKind, def.ValueKind) << group << param;
      EXPECT_EQ(base.Choices, def.Choices) << group << param;
      if (def.ValueKind != 0) continue;
      EXPECT_GT(def.Resolution, 0) << group << param;
      EXPECT_TRUE(def.Minimum < def.Maximum && def.Minimum <= base.Default && base.Default <= def.Maximum)
          << group << param;
    }
    EXPECT_EQ(slotsInUse[group], used);
  }
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
