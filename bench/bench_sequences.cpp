// Sequence files and the sequence text of 256 steps on two channels, against loops that only read or print
// the same numbers.
#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <charconv>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench/samples.h"
#include "compile/sequence_text.h"
#include "core/files.h"
#include "sequence/sequence_file.h"

namespace corlune::bench {
namespace {

const SequenceData& Sequence() {
  static const auto sequence = std::make_unique<SequenceData>(FullSequence(MAX_STEPS));
  return *sequence;
}

std::string FileBytes() {
  return EncodeText(
      FormatSequenceFile(Sequence(), TwoChannelState(), ShippedDefinition(), SequenceFileForm::User));
}

std::string SequenceText() {
  std::string text;
  AppendSequenceText(text, Sequence(), ShippedDefinition(), "QM2220", MAX_CHANNELS);
  return text;
}

// The fields behind the "=" of each line that are numbers, each with a "," behind it. The numbers in the keys
// do not count.
std::string NumbersOf(std::string_view text) {
  std::string numbers;
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find("\r\n"));
    text.remove_prefix(std::min(line.size() + 2, text.size()));
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) continue;
    line.remove_prefix(equals + 1);
    while (!line.empty()) {
      const std::string_view field = line.substr(0, line.find(','));
      line.remove_prefix(std::min(field.size() + 1, line.size()));
      double value = 0;
      const auto [stop, error] = std::from_chars(field.data(), field.data() + field.size(), value);
      if (field.empty() || error != std::errc() || stop != field.data() + field.size()) continue;
      numbers.append(field).push_back(',');
    }
  }
  return numbers;
}

std::vector<double> ParseAll(const std::string& numbers) {
  std::vector<double> values;
  const char* const end = numbers.data() + numbers.size();
  for (const char* next = numbers.data(); next < end;) {
    double value = 0;
    next = std::from_chars(next, end, value).ptr + 1;
    values.push_back(value);
  }
  return values;
}

void PrintAll(benchmark::State& state, const std::vector<double>& values) {
  if (values.size() < std::size_t{MAX_STEPS} * MAX_CHANNELS * 5) Fail("the reference lacks numbers");
  std::string out(values.size() * 25, '\0');
  for (auto _ : state) {
    char* next = out.data();
    char* const end = next + out.size();
    for (const double value : values) {
      next = std::to_chars(next, end, value, std::chars_format::general, 15).ptr;
      *next++ = ',';
    }
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.counters["numbers"] = static_cast<double>(values.size());
}

void sequence_load(benchmark::State& state) {
  const std::string bytes = FileBytes();
  const DefinitionFor definitions = OneDefinition(ShippedDefinition());
  const auto loaded = std::make_unique<SequenceData>();
  SystemSettings settings;
  for (auto _ : state) {
    const ReadResult result =
        ParseSequenceFile(DecodeText(bytes), SequenceFileForm::User, definitions, *loaded, settings);
    if (result.Problem != SequenceFileProblem::None) Fail("the file does not load: " + result.Detail);
  }
  if (loaded->Steps != Sequence().Steps || loaded->Cells != Sequence().Cells) Fail("the load lost values");
}
BENCHMARK(sequence_load);

void sequence_load_reference(benchmark::State& state) {
  const std::string numbers = NumbersOf(FileBytes());
  std::vector<double> values = ParseAll(numbers);
  for (auto _ : state) {
    const char* const end = numbers.data() + numbers.size();
    double* value = values.data();
    for (const char* next = numbers.data(); next < end;) next = std::from_chars(next, end, *value++).ptr + 1;
    benchmark::DoNotOptimize(values.data());
    benchmark::ClobberMemory();
  }
  state.counters["numbers"] = static_cast<double>(values.size());
}
BENCHMARK(sequence_load_reference);

void sequence_save(benchmark::State& state) {
  const AppState setup = TwoChannelState();
  std::string bytes;
  for (auto _ : state) {
    bytes = EncodeText(FormatSequenceFile(Sequence(), setup, ShippedDefinition(), SequenceFileForm::User));
    benchmark::DoNotOptimize(bytes.data());
  }
  state.counters["bytes"] = static_cast<double>(bytes.size());
}
BENCHMARK(sequence_save);

void sequence_save_reference(benchmark::State& state) {
  PrintAll(state, ParseAll(NumbersOf(FileBytes())));
}
BENCHMARK(sequence_save_reference);

void sequence_text(benchmark::State& state) {
  std::string text;
  for (auto _ : state) {
    text.clear();
    text.shrink_to_fit();
    AppendSequenceText(text, Sequence(), ShippedDefinition(), "QM2220", MAX_CHANNELS);
    benchmark::DoNotOptimize(text.data());
  }
  state.counters["bytes"] = static_cast<double>(text.size());
}
BENCHMARK(sequence_text);

void sequence_text_reference(benchmark::State& state) {
  PrintAll(state, ParseAll(NumbersOf(SequenceText())));
}
BENCHMARK(sequence_text_reference);

}  // namespace
}  // namespace corlune::bench

BENCHMARK_MAIN();
