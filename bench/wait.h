// Ten seconds of a transfer's wait on the real clock, in the command layer, with the event loop of a program.
#pragma once

#include <benchmark/benchmark.h>
#include <cstdint>

#include "bench/samples.h"
#include "comm/command_layer.h"
#include "core/ports.h"
#include "core/system_ports.h"

namespace corlune::bench {

inline constexpr std::int32_t kWait = 10000;  // ms

inline void WaitInCommandLayer(benchmark::State& state, SteadyTickClock& clock, EventPump& pump) {
  AppState appState = TwoChannelState();
  GpFrontEnd noInstrument(appState, {}, nullptr);
  CommandLayer commands(appState, ShippedDefinition(), noInstrument, clock, pump);
  for (auto _ : state) {
    const std::uint32_t start = clock.Now();
    commands.DelayMs(kWait);
    if (TicksSince(clock.Now(), start) < kWait) Fail("the wait was too short");
  }
}

}  // namespace corlune::bench

// Processor time of the whole process, all threads, once.
#define CORLUNE_WAIT_BENCHMARK(name) \
  BENCHMARK(name)->Iterations(1)->Repetitions(1)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond)
