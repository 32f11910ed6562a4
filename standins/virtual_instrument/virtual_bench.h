// VirtualBench: the virtual instruments that are there, and the connectors by which they are reached.
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
inline constexpr int kLastGpibAddress = 30;
inline constexpr int kLastUsb488Id = 127;

// What of an instrument is plugged in. One with several connectors can be loaded through one and run through
// another.
struct Connectors {
  bool usbTmc = true;
  int gpib = 0;    // primary address 1..30, 0: not on the bus
  int usb488 = 0;  // device id 1..127, 0: not connected
};

class VirtualBench {
 public:
  explicit VirtualBench(InstrumentClock clock) : clock_(std::move(clock)) {}

  // The reference stays valid as long as the bench.
  VirtualInstrument& Add(InstrumentIdentity identity, Connectors connectors = {});
  std::size_t Count() const { return instruments_.size(); }
  VirtualInstrument& At(std::size_t index) { return *instruments_.at(index); }
  const VirtualInstrument& At(std::size_t index) const { return *instruments_.at(index); }

  // Plugged in there and not unplugged since; null where nobody is.
  bool OnUsbTmc(std::size_t index) const { return connectors_.at(index).usbTmc && At(index).Present(); }
  VirtualInstrument* OnGpib(int address);
  VirtualInstrument* OnUsb488(int id);

  // "USB0::0x3A1F::0x2220::QM000001::INSTR"
  static std::string ResourceName(const InstrumentIdentity& identity);
  static std::uint16_t UsbProduct(const InstrumentIdentity& identity);  // 0x2210, 0x2220

  // Adds the instruments of a list separated by ",": model ":" serial number, and perhaps ":" and connectors
  // joined by "+", such as "QM2220:QM000001:usbtmc+gpib=2,QM2210:QM000002:usb488=1". Without connectors the
  // n-th instrument of the list has all three: USBTMC, GPIB address n + 1, USB488 id n. `faults`: see
  // fault_plan.h. False when a text is malformed or a serial number, address or id comes twice; *error then
  // says why and nothing is added.
  [[nodiscard]] bool AddFromText(std::string_view instruments, std::string_view faults, std::string* error);

 private:
  InstrumentClock clock_;
  std::vector<std::unique_ptr<VirtualInstrument>> instruments_;
  std::vector<Connectors> connectors_;  // of each
};

}  // namespace corlune
