// GpibBus: the bus that the GPIB connectors of a bench are on. The libraries of two boards drive it
// (ni488_face.h, ieee32m_face.h); each has an address of its own, below `own`, and is controller in charge.
// Only what is addressed takes part in a transfer. Time-outs are in ms.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string_view>

#include "standins/virtual_instrument/instrument_io.h"
#include "standins/virtual_instrument/virtual_bench.h"

namespace corlune {

// Command bytes. An address stands in the low five bits of the last two.
enum GpibCommand : std::uint8_t {
  kGpibGoToLocal = 0x01,
  kGpibSelectedClear = 0x04,
  kGpibTrigger = 0x08,
  kGpibClear = 0x14,
  kGpibListen = 0x20,
  kGpibUnlisten = 0x3F,
  kGpibTalk = 0x40,
  kGpibUntalk = 0x5F,
};

class GpibBus {
 public:
  GpibBus(VirtualBench& bench, const InstrumentIo& io) : bench_(bench), io_(io) {}

  void InterfaceClear();
  void RemoteEnable(bool on);
  // Bytes with ATN: addresses, clears, local. A clear that an instrument does not take is reported.
  Exchanged Command(std::span<const std::uint8_t> bytes, std::uint32_t timeOut);
  // Gone when nobody listens.
  Exchanged Write(int own, std::string_view bytes, bool end, std::uint32_t timeOut);
  // Times out when nobody talks.
  Exchanged Read(int own, std::span<char> buffer, std::optional<char> terminator, std::uint32_t timeOut);
  Exchanged Poll(int address, std::uint8_t& statusByte, std::uint32_t timeOut);

 private:
  Exchanged CommandByte(std::uint8_t byte, std::uint32_t timeOut);

  VirtualBench& bench_;
  const InstrumentIo& io_;
  std::optional<int> talker_;
  std::set<int> listeners_;
  bool remote_ = false;
};

}  // namespace corlune
