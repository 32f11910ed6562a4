// The application's icon.
#pragma once

#include <QString>

class QWidget;

namespace corlune {

inline constexpr const char* kApplicationIcon = "APPICON";

// Gives `window` the icon resource `name` in all its sizes, the small and the large one included; with
// `alsoOwner` the top-most window that owns it, too. A program without the resource keeps the system's icon.
// Reading the pictures takes a good part of the time that building the window takes: it is done right after
// the window was painted first.
void SetAppIcon(QWidget* window, const QString& name, bool alsoOwner);

}  // namespace corlune
