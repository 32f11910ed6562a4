// The window itself: menus, title, files that arrive from outside, closing, and what the next start finds.
#include <gmock/gmock.h>
#include <map>

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTableView>
#include <QTimer>
#include <QTreeWidget>
#include <QUrl>

#include "dialogs/frm_about.h"
#include "dialogs/frm_prgrs.h"
#include "gui/main_window/window_rig.h"
#include "ui/grid_keys.h"
#include "ui/share_split.h"
#include "view/frm_preview.h"
#include "view/graph_canvas.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::vector<std::string> Shown(const QList<QAction*>& actions) {
  std::vector<std::string> texts;
  for (const QAction* action : actions) {
    if (action->isVisible() && !action->isSeparator()) texts.push_back(action->text().toStdString());
  }
  return texts;
}

TEST(WindowMenus, AreBuiltFromTheModelDefinition) {
  WindowRig rig;
  const auto replace = [&](const std::string& from, const std::string& to) {
    for (std::size_t at = rig.definition.find(from); at != std::string::npos;
         at = rig.definition.find(from, at + to.size())) {
      rig.definition.replace(at, from.size(), to);
    }
  };
  replace("MN_VIEW=1", "MN_VIEW=0");
  replace("MN_RUNITEM=1,1,1,1,1,1", "MN_RUNITEM=1,1,0,0,1,1");
  replace("SC_BTNHOLD=1", "SC_BTNHOLD=0");
  replace("SC_BRANCH=1", "SC_BRANCH=0");
  rig.Start();
  EXPECT_THAT(Shown(rig.window->menuBar()->actions()),
              ElementsAre("File(&F)", "Edit(&E)", "Mode(&M)", "Run(&R)", "Tool(&T)", "Help(&H)"));
  EXPECT_THAT(Shown(rig.window->findChild<QMenu*>("mnuRun")->actions()),
              ElementsAre("Start(&S)", "Stop(&E)", "Output ON(&N)", "Output OFF(&F)"));
  EXPECT_THAT(Shown(rig.window->findChild<QMenu*>("mnuFile")->actions()),
              ElementsAre("New(&N)", "Open...(&O)", "Save(&S)", "Save As...(&A)", "Import CSV...(&M)",
                          "Export CSV...(&T)", "Read Back", "Recent Files(&R)", "Exit(&X)"));
  EXPECT_FALSE(rig.Button(3)->isVisible());
  EXPECT_FALSE(rig.Field("TxtBranch")->isVisible());
  EXPECT_TRUE(rig.Field("TxtStrStep")->isVisible());
}

TEST(WindowMenus, EveryKeyAndMnemonicBelongsToOneCommand) {
  for (const bool english : {true, false}) {
    WindowRig rig(WindowRig::Bus::Empty, english);
    rig.Start();
    rig.Item("mnuViewItem_1")->trigger();
    std::map<QString, QStringList> owners;
    const auto own = [&](const QString& place, const QString& key, const QAction* action) {
      if (!key.isEmpty()) owners[place + ": " + key].append(action->objectName());
    };
    for (const CellKeyRow& row : CellKeyTable()) owners[QStringLiteral("frmMain: ") + row.keys] << row.keys;
    for (const QWidget* window : std::array<const QWidget*, 2>{rig.window.get(), rig.window->Preview()}) {
      for (const QAction* action : window->findChildren<QAction*>(QRegularExpression("^mnu"))) {
        for (const QKeySequence& keys : action->shortcuts())
          own(window->objectName(), keys.toString(), action);
      }
      for (const QAction* title : window->findChild<QMenuBar*>()->actions()) {
        own(window->objectName(), QKeySequence::mnemonic(title->text()).toString(), title);
        QList<QAction*> items = title->menu()->actions();
        // The context menu shows these as well.
        if (title->menu()->objectName() == "mnuEdit")
          items << rig.Item("mnuImportCsv") << rig.Item("mnuExportCsv");
        for (const QAction* item : items)
          own(window->objectName() + title->text(), QKeySequence::mnemonic(item->text()).toString(), item);
      }
    }
    for (const auto& [key, names] : owners) {
      // Of these two only the one that changes something is possible.
      const bool shared = key.endsWith(": F8") || key.endsWith(": F9");
      EXPECT_EQ(names.size(), shared ? 2 : 1) << key.toStdString() << " " << names.join(", ").toStdString();
    }
    for (const char* keys : {"Ctrl+N", "Ctrl+O", "Ctrl+Shift+S", "Ctrl+C", "Ctrl+V", "Ctrl+A", "F1", "F6",
                             "F7", "F9", "Ctrl+Y", "Ctrl+Enter", "Ctrl+Return", "PgDown"}) {
      EXPECT_TRUE(owners.contains(QStringLiteral("frmMain: ") + keys)) << keys;
    }
  }
}

