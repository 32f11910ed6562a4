#include "editing/color_theme.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace corlune {

namespace {

constexpr Color kBlack{0, 0, 0};
constexpr Color kWhite{0xFF, 0xFF, 0xFF};
constexpr double kLightnessStep = 0.01;

struct LinearRgb {
  double Red = 0;
  double Green = 0;
  double Blue = 0;
};

// Oklab in polar form: equal steps look equal, and a hue stays the same hue when it gets lighter or darker.
struct Tone {
  double Lightness = 0;  // 0 black to 1 white
  double Chroma = 0;     // 0 grey, about 0.3 the strongest
  double Hue = 0;        // radians
};

double ToLinear(std::uint8_t part) {
  const double value = part / 255.0;
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

std::uint8_t FromLinear(double value) {
  const double part = value <= 0.0031308 ? value * 12.92 : 1.055 * std::pow(value, 1 / 2.4) - 0.055;
  return static_cast<std::uint8_t>(std::lround(std::clamp(part, 0.0, 1.0) * 255));
}

LinearRgb Linear(Color color) {
  return {ToLinear(color.Red), ToLinear(color.Green), ToLinear(color.Blue)};
}

// Relative luminance, 0 black to 1 white.
double Luminance(Color color) {
  const LinearRgb linear = Linear(color);
  return 0.2126 * linear.Red + 0.7152 * linear.Green + 0.0722 * linear.Blue;
}

Tone ToneOf(Color color) {
  const auto [red, green, blue] = Linear(color);
  const double l = std::cbrt(0.4122214708 * red + 0.5363325363 * green + 0.0514459929 * blue);
  const double m = std::cbrt(0.2119034982 * red + 0.6806995451 * green + 0.1073969566 * blue);
  const double s = std::cbrt(0.0883024619 * red + 0.2817188376 * green + 0.6299787005 * blue);
  const double a = 1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s;
  const double b = 0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s;
  return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s, std::hypot(a, b), std::atan2(b, a)};
}

LinearRgb LinearOf(const Tone& tone) {
  const double a = tone.Chroma * std::cos(tone.Hue);
  const double b = tone.Chroma * std::sin(tone.Hue);
  const double l = std::pow(tone.Lightness + 0.3963377774 * a + 0.2158037573 * b, 3);
  const double m = std::pow(tone.Lightness - 0.1055613458 * a - 0.0638541728 * b, 3);
  const double s = std::pow(tone.Lightness - 0.0894841775 * a - 1.2914855480 * b, 3);
  return {4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s,
          -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s,
          -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s};
}

// A tone beyond what a screen can show loses chroma, never hue or lightness.
Color ColorOf(Tone tone) {
  const auto inside = [](const LinearRgb& linear) {
    constexpr double kRounding = 1e-4;
    const auto [least, most] = std::minmax({linear.Red, linear.Green, linear.Blue});
    return least >= -kRounding && most <= 1 + kRounding;
  };
  tone.Lightness = std::clamp(tone.Lightness, 0.0, 1.0);
  LinearRgb linear = LinearOf(tone);
  if (!inside(linear)) {
    constexpr int kHalvings = 10;
    double dull = 0;
    double strong = tone.Chroma;
    for (int i = 0; i < kHalvings; ++i) {
      tone.Chroma = (dull + strong) / 2;
      (inside(LinearOf(tone)) ? dull : strong) = tone.Chroma;
    }
    tone.Chroma = dull;
    linear = LinearOf(tone);
  }
  return {FromLinear(linear.Red), FromLinear(linear.Green), FromLinear(linear.Blue)};
}

// The first colour from `from` on with the contrast; `to` where none has it.
Color Shifted(Tone from, double step, Color against, double contrast, Color to) {
  for (; from.Lightness >= 0 && from.Lightness <= 1; from.Lightness += step) {
    const Color color = ColorOf(from);
    if (ContrastRatio(color, against) >= contrast) return color;
  }
  return to;
}

Color DarkBackground(const ColorTheme& theme, Color definition) {
  // How far a colour rises over the base: by its depth on white, and by its chroma, which a dark colour
  // needs light for. No hue can be seen near black.
  constexpr double kByDepth = 0.9;
  constexpr double kByChroma = 1.0;
  constexpr double kLeast = 0.2;
  Tone tone = ToneOf(definition);
  const double rise = kByDepth * (1 - tone.Lightness) + kByChroma * tone.Chroma;
  tone.Lightness = std::min(std::max(ToneOf(theme.Base).Lightness, kLeast) + rise, 1.0);
  return Shifted(tone, -kLightnessStep, TextIn(theme, theme.Base), theme.Contrast(), theme.Base);
}

}  // namespace

double ContrastRatio(Color a, Color b) {
  const auto [darker, lighter] = std::minmax({Luminance(a), Luminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

Color TextColorOn(Color background) {
  return ContrastRatio(background, kBlack) >= ContrastRatio(background, kWhite) ? kBlack : kWhite;
}

Color BackgroundIn(const ColorTheme& theme, Color definition) {
  if (definition == kWindowColor && (theme.Dark || theme.HighContrast)) return theme.Base;
  if (theme.Dark) return DarkBackground(theme, definition);
  if (!theme.HighContrast || ContrastRatio(definition, TextColorOn(definition)) >= theme.Contrast()) {
    return definition;
  }
  return Shifted(ToneOf(definition), kLightnessStep, TextIn(theme, theme.Base), theme.Contrast(), theme.Base);
}

Color TextIn(const ColorTheme& theme, Color background) {
  return ContrastRatio(theme.Text, background) >= theme.Contrast() ? theme.Text : TextColorOn(background);
}

Color StandingOut(Color wished, Color background, double contrast) {
  if (ContrastRatio(wished, background) >= contrast) return wished;
  const Color end = TextColorOn(background);
  const double step = end == kWhite ? kLightnessStep : -kLightnessStep;
  return Shifted(ToneOf(wished), step, background, contrast, end);
}

Color LineIn(Color definition, Color background) {
  // In a pale colour every thin line looks grey or white.
  constexpr double kStrong = 0.15;
  constexpr double kLightest = 0.8;
  Tone tone = ToneOf(definition);
  tone.Chroma = std::max(tone.Chroma, std::min(2 * tone.Chroma, kStrong));
  tone.Lightness = std::min(tone.Lightness, kLightest);
  return StandingOut(ColorOf(tone), background, kLineContrast);
}

}  // namespace corlune
