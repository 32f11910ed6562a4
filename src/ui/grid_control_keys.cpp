// Keys and focus of the grids.
#include <utility>

#include <QApplication>
#include <QKeyEvent>

#include "ui/grid_control.h"

namespace corlune {

bool GridControl::HandleKey(QKeyEvent& event) {
  const std::optional<GridKey> key = GridKeyOf(event);
  switch (event.type()) {
    case QEvent::ShortcutOverride:
      // Without an entry to take back the key is the window's.
      return key && entry_.Leaves(*key) && (key->kind != GridKey::Kind::Restore || entry_.CanRestore());
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
  if (key && entry_.Leaves(*key)) {
    Do(*key, event);
    return true;
  }
  return !key && entry_.Type(event, cursor_.Place());
}

void GridControl::Do(const GridKey& key, const QKeyEvent& event) {
  switch (key.kind) {
    case GridKey::Kind::Move:
      return PressMove(key.cursor, event.isAutoRepeat());
    case GridKey::Kind::Extend:
      return Extend(key.cursor);
    case GridKey::Kind::Jump:
      return Jump(key.jump, key.extend);
    case GridKey::Kind::Command:
      emit CommandRequested(key.command);
      return;
    case GridKey::Kind::EditText:
      return EditText();
    case GridKey::Kind::Restore:
      return entry_.Restore();
    case GridKey::Kind::List:
      return entry_.OpenList();
    case GridKey::Kind::Option:
      return entry_.NextOption();
    case GridKey::Kind::Leave:
      return Leave(key.forward);
    case GridKey::Kind::Grid:
      return NextGrid(key.forward);
  }
}

// The arrow keys act when they are let go.
void GridControl::PressMove(CursorKey key, bool repeated) {
  if (!IsArrow(key)) {
    Move(key);
    return;
  }
  // Platforms that do not report a release for each repetition.
  if (repeated && heldArrow_ == key) Move(key);
  heldArrow_ = key;
}

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

void GridControl::Move(CursorKey key) {
  if (cursor_.LastRow() < 1) {
    if (key == CursorKey::Tab || key == CursorKey::Backtab) Leave(key == CursorKey::Tab);
    return;
  }
  if (!Commit()) return;
  cursor_.Move(key);
  Moved(true);
}

void GridControl::Extend(CursorKey key) {
  if (!Commit() || cursor_.LastRow() < 1) return;
  cursor_.Extend(key);
  Moved(false);
}

void GridControl::Jump(GridJump jump, bool extend) {
  if (!Commit() || cursor_.LastRow() < 1) return;
  cursor_.Jump(jump, extend);
  Moved(!extend);
}

void GridControl::NextGrid(bool forward) {
  if (!Commit()) return;
  cursor_.NextGrid(forward);
  Moved(true);
}

void GridControl::EditText() {
  if (!entry_.IsOpen()) ShowCursor(true);
  entry_.EditText();
}

// Tab belongs to the cells, so the next control of the window has a key of its own.
void GridControl::Leave(bool forward) {
  if (!Commit()) return;
  GridTable& table = cursor_.Table();
  const auto takes = [&](const QWidget* widget) {
    return (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisibleTo(panel_.window()) &&
           widget->isEnabled() && !table.isAncestorOf(widget);
  };
  QWidget* next = &table;
  do {
    next = forward ? next->nextInFocusChain() : next->previousInFocusChain();
  } while (next != &table && !takes(next));
  if (next == &table) return;
  entry_.Close();
  next->setFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

// The focus has come to a grid by the keyboard.
void GridControl::Enter(GridTable& table) {
  if (panel_.window()->focusWidget() != &table || !Commit()) return;
  if (&table != &cursor_.Table()) cursor_.Enter(table);
  Moved(true);
}

bool GridControl::eventFilter(QObject* watched, QEvent* event) {
  auto* table = qobject_cast<GridTable*>(watched);
  if (table == nullptr) return QObject::eventFilter(watched, event);
  switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
      // Keys that an editor inside the grid left over are the window's.
      event->setAccepted(!entry_.HasFocus() && HandleKey(static_cast<QKeyEvent&>(*event)));
      return true;
    case QEvent::FocusIn: {
      const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
      const bool entered = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                           reason == Qt::ShortcutFocusReason || reason == Qt::OtherFocusReason;
      if (!entered || entry_.FocusIsOwn() || entry_.MessageOpen()) break;
      // Not inside the focus change.
      emit FocusCame(table, QPrivateSignal());
      break;
    }
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace corlune
