// Undo and redo: entries, limits, the saved state; and random series of edits against recorded states.
#include <array>
#include <gtest/gtest.h>
#include <random>

#include "editing_rig.h"
#include "sequence/start_values.h"

namespace corlune {
namespace {

using testing::Branch;
using testing::Channel;
using testing::Common;
using testing::EditingRig;
using testing::kColFrequency;

TEST(Undo, SavedStateClearsTheModifiedFlag) {
  EditingRig rig(2);
  rig.Enter(Common(1, kGridStepTime), "5");
  rig.state.Modified = false;  // saved
  EXPECT_EQ(rig.editor->UndoText() + ", " + rig.editor->RedoText(), "Undo: Cell Entry, Redo");
  rig.Enter(Common(1, kGridStepTime), "6");
  rig.Enter(Common(1, kGridStepTime), "7");
  rig.editor->Undo();
  EXPECT_TRUE(rig.state.Modified);
  rig.editor->Undo();
  EXPECT_FALSE(rig.state.Modified);
  rig.editor->Undo();
  EXPECT_TRUE(rig.state.Modified);
  rig.editor->Redo();
  EXPECT_FALSE(rig.state.Modified);
  rig.editor->Undo();
  rig.Enter(Common(1, kGridStepTime), "8");
  rig.editor->Undo();
  EXPECT_TRUE(rig.state.Modified) << "the saved state is on the branch that was given up";

  EditingRig other(1);
  other.Enter(Common(1, kGridStepTime), "5");
  other.editor->Undo();
  EXPECT_FALSE(other.state.Modified);
  other.state.Modified = true;  // by something that is not recorded
  other.Enter(Common(1, kGridStepTime), "6");
  other.editor->Undo();
  EXPECT_TRUE(other.state.Modified);
}

TEST(Undo, GoesWhereTheChangeWasMade) {
  EditingRig rig(50);
  rig.Select(GridArea::Sequence, 1, 40, 42, kColFrequency, kColFrequency);
  ASSERT_EQ(rig.IdOf(rig.editor->PasteText("60")), 0);
  const GridCursor there = rig.editor->Cursor();
  rig.Select(GridArea::Common, 0, 3, 3, 1, 1);
  rig.editor->DeleteRow();
  rig.Select(GridArea::Common, 0, 49, 49, 2, 2);
  rig.editor->Undo();
  EXPECT_EQ(rig.editor->Cursor().CurrentRow, 3);
  rig.editor->Undo();
  EXPECT_EQ(rig.editor->Cursor(), there);
  rig.Select(GridArea::Common, 0, 1, 1, 1, 1);
  rig.editor->Redo();
  EXPECT_EQ(rig.editor->Cursor(), there);
  // The last step is gone again, and with it the row where it was added.
  rig.Select(GridArea::Common, 0, 50, 50, 1, 1);
  rig.editor->AddRow();
  rig.Select(GridArea::Common, 0, 51, 51, 1, 1);
  rig.editor->Undo();
  EXPECT_EQ(rig.editor->Cursor().CurrentRow, 50);
}

TEST(Undo, CoversDialogsAndLeavesTheRest) {
  EditingRig rig(2);
  rig.sequence->Channels.ArbFiles[4].FilePath = "old.wdb";
  rig.sequence->Channels.ArbFiles[4].Transferred = 1;
  const EditOutcome outcome = rig.editor->Record(TextId::EditChannelSettings, [&] {
    rig.sequence->Common.Trigger = 2;
    rig.sequence->Channels.Loads[0] = {1, 75};
    rig.sequence->Channels.UserUnits[1][2].UnitText = "rpm";
    rig.sequence->Channels.ArbFiles[4] = EntryWithFile(rig.sequence->Channels.ArbFiles[4], "new.wdb");
    rig.sequence->ModeSettings[0][1] = 1;
  });
  EXPECT_TRUE(outcome.WholeWindow);
  EXPECT_TRUE(rig.state.Modified);
  rig.sequence->StartStep = 9;
  rig.sequence->SequenceName = "later";
  rig.Step(1).StepRunTime = 1234;
  rig.editor->Undo();
  EXPECT_EQ(rig.sequence->Common.Trigger, 0);
  EXPECT_EQ(rig.sequence->Channels.Loads[0].LoadType, 0);
  EXPECT_EQ(rig.sequence->Channels.UserUnits[1][2].UnitText, "usr");
  EXPECT_EQ(rig.sequence->Channels.ArbFiles[4].FilePath, "old.wdb");
  EXPECT_EQ(rig.sequence->Channels.ArbFiles[4].Transferred, 0) << "the instrument may hold the other file";
  EXPECT_EQ(rig.sequence->ModeSettings[0][1], 0);
  EXPECT_EQ(rig.sequence->StartStep, 9);
  EXPECT_EQ(rig.sequence->SequenceName, "later");
  EXPECT_EQ(rig.Step(1).StepRunTime, 1234);
  rig.editor->Redo();
  EXPECT_EQ(rig.sequence->Channels.ArbFiles[4].FilePath, "new.wdb");
  EXPECT_FALSE(rig.editor->Record(TextId::EditCommonParameters, [] {}).Changed);
}

TEST(Undo, StaysWithinItsLimits) {
  EditingRig small(1);
  for (int i = 0; i < 500; ++i) small.Enter(Common(1, kGridStepTime), std::to_string(i + 2));
  EXPECT_EQ(small.editor->History().Levels(), kUndoLevels);
  std::size_t undone = 0;
  for (; small.editor->CanUndo(); ++undone) small.editor->Undo();
  EXPECT_EQ(undone, kUndoLevels);
  EXPECT_EQ(small.Text(Common(1, kGridStepTime)), "301");

  // Entries that change every cell of every step.
  EditingRig large(256);
  for (int i = 0; i < 300; ++i) {
    large.editor->Record(TextId::EditReadBack, [&] {
      for (ParamCell& cell : large.sequence->Cells) cell.Value += 1;
      for (StepRow& row : large.sequence->Steps) row.StepTime += 1;
    });
  }
  EXPECT_LE(large.editor->History().Bytes(), kUndoBytes);
  EXPECT_GE(large.editor->History().Levels(), kUndoLeastLevels);

  // Even when single entries are huge, the last ones stay.
  EditingRig paths(1);
  for (int i = 0; i < 100; ++i) {
    paths.editor->Record(TextId::EditWaveforms, [&] {
      paths.sequence->Channels.ArbFiles[0].FilePath = std::string(1U << 20U, static_cast<char>('a' + i % 20));
    });
  }
  EXPECT_EQ(paths.editor->History().Levels(), kUndoLeastLevels);
}

// One random operation through the editor.
class RandomEdits {
 public:
  RandomEdits(EditingRig& rig, unsigned seed) : rig_(rig), random_(seed) {}

