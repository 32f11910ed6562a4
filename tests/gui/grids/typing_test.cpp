// What a person gets who types quickly and without the mouse.
#include "gui/grids/grids_rig.h"

namespace corlune::testing {
namespace {

TEST(Typing, AKeyPressedBeforeTheArrowIsLetGoComesAfterIt) {
  GridsRig rig(5);
  rig.GoTo(GridArea::Common, 2, 1);
  QTest::keyPress(rig.Focus(), Qt::Key_Down);
  QTest::keyClick(rig.Focus(), '7');
  EXPECT_EQ(rig.At(), "3,1");
  QTest::keyRelease(rig.Focus(), Qt::Key_Down);
  EXPECT_EQ(rig.At(), "3,1") << "the arrow has moved already";
  rig.Press(Qt::Key_Return);
  EXPECT_EQ(rig.Step(2).StepTime, 1);
  EXPECT_EQ(rig.Step(3).StepTime, 7);

  // Into a list, which is another editor.
  rig.GoTo(GridArea::Common, 2, 1);
  QTest::keyPress(rig.Focus(), Qt::Key_Right);
  QTest::keyClick(rig.Focus(), 'o');
  QTest::keyClick(rig.Focus(), 'n');
  QTest::keyRelease(rig.Focus(), Qt::Key_Right);
  rig.Press(Qt::Key_Return);
  EXPECT_EQ(rig.Step(2).AutoHold, 1);

  // Two arrows that overlap are two moves.
  rig.GoTo(GridArea::Common, 3, 4);
  QTest::keyPress(rig.Focus(), Qt::Key_Down);
  QTest::keyPress(rig.Focus(), Qt::Key_Left);
  QTest::keyRelease(rig.Focus(), Qt::Key_Down);
  QTest::keyRelease(rig.Focus(), Qt::Key_Left);
  EXPECT_EQ(rig.At(), "4,3");

  // A refused entry takes the keys behind it along.
  rig.GoTo(GridArea::Common, 3, 1);
  rig.Type("x");
  rig.prompts.Answer(PromptAnswer::Ok);
  QTest::keyPress(rig.Focus(), Qt::Key_Down);
  QTest::keyClick(rig.Focus(), '5');
  QTest::keyRelease(rig.Focus(), Qt::Key_Down);
  rig.CheckMessage("Input value Error!");
  EXPECT_EQ(rig.At(), "3,1");
  EXPECT_EQ(rig.Text(1).text(), "7");
}

TEST(Typing, AnArrowLetGoInAnotherControlIsForgotten) {
  GridsRig rig(5);
  rig.GoTo(GridArea::Common, 2, 1);
  QTest::keyPress(rig.Focus(), Qt::Key_Down);
  rig.behind->setFocus();
  QApplication::processEvents();
  rig.GoTo(GridArea::Common, 2, 1);
  rig.TypeThen("4", Qt::Key_Return);
  EXPECT_EQ(rig.Step(2).StepTime, 4);
}

TEST(Typing, ControlEnterAddsTheNextStep) {
  GridsRig rig(0);
  for (const char* time : {"1.5", "2.5", "3.5"}) {
    rig.Press(Qt::Key_Return, Qt::ControlModifier);
    rig.Type(time);
  }
  rig.Press(Qt::Key_Return);
  ASSERT_EQ(rig.sequence.StepCount, 3);
  EXPECT_EQ(rig.Step(1).StepTime, 1.5);
  EXPECT_EQ(rig.Step(2).StepTime, 2.5);
  EXPECT_EQ(rig.Step(3).StepTime, 3.5);
}

TEST(Typing, ControlPageKeysGoThroughAllGrids) {
  GridsRig rig(4);
  rig.GoTo(GridArea::Common, 3, 1);
  const auto place = [&] {
    const GridCursor& cursor = rig.editor->Cursor();
    return std::to_string(static_cast<int>(cursor.ActiveGrid)) + std::to_string(cursor.CurrentChannel) +
           " row " + std::to_string(cursor.CurrentRow) + " " + rig.FocusName();
  };
  std::vector<std::string> passed;
  for (int i = 0; i < 4; ++i) {
    rig.Press(Qt::Key_PageDown, Qt::ControlModifier);
    passed.push_back(place());
  }
  const std::vector<std::string> expected{"20 row 3 Combo2", "21 row 3 Combo2", "31 row 3 Text3",
                                          "11 row 3 Text1"};
  EXPECT_EQ(passed, expected);
  rig.Press(Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_EQ(place(), expected[2]);
  rig.Press(Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_EQ(place(), expected[1]);
}

TEST(Typing, TheOtherChannelShowsTheSameSteps) {
  GridsRig rig(1);
  // Steps that are added while the other channel's grid is hidden.
  for (int i = 1; i < 60; ++i) rig.Press(Qt::Key_Return, Qt::ControlModifier);
  const auto top = [&](int channel) { return rig.Channel(channel).verticalScrollBar()->value(); };
  rig.GoTo(GridArea::Sequence, 30, 3);
  ASSERT_GT(top(0), 10);
  const int before = top(0);
  rig.Named<ChannelTabs>("SSTab1").setCurrentIndex(1);
  QApplication::processEvents();
  EXPECT_EQ(top(1), before);
  rig.Channel(1).verticalScrollBar()->setValue(before - 5);
  EXPECT_EQ(rig.Common().verticalScrollBar()->value(), before - 5);
  rig.GoTo(GridArea::Common, 2, 1);
  ASSERT_LT(top(1), before - 5);
  rig.Named<ChannelTabs>("SSTab1").setCurrentIndex(0);
  QApplication::processEvents();
  EXPECT_EQ(top(0), top(1));
}

TEST(Typing, FarKeysMoveAndSelect) {
  GridsRig rig(100);
  const auto extent = [&] {
    const GridBlock block = SelectedBlock(rig.editor->Cursor());
    return std::vector<int>{block.FirstRow, block.LastRow, block.FirstColumn, block.LastColumn};
  };
  struct {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    std::vector<int> expected;
  } const cases[] = {
      {Qt::Key_Down, Qt::ControlModifier, {100, 100, 4, 4}},
      {Qt::Key_Up, Qt::ControlModifier, {1, 1, 4, 4}},
      {Qt::Key_Left, Qt::ControlModifier, {50, 50, 1, 1}},
      {Qt::Key_Right, Qt::ControlModifier, {50, 50, 9, 9}},
      {Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier, {50, 100, 4, 4}},
      {Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier, {1, 50, 4, 4}},
      {Qt::Key_Home, Qt::ShiftModifier, {50, 50, 1, 4}},
      {Qt::Key_End, Qt::ShiftModifier, {50, 50, 4, 9}},
      {Qt::Key_End, Qt::ControlModifier | Qt::ShiftModifier, {50, 100, 4, 9}},
      {Qt::Key_Home, Qt::ControlModifier | Qt::ShiftModifier, {1, 50, 1, 4}},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(QKeySequence(QKeyCombination(row.modifiers, row.key)).toString().toStdString());
    rig.GoTo(GridArea::Common, 50, 4);
    rig.Press(row.key, row.modifiers);
    EXPECT_EQ(extent(), row.expected);
  }
  rig.GoTo(GridArea::Common, 50, 1);
  rig.Press(Qt::Key_PageDown, Qt::ShiftModifier);
  EXPECT_EQ(extent()[0], 50);
  EXPECT_GT(extent()[1], 52);

  // In a text that is being edited they belong to the text.
  rig.GoTo(GridArea::Common, 50, 1);
  rig.Type("12");
  rig.Press(Qt::Key_Home, Qt::ShiftModifier);
  EXPECT_EQ(rig.Text(1).selectedText(), "12");
}

}  // namespace
}  // namespace corlune::testing
