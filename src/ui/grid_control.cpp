#include "ui/grid_control.h"

#include <utility>

#include <QApplication>
#include <QLayout>
#include <QScrollBar>

#include "ui/channel_tabs.h"

namespace corlune {

GridControl::GridControl(SequenceEditor& editor, Prompts& prompts, const GridTables& tables, QWidget& panel)
    : editor_(editor),
      tables_(tables),
      panel_(panel),
      cursor_(editor, tables),
      entry_(editor, prompts, tables, panel) {
  for (GridTable* table : tables_.All()) Connect(*table);
  connect(tables_.Tabs, &ChannelTabs::currentChanged, this, &GridControl::ChangeTab);

  entry_.SetKeyHandler([this](QKeyEvent* event) { return HandleKey(*event); });
  connect(&entry_, &CellEntry::NoticeGiven, this, &GridControl::NoticeGiven);
  connect(&entry_, &CellEntry::Operated, this, &GridControl::Apply);
  connect(&entry_, &CellEntry::Stored, this, [this] {
    emit Refreshed();
    emit Changed();
  });
  connect(&entry_, &CellEntry::DraggedTo, this, [this](const QPoint& at) {
    pressed_ = true;
    cursor_.Table().DragTo(at);
  });
  connect(&entry_, &CellEntry::DragEnded, this, [this] { Release(cursor_.Table()); });
  connect(
      this, &GridControl::FocusCame, this, [this](GridTable* table) { Enter(*table); }, Qt::QueuedConnection);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, const QWidget* now) {
    // The release of an arrow key will go elsewhere.
    if (now == nullptr || !panel_.isAncestorOf(now)) heldArrow_.reset();
  });
}

void GridControl::Connect(GridTable& table) {
  table.installEventFilter(this);
  GridTable* const at = &table;
  connect(at, &GridTable::Pressed, this,
          [this, at](int row, int column, bool extend) { Press(*at, row, column, extend); });
  connect(at, &GridTable::Dragged, this, [this, at](int row, int column) { Drag(*at, row, column); });
  connect(at, &GridTable::Released, this, [this, at] { Release(*at); });
  connect(at, &GridTable::MenuRequested, this,
          [this, at](const QPoint& global, int row, int column) { RequestMenu(*at, global, row, column); });
  connect(at, &GridTable::Moved, this, [this] { entry_.FollowCell(); });
  connect(at, &GridTable::Resized, this, [this, at](int rowsBefore) { cursor_.Resized(*at, rowsBefore); });
}

bool GridControl::FocusInside() const {
  const QWidget* focus = panel_.window()->focusWidget();
  return focus == nullptr || focus == &panel_ || panel_.isAncestorOf(focus);
}

void GridControl::ShowCursor(bool open) {
  if (!open || !FocusInside()) entry_.Close();
  {
    const auto own = entry_.OwnFocus();
    cursor_.Show(!open);
    emit Refreshed();
  }
  if (open && FocusInside()) entry_.Open(cursor_.Place());
}

void GridControl::Moved(bool open) {
  ShowCursor(open);
  emit Changed();
}

void GridControl::Apply(const EditOutcome& outcome) {
  if (outcome.Message) entry_.Say(*outcome.Message);
  tables_.Refresh(outcome, RowHeight());
  Moved(true);
}

void GridControl::Rebuild() {
  {
    const auto own = entry_.OwnFocus();
    entry_.Close();
    for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
      const bool shown = channel < editor_.Views().ChannelGrids();
      tables_.Tabs->setTabText(channel, QString::fromStdString(editor_.Views().TabCaption(channel)));
      if (tables_.Tabs->isTabVisible(channel) != shown) tables_.Tabs->setTabVisible(channel, shown);
    }
    editor_.Views().RefreshRowColors();
    tables_.Reset(RowHeight());
  }
  Moved(true);
}

