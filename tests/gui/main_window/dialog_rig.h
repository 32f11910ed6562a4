// A tool dialog over the main window, worked in while it is open.
#pragma once

#include <functional>
#include <string>

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

#include "gui/main_window/window_rig.h"

namespace corlune::testing {

// The dialog that a menu item has opened, while it is open.
struct OpenDialog {
  const WindowRig& rig;
  QDialog& dialog;

  template <class Widget>
  Widget& Find(const char* name) const {
    return *dialog.findChild<Widget*>(QString::fromUtf8(name));
  }
  void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const { rig.Key(key, modifiers); }
  // Over what the field holds, and its end.
  void Type(const char* name, const char* text, Qt::Key end) const {
    auto& field = Find<QLineEdit>(name);
    field.setFocus();
    field.selectAll();
    rig.Type(QString::fromUtf8(text));
    rig.Key(end);
  }
  std::string Line(const char* name) const { return Find<QLabel>(name).text().toStdString(); }
};

// Triggers the menu item `item` and calls `act` once its dialog is open; `act` must close it.
inline void InDialog(WindowRig& rig, const char* item, const std::function<void(const OpenDialog&)>& act) {
  bool seen = false;
  QTimer opened;
  QObject::connect(&opened, &QTimer::timeout, rig.window.get(), [&] {
    // Waits that come before it handle events, too.
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr) return;
    opened.stop();
    seen = true;
    QApplication::setActiveWindow(dialog);
    act(OpenDialog{rig, *dialog});
    if (dialog->isVisible()) {
      ADD_FAILURE() << "still open";
      dialog->reject();
    }
  });
  opened.start(0);
  rig.Item(item)->trigger();
  EXPECT_TRUE(seen);
  QApplication::setActiveWindow(rig.window.get());
  rig.Settle();
}

}  // namespace corlune::testing
