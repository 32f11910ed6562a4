// The colours of the definition on light, dark and high contrast desktops.
#include "editing/color_theme.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "editing_rig.h"

namespace corlune {
namespace {

const ColorTheme kLight;
const ColorTheme kThemes[] = {kLight,
                              {{0x1E, 0x1F, 0x22}, {0xE6, 0xE6, 0xE6}, true, false},
                              {{0x2D, 0x2D, 0x2D}, {0xFF, 0xFF, 0xFF}, true, false},
                              {{0x50, 0x50, 0x50}, {0xB0, 0xB0, 0xB0}, true, false},
                              {{0, 0, 0}, {0xFF, 0xFF, 0}, true, true},
                              {{0xFF, 0xFF, 0xFF}, {0, 0, 0}, false, true}};

std::vector<Color> ShippedColors() {
  const ModelDefinition& shipped = testing::ShippedDefinition();
  std::vector<Color> colors{shipped.DefaultSequence, shipped.LoopSequence, shipped.EndlessSequence,
                            shipped.Common.Background, shipped.Common.CurrentCell};
  for (const ButtonSpec& button : shipped.Buttons)
    colors.insert(colors.end(), {button.Color1, button.Color2});
  const auto add = [&](const ParamDef& param) {
    colors.insert(colors.end(), param.ModeColors.begin(), param.ModeColors.end());
  };
  for (const ParamDef& param : shipped.Common.Params) add(param);
  for (const ParamDef& param : shipped.Sequence.Params[0]) add(param);
  return colors;
}

// Degrees around the colour wheel; nullopt: too grey to have a hue.
std::optional<double> Hue(Color color) {
  const auto [least, most] = std::minmax({color.Red, color.Green, color.Blue});
  if (most - least < 24) return std::nullopt;
  const double across = std::sqrt(3.0) * (color.Green - color.Blue);
  return std::atan2(across, 2.0 * color.Red - color.Green - color.Blue) * 180 / std::acos(-1);
}

TEST(ColorTheme, TextOnEveryColour) {
  std::vector<Color> colors = ShippedColors();
  for (int i = 0; i < 512; ++i) {
    const auto part = [&](int shift) { return static_cast<std::uint8_t>((i >> shift & 7) * 36); };
    colors.push_back({part(6), part(3), part(0)});
  }
  for (const ColorTheme& theme : kThemes) {
    for (const Color color : colors) {
      SCOPED_TRACE(::testing::Message() << int{color.Red} << " " << int{color.Green} << " " << int{color.Blue}
                                        << " on " << int{theme.Base.Red});
      const Color background = BackgroundIn(theme, color);
      if (theme == kLight) {
        ASSERT_EQ(background, color);
      }
      ASSERT_GE(ContrastRatio(TextIn(theme, background), background), theme.Contrast());
      ASSERT_GE(ContrastRatio(StandingOut(color, background, kLineContrast), background), kLineContrast);
      const auto before = Hue(color);
      for (const auto& after : {Hue(background), Hue(StandingOut(color, theme.Base, kTextContrast)),
                                Hue(LineIn(color, background))}) {
        if (before && after) {
          ASSERT_LT(std::abs(std::remainder(*before - *after, 360)), 45);
        }
      }
    }
  }
}

// What the definition tells apart can be told apart on a dark desktop.
TEST(ColorTheme, ShippedColoursStayApart) {
  const auto distance = [](Color a, Color b) {
    return std::abs(a.Red - b.Red) + std::abs(a.Green - b.Green) + std::abs(a.Blue - b.Blue);
  };
  for (const ColorTheme& theme : kThemes) {
    EXPECT_EQ(BackgroundIn(theme, kWindowColor), theme.Base);
    for (const Color a : ShippedColors()) {
      for (const Color b : ShippedColors()) {
        const int apart = distance(BackgroundIn(theme, a), BackgroundIn(theme, b));
        EXPECT_GE(apart, std::min(distance(a, b) / 3, 16)) << int{a.Red} << int{a.Green} << int{b.Red};
      }
    }
  }
}

}  // namespace
}  // namespace corlune
