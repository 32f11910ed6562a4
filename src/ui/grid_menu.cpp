#include "ui/grid_menu.h"

#include <QMenu>

namespace corlune {

namespace {

constexpr int kEditItems = 9;

QString Caption(const SequenceEditor& editor, GridCommand command) {
  const MessageCatalogue& catalogue = editor.Views().Catalogue();
  const auto text = [&](TextId id) { return QString::fromStdString(catalogue.GetResString(id)); };
  // What was undone can hold any character, so an ampersand would be taken for a mnemonic.
  const auto plain = [](const std::string& caption) {
    return QString::fromStdString(caption).replace(QLatin1Char('&'), QLatin1String("&&"));
  };
  switch (command) {
    case GridCommand::Undo:
      return plain(editor.UndoText());
    case GridCommand::Redo:
      return plain(editor.RedoText());
    case GridCommand::CopyText:
      return text(TextId::CopyAsText);
    case GridCommand::PasteText:
      return text(TextId::EditPasteText);
    case GridCommand::DuplicateRows:
      return text(TextId::EditDuplicateRows);
    case GridCommand::FillDown:
      return text(TextId::EditFillDown);
    default:
      return text(Next(TextId::MenuCopy, static_cast<int>(command)));
  }
}

// Shown beside the caption; the keys themselves are those of grid_keys.
const char* ShortcutOf(GridCommand command) {
  switch (command) {
    case GridCommand::Copy:
      return "Ctrl+C";
    case GridCommand::Paste:
      return "Ctrl+V";
    case GridCommand::SelectAll:
      return "Ctrl+A";
    case GridCommand::Initialize:
      return "Del";
    case GridCommand::AddRow:
      return "Ctrl+Enter";
    case GridCommand::InsertRow:
      return "Alt+Ins";
    case GridCommand::DeleteRow:
      return "Alt+Del";
    case GridCommand::RowUp:
      return "Alt+Up";
    case GridCommand::RowDown:
      return "Alt+Down";
    case GridCommand::Undo:
      return "Ctrl+Z";
    case GridCommand::Redo:
      return "Ctrl+Y";
    case GridCommand::CopyText:
      return "Ctrl+Shift+C";
    case GridCommand::PasteText:
      return "Ctrl+Shift+V";
    case GridCommand::DuplicateRows:
      return "Ctrl+Shift+D";
    case GridCommand::FillDown:
      return "Ctrl+D";
  }
  return "";
}

}  // namespace

ControlState StateOf(GridCommand command, const SequenceEditor& editor, const ControlStates& states) {
  switch (command) {
    case GridCommand::Undo:
      return {true, states.EditCells && editor.CanUndo()};
    case GridCommand::Redo:
      return {true, states.EditCells && editor.CanRedo()};
    case GridCommand::CopyText:
      return states.CopyText;
    case GridCommand::PasteText:
      return states.PasteText;
    case GridCommand::DuplicateRows:
      return states.Duplicate;
    case GridCommand::FillDown:
      return states.FillDown;
    default:
      return states.MenuItems[static_cast<std::size_t>(Menu::Edit)][static_cast<std::size_t>(command)];
  }
}

void FillGridMenu(QMenu& menu, const SequenceEditor& editor, const ControlStates& states,
                  const GridMenuActions& actions) {
  const auto add = [&](GridCommand command) {
    const ControlState state = StateOf(command, editor, states);
    if (!state.Visible) return;
    QString caption = Caption(editor, command);
    const QString shortcut = QString::fromLatin1(ShortcutOf(command));
    if (!shortcut.isEmpty()) caption += QLatin1Char('\t') + shortcut;
    menu.addAction(caption, &menu, [run = actions.run, command] { run(command); })->setEnabled(state.Enabled);
  };
  const auto addFile = [&](TextId id, const ControlState& state, const std::function<void()>& action) {
    if (!state.Visible) return;
    const QString caption = QString::fromStdString(editor.Views().Catalogue().GetResString(id));
    menu.addAction(caption, &menu, action)->setEnabled(state.Enabled);
  };
  for (int item = 0; item <= static_cast<int>(GridCommand::Initialize); ++item) {
    add(static_cast<GridCommand>(item));
  }
  menu.addSeparator();
  add(GridCommand::Undo);
  add(GridCommand::Redo);
  menu.addSeparator();
  add(GridCommand::CopyText);
  add(GridCommand::PasteText);
  menu.addSeparator();
  for (int item = static_cast<int>(GridCommand::AddRow); item < kEditItems; ++item) {
    add(static_cast<GridCommand>(item));
  }
  menu.addSeparator();
  add(GridCommand::DuplicateRows);
  add(GridCommand::FillDown);
  menu.addSeparator();
  addFile(TextId::MenuImportCsv, states.ImportCsv, actions.importCsv);
  addFile(TextId::MenuExportCsv, states.ExportCsv, actions.exportCsv);
}

}  // namespace corlune
