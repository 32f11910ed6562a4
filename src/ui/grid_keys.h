// What the keys mean in the grids and their cell editors.
#pragma once

#include <optional>

#include "editing/cursor_moves.h"

class QKeyEvent;

namespace corlune {

// The first nine are the items of the Edit menu.
enum class GridCommand {
  Copy,
  Paste,
  SelectAll,
  Initialize,
  AddRow,
  InsertRow,
  DeleteRow,
  RowUp,
  RowDown,
  Undo,
  Redo,
  CopyText,
  PasteText,
  DuplicateRows,
  FillDown,
};

enum class GridJump { FirstCell, LastCell, FirstRow, LastRow, FirstColumn, LastColumn, PageUp, PageDown };

struct GridKey {
  enum class Kind {
    Move,      // the cell cursor, with validation; arrows act when the key is released
    Extend,    // the end of the selection
    Jump,      // further than one cell; with extend: the end of the selection
    Command,   // an editing command
    EditText,  // into the text of the cell
    Restore,   // the cell's text comes back
    List,      // opens the list of the cell
    Option,    // the next option of the cell
    Leave,     // on to the next or previous control of the window
    Grid,      // the next or previous of the grids
  };
  Kind kind = Kind::Move;
  CursorKey cursor = CursorKey::Enter;      // Move, Extend
  GridJump jump = GridJump::FirstCell;      // Jump
  GridCommand command = GridCommand::Copy;  // Command
  bool extend = false;                      // Jump
  bool forward = true;                      // Leave, Grid
};

// nullopt: a key for the editor's text, or one that means nothing here.
std::optional<GridKey> GridKeyOf(const QKeyEvent& event);

inline bool IsArrow(CursorKey key) {
  return key == CursorKey::Up || key == CursorKey::Down || key == CursorKey::Left || key == CursorKey::Right;
}

}  // namespace corlune