TEST(WindowMenus, ThePageOfShortcutsListsEveryCommand) {
  WindowRig rig;
  rig.Start();
  std::map<std::string, std::string> lines;
  QTimer::singleShot(0, rig.window.get(), [&] {
    const auto* page = QApplication::activeModalWidget();
    for (QTreeWidgetItemIterator line(page->findChild<QTreeWidget*>()); *line; ++line) {
      lines[(*line)->text(0).toStdString()] = (*line)->text(1).toStdString();
    }
    QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
  });
  rig.Key(Qt::Key_F1, Qt::ControlModifier);
  for (const CommandRow& row : WindowCommands())
    EXPECT_EQ(lines.contains(PlainCaption(rig.Text(static_cast<int>(row.caption)))),
              StateOf(row, rig.window->States()).Visible);
  EXPECT_EQ(lines["Add Row"] + " " + rig.Item("mnuEditItem_4")->shortcut().toString().toStdString(),
            "Ctrl+Enter Ctrl+Enter");
  EXPECT_EQ(lines["RowDOWN"] + lines["Fill Down"] + lines["Next, previous grid"],
            "Alt+DownCtrl+D (in the cells)Ctrl+PgDown, Ctrl+PgUp");
}

TEST(WindowMenus, TheLogIsShownFromItsLastLines) {
  WindowRig rig;
  rig.definition.insert(rig.definition.rfind("MYADRS=0") + 8, ",LOG_FILE=comm.log");
  bool read = false;
  rig.Start();
  rig.folder.Write("comm.log", std::string(1 << 20, 'x') + "\nlast \xB5\n");
  QTimer::singleShot(0, rig.window.get(), [&] {
    QWidget* page = QApplication::activeModalWidget();
    const auto& text = *page->findChild<QPlainTextEdit*>();
    EXPECT_EQ(text.toPlainText(), QStringLiteral("last µ\n"));
    std::string grown = "first";
    for (int i = 0; i < 200; ++i) grown += "\nnext";
    rig.folder.Write("comm.log", grown);
    QTest::mouseClick(page->findChildren<QPushButton*>().front(), Qt::LeftButton);
    EXPECT_TRUE(text.toPlainText().startsWith("first\n"));
    EXPECT_GT(text.verticalScrollBar()->value(), 100);
    read = true;
    QTest::keyClick(page, Qt::Key_Escape);
  });
  rig.Item("mnuCommLog")->trigger();
  EXPECT_TRUE(read);
}

TEST(WindowTitle, NamesTheFileAndMarksChanges) {
  WindowRig rig;
  rig.Start();
  const std::string name = "Tavrin Corlune for QM2210/20";
  EXPECT_EQ(rig.window->windowTitle().toStdString(), name + "  [*]");
  rig.AddSteps(2);
  EXPECT_EQ(rig.window->Status().PanelText(StatBar::Total), "Total time:00:00:02.0");
  rig.Item("mnuUndo")->trigger();
  EXPECT_EQ(rig.window->Status().PanelText(StatBar::Total), "Total time:00:00:01.0");
  EXPECT_TRUE(rig.window->isWindowModified());
  rig.files.save = {rig.folder.File("a[*].dat")};
  rig.Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_FALSE(rig.window->isWindowModified());
  EXPECT_EQ(rig.window->windowTitle().toStdString(), name + "  " + rig.folder.File("a[*][*].dat") + "[*]");
  rig.Key(Qt::Key_N, Qt::ControlModifier);
  EXPECT_EQ(rig.session->Sequence().StepCount, 0);
  EXPECT_EQ(rig.window->windowTitle().toStdString(), name + "  [*]");
  EXPECT_FALSE(rig.Item("mnuUndo")->isEnabled()) << "the history belongs to the sequence that is gone";
  EXPECT_EQ(rig.window->Status().PanelText(StatBar::Total), "Total time:00:00:00.0");
}

// A drop as the desktop delivers it: enter, drop, then the event loop. True when it was accepted.
bool Drop(const WindowRig& rig, const QList<QUrl>& urls) {
  QMimeData data;
  data.setUrls(urls);
  QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(rig.window.get(), &enter);
  if (!enter.isAccepted()) return false;
  QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(rig.window.get(), &drop);
  rig.Settle();
  return true;
}

