// MainWindow: its menus.
#include <utility>

#include <QAction>
#include <QActionGroup>
#include <QFileInfo>
#include <QMenuBar>

#include "ui/main_window.h"
#include "view/command_menu.h"
#include "view/signal_strip.h"

namespace corlune {

void MainWindow::BuildMenus() {
  for (std::size_t i = 0; i < menus_.size(); ++i) {
    menus_[i] = new CommandMenu(
        session_.Catalogue(), static_cast<MenuPlace>(i), [this](Command command) { Do(command); }, this);
    menuBar()->addMenu(menus_[i]);
  }
  // As everywhere: the first menu, without a hand on the mouse.
  auto* open = new QAction(this);
  open->setShortcut(Qt::Key_F10);
  connect(open, &QAction::triggered, this,
          [this] { menuBar()->setActiveAction(MenuOf(MenuPlace::File).menuAction()); });
  addAction(open);
  AddRecentMenu();
  QAction* signal = MenuOf(MenuPlace::View).Item(Command::SignalStrip);
  signal->setCheckable(true);
  signal->setChecked(!signal_->isHidden());
  AddColorChoice();
  // The menu is told anew whenever it opens: a log is switched by the model definition.
  connect(&MenuOf(MenuPlace::Help), &QMenu::aboutToShow, this,
          [this] { MenuOf(MenuPlace::Help).Item(Command::CommLog)->setVisible(!CommLogPath().empty()); });
}

void MainWindow::AddRecentMenu() {
  CommandMenu& file = MenuOf(MenuPlace::File);
  QAction* exit = file.Item(Command::Exit);
  recentMenu_ = new QMenu(Caption(TextId::MenuRecentFiles), this);
  recentMenu_->setObjectName(QStringLiteral("mnuRecent"));
  file.insertMenu(exit, recentMenu_);
  file.insertSeparator(exit);
  ShowRecentFiles();
}

void MainWindow::AddColorChoice() {
  auto* choice = new QActionGroup(this);
  for (const Command command : {Command::ColorsDesktop, Command::ColorsLight, Command::ColorsDark}) {
    QAction* item = choice->addAction(MenuOf(MenuPlace::View).Item(command));
    item->setCheckable(true);
  }
  choice->actions()[static_cast<int>(settings_.Colors())]->setChecked(true);
}

void MainWindow::ChooseColors(WindowColors colors) {
  ShowColors(colors);
  settings_.WriteColors(colors);
}

void MainWindow::ShowMenuStates() {
  for (CommandMenu* menu : menus_) menu->ShowStates(states_);
  MenuOf(MenuPlace::Edit).ShowUndoNames(editor_);
  for (const Command command : {Command::ViewClose, Command::ViewSwitch}) {
    MenuOf(MenuPlace::View).Item(command)->setEnabled(PreviewOpen());
  }
  recentMenu_->setEnabled(!recentFiles_.isEmpty() && StateOf(RowOf(Command::Open), states_).Enabled);
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
