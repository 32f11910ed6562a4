// GraphCanvas: what lies over the drawing: the selected step, the step under way, the run marker, a label.
#include <algorithm>
#include <cmath>

#include <QPainter>
#include <QScrollBar>

#include "view/graph_access.h"
#include "view/graph_canvas.h"
#include "view/theme.h"
#include "view/to_qcolor.h"

namespace corlune {

namespace {

constexpr int kMarkerHalf = 6;  // pixels to both sides of the marker's line
constexpr double kMarkerWidth = 2;
constexpr int kTint = 100;       // of 255, over the plots of the step under way
constexpr double kLeadIn = 0.1;  // of the plot, left of a step that is scrolled into view

}  // namespace

// The box of a marked step's number, as wide as the number needs.
QRect GraphCanvas::NumberRect(int step) const {
  const QRect column = StepRect(step);
  if (column.isEmpty()) return {};
  const QString& number = QString::fromStdString(picture_.StepLabels[static_cast<std::size_t>(step)]);
  const int width =
      std::max(column.width(), fontMetrics().horizontalAdvance(number) + 2 * static_cast<int>(kGraphPad));
  QRect box(0, column.top(), width, static_cast<int>(layout_.Ruler.height() - kMarkerHead));
  box.moveCenter({column.center().x(), box.center().y()});
  box.moveLeft(std::max(std::min(box.left(), viewport()->width() - width), 0));
  return box;
}

void GraphCanvas::UpdateColumn(std::optional<int> step) {
  if (!step) return;
  const QRect column = StepRect(*step);
  if (!column.isEmpty()) viewport()->update(column.united(NumberRect(*step)).adjusted(-2, -2, 2, 2));
}

void GraphCanvas::ScrollToStep(int step) {
  const StepSpan& span = picture_.Spans[static_cast<std::size_t>(step)];
  const AxisWindow window = Window();
  const double length = window.End - window.Start;
  const double slack = length * 1e-6;
  if (span.Start >= window.Start - slack && span.End <= window.End + slack) return;
  ScrollTo(span.Start - length * kLeadIn);
}

void GraphCanvas::ShowSelectedStep(std::optional<int> step, Scroll scroll) {
  if (!IsStep(step)) step.reset();
  if (step == selected_) return;
  UpdateColumn(selected_);
  selected_ = step;
  if (selected_ && scroll == Scroll::IntoView) ScrollToStep(*selected_);
  UpdateColumn(selected_);
  if (selected_) ReportSelectedStep(*this, *selected_);
}

void GraphCanvas::ShowLabel(const QString& text, const QPoint& place) {
  constexpr int kAway = 14;  // pixels from the pointer
  if (!labelBox_.isEmpty()) viewport()->update(labelBox_.adjusted(-1, -1, 1, 1));
  label_ = text;
  labelBox_ = {};
  if (text.isEmpty()) return;
  const int pad = static_cast<int>(kGraphPad);
  const QRect room(0, 0, std::max(viewport()->width() - 4 * pad, 1), viewport()->height());
  labelBox_ = fontMetrics()
                  .boundingRect(room, Qt::AlignLeft | Qt::TextWordWrap, label_)
                  .adjusted(-pad, -pad, pad, pad);
  labelBox_.moveBottomLeft(place + QPoint(kAway, -kAway));
  const QRect view = viewport()->rect();
  labelBox_.moveLeft(std::max(std::min(labelBox_.left(), view.right() - labelBox_.width()), 1));
  if (labelBox_.top() < 0) labelBox_.moveTop(place.y() + kAway);
  // The pointer may be outside; the value stays in sight.
  labelBox_.moveTop(std::max(std::min(labelBox_.top(), view.bottom() - labelBox_.height()), 1));
  viewport()->update(labelBox_.adjusted(-1, -1, 1, 1));
}

void GraphCanvas::ShowCurrentStep(std::optional<int> step, Color color) {
  if (!IsStep(step)) step.reset();
  if (step == step_ && color == stepColor_) return;
  UpdateColumn(step_);
  const bool moved = step != step_;
  step_ = step;
  stepColor_ = color;
  if (!step_) return;
  const StepSpan& span = picture_.Spans[static_cast<std::size_t>(*step_)];
  const AxisWindow window = Window();
  const double length = window.End - window.Start;
  if (moved && (span.Start < window.Start || span.Start > window.End - length * kLeadIn)) {
    ScrollTo(span.Start - length * kLeadIn);
  }
  UpdateColumn(step_);
}

QRect GraphCanvas::MarkerStrip(double position) const {
  const AxisWindow window = Window();
  const double part = (position - window.Start) / (window.End - window.Start);
  if (part < -1 || part > 2) return {};
  const int x = static_cast<int>(std::lround(layout_.PlotLeft + part * layout_.PlotWidth));
  return {x - kMarkerHalf, 0, 2 * kMarkerHalf + 1, static_cast<int>(layout_.Middle.bottom())};
}

void GraphCanvas::ShowMarker(std::optional<double> position, Color color) {
  if (position == marker_ && color == markerColor_) return;
  const AxisWindow window = Window();
  const bool wasInView = marker_ && *marker_ >= window.Start && *marker_ <= window.End;
  const QRect old = marker_ ? MarkerStrip(*marker_) : QRect();
  marker_ = position;
  markerColor_ = color;
  if (marker_ && wasInView && *marker_ > window.End) {
    ScrollTo(*marker_ - (window.End - window.Start) * kLeadIn);
    return;
  }
  const QRect strip = marker_ ? MarkerStrip(*marker_) : QRect();
  if (strip == old) return;
  if (!old.isEmpty()) viewport()->update(old);
  if (!strip.isEmpty()) viewport()->update(strip);
}

void GraphCanvas::PaintNumber(QPainter& painter, int step, const QColor& fill, const QColor& text) const {
  const QRect number = NumberRect(step);
  painter.fillRect(number, fill);
  painter.setPen(text);
  painter.setFont(font());
  painter.drawText(number, Qt::AlignCenter,
                   QString::fromStdString(picture_.StepLabels[static_cast<std::size_t>(step)]));
}

// Unlike the step under way, which is tinted: a number like a pressed key, and lines down both sides.
void GraphCanvas::PaintSelection(QPainter& painter) {
  if (!selected_) return;
  const QRect column = StepRect(*selected_);
  if (column.isEmpty()) return;
  const QColor color = palette().color(QPalette::Highlight);
  painter.setRenderHint(QPainter::Antialiasing, false);
  PaintNumber(painter, *selected_, color, ToQColor(TextIn(ThemeOf(palette()), ToColor(color))));
  painter.setClipRect(layout_.Middle, Qt::IntersectClip);
  QColor tint = color;
  tint.setAlpha(24);
  for (const AreaPlace& area : layout_.Areas) {
    const QRectF box = QRectF(column).intersected(area.Plot);
    painter.fillRect(box, tint);
    painter.fillRect(QRectF(box.left(), box.top(), 1, box.height()), color);
    painter.fillRect(QRectF(box.right() - 1, box.top(), 1, box.height()), color);
  }
}

void GraphCanvas::PaintLabel(QPainter& painter) {
  if (label_.isEmpty()) return;
  painter.setClipRect(labelBox_.adjusted(-1, -1, 1, 1));
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.fillRect(labelBox_, palette().color(QPalette::ToolTipBase));
  painter.setPen(palette().color(QPalette::ToolTipText));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(labelBox_.adjusted(0, 0, -1, -1));
  const int pad = static_cast<int>(kGraphPad);
  painter.setFont(font());
  painter.drawText(labelBox_.adjusted(pad, pad, -pad, -pad), Qt::AlignLeft | Qt::TextWordWrap, label_);
}

void GraphCanvas::PaintMoving(QPainter& painter) {
  const QRectF moving(layout_.PlotLeft - kMarkerHalf, 0, layout_.PlotWidth + 2 * kMarkerHalf + 1,
                      layout_.Middle.bottom());
  painter.setClipRect(moving);
  if (step_) {
    const GraphColors colors(palette());
    const QColor fill = colors.Meaning(stepColor_);
    QColor tint = fill;
    tint.setAlpha(kTint);
    const QRectF step = StepRect(*step_);
    painter.fillRect(step.intersected(layout_.Ruler), tint);
    if (!step.isEmpty()) PaintNumber(painter, *step_, fill, colors.TextOn(fill));
    painter.setClipRect(layout_.Middle, Qt::IntersectClip);
    for (const AreaPlace& area : layout_.Areas) painter.fillRect(step.intersected(area.Plot), tint);
  }
  painter.setClipRect(viewport()->rect());
  PaintSelection(painter);
  if (!marker_) return;
  const QRect strip = MarkerStrip(*marker_);
  if (strip.isEmpty()) return;
  painter.setClipRect(moving);
  const double x = strip.x() + kMarkerHalf + 0.5;
  const double tip = layout_.Ruler.bottom();
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.fillRect(QRectF(x - kMarkerWidth / 2, tip, kMarkerWidth, layout_.Middle.height()),
                   palette().color(QPalette::WindowText));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette().color(QPalette::WindowText), 1));
  painter.setBrush(GraphColors(palette()).Line(markerColor_));
  const double half = kMarkerHalf - 1;
  painter.drawPolygon(QPolygonF({{x - half, tip - 2 * half}, {x + half, tip - 2 * half}, {x, tip}}));
}

}  // namespace corlune
