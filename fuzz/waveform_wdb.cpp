// Waveform editor files: the head as given, the file as long as the first four bytes say.
#include <cstring>

#include "fuzz/fuzz_input.h"
#include "sequence/waveform_file.h"

using namespace corlune;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::ScratchFile file(".wdb");
  static WaveformRead read;
  std::uint32_t length = 0;
  if (size >= 4) {
    std::memcpy(&length, data, 4);
    data += 4;
    size -= 4;
  }
  // Two words of the head lie far behind the first byte; the input gives them directly.
  std::string head(342, '\0');
  head += fuzz::Text(data, size);
  file.Set(head, length % 1'200'000);
  ReadArbFile(file.Path(), read);
  if (read.problem == WaveformProblem::None) {
    const std::size_t bytesPerPoint = read.arrayForm ? 2 : 6;
    fuzz::Require(read.block.size() == 8 + bytesPerPoint * static_cast<std::size_t>(read.pointCount),
                  "block length");
  } else {
    fuzz::Require(read.reason.text.has_value() && read.block.size() == 0,
                  "a refused file has a reason and no block");
  }
  return 0;
}
