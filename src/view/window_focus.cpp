#include "view/window_focus.h"

#include <utility>

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QMenu>
#include <QMenuBar>
#include <QScopedValueRollback>

namespace corlune {

WindowFocus::WindowFocus(QWidget& window, QWidget& home, std::function<void()> goHome)
    : window_(window), home_(home), goHome_(std::move(goHome)) {
  window.installEventFilter(this);
  if (auto* menuBar = window.findChild<QMenuBar*>({}, Qt::FindDirectChildrenOnly)) {
    for (const QAction* title : menuBar->actions()) {
      if (title->menu()) Watch(*title->menu());
    }
  }
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
    if (own_ || !now || now->window() != &window_) return;
    if (auto* field = qobject_cast<EntryField*>(now)) {
      field_ = field;
    } else if (other_ && other_->isAncestorOf(now)) {
      field_ = now;
    } else if (now == &home_ || home_.isAncestorOf(now)) {
      field_ = nullptr;
    }
  });
}

void WindowFocus::Watch(QMenu& menu) {
  connect(
      &menu, &QMenu::aboutToHide, this,
      [this] {
        if (auto* menuBar = window_.findChild<QMenuBar*>({}, Qt::FindDirectChildrenOnly))
          LeaveMenuBar(*menuBar);
      },
      Qt::QueuedConnection);
}

void WindowFocus::Keep(const std::function<void()>& change) {
  if (own_) {
    change();
    return;
  }
  const QWidget* before = window_.focusWidget();
  {
    const QScopedValueRollback<bool> own(own_, true);
    change();
  }
  if (before && window_.focusWidget() != before) Return();
}

void WindowFocus::Return() {
  if (own_) return;
  const QScopedValueRollback<bool> own(own_, true);
  if (!field_ || !field_->isEnabled() || !field_->isVisibleTo(&window_)) {
    goHome_();
  } else if (window_.focusWidget() != field_) {
    field_->setFocus(Qt::OtherFocusReason);
  }
}

// A menu that is closed by Escape leaves the focus to the menu bar, which would take letters for its own.
void WindowFocus::LeaveMenuBar(QMenuBar& menuBar) {
  if (QApplication::activePopupWidget() || window_.focusWidget() != &menuBar) return;
  menuBar.setActiveAction(nullptr);
  Return();
}

bool WindowFocus::eventFilter(QObject* watched, QEvent* event) {
  // A window that is docked in another one leaves the focus to that one.
  if (event->type() == QEvent::WindowActivate && window_.isWindow()) Return();
  return QObject::eventFilter(watched, event);
}

}  // namespace corlune
