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

// One cell.
struct CellPlace {
  GridArea Area = GridArea::Common;
  int Channel = 0;  // Sequence: 0 or 1
  GridRow Row;      // Branch: the step whose branches are shown, as its row in the step grids
  int Column = 1;
  int BranchRow = 0;  // Branch: 1..5, the branch channel
  bool operator==(const CellPlace&) const = default;
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
  bool operator==(const GridCursor&) const = default;

  int CurrentCol() const { return ActiveGrid == GridArea::Sequence ? CurrentCol2 : CurrentCol1; }
};

// A rectangle of cells of the common or sequence area, both ends included, first <= last.
struct GridBlock {
  GridArea Area = GridArea::Common;
  int Channel = 0;
  int FirstRow = 1;
  int LastRow = 1;
  int FirstColumn = 1;
  int LastColumn = 1;
  int Rows() const { return LastRow - FirstRow + 1; }
  bool operator==(const GridBlock&) const = default;
};

// The selection in either direction.
inline GridBlock SelectedBlock(const GridCursor& cursor) {
  const auto [firstRow, lastRow] = std::minmax(cursor.CurrentRow, cursor.SelEndRow);
  const int column = cursor.CurrentCol();
  const auto [firstColumn, lastColumn] = std::minmax(column, cursor.SelEndCol);
  return {cursor.ActiveGrid, cursor.CurrentChannel, firstRow, lastRow, firstColumn, lastColumn};
}

}  // namespace corlune
