#include "view/graph_canvas.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QScrollBar>
#include <QTextDocument>
#include <QToolTip>
#include <QWheelEvent>

namespace corlune {

namespace {

constexpr double kLeastStepWidth = 18;  // pixels a step on average, before the sequence scrolls
constexpr double kMostZoom = 4000;
constexpr int kMarkerHalf = 6;  // pixels to both sides of the marker's line
constexpr double kMarkerWidth = 2;
constexpr double kLeadIn = 0.1;  // of the plot, left of a step that is scrolled into view
constexpr int kKeyScroll = 40;   // pixels
constexpr int kLeastAreas = 2;   // that the canvas has room for when it can choose
constexpr int kPreferredWidth = 640;

}  // namespace

GraphCanvas::GraphCanvas(Tip tip, QWidget* parent) : QAbstractScrollArea(parent), tip_(std::move(tip)) {
  setFocusPolicy(Qt::StrongFocus);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
  horizontalScrollBar()->setSingleStep(kKeyScroll);
  verticalScrollBar()->setSingleStep(kKeyScroll);
}

QSize GraphCanvas::sizeHint() const {
  return {kPreferredWidth, ComfortableHeight(kLeastAreas, font())};
}

double GraphCanvas::AxisLength() const {
  // A sequence of steps without a time still has an axis.
  const double length = picture_.Spans.empty() ? 0 : picture_.Spans.back().End;
  return length > 0 ? length : 1;
}

double GraphCanvas::DefaultZoom() const {
  const double wanted = static_cast<double>(picture_.Spans.size()) * kLeastStepWidth / layout_.PlotWidth;
  return std::clamp(wanted, 1.0, kMostZoom);
}

AxisWindow GraphCanvas::Window() const {
  const double perPixel = AxisLength() / (layout_.PlotWidth * zoom_);
  const double start = horizontalScrollBar()->value() * perPixel;
  return {start, start + layout_.PlotWidth * perPixel};
}

PlotScale GraphCanvas::Scale(std::size_t area) const {
  return ScaleOf(layout_, Window(), area, picture_);
}

int GraphCanvas::TopRow() const {
  const auto step = StepAt(picture_.Spans, Window().Start);
  return step ? *step + 1 : 0;
}

void GraphCanvas::ShowPicture(GraphPicture picture) {
  if (picture == picture_) return;
  const bool sameAxis = picture.Axis == picture_.Axis;
  const double start = sameAxis ? Window().Start : 0;
  picture_ = std::move(picture);
  if (!sameAxis) zoomed_ = false;
  if (step_ && static_cast<std::size_t>(*step_) >= picture_.Spans.size()) step_.reset();
  Arrange(start);
}

void GraphCanvas::Arrange(double start) {
  // Setting a scroll bar's range can move it, which would arrive here again.
  if (arranging_) return;
  arranging_ = true;
  layout_ = ComputeLayout(picture_, viewport()->size(), font(), 0);
  const int over = static_cast<int>(std::ceil(layout_.ContentHeight - layout_.Middle.height()));
  verticalScrollBar()->setRange(0, std::max(over, 0));
  verticalScrollBar()->setPageStep(static_cast<int>(layout_.Middle.height()));
  layout_ = ComputeLayout(picture_, viewport()->size(), font(), verticalScrollBar()->value());
  if (!zoomed_) zoom_ = DefaultZoom();
  const double plot = layout_.PlotWidth;
  horizontalScrollBar()->setRange(0, static_cast<int>(std::ceil(plot * (zoom_ - 1))));
  horizontalScrollBar()->setPageStep(static_cast<int>(plot));
  arranging_ = false;
  ScrollTo(start);
  Redraw();
}

void GraphCanvas::ScrollTo(double start) {
  const double pixels = start / AxisLength() * layout_.PlotWidth * zoom_;
  horizontalScrollBar()->setValue(static_cast<int>(std::lround(std::min(pixels, 1e9))));
}

void GraphCanvas::Redraw() {
  layerValid_ = false;
  viewport()->update();
}

void GraphCanvas::ZoomBy(double factor, double anchor) {
  const double zoom = std::clamp(zoom_ * factor, 1.0, kMostZoom);
  if (zoom == zoom_) return;
  const AxisWindow window = Window();
  const double part = std::clamp((anchor - layout_.PlotLeft) / layout_.PlotWidth, 0.0, 1.0);
  const double fixed = window.Start + (window.End - window.Start) * part;
  zoom_ = zoom;
  zoomed_ = true;
  Arrange(fixed - AxisLength() / zoom_ * part);
}

void GraphCanvas::ShowAll() {
  zoom_ = 1;
  zoomed_ = true;
  Arrange(0);
}

QRect GraphCanvas::StepRect(int step) const {
  const StepSpan& span = picture_.Spans[static_cast<std::size_t>(step)];
  const AxisWindow window = Window();
  const double perUnit = layout_.PlotWidth / (window.End - window.Start);
  const double left = std::max(layout_.PlotLeft + (span.Start - window.Start) * perUnit, layout_.PlotLeft);
  const double right =
      std::min(layout_.PlotLeft + (span.End - window.Start) * perUnit, layout_.PlotLeft + layout_.PlotWidth);
  if (right < left) return {};
  const int x = static_cast<int>(std::floor(left));
  const int end = static_cast<int>(std::ceil(right));
  return {x, 0, std::max(end - x, 1), static_cast<int>(layout_.Middle.bottom())};
}

void GraphCanvas::ShowCurrentStep(std::optional<int> step, const QColor& color) {
  if (step && (*step < 0 || static_cast<std::size_t>(*step) >= picture_.Spans.size())) step.reset();
  if (step == step_ && color == stepColor_) return;
  if (step_) viewport()->update(StepRect(*step_));
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
  viewport()->update(StepRect(*step_));
}

QRect GraphCanvas::MarkerStrip(double position) const {
  const AxisWindow window = Window();
  const double part = (position - window.Start) / (window.End - window.Start);
  if (part < -1 || part > 2) return {};
  const int x = static_cast<int>(std::lround(layout_.PlotLeft + part * layout_.PlotWidth));
  return {x - kMarkerHalf, 0, 2 * kMarkerHalf + 1, static_cast<int>(layout_.Middle.bottom())};
}

void GraphCanvas::ShowMarker(std::optional<double> position, const QColor& color) {
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

void GraphCanvas::PaintMoving(QPainter& painter) {
  const QRectF moving(layout_.PlotLeft - kMarkerHalf, 0, layout_.PlotWidth + 2 * kMarkerHalf + 1,
                      layout_.Middle.bottom());
  painter.setClipRect(moving);
  if (step_) {
    QColor tint = stepColor_;
    tint.setAlpha(90);
    const QRectF step = StepRect(*step_);
    painter.fillRect(step.intersected(layout_.Ruler), tint);
    painter.setClipRect(layout_.Middle, Qt::IntersectClip);
    for (const AreaPlace& area : layout_.Areas) painter.fillRect(step.intersected(area.Plot), tint);
  }
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
  painter.setBrush(markerColor_);
  const double half = kMarkerHalf - 1;
  painter.drawPolygon(QPolygonF({{x - half, tip - 2 * half}, {x + half, tip - 2 * half}, {x, tip}}));
}

void GraphCanvas::paintEvent(QPaintEvent* event) {
  const qreal ratio = viewport()->devicePixelRatioF();
  const QSize pixels = (QSizeF(viewport()->size()) * ratio).toSize();
  if (!layerValid_ || layer_.size() != pixels || layer_.devicePixelRatio() != ratio) {
    if (layer_.size() != pixels) layer_ = QPixmap(pixels);
    layer_.setDevicePixelRatio(ratio);
    QPainter painter(&layer_);
    PaintPicture(painter, picture_, layout_, Window(), GraphColors(palette()), font());
    layerValid_ = true;
  }
  QPainter painter(viewport());
  for (const QRect& part : event->region()) {
    painter.drawPixmap(QRectF(part), layer_,
                       QRectF(QPointF(part.topLeft()) * ratio, QSizeF(part.size()) * ratio));
  }
  PaintMoving(painter);
}

void GraphCanvas::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  Arrange(Window().Start);
}

void GraphCanvas::scrollContentsBy(int, int dy) {
  if (arranging_) return;
  if (dy != 0) {
    layout_ = ComputeLayout(picture_, viewport()->size(), font(), verticalScrollBar()->value());
  }
  Redraw();
}

void GraphCanvas::changeEvent(QEvent* event) {
  QAbstractScrollArea::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange) Arrange(Window().Start);
}

