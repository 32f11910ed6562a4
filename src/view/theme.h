// The theme of a widget's palette.
#pragma once

#include <QColor>
#include <QPalette>

#include "editing/color_theme.h"

namespace corlune {

ColorTheme ThemeOf(const QPalette& palette);

// Without transparency.
Color ToColor(const QColor& color);

// A colour of the definition as background in the palette's theme.
QColor BackgroundIn(const QPalette& palette, Color definition);

}  // namespace corlune
