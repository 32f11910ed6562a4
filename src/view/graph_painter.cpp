#include "view/graph_painter.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QFontMetricsF>
#include <QPainterPath>

#include "core/numbers.h"
#include "view/loop_painter.h"

namespace corlune {

namespace {

constexpr double kLineWidth = 2;
constexpr double kSampleWidth = 20;  // line sample of a legend
constexpr double kLabelGap = 8;
constexpr double kLeastBoundaryGap = 4;  // between two drawn step boundaries
constexpr double kMsPerSecond = 1000;

QString Text(const std::string& text) {
  return QString::fromStdString(text);
}

// Draws one canvas with everything its parts share.
class PicturePainter {
 public:
  PicturePainter(QPainter& painter, const GraphPicture& picture, const GraphLayout& layout,
                 const AxisWindow& window, const GraphColors& colors, const QFont& font)
      : painter_(painter),
        picture_(picture),
        layout_(layout),
        window_(window),
        colors_(colors),
        metrics_(font),
        font_(font) {
    FindVisibleSteps();
  }

  void Paint() {
    painter_.setFont(font_);
    painter_.save();
    painter_.setClipRect(layout_.Middle);
    for (std::size_t i = 0; i < layout_.Areas.size(); ++i) PaintArea(i);
    painter_.restore();
    PaintLoops(painter_, picture_, layout_, window_, colors_, font_);
    PaintRuler();
    PaintTimeAxis();
  }

 private:
  double XOf(double position) const { return layout_.XOf(position, window_); }
  double PlotRight() const { return layout_.PlotRight(); }

  void FindVisibleSteps() {
    first_ = static_cast<std::size_t>(StepAt(picture_.Spans, window_.Start).value_or(0));
    last_ = first_;
    while (last_ < picture_.Spans.size() && picture_.Spans[last_].Start <= window_.End) ++last_;
  }

  void PaintArea(std::size_t index) {
    const AreaPicture& area = picture_.Areas[index];
    const AreaPlace& place = layout_.Areas[index];
    if (!place.Header.united(place.Plot).intersects(layout_.Middle)) return;
    painter_.fillRect(place.Plot, colors_.Background);
    PaintHeader(area, place);
    if (!area.Note.empty()) {
      painter_.setPen(colors_.Faint);
      painter_.drawText(place.Plot, Qt::AlignCenter | Qt::TextWordWrap, Text(area.Note));
    } else {
      const PlotScale scale = ScaleOf(layout_, window_, index, picture_);
      PaintGrid(place, scale);
      PaintCurves(area, place, scale);
    }
    painter_.setPen(QPen(colors_.Faint, 1));
    painter_.setBrush(Qt::NoBrush);
    painter_.drawRect(place.Plot);
  }

  void PaintHeader(const AreaPicture& area, const AreaPlace& place) {
    QFont bold = font_;
    bold.setBold(true);
    painter_.setFont(bold);
    painter_.setPen(colors_.Text);
    QRectF rest = place.Header;
    const QFontMetricsF boldMetrics(bold);
    const QString title = boldMetrics.elidedText(Text(area.Title), Qt::ElideRight, rest.width());
    painter_.drawText(rest, Qt::AlignLeft | Qt::AlignVCenter, title);
    rest.setLeft(rest.left() + boldMetrics.horizontalAdvance(title) + 3 * kLabelGap);
    painter_.setFont(font_);
    const std::size_t curvesFrom = area.Graph.Envelope.empty() ? 0 : 1;
    for (std::size_t i = 0; i < area.Legends.size(); ++i) {
      const double room = rest.width() - kSampleWidth - kGraphPad;
      if (room < metrics_.averageCharWidth() * 4) break;
      const double middle = rest.center().y();
      if (i < curvesFrom) {
        const QRectF sample(rest.left(), middle - 4, kSampleWidth, 8);
        painter_.fillRect(sample, colors_.Envelope(area.Graph.Area.Channel));
      } else {
        painter_.setPen(CurvePen(area, i - curvesFrom));
        painter_.drawLine(QPointF(rest.left(), middle), QPointF(rest.left() + kSampleWidth, middle));
      }
      rest.setLeft(rest.left() + kSampleWidth + kGraphPad);
      const QString legend = metrics_.elidedText(Text(area.Legends[i]), Qt::ElideRight, room);
      painter_.setPen(colors_.Text);
      painter_.drawText(rest, Qt::AlignLeft | Qt::AlignVCenter, legend);
      rest.setLeft(rest.left() + metrics_.horizontalAdvance(legend) + 2 * kLabelGap);
    }
  }