TEST(WindowFiles, ADroppedSequenceFileIsOpenedThroughTheSaveQuestion) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(3);
  const std::string three = rig.SequenceFile("three.DAT");
  rig.AddSteps(1);
  const QUrl url = QUrl::fromLocalFile(QString::fromStdString(three));
  rig.prompts.Answer(PromptAnswer::Cancel);
  EXPECT_TRUE(Drop(rig, {url}));
  EXPECT_EQ(rig.session->Sequence().StepCount, 4) << "cancelled";
  rig.prompts.Answer(PromptAnswer::No);
  EXPECT_TRUE(Drop(rig, {url}));
  EXPECT_EQ(rig.session->Sequence().StepCount, 3);
  EXPECT_EQ(rig.session->State().CurrentFilePath, three);

  rig.folder.Write("foreign.dat", "not a sequence");
  rig.prompts.Answer(PromptAnswer::Ok);
  EXPECT_TRUE(Drop(rig, {QUrl::fromLocalFile(QString::fromStdString(rig.folder.File("foreign.dat")))}));
  EXPECT_EQ(rig.session->Sequence().StepCount, 3) << "a file that cannot be read changes nothing";

  EXPECT_FALSE(Drop(rig, {url, url})) << "two files";
  EXPECT_FALSE(Drop(rig, {QUrl(QStringLiteral("https://example.org/three.dat"))}));
  EXPECT_FALSE(Drop(rig, {QUrl::fromLocalFile(QStringLiteral("/etc/hosts"))}));
  rig.EnterExecution();
  EXPECT_FALSE(Drop(rig, {url})) << "execution mode";
}

TEST(WindowFiles, ASecondStartComesToTheFrontAndOpensItsFileOnlyInEditMode) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(2);
  const std::string path = rig.SequenceFile("two.dat");
  rig.window->showMinimized();
  rig.prompts.Answer(PromptAnswer::No);
  rig.window->ActivatedByOtherStart(path);
  EXPECT_FALSE(rig.window->isMinimized());
  EXPECT_EQ(rig.session->State().CurrentFilePath, path);

  rig.EnterExecution();
  rig.window->ActivatedByOtherStart(path + "x");
  EXPECT_THAT(rig.window->Status().Notice().toStdString(), HasSubstr(path + "x"));
  EXPECT_EQ(rig.session->State().CurrentFilePath, path);
  rig.Click(rig.Button(0));
  EXPECT_TRUE(rig.window->Status().Notice().isEmpty());

  // While a message is open the file waits for nobody: it is named and not opened.
  rig.AddSteps(1);
  rig.prompts.WhileOpen([&] { rig.window->ActivatedByOtherStart(path + "y"); });
  rig.prompts.Answer(PromptAnswer::Cancel);
  rig.Key(Qt::Key_N, Qt::ControlModifier);
  EXPECT_EQ(rig.Messages().size(), 2U) << "two save questions in all";
}

TEST(WindowFiles, RecentFilesAreKeptForTheNextStartAndForgottenWhenGone) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(1);
  const std::string one = rig.SequenceFile("one.dat");
  const std::string two = rig.SequenceFile("t&o.dat");
  rig.prompts.Answer(PromptAnswer::No);
  rig.window->OpenPath(one);
  rig.window->OpenPath(two);
  rig.window->OpenPath(one);
  EXPECT_TRUE(rig.window->close());
  rig.Start();
  QMenu* recent = rig.window->findChild<QMenu*>("mnuRecent");
  EXPECT_THAT(Shown(recent->actions()), ElementsAre("&1 one.dat", "&2 t&&o.dat"));
  ASSERT_EQ(std::remove(two.c_str()), 0);
  rig.prompts.Answer(PromptAnswer::Ok);
  recent->actions().at(1)->trigger();
  rig.Settle();
  EXPECT_THAT(rig.Messages(), ::testing::Contains(rig.Text(9306)));
  EXPECT_THAT(Shown(recent->actions()), ElementsAre("&1 one.dat"));
}