  void Step() {
    SequenceEditor& editor = *rig_.editor;
    const int rows = std::max<int>(rig_.sequence->StepCount, 1);
    const bool channels = Pick(0, 1) == 1;
    rig_.Select(channels ? GridArea::Sequence : GridArea::Common, Pick(0, 1), Pick(1, rows), Pick(1, rows),
                Pick(1, 9), Pick(1, 9));
    using Edit = EditOutcome (SequenceEditor::*)();
    static constexpr std::array<Edit, 9> kEdits{
        &SequenceEditor::AddRow,     &SequenceEditor::InsertRow, &SequenceEditor::DeleteRow,
        &SequenceEditor::RowUp,      &SequenceEditor::RowDown,   &SequenceEditor::Paste,
        &SequenceEditor::Initialize, &SequenceEditor::FillDown,  &SequenceEditor::DuplicateRows};
    const int kind = Pick(0, 15);
    if (kind < 9) {
      if (kind < 8 || rig_.sequence->StepCount < 30) (editor.*kEdits[static_cast<std::size_t>(kind)])();
    } else if (kind == 9) {
      editor.Copy();
    } else if (kind == 10) {
      editor.PasteText(Text() + "\t" + Text() + "\n" + Text());
    } else if (kind == 11) {
      editor.Choose(Place(), Pick(0, 5));
    } else if (kind == 12) {
      editor.ChooseOption(Place(), Pick(0, 2));
    } else {
      editor.EnterText(Place(), Text());
    }
  }
  int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