void GraphCanvas::keyPressEvent(QKeyEvent* event) {
  QScrollBar* bar = horizontalScrollBar();
  switch (event->key()) {
    case Qt::Key_Left:
      bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
      break;
    case Qt::Key_Right:
      bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
      break;
    case Qt::Key_PageUp:
      bar->triggerAction(QAbstractSlider::SliderPageStepSub);
      break;
    case Qt::Key_PageDown:
      bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
      break;
    case Qt::Key_Home:
      bar->triggerAction(QAbstractSlider::SliderToMinimum);
      break;
    case Qt::Key_End:
      bar->triggerAction(QAbstractSlider::SliderToMaximum);
      break;
    default:
      QAbstractScrollArea::keyPressEvent(event);  // up and down
      return;
  }
  event->accept();
}

void GraphCanvas::wheelEvent(QWheelEvent* event) {
  constexpr double kNotch = 120;
  const QPoint turned = event->angleDelta();
  if (event->modifiers() & Qt::ControlModifier) {
    if (turned.y() != 0) ZoomBy(std::pow(kZoomStep, turned.y() / kNotch), event->position().x());
    event->accept();
    return;
  }
  // With nothing to scroll up and down the wheel moves along the time axis.
  if (turned.x() == 0 && verticalScrollBar()->maximum() == 0) {
    QWheelEvent sideways(event->position(), event->globalPosition(), event->pixelDelta().transposed(),
                         turned.transposed(), event->buttons(), event->modifiers(), event->phase(),
                         event->inverted());
    QAbstractScrollArea::wheelEvent(&sideways);
    event->accept();
    return;
  }
  QAbstractScrollArea::wheelEvent(event);
}

QString GraphCanvas::TipAt(const QPoint& place) const {
  for (std::size_t i = 0; i < layout_.Areas.size(); ++i) {
    const QRectF plot = layout_.Areas[i].Plot.intersected(layout_.Middle);
    if (!plot.contains(place)) continue;
    const auto step = StepAt(picture_.Spans, Scale(i).PositionAt(place.x()));
    return step ? QString::fromStdString(tip_(i, *step)) : QString();
  }
  return {};
}

bool GraphCanvas::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QAbstractScrollArea::viewportEvent(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  const QString text = TipAt(help->pos());
  if (text.isEmpty()) {
    QToolTip::hideText();
  } else {
    // Names and units come from files: never taken as markup.
    QToolTip::showText(help->globalPos(), Qt::convertFromPlainText(text), viewport());
  }
  return true;
}

}  // namespace corlune
