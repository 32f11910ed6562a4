#include "ui/cell_cursor.h"

#include <algorithm>
#include <limits>
#include <vector>

#include <QItemSelectionModel>
#include <QScrollBar>

#include "ui/channel_tabs.h"

namespace corlune {

GridTable& CellCursor::Table() const {
  return tables_.Of(At().ActiveGrid, At().CurrentChannel);
}

CellPlace CellCursor::Place() const {
  const GridCursor& cursor = At();
  CellPlace place;
  place.Area = cursor.ActiveGrid;
  place.Channel = cursor.CurrentChannel;
  place.Row = {cursor.CurrentRow};
  place.Column = cursor.Current().Column;
  if (place.Area == GridArea::Branch) place.BranchRow = cursor.BranchRow;
  return place;
}

int CellCursor::LastRow() const {
  const GridViews& views = editor_.Views();
  return At().ActiveGrid == GridArea::Branch ? views.BranchRows() - 1 : views.StepCount();
}

int CellCursor::LastColumn() const {
  switch (At().ActiveGrid) {
    case GridArea::Sequence:
      return editor_.Views().ChannelColumns() - 1;
    case GridArea::Branch:
      return 1;
    case GridArea::Common:
      break;
  }
  return kCommonColumns - 1;
}

bool CellCursor::Covers(const GridTable& table, GridPosition cell) const {
  return &table == &Table() && SelectedBlock(At()).Contains(cell);
}

void CellCursor::Move(CursorKey key) {
  At().MoveTo(MoveCursor(At().ActiveGrid, At().Current(), key, LastRow(), LastColumn()));
}

void CellCursor::Extend(CursorKey key) {
  const GridPosition end = At().SelectionEnd();
  const int rows = key == CursorKey::Down ? 1 : key == CursorKey::Up ? -1 : 0;
  const int columns = key == CursorKey::Right ? 1 : key == CursorKey::Left ? -1 : 0;
  At().SelectTo(
      {std::clamp(end.Row + rows, 1, LastRow()), std::clamp(end.Column + columns, 1, LastColumn())});
}

void CellCursor::Jump(GridJump jump, bool extend) {
  GridPosition position = extend ? At().SelectionEnd() : At().Current();
  const int page = std::max(Table().VisibleRows() - 1, 1);
  switch (jump) {
    case GridJump::FirstCell:
      position = {1, 1};
      break;
    case GridJump::LastCell:
      position = {LastRow(), LastColumn()};
      break;
    case GridJump::FirstRow:
      position.Row = 1;
      break;
    case GridJump::LastRow:
      position.Row = LastRow();
      break;
    case GridJump::FirstColumn:
      position.Column = 1;
      break;
    case GridJump::LastColumn:
      position.Column = LastColumn();
      break;
    case GridJump::PageUp:
      position.Row = std::max(position.Row - page, 1);
      break;
    case GridJump::PageDown:
      position.Row = std::min(position.Row + page, LastRow());
      break;
  }
  if (extend) {
    At().SelectTo(position);
  } else {
    At().MoveTo(position);
  }
}

void CellCursor::NextGrid(bool forward) {
  std::vector<const GridTable*> grids{tables_.Common};
  for (int channel = 0; channel < editor_.Views().ChannelGrids(); ++channel) {
    grids.push_back(&tables_.Of(GridArea::Sequence, channel));
  }
  if (editor_.Views().BranchVisible()) grids.push_back(tables_.Branch);
  const auto now = std::find(grids.begin(), grids.end(), &Table());
  const std::size_t at = now == grids.end() ? 0 : static_cast<std::size_t>(now - grids.begin());
  Enter(*grids[(at + (forward ? 1 : grids.size() - 1)) % grids.size()]);
}

void CellCursor::Enter(const GridTable& table) {
  At().ActiveGrid = table.Model().Area();
  if (At().ActiveGrid == GridArea::Sequence) At().CurrentChannel = table.Model().Channel();
  Reduce();
}

void CellCursor::Press(const GridTable& table, GridPosition cell, bool extend) {
  if (!extend || &table != &Table()) {
    Enter(table);
    At().MoveTo({cell.Row, std::max(cell.Column, 1)});
  }
  DragTo(cell);
}

bool CellCursor::DragTo(GridPosition cell) {
  const GridPosition before = At().SelectionEnd();
  At().SelectTo(
      {std::clamp(cell.Row, 1, std::max(LastRow(), 1)), cell.Column == 0 ? LastColumn() : cell.Column});
  return At().SelectionEnd() != before;
}

void CellCursor::FirstCell() {
  At() = GridCursor{};
}

void CellCursor::SelectRow(GridRow row) {
  At().CurrentRow = row.value;
  Reduce();
}

void CellCursor::SelectCell(const CellPlace& place) {
  At().ActiveGrid = place.Area;
  At().CurrentChannel = place.Channel;
  At().MoveTo(place.Position());
}

void CellCursor::Reduce() {
  At().MoveTo(At().Current());
}

void CellCursor::KeepInside() {
  GridCursor& cursor = At();
  const GridViews& views = editor_.Views();
  const bool gone = (cursor.ActiveGrid == GridArea::Sequence &&
                     (views.ChannelGrids() == 0 || views.ChannelColumns() < 2)) ||
                    (cursor.ActiveGrid == GridArea::Branch && !views.BranchVisible());
  if (gone) cursor.ActiveGrid = GridArea::Common;
  cursor.CurrentChannel = std::clamp(cursor.CurrentChannel, 0, std::max(views.ChannelGrids() - 1, 0));
  const int lastRow = std::max(views.StepCount(), 1);
  cursor.CurrentRow = std::clamp(cursor.CurrentRow, 1, lastRow);
  cursor.SelEndRow = std::clamp(cursor.SelEndRow, 1, lastRow);
  cursor.CurrentCol1 = std::clamp(cursor.CurrentCol1, 1, kCommonColumns - 1);
  cursor.CurrentCol2 = std::clamp(cursor.CurrentCol2, 1, std::max(views.ChannelColumns() - 1, 1));
  cursor.SelEndCol = std::clamp(cursor.SelEndCol, 1, LastColumn());
  cursor.BranchRow = std::clamp(cursor.BranchRow, 1, std::max(views.BranchRows() - 1, 1));
}

void CellCursor::Show(bool end) {
  KeepInside();
  const GridCursor& cursor = At();
  const GridPosition shown = end ? cursor.SelectionEnd() : cursor.Current();
  const GridTable& active = Table();
  if (cursor.ActiveGrid == GridArea::Sequence) tables_.Tabs->setCurrentIndex(cursor.CurrentChannel);
  MarkStep();
  for (GridTable* table : tables_.All()) {
    QItemSelectionModel& selection = *table->selectionModel();
    if (table != &active || LastRow() < 1) {
      selection.clear();
      continue;
    }
    const GridBlock block = SelectedBlock(cursor);
    const GridPosition anchor = cursor.Current();
    selection.setCurrentIndex(table->At(anchor.Row, anchor.Column), QItemSelectionModel::NoUpdate);
    selection.select(QItemSelection(table->At(block.FirstRow, block.FirstColumn),
                                    table->At(block.LastRow, block.LastColumn)),
                     QItemSelectionModel::ClearAndSelect);
    table->scrollTo(table->At(shown.Row, shown.Column));
  }
  // The branch grid belongs to the current step.
  ShowRow(cursor.Selects() ? shown.Row : cursor.CurrentRow, FirstRow());
}

void CellCursor::Highlight(GridRow row, bool on) {
  GridViews& views = editor_.Views();
  if (!on && views.HighlightedRow() != row) return;
  const std::optional<GridRow> before = views.Highlight(on ? std::optional(row) : std::nullopt);
  for (GridTable* table : tables_.OfSteps()) {
    if (before) table->Model().RowsChanged(before->value, before->value);
    if (on && before != row) table->Model().RowsChanged(row.value, row.value);
  }
  if (on) KeepInSight();
}

GridRow CellCursor::StepAt() const {
  const std::optional<GridRow> running = editor_.Views().HighlightedRow();
  const bool isStep = running && running->value >= 1 && running->value <= editor_.Views().StepCount();
  return isStep ? *running : GridRow{At().CurrentRow};
}

bool CellCursor::MarkStep() {
  bool other = false;
  for (const GridTable* table : tables_.All()) other |= table->Model().ShowStep(StepAt());
  return other;
}

void CellCursor::ScrollTo(GridRow top) {
  ShowRow(editor_.Views().HighlightedRow().value_or(top).value, top.value);
}

int CellCursor::RowInSight() const {
  return editor_.Views().HighlightedRow().value_or(GridRow{At().CurrentRow}).value;
}

void CellCursor::KeepInSight() {
  ShowRow(RowInSight(), FirstRow());
}

void CellCursor::Resized(const GridTable& table, int rowsBefore) {
  const int first = table.verticalScrollBar()->value() + 1;
  if (RowInSight() >= first && RowInSight() < first + rowsBefore) KeepInSight();
}

// First row that the step grids show at present.
int CellCursor::FirstRow() const {
  const GridTable& table = At().Selects() ? Table() : *tables_.Common;
  return table.verticalScrollBar()->value() + 1;
}

// The grids show the same steps from `top` on, or from where the lowest of them shows `row` as well.
void CellCursor::ShowRow(int row, int top) {
  int rows = std::numeric_limits<int>::max();
  for (const GridTable* table : tables_.OfSteps()) {
    if (table->isVisible()) rows = std::min(rows, table->VisibleRows());
  }
  const int first = std::clamp(top, std::max(row - rows + 1, 1), std::max(row, 1));
  for (GridTable* table : tables_.OfSteps()) table->verticalScrollBar()->setValue(first - 1);
}

}  // namespace corlune
