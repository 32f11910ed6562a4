// WindowFocus: brings the focus of a window back to the field or cell that had it last.
#pragma once

#include <functional>

#include <QObject>
#include <QPointer>

#include "view/entry_field.h"

class QMenu;
class QMenuBar;

namespace corlune {

class WindowFocus : public QObject {
  Q_OBJECT

 public:
  // To be built when the window has its menus. `home`: what holds the cells or the picture of `window`;
  // `goHome` gives the focus to it. Both widgets must outlive this object.
  WindowFocus(QWidget& window, QWidget& home, std::function<void()> goHome);

  // Enables and disables controls. A control that loses the focus by that gives it to the place it goes back
  // to, not to the next one.
  void Keep(const std::function<void()>& change);
  // A second home that keeps the focus which it has.
  void AddHome(QWidget& other) { other_ = &other; }
  // A menu that came later.
  void Watch(QMenu& menu);
  // To the last field, where it takes entries, else home.
  void Return();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void LeaveMenuBar(QMenuBar& menuBar);

  QWidget& window_;
  QWidget& home_;
  std::function<void()> goHome_;
  QPointer<QWidget> other_;
  QPointer<QWidget> field_;  // or a widget of the other home; had the focus last. Null: home had it
  bool own_ = false;         // the focus changes are this object's own
};

}  // namespace corlune
