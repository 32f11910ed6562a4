// Channel settings: conversions, display forms and the judgement of typed fields.
#include "sequence/user_units.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sequence_samples.h"

namespace corlune {
namespace {

using testing::Range;
using testing::SampleDefinition;

constexpr double kHighZ = 0;  // as a load in the tables below

struct UnitCase {
  const char* name;
  int slot;
  double load;  // ohms, kHighZ for none
  double polarityRange;
  UserUnitDef unit;
  double stored = 0;
  double shown = 0;
  const char* text = "";
};

class UserUnitsTest : public ::testing::Test {
 protected:
  void SetUp(const UnitCase& row) {
    sequence = SequenceData{};
    sequence.Channels.Loads[1] = row.load == kHighZ ? OutputLoad{0, 50} : OutputLoad{1, row.load};
    sequence.Channels.UserUnits[1][static_cast<std::size_t>(row.slot)] = row.unit;
    sequence.Cell(1, 7, kSlotPolarityRange).Value = row.polarityRange;
  }
  using Test::SetUp;

  ModelDefinition definition = SampleDefinition();
  SequenceData sequence;
  UserUnits units{sequence, definition};
};

TEST_F(UserUnitsTest, ConvertShowAndTakeBack) {
  const UserUnitDef none{};
  const UserUnitDef linear{1, 0, "A", 2, 3};
  const UserUnitDef logarithmic{1, 1, "dBm", 20, 0};
  for (const UnitCase& row : {
           UnitCase{"plain", kSlotAmplitude, kHighZ, 0, none, 10, 10, "10"},
           UnitCase{"no negative zero", kSlotOffset, kHighZ, 0, none, -0.00001, -0.00001, "0"},
           UnitCase{"50 ohm halves the amplitude", kSlotAmplitude, 50, 0, none, 10, 5, "5"},
           UnitCase{"and the offset", kSlotOffset, 150, 0, none, -4, -3, "-3"},
           UnitCase{"but not the phase", kSlotPhase, 50, 0, none, 90, 90, "90"},
           UnitCase{"positive full scale", kSlotAmplitude, kHighZ, 1, none, 10, 5, "5"},
           UnitCase{"range with load", kSlotAmplitude, 50, 5, none, 10, 2.5, "2.5"},
           UnitCase{"linear", kSlotOffset, kHighZ, 0, linear, 4, 14, "14"},
           UnitCase{"linear behind load and range", kSlotAmplitude, 50, 2, linear, 8, 10, "10"},
           UnitCase{"factor 0 counts as 1", kSlotOffset, kHighZ, 0, {1, 0, "", 0, 1}, 2, 3, "3"},
           UnitCase{"not in use", kSlotOffset, kHighZ, 0, {0, 1, "x", 5, 5}, 2, 2, "2"},
           UnitCase{"logarithmic", kSlotFrequency, kHighZ, 0, logarithmic, 1000, 60, "6E+1"},
           UnitCase{"logarithmic, below 1", kSlotFrequency, kHighZ, 0, logarithmic, 0.1, -20, "-2E+1"},
       }) {
    SCOPED_TRACE(row.name);
    SetUp(row);
    EXPECT_DOUBLE_EQ(units.SystemToUser(row.stored, 1, 7, row.slot), row.shown);
    EXPECT_NEAR(units.UserToSystem(row.shown, 1, 7, row.slot), row.stored, 1e-12 * std::abs(row.stored));
    EXPECT_EQ(units.UserUnitText(row.stored, 1, 7, row.slot), row.text);
    EXPECT_EQ(units.SystemToUser(5, 0, 7, kSlotPhase), 5) << "the other channel";
  }
}

TEST_F(UserUnitsTest, NeedTheCapabilityAndKeepTheLogarithmFromZero) {
  SetUp({"", kSlotAmplitude, kHighZ, 0, {1, 1, "dBV", 20, 0}});
  EXPECT_EQ(units.UserUnitText(0, 1, 7, kSlotAmplitude), "Inf");
  EXPECT_EQ(units.UserUnitText(-1, 1, 7, kSlotAmplitude), "Over");
  EXPECT_EQ(units.SystemToUser(-1, 1, 7, kSlotAmplitude), -1);
  definition.UserUnitCapability[1][kSlotAmplitude] = 0;
  EXPECT_FALSE(units.Active(1, kSlotAmplitude));
  EXPECT_EQ(units.UserUnitText(0, 1, 7, kSlotAmplitude), "0");
}

TEST_F(UserUnitsTest, FormatFollowsTheFactor) {
  struct Row {
    const char* resolution;
    double factor;
    const char* format;
  };
  for (const Row& row :
       {Row{"0.0001", 0.001, "0.0000000"}, Row{"0.001", 1000, "0"}, Row{"0.001", -20, "0.0"},
        Row{"0.001", 0.5, "0.000"}, Row{"1E-06", 1, "0.000000"}, Row{"0.25", 1, "0.00"}, Row{"10", 1, "0"}}) {
    SCOPED_TRACE(std::string(row.resolution) + " x " + std::to_string(row.factor));
    definition.Sequence.Params[0][kSlotOffset] = Range(0, 1, 0, 0, row.resolution);
    SetUp({"", kSlotOffset, kHighZ, 0, {1, 0, "x", row.factor, 0}});
    EXPECT_EQ(units.UserUnitFormat(1, kSlotOffset), row.format);
  }
  SetUp({"", kSlotOffset, kHighZ, 0, {1, 1, "x", 1, 0}});
  EXPECT_EQ(units.UserUnitFormat(1, kSlotOffset), "0.000E+0");
}

TEST(ChannelSettingsTest, NormalizingRepairsOnlyWhatIsWrong) {
  ChannelSettings settings;
  settings.Loads = {OutputLoad{2, 0.5}, OutputLoad{1, 600}, OutputLoad{-1, 10001}};
  settings.UserUnits[2][kSlotDuty] = {2, -1, "too long", 0, 7};
  settings.UserUnits[0][kSlotFrequency] = {1, 1, "a\"b", 5, 0};
  settings.UserUnits[0][kSlotExternal] = {9, 9, "untouched", 0, 0};
  NormalizeChannelSettings(settings);
  EXPECT_THAT(settings.Loads,
              ::testing::ElementsAre(OutputLoad{0, 50}, OutputLoad{1, 600}, OutputLoad{0, 50}));
  EXPECT_EQ(settings.UserUnits[2][kSlotDuty], (UserUnitDef{0, 0, "usr", 1, 7}));
  EXPECT_EQ(settings.UserUnits[0][kSlotFrequency], (UserUnitDef{1, 1, "usr", 5, 0}));
  EXPECT_EQ(settings.UserUnits[0][kSlotExternal], (UserUnitDef{9, 9, "untouched", 0, 0}));
}

TEST(ChannelSettingsTest, TypedFields) {
  struct Row {
    FieldCheck (*check)(std::string_view);
    const char* text;
    int message;
    double value;
  };
  for (const Row& row : {Row{CheckLoadValue, "10000", 0, 10000}, Row{CheckLoadValue, "0", 9105, 0},
                         Row{CheckLoadValue, "10001", 9105, 0}, Row{CheckLoadValue, "50.5", 9108, 0},
                         Row{CheckLoadValue, "", 9108, 0}, Row{CheckUnitText, "a b%", 0, 0},
                         Row{CheckUnitText, "12345", 9108, 0}, Row{CheckUnitText, "a,b", 9108, 0},
                         Row{CheckUnitText, "µV", 9108, 0}, Row{CheckFactor, "-1.5E-3", 0, -0.0015},
                         Row{CheckFactor, "0", 9108, 0}, Row{CheckFactor, "1,5", 9108, 0},
                         Row{CheckSummand, "0", 0, 0}, Row{CheckSummand, "x", 9108, 0}}) {
    const FieldCheck result = row.check(row.text);
    EXPECT_EQ(result.Message.value_or(TextId{}), TextId{row.message}) << row.text;
    EXPECT_EQ(result.Value, row.value) << row.text;
  }
  EXPECT_THAT(CheckLoadValue("0").Arguments, ::testing::ElementsAre("0", "1", "10000"));
  EXPECT_EQ(QuantitySlot(2), kSlotOffset);
  EXPECT_EQ(QuantitySlot(5), std::nullopt);
}

}  // namespace
}  // namespace corlune
