#include "view/signal_painter.h"

#include <algorithm>
#include <cmath>

#include <QFontMetricsF>
#include <QPolygonF>

#include "view/graph_layout.h"
#include "view/graph_painter.h"

namespace corlune {

namespace {

constexpr double kLineWidth = 1.6;
constexpr double kRightMargin = 10;
constexpr double kPaneGap = 36;        // with room for the first time of the second pane
constexpr double kPartOfWidth = 0.68;  // of the pane with a part of the step, beside the whole one
constexpr int kLabelDigits = 7;        // of the widest value beside an axis

QString Text(const std::string& text) {
  return QString::fromStdString(text);
}

class StripPainter {
 public:
  StripPainter(QPainter& painter, const SignalSubject& subject, const SignalPicture& picture,
               const SignalLayout& layout, const GraphColors& colors, const QFont& font)
      : painter_(painter),
        subject_(subject),
        picture_(picture),
        layout_(layout),
        colors_(colors),
        font_(font),
        metrics_(font),
        ratio_(painter.device()->devicePixelRatioF()) {}

  void Paint() {
    for (std::size_t channel = 0; channel < layout_.Channels.size(); ++channel) {
      PaintLegend(channel);
      for (std::size_t pane = 0; pane < layout_.Panes.size(); ++pane) PaintPlot(channel, pane);
      PaintValueAxis(channel);
    }
    for (std::size_t pane = 0; pane < layout_.Panes.size(); ++pane) PaintTimeAxis(pane);
  }

 private:
  QColor ColorOf(std::size_t channel) const { return colors_.Channel(static_cast<int>(channel)); }

  PlotScale ScaleOf(std::size_t channel, std::size_t pane) const {
    const QRectF plot = layout_.Plot(channel, pane);
    const AxisWindow& window = picture_.Panes[pane].Window;
    return {window.Start, window.End,   picture_.Ranges[channel], plot.left(), plot.top(),
            plot.width(), plot.height()};
  }

  AxisTicks ValueTicks(std::size_t channel) const {
    const double height = layout_.Channels[channel].Bottom - layout_.Channels[channel].Top;
    return NiceTicks(picture_.Ranges[channel], std::max(3, static_cast<int>(height / LineHeight(font_))));
  }

  // In units of the pane's own time axis.
  AxisTicks TimeTicks(std::size_t pane) const {
    constexpr double kGap = 12;
    constexpr double kLeastDistance = 30;
    const SignalPane& drawn = picture_.Panes[pane];
    const double width = layout_.Panes[pane].Right - layout_.Panes[pane].Left;
    const ValueRange range{drawn.Window.Start * drawn.UnitsPerSecond,
                           drawn.Window.End * drawn.UnitsPerSecond};
    const TickRoom room{width / (range.High - range.Low), kGap,
                        [this](const std::string& text) { return metrics_.horizontalAdvance(Text(text)); }};
    return FittingTicks(range, std::max(2, static_cast<int>(width / kLeastDistance)), room);
  }

  void PaintLegend(std::size_t channel) {
    QRectF rest = layout_.Channels[channel].Legend;
    const auto put = [&](const QString& text, const QColor& color, bool bold) {
      QFont font = font_;
      font.setBold(bold);
      const QFontMetricsF metrics(font);
      const QString shown = metrics.elidedText(text, Qt::ElideRight, rest.width());
      painter_.setFont(font);
      painter_.setPen(color);
      painter_.drawText(rest, Qt::AlignLeft | Qt::AlignVCenter, shown);
      rest.setLeft(std::min(rest.left() + metrics.horizontalAdvance(shown) + 3 * kGraphPad, rest.right()));
    };
    if (channel == 0) put(Text(subject_.StepText), colors_.Text, true);
    const ChannelSignal& signal = subject_.Channels[channel];
    const QRectF sample(rest.left(), rest.center().y() - 1, 3 * kGraphPad, 3);
    painter_.fillRect(sample, ColorOf(channel));
    rest.setLeft(sample.right() + kGraphPad);
    put(Text(signal.Caption), colors_.Text, true);
    put(Text(signal.Legend), colors_.Text, false);
    painter_.setFont(font_);
  }

  void PaintPlot(std::size_t channel, std::size_t pane) {
    const QRectF plot = layout_.Plot(channel, pane);
    painter_.fillRect(plot, colors_.Background);
    PaintGrid(channel, pane);
    const std::string& note = picture_.Notes[channel];
    if (!note.empty()) {
      // Once, over the larger pane.
      painter_.setPen(colors_.Text);
      if (pane == 0) painter_.drawText(plot, Qt::AlignCenter | Qt::TextWordWrap, Text(note));
    } else {
      painter_.save();
      painter_.setClipRect(plot.adjusted(0, -1, 0, 1));
      if (pane == 1) PaintPart(plot);
      const SignalTrace& trace = picture_.Panes[pane].Traces[channel];
      PaintColumns(trace, ScaleOf(channel, pane), channel);
      PaintLines(trace, ScaleOf(channel, pane), channel);
      painter_.restore();
    }
    painter_.setPen(QPen(colors_.Faint, 1));
    painter_.setBrush(Qt::NoBrush);
    painter_.drawRect(plot);
  }

