#include "ui/elided_label.h"

#include <QPainter>
#include <QStyle>

namespace corlune {

QSize ElidedLabel::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * 4, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  drawFrame(&painter);
  const QRect area = contentsRect().adjusted(margin(), 0, -margin(), 0);
  // Texts of several lines stand on one.
  const QString line = text().simplified();
  style()->drawItemText(&painter, area, static_cast<int>(alignment()), palette(), isEnabled(),
                        fontMetrics().elidedText(line, Qt::ElideRight, area.width()), QPalette::WindowText);
}

}  // namespace corlune
