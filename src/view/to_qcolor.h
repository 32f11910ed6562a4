// The colours of the model definition for the toolkit.
#pragma once

#include <QColor>

#include "modeldef/model_definition.h"

namespace corlune {

inline QColor ToQColor(const Color& color) {
  return {color.Red, color.Green, color.Blue};
}

}  // namespace corlune
