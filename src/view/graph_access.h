// GraphAccess: the graphs as assistive tools meet them: a list of steps, each with its number, its time and
// the values of every area, selected and running as on the screen.
#pragma once

#include <optional>

namespace corlune {

class GraphCanvas;

// From then on every canvas is known to assistive tools; may be called again.
void InstallGraphAccess();

// Tells them that another step is selected, and has the focus when the canvas has it.
void ReportSelectedStep(GraphCanvas& canvas, int step);

}  // namespace corlune
