// SCPI input of the virtual instrument: any bytes in any pieces, with replies read and time passing.
#include <array>

#include "fuzz/fuzz_input.h"
#include "standins/virtual_instrument/virtual_instrument.h"

using namespace corlune;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::uint32_t now = 0;
  VirtualInstrument instrument({"QM2220", "QM000001"}, [&now] { return now; });
  std::array<char, 64> buffer{};
  // 0xFF ends a message, 0xFE reads, 0xFD lets a second pass, 0xFC clears the device; the rest is input.
  std::size_t from = 0;
  for (std::size_t i = 0; i <= size; ++i) {
    const bool control = i < size && data[i] >= 0xFC;
    if (i < size && !control) continue;
    instrument.Write(fuzz::Text(data + from, i - from), i == size || data[i] == 0xFF);
    from = i + 1;
    if (i == size) break;
    if (data[i] == 0xFE && instrument.ReplyDelay()) instrument.Read(buffer, '\n');
    if (data[i] == 0xFD) now += 1000;
    if (data[i] == 0xFC) instrument.DeviceClear();
  }
  instrument.SerialPoll();
  const int slot = instrument.CurrentSlot();
  fuzz::Require(slot >= -1 && slot < 256, "the running slot is in range");
  return 0;
}
