// Memory that 128 waveform files of the largest size take on their way to the instrument, one after the other
// in one process. Counts every allocation: the figure is the highest level during the transfers over the
// level before the first, with everything that the virtual instrument keeps in the same process.
#include <algorithm>
#include <atomic>
#include <benchmark/benchmark.h>
#include <cstddef>
#include <cstdlib>
#include <malloc.h>
#include <new>
#include <string>

#include "bench/instrument_bench.h"

namespace {

struct Heap {
  std::atomic<std::size_t> now = 0;
  std::atomic<std::size_t> peak = 0;
};
Heap heap;

void* Take(std::size_t size) {
  void* const memory = std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  heap.now += malloc_usable_size(memory);
  heap.peak = std::max(heap.peak.load(), heap.now.load());
  return memory;
}

void Give(void* memory) {
  if (memory != nullptr) heap.now -= malloc_usable_size(memory);
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  return Take(size);
}
void* operator new[](std::size_t size) {
  return Take(size);
}
void operator delete(void* memory) noexcept {
  Give(memory);
}
void operator delete[](void* memory) noexcept {
  Give(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  Give(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  Give(memory);
}

namespace corlune::bench {
namespace {

constexpr std::size_t kFileSize = 352 + 2 * std::size_t{kMaxWaveformPoints};

void waveform_memory(benchmark::State& state) {
  InstrumentBench bench;
  Session& session = *bench.session;
  for (int number = 1; number <= kArbNumbers; ++number) {
    bench.folder.Write(std::to_string(number) + ".wdb", std::string(kFileSize, static_cast<char>(number)));
  }
  for (auto _ : state) {
    const std::size_t before = heap.now;
    heap.peak = before;
    for (int number = 1; number <= kArbNumbers; ++number) {
      ArbFileEntry& entry = session.Sequence().Channels.ArbFiles[static_cast<std::size_t>(number) - 1];
      entry.FilePath = bench.folder.File(std::to_string(number) + ".wdb");
      if (session.Waveforms().TransferOne(entry, number) != ArbTransfer::Done) Fail("not transferred");
      if (bench.bench.At(0).WaveformPoints() != kMaxWaveformPoints) Fail("did not arrive");
      // One such waveform fills the instrument.
      if (Failed(session.Waveforms().ClearOne(entry, number))) Fail("not deleted");
    }
    state.counters["heap_growth"] = static_cast<double>(heap.peak - before);
  }
}
BENCHMARK(waveform_memory)->Iterations(1)->Repetitions(1);

}  // namespace
}  // namespace corlune::bench

BENCHMARK_MAIN();
