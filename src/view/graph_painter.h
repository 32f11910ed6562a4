// GraphPainter: where the parts of the sequence view's drawing stand in a window, and their painting. All
// measures are device-independent pixels of the canvas; nothing here knows about scrolling widgets.
#pragma once

#include <vector>

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPalette>
#include <QRectF>
#include <QSize>
#include <QString>

#include "graph/graph_picture.h"

namespace corlune {

// Colours that colour-blind eyes tell apart, for light and for dark palettes.
class GraphColors {
 public:
  explicit GraphColors(const QPalette& palette);
  // Line colour of a channel, 0-based.
  QColor Channel(int channel) const;
  QColor Envelope(int channel) const;
  QColor Background, Panel, Text, Faint, Grid, Reference;
  bool Dark = false;
};

struct AreaPlace {
  QRectF Header;
  QRectF Plot;
  AxisTicks Ticks;
  std::vector<QString> TickLabels;
};

struct GraphLayout {
  QRectF Ruler;     // step numbers
  QRectF Middle;    // everything between ruler and time axis
  QRectF TimeAxis;  // times and the axis title
  double PlotLeft = 0;
  double PlotWidth = 1;
  std::vector<AreaPlace> Areas;  // moved up by the vertical scroll position
  double ContentHeight = 0;      // of all areas; more than Middle's height: the areas scroll
};

GraphLayout ComputeLayout(const GraphPicture& picture, const QSize& size, const QFont& font, double scrolled);
// Height at which no area has to scroll.
int ComfortableHeight(int areas, const QFont& font);

// Visible part of the axis, in axis units.
struct AxisWindow {
  double Start = 0;
  double End = 1;
  bool operator==(const AxisWindow&) const = default;
};
PlotScale ScaleOf(const GraphLayout& layout, const AxisWindow& window, std::size_t area,
                  const GraphPicture& picture);

// Everything but what moves during a run.
void PaintPicture(QPainter& painter, const GraphPicture& picture, const GraphLayout& layout,
                  const AxisWindow& window, const GraphColors& colors, const QFont& font);

}  // namespace corlune