void GridControl::Rearrange(const std::function<void()>& change) {
  const auto own = entry_.OwnFocus();
  QWidget* before = panel_.window()->focusWidget();
  const int top = tables_.Common->verticalScrollBar()->value();
  change();
  tables_.Tabs->layout()->activate();
  // A grid that was out of sight had no room to scroll in.
  for (GridTable* table : tables_.OfSteps()) {
    table->doItemsLayout();
    table->verticalScrollBar()->setValue(top);
  }
  entry_.FollowCell();
  if (before != nullptr && panel_.window()->focusWidget() != before) before->setFocus(Qt::OtherFocusReason);
}

void GridControl::LayOut() {
  for (GridTable* table : tables_.All()) table->LayOut(entry_.RowHeight());
  entry_.FollowCell();
}

void GridControl::AllowEditing(bool on) {
  if (entry_.Allowed() == on) return;
  entry_.Allow(on);
  if (!on) {
    entry_.Close();
  } else if (panel_.window()->focusWidget() == &cursor_.Table()) {
    entry_.Open(cursor_.Place());
  }
}

void GridControl::SelectFirstCell() {
  cursor_.FirstCell();
  {
    const auto own = entry_.OwnFocus();
    tables_.Common->setFocus(Qt::OtherFocusReason);
  }
  Moved(true);
}

void GridControl::SelectRow(GridRow row) {
  cursor_.SelectRow(row);
  Moved(true);
}

void GridControl::SelectCell(const CellPlace& place) {
  cursor_.SelectCell(place);
  Moved(true);
}

void GridControl::HighlightRow(GridRow row, bool on) {
  cursor_.Highlight(row, on);
  if (on) {
    MarkStep();
  } else {
    // The monitor takes the mark away and sets it again at once: nothing is to go to the current row in
    // between.
    QMetaObject::invokeMethod(this, &GridControl::MarkStep, Qt::QueuedConnection);
  }
}

void GridControl::MarkStep() {
  if (cursor_.MarkStep()) emit Refreshed();
}

void GridControl::ReduceSelection() {
  cursor_.Reduce();
  ShowCursor(entry_.Allowed());
}

void GridControl::FocusCell() {
  const auto own = entry_.OwnFocus();
  if (entry_.IsOpen()) {
    if (!entry_.HasFocus()) entry_.Focus();
    return;
  }
  cursor_.Table().setFocus(Qt::OtherFocusReason);
  if (!entry_.Allowed() || !cursor_.OneCell()) return;
  cursor_.KeepInSight();
  entry_.Open(cursor_.Place());
}

void GridControl::Press(GridTable& table, int row, int column, bool extend) {
  pressed_ = false;
  if (!Commit() || row < 1) return;
  pressed_ = true;
  cursor_.Press(table, {row, column}, extend);
  Moved(false);
}

void GridControl::Drag(GridTable& table, int row, int column) {
  if (!pressed_ || &table != &cursor_.Table()) return;
  if (cursor_.DragTo({row, column})) ShowCursor(false);
}

void GridControl::Release(GridTable& table) {
  if (entry_.MessageOpen()) return;
  if (std::exchange(pressed_, false)) {
    Moved(cursor_.OneCell());
  } else if (entry_.IsOpen()) {
    // Outside the cells, or the entry was refused: the cell before goes on.
    entry_.Focus();
  } else if (&table == &cursor_.Table()) {
    ShowCursor(true);
  }
}

void GridControl::RequestMenu(GridTable& table, const QPoint& global, int row, int column) {
  if (row > 0 && !cursor_.Covers(table, {row, column})) {
    Press(table, row, column, false);
    Release(table);
  }
  emit MenuRequested(global);
}

void GridControl::ChangeTab(int tab) {
  const GridCursor& cursor = editor_.Cursor();
  const bool other = tab >= 0 && cursor.ActiveGrid == GridArea::Sequence && tab != cursor.CurrentChannel;
  if (entry_.FocusIsOwn() || !other) return;
  if (!Commit()) {
    const auto own = entry_.OwnFocus();
    tables_.Tabs->setCurrentIndex(cursor.CurrentChannel);
    entry_.Focus();
    return;
  }
  cursor_.Enter(tables_.Of(GridArea::Sequence, tab));
  Moved(true);
}

}  // namespace corlune
