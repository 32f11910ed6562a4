#include "ui/twips.h"

#include <algorithm>

#include <QWidget>

namespace corlune {

namespace {

constexpr int kTwipsPerInch = 1440;

}  // namespace

int TwipsToPixels(int twips, const QWidget* widget) {
  // The logical resolution is that of device-independent pixels: a scale factor of the screen is not in it, a
  // larger font resolution is.
  const int pixels = (twips * widget->logicalDpiX() + kTwipsPerInch / 2) / kTwipsPerInch;
  return twips > 0 ? std::max(pixels, 1) : pixels;
}

}  // namespace corlune