TEST(WindowClose, WritesEverythingForTheNextStart) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(3);
  rig.prompts.Answer(PromptAnswer::Cancel);
  EXPECT_FALSE(rig.window->close());
  EXPECT_TRUE(rig.window->isVisible());
  EXPECT_EQ(TempFolder::Read(rig.folder.File("Corlune_QM2220.ini")), "") << "cancelled: no work file";
  EXPECT_EQ(rig.closed, 0);

  rig.window->resize(rig.window->width() - 40, rig.window->height() - 30);
  rig.window->move(30, 20);
  rig.Settle();
  const QRect place(rig.window->pos(), rig.window->size());
  rig.prompts.Answer(PromptAnswer::No);
  rig.Key(Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(rig.closed, 1);
  EXPECT_FALSE(rig.window->isVisible());
  EXPECT_EQ(TempFolder::Read(rig.folder.File("Corlune.ini")), "[EDIT]\r\nEDIT_MODEL=1,QM2220\r\n");

  rig.Start();
  EXPECT_EQ(rig.session->Sequence().StepCount, 3);
  EXPECT_EQ(QRect(rig.window->pos(), rig.window->size()), place);
}

TEST(WindowClose, TheEndOfTheDesktopSessionAsks) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(2);
  rig.prompts.Answer(PromptAnswer::Cancel);
  EXPECT_FALSE(rig.window->EndOfDesktopSession());
  rig.prompts.Answer(PromptAnswer::No);
  EXPECT_TRUE(rig.window->EndOfDesktopSession());
  EXPECT_EQ(rig.closed, 1);
}

TEST(WindowClose, EndingFromOutsideTakesWhatIsTypedWithoutAWord) {
  for (const auto& [typed, kept] : {std::pair("7", "ST_SETVAL#1=7,"), std::pair("-3", "ST_SETVAL#1=1,")}) {
    WindowRig rig;
    rig.Start();
    rig.AddSteps(2);
    rig.Type(typed);
    EXPECT_TRUE(rig.window->EndFromOutside());
    EXPECT_THAT(TempFolder::Read(rig.folder.File("Corlune_QM2220.ini")), HasSubstr(kept));
  }
}

TEST(WindowState, TheReasonForBeingOffLineCanBeRead) {
  WindowRig rig;
  rig.Start();
  EXPECT_EQ(rig.window->Status().PanelText(StatBar::Connection), "off-line mode");
  const auto* panel = rig.window->findChild<QLabel*>("Panel1");
  EXPECT_THAT(panel->toolTip().toStdString(), HasSubstr(rig.Text(8206)));

  WindowRig online(WindowRig::Bus::OneInstrument);
  online.Start();
  EXPECT_EQ(online.window->Status().PanelText(StatBar::Connection), "on-line mode");
  EXPECT_THAT(online.window->findChild<QLabel*>("Panel1")->toolTip().toStdString(),
              HasSubstr("Device1: USBTMC 1000001, Ch: 2"));
  EXPECT_EQ(online.window->Status().PanelText(StatBar::Device), "Device1:QM2220  USBTMC 1000001");
  const AboutFacts facts{"1.2.3", QDate(2018, 9, 5), "libvisa.so: not found", "", {"NI: libgpib.so"}};
  EXPECT_EQ(VersionLine(MessageCatalogue(10000), facts), "Version 1.2.3.0 Sept.5,2018");
  EXPECT_EQ(LibraryLines(MessageCatalogue(10000), facts),
            "Instrument library:\nlibvisa.so: not found\nNI: libgpib.so\nSequence compiler: no problem");
}

TEST(WindowProgress, CannotBeClosedBeforeItsEnd) {
  FrmPrgrs progress;
  progress.Begin("Transmitting", 3);
  QWidget* shown = nullptr;
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget->objectName() == QLatin1String("frmPrgrs")) shown = widget;
  }
  ASSERT_TRUE(shown && shown->isVisible());
  QTest::keyClick(shown, Qt::Key_Escape);
  shown->close();
  EXPECT_TRUE(shown->isVisible());
  progress.Advance();
  EXPECT_FALSE(progress.Cancelled());
  // Cancel is offered by waits alone; the window then stays until the wait has ended.
  progress.ShowWait("Searching", "Cancel", 3, 128);
  EXPECT_EQ(shown->findChild<QLabel*>("lblPrgrs")->text(), "Searching");
  EXPECT_FALSE(progress.Cancelled());
  QTest::mouseClick(shown->findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
  EXPECT_TRUE(progress.Cancelled() && shown->isVisible());
  EXPECT_FALSE(shown->findChild<QPushButton*>("cmdCancel")->isEnabled()) << "its press was taken";
  progress.End();
  EXPECT_FALSE(shown->isVisible() || progress.Cancelled());
  progress.Advance();
}

