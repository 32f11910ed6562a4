#include "ui/grid_control.h"

#include <algorithm>
#include <limits>

#include <QApplication>
#include <QItemSelectionModel>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTabWidget>

namespace corlune {

GridControl::GridControl(SequenceEditor& editor, Prompts& prompts, const GridTables& tables, QWidget& panel)
    : editor_(editor),
      prompts_(prompts),
      tables_(tables),
      panel_(panel),
      editors_({tables.Common->viewport(), tables.Channels[0]->viewport(), tables.Branch->viewport()}) {
  for (GridTable* table : AllTables()) {
    table->installEventFilter(this);
    connect(table, &GridTable::Pressed, this,
            [this, table](int row, int column, bool extend) { Press(*table, row, column, extend); });
    connect(table, &GridTable::Dragged, this,
            [this, table](int row, int column) { Drag(*table, row, column); });
    connect(table, &GridTable::Released, this, [this, table] { Release(*table); });
    connect(table, &GridTable::MenuRequested, this,
            [this, table](const QPoint& at, int row, int column) { RequestMenu(*table, at, row, column); });
    connect(table, &GridTable::Moved, this, &GridControl::PlaceEditor);
    connect(table, &GridTable::Resized, this, [this, table](int rowsBefore) {
      // A row that was scrolled out of sight stays there.
      const int first = table->verticalScrollBar()->value() + 1;
      if (RowInSight() >= first && RowInSight() < first + rowsBefore) KeepInSight();
    });
  }
  connect(tables_.Tabs, &QTabWidget::currentChanged, this, &GridControl::ChangeTab);

  editors_.SetKeyHandler([this](QKeyEvent* event) { return HandleKey(*event); });
  connect(&editors_, &CellEditors::Chosen, this,
          [this](int index) { Apply(editor_.Choose(editors_.Where(), index)); });
  connect(&editors_, &CellEditors::OptionChosen, this, [this](int index) {
    const CellPlace place = editors_.Where();
    if (Commit()) Apply(editor_.ChooseOption(place, index));
  });
  connect(&editors_, &CellEditors::UnitChosen, this, [this](int index) {
    const CellPlace place = editors_.Where();
    if (Commit()) Apply(editor_.ChooseUnit(place, index));
  });
  connect(&editors_, &CellEditors::DraggedTo, this, [this](const QPoint& at) {
    pressed_ = true;
    ActiveTable().DragTo(at);
  });
  connect(&editors_, &CellEditors::DragEnded, this, [this] { Release(ActiveTable()); });
  connect(this, &GridControl::FocusWent, this, &GridControl::FinishLeaving, Qt::QueuedConnection);
  connect(
      this, &GridControl::FocusCame, this, [this](GridTable* table) { Enter(*table); }, Qt::QueuedConnection);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { FocusChanged(now); });
}

std::array<GridTable*, MAX_CHANNELS + 2> GridControl::AllTables() const {
  return {tables_.Common, tables_.Channels[0], tables_.Channels[1], tables_.Branch};
}

GridTable& GridControl::TableOf(GridArea area, int channel) const {
  switch (area) {
    case GridArea::Sequence:
      return *tables_.Channels[static_cast<std::size_t>(std::clamp(channel, 0, MAX_CHANNELS - 1))];
    case GridArea::Branch:
      return *tables_.Branch;
    case GridArea::Common:
      break;
  }
  return *tables_.Common;
}

GridTable& GridControl::ActiveTable() const {
  const GridCursor& cursor = editor_.Cursor();
  return TableOf(cursor.ActiveGrid, cursor.CurrentChannel);
}

GridPosition GridControl::Position() const {
  const GridCursor& cursor = editor_.Cursor();
  if (cursor.ActiveGrid == GridArea::Branch) return {branchRow_, 1};
  return {cursor.CurrentRow, cursor.CurrentCol()};
}

