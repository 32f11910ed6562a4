// Keys, mouse and focus of the grids.
#include <algorithm>
#include <utility>
#include <vector>

#include <QApplication>
#include <QKeyEvent>
#include <QMenuBar>
#include <QScopedValueRollback>
#include <QTabWidget>

#include "ui/grid_control.h"

namespace corlune {

namespace {

// A character that begins an entry.
bool Types(const QKeyEvent& event) {
  const Qt::KeyboardModifiers modifiers = event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
  const QString text = event.text();
  return modifiers == Qt::NoModifier && !text.isEmpty() && text.at(0).isPrint() && !text.at(0).isSpace();
}

bool BeginsNumber(const QKeyEvent& event) {
  const QString text = event.text();
  return Types(event) && (text.at(0).isDigit() || QStringLiteral("+-.").contains(text.at(0)));
}

}  // namespace

void GridControl::Press(GridTable& table, int row, int column, bool extend) {
  pressed_ = false;
  if (!Commit() || row < 1) return;
  GridCursor& cursor = editor_.Cursor();
  const GridModel& model = table.Model();
  const bool same = &table == &ActiveTable();
  cursor.ActiveGrid = model.Area();
  pressed_ = true;
  if (model.Area() == GridArea::Branch) {
    branchRow_ = row;
  } else {
    if (model.Area() == GridArea::Sequence) cursor.CurrentChannel = model.Channel();
    // The step number stands for its whole row.
    if (!extend || !same) SetPosition({row, std::max(column, 1)});
    cursor.SelEndRow = row;
    cursor.SelEndCol = column == 0 ? LastColumn() : column;
  }
  ShowCursor(false);
  emit Changed();
}

void GridControl::Drag(GridTable& table, int row, int column) {
  GridCursor& cursor = editor_.Cursor();
  if (!pressed_ || &table != &ActiveTable() || cursor.ActiveGrid == GridArea::Branch) return;
  const int endRow = std::clamp(row, 1, std::max(LastRow(), 1));
  const int endColumn = column == 0 ? LastColumn() : column;
  if (endRow == cursor.SelEndRow && endColumn == cursor.SelEndCol) return;
  cursor.SelEndRow = endRow;
  cursor.SelEndCol = endColumn;
  ShowCursor(false);
}

void GridControl::Release(GridTable& table) {
  if (committing_) return;
  const GridCursor& cursor = editor_.Cursor();
  if (!std::exchange(pressed_, false)) {
    // Outside the cells, or the entry was refused: the cell before goes on.
    if (&table == &ActiveTable() || editors_.IsOpen()) {
      if (editors_.IsOpen()) {
        editors_.Focus();
      } else {
        ShowCursor(true);
      }
    }
    return;
  }
  const GridBlock block = SelectedBlock(cursor);
  const bool single = block.Rows() == 1 && block.FirstColumn == block.LastColumn;
  ShowCursor(single || cursor.ActiveGrid == GridArea::Branch);
  emit Changed();
}

void GridControl::RequestMenu(GridTable& table, const QPoint& global, int row, int column) {
  if (row > 0) {
    const GridBlock block = SelectedBlock(editor_.Cursor());
    const bool inside = &table == &ActiveTable() && block.Area != GridArea::Branch && row >= block.FirstRow &&
                        row <= block.LastRow && column <= block.LastColumn && column >= block.FirstColumn;
    if (!inside) {
      Press(table, row, column, false);
      Release(table);
    }
  }
  emit MenuRequested(global);
}

void GridControl::ChangeTab(int tab) {
  GridCursor& cursor = editor_.Cursor();
  if (showing_ || tab < 0 || cursor.ActiveGrid != GridArea::Sequence || tab == cursor.CurrentChannel) return;
  if (!Commit()) {
    const QScopedValueRollback<bool> own(showing_, true);
    tables_.Tabs->setCurrentIndex(cursor.CurrentChannel);
    editors_.Focus();
    return;
  }
  cursor.CurrentChannel = tab;
  cursor.SelEndRow = cursor.CurrentRow;
  cursor.SelEndCol = cursor.CurrentCol2;
  ShowCursor(true);
  emit Changed();
}

// True when the key belongs to the grid; false: to the editor's text, its list or the window.
bool GridControl::WouldHandle(const GridKey& key, const QKeyEvent& event) const {
  const EditorSpec& spec = editors_.Spec();
  const bool textOpen = editors_.IsOpen() && spec.Text && spec.TextEnabled;
  const bool changed = textOpen && editors_.Changed();
  const bool inText = textOpen && (editors_.InText() || changed);
  switch (key.kind) {
    case GridKey::Kind::Move:
      return !(editors_.InText() && (key.cursor == CursorKey::Left || key.cursor == CursorKey::Right));
    case GridKey::Kind::Extend:
      return !inText && editor_.Cursor().ActiveGrid != GridArea::Branch;
    case GridKey::Kind::Jump: {
      const bool page = key.jump == GridJump::PageUp || key.jump == GridJump::PageDown;
      if (key.extend) return !inText && editor_.Cursor().ActiveGrid != GridArea::Branch;
      return !inText || page || key.jump == GridJump::FirstRow || key.jump == GridJump::LastRow;
    }
    case GridKey::Kind::Command:
      switch (key.command) {
        case GridCommand::Initialize:
          return !inText;
        case GridCommand::Copy:
        case GridCommand::Paste:
        case GridCommand::SelectAll:
        case GridCommand::Undo:
        case GridCommand::Redo:
          // Ctrl+Shift+Z and Ctrl+Y alike.
          return !changed;
        default:
          return true;
      }
    case GridKey::Kind::EditText:
      return states_.EditCells;
    case GridKey::Kind::Restore:
      return editors_.IsOpen() && (editors_.Changed() || editors_.InText());
    case GridKey::Kind::List:
      return editors_.IsOpen() && (spec.List || !spec.Units.empty());
    case GridKey::Kind::Option:
      return editors_.IsOpen() && !spec.Options.empty() && !inText;
    case GridKey::Kind::Leave:
    case GridKey::Kind::Grid:
      return true;
  }
  Q_UNUSED(event);
  return false;
}

bool GridControl::HandleKey(QKeyEvent& event) {
  const std::optional<GridKey> key = GridKeyOf(event);
  switch (event.type()) {
    case QEvent::ShortcutOverride:
      return key && WouldHandle(*key, event);
    case QEvent::KeyRelease:
      return ReleaseKey(event);
    default:
      break;
  }
  // The next key of a fast typist comes down before the arrow is let go; the arrow was pressed first.
  if (heldArrow_ && !(event.isAutoRepeat() && key && key->cursor == heldArrow_)) {
    const QWidget* before = panel_.window()->focusWidget();
    if (!FinishArrow()) return true;
    QWidget* now = panel_.window()->focusWidget();
    if (now != before && now != nullptr) {
      QCoreApplication::sendEvent(now, &event);
      return true;
    }
  }
  if (key && WouldHandle(*key, event)) {
    Do(*key, event);
    return true;
  }
  return !key && TypeIntoCell(event);
}

void GridControl::Do(const GridKey& key, const QKeyEvent& event) {
  switch (key.kind) {
    case GridKey::Kind::Move:
      if (!IsArrow(key.cursor)) {
        Move(key.cursor);
      } else if (event.isAutoRepeat() && heldArrow_ == key.cursor) {
        Move(key.cursor);  // platforms that do not report a release for each repetition
        heldArrow_ = key.cursor;
      } else {
        heldArrow_ = key.cursor;
      }
      return;
    case GridKey::Kind::Extend:
      Extend(key.cursor);
      return;
    case GridKey::Kind::Jump:
      Jump(key.jump, key.extend);
      return;
    case GridKey::Kind::Command:
      emit CommandRequested(key.command);
      return;
    case GridKey::Kind::EditText:
      EditText();
      return;
    case GridKey::Kind::Restore:
      editors_.Restore();
      return;
    case GridKey::Kind::List:
      editors_.OpenList();
      return;
    case GridKey::Kind::Option:
      NextOption();
      return;
    case GridKey::Kind::Leave:
      Leave(key.forward);
      return;
    case GridKey::Kind::Grid:
      NextGrid(key.forward);
      return;
  }
}

// The arrow keys act when they are let go.
bool GridControl::ReleaseKey(const QKeyEvent& event) {
  const std::optional<GridKey> key = GridKeyOf(event);
  if (!key || key->kind != GridKey::Kind::Move || !IsArrow(key->cursor)) return false;
  if (heldArrow_ != key->cursor) return false;
  FinishArrow();
  return true;
}

bool GridControl::FinishArrow() {
  const auto arrow = std::exchange(heldArrow_, std::nullopt);
  if (!Commit()) return false;
  if (arrow) Move(*arrow);
  return true;
}

// Typing on a cell whose editor is closed or switched off.
bool GridControl::TypeIntoCell(QKeyEvent& event) {
  if (!Types(event) || !states_.EditCells) return false;
  if (!editors_.IsOpen()) {
    OpenEditor();
    if (!editors_.IsOpen()) return false;
  } else if (!editors_.Spec().Text || editors_.Spec().TextEnabled || !BeginsNumber(event)) {
    return false;
  }
  if (editors_.Spec().Text && !editors_.Spec().TextEnabled) {
    if (!BeginsNumber(event) || static_cast<int>(editors_.Spec().Options.size()) <= kSwitchOn) return true;
    Apply(editor_.ChooseOption(editors_.Where(), kSwitchOn));
  }
  if (!editors_.IsOpen() || !editors_.HasFocus()) return true;
  QCoreApplication::sendEvent(panel_.window()->focusWidget(), &event);
  return true;
}

void GridControl::Move(CursorKey key) {
  if (LastRow() < 1) {
    if (key == CursorKey::Tab || key == CursorKey::Backtab) Leave(key == CursorKey::Tab);
    return;
  }
  if (!Commit()) return;
  switch (editor_.Cursor().ActiveGrid) {
    case GridArea::Common:
      SetPosition(MoveCommonCursor(Position(), key, LastRow()));
      break;
    case GridArea::Sequence:
      SetPosition(MoveChannelCursor(Position(), key, LastRow(), LastColumn()));
      break;
    case GridArea::Branch:
      SetPosition(MoveBranchCursor(Position(), key, LastRow()));
      break;
  }
  ShowCursor(true);
  emit Changed();
}

void GridControl::Extend(CursorKey key) {
  GridCursor& cursor = editor_.Cursor();
  if (!Commit() || LastRow() < 1) return;
  const int rows = key == CursorKey::Down ? 1 : key == CursorKey::Up ? -1 : 0;
  const int columns = key == CursorKey::Right ? 1 : key == CursorKey::Left ? -1 : 0;
  cursor.SelEndRow = std::clamp(cursor.SelEndRow + rows, 1, LastRow());
  cursor.SelEndCol = std::clamp(cursor.SelEndCol + columns, 1, LastColumn());
  ShowCursor(false);
  emit Changed();
}

void GridControl::Jump(GridJump jump, bool extend) {
  if (!Commit() || LastRow() < 1) return;
  GridCursor& cursor = editor_.Cursor();
  GridPosition position = extend ? GridPosition{cursor.SelEndRow, cursor.SelEndCol} : Position();
  const int page = std::max(ActiveTable().VisibleRows() - 1, 1);
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
    cursor.SelEndRow = position.Row;
    cursor.SelEndCol = position.Column;
  } else {
    SetPosition(position);
  }
  ShowCursor(!extend);
  emit Changed();
}

