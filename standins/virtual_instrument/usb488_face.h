// Usb488Face: a USB488 library's operations over the USB488 connectors of a bench. Not thread-safe. Its C
// operations work on the face that SetFace chose (chosen_face.h).
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "platform/abi/usb488.h"
#include "standins/virtual_instrument/instrument_io.h"
#include "standins/virtual_instrument/virtual_bench.h"

namespace corlune {

// Error codes beside USB488_ERROR_NO_DEVICE.
enum Usb488Error : std::int32_t {
  kUsb488NotInitialized = 1,
  kUsb488BadHandle = 2,
  kUsb488Busy = 3,  // another device is open
  kUsb488TimedOut = 4,
};

class Usb488Face {
 public:
  Usb488Face(VirtualBench& bench, const InstrumentIo& io) : bench_(bench), io_(io) {}

  // These return the status word.
  std::int32_t Initialize();
  std::int32_t Finalize();
  std::int32_t OpenDevice(std::int32_t id);  // the handle, 0 when it cannot be opened
  std::int32_t CloseDevice(std::int32_t handle);
  std::int32_t SendTextData(std::int32_t handle, std::string_view text);
  std::int32_t ReceiveTextData(std::int32_t handle, std::span<char> buffer);
  std::int32_t StatusByteQuery(std::int32_t handle, std::int32_t* statusByte);
  std::int32_t SetTimeout(std::int32_t handle, std::int32_t milliseconds);  // 0: endless
  std::int32_t DeviceClear(std::int32_t handle);
  std::int32_t SetInterfaceClear(std::int32_t handle);
  std::int32_t SetRemote(std::int32_t handle, bool on);
  std::int32_t ClearStatus();

  std::int32_t Status() const { return status_; }
  std::int32_t ErrorCode() const { return error_; }
  std::int32_t DataCount() const { return count_; }

 private:
  // A failure stays in the status word until it is cleared.
  std::int32_t Fail(std::int32_t error, std::int32_t bits = USB488_STATUS_ERROR);
  std::int32_t Finish(const Exchanged& exchanged);
  template <class Operation>
  std::int32_t OnDevice(std::int32_t handle, Operation operation);

  VirtualBench& bench_;
  const InstrumentIo& io_;
  bool initialized_ = false;
  std::int32_t open_ = 0;           // id and handle of the open device, 0: none
  std::uint32_t timeOut_ = 10'000;  // ms
  std::int32_t status_ = 0;
  std::int32_t error_ = 0;
  std::int32_t count_ = 0;
};

}  // namespace corlune