void GridControl::SetPosition(GridPosition position) {
  GridCursor& cursor = editor_.Cursor();
  if (cursor.ActiveGrid == GridArea::Branch) {
    branchRow_ = position.Row;
    return;
  }
  cursor.CurrentRow = position.Row;
  (cursor.ActiveGrid == GridArea::Sequence ? cursor.CurrentCol2 : cursor.CurrentCol1) = position.Column;
  cursor.SelEndRow = position.Row;
  cursor.SelEndCol = position.Column;
}

int GridControl::LastRow() const {
  const GridViews& views = editor_.Views();
  return editor_.Cursor().ActiveGrid == GridArea::Branch ? views.BranchRows() - 1 : views.StepCount();
}

int GridControl::LastColumn() const {
  switch (editor_.Cursor().ActiveGrid) {
    case GridArea::Sequence:
      return editor_.Views().ChannelColumns() - 1;
    case GridArea::Branch:
      return 1;
    case GridArea::Common:
      break;
  }
  return kCommonColumns - 1;
}

CellPlace GridControl::CurrentPlace() const {
  const GridCursor& cursor = editor_.Cursor();
  CellPlace place;
  place.Area = cursor.ActiveGrid;
  place.Channel = cursor.CurrentChannel;
  place.Row = {cursor.CurrentRow};
  place.Column = Position().Column;
  if (cursor.ActiveGrid == GridArea::Branch) place.BranchRow = branchRow_;
  return place;
}

// Another definition or a shorter sequence can have left the cursor outside.
void GridControl::KeepCursorInside() {
  GridCursor& cursor = editor_.Cursor();
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
  branchRow_ = std::clamp(branchRow_, 1, std::max(views.BranchRows() - 1, 1));
}

void GridControl::ShowSelection(int row, int column) {
  const QScopedValueRollback<bool> own(showing_, true);
  const GridCursor& cursor = editor_.Cursor();
  GridTable& active = ActiveTable();
  if (cursor.ActiveGrid == GridArea::Sequence) tables_.Tabs->setCurrentIndex(cursor.CurrentChannel);
  tables_.Branch->Model().ShowStep({cursor.CurrentRow});
  for (GridTable* table : AllTables()) {
    QItemSelectionModel& selection = *table->selectionModel();
    if (table != &active || LastRow() < 1) {
      selection.clear();
      continue;
    }
    GridBlock block = SelectedBlock(cursor);
    if (cursor.ActiveGrid == GridArea::Branch) {
      block.FirstRow = block.LastRow = branchRow_;
      block.FirstColumn = block.LastColumn = 1;
    }
    const GridPosition anchor = Position();
    selection.setCurrentIndex(table->At(anchor.Row, anchor.Column), QItemSelectionModel::NoUpdate);
    selection.select(QItemSelection(table->At(block.FirstRow, block.FirstColumn),
                                    table->At(block.LastRow, block.LastColumn)),
                     QItemSelectionModel::ClearAndSelect);
    table->scrollTo(table->At(row, column));
  }
  ShowRow(cursor.ActiveGrid == GridArea::Branch ? cursor.CurrentRow : row, FirstRow());
  emit Refreshed();
}

bool GridControl::FocusInside() const {
  const QWidget* focus = panel_.window()->focusWidget();
  return focus == nullptr || focus == &panel_ || panel_.isAncestorOf(focus);
}

void GridControl::OpenEditor() {
  const QScopedValueRollback<bool> own(showing_, true);
  GridTable& table = ActiveTable();
  const CellPlace place = CurrentPlace();
  const EditorSpec spec = states_.EditCells ? EditorFor(editor_.Views(), place) : EditorSpec{};
  if (spec.None() || LastRow() < 1) {
    table.setFocus(Qt::OtherFocusReason);
    editors_.Close();
    return;
  }
  const GridPosition position = Position();
  const QModelIndex index = table.At(position.Row, position.Column);
  editors_.Open(table, table.visualRect(index), place, spec,
                table.Model().headerData(position.Column, Qt::Horizontal).toString().simplified());
  editors_.Focus();
}

