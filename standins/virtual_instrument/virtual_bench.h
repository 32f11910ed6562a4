// VirtualBench: the virtual instruments that are plugged in, and the VISA resource names they have.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standins/virtual_instrument/virtual_instrument.h"

namespace corlune {

inline constexpr std::uint16_t kUsbVendor = 0x3A1F;

class VirtualBench {
 public:
  explicit VirtualBench(InstrumentClock clock) : clock_(std::move(clock)) {}

  // The reference stays valid as long as the bench.
  VirtualInstrument& Add(InstrumentIdentity identity);
  std::size_t Count() const { return instruments_.size(); }
  VirtualInstrument& At(std::size_t index) { return *instruments_.at(index); }
  const VirtualInstrument& At(std::size_t index) const { return *instruments_.at(index); }

  // "USB0::0x3A1F::0x2220::QM000001::INSTR"
  static std::string ResourceName(const InstrumentIdentity& identity);
  static std::uint16_t UsbProduct(const InstrumentIdentity& identity);  // 0x2210, 0x2220

  // Adds the instruments of a list such as "QM2220:QM000001,QM2210:QM000002" with the faults of
  // `faults` (fault_plan.h). False when either text is malformed or a serial number comes twice; *error then
  // says why and nothing is added.
  [[nodiscard]] bool AddFromText(std::string_view instruments, std::string_view faults, std::string* error);

 private:
  InstrumentClock clock_;
  std::vector<std::unique_ptr<VirtualInstrument>> instruments_;
};

}  // namespace corlune
