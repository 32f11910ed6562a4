// Modes and runs through the window: what can be pressed when, and presses that arrive inside waits.
#include <gmock/gmock.h>

#include <QLabel>

#include "gui/main_window/window_rig.h"
#include "view/frm_preview.h"
#include "view/graph_canvas.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Enabled run buttons as digits, "-" for a disabled one; then E for editing, F for opening files, C for
// closing.
std::string Possible(const WindowRig& rig) {
  std::string text;
  for (int i = 0; i < kPanelButtonCount; ++i) text += rig.Button(i)->isEnabled() ? std::to_string(i) : "-";
  text += rig.window->States().EditCells ? " E" : " -";
  text += rig.Item("mnuFileItem_1")->isEnabled() ? "F" : "-";
  text += rig.window->States().Close ? "C" : "-";
  return text;
}

TEST(WindowRun, ControlsFollowModeAndRunState) {
  WindowRig rig;
  rig.Start();
  EXPECT_EQ(Possible(rig), "0----- EFC");
  rig.prompts.Answer(PromptAnswer::Ok);
  rig.Click(rig.Button(0));
  EXPECT_THAT(rig.Messages(), ElementsAre(rig.Text(9204))) << "execution mode needs a step";
  EXPECT_EQ(Possible(rig), "0----- EFC");

  rig.AddSteps(2);
  rig.EnterExecution();
  EXPECT_EQ(Possible(rig), "01---5 --C");
  EXPECT_EQ(rig.window->Status().PanelText(StatBar::Mode), "Execution mode");
  EXPECT_EQ(rig.window->Status().PanelText(StatBar::Total), "Total time:00:00:02.0");
  for (const bool held : {true, false}) {
    rig.session->State().HeldSequence = held;
    rig.window->RefreshControls();
    const bool timed = rig.window->Status().PanelText(StatBar::Total).endsWith(QLatin1String("02.0"));
    EXPECT_NE(timed, held) << "nobody knows how long the instrument's own takes";
  }

  rig.StartRun();
  EXPECT_EQ(Possible(rig), "--2345 ---");
  const std::string path = rig.folder.File("saved.dat");
  EXPECT_FALSE(rig.Item("mnuFileItem_2")->isEnabled()) << "a dialog would stand before the stop button";
  rig.session->State().CurrentFilePath = path;
  rig.window->RefreshControls();
  rig.Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_FALSE(TempFolder::Read(path).empty()) << "saving harms no run";
  rig.Item("mnuViewItem_1")->trigger();
  EXPECT_TRUE(rig.window->Preview()->findChild<GraphCanvas*>()->Marker()) << "followed from now on";
  rig.window->Preview()->close();
  rig.window->activateWindow();
  EXPECT_FALSE(rig.window->close()) << "a running sequence keeps the window open";
  rig.Key(Qt::Key_F6);
  rig.Tick();
  EXPECT_EQ(rig.session->State().RunState, RunState::Held);
  EXPECT_EQ(Possible(rig), "-12--5 ---");
  EXPECT_FALSE(rig.window->close());
  rig.Item("mnuViewItem_1")->trigger();
  EXPECT_TRUE(rig.window->Preview()->findChild<GraphCanvas*>()->Marker());
  rig.window->Preview()->close();
  rig.window->activateWindow();
  rig.Key(Qt::Key_F5);
  EXPECT_EQ(rig.session->State().RunState, RunState::Running);

  rig.Key(Qt::Key_F5, Qt::ShiftModifier);
  EXPECT_EQ(rig.session->State().RunState, RunState::Running) << "a stop waits for the tick";
  rig.Tick();
  EXPECT_EQ(Possible(rig), "01---5 --C");
  for (const bool warning : {true, false}) {
    rig.session->State().MayStillRun = warning;
    rig.window->RefreshControls();
    EXPECT_NE(rig.Button(2)->font().bold(), warning) << "what may still run is not called stopped";
  }
  rig.Click(rig.Button(0));
  EXPECT_EQ(Possible(rig), "0----- EFC");
  EXPECT_FALSE(rig.Button(2)->font().bold()) << "nothing is stopped in edit mode";
  EXPECT_TRUE(rig.session->State().OutputOn && rig.Button(5)->font().bold());
  EXPECT_EQ(rig.window->Status().PanelText(StatBar::Output), "Output: ----") << "of no instrument";
}

