// What the tool dialogs edit: what is accepted, what follows from it, and where it is stored.
#include <gmock/gmock.h>

#include "forms/channel_form.h"
#include "forms/common_form.h"
#include "forms/mode_form.h"
#include "sequence/defaults.h"
#include "support/samples.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;

int IdOf(const EntryResult& refusal) {
  return refusal ? static_cast<int>(refusal->Id) : 0;
}

struct FormRig {
  FormRig() { ResetSequence(sequence, definition); }

  ModelDefinition definition = ShippedDefinition();
  SequenceData sequence;
  AppState state = TwoChannelState();
  MessageCatalogue english{10000};
};

TEST(CommonForm, TakesAStartStepFrom1To255) {
  struct Row {
    const char* text;
    int message;
    int stored;
  };
  const Row rows[] = {{"255", 0, 255}, {"256", 9105, 255}, {"0", 9105, 255},   {"1a", 9108, 255},
                      {"", 9108, 255}, {"-1", 9108, 255},  {"1.5", 9108, 255}, {"99999999999", 9105, 255},
                      {"１２", 0, 12}, {" 1 ", 0, 1}};
  SequenceData sequence;
  sequence.Common.Trigger = 7;  // from a file
  CommonForm form(sequence.Common);
  for (const Row& row : rows) {
    const EntryResult refusal = form.EnterStartStep(row.text);
    EXPECT_EQ(IdOf(refusal), row.message) << row.text;
    EXPECT_EQ(form.Edited().StartStepNo, row.stored) << row.text;
    if (row.message != 9105) continue;
    EXPECT_THAT(refusal->Arguments, ElementsAre(row.text, "1", "255"));
  }
  EXPECT_EQ(form.Edited().Trigger, 0);
  form.Choose(CommonForm::Lists()[0], 1);
  EXPECT_EQ(sequence.Common.Trigger, 7) << "nothing before OK";
  form.ApplyTo(sequence);
  EXPECT_EQ(sequence.Common, (CommonParams{1, 1, 0, 0, 0}));
}

TEST(ChannelForm, RefusesWhatAChannelCannotHave) {
  using Enter = EntryResult (ChannelForm::*)(std::string_view);
  struct Row {
    Enter enter;
    const char* text;
    int message;
  };
  const Row rows[] = {
      {&ChannelForm::EnterLoad, "10001", 9105},   {&ChannelForm::EnterLoad, "50.5", 9108},
      {&ChannelForm::EnterUnitText, "a,b", 9108}, {&ChannelForm::EnterUnitText, "dBmV1", 9108},
      {&ChannelForm::EnterUnitText, "dBm", 0},    {&ChannelForm::EnterFactor, "0", 9108},
      {&ChannelForm::EnterFactor, "1,5", 9108},   {&ChannelForm::EnterFactor, "-2", 0},
      {&ChannelForm::EnterSummand, "", 9108},     {&ChannelForm::EnterSummand, "1e3", 0},
      {&ChannelForm::EnterLoad, "75", 0}};
  FormRig rig;
  rig.sequence.Channels.Loads.fill({9, 0});
  rig.sequence.Channels.UserUnits[0][kSlotFrequency].N = 1.0 / 3;
  ChannelForm form(rig.sequence, rig.definition, 1, 0);
  EXPECT_EQ(IdOf(form.EnterSummand("0.333333333333333")), 0);
  EXPECT_EQ(form.Unit().N, 1.0 / 3) << "the text that is shown rounds nothing";
  for (const Row& row : rows) EXPECT_EQ(IdOf((form.*row.enter)(row.text)), row.message) << row.text;
  form.ApplyTo(rig.sequence);
  EXPECT_EQ(rig.sequence.Channels.Loads[0], (OutputLoad{0, 75}));
  EXPECT_EQ(rig.sequence.Channels.UserUnits[0][kSlotFrequency], (UserUnitDef{0, 0, "dBm", -2, 1000}));
  EXPECT_EQ(rig.sequence.Channels.Loads[1], (OutputLoad{9, 0}))
      << "a channel that the instrument does not have";
}

