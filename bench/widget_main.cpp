// Main of the benchmarks that paint widgets: on the offscreen platform, in the program's style.
#include <benchmark/benchmark.h>

#include <QApplication>

#include "view/window_style.h"

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setStyle(new corlune::WindowStyle);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
