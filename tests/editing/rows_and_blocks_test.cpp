// Row operations, copy and paste, initialize, fill down.
#include <gtest/gtest.h>
#include <vector>

#include "editing_rig.h"

namespace corlune {
namespace {

using testing::Channel;
using testing::Common;
using testing::EditingRig;
using testing::kColAmplitude;
using testing::kColDuty;
using testing::kColFrequency;
using testing::kColOffset;
using testing::kColWaveform;

// Step times 1, 2, 3 ... and frequencies 101, 102 ... on channel 1, 201 ... on channel 2.
void Number(EditingRig& rig) {
  for (int row = 1; row <= rig.sequence->StepCount; ++row) {
    rig.Step(row).StepTime = row;
    rig.Cell(0, row, kSlotFrequency).Value = 100 + row;
    rig.Cell(1, row, kSlotFrequency).Value = 200 + row;
  }
}

std::vector<double> Times(EditingRig& rig) {
  std::vector<double> times;
  for (int row = 1; row <= rig.sequence->StepCount; ++row) times.push_back(rig.Step(row).StepTime);
  return times;
}

std::vector<double> Values(EditingRig& rig, int channel, int slot) {
  std::vector<double> values;
  for (int row = 1; row <= rig.sequence->StepCount; ++row)
    values.push_back(rig.Cell(channel, row, slot).Value);
  return values;
}

using List = std::vector<double>;

TEST(Rows, AddAndInsertUpToTheMaximum) {
  EditingRig rig;
  rig.definition.Common.MaxSteps = 3;
  EXPECT_TRUE(rig.editor->InsertRow().Changed) << "into an empty sequence";
  EXPECT_EQ(rig.sequence->StepCount, 1);
  EXPECT_TRUE(rig.state.Modified);
  rig.editor->AddRow();
  EXPECT_EQ(rig.editor->Cursor().CurrentRow, 2);
  Number(rig);
  rig.editor->Cursor().CurrentRow = 1;
  EXPECT_TRUE(rig.editor->InsertRow().CountChanged);
  EXPECT_EQ(Times(rig), (List{1, 1, 2})) << "a new step has the default time";
  EXPECT_EQ(Values(rig, 0, kSlotFrequency), (List{1000, 101, 102}));
  EXPECT_EQ(Values(rig, 1, kSlotFrequency), (List{1000, 201, 202}));
  EXPECT_FALSE(rig.editor->InsertRow().Changed);
  EXPECT_FALSE(rig.editor->AddRow().Changed);
  EXPECT_FALSE(rig.editor->DuplicateRows().Accepted);
  rig.editor->Cursor().CurrentRow = 3;
  rig.editor->DeleteRow();
  EXPECT_EQ(rig.editor->Cursor().CurrentRow, 2);
  EXPECT_TRUE(rig.editor->AddRow().Changed);
}

TEST(Rows, InsertAndDeleteLeaveTargetsAndHiddenChannels) {
  EditingRig rig(4);
  Number(rig);
  rig.state.Instruments[0].ChannelCount = 1;
  rig.Step(4).JumpOn = 1;
  rig.Step(4).JumpTo = 3;
  rig.editor->Cursor().CurrentRow = 2;
  rig.editor->InsertRow();
  EXPECT_EQ(rig.Step(5).JumpTo, 3);
  EXPECT_EQ(Times(rig), (List{1, 1, 2, 3, 4}));
  EXPECT_EQ(Values(rig, 1, kSlotFrequency), (List{201, 202, 203, 204, 1000})) << "channel 2 has no tab";
  rig.editor->Cursor().CurrentRow = 1;
  rig.editor->DeleteRow();
  EXPECT_EQ(Times(rig), (List{1, 2, 3, 4}));
  EXPECT_EQ(Values(rig, 1, kSlotFrequency), (List{201, 202, 203, 204}));
}

TEST(Rows, DeleteAsksForTargets) {
  struct Row {
    const char*
        links;  // to step 2: its kind and its step; j jump, - jump switched off, e event, s state, b branch
    const char* answers;
    bool deleted;
  };
  for (const Row& row : {Row{"", "", true}, Row{"j4", "y", true}, Row{"j4", "n", false}, Row{"-4", "", true},
                         Row{"j2", "", true}, Row{"e1", "y", true}, Row{"s3", "n", false},
                         Row{"b3", "n", false}, Row{"j4e1", "yn", false}}) {
    SCOPED_TRACE(row.links);
    EditingRig rig(4);
    Number(rig);
    for (const char* link = row.links; *link != '\0'; link += 2) {
      StepRow& step = rig.Step(link[1] - '0');
      (*link == 'e' ? step.EventBranchStep : *link == 's' ? step.StateBranchStep : step.JumpTo) = 2;
      (*link == 'e' ? step.EventBranchOn : *link == 's' ? step.StateBranchOn : step.JumpOn) = *link != '-';
      if (*link == 'b') step.JumpOn = 0, step.BranchStep[4] = 2;
    }
    for (const char* answer = row.answers; *answer != '\0'; ++answer) {
      rig.prompts.Answer(*answer == 'y' ? PromptAnswer::Ok : PromptAnswer::Cancel);
    }
    rig.editor->Cursor().CurrentRow = 2;
    EXPECT_EQ(rig.editor->DeleteRow().Changed, row.deleted);
    EXPECT_EQ(Times(rig), row.deleted ? (List{1, 3, 4}) : (List{1, 2, 3, 4}));
    EXPECT_EQ(rig.state.Modified, row.deleted);
    for (const MessageRequest& message : rig.prompts.messages) {
      EXPECT_EQ(message.icon, PromptIcon::Question);
      EXPECT_EQ(message.buttons, PromptButtons::OkCancel);
    }
  }
}

TEST(Rows, UpAndDownTakeJumpsAlong) {
  EditingRig rig(4);
  Number(rig);
  for (const auto& [row, target] : {std::pair{1, 3}, {2, 4}, {4, 1}}) {
    rig.Step(row).JumpTo = static_cast<std::int16_t>(target);
  }
  rig.Step(3).EventBranchStep = 4;
  rig.editor->Cursor().CurrentRow = 4;
  rig.editor->RowUp();
  EXPECT_EQ(rig.editor->Cursor().CurrentRow, 3);
  EXPECT_EQ(Times(rig), (List{1, 2, 4, 3}));
  EXPECT_EQ(Values(rig, 1, kSlotFrequency), (List{201, 202, 204, 203}));
  EXPECT_EQ(rig.Step(1).JumpTo, 4);
  EXPECT_EQ(rig.Step(2).JumpTo, 3);
  EXPECT_EQ(rig.Step(3).JumpTo, 1);
  EXPECT_EQ(rig.Step(4).EventBranchStep, 4) << "branches keep their number";
  rig.editor->RowDown();
  EXPECT_EQ(Times(rig), (List{1, 2, 3, 4}));
  EXPECT_EQ(rig.Step(1).JumpTo, 3);

  rig.state.Modified = false;
  EXPECT_FALSE(rig.editor->RowDown().Changed) << "the last step";
  rig.editor->Cursor().CurrentRow = 1;
  EXPECT_FALSE(rig.editor->RowUp().Changed) << "the first step";
  EXPECT_FALSE(rig.state.Modified);
}

TEST(Rows, Duplicate) {
  EditingRig rig(4);
  Number(rig);
  rig.Select(GridArea::Common, 0, 3, 2, 1, 1);
  rig.editor->DuplicateRows();
  EXPECT_EQ(Times(rig), (List{1, 2, 3, 2, 3, 4}));
  EXPECT_EQ(Values(rig, 1, kSlotFrequency), (List{201, 202, 203, 202, 203, 204}));
  EXPECT_EQ(rig.editor->Cursor().CurrentRow, 4);
  EXPECT_EQ(rig.editor->Cursor().SelEndRow, 5);
}

TEST(Blocks, PasteRules) {
  struct Row {
    const char* name;
    int firstRow, lastRow, firstColumn, lastColumn;  // source 2..4, columns 1..2 of the common area
    int message;
    List times;
  };
  const Row rows[] = {
      {"same shape", 5, 7, 1, 2, 0, {1, 2, 3, 4, 2, 3, 4, 8}},
      {"upwards", 3, 1, 2, 1, 0, {2, 3, 4, 4, 5, 6, 7, 8}},
      {"two rows elsewhere", 5, 6, 1, 2, 9106, {1, 2, 3, 4, 5, 6, 7, 8}},
      {"from the source's first row, fewer", 2, 3, 1, 2, 0, {1, 20, 30, 4, 5, 6, 7, 8}},
      {"from the source's first row, more", 2, 7, 1, 2, 0, {1, 20, 30, 40, 5, 6, 7, 8}},
      {"other columns", 5, 7, 1, 3, 9106, {1, 2, 3, 4, 5, 6, 7, 8}},
      {"one row", 5, 5, 1, 2, 9106, {1, 2, 3, 4, 5, 6, 7, 8}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EditingRig rig(8);
    Number(rig);
    const bool overSource = row.firstRow == 2;
    if (overSource) {
      for (const int source : {2, 3, 4}) rig.Step(source).StepTime *= 10;
    }
    rig.Select(GridArea::Common, 0, 2, 4, 1, 2);
    ASSERT_TRUE(rig.editor->Copy());
    if (overSource) {
      for (const int source : {2, 3, 4}) rig.Step(source).StepTime = source;
    }
    rig.Select(GridArea::Common, 0, row.firstRow, row.lastRow, row.firstColumn, row.lastColumn);
    EXPECT_EQ(rig.IdOf(rig.editor->Paste()), row.message);
    EXPECT_EQ(Times(rig), row.times);
    EXPECT_EQ(rig.state.Modified, row.message == 0);
    if (row.message != 0) {
      EXPECT_EQ(rig.last.Message->Icon, PromptIcon::None);
    }
  }
}

TEST(Blocks, PasteCarriesWholeGroupsAndSingleRowsFill) {
  EditingRig rig(5);
  rig.editor->ChooseOption(Common(2, kGridJumpTo), kSwitchOn);
  rig.Select(GridArea::Common, 0, 2, 2, kGridJumpTo, kGridJumpTo);
  rig.editor->Copy();
  rig.Select(GridArea::Common, 0, 3, 5, kGridJumpTo, kGridJumpTo);
  EXPECT_TRUE(rig.editor->Paste().RowColorsChanged);
  for (int row = 3; row <= 5; ++row) EXPECT_EQ(rig.Step(row).JumpOn, 1);

  rig.Select(GridArea::Sequence, 0, 3, 3, kGridJumpTo, kGridJumpTo);
  EXPECT_EQ(rig.IdOf(rig.editor->Paste()), 9106) << "another grid";

  rig.editor->ChooseOption(Channel(0, 1, kColFrequency), 2);
  rig.Enter(Channel(0, 1, kColFrequency), "50");
  rig.Select(GridArea::Sequence, 0, 1, 1, kColFrequency, kColFrequency);
  rig.editor->Copy();
  rig.Select(GridArea::Sequence, 1, 2, 5, kColFrequency, kColFrequency);
  EXPECT_EQ(rig.IdOf(rig.editor->Paste()), 0) << "onto the other channel";
  EXPECT_EQ(rig.Cell(1, 5, kSlotFrequency).Value, 50);
  EXPECT_EQ(rig.Cell(1, 5, kSlotFrequency).ChangeMode, kModeSweep);
  EXPECT_EQ(rig.Cell(1, 5, kSlotFrequency).StartValue, 50);
  EXPECT_EQ(rig.Cell(0, 5, kSlotFrequency).Value, 1000);
}

TEST(Blocks, NothingWithoutSteps) {
  EditingRig rig;
  EXPECT_FALSE(rig.editor->Copy());
  EXPECT_FALSE(rig.editor->Paste().Changed);
  EXPECT_FALSE(rig.editor->SelectAll());
  EXPECT_FALSE(rig.editor->Initialize().Changed);
  EXPECT_FALSE(rig.editor->DeleteRow().Changed);
  EditingRig filled(2);
  filled.Select(GridArea::Common, 0, 1, 1, 1, 0);
  EXPECT_FALSE(filled.editor->Copy()) << "column 0 is no cell";
  filled.Select(GridArea::Common, 0, 1, 0, 1, 1);
  EXPECT_FALSE(filled.editor->Copy()) << "nor is the header";
}

TEST(Blocks, PastedValuesObeyTheirNewStep) {
  EditingRig rig(3);
  rig.Enter(Channel(0, 1, kColFrequency), "15000000");
  rig.Enter(Channel(0, 1, kColAmplitude), "10");
  rig.editor->Choose(Channel(0, 2, kColWaveform), kWaveSquare);
  rig.Enter(Channel(0, 3, kColOffset), "8");
  rig.state.Modified = false;
  rig.Select(GridArea::Sequence, 0, 1, 1, kColFrequency, kColFrequency);
  rig.editor->Copy();
  rig.Select(GridArea::Sequence, 0, 2, 2, kColFrequency, kColFrequency);
  EXPECT_EQ(rig.IdOf(rig.editor->Paste()), 9105);
  EXPECT_EQ(rig.last.Message->Text.substr(0, 23), "Step 2, Frequency Hz: I");
  rig.Select(GridArea::Sequence, 0, 1, 3, kColAmplitude, kColAmplitude);
  EXPECT_EQ(rig.IdOf(rig.editor->FillDown()), 9110) << "step 3 has an offset";
  EXPECT_EQ(Values(rig, 0, kSlotAmplitude), (List{10, 0, 0})) << "and nothing changes";
  EXPECT_FALSE(rig.state.Modified);
}

TEST(Blocks, Initialize) {
  EditingRig rig(3);
  Number(rig);
  for (int column = kGridStopPhase; column <= kGridJumpCount; ++column) {
    rig.editor->ChooseOption(Common(2, column), kSwitchOn);
  }
  rig.Enter(Common(2, kGridStopPhase), "90");
  rig.Enter(Common(2, kGridJumpCount), "7");
  rig.editor->Choose(Common(2, kGridStepCode), 3);
  rig.Select(GridArea::Common, 0, 2, 2, 1, 9);
  EXPECT_TRUE(rig.editor->Initialize().RowColorsChanged);
  StepRow fresh = EditingRig(1).Step(1);
  EXPECT_EQ(rig.Step(2), fresh);
  EXPECT_EQ(rig.Text(Common(2, kGridJumpTo)), kNotInUseText);
  EXPECT_EQ(Times(rig), (List{1, 1, 3}));

  rig.editor->Choose(Channel(0, 2, kColWaveform), kWaveSquare);
  rig.Enter(Channel(0, 2, kColDuty), "20");
  rig.Enter(Channel(0, 2, kColFrequency), "5");
  rig.Select(GridArea::Sequence, 0, 2, 2, kColFrequency, kColDuty);
  rig.editor->Initialize();
  EXPECT_EQ(rig.Cell(0, 2, kSlotDuty).Value, 50);
  EXPECT_EQ(rig.Cell(0, 2, kSlotFrequency).Value, 1000);
  EXPECT_EQ(rig.Cell(0, 2, kSlotWaveform).Value, kWaveSquare);
}

TEST(Blocks, FillDownAndSelectAll) {
  EditingRig rig(4);
  Number(rig);
  rig.Select(GridArea::Common, 0, 3, 3, 1, 1);
  rig.editor->FillDown();
  EXPECT_EQ(Times(rig), (List{1, 2, 2, 4})) << "a single row takes the row above";
  rig.editor->SelectAll();
  EXPECT_EQ(SelectedBlock(rig.editor->Cursor()), (GridBlock{GridArea::Common, 0, 1, 4, 1, 9}));
  rig.editor->FillDown();
  EXPECT_EQ(Times(rig), (List{1, 1, 1, 1}));
  rig.editor->Cursor().ActiveGrid = GridArea::Sequence;
  rig.editor->SelectAll();
  EXPECT_EQ(SelectedBlock(rig.editor->Cursor()), (GridBlock{GridArea::Sequence, 0, 1, 4, 1, 9}));
}

TEST(Editor, DoesNothingInExecutionMode) {
  EditingRig rig(3);
  rig.editor->Copy();
  rig.Enter(Common(1, kGridStepTime), "5");
  rig.state.Modified = false;
  rig.state.OperationMode = OperationMode::Execution;
  const SequenceData before = *rig.sequence;
  rig.editor->AddRow();
  rig.editor->InsertRow();
  rig.editor->DeleteRow();
  rig.editor->RowDown();
  rig.editor->Paste();
  rig.editor->Initialize();
  rig.editor->DuplicateRows();
  rig.editor->PasteText("7");
  rig.Enter(Common(1, kGridStepTime), "6");
  EXPECT_FALSE(rig.editor->CanUndo());
  rig.editor->Undo();
  EXPECT_TRUE(*rig.sequence == before);
  EXPECT_FALSE(rig.state.Modified);
}

}  // namespace
}  // namespace corlune
