#include "ui/step_number_painter.h"

#include <algorithm>

#include <QPainterPath>

#include "sequence/loops.h"

namespace corlune {

namespace {

// Pixels.
constexpr int kEdge = 2;        // left of the outermost bracket and right of the text
constexpr int kLaneWidth = 5;   // of one bracket
constexpr int kNarrowLane = 4;  // of one of the most that there are
constexpr int kLineWidth = 2;
constexpr int kGap = 2;           // between brackets, mark, number and count
constexpr int kCountSize = 80;    // percent of the number's font
constexpr int kCountNarrow = 80;  // percent: the least width of the count

// A triangle, because not every font has one.
void PaintTriangle(QPainter& painter, const QPointF& tip, double side, double across, const QColor& color) {
  QPainterPath mark(tip);
  mark.lineTo(tip.x() - across, tip.y() - side / 2);
  mark.lineTo(tip.x() - across, tip.y() + side / 2);
  mark.closeSubpath();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(mark, color);
  painter.setRenderHint(QPainter::Antialiasing, false);
}

// An arrow where the jump goes to, a foot where it comes from.
void PaintPart(QPainter& painter, const QRect& cell, const LoopPart& part, int lanes, int width,
               const QColor& color) {
  // The inner one of two brackets that begin together begins below the other.
  const int inset = 2 + 2 * (kLoopLanes - part.Lane);
  const int left = cell.left() + kEdge + (lanes - 1 - part.Lane) * width;
  const int right = cell.left() + kEdge + lanes * width;
  const int top = part.Begins ? cell.top() + inset : cell.top();
  const int bottom = part.Ends ? cell.bottom() - inset : cell.bottom();
  painter.fillRect(QRect(QPoint(left, top), QPoint(left + kLineWidth - 1, bottom)), color);
  if (part.Ends) painter.fillRect(QRect(left, bottom - 1, right - left, kLineWidth), color);
  if (!part.Begins) return;
  painter.fillRect(QRect(left, top, right - left, kLineWidth), color);
  PaintTriangle(painter, QPointF(right + kGap, top + kLineWidth / 2.0), 6, 4, color);
}

// "×5" of the loop that ends here.
QString CountOf(const std::vector<LoopPart>& loops) {
  const auto last = std::find_if(loops.begin(), loops.end(), [](const LoopPart& part) { return part.Ends; });
  if (last == loops.end()) return {};
  return QString::fromStdString(LoopSign(last->Count));
}

QFont Small(QFont font) {
  font.setBold(false);
  if (font.pointSizeF() > 0) font.setPointSizeF(font.pointSizeF() * kCountSize / 100);
  return font;
}

QFont Narrow(QFont font) {
  font.setStretch(kCountNarrow);
  return font;
}

}  // namespace

void PaintStepNumber(QPainter& painter, const QRect& cell, const StepNumberCell& shown, CellTexts& texts) {
  const int number = texts.Width(painter, shown.Number);
  const int lane = shown.Lanes < kLoopLanes ? kLaneWidth : kNarrowLane;
  for (const LoopPart& part : shown.Loops) {
    PaintPart(painter, cell, part, shown.Lanes, lane, part.Count == 0 ? shown.EndlessColor : shown.LoopColor);
  }
  QRect room = cell.adjusted(kEdge + shown.Lanes * lane + kGap, 0, -kEdge, 0);

  const int side = room.height() * 2 / 5;
  if (shown.Running && room.width() >= number + side) {
    PaintTriangle(painter, QPointF(room.left() + side * 0.85, room.center().y() + 0.5), side, side * 0.85,
                  shown.Text);
    room.setLeft(room.left() + side);
  }
  painter.setPen(shown.Text);
  if (const QString count = CountOf(shown.Loops); !count.isEmpty()) {
    const QFont large = painter.font();
    painter.setFont(Small(large));
    int width = texts.Width(painter, count) + kGap;
    if (number + width > room.width()) {
      painter.setFont(Narrow(painter.font()));
      width = texts.Width(painter, count) + kGap;
    }
    const bool fits = number + width <= room.width();
    if (fits) texts.Draw(painter, room, Qt::AlignRight, count);
    painter.setFont(large);
    if (fits) room.setRight(room.right() - width);
  }
  texts.Draw(painter, room, Qt::AlignHCenter, shown.Number);
}

}  // namespace corlune
