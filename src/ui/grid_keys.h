// What the keys mean in the grids and their cell editors.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "dialogs/frm_shortcuts.h"
#include "editing/cursor_moves.h"
#include "editing/window_commands.h"

class QKeyEvent;

namespace corlune {

enum class GridJump { FirstCell, LastCell, FirstRow, LastRow, FirstColumn, LastColumn, PageUp, PageDown };

struct GridKey {
  enum class Kind {
    Move,      // the cell cursor, with validation; arrows act when the key is released
    Extend,    // the end of the selection
    Jump,      // further than one cell; with extend: the end of the selection
    Command,   // one of the Edit menu
    EditText,  // into the text of the cell
    Restore,   // the cell's text comes back
    List,      // opens the list of the cell
    Option,    // the next option of the cell
    Leave,     // on to the next or previous control of the window
    Grid,      // the next or previous of the grids
  };
  Kind kind = Kind::Move;
  CursorKey cursor = CursorKey::Enter;  // Move, Extend
  GridJump jump = GridJump::FirstCell;  // Jump
  Command command = Command::Copy;      // Command
  bool extend = false;                  // Jump
  bool forward = true;                  // Leave, Grid
};

// What the keys do in a cell beside the commands of the Edit menu.
struct CellKeyRow {
  const char* keys;  // in portable spelling
  TextId caption;    // rows with the same one stand in one line of the page of shortcuts
  GridKey meaning;
};
std::span<const CellKeyRow> CellKeyTable();
// The same for the page of shortcuts.
std::vector<ShortcutLine> CellKeyLines(const MessageCatalogue& catalogue);
// And of the graphs of the sequence view.
std::vector<ShortcutLine> GraphKeyLines(const MessageCatalogue& catalogue);

// nullopt: a key for the editor's text, or one that means nothing here.
std::optional<GridKey> GridKeyOf(const QKeyEvent& event);

inline bool IsArrow(CursorKey key) {
  return key == CursorKey::Up || key == CursorKey::Down || key == CursorKey::Left || key == CursorKey::Right;
}

}  // namespace corlune
