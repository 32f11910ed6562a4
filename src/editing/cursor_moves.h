// Where the keys of a cell editor take the cursor.
#pragma once

#include "editing/grid_place.h"

namespace corlune {

enum class CursorKey { Enter, Tab, Backtab, Up, Down, Left, Right };

struct GridPosition {
  int Row = 1;
  int Column = 1;
  bool operator==(const GridPosition&) const = default;
};

// MoveGridCursor of the common area. At an edge the position stays.
GridPosition MoveCommonCursor(GridPosition from, CursorKey key, int stepCount);
// The same in a channel grid with `parameters` columns behind column 0.
GridPosition MoveChannelCursor(GridPosition from, CursorKey key, int stepCount, int parameters);
// The branch grid has one column of values in `rows` rows.
GridPosition MoveBranchCursor(GridPosition from, CursorKey key, int rows);

}  // namespace corlune