 private:
  CellPlace Place() {
    const int row = Pick(1, rig_.sequence->StepCount + 1);
    const int kind = Pick(0, 4);
    if (kind == 0) return Branch(row, Pick(1, 5));
    return kind <= 2 ? Common(row, Pick(1, 9)) : Channel(Pick(0, 1), row, Pick(1, 9));
  }
  std::string Text() {
    static const std::vector<std::string> kTexts{
        "1",       "2",   "3.5", "10",  "-5",   "9.99", "20",  "",      "1e7", "0", "ON",  "OFF",
        "- - - -", "SQU", "DC",  "SIN", "USER", "x",    "NaN", "1e400", "360", "5", "128", "0.001"};
    return kTexts[static_cast<std::size_t>(Pick(0, static_cast<int>(kTexts.size()) - 1))];
  }

  EditingRig& rig_;
  std::mt19937 random_;
};

void ExpectInvariants(EditingRig& rig) {
  const SequenceData& sequence = *rig.sequence;
  const auto computed = std::make_unique<SequenceData>(sequence);
  ComputeStartValues(*computed);
  ASSERT_TRUE(computed->Cells == sequence.Cells) << "start values";
  ASSERT_GE(sequence.StepCount, 0);
  ASSERT_LE(sequence.StepCount, rig.definition.Common.MaxSteps);
  for (int row = 1; row <= sequence.StepCount; ++row) {
    const StepRow& step = rig.Step(row);
    ASSERT_TRUE(CommonBounds(rig.definition, sequence, kGridStepTime).Hold(step.StepTime));
    ASSERT_TRUE(CommonBounds(rig.definition, sequence, kGridJumpCount).Hold(step.JumpCount));
    for (const int target : {+step.JumpTo, +step.EventBranchStep, +step.StateBranchStep}) {
      ASSERT_GE(target, 1);
      ASSERT_LE(target, MAX_STEPS);
    }
    for (int channel = 0; channel < 2; ++channel) {
      for (int param = 0; param < ChannelParams(rig.definition); ++param) {
        if (!ChannelInUse(rig.definition, sequence, channel, row - 1, param)) continue;
        const double value = sequence.Cell(channel, row - 1, param).Value;
        ASSERT_TRUE(ChannelBounds(rig.definition, sequence, channel, row - 1, param).Hold(value))
            << "step " << row << " parameter " << param << ": " << value;
      }
      ASSERT_TRUE(PeakFits(rig.definition, sequence, channel, row - 1)) << "step " << row;
    }
  }
  // What is shown is what a window built anew would show.
  const GridViews fresh(rig.state, rig.definition, sequence, rig.catalogue);
  ASSERT_EQ(rig.editor->Views().Colors(), fresh.Colors());
  ASSERT_LE(rig.editor->History().Bytes(), kUndoBytes);
}

TEST(Undo, RandomEditsKeepTheInvariantsAndGoBackExactly) {
  for (unsigned seed = 1; seed <= 12; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    EditingRig rig(3);
    testing::FakeClock clock;
    testing::FakePump pump(clock);
    testing::ScriptedPrompts agreeing;
    agreeing.AgreeToAll(pump);
    rig.editor =
        std::make_unique<SequenceEditor>(rig.state, rig.definition, *rig.sequence, rig.catalogue, agreeing);
    RandomEdits edits(rig, seed);
    std::vector<SequenceData> states{*rig.sequence};  // after each recorded entry
    std::size_t position = 0;
    int changes = 0;
    for (int i = 0; i < 150; ++i) {
      const int kind = edits.Pick(0, 9);
      if (kind == 0 && position > 0) {
        ASSERT_TRUE(rig.editor->Undo().Changed);
        --position;
      } else if (kind == 1 && position + 1 < states.size()) {
        ASSERT_TRUE(rig.editor->Redo().Changed);
        ++position;
      } else {
        edits.Step();
        if (!(*rig.sequence == states[position])) {
          states.resize(position + 1, *rig.sequence);
          states.push_back(*rig.sequence);
          ++position;
          ++changes;
        }
      }
      ASSERT_TRUE(*rig.sequence == states[position]) << "operation " << i;
      ASSERT_EQ(rig.editor->History().CanUndo(), position > 0);
      ASSERT_NO_FATAL_FAILURE(ExpectInvariants(rig)) << "operation " << i;
    }
    ASSERT_GT(changes, 30) << "too few of the operations did anything";
    while (rig.editor->CanUndo()) rig.editor->Undo();
    EXPECT_TRUE(*rig.sequence == states.front());
    while (rig.editor->CanRedo()) rig.editor->Redo();
    EXPECT_TRUE(*rig.sequence == states.back());
  }
}

}  // namespace
}  // namespace corlune