TEST(ChannelForm, ItsExampleFollowsLoadAndUserUnit) {
  struct Row {
    int quantity;
    double stored;
    int range;
    int load;
    UserUnitDef unit;
    const char* example;
  };
  const Row rows[] = {
      {0, 0, 0, 1, {}, "Example: 1000 Hz reads 1000 Hz"},
      {1, 4, 0, 1, {}, "Example: 4 Vp-p into High-Z reads 2 Vp-p into 50 ohm"},
      {1, 4, 1, 1, {}, "Example: 2 Vp-p into High-Z reads 1 Vp-p into 50 ohm"},
      {1, 0, 0, 0, {1, 0, "mV", 1000, 0}, "Example: 10 Vp-p into High-Z reads 10000 mV into High-Z"},
      {1, 1000, 0, 0, {1, 1, "dB", 20, 0}, "Example: 1000 Vp-p into High-Z reads 6E+1 dB into High-Z"},
      {2, -1, 0, 0, {1, 1, "dB", 20, 0}, "Example: -1 V into High-Z reads Over dB into High-Z"},
      {4, 0, 0, 1, {0, 0, "x", 2, 0}, "Example: 50 % reads 50 %"}};
  for (const Row& row : rows) {
    FormRig rig;
    const int slot = QuantitySlot(row.quantity).value();
    rig.sequence.StepCount = 3;
    rig.sequence.Cell(1, 2, slot).Value = row.stored;
    rig.sequence.Cell(1, 2, kSlotPolarityRange).Value = row.range;
    rig.sequence.Channels.Loads[1] = {row.load, 50};
    rig.sequence.Channels.UserUnits[1][static_cast<std::size_t>(slot)] = row.unit;
    ChannelForm form(rig.sequence, rig.definition, 2, 2);
    form.SelectChannel(1);
    form.SelectQuantity(row.quantity);
    EXPECT_EQ(form.Example(rig.english), row.example);
    rig.definition.UserUnitCapability[1] = {};
    EXPECT_FALSE(form.UserUnitPossible());
  }
}

TEST(ModeForm, StoresWhereTheFileKeepsTheModes) {
  FormRig rig;
  rig.state.InstrumentCount = 2;  // the second one with a single channel
  ModeForm form(rig.sequence, rig.state, rig.definition);
  EXPECT_THAT(form.Sets(), ElementsAre(0, 1));
  EXPECT_EQ(form.Channels(), 2);
  form.SelectChannel(1);
  form.Choose(0, 1);
  form.SelectDevice(1);
  EXPECT_EQ(form.Channel(), ModeForm::kAll) << "it has no second channel";
  form.Choose(1, 1);
  EXPECT_EQ(form.Selection(0), 0);
  form.SelectDevice(ModeForm::kAll);
  EXPECT_EQ(form.Selection(0), std::nullopt) << "they differ";
  form.ApplyTo(rig.sequence);
  // Per instrument: the channels of the first mode set, then those of the second.
  EXPECT_EQ(std::count(rig.sequence.ModeSettings[0].begin(), rig.sequence.ModeSettings[0].end(), 1), 1);
  EXPECT_EQ(rig.sequence.ModeSettings[0][1], 1);
  rig.definition.ModePerChannel = false;
  form.Choose(0, 1);
  form.ApplyTo(rig.sequence);
  const auto& first = rig.sequence.ModeSettings[0];
  const auto& second = rig.sequence.ModeSettings[1];
  EXPECT_THAT(std::vector<int>(first.begin(), first.begin() + 8), ElementsAre(1, 1, 1, 0, 0, 0, 0, 0));
  EXPECT_THAT(std::vector<int>(second.begin(), second.begin() + 9), ElementsAre(1, 1, 0, 0, 0, 0, 1, 1, 0));
}

}  // namespace
}  // namespace corlune::testing
