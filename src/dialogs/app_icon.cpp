#include "dialogs/app_icon.h"

#include <utility>

#include <QEvent>
#include <QFile>
#include <QIcon>
#include <QWidget>

namespace corlune {

namespace {

// Reading the pictures takes as long as painting the grids: the window comes first.
constexpr int kIconDelay = 100;  // ms

QIcon ReadIcon(const QString& name) {
  QIcon icon;
  for (const int size : {16, 32, 48, 64, 256}) {
    const QString file = QStringLiteral(":/%1/%2.png").arg(name).arg(size);
    if (QFile::exists(file)) icon.addFile(file, QSize(size, size));
  }
  return icon;
}

void SetIconNow(QWidget* window, const QString& name, bool alsoOwner) {
  const QIcon icon = ReadIcon(name);
  if (icon.isNull()) return;
  window->setWindowIcon(icon);
  if (!alsoOwner) return;
  QWidget* owner = window->window();
  while (owner->parentWidget()) owner = owner->parentWidget()->window();
  owner->setWindowIcon(icon);
}

// Waits for the window's first paint event, sets the icon when that has been handled, and ends itself.
class IconAfterFirstPaint : public QObject {
 public:
  IconAfterFirstPaint(QWidget* window, QString name, bool alsoOwner)
      : QObject(window), window_(window), name_(std::move(name)), alsoOwner_(alsoOwner) {
    window->installEventFilter(this);
  }
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched == window_ && event->type() == QEvent::Paint) {
      window_->removeEventFilter(this);
      startTimer(kIconDelay);
    }
    return false;
  }

 protected:
  void timerEvent(QTimerEvent* event) override {
    killTimer(event->timerId());
    SetIconNow(window_, name_, alsoOwner_);
    deleteLater();
  }

 private:
  QWidget* window_;
  QString name_;
  bool alsoOwner_;
};

}  // namespace

void SetAppIcon(QWidget* window, const QString& name, bool alsoOwner) {
  // Owned by the window.
  new IconAfterFirstPaint(window, name, alsoOwner);
}

}  // namespace corlune
