#include "view/run_menu.h"

#include <QAction>

namespace corlune {

namespace {

constexpr std::size_t kOutputOnItem = 4;
constexpr std::size_t kOutputOffItem = 5;
constexpr std::array<const char*, 6> kShortcuts{"F5", "Shift+F5", "F6", "F7", "", ""};

}  // namespace

RunMenu::RunMenu(const MessageCatalogue& catalogue, const std::function<void(int)>& chosen, QWidget* parent)
    : QMenu(QString::fromStdString(catalogue.GetResString(TextId::MenuRun)), parent) {
  setObjectName(QStringLiteral("mnuRun"));
  setToolTipsVisible(true);
  for (std::size_t i = 0; i < items_.size(); ++i) {
    const int index = static_cast<int>(i);
    items_[i] = addAction(QString::fromStdString(catalogue.GetResString(Next(TextId::MenuRun, 1 + index))));
    items_[i]->setObjectName(QStringLiteral("mnuRunItem_%1").arg(i));
    items_[i]->setShortcut(QKeySequence(QString::fromUtf8(kShortcuts[i])));
    connect(items_[i], &QAction::triggered, this, [chosen, index] { chosen(index); });
  }
}

void RunMenu::ShowStates(const ControlStates& states, const AppState& state) {
  constexpr auto kRun = static_cast<std::size_t>(Menu::Run);
  menuAction()->setVisible(states.Menus[kRun].Visible);
  for (std::size_t i = 0; i < items_.size(); ++i) {
    items_[i]->setVisible(states.MenuItems[kRun][i].Visible);
    items_[i]->setEnabled(states.MenuItems[kRun][i].Enabled);
  }
  // One key for both: it switches the output to its other state.
  const QKeySequence key(Qt::Key_F8);
  const bool off = state.OutputOn || state.MayStillRun;
  items_[kOutputOnItem]->setShortcut(off ? QKeySequence() : key);
  items_[kOutputOffItem]->setShortcut(off ? key : QKeySequence());
}

}  // namespace corlune
