// ColorTheme: the colours of the model definition on a light, a dark or a high contrast desktop. Definitions
// are written for a light one; on a dark one a colour keeps its hue, and with it what it stands for.
#pragma once

#include "modeldef/param_def.h"

namespace corlune {

inline constexpr double kTextContrast = 4.5;      // of text, at least
inline constexpr double kHighTextContrast = 7.0;  // where the desktop asks for high contrast
inline constexpr double kLineContrast = 3.0;      // of lines, marks and frames, at least
inline constexpr double kBlackOnWhite = 21.0;     // the highest there is

// What the desktop shows fields in.
struct ColorTheme {
  Color Base{0xFF, 0xFF, 0xFF};  // background of a field
  Color Text{0, 0, 0};           // on Base
  bool Dark = false;
  bool HighContrast = false;
  double Contrast() const { return HighContrast ? kHighTextContrast : kTextContrast; }
  bool operator==(const ColorTheme&) const = default;
};

// 1 (the same lightness) to 21, as WCAG 2 defines it.
double ContrastRatio(Color a, Color b);

// Black or white, whichever stands out more against `background`: at least 4.5 on every colour.
Color TextColorOn(Color background);

// A colour of the definition as background. Light: as it is. Dark: white becomes the theme's base, the other
// colours keep hue and order of depth. Both with high contrast: changed as little as the text needs.
Color BackgroundIn(const ColorTheme& theme, Color definition);

// For text on any background: the theme's text colour where it has the theme's contrast, else black or white.
Color TextIn(const ColorTheme& theme, Color background);

// `wished`, lighter or darker by as much as it needs for `contrast` to `background`; the hue stays. Where no
// colour has the contrast: black or white.
Color StandingOut(Color wished, Color background, double contrast);

// A colour of the definition for a thin line on `background`: a pale one gets stronger, so that its hue
// shows.
Color LineIn(Color definition, Color background);

}  // namespace corlune
