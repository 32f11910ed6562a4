// Twips: the unit of the window's measures, 1/1440 inch, 15 to a pixel at 96 dpi.
#pragma once

class QWidget;

namespace corlune {

// Device-independent pixels of `twips` on the screen of `widget`, rounded; at least 1 for a positive measure.
int TwipsToPixels(int twips, const QWidget* widget);

}  // namespace corlune
