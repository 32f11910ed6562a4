// Commands of the window that come while something is still being typed.
#include <random>

#include <QAbstractScrollArea>
#include <QMenuBar>

#include "gui/main_window/window_rig.h"
#include "view/frm_preview.h"
#include "view/graph_canvas.h"

namespace corlune::testing {
namespace {

TEST(OpenEntries, BelongToWhatACommandSaves) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(2);
  const std::string path = rig.folder.File("typed.dat");
  rig.session->State().CurrentFilePath = path;
  rig.window->Grids().SelectFirstCell();
  rig.Type("2.5");
  rig.Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(rig.session->Sequence().Steps[0].StepTime, 2.5);
  EXPECT_FALSE(rig.session->State().Modified);
  EXPECT_TRUE(rig.Messages().empty());
  rig.window->OpenPath(path);
  EXPECT_EQ(rig.session->Sequence().Steps[0].StepTime, 2.5);
}

TEST(OpenEntries, ARefusedOneStopsTheCommand) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(2);
  const auto refuse = [&](const std::function<void()>& command) {
    rig.window->Grids().SelectFirstCell();
    rig.Type("x");
    rig.prompts.Answer(PromptAnswer::Ok);
    command();
    rig.Settle();
    EXPECT_EQ(rig.Messages(), std::vector<std::string>{rig.Text(9108)});
    EXPECT_EQ(rig.session->Sequence().StepCount, 2);
    EXPECT_EQ(rig.session->State().OperationMode, OperationMode::Edit);
    EXPECT_EQ(rig.closed, 0);
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    EXPECT_EQ(QApplication::focusWidget()->objectName().toStdString(), "Text1");
  };
  refuse([&] { rig.Key(Qt::Key_S, Qt::ControlModifier); });  // would open a file dialog nobody queued
  refuse([&] { rig.Key(Qt::Key_N, Qt::ControlModifier); });
  refuse([&] { rig.Item("mnuModeItem_1")->trigger(); });
  refuse([&] { rig.Item("mnuImportCsv")->trigger(); });
  refuse([&] { rig.window->close(); });
}

TEST(OpenEntries, AreTakenBeforeAStepIsSelectedOrDraggedInTheView) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(3);
  rig.Item("mnuViewItem_1")->trigger();
  auto& canvas = *rig.window->Preview()->findChild<GraphCanvas*>();
  const auto levelAt = [&](int step) {
    const PlotScale scale = canvas.Scale(0);
    return QPointF(canvas.StepRect(step).center().x(), scale.YOf(1000)).toPoint();
  };
  const auto type = [&](const char* text) {
    rig.window->activateWindow();
    rig.window->Grids().SelectFirstCell();
    rig.Type(QString::fromUtf8(text));
  };
  type("0.5");
  QTest::mouseClick(canvas.viewport(), Qt::LeftButton, {}, levelAt(2));
  EXPECT_EQ(rig.session->Sequence().Steps[0].StepTime, 0.5);
  EXPECT_EQ(rig.editor->Cursor().CurrentRow, 3);
  EXPECT_EQ(canvas.SelectedStep(), 2);
  type("x");
  rig.prompts.Answer(PromptAnswer::Ok);
  QTest::mouseClick(canvas.viewport(), Qt::LeftButton, {}, levelAt(1));
  EXPECT_EQ(rig.Messages(), std::vector<std::string>{rig.Text(9108)});
  EXPECT_EQ(rig.editor->Cursor().CurrentRow, 1);
  EXPECT_EQ(canvas.SelectedStep(), 0);

  const std::size_t levels = rig.editor->History().Levels();
  QTest::mousePress(canvas.viewport(), Qt::LeftButton, {}, levelAt(1));
  for (const int up : {5, 10, 20}) QTest::mouseMove(canvas.viewport(), levelAt(1) - QPoint(0, up));
  QTest::mouseRelease(canvas.viewport(), Qt::LeftButton);
  EXPECT_GT(rig.session->Sequence().Cell(0, 1, kSlotFrequency).Value, 1000);
  EXPECT_EQ(rig.editor->History().Levels(), levels + 1);
  EXPECT_EQ(SelectedBlock(rig.editor->Cursor()), (GridBlock{GridArea::Sequence, 0, 2, 2, 3, 3}));
  rig.editor->Undo();
  EXPECT_EQ(rig.session->Sequence().Cell(0, 1, kSlotFrequency).Value, 1000);
}

// Whether an entry holds up a branch is tried out below.
TEST(OpenEntries, OfEitherWindowLeaveAloneWhatEndsTheRun) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(2);
  rig.Item("mnuViewItem_1")->trigger();
  rig.EnterExecution();
  for (QWidget* window :
       {static_cast<QWidget*>(rig.window.get()), static_cast<QWidget*>(rig.window->Preview())}) {
    rig.StartRun();
    window->activateWindow();
    rig.Settle();
    auto* branch = window->findChild<EntryField*>("TxtBranch");
    branch->setFocus();
    branch->selectAll();
    rig.Type("99");
    rig.Click(window->findChild<QPushButton*>("CmdBtn1_5"));
    EXPECT_FALSE(std::exchange(rig.session->State().OutputOn, true));
    rig.Key(Qt::Key_F5, Qt::ShiftModifier);
    EXPECT_EQ(rig.session->State().PendingRequest, PendingRequest::Stop);
    EXPECT_TRUE(branch->hasFocus() && branch->text() == "99");
    rig.Key(Qt::Key_Escape);
    rig.Tick();
  }
}

