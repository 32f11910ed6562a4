// WindowSettings: what the main window keeps for the next start beside the work file: places and sizes of the
// windows and their parts, choices of how things are shown and recent files, in CorluneWindow.ini of the
// application folder. Nothing in it is needed to start.
#pragma once

#include <optional>
#include <string>

#include <QList>
#include <QMargins>
#include <QRect>
#include <QSize>
#include <QStringList>

#include "view/window_colors.h"

class QDialog;

namespace corlune {

inline constexpr int kRecentFiles = 8;

struct WindowPlace {
  QRect geometry;  // without the frame, when not maximised
  bool maximized = false;
};

class WindowSettings {
 public:
  explicit WindowSettings(const std::string& appFolder);

  // nullopt when the file names no usable place. `window`: the section of the main window or of the view.
  std::optional<WindowPlace> Place(const char* window = kMainSection) const;
  QStringList RecentFiles() const;
  // A number by "section/key"; nullopt: none, or outside `least` to `most`.
  std::optional<int> Number(const char* key, int least, int most) const;
  // A file that cannot be written is no reason to complain: the next start then begins at the default place.
  void Write(const std::optional<WindowPlace>& place, const QStringList& recentFiles) const;
  void WritePlace(const char* window, const WindowPlace& place) const;
  void WriteNumber(const char* key, std::optional<int> number) const;
  // Sizes of the dialogs, by object name; nullopt: none yet.
  std::optional<QSize> DialogSize(const QString& name) const;
  void WriteDialogSize(const QString& name, const QSize& size) const;
  // The response file of simulated instruments; empty: none.
  std::string Responses() const;
  void WriteResponses(const std::string& path) const;
  // How the windows are coloured.
  WindowColors Colors() const;
  void WriteColors(WindowColors colors) const;

  static constexpr const char* kMainSection = "Window";
  static constexpr const char* kViewSection = "View";
  static constexpr const char* kSignalShown = "Window/Signal";

 private:
  QString path_;
};

// Shows `dialog` in the size that it was left with, in the font of its parent; what exec() returns. Pumps
// events.
int ExecInItsSize(QDialog& dialog, const WindowSettings& settings);

// `path` in front of the list, once, the list at most kRecentFiles long.
QStringList WithRecentFile(QStringList files, const QString& path);

// The corner of the frame and the size inside it, moved and shrunk so that the window lies with its frame
// within the screen that shows most of it (else the first one), but not below `smallest`. Without screens
// `wanted` itself.
QRect ClampToScreens(const QRect& wanted, const QList<QRect>& screens, const QSize& smallest,
                     const QMargins& frame = {});

}  // namespace corlune