// Visible parts of the rows around the grids, by name.
std::map<std::string, QWidget*> Parts(const WindowRig& rig) {
  std::map<std::string, QWidget*> parts;
  for (QWidget* widget : rig.window->findChildren<QWidget*>()) {
    static const QStringList kBeginnings{"CmdBtn1_", "Txt", "Lab", "CmdRead", "Panel", "GridPanel"};
    const bool inGrids = rig.window->Grids().isAncestorOf(widget);
    for (const QString& beginning : kBeginnings) {
      if (widget->isVisible() && !inGrids && widget->objectName().startsWith(beginning)) {
        parts[widget->objectName().toStdString()] = widget;
      }
    }
  }
  return parts;
}

TEST(WindowLayout, EachSizeShowsItsRowsInBothGrids) {
  struct Row {
    QSize size;  // a screen without title bar and borders
    int rows;
    bool sideBySide;
  };
  for (const bool english : {true, false}) {
    WindowRig rig(WindowRig::Bus::OneInstrument, english);
    rig.Start();
    rig.AddSteps(40);
    for (const Row& row :
         {Row{{1358, 736}, 14, false}, Row{{1500, 868}, 17, true}, Row{{1912, 1048}, 22, true}}) {
      rig.window->resize(row.size);
      rig.Settle();
      EXPECT_EQ(rig.window->size(), row.size) << "nothing asks for more";
      for (const char* name : {"MSFlexGrid1", "MSFlexGrid2_0"}) {
        const auto* grid = rig.window->findChild<QTableView*>(name);
        EXPECT_GE(grid->viewport()->height() / grid->rowHeight(0), row.rows) << name << row.size.width();
        EXPECT_EQ(grid->horizontalScrollBar()->maximum(), 0) << name << row.size.width();
      }
      EXPECT_EQ(rig.window->findChild<QTableView*>("MSFlexGrid2_1")->isVisible(), row.sideBySide);
    }
  }
}

// Places as a person leaves them come back at the next start; those of tiling do not.
TEST(WindowLayout, IsRememberedAsItWasLeft) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(3);
  const auto split = [&](const char* name) { return rig.window->findChild<ShareSplit*>(name); };
  const auto move = [&](const char* name, int share) {
    split(name)->SetShare(share);
    rig.Settle();
  };
  const auto restart = [&] {
    rig.prompts.Answer(PromptAnswer::No);
    EXPECT_TRUE(rig.window->close());
    rig.Start();
  };
  const QSize size = rig.window->size();
  rig.Item("mnuViewBeside")->trigger();
  move("SplitGrids", 450);
  move("SplitView", 555);
  rig.Settle();
  const QList<int> shares = split("SplitView")->sizes();
  restart();
  ASSERT_TRUE(rig.window->Preview() && rig.window->Preview()->isVisible() && rig.window->Preview()->Docked());
  EXPECT_EQ(rig.window->size(), size);
  EXPECT_EQ(split("SplitGrids")->Share(), 450);
  EXPECT_EQ(split("SplitView")->orientation(), Qt::Horizontal);
  EXPECT_EQ(split("SplitView")->sizes(), shares);
  EXPECT_TRUE(rig.Item("mnuViewClose")->isEnabled());
  EXPECT_THAT(Shown(rig.window->menuBar()->actions()), ::testing::Contains("Display(&D)"));

  rig.Item("mnuViewItem_2")->trigger();
  rig.Settle();
  EXPECT_FALSE(rig.window->Preview()->Docked());
  EXPECT_EQ(rig.window->width(), 512);
  EXPECT_EQ(rig.window->Preview()->frameGeometry().left(), rig.window->frameGeometry().right() + 1);
  EXPECT_EQ(rig.window->Preview()->frameGeometry().height(), rig.window->frameGeometry().height());
  rig.AddSteps(1);
  restart();
  EXPECT_EQ(rig.window->size(), size) << "as before tiling";
  EXPECT_FALSE(rig.window->Preview()) << "a window of its own is opened when it is wanted";
  rig.Item("mnuViewItem_0")->trigger();
  EXPECT_EQ(rig.window->width(), 733);

  rig.Item("mnuViewFloat")->trigger();
  rig.window->Preview()->setGeometry(40, 60, 600, 500);
  const QPoint corner = rig.window->Preview()->pos();
  rig.AddSteps(1);
  restart();
  rig.Item("mnuViewFloat")->trigger();
  EXPECT_EQ(rig.window->Preview()->pos(), corner);
  EXPECT_EQ(rig.window->Preview()->size(), QSize(600, 500));
  rig.Item("mnuViewItem_1")->trigger();
  EXPECT_NE(rig.window->Preview()->size(), QSize(600, 500)) << "the normal layout, always";
}