// Both windows, and a person who types into either.
struct RandomEntries : WindowRig {
  explicit RandomEntries(unsigned seed) : WindowRig(Bus::OneInstrument), random(seed) {
    Start();
    AddSteps(kBranchEntries);
    for (StepRow& row : session->Sequence().Steps) row.BranchStep = {3, 5, 1, 4, 2};
    Item("mnuViewItem_1")->trigger();
  }
  unsigned Pick(unsigned count) { return random() % count; }
  QMainWindow* Window(unsigned index) const {
    return std::array<QMainWindow*, 2>{window.get(), window->Preview()}[index];
  }
  unsigned ActivateOne() {
    const unsigned index = Pick(2);
    Window(index)->activateWindow();
    Settle();
    return index;
  }
  EntryField* Entry(unsigned index, std::size_t field) const {
    const std::array names{"TxtSeq", "TxtStrStep", "TxtBranch"};
    return Window(index)->findChild<EntryField*>(QString::fromUtf8(names[field]));
  }
  static bool Wrong(const EntryField& field) {
    const QString name = field.objectName();
    bool number = false;
    const int value = field.text().toInt(&number);
    const int highest = name == "TxtSeq" ? 10 : name == "TxtBranch" ? 5 : 255;
    return !number || value < (name == "TxtSeq" ? 0 : 1) || value > highest;
  }
  void GoOn() {
    const auto* held = qobject_cast<EntryField*>(QApplication::focusWidget());
    if (const unsigned what = Pick(8); what < 3 && held) {
      if (what > 0 && Wrong(*held)) prompts.Answer(PromptAnswer::Ok);
      return Key(std::array{Qt::Key_Escape, Qt::Key_Tab, Qt::Key_Return}[what]);
    }
    const unsigned active = ActivateOne();
    if (const unsigned what = Pick(6); what == 0) {
      auto* grid = Window(active)->findChild<QAbstractScrollArea*>("MSFlexGrid1");
      Click(grid ? grid->viewport() : Window(active)->findChild<QWidget*>("PicView"));
    } else if (QMenuBar* bar = Window(active)->menuBar(); what == 1) {
      QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(bar->actions()[0]).center());
      QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
      Settle();
    } else if (EntryField* to = Entry(active, window->States().EditCells ? Pick(3) : 2); what > 2) {
      Click(to);
      to->selectAll();
      Type(std::array{"0", "1", "2", "3", "4", "5", "2", "3", "4", "99", "x"}[Pick(11)]);
    }
  }
  std::mt19937 random;
};

TEST(OpenEntries, OfBothWindowsAreWhatAnyPressUsesWhateverCameInBetween) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    RandomEntries rig(seed);
    // A download, a start, branches.
    for (std::size_t done = 0; done < 6 && !HasFailure();) {
      const std::size_t kind = std::min<std::size_t>(done, 2);
      for (unsigned count = rig.Pick(6); count > 0; --count) rig.GoOn();
      const unsigned active = rig.ActivateOne();
      // Where both windows hold an entry, that of the active one counts.
      std::array<QString, 3> shown;
      bool refused = false;
      for (std::size_t i = 0; i < shown.size(); ++i) {
        const EntryField* used = rig.Entry(active, i);
        if (used->text() == used->OldFieldText()) used = rig.Entry(1 - active, i);
        shown[i] = used->text();
        refused = refused || RandomEntries::Wrong(*used);
      }
      SCOPED_TRACE("seed " + std::to_string(seed) + ", press " + std::to_string(done) + " with " +
                   (shown[0] + " " + shown[1] + " " + shown[2]).toStdString());
      if (refused) rig.prompts.Answer(PromptAnswer::Ok);
      if (!refused && kind == 0) rig.prompts.Type("Seq0");
      rig.Forget();
      rig.Messages();
      // The sequence view has no mode menu.
      if (rig.Pick(2) == 0 && (kind > 0 || active == 0)) {
        rig.Key(std::array{Qt::Key_F9, Qt::Key_F5, Qt::Key_F7}[kind]);
      } else {
        const std::array names{"CmdBtn1_0", "CmdBtn1_1", "CmdBtn1_4"};
        rig.Click(rig.Window(active)->findChild<QPushButton*>(QString::fromUtf8(names[kind])));
      }
      EXPECT_EQ(rig.Messages().size(), refused ? 1U : 0U);
      const SequenceData& sequence = rig.session->Sequence();
      const std::array used{sequence.SequenceNumber, sequence.StartStep, sequence.BranchChannel};
      for (std::size_t i = 0; i < used.size() && !refused; ++i) {
        EXPECT_EQ(shown[i], QString::number(used[i]));
        EXPECT_TRUE(rig.Entry(0, i)->text() == shown[i] && rig.Entry(1, i)->text() == shown[i]);
      }
      if (kind == 2) {
        for (unsigned count = rig.Pick(6); count > 0; --count) rig.GoOn();  // too late for this press
        rig.Tick();
      }
      const std::string target(1, "35142"[refused ? 0 : shown[2].toUInt() - 1]);
      const std::array<std::string, 3> commands{"1 < :TRAC:SEQ " + shown[0].toStdString() + ",",
                                                "1 < :TRIG1:SEL:EXEC STAR",
                                                "1 < :TRIG1:SEL:EXEC BRAN " + target};
      EXPECT_EQ(rig.CountSent(commands[kind]), refused ? 0 : 1);
      EXPECT_EQ(rig.CountSent("1 < :TRAC:SEQ ") + rig.CountSent("1 < :TRIG1"), refused ? 0 : 1);
      if (!refused) ++done;
    }
  }
}

}  // namespace
}  // namespace corlune::testing
