// Keyboard and mouse paths of the cell cursor, through the real widgets.
#include "gui/grids/grids_rig.h"

namespace corlune::testing {
namespace {

// The rules have their own tests, and so have the keys that end an entry: here the other grids.
TEST(CursorKeys, MoveInTheGrids) {
  GridsRig rig(5);
  struct {
    int channel, row, column;
    Qt::Key key;
    const char* at;
    const char* focus;
  } const cases[] = {
      {0, 2, 9, Qt::Key_Tab, "3,1", "Combo2"},
      {1, 1, 4, Qt::Key_Left, "1,3", "Text2"},
      // A parameter that the waveform does not have can be passed, though it has no editor.
      {0, 2, 1, Qt::Key_Right, "2,2", "MSFlexGrid2_0"},
      {0, 2, 2, Qt::Key_Right, "2,3", "Text2"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.at);
    rig.GoTo(GridArea::Sequence, row.row, row.column, row.channel);
    rig.Press(row.key);
    EXPECT_EQ(rig.At(), row.at);
    EXPECT_EQ(rig.FocusName(), row.focus);
    EXPECT_EQ(rig.editor->Cursor().CurrentChannel, row.channel);
    const QModelIndex shown = rig.Channel(row.channel).currentIndex();
    EXPECT_EQ(std::to_string(shown.row() + 1) + "," + std::to_string(shown.column()), row.at);
  }
}

TEST(CursorKeys, BranchGridMovesBetweenBranchChannels) {
  GridsRig rig(5);
  rig.GoTo(GridArea::Common, 3, 1);
  for (const auto& [row, key, expected] :
       {std::tuple(1, Qt::Key_Return, 2), {5, Qt::Key_Down, 5}, {4, Qt::Key_Tab, 5}, {3, Qt::Key_Up, 2}}) {
    SCOPED_TRACE(row);
    rig.GoTo(GridArea::Branch, row, 1);
    rig.Press(key);
    EXPECT_EQ(rig.Branch().currentIndex().row() + 1, expected);
    EXPECT_EQ(rig.editor->Cursor().CurrentRow, 3);  // the step stays
    EXPECT_EQ(rig.FocusName(), "Text3");
  }
}

TEST(CursorKeys, ArrowsActWhenTheKeyIsLetGo) {
  GridsRig rig(5);
  rig.GoTo(GridArea::Common, 2, 1);
  QTest::keyPress(rig.Focus(), Qt::Key_Down);
  EXPECT_EQ(rig.At(), "2,1");
  QTest::keyRelease(rig.Focus(), Qt::Key_Down);
  EXPECT_EQ(rig.At(), "3,1");
  // Held down it repeats.
  QTest::keyPress(rig.Focus(), Qt::Key_Up);
  QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier, QString(), true);
  QApplication::sendEvent(rig.Focus(), &repeat);
  EXPECT_EQ(rig.At(), "2,1");
  rig.behind->setFocus();
  rig.GoTo(GridArea::Common, 3, 1);
  // A release that began elsewhere, in a list for example, means nothing.
  QTest::keyRelease(rig.Focus(), Qt::Key_Down);
  EXPECT_EQ(rig.At(), "3,1");
  // Enter acts at once.
  QTest::keyPress(rig.Focus(), Qt::Key_Return);
  EXPECT_EQ(rig.At(), "4,1");
}

TEST(CursorKeys, ControlTabLeavesTheGridsInBothDirections) {
  GridsRig rig(3);
  EXPECT_EQ(rig.FocusName(), "Text1");
  rig.Press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(rig.Focus(), rig.before);
  rig.Press(Qt::Key_Tab);
  EXPECT_EQ(rig.FocusName(), "Text1") << "the cell that was left";
  std::vector<std::string> passed;
  for (int i = 0; i < 20 && rig.Focus() != rig.behind; ++i) {
    // Inside a grid Tab would move between cells.
    const bool cell = rig.FocusName().rfind("Text", 0) == 0 || rig.FocusName().rfind("Combo", 0) == 0;
    rig.Press(Qt::Key_Tab, cell ? Qt::ControlModifier : Qt::NoModifier);
    passed.push_back(rig.FocusName());
  }
  EXPECT_EQ(rig.Focus(), rig.behind);
  for (const char* name : {"CmdInsert", "CmdUp", "Text3", "Combo2"}) {
    EXPECT_NE(std::find(passed.begin(), passed.end(), name), passed.end()) << name;
  }
}

TEST(CursorKeys, AnEmptySequenceHoldsNoCursor) {
  GridsRig rig(0);
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Down, Qt::Key_Right, Qt::Key_5}) rig.Press(key);
  EXPECT_EQ(rig.At(), "1,1");
  EXPECT_FALSE(rig.Common().currentIndex().isValid());
  rig.Press(Qt::Key_Tab);
  EXPECT_NE(rig.FocusName(), "MSFlexGrid1");
}

