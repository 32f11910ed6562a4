// What cells accept, what they store and what they show afterwards.
#include <gtest/gtest.h>

#include "editing_rig.h"

namespace corlune {
namespace {

using testing::Branch;
using testing::Channel;
using testing::Common;
using testing::EditingRig;
using testing::kColAmplitude;
using testing::kColArb;
using testing::kColDuty;
using testing::kColFrequency;
using testing::kColOffset;
using testing::kColRange;
using testing::kColWaveform;

struct EntryRow {
  int column;
  const char* text;
  int message;        // 0: accepted
  const char* shown;  // the cell afterwards
};

// Step 2 of 5; every switch on, targets at 1.
TEST(CommonEntry, Table) {
  const EntryRow rows[] = {
      // clang-format off
      {kGridStepTime, "2.5", 0, "2.5"},             {kGridStepTime, " +2.5e0 ", 0, "2.5"},
      {kGridStepTime, "0.001", 0, "0.001"},         {kGridStepTime, "10000", 0, "10000"},
      {kGridStepTime, "0.00099", 9105, "1"},        {kGridStepTime, "10000.00001", 9105, "1"},
      {kGridStepTime, "0.123456789", 0, "0.12346"}, {kGridStepTime, "", 9108, "1"},
      {kGridStepTime, "1,5", 9108, "1"},            {kGridStepTime, "NaN", 9108, "1"},
      {kGridStepTime, "Inf", 9108, "1"},            {kGridStepTime, "0x10", 9108, "1"},
      {kGridStepTime, "1\x01", 9108, "1"},          {kGridStepTime, "１２．５", 0, "12.5"},
      {kGridStepTime, "　３　", 0, "3"},            {kGridStopPhase, "90.25", 0, "90.3"},
      {kGridStopPhase, "360", 0, "360"},            {kGridStopPhase, "360.1", 9105, "0"},
      {kGridStopPhase, "-1", 9105, "0"},            {kGridStopPhase, "abc", 9108, "0"},
      {kGridEventBranch, "5", 0, "5"},              {kGridEventBranch, "６", 9105, "1"},
      {kGridEventBranch, "0", 9105, "1"},           {kGridEventBranch, "1.5", 9108, "1"},
      {kGridEventBranch, "-1", 9108, "1"},          {kGridEventBranch, "+1", 9108, "1"},
      {kGridEventBranch, "1E0", 9108, "1"},         {kGridEventBranch, "", 0, "1"},
      {kGridStateBranch, "４", 0, "4"},             {kGridStateBranch, "99999999999", 9105, "1"},
      {kGridJumpTo, "3", 0, "3"},                   {kGridJumpTo, "6", 9105, "1"},
      {kGridJumpCount, "999", 0, "999"},            {kGridJumpCount, "1000", 9105, "1"},
      {kGridJumpCount, "", 0, "1"},
      // clang-format on
  };
  for (const EntryRow& row : rows) {
    SCOPED_TRACE(std::to_string(row.column) + ": " + row.text);
    EditingRig rig(5);
    for (int column = kGridStopPhase; column <= kGridJumpCount; ++column) {
      rig.editor->ChooseOption(Common(2, column), kSwitchOn);
    }
    rig.state.Modified = false;
    const std::string before = rig.Text(Common(2, row.column));
    EXPECT_EQ(rig.Enter(Common(2, row.column), row.text), row.message);
    EXPECT_EQ(rig.Text(Common(2, row.column)), row.shown);
    EXPECT_EQ(rig.state.Modified, before != row.shown);
  }
}

TEST(CommonEntry, MessagesNameTextAndRange) {
  EditingRig rig(3);
  EXPECT_EQ(rig.Enter(Common(1, kGridStepTime), "10001.5"), 9105);
  EXPECT_EQ(rig.last.Message->Text,
            "Input value Error!  Input value 10001.5  Range of Input 0.0010-10000.0000");
  EXPECT_EQ(rig.last.Message->Icon, PromptIcon::Exclamation);
  const std::string digits(400, '9');
  EXPECT_EQ(rig.Enter(Common(1, kGridStepTime), digits), 9108) << "no double can hold it";
  EXPECT_EQ(rig.Enter(Common(1, kGridStepTime), digits.substr(0, 300)), 9105);
  EXPECT_LT(rig.last.Message->Text.size(), 130U);
}

TEST(CommonEntry, SwitchedOffValuesAreLeftAlone) {
  EditingRig rig(5);
  const CellPlace jump = Common(3, kGridJumpTo);
  EXPECT_EQ(rig.Text(jump), kNotInUseText);
  EXPECT_EQ(rig.Enter(jump, "77"), 0);
  EXPECT_EQ(rig.Enter(jump, "x"), 0);
  EXPECT_FALSE(rig.state.Modified);
  EXPECT_EQ(rig.Step(3).JumpTo, 1);

  EXPECT_TRUE(rig.editor->ChooseOption(jump, kSwitchOn).RowColorsChanged);
  EXPECT_EQ(rig.Text(jump), "1");
  EXPECT_EQ(rig.Step(3).JumpOn, 1);
  EXPECT_TRUE(rig.editor->ChooseOption(jump, kSwitchOff).Changed);
  EXPECT_EQ(rig.Text(jump), kNotInUseText);
  // Switched on with a target that no longer exists.
  rig.Step(3).JumpTo = 99;
  rig.editor->ChooseOption(jump, kSwitchOn);
  EXPECT_EQ(rig.Step(3).JumpTo, 5);
}

// Targets are typed and shown in the numbering of column 0 and stored from 1 on.
TEST(CommonEntry, TargetsFollowTheStartStep) {
  struct Row {
    int startStep;
    const char* text;
    int message;
    int stored;
    const char* shown;
  };
  const Row rows[] = {
      {1, "3", 0, 3, "3"},      {10, "10", 0, 1, "10"}, {10, "14", 0, 5, "14"}, {10, "15", 9105, 2, "11"},
      {10, "9", 9105, 2, "11"}, {0, "0", 0, 1, "0"},    {0, "4", 0, 5, "4"},    {0, "5", 9105, 2, "1"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.startStep) + ": " + row.text);
    EditingRig rig(5);
    rig.sequence->StartStep = static_cast<std::int16_t>(row.startStep);
    rig.editor->ChooseOption(Common(4, kGridJumpTo), kSwitchOn);
    rig.Step(4).JumpTo = 2;
    EXPECT_EQ(rig.Enter(Common(4, kGridJumpTo), row.text), row.message);
    if (row.startStep == 10 && row.message != 0) {
      EXPECT_NE(rig.last.Message->Text.find("Range of Input 10-14"), std::string::npos);
    }
    EXPECT_EQ(rig.Step(4).JumpTo, row.stored);
    EXPECT_EQ(rig.Text(Common(4, kGridJumpTo)), row.shown);
  }
}

TEST(ChannelEntry, Table) {
  const EntryRow rows[] = {
      // clang-format off
      {kColFrequency, "1234.5", 0, "1234.5"},           {kColFrequency, "20000000", 0, "20000000"},
      {kColFrequency, "20000000.000001", 9105, "1000"}, {kColFrequency, "0", 9105, "1000"},
      {kColFrequency, "1.23456789", 0, "1.234568"},     {kColFrequency, "1 000", 9108, "1000"},
      {kColFrequency, "", 0, "1000"},                   {kColFrequency, "Over", 0, "1000"},
      {kColFrequency, "Inf", 0, "1000"},                {kColFrequency, "- - - -", 0, "1000"},
      {kColFrequency, "1,5", 9108, "1000"},             {kColFrequency, "１ｅ３", 0, "1000"},
      {kColAmplitude, "20", 0, "20"},                   {kColAmplitude, "20.0001", 9105, "0"},
      {kColAmplitude, "-0", 0, "0"},                    {kColOffset, "-10", 0, "-10"},
      {kColOffset, "−2.5", 0, "-2.5"},                  {kColOffset, "10.1", 9105, "0"},
      {kColArb, "5", 0, "- - - -"},                     {kColDuty, "5", 0, "- - - -"},
      // clang-format on
  };
  for (const EntryRow& row : rows) {
    SCOPED_TRACE(std::to_string(row.column) + ": " + row.text);
    EditingRig rig(2);
    const std::string before = rig.Text(Channel(1, 2, row.column));
    EXPECT_EQ(rig.Enter(Channel(1, 2, row.column), row.text), row.message);
    EXPECT_EQ(rig.Text(Channel(1, 2, row.column)), row.shown);
    EXPECT_EQ(rig.state.Modified, before != row.shown);
    EXPECT_EQ(rig.Cell(0, 2, row.column - 1).Value, EditingRig(2).Cell(0, 2, row.column - 1).Value)
        << "the other channel stays";
  }
}

TEST(ChannelEntry, PeakOfAmplitudeAndOffset) {
  struct Row {
    int waveform;
    const char* first;  // amplitude
    const char* offset;
    int message;  // of the offset entry
  };
  const Row rows[] = {
      {kWaveSine, "10", "5", 0},     {kWaveSine, "10", "5.0001", 9110},  {kWaveSine, "10", "-5.0001", 9110},
      {kWaveSine, "0.1", "9.95", 0}, {kWaveNoise, "20", "0.0001", 9110}, {kWaveUser, "10", "-5", 0},
  };
  for (const Row& row : rows) {
    EditingRig rig(1);
    rig.editor->Choose(Channel(0, 1, kColWaveform), row.waveform);
    ASSERT_EQ(rig.Enter(Channel(0, 1, kColAmplitude), row.first), 0);
    EXPECT_EQ(rig.Enter(Channel(0, 1, kColOffset), row.offset), row.message)
        << row.first << " " << row.offset;
  }
  EditingRig rig(1);
  rig.Enter(Channel(0, 1, kColOffset), "5");
  EXPECT_EQ(rig.Enter(Channel(0, 1, kColAmplitude), "10.0001"), 9110);
  EXPECT_EQ(rig.Cell(0, 1, kSlotAmplitude).Value, 0);
  EXPECT_EQ(rig.Enter(Channel(0, 1, kColAmplitude), "10"), 0);
}

TEST(ChannelEntry, WaveformsBringTheirOwnBounds) {
  EditingRig rig(1);
  const CellPlace waveform = Channel(0, 1, kColWaveform);
  rig.Enter(Channel(0, 1, kColFrequency), "15000000");
  EXPECT_EQ(rig.IdOf(rig.editor->Choose(waveform, kWaveSquare)), 9105) << "a square wave ends at 10 MHz";
  EXPECT_EQ(
      rig.last.Message->Text,
      "Step 1, Frequency Hz: Input value Error!  Input value 15000000  Range of Input 0.000001-10000000");
  EXPECT_EQ(rig.Text(waveform), "SIN");
  // What cannot be seen is moved into the bounds instead.
  EXPECT_EQ(rig.IdOf(rig.editor->Choose(waveform, kWaveDc)), 0);
  EXPECT_EQ(rig.Text(Channel(0, 1, kColFrequency)), kNotInUseText);
  EXPECT_EQ(rig.IdOf(rig.editor->Choose(waveform, kWaveSquare)), 0);
  EXPECT_EQ(rig.Text(Channel(0, 1, kColFrequency)), "10000000");

  rig.Enter(Channel(0, 1, kColAmplitude), "10");
  rig.editor->Choose(waveform, kWaveDc);
  EXPECT_EQ(rig.Enter(Channel(0, 1, kColOffset), "9"), 0) << "DC has no amplitude";
  EXPECT_EQ(rig.IdOf(rig.editor->Choose(waveform, kWaveSine)), 0);
  EXPECT_EQ(rig.Text(Channel(0, 1, kColAmplitude)), "2");
}

TEST(ChannelEntry, UserUnitsAndLoad) {
  EditingRig rig(1);
  rig.sequence->Channels.Loads[0] = {1, 50};
  EXPECT_EQ(rig.Enter(Channel(0, 1, kColAmplitude), "5"), 0);
  EXPECT_EQ(rig.Cell(0, 1, kSlotAmplitude).Value, 10) << "half of the voltage drops in the source";
  EXPECT_EQ(rig.Enter(Channel(0, 1, kColAmplitude), "10.1"), 9105);
  EXPECT_EQ(rig.last.Message->Text, "Input value Error!  Input value 10.1  Range of Input 0-10");
  rig.editor->Choose(Channel(0, 1, kColRange), 1);
  EXPECT_EQ(rig.Text(Channel(0, 1, kColAmplitude)), "2.5");

  UserUnitDef& unit = rig.sequence->Channels.UserUnits[0][kSlotFrequency];
  unit = {1, 0, "rpm", 60, 0};
  EXPECT_EQ(rig.editor->Views().ChannelHeader(0, kColFrequency), "Frequency\nrpm");
  EXPECT_EQ(rig.Enter(Channel(0, 1, kColFrequency), "90"), 0);
  EXPECT_EQ(rig.Cell(0, 1, kSlotFrequency).Value, 1.5);
  unit = {1, 0, "neg", -1, 0};
  EXPECT_EQ(rig.Enter(Channel(0, 1, kColFrequency), "5"), 9105);
  EXPECT_EQ(rig.last.Message->Text, "Input value Error!  Input value 5  Range of Input -20000000--0.000001");
  unit = {1, 1, "dB", 20, 0};
  rig.Cell(0, 1, kSlotFrequency).Value = 0;
  EXPECT_EQ(rig.Text(Channel(0, 1, kColFrequency)), "Inf");
  EXPECT_EQ(rig.Enter(Channel(0, 1, kColFrequency), "60"), 0);
  EXPECT_NEAR(rig.Cell(0, 1, kSlotFrequency).Value, 1000, 1e-9);
  EXPECT_EQ(rig.Enter(Channel(0, 1, kColFrequency), "1e300"), 9105);
}

TEST(BranchEntry, Table) {
  struct Row {
    const char* text;
    int message;
    int stored;
  };
  const Row rows[] = {{"3", 0, 3},      {"0", 0, 0},     {"4", 9105, 2}, {"-1", 9105, 2},
                      {"1.5", 9108, 2}, {"2.", 9108, 2}, {"", 9108, 2},  {"x", 9108, 2}};
  for (const Row& row : rows) {
    EditingRig rig(3);
    rig.Enter(Branch(2, 5), "2");
    EXPECT_EQ(rig.Enter(Branch(2, 5), row.text), row.message) << row.text;
    EXPECT_EQ(rig.Step(2).BranchStep[4], row.stored) << row.text;
  }
  EditingRig rig(3);
  rig.sequence->StartStep = 0;
  EXPECT_EQ(rig.Text(Branch(1, 1)), kNotInUseText);
  EXPECT_EQ(rig.Enter(Branch(1, 1), "0"), 0);
  EXPECT_EQ(rig.Step(1).BranchStep[0], 1);
  EXPECT_EQ(rig.Enter(Branch(1, 1), kNotInUseText), 0);
  EXPECT_EQ(rig.Step(1).BranchStep[0], 0);
  rig.definition.Branches.Maximum = 2;
  EXPECT_EQ(rig.Enter(Branch(1, 1), "2"), 9105) << "the third step";
}

TEST(Entries, TimeUnitRescalesEveryStep) {
  ModelDefinition definition = testing::ShippedDefinition();
  ParamDef& time = definition.Common.Params[kColumnStepTime];
  time.UnitKind = 2;
  time.UnitList = {"ms", "s"};
  EditingRig rig(2, definition);
  rig.Enter(Common(1, kGridStepTime), "1500");
  EXPECT_EQ(EditorFor(rig.editor->Views(), Common(1, kGridStepTime)).Units, time.UnitList);
  rig.editor->ChooseUnit(Common(1, kGridStepTime), 1);
  EXPECT_EQ(rig.Text(Common(1, kGridStepTime)), "1.5");
  EXPECT_EQ(rig.Text(Common(2, kGridStepTime)), "0.001");
  rig.editor->ChooseUnit(Common(2, kGridStepTime), 0);
  EXPECT_EQ(rig.Text(Common(1, kGridStepTime)), "1500");
  EXPECT_FALSE(rig.editor->ChooseUnit(Common(2, kGridStepTime), 2).Changed);
}

TEST(Fields, StartStepBranchChannelSequenceNumber) {
  struct Row {
    const char* text;
    int start, branch, number;  // message of each field
  };
  const Row rows[] = {{"1", 0, 0, 0},          {"10", 0, 9105, 0},       {"11", 0, 9105, 9105},
                      {"0", 9105, 9105, 0},    {"-1", 9105, 9105, 9105}, {"256", 9105, 9105, 9105},
                      {"x", 9108, 9108, 9108}, {"", 9108, 9108, 9108},   {"1.5", 9108, 9108, 9108}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EditingRig rig(1);
    EXPECT_EQ(rig.IdOf(rig.editor->EnterStartStep(row.text)), row.start);
    EXPECT_EQ(rig.IdOf(rig.editor->EnterBranchChannel(row.text)), row.branch);
    EXPECT_EQ(rig.IdOf(rig.editor->CheckSequenceNumber(row.text)), row.number);
    EXPECT_FALSE(rig.state.Modified);
  }
  EditingRig rig(1);
  rig.editor->CheckSequenceNumber("11");
  EXPECT_EQ(rig.editor->CheckSequenceNumber("11").Message->Text,
            "Input value Error!  Input value 11  Range of Input 0-10");
}

}  // namespace
}  // namespace corlune
