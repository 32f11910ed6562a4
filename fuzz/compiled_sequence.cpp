// Compiled sequences: what the decoder accepts, encoded again, gives the same sequence. The checksum would
// keep nearly every input out, so the input is also tried with a right one.
#include "standins/cmplseq/compiled_sequence.h"

#include <memory>
#include <vector>

#include "fuzz/fuzz_input.h"

using namespace corlune;

namespace {

void Try(std::span<const std::uint8_t> bytes) {
  std::string error;
  const auto decoded = DecodeCompiledSequence(bytes, &error);
  if (!decoded) {
    fuzz::Require(!error.empty(), "a refused sequence has a reason");
    return;
  }
  const auto again = DecodeCompiledSequence(EncodeCompiledSequence(*decoded));
  fuzz::Require(again && *again == *decoded, "a decoded sequence survives encoding");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Try({data, size});
  std::vector<std::uint8_t> mended(data, data + size);
  const std::uint32_t checksum = Crc32(mended);
  for (int i = 0; i < 4; ++i) mended.push_back(static_cast<std::uint8_t>(checksum >> (8 * i)));
  Try(mended);
  return 0;
}