std::string Block(const GridsRig& rig) {
  const GridBlock block = SelectedBlock(rig.editor->Cursor());
  return std::to_string(block.FirstRow) + "," + std::to_string(block.FirstColumn) + ":" +
         std::to_string(block.LastRow) + "," + std::to_string(block.LastColumn);
}

TEST(Selection, GrowsByShiftDragAndStepNumber) {
  GridsRig rig(10);
  QTableView& grid = rig.Common();
  rig.GoTo(GridArea::Common, 3, 2);
  rig.Press(Qt::Key_Down, Qt::ShiftModifier);
  rig.Press(Qt::Key_Right, Qt::ShiftModifier);
  EXPECT_EQ(Block(rig), "3,2:4,3");
  EXPECT_EQ(grid.selectionModel()->selectedIndexes().size(), 4);
  rig.Click(grid, 1, 1, Qt::ShiftModifier);
  EXPECT_EQ(Block(rig), "1,1:3,2");
  rig.Press(Qt::Key_Down);  // from the cell where the selection began
  EXPECT_EQ(Block(rig), "4,2:4,2");

  const auto center = [&](int row, int column) {
    return grid.visualRect(grid.model()->index(row - 1, column)).center();
  };
  QTest::mousePress(grid.viewport(), Qt::LeftButton, {}, center(2, 1));
  QTest::mouseMove(grid.viewport(), center(3, 3));
  QTest::mouseRelease(grid.viewport(), Qt::LeftButton, {}, center(3, 3));
  EXPECT_EQ(Block(rig), "2,1:3,3");
  EXPECT_FALSE(rig.Text(1).isVisible()) << "the editor would hide a part of the selection";

  rig.Click(grid, 5, 0);
  EXPECT_EQ(Block(rig), "5,1:5,9");
  rig.Click(grid, 6, 0, Qt::ShiftModifier);
  EXPECT_EQ(Block(rig), "5,1:6,9");
  rig.panel->ReduceSelection();
  EXPECT_EQ(Block(rig), "5,1:5,1");
  rig.Press(Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(Block(rig), "1,1:10,9");

  rig.Click(rig.Channel(0), 2, 3, Qt::ShiftModifier);
  EXPECT_EQ(Block(rig), "2,3:2,3") << "the other grid has no part in it";
  QTest::mousePress(rig.Channel(0).viewport(), Qt::LeftButton, {}, QPoint(5, 5000));  // below the steps
  QTest::mouseMove(rig.Channel(0).viewport(), center(3, 3));
  QTest::mouseRelease(rig.Channel(0).viewport(), Qt::LeftButton);
  EXPECT_EQ(Block(rig), "2,3:2,3");

  // Dragging out of the untouched editor selects cells as well.
  rig.GoTo(GridArea::Common, 2, 1);
  QLineEdit& text = rig.Text(1);
  QTest::mousePress(&text, Qt::LeftButton, {}, QPoint(5, 5));
  QTest::mouseMove(&text, QPoint(5, 5 + 2 * text.height()));
  QTest::mouseRelease(&text, Qt::LeftButton, {}, QPoint(5, 5 + 2 * text.height()));
  EXPECT_EQ(Block(rig), "2,1:4,1");
  // Out of a changed one it does not: what was typed stays.
  rig.GoTo(GridArea::Common, 2, 1);
  rig.Type("7");
  QTest::mousePress(&text, Qt::LeftButton, {}, QPoint(5, 5));
  QTest::mouseMove(&text, QPoint(5, 5 + 2 * text.height()));
  QTest::mouseRelease(&text, Qt::LeftButton, {}, QPoint(5, 5 + 2 * text.height()));
  rig.Press(Qt::Key_Return);
  EXPECT_EQ(rig.Step(2).StepTime, 7);
}

TEST(Selection, ExecutionModeMovesWithoutEditors) {
  GridsRig rig(5);
  rig.state.OperationMode = OperationMode::Execution;
  rig.ShowStates();
  EXPECT_FALSE(rig.Text(1).isVisible()) << "closed at once";
  rig.GoTo(GridArea::Common, 2, 1);
  EXPECT_EQ(rig.FocusName(), "MSFlexGrid1");
  rig.Press(Qt::Key_Down);
  rig.Type("5");
  rig.Press(Qt::Key_Delete);
  EXPECT_EQ(rig.At(), "3,1");
  EXPECT_FALSE(rig.Text(1).isVisible());
  EXPECT_FALSE(rig.state.Modified);
  EXPECT_FALSE(rig.Named<QPushButton>("CmdInsert").isEnabled());
}

}  // namespace
}  // namespace corlune::testing
