// Waveform files of text. A file of repeated values reaches the counts that the instrument takes.
#include "fuzz/fuzz_input.h"
#include "sequence/waveform_file.h"

using namespace corlune;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::ScratchFile file(".txt");
  static WaveformRead read;
  std::string bytes;
  if (size > 0) {
    // The first byte says how often the rest is repeated: 1, 2, 4 ... 4096 times, 1 MB at most.
    const std::string_view rest = fuzz::Text(data + 1, size - 1);
    const std::size_t times = std::size_t{1} << (data[0] % 13);
    for (std::size_t i = 0; i < times && bytes.size() + rest.size() <= 1'000'000; ++i) bytes += rest;
  }
  file.Set(bytes);
  ReadArbFile(file.Path(), read);
  if (read.problem == WaveformProblem::None) {
    fuzz::Require(read.pointCount >= kMinWaveformPoints && read.pointCount <= kMaxWaveformPoints &&
                      (read.pointCount & (read.pointCount - 1)) == 0,
                  "an accepted count is a power of two");
    fuzz::Require(read.block.size() == 8 + 2 * static_cast<std::size_t>(read.pointCount), "block length");
  } else {
    fuzz::Require(read.reason.text.has_value() && read.block.size() == 0,
                  "a refused file has a reason and no block");
  }
  return 0;
}
