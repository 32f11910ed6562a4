// PlotLines: where lines and texts of the graphs stand on the screen.
#pragma once

#include <optional>
#include <vector>

#include "graph/step_graph.h"

namespace corlune {

// Visible part of the axis, in axis units.
struct AxisWindow {
  double Start = 0;
  double End = 1;
  bool operator==(const AxisWindow&) const = default;
};

// The visible part of the axis and its place on the screen (pixels, "y" down).
struct PlotScale {
  double AxisStart = 0;
  double AxisEnd = 1;
  ValueRange Values;
  double Left = 0;
  double Top = 0;
  double Width = 1;
  double Height = 1;

  double XOf(double position) const { return Left + (position - AxisStart) / (AxisEnd - AxisStart) * Width; }
  double YOf(double value) const { return Top + (Values.High - value) / (Values.High - Values.Low) * Height; }
  double ValueAt(double y) const { return Values.High - (y - Top) / Height * (Values.High - Values.Low); }
  double PositionAt(double x) const { return AxisStart + (x - Left) / Width * (AxisEnd - AxisStart); }
};

struct PixelPoint {
  double X = 0;
  double Y = 0;
  bool operator==(const PixelPoint&) const = default;
};
using PixelLine = std::vector<PixelPoint>;

// The lines of a curve, cut off one plot width and height outside the plot, so that no zoom gives coordinates
// that a painter cannot take.
std::vector<PixelLine> VisibleLines(const GraphCurve& curve, const PlotScale& scale);

// The piece as far as the window and a little beyond: at high zooms a piece reaches far over both sides.
EnvelopePiece CutToWindow(const EnvelopePiece& piece, const AxisWindow& window);

// Places texts of the given widths around their centres, all inside [left, right] and `gap` apart. Texts that
// fit into their own room come first, the others follow where there is space left.
struct LabelWish {
  double Center = 0;
  double Width = 0;
  double Room = 0;
};
// Left edge of each text; nullopt: no space.
std::vector<std::optional<double>> PlaceLabels(const std::vector<LabelWish>& wishes, double left,
                                               double right, double gap);

}  // namespace corlune
