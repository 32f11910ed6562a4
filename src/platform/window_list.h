// The windows of other programs, as far as the system shows them to everybody.
#pragma once

#include <string>
#include <vector>

namespace corlune {

// Titles, UTF-8, of all visible top-level windows, minimised ones included. Empty without a display. On X11
// these are the clients of the window manager, or, where none runs, the viewable windows.
std::vector<std::string> VisibleWindowTitles();

// True when the title of a visible window contains `titlePart`, which must not be empty; letter case counts.
bool IsSiblingRunning(const std::string& titlePart);
bool ContainsTitle(const std::vector<std::string>& titles, const std::string& titlePart);

}  // namespace corlune
