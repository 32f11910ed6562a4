#include "view/window_colors.h"

#include <utility>

#include <QApplication>
#include <QPalette>
#include <QToolTip>

namespace corlune {

namespace {

// 0xRRGGBB.
struct Shades {
  unsigned Window, Text, Base, Alternate, Button, Highlight, HighlightedText, Link, Tip, Faint;
};
constexpr Shades kLight{0xEFEFEF, 0x000000, 0xFFFFFF, 0xF7F7F7, 0xEFEFEF,
                        0x2474AC, 0xFFFFFF, 0x0057AE, 0xFFFFDC, 0x8C8C8C};
constexpr Shades kDark{0x2B2D30, 0xE4E6E8, 0x1E1F22, 0x25272A, 0x393B40,
                       0x2474AC, 0xFFFFFF, 0x6CB2F0, 0x43454A, 0x7E8287};

QPalette PaletteOf(const Shades& shades) {
  // The shadows and edges between them follow from these two.
  QPalette palette(QColor(QRgb(shades.Button)), QColor(QRgb(shades.Window)));
  const std::pair<QPalette::ColorRole, unsigned> roles[] = {
      {QPalette::WindowText, shades.Text},
      {QPalette::Text, shades.Text},
      {QPalette::ButtonText, shades.Text},
      {QPalette::ToolTipText, shades.Text},
      {QPalette::BrightText, shades.HighlightedText},
      {QPalette::Base, shades.Base},
      {QPalette::AlternateBase, shades.Alternate},
      {QPalette::ToolTipBase, shades.Tip},
      {QPalette::Highlight, shades.Highlight},
      {QPalette::HighlightedText, shades.HighlightedText},
      {QPalette::Link, shades.Link},
      {QPalette::LinkVisited, shades.Link},
      {QPalette::PlaceholderText, shades.Faint}};
  for (const auto& [role, color] : roles) palette.setColor(role, QColor(QRgb(color)));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(QRgb(shades.Faint)));
  }
  // The style draws what is disabled a second time in this colour, as if it were engraved.
  palette.setColor(QPalette::Disabled, QPalette::Light, QColor(QRgb(shades.Window)));
  palette.setColor(QPalette::Disabled, QPalette::Base, QColor(QRgb(shades.Window)));
  palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(QRgb(shades.Faint)));
  return palette;
}

}  // namespace

void ShowColors(WindowColors colors) {
  QPalette palette;  // an empty one gives the desktop's back
  if (colors == WindowColors::Light) palette = PaletteOf(kLight);
  if (colors == WindowColors::Dark) palette = PaletteOf(kDark);
  QApplication::setPalette(palette);
  QToolTip::setPalette(QApplication::palette());
}

}  // namespace corlune
