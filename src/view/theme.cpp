#include "view/theme.h"

#include "view/to_qcolor.h"

namespace corlune {

Color ToColor(const QColor& color) {
  return {static_cast<std::uint8_t>(color.red()), static_cast<std::uint8_t>(color.green()),
          static_cast<std::uint8_t>(color.blue())};
}

ColorTheme ThemeOf(const QPalette& palette) {
  // Desktops with high contrast show text, fields and buttons on one and the same background; others set
  // fields off from the window. The toolkit does not tell it otherwise.
  constexpr double kHighContrast = 15;
  const auto of = [&](QPalette::ColorRole role) { return ToColor(palette.color(QPalette::Active, role)); };
  ColorTheme theme;
  theme.Base = of(QPalette::Base);
  theme.Text = of(QPalette::Text);
  theme.Dark = ContrastRatio(theme.Base, {}) < ContrastRatio(theme.Text, {});
  theme.HighContrast = theme.Base == of(QPalette::Window) && theme.Base == of(QPalette::Button) &&
                       ContrastRatio(theme.Base, theme.Text) >= kHighContrast;
  return theme;
}

QColor BackgroundIn(const QPalette& palette, Color definition) {
  return ToQColor(BackgroundIn(ThemeOf(palette), definition));
}

}  // namespace corlune
