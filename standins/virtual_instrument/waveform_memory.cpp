#include "standins/virtual_instrument/waveform_memory.h"

#include <utility>

namespace corlune {
namespace {

constexpr std::size_t kHeaderBytes = 8;
constexpr std::uint32_t kFewestArrayPoints = 4'096;

std::uint32_t ReadWord(std::string_view bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(bytes[offset + i]);
  return value;
}

void AppendWord(std::string& out, std::uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(value >> shift & 0xFF);
}

}  // namespace

ScpiError WaveformMemory::Store(int number, std::string_view name, std::string_view block) {
  if (block.size() < kHeaderBytes) return ScpiError::InvalidBlock;
  const std::uint32_t form = ReadWord(block, 0);
  const std::uint32_t count = ReadWord(block, 4);
  if (form > 1 || count == 0 || count > kPointsPerChannel) return ScpiError::OutOfRange;
  if (form == 0 && (count < kFewestArrayPoints || (count & (count - 1)) != 0)) return ScpiError::OutOfRange;
  const std::size_t pointBytes = form == 0 ? 2 : 6;
  if (block.size() != kHeaderBytes + count * pointBytes) return ScpiError::InvalidBlock;

  StoredWaveform& waveform = waveforms_[static_cast<std::size_t>(number - 1)];
  if (full_ || used_ - waveform.points + count > capacity_) return ScpiError::OutOfMemory;
  used_ = used_ - waveform.points + count;
  waveform.name = name;
  waveform.array = form == 0;
  waveform.points = count;
  waveform.data = std::string(block.substr(kHeaderBytes));  // exactly as large as it must be
  return ScpiError::None;
}

void WaveformMemory::Delete(int number) {
  StoredWaveform& waveform = waveforms_[static_cast<std::size_t>(number - 1)];
  used_ -= waveform.points;
  std::string().swap(waveform.data);  // assigning an empty text would keep the memory
  waveform = StoredWaveform{};
}

void WaveformMemory::DeleteAll() {
  for (int number = 1; number <= kWaveformNumbers; ++number) Delete(number);
}

std::string WaveformMemory::Block(int number) const {
  const StoredWaveform& waveform = At(number);
  std::string block;
  if (waveform.points == 0) return block;
  block.reserve(kHeaderBytes + waveform.data.size());
  AppendWord(block, waveform.array ? 0 : 1);
  AppendWord(block, waveform.points);
  block += waveform.data;
  return block;
}

}  // namespace corlune
