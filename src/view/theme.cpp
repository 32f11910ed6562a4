#include "view/theme.h"

#include <QPushButton>

#include "view/to_qcolor.h"

namespace corlune {

namespace {

std::uint64_t KeyOf(const QColor& background, const QColor& color) {
  return static_cast<std::uint64_t>(background.rgb()) << 32U | color.rgb();
}

}  // namespace

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

const ColorTheme& DefinitionColors::Theme(const QPalette& palette) {
  if (palette.cacheKey() != key_) {
    key_ = palette.cacheKey();
    if (const ColorTheme theme = ThemeOf(palette); theme != theme_) {
      theme_ = theme;
      looks_.clear();
      lines_.clear();
      definitionLines_.clear();
    }
  }
  return theme_;
}

DefinitionColors::Look DefinitionColors::Of(const QPalette& palette, Color definition) {
  const ColorTheme& theme = Theme(palette);
  const QColor color = ToQColor(definition);
  const auto [found, isNew] = looks_.try_emplace(color.rgb());
  if (isNew) {
    const Color background = BackgroundIn(theme, definition);
    found->second = {ToQColor(background), ToQColor(TextIn(theme, background))};
  }
  return found->second;
}

QColor LineOn(const QColor& background, const QColor& color) {
  return ToQColor(StandingOut(ToColor(color), ToColor(background), kLineContrast));
}

QColor LineOn(const QColor& background, Color definition) {
  return ToQColor(LineIn(definition, ToColor(background)));
}

QColor DefinitionColors::Line(const QColor& background, const QColor& color) {
  const auto [found, isNew] = lines_.try_emplace(KeyOf(background, color));
  if (isNew) found->second = LineOn(background, color);
  return found->second;
}

QColor DefinitionColors::Line(const QColor& background, Color definition) {
  const auto [found, isNew] = definitionLines_.try_emplace(KeyOf(background, ToQColor(definition)));
  if (isNew) found->second = LineOn(background, definition);
  return found->second;
}

void ColorButton(QPushButton& button, const QPalette& desktop, Color face) {
  const ColorTheme theme = ThemeOf(desktop);
  const Color background = BackgroundIn(theme, face);
  const Color text = TextIn(theme, background);
  const Color faint{static_cast<std::uint8_t>((background.Red + text.Red) / 2),
                    static_cast<std::uint8_t>((background.Green + text.Green) / 2),
                    static_cast<std::uint8_t>((background.Blue + text.Blue) / 2)};
  QPalette palette = button.palette();
  palette.setColor(QPalette::Button, ToQColor(background));
  palette.setColor(QPalette::ButtonText, ToQColor(text));
  palette.setColor(QPalette::Disabled, QPalette::ButtonText, ToQColor(faint));
  if (palette != button.palette()) button.setPalette(palette);
}

}  // namespace corlune
