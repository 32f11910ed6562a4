// Commands of the grids: keys, buttons, context menu, clipboard and files.
#include <QClipboard>
#include <QMenu>
#include <QTimer>

#include "core/files.h"
#include "gui/grids/grids_rig.h"
#include "support/temp_folder.h"

namespace corlune::testing {
namespace {

std::string Times(const GridsRig& rig) {
  std::string times;
  for (int i = 0; i < rig.sequence.StepCount; ++i) {
    times += (i ? " " : "") +
             std::to_string(static_cast<int>(rig.sequence.Steps[static_cast<std::size_t>(i)].StepTime));
  }
  return times;
}

void NumberSteps(GridsRig& rig) {
  for (int row = 1; row <= rig.sequence.StepCount; ++row) rig.Step(row).StepTime = row;
  rig.panel->Rebuild();
}

TEST(RowCommands, KeysButtonsAndFocus) {
  struct {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    const char* button;
    const char* times;
    const char* at;
  } const cases[] = {
      {Qt::Key_Insert, Qt::AltModifier, "CmdInsert", "1 1 2 3 4", "2,1"},
      {Qt::Key_Delete, Qt::AltModifier, "CmdDelete", "1 3 4", "2,1"},
      {Qt::Key_Up, Qt::AltModifier, "CmdUp", "2 1 3 4", "1,1"},
      {Qt::Key_Down, Qt::AltModifier, "CmdDown", "1 3 2 4", "3,1"},
      {Qt::Key_unknown, Qt::NoModifier, "CmdRowAdd", "1 2 3 4 1", "5,1"},
      {Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier, nullptr, "1 2 2 3 4", "3,1"},
      {Qt::Key_D, Qt::ControlModifier, nullptr, "1 1 3 4", "2,1"},
  };
  for (const auto& row : cases) {
    for (const bool byKey : {true, false}) {
      if ((byKey && row.key == Qt::Key_unknown) || (!byKey && row.button == nullptr)) continue;
      SCOPED_TRACE(std::string(row.times) + (byKey ? " by key" : " by button"));
      GridsRig rig(4);
      NumberSteps(rig);
      rig.GoTo(GridArea::Common, 2, 1);
      if (byKey) {
        rig.Press(row.key, row.modifiers);
      } else {
        QTest::mouseClick(&rig.Named<QPushButton>(row.button), Qt::LeftButton);
      }
      EXPECT_EQ(Times(rig), row.times);
      EXPECT_EQ(rig.At(), row.at);
      EXPECT_EQ(rig.FocusName(), "Text1") << "the current cell's editor opens again";
      rig.Press(Qt::Key_Z, Qt::ControlModifier);
      EXPECT_EQ(Times(rig), "1 2 3 4");
    }
  }
}

TEST(TextCommands, ExchangeWithTheClipboard) {
  GridsRig rig(4);
  NumberSteps(rig);
  rig.GoTo(GridArea::Common, 2, 1);
  rig.Press(Qt::Key_Down, Qt::ShiftModifier);
  rig.Press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(QApplication::clipboard()->text().trimmed(), QStringLiteral("2\n3"));
  QApplication::clipboard()->setText(QStringLiteral("7\n8\n"));
  rig.GoTo(GridArea::Common, 1, 1);
  rig.Press(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(Times(rig), "7 8 3 4");
  // Also from inside an entry, which is stored first.
  rig.GoTo(GridArea::Common, 4, 1);
  QApplication::clipboard()->setText(QStringLiteral("9"));
  rig.Type("6");
  rig.Press(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(Times(rig), "7 8 3 9");
  rig.Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Times(rig), "7 8 3 6");
}

TEST(CsvFiles, ExportImportAndTheirProblems) {
  GridsRig rig(3);
  NumberSteps(rig);
  TempFolder folder;
  const auto says = [&](int id) {
    ASSERT_EQ(rig.prompts.messages.size(), 1U);
    EXPECT_EQ(rig.prompts.messages[0].text.substr(0, 20),
              rig.catalogue.GetResString(TextId{id}).substr(0, 20));
    rig.prompts.messages.clear();
    EXPECT_EQ(Times(rig), "1 2 3");
  };
  rig.panel->ExportCsv(folder.File("steps.csv"));
  rig.panel->Run(Command::SelectAll);
  rig.panel->Run(Command::Initialize);
  EXPECT_EQ(Times(rig), "1 1 1");
  rig.panel->ImportCsv(folder.File("steps.csv"));
  EXPECT_EQ(Times(rig), "1 2 3");
  for (const std::string& path : {folder.File("missing.csv"), folder.Path()}) {
    rig.prompts.Answer(PromptAnswer::Ok);
    rig.panel->ImportCsv(path);
    says(9644);
  }
  rig.prompts.Answer(PromptAnswer::Ok);
  rig.panel->ImportCsv(folder.Write("empty.csv", ""));
  says(9554);
  rig.prompts.Answer(PromptAnswer::Ok);
  rig.panel->ExportCsv(folder.Path() + "/none/steps.csv");
  says(9640);
}

// The menu is open while `look` runs; what it presses is carried out.
void WithMenu(GridsRig& rig, const QPoint& at, QTableView& grid, const std::function<void(QMenu&)>& look) {
  bool seen = false;
  QTimer::singleShot(0, &rig.window, [&] {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    seen = true;
    look(*menu);
    menu->close();
  });
  QContextMenuEvent event(QContextMenuEvent::Mouse, at, grid.viewport()->mapToGlobal(at));
  QApplication::sendEvent(grid.viewport(), &event);
  EXPECT_TRUE(seen);
}

QAction* ActionOf(const QMenu& menu, const std::string& beginning) {
  for (QAction* action : menu.actions()) {
    if (action->text().toStdString().rfind(beginning, 0) == 0) return action;
  }
  return nullptr;
}

TEST(ContextMenu, OffersTheCommandsAtTheCell) {
  GridsRig rig(4);
  NumberSteps(rig);
  QTableView& grid = rig.Common();
  rig.GoTo(GridArea::Common, 1, 1);
  rig.TypeThen("9", Qt::Key_Return);
  int imports = 0;
  QObject::connect(rig.panel, &GridPanel::WindowCommand,
                   [&](Command command) { imports += command == Command::ImportCsv; });
  const QPoint at = grid.visualRect(grid.model()->index(2, 1)).center();
  WithMenu(rig, at, grid, [&](QMenu& menu) {
    for (const char* text : {"Copy(", "Paste(", "Select All", "Initialize", "Undo: Cell Entry", "Redo",
                             "Copy as Text", "Paste Text", "Add Row", "Insert Row", "Delete Row", "RowUP",
                             "RowDOWN", "Duplicate Rows", "Fill Down", "Import CSV", "Export CSV"}) {
      EXPECT_NE(ActionOf(menu, text), nullptr) << text;
    }
    EXPECT_FALSE(ActionOf(menu, "Paste(")->isEnabled());
    EXPECT_FALSE(ActionOf(menu, "Redo")->isEnabled());
    EXPECT_EQ(ActionOf(menu, "Set mode"), nullptr);
    ActionOf(menu, "Import CSV")->trigger();
    ActionOf(menu, "Delete Row")->trigger();
  });
  EXPECT_EQ(Times(rig), "9 2 4") << "the row under the pointer";
  EXPECT_EQ(imports, 1);

  // A selection under the pointer stays.
  rig.GoTo(GridArea::Common, 1, 1);
  rig.Press(Qt::Key_Down, Qt::ShiftModifier);
  WithMenu(rig, grid.visualRect(grid.model()->index(1, 1)).center(), grid,
           [&](QMenu& menu) { ActionOf(menu, "Initialize")->trigger(); });
  EXPECT_EQ(Times(rig), "1 1 4");
  rig.GoTo(GridArea::Sequence, 1, 1);
  QTableView& channel = rig.Channel(0);
  WithMenu(rig, channel.visualRect(channel.model()->index(1, 1)).center(), channel,
           [&](QMenu& menu) { EXPECT_NE(ActionOf(menu, "Set mode"), nullptr); });
}

}  // namespace
}  // namespace corlune::testing