  // A second parameter of an area is dashed: colour tells channels apart, not parameters.
  QPen CurvePen(const AreaPicture& area, std::size_t curve) const {
    QPen pen(colors_.Channel(area.Graph.Area.Channel), kLineWidth);
    constexpr std::array kStyles{Qt::SolidLine, Qt::DashLine, Qt::DotLine};
    const std::size_t style = curve + (area.Graph.Envelope.empty() ? 0 : 1);
    pen.setStyle(kStyles[std::min(style, kStyles.size() - 1)]);
    pen.setCapStyle(Qt::FlatCap);
    pen.setJoinStyle(Qt::MiterJoin);
    return pen;
  }

  void PaintGrid(const AreaPlace& place, const PlotScale& scale) {
    painter_.setPen(QPen(colors_.Grid, 1));
    double lastLine = layout_.PlotLeft;
    for (std::size_t i = std::max<std::size_t>(first_, 1); i < last_; ++i) {
      const double x = XOf(picture_.Spans[i].Start);
      if (x - lastLine < kLeastBoundaryGap || x > PlotRight()) continue;
      painter_.drawLine(QPointF(x, place.Plot.top()), QPointF(x, place.Plot.bottom()));
      lastLine = x;
    }
    const double height = LineHeight(font_);
    for (std::size_t i = 0; i < place.Ticks.Values.size(); ++i) {
      const double y = scale.YOf(place.Ticks.Values[i]);
      painter_.setPen(QPen(colors_.Grid, 1));
      painter_.drawLine(QPointF(layout_.PlotLeft - kTickLength, y), QPointF(PlotRight(), y));
      const double top =
          std::clamp(y - height / 2, place.Plot.top() - kGraphPad, place.Plot.bottom() - height + kGraphPad);
      painter_.setPen(colors_.Text);
      painter_.drawText(QRectF(0, top, layout_.PlotLeft - kTickLength - 2, height),
                        Qt::AlignRight | Qt::AlignVCenter, place.TickLabels[i]);
    }
    PaintReference(scale);
  }

  void PaintReference(const PlotScale& scale) {
    if (!picture_.ReferenceLine) return;
    const double value = *picture_.ReferenceLine;
    if (value < scale.Values.Low || value > scale.Values.High) return;
    const double y = scale.YOf(value);
    painter_.setPen(QPen(colors_.Reference, 1, Qt::DashDotLine));
    painter_.drawLine(QPointF(layout_.PlotLeft, y), QPointF(PlotRight(), y));
  }

  void PaintCurves(const AreaPicture& area, const AreaPlace& place, const PlotScale& scale) {
    painter_.save();
    painter_.setClipRect(place.Plot.intersected(layout_.Middle), Qt::IntersectClip);
    painter_.setRenderHint(QPainter::Antialiasing);
    PaintEnvelope(area, scale);
    for (std::size_t i = 0; i < area.Graph.Curves.size(); ++i) {
      const QPen pen = CurvePen(area, i);
      for (const PixelLine& line : VisibleLines(area.Graph.Curves[i], scale)) PaintLine(line, pen);
    }
    painter_.restore();
  }

  // Piece by piece: most pieces are level or upright, which are mere rectangles, while a long softened line
  // with many corners takes a painter a hundred times as long.
  void PaintLine(const PixelLine& line, const QPen& pen) {
    painter_.setPen(pen);
    for (std::size_t i = 1; i < line.size(); ++i) {
      PaintPiece({line[i - 1].X, line[i - 1].Y}, {line[i].X, line[i].Y}, pen);
    }
  }

  void PaintPiece(const QPointF& from, const QPointF& to, const QPen& pen) {
    if (from.y() != to.y() && from.x() != to.x()) {
      painter_.drawLine(from, to);
      return;
    }
    const double half = kLineWidth / 2;
    const QRectF whole = QRectF(from, to).normalized().adjusted(-half, -half, half, half);
    const QRectF box = whole.intersected(QRectF(layout_.PlotLeft, -1e5, layout_.PlotWidth, 2e5));
    if (pen.style() == Qt::SolidLine || from.x() == to.x()) {
      FillAligned(box, pen.color());
      return;
    }
    const double dash = pen.style() == Qt::DashLine ? 8 : 2;
    constexpr double kSpace = 4;
    const int dashes = static_cast<int>(std::ceil(box.width() / (dash + kSpace)));
    for (int i = 0; i < dashes; ++i) {
      const double x = box.left() + i * (dash + kSpace);
      FillAligned(QRectF(x, box.top(), std::min(dash, box.right() - x), box.height()), pen.color());
    }
  }

