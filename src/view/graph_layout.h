// GraphLayout: where the parts of the sequence view's drawing stand in a window. All measures are
// device-independent pixels of the canvas; nothing here knows about scrolling widgets.
#pragma once

#include <vector>

#include <QFont>
#include <QRectF>
#include <QSize>
#include <QString>

#include "graph/graph_picture.h"
#include "graph/plot_lines.h"

namespace corlune {

inline constexpr double kGraphPad = 4;  // around texts
inline constexpr double kTickLength = 4;
inline constexpr double kMarkerHead = 10;  // below the step numbers

double LineHeight(const QFont& font);

struct AreaPlace {
  QRectF Header;
  QRectF Plot;
  AxisTicks Ticks;
  std::vector<QString> TickLabels;
};

struct GraphLayout {
  QRectF Loops;        // brackets, the rows from below; empty without loops
  double LoopRow = 0;  // height of a row
  QRectF Ruler;        // step numbers
  QRectF Middle;       // everything between ruler and time axis
  QRectF TimeAxis;     // times and the axis title
  double PlotLeft = 0;
  double PlotWidth = 1;
  std::vector<AreaPlace> Areas;  // moved up by the vertical scroll position
  double ContentHeight = 0;      // of all areas; more than Middle's height: the areas scroll

  double XOf(double position, const AxisWindow& window) const {
    return PlotLeft + (position - window.Start) / (window.End - window.Start) * PlotWidth;
  }
  double PlotRight() const { return PlotLeft + PlotWidth; }
};

// The visible part of a bracket; empty when it is out of sight.
QRectF LoopRect(const GraphPicture& picture, const GraphLayout& layout, const AxisWindow& window,
                const LoopBracket& bracket);

GraphLayout ComputeLayout(const GraphPicture& picture, const QSize& size, const QFont& font, double scrolled);
// Height at which no area has to scroll.
int ComfortableHeight(int areas, const QFont& font);

PlotScale ScaleOf(const GraphLayout& layout, const AxisWindow& window, std::size_t area,
                  const GraphPicture& picture);

}  // namespace corlune
