#include "ui/window_settings.h"

#include <algorithm>

#include <QDialog>
#include <QScreen>
#include <QSettings>

#include "core/files.h"

namespace corlune {

namespace {
constexpr const char* kFileName = "CorluneWindow.ini";
constexpr const char* kResponsesKey = "Simulated/Responses";
constexpr const char* kColorsKey = "Window/Colors";
// Beyond every real desktop; a value outside is damage.
constexpr int kFarthest = 32768;
// What window managers put around a dialog, in pixels.
constexpr QSize kDialogFrame(8, 36);
}  // namespace

WindowSettings::WindowSettings(const std::string& appFolder)
    : path_(QString::fromStdString(JoinPath(appFolder, kFileName))) {}

std::optional<WindowPlace> WindowSettings::Place(const char* window) const {
  const QString section = QString::fromUtf8(window);
  const auto number = [&](const char* key, int least) {
    return Number((std::string(window) + "/" + key).c_str(), least, kFarthest);
  };
  const auto left = number("Left", -kFarthest);
  const auto top = number("Top", -kFarthest);
  const auto width = number("Width", 1);
  const auto height = number("Height", 1);
  if (!left || !top || !width || !height) return std::nullopt;
  const QSettings settings(path_, QSettings::IniFormat);
  return WindowPlace{QRect(*left, *top, *width, *height),
                     settings.value(section + QStringLiteral("/Maximized")).toBool()};
}

std::optional<int> WindowSettings::Number(const char* key, int least, int most) const {
  bool isNumber = false;
  const int value = QSettings(path_, QSettings::IniFormat).value(QString::fromUtf8(key)).toInt(&isNumber);
  if (!isNumber || value < least || value > most) return std::nullopt;
  return value;
}

QStringList WindowSettings::RecentFiles() const {
  const QSettings settings(path_, QSettings::IniFormat);
  QStringList files;
  for (const QString& file : settings.value(QStringLiteral("Recent/Files")).toStringList()) {
    if (!file.isEmpty() && !files.contains(file) && files.size() < kRecentFiles) files.append(file);
  }
  return files;
}

void WindowSettings::Write(const std::optional<WindowPlace>& place, const QStringList& recentFiles) const {
  if (place) WritePlace(kMainSection, *place);
  QSettings(path_, QSettings::IniFormat).setValue(QStringLiteral("Recent/Files"), recentFiles);
}

void WindowSettings::WritePlace(const char* window, const WindowPlace& place) const {
  const QString section = QString::fromUtf8(window);
  QSettings settings(path_, QSettings::IniFormat);
  settings.setValue(section + QStringLiteral("/Left"), place.geometry.x());
  settings.setValue(section + QStringLiteral("/Top"), place.geometry.y());
  settings.setValue(section + QStringLiteral("/Width"), place.geometry.width());
  settings.setValue(section + QStringLiteral("/Height"), place.geometry.height());
  settings.setValue(section + QStringLiteral("/Maximized"), place.maximized);
}

void WindowSettings::WriteNumber(const char* key, std::optional<int> number) const {
  QSettings settings(path_, QSettings::IniFormat);
  if (number) {
    settings.setValue(QString::fromUtf8(key), *number);
  } else {
    settings.remove(QString::fromUtf8(key));
  }
}

std::optional<QSize> WindowSettings::DialogSize(const QString& name) const {
  const auto number = [&](const char* key) {
    return Number(("Dialogs/" + name.toStdString() + key).c_str(), 1, kFarthest);
  };
  const auto width = number("Width");
  const auto height = number("Height");
  if (!width || !height) return std::nullopt;
  return QSize(*width, *height);
}

void WindowSettings::WriteDialogSize(const QString& name, const QSize& size) const {
  WriteNumber(("Dialogs/" + name.toStdString() + "Width").c_str(), size.width());
  WriteNumber(("Dialogs/" + name.toStdString() + "Height").c_str(), size.height());
}

int ExecInItsSize(QDialog& dialog, const WindowSettings& settings) {
  if (dialog.parentWidget() != nullptr) dialog.setFont(dialog.parentWidget()->font());
  dialog.adjustSize();
  const QSize room = dialog.screen()->availableSize() - kDialogFrame;
  dialog.resize(dialog.size().expandedTo(dialog.sizeHint()).boundedTo(room));
  const QSize first = dialog.size();
  if (const auto size = settings.DialogSize(dialog.objectName())) {
    dialog.resize(size->boundedTo(room).expandedTo(dialog.minimumSizeHint()));
  }
  const int result = dialog.exec();
  // A message that was open over the dialog may have had the keyboard.
  if (dialog.parentWidget() != nullptr) dialog.parentWidget()->window()->activateWindow();
  // A dialog that was left in its first size takes the one that its texts need next time, too.
  if (dialog.size() != first) settings.WriteDialogSize(dialog.objectName(), dialog.size());
  return result;
}

std::string WindowSettings::Responses() const {
  return QSettings(path_, QSettings::IniFormat)
      .value(QString::fromUtf8(kResponsesKey))
      .toString()
      .toStdString();
}

void WindowSettings::WriteResponses(const std::string& path) const {
  QSettings(path_, QSettings::IniFormat)
      .setValue(QString::fromUtf8(kResponsesKey), QString::fromStdString(path));
}

WindowColors WindowSettings::Colors() const {
  return static_cast<WindowColors>(Number(kColorsKey, 0, kWindowColors - 1).value_or(0));
}

void WindowSettings::WriteColors(WindowColors colors) const {
  WriteNumber(kColorsKey, static_cast<int>(colors));
}

QStringList WithRecentFile(QStringList files, const QString& path) {
  files.removeAll(path);
  files.prepend(path);
  return files.mid(0, kRecentFiles);
}

QRect ClampToScreens(const QRect& wanted, const QList<QRect>& screens, const QSize& smallest,
                     const QMargins& frame) {
  if (screens.isEmpty()) return wanted;
  const auto shown = [&](const QRect& screen) {
    const QRect part = screen & wanted;
    return static_cast<long long>(part.width()) * part.height();
  };
  const QRect screen = *std::max_element(screens.begin(), screens.end(),
                                         [&](const QRect& a, const QRect& b) { return shown(a) < shown(b); });
  const QSize edges(frame.left() + frame.right(), frame.top() + frame.bottom());
  const QSize size = wanted.size().boundedTo(screen.size() - edges).expandedTo(smallest);
  const QSize whole = size + edges;
  // A window wider than the screen begins at its left edge.
  const int left = std::max(screen.left(), std::min(wanted.left(), screen.right() + 1 - whole.width()));
  const int top = std::max(screen.top(), std::min(wanted.top(), screen.bottom() + 1 - whole.height()));
  return {QPoint(left, top), size};
}

}  // namespace corlune
