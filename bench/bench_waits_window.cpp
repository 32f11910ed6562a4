// Processor time of a wait in the window program.
#include <QApplication>

#include "app/qt_ports.h"
#include "bench/wait.h"

namespace corlune::bench {
namespace {

// With the monitor's timer on, as during a run: ten ticks a second that find nothing to do.
void window_wait(benchmark::State& state) {
  SteadyTickClock clock;
  QtEventPump pump(clock);
  QtTickSource timer;
  int ticks = 0;
  timer.OnTick([&] { ++ticks; });
  timer.Enable(true);
  WaitInCommandLayer(state, clock, pump);
  if (ticks < 90) Fail("the event loop did not run");
}
CORLUNE_WAIT_BENCHMARK(window_wait);

}  // namespace
}  // namespace corlune::bench

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