TEST(WindowRun, NothingCanBePressedDuringADownload) {
  WindowRig rig(WindowRig::Bus::OneInstrument);
  rig.Start();
  rig.AddSteps(1);
  std::vector<std::string> seen;
  rig.prompts.WhileOpen([&] { seen.push_back(Possible(rig)); });
  rig.pump.OnEveryCall([&] {
    QCoreApplication::processEvents();
    seen.push_back(Possible(rig));
    // Whatever arrives all the same starts nothing.
    rig.window->OpenPath(rig.folder.File("Corlune_Std.ini"));
    EXPECT_FALSE(rig.window->close());
    EXPECT_FALSE(rig.window->EndOfDesktopSession());
    rig.session->Control().SetOperationMode(OperationMode::Execution);
  });
  rig.EnterExecution();
  rig.pump.OnEveryCall({});
  ASSERT_GT(seen.size(), 10U) << "a download waits";
  EXPECT_THAT(seen, ::testing::Each(std::string("------ ---")));
  EXPECT_EQ(rig.CountSent("1 < :TRAC:SEQ 0,"), 1);
  EXPECT_EQ(rig.closed, 0);
  EXPECT_EQ(Possible(rig), "01---5 --C");
}

TEST(WindowRun, EndingFromOutsideKeepsTheWorkThenStopsThenCloses) {
  WindowRig rig(WindowRig::Bus::OneInstrument);
  rig.Start();
  rig.AddSteps(1);
  rig.EnterExecution();
  rig.StartRun();
  EXPECT_FALSE(rig.window->EndOfDesktopSession()) << "a question is allowed: the run comes first";
  rig.Field("TxtBranch")->setText("3");
  rig.folder.Write("Corlune.ini", "");
  rig.Forget();
  std::string kept;
  rig.recorder.onExchange = [&](const std::string&) {
    if (kept.empty()) kept = TempFolder::Read(rig.folder.File("Corlune_QM2220.ini"));
  };
  EXPECT_TRUE(rig.window->EndFromOutside());
  EXPECT_THAT(kept, HasSubstr("FI_BRCHCHN=3\r")) << "before the stop";
  EXPECT_THAT(TempFolder::Read(rig.folder.File("Corlune.ini")), HasSubstr("EDIT_MODEL=1,QM2220"));
  EXPECT_THAT(rig.recorder.exchanges, ElementsAre("1 < :TRIG1:SEL:EXEC STOP"));
  EXPECT_THAT(rig.recorder.connections, ElementsAre("1 close"));
}

TEST(WindowRun, AFailedDownloadIsNamedInTheStatusBarUntilTheNextCommand) {
  WindowRig rig(WindowRig::Bus::OneInstrument);
  rig.Start();
  rig.AddSteps(1);
  rig.prompts.Type("A");
  rig.Faults("text:-102,\"Syntax error\"@:SYST:ERR?");
  rig.Click(rig.Button(0));
  EXPECT_THAT(rig.window->Status().Notice().toStdString(), HasSubstr("-102"));
  EXPECT_EQ(Possible(rig), "0----5 EFC");
  rig.prompts.Answer(PromptAnswer::No);
  rig.Key(Qt::Key_N, Qt::ControlModifier);
  EXPECT_TRUE(rig.window->Status().Notice().isEmpty());
  rig.AddSteps(1);
  rig.prompts.Type(std::nullopt);
  rig.Click(rig.Button(0));
  EXPECT_TRUE(rig.window->Status().Notice().isEmpty()) << "whoever cancels knows why";
  EXPECT_EQ(Possible(rig), "0----5 EFC");
}

TEST(WindowRun, StopWorksWhileTheStartIsStillWaiting) {
  WindowRig rig(WindowRig::Bus::OneInstrument);
  rig.Start();
  rig.AddSteps(1);
  rig.EnterExecution();
  bool pressed = false;
  rig.pump.OnEveryCall([&] {
    QCoreApplication::processEvents();
    if (std::exchange(pressed, true)) return;
    EXPECT_EQ(Possible(rig).substr(0, 6), "--2---");
    QTest::mouseClick(rig.Button(2), Qt::LeftButton);
    EXPECT_FALSE(rig.window->close()) << "closing during a command wait";
  });
  rig.Forget();
  rig.Key(Qt::Key_F5);
  EXPECT_TRUE(pressed) << "the start command has a wait";
  EXPECT_EQ(rig.session->State().RunState, RunState::Stopped);
  EXPECT_EQ(rig.CountSent("1 < :TRIG1:SEL:EXEC STOP"), 1);
  EXPECT_EQ(Possible(rig), "01---5 --C");
}

