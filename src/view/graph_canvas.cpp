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

#include "view/graph_access.h"

namespace corlune {

namespace {

constexpr double kLeastStepWidth = 18;  // pixels a step on average, before the sequence scrolls
constexpr double kMostZoom = 4000;
constexpr int kKeyScroll = 40;  // pixels
constexpr int kLeastAreas = 2;  // that the canvas has room for when it can choose
constexpr int kPreferredWidth = 640;

}  // namespace

GraphCanvas::GraphCanvas(GraphTexts texts, QWidget* parent)
    : QAbstractScrollArea(parent), texts_(std::move(texts)) {
  InstallGraphAccess();
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
  if (held_) return heldLength_;
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
  if (held_ && picture.Areas.size() == picture_.Areas.size()) {
    for (std::size_t i = 0; i < picture.Areas.size(); ++i) {
      picture.Areas[i].Graph.Range = picture_.Areas[i].Graph.Range;
    }
  }
  const bool sameAxis = picture.Axis == picture_.Axis;
  const double start = sameAxis ? Window().Start : 0;
  picture_ = std::move(picture);
  if (!sameAxis) zoomed_ = false;
  if (!IsStep(step_)) step_.reset();
  if (!IsStep(selected_)) selected_.reset();
  Arrange(start);
}

void GraphCanvas::HoldScale(bool on) {
  if (on == held_) return;
  const double start = Window().Start;
  heldLength_ = AxisLength();
  held_ = on;
  if (!on) Arrange(start);
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
  const double left = std::max(layout_.XOf(span.Start, window), layout_.PlotLeft);
  const double right = std::min(layout_.XOf(span.End, window), layout_.PlotRight());
  if (right < left) return {};
  const int x = static_cast<int>(std::floor(left));
  const int end = static_cast<int>(std::ceil(right));
  const int top = static_cast<int>(layout_.Ruler.top());
  return {x, top, std::max(end - x, 1), static_cast<int>(layout_.Middle.bottom()) - top};
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
  PaintLabel(painter);
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

std::optional<std::size_t> GraphCanvas::AreaAt(const QPointF& place) const {
  for (std::size_t i = 0; i < layout_.Areas.size(); ++i) {
    if (layout_.Areas[i].Plot.intersected(layout_.Middle).contains(place)) return i;
  }
  return std::nullopt;
}

std::optional<int> GraphCanvas::ColumnAt(const QPointF& place) const {
  if (layout_.Areas.empty() || place.x() < layout_.PlotLeft || place.x() > layout_.PlotRight() ||
      place.y() < layout_.Ruler.top() || place.y() > layout_.Middle.bottom()) {
    return std::nullopt;
  }
  return StepAt(picture_.Spans, Scale(0).PositionAt(place.x()));
}

QString GraphCanvas::TipAt(const QPoint& place) const {
  const auto area = AreaAt(place);
  const auto step = ColumnAt(place);
  if (area && step) return QString::fromStdString(texts_.tip(*area, *step));
  for (const LoopPicture& loop : picture_.Loops) {
    if (!LoopRect(picture_, layout_, Window(), loop.Bracket).contains(place)) continue;
    return QString::fromStdString(texts_.loopTip(loop.Bracket));
  }
  return {};
}

QString GraphCanvas::StepName(int step) const {
  return QString::fromStdString(texts_.stepName(picture_.StepLabels[static_cast<std::size_t>(step)]));
}

QString GraphCanvas::StepText(int step) const {
  std::string text;
  for (std::size_t area = 0; area < picture_.Areas.size(); ++area) {
    const std::string tip = texts_.tip(area, step);
    const std::size_t values = std::min(tip.find('\n'), tip.size());
    if (area == 0) text = tip.substr(0, values);
    text += "\n" + picture_.Areas[area].Title + tip.substr(values);
  }
  return QString::fromStdString(text);
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
