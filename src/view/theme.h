// The theme of a widget's palette.
#pragma once

#include <cstdint>
#include <unordered_map>

#include <QColor>
#include <QPalette>

#include "editing/color_theme.h"

class QPushButton;

namespace corlune {

ColorTheme ThemeOf(const QPalette& palette);

// Without transparency.
Color ToColor(const QColor& color);

// `color`, lighter or darker by as much as it needs to be seen as a line on `background`.
QColor LineOn(const QColor& background, const QColor& color);

// The same for a colour of the definition.
QColor LineOn(const QColor& background, Color definition);

// The colours of the definition in one palette after the other, each computed once.
class DefinitionColors {
 public:
  struct Look {
    QColor Background;
    QColor Text;  // on it
  };
  const ColorTheme& Theme(const QPalette& palette);
  Look Of(const QPalette& palette, Color definition);
  // As LineOn().
  QColor Line(const QColor& background, const QColor& color);
  QColor Line(const QColor& background, Color definition);

 private:
  using Lines = std::unordered_map<std::uint64_t, QColor>;  // by background and colour

  ColorTheme theme_;
  qint64 key_ = 0;  // of the palette; 0: none yet
  std::unordered_map<std::uint32_t, Look> looks_;
  Lines lines_;
  Lines definitionLines_;
};

// The button's face in a colour of the definition, as it looks in `desktop`, with its text; the text of a
// disabled button is fainter.
void ColorButton(QPushButton& button, const QPalette& desktop, Color face);

}  // namespace corlune
