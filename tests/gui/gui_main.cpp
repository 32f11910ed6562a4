// Main of the tests that show widgets: on the offscreen platform, in the program's style.
#include <gmock/gmock.h>

#include <QApplication>

#include "view/window_style.h"

// What the font libraries keep until the process ends.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\nleak:libQt6XcbQpa\n";
}

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleMock(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setStyle(new corlune::WindowStyle);
  return RUN_ALL_TESTS();
}
