#include "view/entry_field.h"

#include <utility>

#include <QFocusEvent>
#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QScopedValueRollback>

namespace corlune {

EntryField::EntryField(Check check, QWidget* parent) : QLineEdit(parent), check_(std::move(check)) {
  setAlignment(Qt::AlignRight);
  setInputMethodHints(Qt::ImhPreferNumbers);
  // A file dropped here is meant for the window.
  setAcceptDrops(false);
}

void EntryField::ShowText(const QString& text) {
  const bool another = std::exchange(oldFieldText_, text) != text;
  if ((another || checking_) && this->text() != text) setText(text);
}

bool EntryField::Enter(EntryEnd end) {
  if (checking_) return false;
  // What an input method still composes belongs to the text.
  if (hasFocus()) QGuiApplication::inputMethod()->commit();
  if (text() == oldFieldText_) return true;
  const QString entered = text();
  bool accepted = false;
  {
    const QScopedValueRollback guard(checking_, true);
    accepted = check_(entered.toStdString(), end);
  }
  if (!accepted) {
    setText(oldFieldText_);
    if (end == EntryEnd::Key) setFocus(Qt::OtherFocusReason);
  } else if (text() == entered) {
    oldFieldText_ = entered;
  }
  if (end == EntryEnd::Key) selectAll();
  return accepted;
}

bool EntryField::event(QEvent* event) {
  // Escape takes an entry back; without one it is the window's.
  if (event->type() == QEvent::ShortcutOverride && text() != oldFieldText_ &&
      static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
    event->accept();
    return true;
  }
  return QLineEdit::event(event);
}

bool IsMenuLetter(const QKeyEvent& key) {
  const bool alone =
      key.modifiers().testFlag(Qt::AltModifier) && !key.modifiers().testFlag(Qt::ControlModifier);
  return alone && !key.text().isEmpty() && key.text().front().isPrint();
}

void EntryField::keyPressEvent(QKeyEvent* event) {
  if (IsMenuLetter(*event)) return;
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      Enter(EntryEnd::Key);
      selectAll();
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
  QLineEdit::focusInEvent(event);
  // The menu bar has taken the selection away.
  if (event->reason() == Qt::MenuBarFocusReason && text() == oldFieldText_) selectAll();
}

void EntryField::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  const Qt::FocusReason reason = event->reason();
  if (reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason ||
      reason == Qt::MenuBarFocusReason) {
    return;
  }
  Enter(EntryEnd::Left);
}

bool EntryField::focusNextPrevChild(bool next) {
  // Switching the field off moves the focus on, too.
  return !isEnabled() || Enter(EntryEnd::Key) ? QLineEdit::focusNextPrevChild(next) : true;
}

}  // namespace corlune
