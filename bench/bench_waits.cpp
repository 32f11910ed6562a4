// Processor time of a wait in the console program.
#include "bench/wait.h"
#include "cli/console_loop.h"

namespace corlune::bench {
namespace {

// With the monitor's timer on, as during a run: ten ticks a second that find nothing to do.
void console_wait(benchmark::State& state) {
  SteadyTickClock clock;
  ConsoleLoop loop(clock);
  int ticks = 0;
  loop.OnTick([&] { ++ticks; });
  loop.Enable(true);
  WaitInCommandLayer(state, clock, loop);
  if (ticks < 90) Fail("the event loop did not run");
}
CORLUNE_WAIT_BENCHMARK(console_wait);

}  // namespace
}  // namespace corlune::bench

BENCHMARK_MAIN();
