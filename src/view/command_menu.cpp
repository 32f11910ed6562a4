#include "view/command_menu.h"

#include <utility>

#include <QAction>

namespace corlune {

CommandMenu::CommandMenu(const MessageCatalogue& catalogue, MenuPlace place,
                         std::function<void(Command)> chosen, QWidget* parent)
    : QMenu(parent), catalogue_(catalogue), place_(place), chosen_(std::move(chosen)) {
  const MenuRow& menu = WindowMenus()[static_cast<std::size_t>(place)];
  setTitle(QString::fromStdString(catalogue.GetResString(menu.caption)));
  setObjectName(QString::fromUtf8(menu.name));
  setToolTipsVisible(true);
  int group = 0;
  for (const CommandRow& row : WindowCommands()) {
    if (row.menu != place) continue;
    if (std::exchange(group, row.group) != row.group) addSeparator();
    Add(row);
  }
}

QAction* CommandMenu::Add(const CommandRow& row) {
  QAction* action = addAction(QString::fromStdString(catalogue_.GetResString(row.caption)));
  action->setObjectName(row.name != nullptr ? QString::fromUtf8(row.name)
                                            : QStringLiteral("%1Item_%2").arg(objectName()).arg(row.item));
  action->setShortcuts(KeysOf(row));
  // Shown, but no key of the window.
  if (row.inCellsOnly) action->setShortcutContext(Qt::WidgetShortcut);
  action->setShortcutVisibleInContextMenu(true);
  connect(action, &QAction::triggered, this, [this, command = row.id] { chosen_(command); });
  items_[row.id] = action;
  return action;
}

QAction* CommandMenu::Item(Command command) const {
  const auto found = items_.find(command);
  return found == items_.end() ? nullptr : found->second;
}

void CommandMenu::ShowStates(const ControlStates& states) {
  const auto menu = static_cast<std::size_t>(place_);
  if (menu < states.Menus.size()) menuAction()->setVisible(states.Menus[menu].Visible);
  for (const auto& [command, action] : items_) {
    const ControlState state = StateOf(RowOf(command), states);
    action->setVisible(state.Visible);
    action->setEnabled(state.Enabled);
  }
}

void CommandMenu::ShowUndoNames(const SequenceEditor& editor) {
  // What was undone can hold any character, so an ampersand would be taken for a mnemonic.
  const auto plain = [](const std::string& caption) {
    return QString::fromStdString(caption).replace(QLatin1Char('&'), QLatin1String("&&"));
  };
  Item(Command::Undo)->setText(plain(editor.UndoText()));
  Item(Command::Redo)->setText(plain(editor.RedoText()));
}

QList<QKeySequence> KeysOf(const CommandRow& row) {
  if (*row.keys == '\0') return {};
  QList<QKeySequence> keys = QKeySequence::listFromString(QString::fromUtf8(row.keys));
  // The big Enter key has a name of its own.
  if (keys[0][0].key() == Qt::Key_Enter) {
    keys.append(QKeyCombination(keys[0][0].keyboardModifiers(), Qt::Key_Return));
  }
  return keys;
}

}  // namespace corlune
