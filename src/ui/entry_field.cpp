#include "ui/entry_field.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QScopedValueRollback>

namespace corlune {

EntryField::EntryField(QWidget* parent) : QLineEdit(parent) {
  setAlignment(Qt::AlignRight);
  setInputMethodHints(Qt::ImhPreferNumbers);
  // A file dropped here is meant for the window.
  setAcceptDrops(false);
}

void EntryField::ShowText(const QString& text) {
  oldFieldText_ = text;
  if (this->text() != text) setText(text);
}

bool EntryField::Enter(EntryEnd end) {
  if (checking_ || text() == oldFieldText_) return true;
  const QScopedValueRollback guard(checking_, true);
  const QString entered = text();
  const bool accepted = !check_ || check_(entered.toStdString(), end);
  if (!accepted) {
    setText(oldFieldText_);
  } else if (text() == entered) {
    oldFieldText_ = entered;
  }
  if (end == EntryEnd::Key) selectAll();
  return accepted;
}

void EntryField::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      Enter(EntryEnd::Key);
      return;
    case Qt::Key_Escape:
      setText(oldFieldText_);
      selectAll();
      return;
    default:
      QLineEdit::keyPressEvent(event);
  }
}

void EntryField::focusInEvent(QFocusEvent* event) {
  if (!checking_) oldFieldText_ = text();
  QLineEdit::focusInEvent(event);
}

void EntryField::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  // A menu or another program takes the focus only for a while.
  const Qt::FocusReason reason = event->reason();
  if (reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason ||
      reason == Qt::MenuBarFocusReason) {
    return;
  }
  Enter(EntryEnd::Left);
}

bool EntryField::focusNextPrevChild(bool next) {
  return Enter(EntryEnd::Key) ? QLineEdit::focusNextPrevChild(next) : true;
}

}  // namespace corlune
