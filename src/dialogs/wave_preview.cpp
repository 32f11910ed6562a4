#include "dialogs/wave_preview.h"

#include <cmath>
#include <utility>

#include <QPainter>

#include "view/graph_layout.h"
#include "view/graph_painter.h"

namespace corlune {

namespace {

constexpr int kPlotLines = 7;      // lines of text in the height of the widget
constexpr int kWidthInSigns = 40;  // in digits
constexpr double kFill = 0.94;     // of the plot's height, for full scale
constexpr double kLine = 1.4;      // least height of a stroke, pixels

}  // namespace

WavePreview::WavePreview(const QString& name, QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("WavePreview"));
  setAccessibleName(name);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void WavePreview::Show(std::shared_ptr<const WaveFile> file, const QString& text) {
  if (file == file_ && text == text_) return;
  file_ = std::move(file);
  text_ = text;
  columns_.clear();
  setAccessibleDescription(text_);
  update();
}

QSize WavePreview::sizeHint() const {
  return {fontMetrics().horizontalAdvance(QLatin1Char('0')) * kWidthInSigns,
          static_cast<int>(std::ceil(LineHeight(font()) * kPlotLines))};
}

QSize WavePreview::minimumSizeHint() const {
  return {sizeHint().width() / 2, sizeHint().height()};
}

QRect WavePreview::Plot() const {
  const int line = static_cast<int>(std::ceil(LineHeight(font())));
  return rect().adjusted(0, file_ ? line : 0, -1, -1);
}

void WavePreview::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const GraphColors colors(palette());
  const QRect plot = Plot();
  painter.fillRect(plot, colors.Background);
  painter.setPen(colors.Text);
  if (file_) {
    const QRect line(0, 0, width(), plot.top());
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(text_, Qt::ElideRight, line.width()));
    PaintWave(painter, plot);
  } else {
    const int pad = static_cast<int>(kGraphPad);
    painter.drawText(plot.adjusted(pad, pad, -pad, -pad), Qt::AlignCenter | Qt::TextWordWrap, text_);
  }
  painter.setPen(colors.Faint);
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(plot);
}

// A stroke for every pixel of the screen, from the lowest to the highest point under it.
void WavePreview::PaintWave(QPainter& painter, const QRect& plot) {
  const GraphColors colors(palette());
  const double ratio = devicePixelRatioF();
  const auto count = static_cast<std::size_t>(std::max(1L, std::lround(plot.width() * ratio)));
  if (columns_.size() != count) {
    columns_.clear();
    columns_.reserve(count);
    const auto all = static_cast<double>(count);
    for (std::size_t i = 0; i < count; ++i) {
      columns_.push_back(
          file_->Wave->Between(static_cast<double>(i) / all, static_cast<double>(i + 1) / all));
    }
  }
  const double middle = plot.top() + plot.height() / 2.0;
  const double scale = plot.height() / 2.0 * kFill;
  painter.fillRect(QRectF(plot.left(), middle, plot.width(), 1), colors.Grid);
  const QColor color = colors.Channel(0);
  for (std::size_t i = 0; i < count; ++i) {
    const double top = middle - columns_[i].High * scale;
    const double height = std::max((columns_[i].High - columns_[i].Low) * scale, kLine);
    painter.fillRect(QRectF(plot.left() + static_cast<double>(i) / ratio, top, 1 / ratio, height), color);
  }
}

}  // namespace corlune
