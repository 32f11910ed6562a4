// GraphPainter: paints the sequence view's drawing where the layout puts its parts.
#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QPalette>

#include "view/graph_layout.h"

namespace corlune {

// Colours that colour-blind eyes tell apart, for light and for dark palettes.
class GraphColors {
 public:
  explicit GraphColors(const QPalette& palette);
  // Line colour of a channel, 0-based.
  QColor Channel(int channel) const;
  QColor Envelope(int channel) const;
  // A background colour of the model definition, as it suits this palette.
  QColor Meaning(const Color& color) const;
  // For lines and texts on such a background.
  QColor TextOn(const QColor& background) const;
  QColor Background, Panel, Text, Faint, Grid, Reference;
  bool Dark = false;
};

// Everything but what moves during a run.
void PaintPicture(QPainter& painter, const GraphPicture& picture, const GraphLayout& layout,
                  const AxisWindow& window, const GraphColors& colors, const QFont& font);

}  // namespace corlune
