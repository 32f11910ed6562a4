// CellCursor: the current cell and the selection, in the editor's record of them and in the tables, and which
// rows of the tables are in sight. It knows no editors: what stands in one is stored before the cursor moves.
#pragma once

#include "editing/cursor_moves.h"
#include "editing/sequence_editor.h"
#include "ui/grid_keys.h"
#include "ui/grid_tables.h"

namespace corlune {

class CellCursor {
 public:
  // Both must outlive this object.
  CellCursor(SequenceEditor& editor, const GridTables& tables) : editor_(editor), tables_(tables) {}

  GridTable& Table() const;  // the active grid's
  CellPlace Place() const;
  int LastRow() const;  // of the active grid; below 1: no cells
  // A single cell is selected.
  bool OneCell() const { return SelectedBlock(At()).OneCell(); }
  bool Covers(const GridTable& table, GridPosition cell) const;

  // Each of these changes the record; Show shows it.
  void Move(CursorKey key);
  void Extend(CursorKey key);
  void Jump(GridJump jump, bool extend);
  // Common area, the channels, branch area, and round again; the step stays.
  void NextGrid(bool forward);
  // The grid of `table`, with the cell that was current there last.
  void Enter(const GridTable& table);
  // Column 0 stands for its whole row; `extend`: the selection goes from the current cell of the same grid to
  // here.
  void Press(const GridTable& table, GridPosition cell, bool extend);
  // The end of the selection; false: it is there already.
  bool DragTo(GridPosition cell);
  void FirstCell();
  // The column of each grid and the active grid stay.
  void SelectRow(GridRow row);
  void SelectCell(const CellPlace& place);  // of the step grids
  void Reduce();                            // to the current cell

  // Shows current cell and selection; in sight is the current cell or the `end` of the selection. Another
  // definition or a shorter sequence can have left the cursor outside: it comes back in.
  void Show(bool end);
  void Highlight(GridRow row, bool on);
  // Marks the running step, else the current one, in the step grids; the branch area shows its branches.
  // True: another step than before.
  bool MarkStep();
  // Makes `top` the first row of the step grids, as far as each of them then shows the highlighted row.
  void ScrollTo(GridRow top);
  // Scrolls as little as possible until every step grid shows the highlighted row, else the current one.
  void KeepInSight();
  // A table that had so many rows in sight has another height. A row that was scrolled out of sight stays
  // there.
  void Resized(const GridTable& table, int rowsBefore);

 private:
  GridCursor& At() { return editor_.Cursor(); }
  const GridCursor& At() const { return editor_.Cursor(); }
  int LastColumn() const;
  void KeepInside();
  int FirstRow() const;
  int RowInSight() const;
  GridRow StepAt() const;
  void ShowRow(int row, int top);

  SequenceEditor& editor_;
  GridTables tables_;
};

}  // namespace corlune