TEST(WindowLayout, ADockedViewIsAPartOfTheWindow) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(3);
  const auto shown = [&](const char* name) {
    const auto* widget = rig.window->Preview()->findChild<QWidget*>(name);
    return widget != nullptr && widget->isVisible();
  };
  rig.Key(Qt::Key_4, Qt::ControlModifier);
  FrmPreview& view = *rig.window->Preview();
  EXPECT_TRUE(view.isVisible() && view.Docked());
  EXPECT_TRUE(shown("PicView") && shown("AreaSettings"));
  EXPECT_FALSE(shown("CmdBtn1_0") || shown("TxtSeq") || shown("StatBar1") || shown("mnuRun"));
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "Text1") << "the cell keeps the focus";
  rig.Type("7");
  rig.Key(Qt::Key_F3);
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "PicView");
  EXPECT_EQ(rig.session->Sequence().Steps[2].StepTime, 7) << "taken on the way";
  const auto& picture = *view.findChild<GraphCanvas*>("PicView");
  const double zoom = picture.Zoom();
  rig.Key(Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_GT(picture.Zoom(), zoom);
  rig.Key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "PicView") << "commands leave it there";
  rig.Key(Qt::Key_F3);
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "Text1");
  EXPECT_THAT(Shown(rig.window->menuBar()->actions()), ::testing::Contains("Display(&D)"));

  rig.prompts.Answer(PromptAnswer::No);
  rig.Key(Qt::Key_N, Qt::ControlModifier);
  EXPECT_TRUE(view.isVisible()) << "it shows the new sequence";
  rig.AddSteps(2);
  rig.EnterExecution();
  rig.StartRun();
  EXPECT_TRUE(picture.Marker());
  rig.Key(Qt::Key_6, Qt::ControlModifier);
  EXPECT_TRUE(view.isVisible() && view.isWindow() && shown("CmdBtn1_0") && shown("TxtSeq"));
  EXPECT_THAT(Shown(rig.window->menuBar()->actions()), ::testing::Not(::testing::Contains("Display(&D)")));
  EXPECT_TRUE(picture.Marker()) << "followed all the same";
  QApplication::setActiveWindow(&view);
  rig.Settle();
  rig.Key(Qt::Key_5, Qt::ControlModifier);
  EXPECT_TRUE(view.isVisible() && view.Docked());
  rig.Item("mnuViewClose")->trigger();
  EXPECT_FALSE(rig.session->State().SequenceViewShown || view.isVisible());
  EXPECT_EQ(rig.window->focusWidget(), rig.window->findChild<QTableView*>("MSFlexGrid1"));
}

TEST(WindowLayout, NothingOverlapsOrIsCutOffAtTheSmallestSize) {
  for (const bool english : {true, false}) {
    SCOPED_TRACE(english ? "English" : "Japanese");
    WindowRig rig(WindowRig::Bus::OneInstrument, english);
    rig.Start();
    rig.AddSteps(2);
    for (const bool execution : {false, true}) {
      if (execution) rig.EnterExecution();
      rig.window->resize(1, 1);
      rig.Settle();
      EXPECT_EQ(rig.window->size(), QSize(512, 480)) << "7680 x 7200 twips at 96 dpi";
      const auto parts = Parts(rig);
      EXPECT_GE(parts.size(), 18U);
      const auto place = [&](QWidget* part) {
        return QRect(part->mapTo(rig.window.get(), QPoint(0, 0)), part->size());
      };
      for (auto a = parts.begin(); a != parts.end(); ++a) {
        EXPECT_TRUE(rig.window->rect().contains(place(a->second))) << a->first;
        // The device panel may end in "..."; it has a tooltip.
        const auto* button = qobject_cast<QPushButton*>(a->second);
        if (button) {
          EXPECT_GT(button->width(), button->fontMetrics().horizontalAdvance(button->text()) + 8) << a->first;
        } else if (a->first != "Panel3") {
          EXPECT_GE(a->second->width(), a->second->minimumSizeHint().width()) << a->first;
        }
        EXPECT_GE(a->second->height(), a->second->minimumSizeHint().height()) << a->first;
        for (auto b = std::next(a); b != parts.end(); ++b) {
          EXPECT_FALSE(place(a->second).intersects(place(b->second))) << a->first << " and " << b->first;
        }
      }
    }
  }
}

}  // namespace
}  // namespace corlune::testing
