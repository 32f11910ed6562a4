// WaveformMemory: the arbitrary waveforms that an instrument holds under the numbers 1..128.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "standins/virtual_instrument/scpi_parser.h"

namespace corlune {

inline constexpr int kWaveformNumbers = 128;
inline constexpr std::uint32_t kPointsPerChannel = 524'288;

struct StoredWaveform {
  std::string name;
  bool array = true;         // false: point pairs
  std::uint32_t points = 0;  // points or pairs; 0: the number is empty
  std::string data;          // as sent, high byte first: 2 bytes a point, 6 bytes a pair
};

class WaveformMemory {
 public:
  // Room for kPointsPerChannel points or pairs a channel.
  explicit WaveformMemory(int channels)
      : capacity_(static_cast<std::uint32_t>(channels) * kPointsPerChannel) {}

  // Stores a transfer block: form (4 bytes, 0 array, 1 pairs), count (4 bytes), the points; high byte first.
  // An array holds a power of two from 4,096 to 524,288 points, pairs number 1 to 524,288. `number` is
  // 1..128; what it held before is replaced. On an error (InvalidBlock: the length does not fit the count;
  // OutOfRange: form or count; OutOfMemory) nothing changes.
  ScpiError Store(int number, std::string_view name, std::string_view block);
  void Delete(int number);
  void DeleteAll();
  const StoredWaveform& At(int number) const { return waveforms_[static_cast<std::size_t>(number - 1)]; }
  // The transfer block of a number as Store takes it; empty for an empty number.
  std::string Block(int number) const;

  std::uint32_t UsedPoints() const { return used_; }
  // Whatever is stored, nothing more fits.
  void PretendFull(bool full) { full_ = full; }

 private:
  std::array<StoredWaveform, kWaveformNumbers> waveforms_{};
  std::uint32_t capacity_;
  std::uint32_t used_ = 0;
  bool full_ = false;
};

}  // namespace corlune