// Common area, the channels, branch area, and round again; the step stays.
void GridControl::NextGrid(bool forward) {
  if (!Commit()) return;
  GridCursor& cursor = editor_.Cursor();
  std::vector<CellPlace> grids(1);
  for (int channel = 0; channel < editor_.Views().ChannelGrids(); ++channel) {
    grids.push_back({GridArea::Sequence, channel, {}, 1, 0});
  }
  if (editor_.Views().BranchVisible()) grids.push_back({GridArea::Branch, 0, {}, 1, 0});
  const auto now = std::find_if(grids.begin(), grids.end(), [&](const CellPlace& grid) {
    return grid.Area == cursor.ActiveGrid &&
           (grid.Area != GridArea::Sequence || grid.Channel == cursor.CurrentChannel);
  });
  const std::size_t at = now == grids.end() ? 0 : static_cast<std::size_t>(now - grids.begin());
  const CellPlace& next = grids[(at + (forward ? 1 : grids.size() - 1)) % grids.size()];
  cursor.ActiveGrid = next.Area;
  if (next.Area == GridArea::Sequence) cursor.CurrentChannel = next.Channel;
  SetPosition(Position());
  ShowCursor(true);
  emit Changed();
}

void GridControl::NextOption() {
  const EditorSpec& spec = editors_.Spec();
  const int count = static_cast<int>(spec.Options.size());
  Apply(editor_.ChooseOption(editors_.Where(), (spec.ChosenOption + 1) % count));
}

