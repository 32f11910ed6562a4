// Waveform files to transfer blocks, against what the processor has to do at least: std::from_chars over the
// text, a copy with exchanged bytes of the array.
#include <benchmark/benchmark.h>
#include <charconv>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "bench/samples.h"
#include "sequence/waveform_file.h"
#include "support/temp_folder.h"

namespace corlune::bench {
namespace {

constexpr std::size_t kPoints = kMaxWaveformPoints;
constexpr std::size_t kArrayOffset = 352;  // of a waveform editor file

// One value a line, as programs write them: four or five digits, half of them negative.
std::string WaveformText() {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> value(-32767, 32767);
  std::string text;
  for (std::size_t i = 0; i < kPoints; ++i) text += std::to_string(value(random)) + "\r\n";
  return text;
}

std::string EditorFile() {
  std::mt19937 random(2);
  std::string bytes(kArrayOffset + 2 * kPoints, '\0');
  for (std::size_t i = kArrayOffset; i < bytes.size(); ++i) bytes[i] = static_cast<char>(random());
  return bytes;
}

void ReadFile(benchmark::State& state, const std::string& path, std::size_t fileSize) {
  WaveformRead read;
  for (auto _ : state) {
    ReadArbFile(path, read);
    benchmark::DoNotOptimize(read.block.data());
    if (read.problem != WaveformProblem::None || read.pointCount != kMaxWaveformPoints)
      Fail(ReasonText(read.reason, MessageCatalogue(10000)));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fileSize));
}

void txt_waveform(benchmark::State& state) {
  const testing::TempFolder folder;
  const std::string text = WaveformText();
  ReadFile(state, folder.Write("wave.txt", text), text.size());
}
BENCHMARK(txt_waveform);

// The bare loop: values one behind the other, no checks, no byte order.
void txt_waveform_reference(benchmark::State& state) {
  const std::string text = WaveformText();
  std::vector<std::int16_t> values(kPoints);
  for (auto _ : state) {
    const char* next = text.data();
    const char* const end = next + text.size();
    std::size_t count = 0;
    while (next < end) {
      next = std::from_chars(next, end, values[count++]).ptr + 2;
    }
    benchmark::DoNotOptimize(values.data());
    benchmark::ClobberMemory();
    if (count != kPoints) Fail("the reference loop lost values");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(txt_waveform_reference);

void wdb_waveform(benchmark::State& state) {
  const testing::TempFolder folder;
  ReadFile(state, folder.Write("wave.wdb", EditorFile()), 2 * kPoints);
}
BENCHMARK(wdb_waveform);

void wdb_waveform_reference(benchmark::State& state) {
  const std::string bytes = EditorFile();
  std::vector<std::uint16_t> block(kPoints);
  for (auto _ : state) {
    std::memcpy(block.data(), bytes.data() + kArrayOffset, 2 * kPoints);
    benchmark::ClobberMemory();
    for (std::uint16_t& point : block) point = static_cast<std::uint16_t>(point << 8 | point >> 8);
    benchmark::DoNotOptimize(block.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(2 * kPoints));
}
BENCHMARK(wdb_waveform_reference);

}  // namespace
}  // namespace corlune::bench

BENCHMARK_MAIN();
