// Where the keys of a cell editor take the cursor.
#pragma once

#include "editing/grid_place.h"

namespace corlune {

enum class CursorKey { Enter, Tab, Backtab, Up, Down, Left, Right };

// MoveGridCursor in the grid of an area with rows up to `lastRow` and columns up to `lastColumn`. At an edge
// the position stays.
GridPosition MoveCursor(GridArea area, GridPosition from, CursorKey key, int lastRow, int lastColumn);
// The common area.
GridPosition MoveCommonCursor(GridPosition from, CursorKey key, int stepCount);
// The same in a channel grid with `parameters` columns behind column 0.
GridPosition MoveChannelCursor(GridPosition from, CursorKey key, int stepCount, int parameters);
// The branch grid has one column of values in `rows` rows.
GridPosition MoveBranchCursor(GridPosition from, CursorKey key, int rows);

}  // namespace corlune
