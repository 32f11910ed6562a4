// Shows a small window with the title given on the command line until it is killed: another program on the
// same desktop.
#include <QApplication>
#include <QLabel>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QLabel window(QStringLiteral("another program"));
  window.setWindowTitle(argc > 1 ? QString::fromUtf8(argv[1]) : QString());
  window.show();
  return QApplication::exec();
}
