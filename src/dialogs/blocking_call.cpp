#include "dialogs/blocking_call.h"

#include <QApplication>

namespace corlune {

BlockingCall::BlockingCall(QLabel& label, const QString& text) {
  label.setText(text);
  label.show();
  QApplication::setOverrideCursor(Qt::WaitCursor);
  // Painted; what the person does meanwhile comes after the call.
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

BlockingCall::~BlockingCall() {
  QApplication::restoreOverrideCursor();
}

}  // namespace corlune
