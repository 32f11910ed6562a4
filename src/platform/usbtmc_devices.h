// The kernel's character devices for USBTMC instruments (/dev/usbtmc0 ...): the system calls that the
// built-in VISA face makes, and nothing else, so that tests can run it on devices of their own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace corlune {

// One device node and what sysfs says of the instrument behind it.
struct UsbTmcNode {
  std::string Path;  // "/dev/usbtmc0"
  std::uint16_t Vendor = 0;
  std::uint16_t Product = 0;
  std::string Serial;
};

// Requests of the kernel's driver, linux/usb/tmc.h. The argument's type stands behind each.
enum class UsbTmcRequest {
  Clear,           // none
  SetTimeOut,      // std::uint32_t, ms
  SetEnd,          // std::uint8_t: END goes with the last byte of a write
  SetTerminator,   // UsbTmcTerminator
  ReadStatusByte,  // std::uint8_t
  SetRemote,       // std::uint8_t
  GoToLocal,       // none
  HowReadEnded,    // std::uint8_t: kUsbTmcReadEnd of the last read, older drivers do not know
};
struct UsbTmcTerminator {
  std::uint8_t Character = 0;
  std::uint8_t Enabled = 0;
};
enum UsbTmcReadEnd : std::uint8_t { kUsbTmcEnd = 1, kUsbTmcTerminated = 2 };

class UsbTmcDevices {
 public:
  virtual ~UsbTmcDevices() = default;
  virtual std::vector<UsbTmcNode> List() = 0;
  // These return a descriptor, a number of bytes or 0; a failure is the negative error number (-EACCES).
  virtual int Open(const std::string& path) = 0;
  virtual int Close(int descriptor) = 0;
  virtual std::int64_t Read(int descriptor, void* buffer, std::size_t size) = 0;
  virtual std::int64_t Write(int descriptor, const void* data, std::size_t size) = 0;
  virtual int Control(int descriptor, UsbTmcRequest request, void* argument) = 0;
};

// Those of the system; none outside Linux.
UsbTmcDevices& SystemUsbTmcDevices();

}  // namespace corlune