  // The first pane's place in the whole step.
  void PaintPart(const QRectF& plot) {
    const AxisWindow& part = picture_.Panes[0].Window;
    const double perSecond = plot.width() / subject_.Length;
    QColor color = colors_.Text;
    constexpr int kFaint = 40;
    color.setAlpha(kFaint);
    const double width = std::max((part.End - part.Start) * perSecond, 2.0);
    painter_.fillRect(QRectF(plot.left() + part.Start * perSecond, plot.top(), width, plot.height()), color);
  }

  void PaintGrid(std::size_t channel, std::size_t pane) {
    const QRectF plot = layout_.Plot(channel, pane);
    const PlotScale scale = ScaleOf(channel, pane);
    for (const double tick : ValueTicks(channel).Values) {
      const double y = scale.YOf(tick);
      painter_.setPen(QPen(tick == 0 ? colors_.Faint : colors_.Grid, 1));
      painter_.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
    }
    painter_.setPen(QPen(colors_.Grid, 1));
    for (const double tick : TimeTicks(pane).Values) {
      const double x = scale.XOf(tick / picture_.Panes[pane].UnitsPerSecond);
      painter_.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
    }
  }

  double Aligned(double value) const { return std::round(value * ratio_) / ratio_; }

  // Columns that look alike are one rectangle, on whole pixels of the screen.
  void PaintColumns(const SignalTrace& trace, const PlotScale& scale, std::size_t channel) {
    const auto count = static_cast<double>(trace.Columns.size());
    const auto xOf = [&](std::size_t i) {
      return Aligned(scale.Left + scale.Width * static_cast<double>(i) / count);
    };
    for (std::size_t i = 0; i < trace.Columns.size();) {
      const SignalColumn& column = trace.Columns[i];
      std::size_t next = i + 1;
      while (next < trace.Columns.size() && trace.Columns[next].Kind == column.Kind &&
             trace.Columns[next].Low == column.Low && trace.Columns[next].High == column.High) {
        ++next;
      }
      const SignalColumn& before = trace.Columns[i > 0 ? i - 1 : 0];
      const QRectF box(xOf(i), scale.YOf(column.High), xOf(next) - xOf(i),
                       scale.YOf(column.Low) - scale.YOf(column.High));
      if (column.Kind == ColumnKind::Stroke) PaintStroke(box, ColorOf(channel));
      if (column.Kind == ColumnKind::Shade) PaintShade(box, before, scale, channel);
      i = next;
    }
  }

  void PaintStroke(const QRectF& box, const QColor& color) {
    const double wider = std::max(kLineWidth - box.width(), 0.0) / 2;
    painter_.fillRect(box.adjusted(-wider, -kLineWidth / 2, wider, kLineWidth / 2), color);
  }

  void PaintShade(const QRectF& box, const SignalColumn& before, const PlotScale& scale,
                  std::size_t channel) {
    painter_.fillRect(box, colors_.Envelope(static_cast<int>(channel)));
    // The edges reach to those of the column before, so that a steep one has no gaps.
    const bool joined = before.Kind == ColumnKind::Shade;
    const auto edge = [&](double y, double beforeY) {
      const double other = joined ? beforeY : y;
      const double top = Aligned(std::min(y, other) - kLineWidth / 2);
      painter_.fillRect(QRectF(box.left(), top, box.width(), std::max(std::fabs(y - other), kLineWidth)),
                        ColorOf(channel));
    };
    edge(box.top(), scale.YOf(before.High));
    edge(box.bottom(), scale.YOf(before.Low));
  }

  // In pieces of a few points: a painter takes far longer for one softened line with many corners.
  void PaintLines(const SignalTrace& trace, const PlotScale& scale, std::size_t channel) {
    constexpr qsizetype kPiece = 24;
    painter_.setRenderHint(QPainter::Antialiasing);
    QPen pen(ColorOf(channel), kLineWidth);
    pen.setCapStyle(Qt::FlatCap);
    pen.setJoinStyle(Qt::BevelJoin);
    painter_.setPen(pen);
    QPolygonF piece;
    for (const std::vector<SignalPoint>& line : trace.Lines) {
      piece.clear();
      for (const SignalPoint& point : line) {
        piece.append(QPointF(scale.XOf(point.Time), scale.YOf(point.Value)));
        if (piece.size() < kPiece) continue;
        painter_.drawPolyline(piece);
        piece = {piece.back()};
      }
      if (piece.size() > 1) painter_.drawPolyline(piece);
    }
    painter_.setRenderHint(QPainter::Antialiasing, false);
  }

