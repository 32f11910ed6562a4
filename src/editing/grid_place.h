// Places in the three grids and the selection that the editing commands act on. Row 0 is the header, row n
// shows step slot n - 1; column 0 shows the step number. The branch grid has a row for each branch channel of
// one step.
#pragma once

#include <algorithm>
#include <cstdint>

#include "core/step_numbering.h"

namespace corlune {

// Codes of ActiveGrid.
enum class GridArea : std::int16_t { Common = 1, Sequence = 2, Branch = 3 };

// Row and column within one grid.
struct GridPosition {
  int Row = 1;
  int Column = 1;
  bool operator==(const GridPosition&) const = default;
};

// One cell.
struct CellPlace {
  GridArea Area = GridArea::Common;
  int Channel = 0;  // Sequence: 0 or 1
  GridRow Row;      // Branch: the step whose branches are shown, as its row in the step grids
  int Column = 1;
  int BranchRow = 0;  // Branch: 1..5, the branch channel
  bool operator==(const CellPlace&) const = default;

  // In the grid of its area.
  GridPosition Position() const { return {Area == GridArea::Branch ? BranchRow : Row.value, Column}; }
};

// The current cell and the end of the selection, kept by the window from the grids' selection events.
struct GridCursor {
  GridArea ActiveGrid = GridArea::Common;
  int CurrentRow = 1;
  int CurrentCol1 = 1;     // common area
  int CurrentCol2 = 1;     // sequence area
  int CurrentChannel = 0;  // 0 or 1
  int SelEndRow = 1;
  int SelEndCol = 1;
  int BranchRow = 1;  // branch area, whose one column has no selection beyond the current cell
  bool operator==(const GridCursor&) const = default;

  int CurrentCol() const { return ActiveGrid == GridArea::Sequence ? CurrentCol2 : CurrentCol1; }
  bool Selects() const { return ActiveGrid != GridArea::Branch; }

  // The current cell and the end of the selection within the active grid.
  GridPosition Current() const {
    return Selects() ? GridPosition{CurrentRow, CurrentCol()} : GridPosition{BranchRow, 1};
  }
  GridPosition SelectionEnd() const { return Selects() ? GridPosition{SelEndRow, SelEndCol} : Current(); }
  // Makes a cell of the active grid the current one, and the whole selection.
  void MoveTo(GridPosition to) {
    if (!Selects()) {
      BranchRow = to.Row;
      return;
    }
    CurrentRow = to.Row;
    (ActiveGrid == GridArea::Sequence ? CurrentCol2 : CurrentCol1) = to.Column;
    SelectTo(to);
  }
  void SelectTo(GridPosition end) {
    if (!Selects()) return;
    SelEndRow = end.Row;
    SelEndCol = end.Column;
  }
};

// A rectangle of cells of one area, both ends included, first <= last.
struct GridBlock {
  GridArea Area = GridArea::Common;
  int Channel = 0;
  int FirstRow = 1;
  int LastRow = 1;
  int FirstColumn = 1;
  int LastColumn = 1;
  int Rows() const { return LastRow - FirstRow + 1; }
  bool OneCell() const { return FirstRow == LastRow && FirstColumn == LastColumn; }
  bool Contains(GridPosition cell) const {
    return cell.Row >= FirstRow && cell.Row <= LastRow && cell.Column >= FirstColumn &&
           cell.Column <= LastColumn;
  }
  bool operator==(const GridBlock&) const = default;
};

// The selection in either direction.
inline GridBlock SelectedBlock(const GridCursor& cursor) {
  const GridPosition from = cursor.Current();
  const GridPosition to = cursor.SelectionEnd();
  const auto [firstRow, lastRow] = std::minmax(from.Row, to.Row);
  const auto [firstColumn, lastColumn] = std::minmax(from.Column, to.Column);
  return {cursor.ActiveGrid, cursor.CurrentChannel, firstRow, lastRow, firstColumn, lastColumn};
}

}  // namespace corlune
