// The main window over the program rig, with a QM2220 whose outputs are on or without any instrument.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QAction>
#include <QApplication>
#include <QPushButton>
#include <QTest>

#include "session/session_rig.h"
#include "ui/grid_panel.h"
#include "ui/main_window.h"
#include "ui/stat_bar.h"
#include "ui/window_display.h"
#include "view/entry_field.h"

namespace corlune::testing {

struct WindowRig : SessionRig {
  enum class Bus { Empty, OneInstrument };

  explicit WindowRig(Bus bus = Bus::Empty, bool english = true) {
    EditModel("1,QM2220");
    options.english = english;
    if (bus == Bus::OneInstrument) {
      Plug("QM2220:1000001");
      for (const int channel : {1, 2}) Instrument().SetOutput(channel, true);
    }
    // Presses and repaints arrive inside the waits.
    pump.OnEveryCall([] { QCoreApplication::processEvents(); });
  }

  // Starts the program up to its shown window, as after a start of the process.
  void Start() {
    window.reset();
    editor.reset();
    folder.Write("Corlune_Std.ini", definition);
    OpenSession(windowDisplay, windowDisplay, windowDisplay);
    editor = std::make_unique<SequenceEditor>(session->State(), session->Definition(), session->Sequence(),
                                              session->Catalogue(), prompts);
    ASSERT_EQ(session->StartUp({}), StartUpResult::Show);
    editor->Restart();
    settings = std::make_unique<WindowSettings>(folder.Path());
    window = std::make_unique<MainWindow>(MainWindowParts{*session, *editor, prompts, files, *settings,
                                                          "1.2.3", QDate(2018, 9, 5),
                                                          options.simulated ? responses : nullptr});
    windowDisplay.Attach(window.get());
    QObject::connect(window.get(), &MainWindow::Closed, window.get(), [this] { ++closed; });
    window->ShowAtPlace();
    QApplication::setActiveWindow(window.get());
    Settle();
  }
  ~WindowRig() { windowDisplay.Attach(nullptr); }

  void Settle() const {
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
  }
  void AddSteps(int count) {
    for (int i = 0; i < count; ++i) window->Grids().Run(Command::AddRow);
    Settle();
  }
  // A saved sequence of one step.
  std::string SequenceFile(const std::string& name) {
    const std::string path = folder.File(name);
    EXPECT_TRUE(session->WriteFile(path, true));
    return path;
  }

  QAction* Item(const char* name) const {
    auto* action = window->findChild<QAction*>(QString::fromUtf8(name));
    if (!action) ADD_FAILURE() << "no menu item " << name;
    return action;
  }
  QPushButton* Button(int index) const {
    return window->findChild<QPushButton*>(QStringLiteral("CmdBtn1_%1").arg(index));
  }
  EntryField* Field(const char* name) const {
    return window->findChild<EntryField*>(QString::fromUtf8(name));
  }
  void Click(QWidget* widget) const {
    QTest::mouseClick(widget, Qt::LeftButton);
    Settle();
  }
  void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
    QWidget* target = QApplication::focusWidget() ? QApplication::focusWidget() : window.get();
    QTest::keyClick(target, static_cast<Qt::Key>(key), modifiers);
    Settle();
  }
  void Type(const QString& text) const { QTest::keyClicks(QApplication::focusWidget(), text); }
  // Into execution mode, with the proposed name when on-line.
  void EnterExecution() {
    if (session->State().Online == 1) prompts.Type("Seq0");
    Click(Button(0));
    ASSERT_EQ(session->State().OperationMode, OperationMode::Execution);
  }
  void StartRun() {
    if (!session->State().OutputOn) prompts.Answer(PromptAnswer::Ok);
    Key(Qt::Key_F5);
    ASSERT_EQ(session->State().RunState, RunState::Running);
  }
  void Tick() {
    clock.Advance(101);
    session->Monitor().Tick();
    Settle();
  }
  std::string Text(int id) const { return session->Catalogue().GetResString(TextId{id}); }
  WindowDisplay windowDisplay;
  std::unique_ptr<WindowSettings> settings;
  std::unique_ptr<SequenceEditor> editor;
  std::unique_ptr<MainWindow> window;
  int closed = 0;
};

}  // namespace corlune::testing
