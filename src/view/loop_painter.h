// LoopPainter: paints the brackets of the loops above the steps.
#pragma once

#include "view/graph_painter.h"

namespace corlune {

// A bracket without room for its text stands without.
void PaintLoops(QPainter& painter, const GraphPicture& picture, const GraphLayout& layout,
                const AxisWindow& window, const GraphColors& colors, const QFont& font);

}  // namespace corlune
