// Entering values through the cell editors.
#include "gui/grids/grids_rig.h"

namespace corlune::testing {
namespace {

std::string OpenEditors(const GridsRig& rig) {
  std::string names;
  for (const char* name : {"Text1", "Text2", "Text3", "Combo1", "Combo2", "Combo3", "OptModeSet1",
                           "OptModeSet2", "OptModeSet3", "OptModeSet4", "OptModeSet5"}) {
    const auto* widget = rig.window.findChild<QWidget*>(QLatin1String(name));
    if (widget != nullptr && widget->isVisible()) names += (names.empty() ? "" : " ") + std::string(name);
  }
  return names;
}

// The editor lies over its cell, and everything of it inside the visible part of the grid.
TEST(CellEditor, LiesOverItsCellAtEveryEdge) {
  GridsRig rig(100);
  for (const int row : {1, 50, 99, 100}) {
    for (const int column : {1, 6, 9}) {
      SCOPED_TRACE(std::to_string(row) + "," + std::to_string(column));
      rig.GoTo(GridArea::Common, row, column);
      const QTableView& grid = rig.Common();
      const QRect cell = grid.visualRect(grid.model()->index(row - 1, column));
      for (const auto* editor : grid.viewport()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (!editor->isVisible()) continue;
        EXPECT_TRUE(grid.viewport()->rect().contains(editor->geometry()))
            << editor->objectName().toStdString();
        const bool option = qobject_cast<const QRadioButton*>(editor) != nullptr;
        EXPECT_EQ(editor->geometry().intersects(cell), !option) << editor->objectName().toStdString();
      }
    }
  }
  // It stays there while the grid scrolls.
  rig.GoTo(GridArea::Common, 50, 1);
  rig.Common().verticalScrollBar()->setValue(rig.Common().verticalScrollBar()->value() - 3);
  EXPECT_EQ(rig.Text(1).geometry(), rig.Common().visualRect(rig.Common().model()->index(49, 1)));
}

TEST(CellEntry, EveryEndingKeyStoresAndMoves) {
  struct {
    Qt::Key key;
    const char* at;
  } const cases[] = {{Qt::Key_Return, "4,1"}, {Qt::Key_Enter, "4,1"},  {Qt::Key_Tab, "3,2"},
                     {Qt::Key_Down, "4,1"},   {Qt::Key_Up, "2,1"},     {Qt::Key_Left, "3,1"},
                     {Qt::Key_Right, "3,2"},  {Qt::Key_Backtab, "2,9"}};
  for (const auto& row : cases) {
    SCOPED_TRACE(QKeySequence(row.key).toString().toStdString());
    GridsRig rig(5);
    rig.GoTo(GridArea::Common, 3, 1);
    rig.Type("2.50");
    rig.Press(row.key, row.key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
    EXPECT_EQ(rig.Step(3).StepTime, 2.5);
    EXPECT_EQ(rig.CellText(rig.Common(), 3, 1), "2.5");
    EXPECT_EQ(rig.At(), row.at);
    EXPECT_TRUE(rig.state.Modified);
  }
}

TEST(CellEntry, ARefusedEntryKeepsFocusPlaceAndScroll) {
  GridsRig rig(100);
  rig.GoTo(GridArea::Sequence, 60, 4);
  rig.Cell(0, 60, kSlotOffset).Value = 5;
  struct {
    GridArea area;
    int row, column;
    const char* typed;
    Qt::Key key;
    const char* message;
  } const cases[] = {
      {GridArea::Common, 50, 1, "abc", Qt::Key_Return, "Input value Error!"},
      {GridArea::Common, 50, 1, "1,5", Qt::Key_Tab, "Input value Error!"},
      {GridArea::Common, 50, 1, "99999", Qt::Key_Down, "Input value Error!  Input value 99999"},
      {GridArea::Common, 50, 1, "NaN", Qt::Key_Up, "Input value Error!"},
      {GridArea::Sequence, 60, 4, "11", Qt::Key_Right, "Input value Error! Sum"},
      {GridArea::Sequence, 60, 3, "-1", Qt::Key_Left, "Input value Error!  Input value"},
      {GridArea::Branch, 3, 1, "1.5", Qt::Key_Return, "Input value Error!"},
      {GridArea::Branch, 3, 1, "101", Qt::Key_Return, "Input value Error!  Input value 101"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.typed);
    rig.GoTo(row.area, row.row, row.column);
    const std::string at = rig.At();
    QLineEdit& text = rig.Text(static_cast<int>(row.area));
    const QString before = text.text();
    const SequenceData sequence = rig.sequence;
    const int scrolled = rig.Common().verticalScrollBar()->value();
    rig.Type(row.typed);
    rig.prompts.Answer(PromptAnswer::Ok);
    // The box takes the focus while it is open, as a real one does.
    rig.prompts.WhileOpen([] { QApplication::setActiveWindow(nullptr); });
    rig.Press(row.key);
    rig.window.activateWindow();
    QApplication::processEvents();
    rig.CheckMessage(row.message);
    EXPECT_EQ(rig.Focus(), &text);
    EXPECT_EQ(rig.At(), at);
    EXPECT_EQ(text.text(), before);
    EXPECT_EQ(text.selectedText(), before);
    EXPECT_EQ(rig.Common().verticalScrollBar()->value(), scrolled);
    EXPECT_TRUE(rig.sequence == sequence);
    rig.Press(Qt::Key_Return);  // goes on without another message
  }
}

TEST(CellEntry, APressElsewhereEntersOnce) {
  GridsRig rig(5);
  // Another cell, another grid, a field, a button.
  rig.Type("2");
  rig.Click(rig.Common(), 4, 1);
  EXPECT_EQ(rig.Step(1).StepTime, 2);
  rig.Type("3");
  rig.Click(rig.Channel(0), 1, 3);
  EXPECT_EQ(rig.Step(4).StepTime, 3);
  rig.Type("60");
  QTest::mouseClick(rig.behind, Qt::LeftButton);
  QApplication::processEvents();
  EXPECT_EQ(rig.Cell(0, 1, kSlotFrequency).Value, 60);
  EXPECT_EQ(rig.Focus(), rig.behind);
  EXPECT_EQ(OpenEditors(rig), "");
  EXPECT_EQ(rig.editor->History().Levels(), 3U);

  // Refused: the press is not followed, the cell keeps the focus, one message.
  for (QWidget* target : {static_cast<QWidget*>(rig.behind), rig.Channel(0).viewport()}) {
    rig.GoTo(GridArea::Common, 2, 1);
    rig.Type("x");
    rig.prompts.Answer(PromptAnswer::Ok);
    QTest::mouseClick(target, Qt::LeftButton, {}, QPoint(60, 10));
    QApplication::processEvents();
    rig.CheckMessage("Input value Error!");
    EXPECT_EQ(rig.FocusName(), "Text1");
    EXPECT_EQ(rig.Text(1).text(), "1");
    EXPECT_EQ(rig.At(), "2,1");
    EXPECT_EQ(rig.editor->Cursor().ActiveGrid, GridArea::Common);
  }

  // The row button is not carried out over a refused entry, and is over an accepted one.
  rig.Type("x");
  rig.prompts.Answer(PromptAnswer::Ok);
  QTest::mouseClick(&rig.Named<QPushButton>("CmdInsert"), Qt::LeftButton);
  rig.CheckMessage("Input value Error!");
  EXPECT_EQ(rig.sequence.StepCount, 5);
  rig.Type("7");
  QTest::mouseClick(&rig.Named<QPushButton>("CmdInsert"), Qt::LeftButton);
  EXPECT_EQ(rig.sequence.StepCount, 6);
  EXPECT_EQ(rig.Step(3).StepTime, 7);
}

TEST(CellEntry, AnotherWindowOrAMenuDoesNotEndIt) {
  GridsRig rig(5);
  rig.Type("2");
  QLineEdit other;
  other.show();
  other.activateWindow();
  other.setFocus();
  QApplication::processEvents();
  EXPECT_EQ(rig.Step(1).StepTime, 1);
  EXPECT_EQ(rig.Text(1).text(), "2");
  other.close();
  rig.window.activateWindow();
  QApplication::processEvents();
  rig.Press(Qt::Key_Return);
  EXPECT_EQ(rig.Step(1).StepTime, 2);
}

TEST(CellEntry, ATabWithARefusedEntryStays) {
  GridsRig rig(5);
  auto& tabs = rig.Named<ChannelTabs>("SSTab1");
  rig.GoTo(GridArea::Sequence, 2, 3);
  rig.Type("x");
  rig.prompts.Answer(PromptAnswer::Ok);
  tabs.setCurrentIndex(1);
  QApplication::processEvents();
  rig.CheckMessage("Input value Error!");
  EXPECT_EQ(tabs.currentIndex(), 0);
  EXPECT_EQ(rig.FocusName(), "Text2");
  rig.Type("70");
  rig.Press(Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(tabs.currentIndex(), 1);
  EXPECT_EQ(rig.editor->Cursor().CurrentChannel, 1);
  EXPECT_EQ(rig.Cell(0, 2, kSlotFrequency).Value, 70);
}

TEST(CellEntry, F2EscapeAndTyping) {
  GridsRig rig(5);
  QLineEdit& text = rig.Text(1);
  EXPECT_EQ(text.selectedText(), "1");
  rig.Press(Qt::Key_F2);
  EXPECT_FALSE(text.hasSelectedText());
  rig.Type("2");
  EXPECT_EQ(text.text(), "12");
  rig.Press(Qt::Key_Left);  // the text cursor, after F2
  rig.Type("0");
  EXPECT_EQ(text.text(), "102");
  rig.Press(Qt::Key_Escape);
  EXPECT_EQ(text.text(), "1");
  EXPECT_EQ(text.selectedText(), "1");
  EXPECT_EQ(rig.At(), "1,1");
  rig.TypeThen("5", Qt::Key_Return);
  EXPECT_EQ(rig.Step(1).StepTime, 5);
  rig.panel->HideEditors();
  EXPECT_EQ(OpenEditors(rig), "");
  rig.TypeThen("6", Qt::Key_Return);  // typing opens the editor
  EXPECT_EQ(rig.Step(2).StepTime, 6);
}

TEST(CellEntry, TextKeysGoToTheGridWhileTheTextIsUntouched) {
  GridsRig rig(5);
  rig.TypeThen("5", Qt::Key_Return);
  rig.Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(rig.Step(1).StepTime, 1);
  rig.Press(Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(rig.Step(1).StepTime, 5);
  rig.GoTo(GridArea::Common, 1, 1);
  rig.Press(Qt::Key_C, Qt::ControlModifier);
  rig.GoTo(GridArea::Common, 3, 1);
  rig.Press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(rig.Step(3).StepTime, 5);
  rig.Press(Qt::Key_Delete);
  EXPECT_EQ(rig.Step(3).StepTime, 1);

  // In a changed text they mean the text.
  QLineEdit& text = rig.Text(1);
  rig.Type("23");
  rig.Press(Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(text.selectedText(), "23");
  EXPECT_EQ(SelectedBlock(rig.editor->Cursor()).Rows(), 1);
  rig.Press(Qt::Key_Delete);
  EXPECT_EQ(text.text(), "");
  rig.Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(text.text(), "23");
  EXPECT_EQ(rig.editor->History().Levels(), 3U);
  EXPECT_EQ(rig.Step(3).StepTime, 1);
}

TEST(CellEntry, JapaneseInputGivesNumbers) {
  GridsRig rig(5);
  rig.Compose(QStringLiteral("２．５"));
  EXPECT_EQ(rig.Text(1).text(), QStringLiteral("２．５"));
  rig.Press(Qt::Key_Return);
  EXPECT_EQ(rig.Step(1).StepTime, 2.5);
  EXPECT_EQ(rig.CellText(rig.Common(), 1, 1), "2.5");
  rig.GoTo(GridArea::Branch, 1, 1);
  rig.Compose(QStringLiteral("３"));
  rig.Press(Qt::Key_Return);
  EXPECT_EQ(rig.Step(2).BranchStep[0], 3);
}

TEST(CellList, KeyboardChoosesAndEscapeTakesBack) {
  GridsRig rig(5);
  rig.GoTo(GridArea::Common, 2, 8);  // CONT, STOP, END
  QWheelEvent wheel({5, 5}, {}, {}, {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&rig.Combo(1), &wheel);
  EXPECT_EQ(rig.Combo(1).currentText(), "CONT") << "the wheel scrolls, it does not choose";
  rig.Type("e");
  EXPECT_EQ(rig.Combo(1).currentText(), "END");
  rig.Press(Qt::Key_Escape);
  EXPECT_EQ(rig.Combo(1).currentText(), "CONT");
  rig.Type("s");
  rig.Press(Qt::Key_Return);
  EXPECT_EQ(rig.Step(2).StepTerm, 1);
  EXPECT_EQ(rig.At(), "3,8");
  rig.GoTo(GridArea::Common, 2, 9);
  rig.Type("13");
  rig.Press(Qt::Key_Down);
  EXPECT_EQ(rig.Step(2).StepCode, 13);
  EXPECT_EQ(rig.editor->History().Levels(), 2U) << "one entry, however many keys";

  for (const Qt::Key key : {Qt::Key_F4, Qt::Key_Space}) {
    rig.GoTo(GridArea::Sequence, 3, 1);
    rig.Press(key);
    ASSERT_TRUE(rig.Combo(2).view()->isVisible());
    QTest::keyClick(rig.Combo(2).view(), Qt::Key_Down);
    QTest::keyClick(rig.Combo(2).view(), Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_EQ(rig.Cell(0, 3, kSlotWaveform).Value, key == Qt::Key_F4 ? 1 : 2);
    EXPECT_EQ(rig.FocusName(), "Combo2");
  }
  EXPECT_EQ(rig.CellText(rig.Channel(0), 3, 4).empty(), false);
}

TEST(CellOptions, SwitchAndModes) {
  GridsRig rig(5);
  rig.GoTo(GridArea::Common, 4, 6);
  EXPECT_EQ(OpenEditors(rig) + ", " + rig.FocusName(), "Text1 OptModeSet4 OptModeSet5, OptModeSet4");
  EXPECT_FALSE(rig.Text(1).isEnabled());
  QTest::mouseClick(&rig.Named<QRadioButton>("OptModeSet5"), Qt::LeftButton);
  EXPECT_EQ(rig.Step(4).JumpOn, 1);
  EXPECT_EQ(rig.FocusName(), "Text1");
  rig.TypeThen("2", Qt::Key_Tab);
  EXPECT_EQ(rig.Step(4).JumpTo, 2);
  EXPECT_EQ(rig.At(), "4,7");
  // A number typed on a switched-off value switches it on.
  rig.TypeThen("12", Qt::Key_Return);
  EXPECT_EQ(rig.Step(4).JumpCountOn, 1);
  EXPECT_EQ(rig.Step(4).JumpCount, 12);
  EXPECT_EQ(rig.Step(5).JumpCountOn, 0);
  rig.Type("x");  // no number
  EXPECT_EQ(rig.Step(5).JumpCountOn, 0);
  rig.GoTo(GridArea::Common, 4, 6);
  rig.Press(Qt::Key_Space);
  EXPECT_EQ(rig.Step(4).JumpOn, 0);
  EXPECT_EQ(rig.CellText(rig.Common(), 4, 6), "- - - -");

  rig.GoTo(GridArea::Sequence, 2, 3);
  const auto before = rig.Channel(0).model()->index(1, 3).data(Qt::BackgroundRole).value<QColor>();
  EXPECT_TRUE(rig.Named<QRadioButton>("OptModeSet1").isChecked());
  // What was typed is stored with the mode.
  rig.Type("70");
  QTest::mouseClick(&rig.Named<QRadioButton>("OptModeSet3"), Qt::LeftButton);
  EXPECT_EQ(rig.Cell(0, 2, kSlotFrequency).Value, 70);
  EXPECT_EQ(rig.Cell(0, 2, kSlotFrequency).ChangeMode, kModeSweep);
  EXPECT_TRUE(rig.Named<QRadioButton>("OptModeSet3").isChecked());
  EXPECT_NE(rig.Channel(0).model()->index(1, 3).data(Qt::BackgroundRole).value<QColor>(), before);
  rig.Press(Qt::Key_Space);
  EXPECT_EQ(rig.Cell(0, 2, kSlotFrequency).ChangeMode, kModeConst);
}

TEST(CellOptions, ModesAreNamedInTheInterfaceLanguage) {
  GridsRig rig(2, CORLUNE_DATA "/Corlune_Std.ini", false);
  rig.GoTo(GridArea::Sequence, 1, 3);
  EXPECT_EQ(rig.Named<QRadioButton>("OptModeSet1").text(), QStringLiteral("一定"));
  EXPECT_EQ(rig.Named<QPushButton>("CmdUp").text(), QStringLiteral("△"));
}

TEST(CellUnits, UnitListStandsAtTheCell) {
  GridsRig rig(3, CORLUNE_TEST_DATA "/definitions/unit_lists.ini");
  rig.Step(2).StepTime = 0.5;
  rig.panel->Rebuild();
  rig.GoTo(GridArea::Common, 1, 1);
  EXPECT_EQ(OpenEditors(rig), "Text1 Combo1");
  EXPECT_EQ(rig.Combo(1).toolTip(), QStringLiteral("Time unit"));
  EXPECT_EQ(rig.FocusName(), "Text1");
  const int unit = rig.Combo(1).currentIndex();
  rig.Press(Qt::Key_F4);
  ASSERT_TRUE(rig.Combo(1).view()->isVisible());
  QTest::keyClick(rig.Combo(1).view(), unit == 0 ? Qt::Key_Down : Qt::Key_Up);
  QTest::keyClick(rig.Combo(1).view(), Qt::Key_Return);
  QApplication::processEvents();
  for (int row = 1; row <= 3; ++row) EXPECT_EQ(rig.Step(row).TimeUnit, 1 - unit) << "one unit for all steps";
  EXPECT_EQ(rig.Step(2).StepTime, unit == 0 ? 0.0005 : 500);
  EXPECT_EQ(rig.FocusName(), "Text1");
  rig.GoTo(GridArea::Sequence, 2, 3);
  EXPECT_EQ(OpenEditors(rig), "Text2 Combo2 OptModeSet1 OptModeSet2 OptModeSet3");
}

}  // namespace
}  // namespace corlune::testing