void GridControl::PlaceEditor() {
  if (!editors_.IsOpen()) return;
  const CellPlace& place = editors_.Where();
  const GridTable& table = TableOf(place.Area, place.Channel);
  const int row = place.Area == GridArea::Branch ? place.BranchRow : place.Row.value;
  editors_.Place(table.visualRect(table.At(row, place.Column)));
}

void GridControl::ShowCursor(bool open) {
  KeepCursorInside();
  const GridCursor& cursor = editor_.Cursor();
  const GridPosition anchor = Position();
  const bool branch = cursor.ActiveGrid == GridArea::Branch;
  const bool end = !open && !branch;
  if (!open || !FocusInside()) CloseEditors();
  ShowSelection(end ? cursor.SelEndRow : anchor.Row, end ? cursor.SelEndCol : anchor.Column);
  if (open && FocusInside()) OpenEditor();
}

void GridControl::CloseEditors() {
  if (!editors_.IsOpen()) return;
  const QScopedValueRollback<bool> own(showing_, true);
  const CellPlace& place = editors_.Where();
  if (editors_.HasFocus()) TableOf(place.Area, place.Channel).setFocus(Qt::OtherFocusReason);
  editors_.Close();
}

void GridControl::RefreshViews(const EditOutcome& outcome) {
  if (outcome.WholeWindow) {
    for (GridTable* table : AllTables()) table->Model().Reset();
    LayOut();
    return;
  }
  for (GridTable* table : AllTables()) {
    GridModel& model = table->Model();
    model.SyncRows();
    const bool every = outcome.RowColorsChanged || outcome.CountChanged || model.Area() == GridArea::Branch;
    if (every) {
      model.RowsChanged(1, model.rowCount());
    } else {
      model.RowsChanged(outcome.FirstRow, outcome.LastRow);
    }
  }
}

void GridControl::Show(const EditMessage& message) {
  MessageRequest request;
  request.text = message.Text;
  request.icon = message.Icon;
  prompts_.Message(request);
}

void GridControl::Apply(const EditOutcome& outcome) {
  if (outcome.Message) {
    const QScopedValueRollback<bool> open(committing_, true);
    Show(*outcome.Message);
  }
  RefreshViews(outcome);
  ShowCursor(true);
  emit Changed();
}

bool GridControl::Commit(EntryEnd end) {
  if (committing_) return false;
  if (!editors_.IsOpen()) return true;
  // What an input method still composes belongs to the text.
  if (editors_.HasFocus()) QGuiApplication::inputMethod()->commit();
  if (!editors_.Changed()) return true;
  const QScopedValueRollback<bool> busy(committing_, true);
  const CellPlace place = editors_.Where();
  const EditOutcome outcome = editors_.Spec().List ? editor_.Choose(place, editors_.Choice())
                                                   : editor_.EnterText(place, editors_.Text().toStdString());
  if (!outcome.Accepted) {
    // The text goes back first: the message box takes the focus, which must not enter it once more.
    editors_.Restore();
    if (outcome.Message && end == EntryEnd::Key) Show(*outcome.Message);
    const QScopedValueRollback<bool> own(showing_, true);
    editors_.Focus();
    return false;
  }
  RefreshViews(outcome);
  const GridTable& table = TableOf(place.Area, place.Channel);
  const int row = place.Area == GridArea::Branch ? place.BranchRow : place.Row.value;
  const QModelIndex index = table.At(row, place.Column);
  // The open editor now stands for what the cell shows.
  const EditorSpec spec = EditorFor(editor_.Views(), place);
  if (spec.None()) {
    CloseEditors();
  } else {
    const QScopedValueRollback<bool> own(showing_, true);
    editors_.Open(TableOf(place.Area, place.Channel), table.visualRect(index), place, spec,
                  table.Model().headerData(place.Column, Qt::Horizontal).toString().simplified());
  }
  emit Refreshed();
  emit Changed();
  return true;
}

