// Colours of the model definition as the toolkit's.
#pragma once

#include <QColor>

#include "modeldef/param_def.h"

namespace corlune {

inline QColor ToQColor(const Color& color) {
  return {color.Red, color.Green, color.Blue};
}

}  // namespace corlune
