#include "view/graph_layout.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QFontMetricsF>

namespace corlune {

namespace {

constexpr double kRightMargin = 14;
constexpr int kLeastPlotLines = 4;  // lines of text in the height of the lowest plot

double HeaderHeight(const QFont& font) {
  return LineHeight(font) + kGraphPad;
}

double LeastAreaHeight(const QFont& font) {
  return HeaderHeight(font) + (kLeastPlotLines + 1) * LineHeight(font);
}

double RulerHeight(const QFont& font) {
  return LineHeight(font) + kGraphPad + kMarkerHead;
}

double TimeAxisHeight(const QFont& font) {
  return kTickLength + 2 * LineHeight(font) + kGraphPad;
}

// The brackets take at most a quarter of a low window: their rows then lose their texts.
double LoopsHeight(int rows, int height, const QFont& font) {
  return std::floor(std::min(rows * (LineHeight(font) + 1), height / 4.0));
}

void FillTicks(const AreaPicture& area, const QFont& font, AreaPlace& place) {
  const int most = std::max(3, static_cast<int>(place.Plot.height() / (LineHeight(font) * 1.5)));
  place.Ticks = area.Choices.empty() ? NiceTicks(area.Graph.Range, most)
                                     : ChoiceTicks(area.Graph.Range, area.Choices.size(), most);
  for (const double value : place.Ticks.Values) {
    place.TickLabels.push_back(QString::fromStdString(
        area.Choices.empty() ? TickText(value, place.Ticks) : area.Choices[static_cast<std::size_t>(value)]));
  }
}

}  // namespace

double LineHeight(const QFont& font) {
  return std::ceil(QFontMetricsF(font).height());
}

int ComfortableHeight(int areas, const QFont& font) {
  return static_cast<int>(RulerHeight(font) + TimeAxisHeight(font) +
                          std::max(areas, 1) * LeastAreaHeight(font));
}

GraphLayout ComputeLayout(const GraphPicture& picture, const QSize& size, const QFont& font,
                          double scrolled) {
  GraphLayout layout;
  const double axis = TimeAxisHeight(font);
  const double loops = LoopsHeight(picture.LoopRows, size.height(), font);
  layout.Loops = QRectF(0, 0, size.width(), loops);
  layout.LoopRow = picture.LoopRows > 0 ? loops / picture.LoopRows : 0;
  layout.Ruler = QRectF(0, loops, size.width(), RulerHeight(font));
  const double ruler = layout.Ruler.bottom();
  const double middle = std::max(size.height() - ruler - axis, 0.0);
  layout.Middle = QRectF(0, ruler, size.width(), middle);
  layout.TimeAxis = QRectF(0, ruler + middle, size.width(), axis);
  if (picture.Areas.empty()) return layout;
  const auto count = static_cast<double>(picture.Areas.size());
  const double height = std::floor(std::max(middle / count, LeastAreaHeight(font)));
  layout.ContentHeight = height * count;
  const QFontMetricsF metrics(font);
  double labels = 0;
  for (std::size_t i = 0; i < picture.Areas.size(); ++i) {
    const double top = ruler + static_cast<double>(i) * height - scrolled;
    AreaPlace place;
    place.Header = QRectF(kGraphPad, top, size.width() - 2 * kGraphPad, HeaderHeight(font));
    place.Plot = QRectF(0, place.Header.bottom(), 1, height - HeaderHeight(font) - 2 * kGraphPad);
    if (picture.Areas[i].Note.empty()) FillTicks(picture.Areas[i], font, place);
    for (const QString& label : place.TickLabels) labels = std::max(labels, metrics.horizontalAdvance(label));
    layout.Areas.push_back(std::move(place));
  }
  layout.PlotLeft = std::ceil(labels + kTickLength + 2 * kGraphPad);
  layout.PlotWidth = std::max(size.width() - layout.PlotLeft - kRightMargin, 1.0);
  for (AreaPlace& place : layout.Areas) {
    place.Plot.setLeft(layout.PlotLeft);
    place.Plot.setWidth(layout.PlotWidth);
  }
  return layout;
}

QRectF LoopRect(const GraphPicture& picture, const GraphLayout& layout, const AxisWindow& window,
                const LoopBracket& bracket) {
  const StepSpan& first = picture.Spans[static_cast<std::size_t>(bracket.First)];
  const StepSpan& last = picture.Spans[static_cast<std::size_t>(bracket.Last)];
  const double left = std::max(layout.XOf(first.Start, window), layout.PlotLeft);
  const double right = std::min(layout.XOf(last.End, window), layout.PlotRight());
  if (right <= left) return {};
  return {left, layout.Loops.bottom() - (bracket.Row + 1) * layout.LoopRow, right - left, layout.LoopRow};
}

PlotScale ScaleOf(const GraphLayout& layout, const AxisWindow& window, std::size_t area,
                  const GraphPicture& picture) {
  const QRectF& plot = layout.Areas[area].Plot;
  return {window.Start, window.End,   picture.Areas[area].Graph.Range, plot.left(), plot.top(),
          plot.width(), plot.height()};
}

}  // namespace corlune