// Back in edit mode nobody knows what the instrument does: the window says so, and its keys still reach it.
TEST(WindowRun, AFailedQueryReturnsTheWindowToEditMode) {
  WindowRig rig(WindowRig::Bus::OneInstrument);
  rig.Start();
  rig.AddSteps(2);
  rig.EnterExecution();
  rig.StartRun();
  rig.Faults("error:0xBFFF003E@:SOUR1:SEQ:CST?");
  rig.prompts.Answer(PromptAnswer::Ok);
  rig.Tick();
  EXPECT_THAT(rig.Messages(), ElementsAre(HasSubstr("instrument 1")));
  EXPECT_EQ(Possible(rig), "0-2--5 EFC");
  EXPECT_EQ(rig.window->Status().PanelText(StatBar::Output), "Output: unknown");
  EXPECT_EQ(rig.window->Status().PanelText(StatBar::Mode), "Edit mode");
  EXPECT_EQ(rig.window->Status().PanelText(StatBar::Elapsed), "Elapsed time:00:00:00.0");
  const auto* warning = rig.window->findChild<QLabel*>("LabWarning");
  EXPECT_TRUE(warning->isVisible());
  EXPECT_THAT(warning->text().toStdString(), HasSubstr("may still be running"));
  rig.prompts.Answer(PromptAnswer::Cancel);
  EXPECT_FALSE(rig.window->close());
  rig.Forget();
  rig.Key(Qt::Key_F8);
  EXPECT_EQ(rig.CountSent("1 < :OUTP1 OFF;:OUTP2 OFF"), 1);
  EXPECT_TRUE(warning->isVisible()) << "switched off, but not stopped";
  rig.session->State().Lost[1] = true;
  rig.window->RefreshControls();
  EXPECT_THAT(warning->text().toStdString(), HasSubstr("Device2"));
  rig.session->State().Lost[1] = false;
  EXPECT_EQ(rig.window->Status().PanelText(StatBar::Output), "Output: OFF");
  rig.Key(Qt::Key_F5, Qt::ShiftModifier);
  EXPECT_EQ(rig.CountSent("1 < :TRIG1:SEL:EXEC STOP"), 1);
  EXPECT_FALSE(warning->isVisible());
  EXPECT_EQ(Possible(rig), "0----- EFC");
  // Switched on in execution mode, it can be switched off in edit mode.
  rig.EnterExecution();
  rig.Key(Qt::Key_F8);
  rig.Key(Qt::Key_F9);
  EXPECT_EQ(Possible(rig), "0----5 EFC");
  rig.Forget();
  rig.Key(Qt::Key_F8);
  EXPECT_EQ(rig.CountSent("1 < :OUTP1 OFF;:OUTP2 OFF"), 1);
}

TEST(WindowRun, AnUnpluggedInstrumentTakesTheWindowOffLine) {
  // In the middle of the download, and at a command of the run.
  for (const bool download : {true, false}) {
    SCOPED_TRACE(download ? "download" : "start");
    WindowRig rig(WindowRig::Bus::OneInstrument);
    rig.Start();
    rig.AddSteps(2);
    if (download) {
      rig.prompts.Type("Seq0");
      rig.recorder.onExchange = [&](const std::string& line) {
        if (line.starts_with("1 < :TRAC:SEQ ")) rig.Faults("gone");
      };
      rig.Click(rig.Button(0));
      EXPECT_THAT(rig.window->Status().Notice().toStdString(), HasSubstr("instrument 1"));
    } else {
      rig.EnterExecution();
      rig.Faults("gone");
      rig.prompts.Answer(PromptAnswer::Ok);
      rig.Key(Qt::Key_F5);
      EXPECT_THAT(rig.Messages(), ElementsAre(HasSubstr("instrument 1")));
    }
    EXPECT_EQ(rig.window->Status().PanelText(StatBar::Connection), "off-line mode");
    EXPECT_FALSE(rig.window->findChild<QPushButton*>("CmdRead")->isEnabled());
    // A start that was not answered may have been taken.
    EXPECT_EQ(Possible(rig), download ? "0----5 EFC" : "0-2--5 EFC");
    EXPECT_EQ(rig.window->Status().PanelText(StatBar::Output), "Output: unknown");
    EXPECT_FALSE(rig.session->State().Connected);
  }
}

TEST(WindowRun, ReadBackLocksEditingAndIsOneUndoEntry) {
  WindowRig rig(WindowRig::Bus::OneInstrument);
  rig.Start();
  rig.AddSteps(2);
  rig.Faults(
      "text:[DATA]\r\nSEQ=1,SYNC,OFF,STAR,OFF\r\n"
      "STEP#0=7.5,CONT,OFF,0,OFF,1,OFF,1,OFF,1,INF,1,OFF,0\r\n@SEQuence?");
  std::vector<std::string> seen;
  rig.pump.OnEveryCall([&] { seen.push_back(Possible(rig)); });
  rig.Click(rig.window->findChild<QPushButton*>("CmdRead"));
  EXPECT_THAT(seen, ::testing::AllOf(::testing::Not(IsEmpty()), ::testing::Each(std::string("------ ---"))));
  EXPECT_EQ(rig.session->Sequence().Steps[0].StepTime, 7.5);
  EXPECT_EQ(rig.session->Sequence().StepCount, 1);
  EXPECT_TRUE(rig.window->isWindowModified());
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  rig.Item("mnuUndo")->trigger();
  EXPECT_EQ(rig.session->Sequence().StepCount, 2);
  EXPECT_EQ(rig.session->Sequence().Steps[0].StepTime, 1);
}

}  // namespace
}  // namespace corlune::testing