  // On whole pixels of the screen, so that level lines are sharp.
  void FillAligned(const QRectF& box, const QColor& color) {
    const double ratio = painter_.device()->devicePixelRatioF();
    const auto aligned = [ratio](double value) { return std::round(value * ratio) / ratio; };
    const double left = aligned(box.left());
    const double top = aligned(box.top());
    painter_.fillRect(QRectF(left, top, aligned(box.right()) - left, aligned(box.bottom()) - top), color);
  }

  void PaintEnvelope(const AreaPicture& area, const PlotScale& scale) {
    const int channel = area.Graph.Area.Channel;
    const QPen edge(colors_.Channel(channel), kLineWidth);
    std::optional<EnvelopePiece> before;
    for (const EnvelopePiece& whole : area.Graph.Envelope) {
      if (whole.End < window_.Start || whole.Start > window_.End) continue;
      const EnvelopePiece piece = CutToWindow(whole, window_);
      const double left = XOf(piece.Start);
      const double right = XOf(piece.End);
      const QPointF highStart(left, scale.YOf(piece.HighStart));
      const QPointF highEnd(right, scale.YOf(piece.HighEnd));
      const QPointF lowEnd(right, scale.YOf(piece.LowEnd));
      const QPointF lowStart(left, scale.YOf(piece.LowStart));
      if (highStart.y() == highEnd.y() && lowStart.y() == lowEnd.y()) {
        FillAligned(QRectF(highStart, lowEnd).normalized(), colors_.Envelope(channel));
      } else {
        QPainterPath body(highStart);
        for (const QPointF& corner : {highEnd, lowEnd, lowStart}) body.lineTo(corner);
        painter_.fillPath(body, colors_.Envelope(channel));
      }
      painter_.setPen(edge);
      PaintPiece(highStart, highEnd, edge);
      PaintPiece(lowStart, lowEnd, edge);
      if (before && before->End == piece.Start) {
        PaintPiece(QPointF(left, scale.YOf(before->HighEnd)), highStart, edge);
        PaintPiece(QPointF(left, scale.YOf(before->LowEnd)), lowStart, edge);
      }
      before = piece;
    }
  }

  void PaintRuler() {
    const QRectF& ruler = layout_.Ruler;
    std::vector<LabelWish> wishes;
    for (std::size_t i = first_; i < last_; ++i) {
      const double left = std::max(XOf(picture_.Spans[i].Start), layout_.PlotLeft);
      const double right = std::min(XOf(picture_.Spans[i].End), PlotRight());
      wishes.push_back(
          {(left + right) / 2, metrics_.horizontalAdvance(Text(picture_.StepLabels[i])), right - left});
    }
    const auto places = PlaceLabels(wishes, layout_.PlotLeft, ruler.right(), kGraphPad);
    painter_.setPen(colors_.Text);
    for (std::size_t i = 0; i < places.size(); ++i) {
      if (!places[i]) continue;
      const QRectF box(*places[i], ruler.top() + kGraphPad / 2, wishes[i].Width + 1,
                       ruler.height() - kMarkerHead);
      painter_.drawText(box, Qt::AlignLeft | Qt::AlignVCenter, Text(picture_.StepLabels[first_ + i]));
    }
  }

  struct TimeMark {
    double X;
    QString Label;
  };

  std::vector<TimeMark> TimeMarks() const {
    std::vector<TimeMark> marks;
    if (picture_.Axis == TimeAxis::Steps) {
      // The time at which each step begins, and the end of the last one.
      for (std::size_t i = first_; i < last_; ++i) {
        const StepSpan& span = picture_.Spans[i];
        marks.push_back({XOf(span.Start), SecondsText(span.StartTime)});
        if (i + 1 == picture_.Spans.size()) marks.push_back({XOf(span.End), SecondsText(span.EndTime)});
      }
      return marks;
    }
    const ValueRange seconds{window_.Start / kMsPerSecond, window_.End / kMsPerSecond};
    const TickRoom room{layout_.PlotWidth / (seconds.High - seconds.Low), kLabelGap,
                        [this](const std::string& text) { return metrics_.horizontalAdvance(Text(text)); }};
    constexpr double kLeastDistance = 40;  // pixels
    const AxisTicks ticks = FittingTicks(seconds, static_cast<int>(layout_.PlotWidth / kLeastDistance), room);
    for (const double tick : ticks.Values)
      marks.push_back({XOf(tick * kMsPerSecond), Text(PlainTickText(tick, ticks))});
    return marks;
  }

