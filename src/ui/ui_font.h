// The font of all windows.
#pragma once

#include <QFont>

#include "core/app_state.h"

namespace corlune {

// UiFontName with fallbacks for machines that do not have it, UiFontSize in points.
QFont UiFont(const AppState& state);

}  // namespace corlune