void GridControl::Rebuild() {
  {
    const QScopedValueRollback<bool> own(showing_, true);
    CloseEditors();
    for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
      const bool shown = channel < editor_.Views().ChannelGrids();
      tables_.Tabs->setTabText(channel, QString::fromStdString(editor_.Views().TabCaption(channel)));
      if (tables_.Tabs->isTabVisible(channel) != shown) tables_.Tabs->setTabVisible(channel, shown);
    }
    editor_.Views().RefreshRowColors();
    for (GridTable* table : AllTables()) table->Model().Reset();
    LayOut();
  }
  ShowCursor(true);
  emit Changed();
}

void GridControl::LayOut() {
  for (GridTable* table : AllTables()) table->LayOut(editors_.RowHeight());
  PlaceEditor();
}

void GridControl::SetStates(const ControlStates& states) {
  const bool before = states_.EditCells;
  states_ = states;
  if (before == states.EditCells) return;
  if (!states.EditCells) {
    CloseEditors();
  } else if (panel_.window()->focusWidget() == &ActiveTable()) {
    OpenEditor();
  }
}

void GridControl::SelectFirstCell() {
  GridCursor& cursor = editor_.Cursor();
  cursor = GridCursor{};
  {
    const QScopedValueRollback<bool> own(showing_, true);
    tables_.Common->setFocus(Qt::OtherFocusReason);
  }
  ShowCursor(true);
  emit Changed();
}

void GridControl::ReduceSelection() {
  GridCursor& cursor = editor_.Cursor();
  cursor.SelEndRow = cursor.CurrentRow;
  cursor.SelEndCol = cursor.CurrentCol();
  ShowCursor(states_.EditCells);
}

void GridControl::HighlightRow(GridRow row, bool on) {
  GridViews& views = editor_.Views();
  if (!on && views.HighlightedRow() != row) return;
  const std::optional<GridRow> before = views.Highlight(on ? std::optional(row) : std::nullopt);
  for (GridTable* table : AllTables()) {
    if (table->Model().Area() == GridArea::Branch) continue;
    if (before) table->Model().RowsChanged(before->value, before->value);
    if (on && before != row) table->Model().RowsChanged(row.value, row.value);
  }
  if (on) KeepInSight();
}

void GridControl::ScrollTo(GridRow top) {
  ShowRow(editor_.Views().HighlightedRow().value_or(top).value, top.value);
}

int GridControl::RowInSight() const {
  return editor_.Views().HighlightedRow().value_or(GridRow{editor_.Cursor().CurrentRow}).value;
}

void GridControl::KeepInSight() {
  ShowRow(RowInSight(), FirstRow());
}

// First row that the step grids show at present.
int GridControl::FirstRow() const {
  const GridTable& table = editor_.Cursor().ActiveGrid == GridArea::Branch ? *tables_.Common : ActiveTable();
  return table.verticalScrollBar()->value() + 1;
}

// The grids show the same steps from `top` on, or from where the lowest of them shows `row` as well.
void GridControl::ShowRow(int row, int top) {
  const std::array<GridTable*, 3> stepGrids{tables_.Common, tables_.Channels[0], tables_.Channels[1]};
  int rows = std::numeric_limits<int>::max();
  for (const GridTable* table : stepGrids) {
    if (table->isVisible()) rows = std::min(rows, table->VisibleRows());
  }
  const int first = std::clamp(top, std::max(row - rows + 1, 1), std::max(row, 1));
  for (GridTable* table : stepGrids) table->verticalScrollBar()->setValue(first - 1);
}

void GridControl::FocusCell() {
  const QScopedValueRollback<bool> own(showing_, true);
  if (editors_.IsOpen()) {
    if (!editors_.HasFocus()) editors_.Focus();
    return;
  }
  ActiveTable().setFocus(Qt::OtherFocusReason);
  const GridBlock block = SelectedBlock(editor_.Cursor());
  if (!states_.EditCells || block.Rows() > 1 || block.FirstColumn != block.LastColumn) return;
  KeepInSight();
  OpenEditor();
}

}  // namespace corlune