  static QString SecondsText(double milliseconds) {
    return Text(FormatNumber(milliseconds / kMsPerSecond, "0.###"));
  }

  void PaintTimeAxis() {
    const QRectF& axis = layout_.TimeAxis;
    const std::vector<TimeMark> marks = TimeMarks();
    std::vector<LabelWish> wishes;
    wishes.reserve(marks.size());
    for (const TimeMark& mark : marks) wishes.push_back({mark.X, metrics_.horizontalAdvance(mark.Label), 0});
    const auto places = PlaceLabels(wishes, 0, axis.right(), kLabelGap);
    const double height = LineHeight(font_);
    for (std::size_t i = 0; i < marks.size(); ++i) {
      if (!places[i] || marks[i].X < layout_.PlotLeft - 0.5 || marks[i].X > PlotRight() + 0.5) continue;
      painter_.setPen(QPen(colors_.Faint, 1));
      painter_.drawLine(QPointF(marks[i].X, axis.top()), QPointF(marks[i].X, axis.top() + kTickLength));
      painter_.setPen(colors_.Text);
      painter_.drawText(QRectF(*places[i], axis.top() + kTickLength, wishes[i].Width + 1, height),
                        Qt::AlignLeft | Qt::AlignVCenter, marks[i].Label);
    }
    painter_.drawText(QRectF(0, axis.top() + kTickLength + height, PlotRight(), height),
                      Qt::AlignRight | Qt::AlignVCenter, Text(picture_.AxisTitle));
  }

  QPainter& painter_;
  const GraphPicture& picture_;
  const GraphLayout& layout_;
  const AxisWindow& window_;
  const GraphColors& colors_;
  QFontMetricsF metrics_;
  QFont font_;
  std::size_t first_ = 0;  // visible steps: first, and one behind the last
  std::size_t last_ = 0;
};

QColor Mixed(const QColor& a, const QColor& b, double part) {
  return QColor::fromRgbF(static_cast<float>(a.redF() + (b.redF() - a.redF()) * part),
                          static_cast<float>(a.greenF() + (b.greenF() - a.greenF()) * part),
                          static_cast<float>(a.blueF() + (b.blueF() - a.blueF()) * part));
}

}  // namespace

GraphColors::GraphColors(const QPalette& palette)
    : Background(palette.color(QPalette::Base)),
      Panel(palette.color(QPalette::Window)),
      Text(palette.color(QPalette::WindowText)),
      Grid(Mixed(Background, palette.color(QPalette::Text), 0.18)),
      Reference(Mixed(Background, palette.color(QPalette::Text), 0.6)),
      theme_(ThemeOf(palette)) {
  // Notes stand in it on the plots, the frames of these on the panel.
  const Color faint = ToColor(Mixed(Background, Text, 0.55));
  Faint = ToQColor(StandingOut(faint, theme_.Base, theme_.Contrast()));
  Text = ToQColor(StandingOut(ToColor(Text), ToColor(Panel), theme_.Contrast()));
}

QColor GraphColors::Line(const Color& color) const {
  return ToQColor(StandingOut(color, theme_.Base, kLineContrast));
}

QColor GraphColors::Channel(int channel) const {
  const bool second = channel == 1;
  if (theme_.Dark) return Line(second ? Color{0xF0, 0xA0, 0x30} : Color{0x56, 0xB4, 0xE9});
  return Line(second ? Color{0xD5, 0x5E, 0x00} : Color{0x00, 0x72, 0xB2});
}

QColor GraphColors::Envelope(int channel) const {
  QColor color = Channel(channel);
  color.setAlpha(theme_.Dark ? 90 : 60);
  return color;
}

void PaintPicture(QPainter& painter, const GraphPicture& picture, const GraphLayout& layout,
                  const AxisWindow& window, const GraphColors& colors, const QFont& font) {
  const QRectF whole = layout.Loops.united(layout.TimeAxis);
  painter.fillRect(whole, colors.Panel);
  if (!picture.Note.empty()) {
    painter.setFont(font);
    painter.setPen(colors.Text);
    painter.drawText(whole, Qt::AlignCenter | Qt::TextWordWrap, Text(picture.Note));
    return;
  }
  PicturePainter(painter, picture, layout, window, colors, font).Paint();
}

}  // namespace corlune
