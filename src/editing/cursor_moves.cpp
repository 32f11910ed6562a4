#include "editing/cursor_moves.h"

#include "editing/grid_views.h"

namespace corlune {

namespace {

constexpr int kLastCommonColumn = kCommonColumns - 1;

GridPosition NextColumn(GridPosition from, int stepCount, int lastColumn) {
  if (from.Column < lastColumn) return {from.Row, from.Column + 1};
  if (from.Row < stepCount) return {from.Row + 1, 1};
  return from;
}

GridPosition PreviousColumn(GridPosition from, int lastColumn) {
  if (from.Column > 1) return {from.Row, from.Column - 1};
  if (from.Row > 1) return {from.Row - 1, lastColumn};
  return from;
}

GridPosition Down(GridPosition from, int stepCount) {
  return from.Row < stepCount ? GridPosition{from.Row + 1, from.Column} : from;
}

}  // namespace

GridPosition MoveCommonCursor(GridPosition from, CursorKey key, int stepCount) {
  // The step switches of column 2 and 4 to 8 keep Up off the first row.
  const bool switchColumn = from.Column == 2 || (from.Column >= 4 && from.Column <= 8);
  switch (key) {
    case CursorKey::Enter:
    case CursorKey::Down:
      return Down(from, stepCount);
    case CursorKey::Tab:
      return NextColumn(from, stepCount, kLastCommonColumn);
    case CursorKey::Backtab:
      return PreviousColumn(from, kLastCommonColumn);
    case CursorKey::Up:
      return from.Row > (switchColumn ? 2 : 1) ? GridPosition{from.Row - 1, from.Column} : from;
    case CursorKey::Left:
      return from.Row > 1 && from.Column > 1 ? GridPosition{from.Row, from.Column - 1} : from;
    case CursorKey::Right:
      return from.Row > 1 && from.Column < kLastCommonColumn ? GridPosition{from.Row, from.Column + 1} : from;
  }
  return from;
}

GridPosition MoveChannelCursor(GridPosition from, CursorKey key, int stepCount, int parameters) {
  switch (key) {
    case CursorKey::Enter:
    case CursorKey::Down:
      return Down(from, stepCount);
    case CursorKey::Tab:
      return NextColumn(from, stepCount, parameters);
    case CursorKey::Backtab:
      return PreviousColumn(from, parameters);
    case CursorKey::Up:
      return from.Row > 1 ? GridPosition{from.Row - 1, from.Column} : from;
    case CursorKey::Left:
      return from.Column > 1 ? GridPosition{from.Row, from.Column - 1} : from;
    case CursorKey::Right:
      return from.Column < parameters ? GridPosition{from.Row, from.Column + 1} : from;
  }
  return from;
}

GridPosition MoveBranchCursor(GridPosition from, CursorKey key, int rows) {
  switch (key) {
    case CursorKey::Enter:
    case CursorKey::Tab:
    case CursorKey::Down:
      return Down(from, rows);
    case CursorKey::Backtab:
    case CursorKey::Up:
      return from.Row > 1 ? GridPosition{from.Row - 1, from.Column} : from;
    case CursorKey::Left:
    case CursorKey::Right:
      break;
  }
  return from;
}

GridPosition MoveCursor(GridArea area, GridPosition from, CursorKey key, int lastRow, int lastColumn) {
  switch (area) {
    case GridArea::Common:
      return MoveCommonCursor(from, key, lastRow);
    case GridArea::Sequence:
      return MoveChannelCursor(from, key, lastRow, lastColumn);
    case GridArea::Branch:
      break;
  }
  return MoveBranchCursor(from, key, lastRow);
}

}  // namespace corlune