void GridControl::EditText() {
  if (!editors_.IsOpen()) ShowCursor(true);
  if (editors_.InText() && !editors_.Changed()) {
    editors_.Restore();
  } else {
    editors_.EditText();
  }
}

// Tab belongs to the cells, so the next control of the window has a key of its own.
void GridControl::Leave(bool forward) {
  if (!Commit()) return;
  GridTable& table = ActiveTable();
  const auto takes = [&](const QWidget* widget) {
    return (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisibleTo(panel_.window()) &&
           widget->isEnabled() && !table.isAncestorOf(widget);
  };
  QWidget* next = &table;
  do {
    next = forward ? next->nextInFocusChain() : next->previousInFocusChain();
  } while (next != &table && !takes(next));
  if (next == &table) return;
  {
    const QScopedValueRollback<bool> own(showing_, true);
    CloseEditors();
  }
  next->setFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

// The focus has gone to another control of this window: what was typed is entered. A message box, a menu or
// another window that takes it does not end the entry; from there it comes back to the editor.
bool GridControl::EndsEntry(const QWidget* now) const {
  if (now == nullptr || !editors_.IsOpen() || editors_.Owns(now)) return false;
  if (now->window() != panel_.window() || qobject_cast<const QMenuBar*>(now) != nullptr) return false;
  const CellPlace& place = editors_.Where();
  return now != &TableOf(place.Area, place.Channel);
}

void GridControl::FocusChanged(QWidget* now) {
  // The release of an arrow key will go elsewhere.
  if (now == nullptr || !panel_.isAncestorOf(now)) heldArrow_.reset();
  // Not inside the focus change, which the refusal's message box would disturb.
  if (!showing_ && EndsEntry(now)) emit FocusWent(QPrivateSignal());
}

void GridControl::FinishLeaving() {
  if (committing_ || !EndsEntry(panel_.window()->focusWidget()) || !Commit()) return;
  CloseEditors();
}

// The focus has come to a grid by the keyboard.
void GridControl::Enter(GridTable& table) {
  if (panel_.window()->focusWidget() != &table || !Commit()) return;
  if (&table != &ActiveTable()) {
    GridCursor& cursor = editor_.Cursor();
    cursor.ActiveGrid = table.Model().Area();
    if (cursor.ActiveGrid == GridArea::Sequence) cursor.CurrentChannel = table.Model().Channel();
    SetPosition(Position());
  }
  ShowCursor(true);
  emit Changed();
}

bool GridControl::eventFilter(QObject* watched, QEvent* event) {
  auto* table = qobject_cast<GridTable*>(watched);
  if (table == nullptr) return QObject::eventFilter(watched, event);
  switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
      // Keys that an editor inside the grid left over are the window's.
      event->setAccepted(!editors_.HasFocus() && HandleKey(static_cast<QKeyEvent&>(*event)));
      return true;
    case QEvent::FocusIn: {
      const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
      const bool entered = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                           reason == Qt::ShortcutFocusReason || reason == Qt::OtherFocusReason;
      if (!entered || showing_ || committing_) break;
      // Not inside the focus change: the editor takes the focus over.
      emit FocusCame(table, QPrivateSignal());
      break;
    }
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace corlune
