// corlune: the window program. Options are described in the user guide.
#include <cstdlib>
#include <iostream>
#include <string>

#include <QApplication>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QTranslator>

#include "app/window_program.h"
#include "platform/folders.h"
#include "platform/language.h"
#include "view/window_style.h"

namespace corlune {
namespace {

constexpr int kExitFailed = 1;

// The toolkit ends a program without a display by a crash; a plain sentence serves better.
bool HasDisplay() {
#ifdef _WIN32
  return true;
#else
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    const char* value = std::getenv(name);
    if (value && *value) return true;
  }
  return false;
#endif
}

int Main(int argc, char** argv) {
  ProgramOptions options;
  std::string file;
  if (const auto exitCode = ParseWindowOptions(argc, argv, options, file)) return *exitCode;
  ResolveProgramOptions(options, ProgramFolder());
  if (!HasDisplay()) {
    std::cerr << "corlune: no display; corlune-cli works without one" << std::endl;
    return kExitFailed;
  }

  int count = 1;  // the options are this program's, not the toolkit's
  QApplication application(count, argv);
  QApplication::setApplicationName(QString::fromUtf8(kApplicationTitle));
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setStyle(new WindowStyle);  // the application owns it

  const bool english = options.english.value_or(CheckLanguage());
  QTranslator toolkitTexts;
  if (!english &&
      toolkitTexts.load(QStringLiteral("qtbase_ja"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QApplication::installTranslator(&toolkitTexts);
  }
  if (!file.empty()) file = QFileInfo(QString::fromStdString(file)).absoluteFilePath().toStdString();
  if (!options.folder.empty()) {
    options.folder = QFileInfo(QString::fromStdString(options.folder)).absoluteFilePath().toStdString();
  }
  WindowProgram program(options, english, file);
  return program.Run();
}

}  // namespace
}  // namespace corlune

int main(int argc, char** argv) {
  return corlune::Main(argc, argv);
}
