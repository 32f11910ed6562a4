// CommandMenu: a menu made from the table of commands, of either window.
#pragma once

#include <functional>
#include <map>

#include <QKeySequence>
#include <QMenu>

#include "core/catalogue.h"
#include "editing/window_commands.h"

namespace corlune {

class CommandMenu : public QMenu {
  Q_OBJECT

 public:
  // All commands of `place`; `chosen` gets the one that was picked, by hand or by its key.
  CommandMenu(const MessageCatalogue& catalogue, MenuPlace place, std::function<void(Command)> chosen,
              QWidget* parent = nullptr);

  // One more item at the end.
  QAction* Add(const CommandRow& row);
  // nullptr: not in this menu.
  QAction* Item(Command command) const;
  void ShowStates(const ControlStates& states);
  // Undo and Redo name what they would take back.
  void ShowUndoNames(const SequenceEditor& editor);

 private:
  const MessageCatalogue& catalogue_;
  MenuPlace place_;
  std::function<void(Command)> chosen_;
  std::map<Command, QAction*> items_;
};

QList<QKeySequence> KeysOf(const CommandRow& row);

}  // namespace corlune
