// MainWindow: menus, their items and shortcuts.
#include <utility>

#include <QAction>
#include <QFileInfo>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

#include "ui/grid_panel.h"
#include "ui/main_window.h"
#include "view/run_menu.h"

namespace corlune {

namespace {

// Menus in Menu order: name and number of items. Item n has the caption behind the menu's.
struct MenuRow {
  const char* name;
  TextId captionId;
  int items;
};
constexpr std::array<MenuRow, kMenuCount> kMenus{{{"mnuFile", TextId::MenuFile, 5},
                                                  {"mnuEdit", TextId::MenuEdit, 9},
                                                  {"mnuView", TextId::MenuView, 3},
                                                  {"mnuMode", TextId::MenuMode, 2},
                                                  {"mnuRun", TextId::MenuRun, 6},
                                                  {"mnuTools", TextId::MenuTool, 5},
                                                  {"mnuHelp", TextId::MenuHelp, 1}}};

constexpr int kSaveAsItem = 3;
constexpr int kExitItem = 4;

struct ShortcutRow {
  Menu menu;
  int item;
  const char* keys;
};
constexpr ShortcutRow kShortcuts[] = {
    {Menu::File, 0, "Ctrl+N"},       {Menu::File, 1, "Ctrl+O"},  {Menu::File, 2, "Ctrl+S"},
    {Menu::File, 3, "Ctrl+Shift+S"}, {Menu::File, 4, "Ctrl+Q"},  {Menu::Edit, 0, "Ctrl+C"},
    {Menu::Edit, 1, "Ctrl+V"},       {Menu::Edit, 2, "Ctrl+A"},  {Menu::Edit, 4, "Ctrl+Return"},
    {Menu::Edit, 5, "Alt+Ins"},      {Menu::Edit, 6, "Alt+Del"}, {Menu::Edit, 7, "Alt+Up"},
    {Menu::Edit, 8, "Alt+Down"},     {Menu::Help, 0, "F1"},
};

QKeySequence Keys(const char* keys) {
  return QKeySequence(QString::fromUtf8(keys));
}

}  // namespace

QAction* MainWindow::ItemAction(Menu menu, int item) const {
  return items_[static_cast<std::size_t>(menu)][static_cast<std::size_t>(item)];
}

void MainWindow::AddItems(Menu menu, const std::function<void(int)>& handler) {
  const auto index = static_cast<std::size_t>(menu);
  const MenuRow& row = kMenus[index];
  QMenu* popup = menus_[index];
  for (int i = 0; i < row.items; ++i) {
    QAction* action = popup->addAction(Caption(Next(row.captionId, 1 + i)));
    action->setObjectName(QStringLiteral("%1Item_%2").arg(QString::fromUtf8(row.name)).arg(i));
    connect(action, &QAction::triggered, this, [handler, i] { handler(i); });
    items_[index].push_back(action);
  }
}

void MainWindow::BuildMenus() {
  for (std::size_t i = 0; i < kMenus.size(); ++i) {
    if (i == static_cast<std::size_t>(Menu::Run)) {
      runMenu_ = new RunMenu(
          session_.Catalogue(), [this](int item) { RunItem(item); }, this);
      menus_[i] = runMenu_;
      menuBar()->addMenu(runMenu_);
      continue;
    }
    menus_[i] = menuBar()->addMenu(Caption(kMenus[i].captionId));
    menus_[i]->setObjectName(QString::fromUtf8(kMenus[i].name));
    menus_[i]->setToolTipsVisible(true);
  }
  AddItems(Menu::File, [this](int item) { FileCommand(item); });
  AddFileExtras();
  BuildEditMenu();
  AddItems(Menu::View, [this](int item) { ViewCommand(item); });
  AddItems(Menu::Mode, [this](int item) { ModeCommand(item); });
  AddItems(Menu::Tool, [](int) {});
  AddItems(Menu::Help, [this](int) { ShowAbout(); });
  AddHelpExtras();
  SetShortcuts();
}

void MainWindow::AddFileExtras() {
  QMenu* file = menus_[static_cast<std::size_t>(Menu::File)];
  QAction* exit = ItemAction(Menu::File, kExitItem);
  const auto insert = [&](TextId captionId, const char* name, void (MainWindow::*handler)()) {
    auto* action = new QAction(Caption(captionId), this);
    action->setObjectName(QString::fromUtf8(name));
    connect(action, &QAction::triggered, this, handler);
    file->insertAction(exit, action);
    return action;
  };
  importCsv_ = insert(TextId::MenuImportCsv, "mnuImportCsv", &MainWindow::ImportCsv);
  exportCsv_ = insert(TextId::MenuExportCsv, "mnuExportCsv", &MainWindow::ExportCsv);
  file->insertSeparator(exit);
  recentMenu_ = new QMenu(Caption(TextId::MenuRecentFiles), this);
  recentMenu_->setObjectName(QStringLiteral("mnuRecent"));
  file->insertMenu(exit, recentMenu_);
  file->insertSeparator(exit);
  ShowRecentFiles();
}

void MainWindow::BuildEditMenu() {
  QMenu* edit = menus_[static_cast<std::size_t>(Menu::Edit)];
  undo_ = edit->addAction(QString(), Keys("Ctrl+Z"), grids_, [this] { grids_->Undo(); });
  undo_->setObjectName(QStringLiteral("mnuUndo"));
  redo_ = edit->addAction(QString(), grids_, [this] { grids_->Redo(); });
  redo_->setObjectName(QStringLiteral("mnuRedo"));
  redo_->setShortcuts({Keys("Ctrl+Y"), Keys("Ctrl+Shift+Z")});
  edit->addSeparator();
  AddItems(Menu::Edit, [this](int item) { grids_->EditCommand(item); });
}

void MainWindow::AddHelpExtras() {
  QMenu* help = menus_[static_cast<std::size_t>(Menu::Help)];
  commLog_ = help->addAction(Caption(TextId::MenuCommLog), this, &MainWindow::ShowCommLog);
  commLog_->setObjectName(QStringLiteral("mnuCommLog"));
  // The menu is told anew whenever it opens: a log is switched by the model definition.
  connect(help, &QMenu::aboutToShow, this, [this] { commLog_->setVisible(!CommLogPath().empty()); });
}

void MainWindow::SetShortcuts() {
  for (const ShortcutRow& row : kShortcuts) ItemAction(row.menu, row.item)->setShortcut(Keys(row.keys));
}

void MainWindow::ShowMenuStates() {
  for (std::size_t menu = 0; menu < items_.size(); ++menu) {
    menus_[menu]->menuAction()->setVisible(states_.Menus[menu].Visible);
    for (std::size_t item = 0; item < items_[menu].size(); ++item) {
      items_[menu][item]->setVisible(states_.MenuItems[menu][item].Visible);
      items_[menu][item]->setEnabled(states_.MenuItems[menu][item].Enabled);
    }
  }
  for (QAction* tool : items_[static_cast<std::size_t>(Menu::Tool)]) {
    tool->setEnabled(false);
    tool->setToolTip(Caption(TextId::NotInThisVersion));
    tool->setStatusTip(Caption(TextId::NotInThisVersion));
  }
  runMenu_->ShowStates(states_, session_.State());
  undo_->setText(QString::fromStdString(editor_.UndoText()));
  undo_->setEnabled(states_.EditCells && editor_.CanUndo());
  redo_->setText(QString::fromStdString(editor_.RedoText()));
  redo_->setEnabled(states_.EditCells && editor_.CanRedo());
  importCsv_->setEnabled(states_.ImportCsv.Enabled);
  exportCsv_->setEnabled(states_.ExportCsv.Enabled);
  recentMenu_->setEnabled(!recentFiles_.isEmpty() &&
                          states_.MenuItems[static_cast<std::size_t>(Menu::File)][1].Enabled);
}

void MainWindow::ShowRecentFiles() {
  recentMenu_->clear();
  for (qsizetype i = 0; i < recentFiles_.size(); ++i) {
    const QString path = recentFiles_[i];
    // The number is the key to press; "&" in a name is no key.
    QString name = QFileInfo(path).fileName();
    name.replace(QLatin1Char('&'), QStringLiteral("&&"));
    QAction* action = recentMenu_->addAction(QStringLiteral("&%1 %2").arg(i + 1).arg(name));
    action->setToolTip(path);
    connect(action, &QAction::triggered, this, [this, path] { OpenPath(path.toStdString()); });
  }
  recentMenu_->setToolTipsVisible(true);
}

void MainWindow::RememberRecent() {
  const std::string& path = session_.State().CurrentFilePath;
  if (path.empty()) return;
  const QString absolute = QFileInfo(QString::fromStdString(path)).absoluteFilePath();
  recentFiles_ = WithRecentFile(std::move(recentFiles_), absolute);
  // An item of the menu may be the one that is running: the menu is filled anew when it is left.
  QMetaObject::invokeMethod(this, &MainWindow::ShowRecentFiles, Qt::QueuedConnection);
}

}  // namespace corlune