  void PaintValueAxis(std::size_t channel) {
    const PlotScale scale = ScaleOf(channel, 0);
    const AxisTicks ticks = ValueTicks(channel);
    const double height = LineHeight(font_);
    painter_.setPen(colors_.Text);
    double last = scale.Top + scale.Height + height;  // ticks come from below
    for (const double tick : ticks.Values) {
      const double y = scale.YOf(tick);
      if (last - y < height) continue;
      last = y;
      const double lowest = scale.Top + scale.Height - height + kGraphPad;
      const double top = std::clamp(y - height / 2, std::min(scale.Top - kGraphPad, lowest), lowest);
      const QRectF box(0, top, scale.Left - kTickLength, height);
      painter_.drawText(box, Qt::AlignRight | Qt::AlignVCenter, Text(TickText(tick, ticks)));
    }
  }

  void PaintTimeAxis(std::size_t pane) {
    const SignalPane& drawn = picture_.Panes[pane];
    const SignalLayout::Column& column = layout_.Panes[pane];
    const AxisTicks ticks = TimeTicks(pane);
    const double length = drawn.Window.End - drawn.Window.Start;
    painter_.setPen(colors_.Text);
    for (const double tick : ticks.Values) {
      const double part = (tick / drawn.UnitsPerSecond - drawn.Window.Start) / length;
      const double x = column.Left + part * (column.Right - column.Left);
      const QString text = Text(PlainTickText(tick, ticks));
      const double width = metrics_.horizontalAdvance(text) + 1;
      const double left = std::min(x - width / 2, column.Right + kRightMargin - width);
      painter_.drawText(QRectF(left, layout_.TickLabels.top(), width, layout_.TickLabels.height()),
                        Qt::AlignLeft | Qt::AlignVCenter, text);
    }
    const QRectF box(column.Left, layout_.Captions.top(), column.Right - column.Left,
                     layout_.Captions.height());
    const QString caption = metrics_.elidedText(Text(drawn.Caption), Qt::ElideRight, box.width());
    painter_.drawText(box, Qt::AlignHCenter | Qt::AlignVCenter, caption);
  }

  QPainter& painter_;
  const SignalSubject& subject_;
  const SignalPicture& picture_;
  const SignalLayout& layout_;
  const GraphColors& colors_;
  QFont font_;
  QFontMetricsF metrics_;
  double ratio_;
};

}  // namespace

SignalLayout ComputeSignalLayout(const QSize& size, const QFont& font, int channels, int panes) {
  SignalLayout layout;
  const double line = LineHeight(font);
  const double left = std::ceil(QFontMetricsF(font).horizontalAdvance(QLatin1Char('0')) * kLabelDigits);
  const double right = size.width() - kRightMargin;
  const double bottom = size.height() - 2 * line - kGraphPad;
  const double each = channels > 0 ? bottom / channels : 0;
  for (int channel = 0; channel < channels; ++channel) {
    const double top = std::floor(each * channel);
    const double plotTop = top + line + kGraphPad;
    const double plotBottom = std::max(std::floor(each * (channel + 1)) - kGraphPad, plotTop + 1);
    layout.Channels.push_back(
        {QRectF(kGraphPad, top, right - kGraphPad, line + kGraphPad), plotTop, plotBottom});
  }
  const double width = std::max(right - left, 2.0);
  if (panes < 2) {
    layout.Panes = {{left, left + width}};
  } else {
    const double part = std::floor(width * kPartOfWidth);
    const double whole = std::min(left + part + kPaneGap, left + width - 1);
    layout.Panes = {{left, left + part}, {whole, left + width}};
  }
  layout.TickLabels = QRectF(0, bottom, size.width(), line);
  layout.Captions = QRectF(0, bottom + line, size.width(), line);
  return layout;
}

int SignalHeight(const QFont& font, int channels, int plotLines) {
  const double line = LineHeight(font);
  return static_cast<int>(
      std::ceil(channels * ((1 + plotLines) * line + 2 * kGraphPad) + 2 * line + kGraphPad));
}

void PaintSignal(QPainter& painter, const SignalSubject& subject, const SignalPicture& picture,
                 const SignalLayout& layout, const GraphColors& colors, const QFont& font) {
  painter.setFont(font);
  StripPainter(painter, subject, picture, layout, colors, font).Paint();
}

}  // namespace corlune
