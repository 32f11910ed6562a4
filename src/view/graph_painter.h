// GraphPainter: paints the sequence view's drawing where the layout puts its parts.
#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QPalette>

#include "view/graph_layout.h"
#include "view/theme.h"
#include "view/to_qcolor.h"

namespace corlune {

// Colours that colour-blind eyes tell apart, for light, dark and high contrast palettes. Every one stands out
// against what it is drawn on: texts as the theme asks, lines by 3 : 1 at least.
class GraphColors {
 public:
  explicit GraphColors(const QPalette& palette);
  // Line colour of a channel, 0-based.
  QColor Channel(int channel) const;
  QColor Envelope(int channel) const;
  // A background colour of the model definition, as it suits this palette.
  QColor Meaning(const Color& color) const { return ToQColor(BackgroundIn(theme_, color)); }
  // For lines and texts on such a background.
  QColor TextOn(const QColor& background) const { return ToQColor(TextIn(theme_, ToColor(background))); }
  // A colour that marks a place by a line.
  QColor Line(const Color& color) const;
  QColor Background, Panel, Text, Faint, Grid, Reference;

 private:
  ColorTheme theme_;
};

// Everything but what moves during a run.
void PaintPicture(QPainter& painter, const GraphPicture& picture, const GraphLayout& layout,
                  const AxisWindow& window, const GraphColors& colors, const QFont& font);

}  // namespace corlune
