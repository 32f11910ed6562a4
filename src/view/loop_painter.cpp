#include "view/loop_painter.h"

#include <QFontMetricsF>

namespace corlune {

void PaintLoops(QPainter& painter, const GraphPicture& picture, const GraphLayout& layout,
                const AxisWindow& window, const GraphColors& colors, const QFont& font) {
  if (picture.Loops.empty()) return;
  const QFontMetricsF metrics(font);
  const bool texts = layout.LoopRow >= metrics.ascent();
  painter.save();
  painter.setFont(font);
  for (const LoopPicture& loop : picture.Loops) {
    const QRectF box = LoopRect(picture, layout, window, loop.Bracket);
    if (box.isEmpty()) continue;
    const QColor fill = colors.Meaning(loop.Fill);
    // The legs of the bracket reach down to the steps' edge, a gap parts it from its neighbours.
    const QRectF bar = box.adjusted(1, 1, -1, -2);
    painter.fillRect(bar, fill);
    const QColor edge = colors.TextOn(fill);
    painter.fillRect(QRectF(bar.left(), bar.top(), bar.width(), 1), edge);
    painter.fillRect(QRectF(bar.left(), bar.top(), 1, box.height() - 1), edge);
    painter.fillRect(QRectF(bar.right() - 1, bar.top(), 1, box.height() - 1), edge);
    const QString text = QString::fromStdString(loop.Text);
    if (!texts || metrics.horizontalAdvance(text) + kGraphPad > bar.width()) continue;
    painter.setPen(edge);
    painter.drawText(bar, Qt::AlignCenter | Qt::TextDontClip, text);
  }
  painter.restore();
}

}  // namespace corlune
