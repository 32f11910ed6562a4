#include "ui/app_icon.h"

#include <QFile>
#include <QIcon>
#include <QWidget>

namespace corlune {

void SetAppIcon(QWidget* window, const QString& name, bool alsoOwner) {
  QIcon icon;
  for (const int size : {16, 32, 48, 64, 256}) {
    const QString file = QStringLiteral(":/%1/%2.png").arg(name).arg(size);
    if (QFile::exists(file)) icon.addFile(file, QSize(size, size));
  }
  if (icon.isNull()) return;
  window->setWindowIcon(icon);
  if (!alsoOwner) return;
  QWidget* owner = window->window();
  while (owner->parentWidget()) owner = owner->parentWidget()->window();
  owner->setWindowIcon(icon);
}

}  // namespace corlune
