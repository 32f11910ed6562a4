// The colours of all windows: those of the desktop, or light or dark whatever the desktop has. A plain X11
// desktop has none to choose.
#pragma once

namespace corlune {

enum class WindowColors { Desktop, Light, Dark };  // in menu order; the codes are stored in a file
inline constexpr int kWindowColors = 3;

// Every window and dialog shows them from the next paint on.
void ShowColors(WindowColors colors);

}  // namespace corlune
