// Widths of the main window's parts, in twips (15 to a pixel at 96 dpi).
#pragma once

namespace corlune {

struct FormStyle {
  int Window = 0;
  int CommonGrid = 0;   // MSFlexGrid1
  int ChannelGrid = 0;  // every member of MSFlexGrid2
  int Tabs = 0;         // SSTab1
  bool operator==(const FormStyle&) const = default;
};

// The window alone, and tiled beside the sequence view.
inline constexpr FormStyle kNormalStyle{10995, 8415, 10215, 10575};
inline constexpr FormStyle kAlignedStyle{7680, 5580, 7175, 7435};
inline constexpr int kNormalHeight = 9900;
// From this width of the window on the channels stand side by side.
inline constexpr int kSideBySideWindow = 22500;
// Below this nothing can be shown without being cut off.
inline constexpr int kLeastWidth = 7680;
inline constexpr int kLeastHeight = 7200;

// The parts of a window of any width: between the two styles in proportion; beyond the normal one the common
// grid, which then shows all its columns, keeps its width and the channel grids take the rest.
constexpr FormStyle StyleForWidth(int window) {
  if (window >= kNormalStyle.Window) {
    const int more = window - kNormalStyle.Window;
    return {window, kNormalStyle.CommonGrid, kNormalStyle.ChannelGrid + more, kNormalStyle.Tabs + more};
  }
  constexpr int kSpan = kNormalStyle.Window - kAlignedStyle.Window;
  const int part = window > kAlignedStyle.Window ? window - kAlignedStyle.Window : 0;
  const auto between = [part](int narrow, int wide) { return narrow + (wide - narrow) * part / kSpan; };
  return {window, between(kAlignedStyle.CommonGrid, kNormalStyle.CommonGrid),
          between(kAlignedStyle.ChannelGrid, kNormalStyle.ChannelGrid),
          between(kAlignedStyle.Tabs, kNormalStyle.Tabs)};
}

}  // namespace corlune
