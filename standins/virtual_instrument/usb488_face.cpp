#include "standins/virtual_instrument/usb488_face.h"

#include <limits>

namespace corlune {

std::int32_t Usb488Face::Fail(std::int32_t error, std::int32_t bits) {
  status_ |= bits;
  error_ = error;
  return status_;
}

std::int32_t Usb488Face::Finish(const Exchanged& exchanged) {
  switch (exchanged.kind) {
    case Exchanged::Kind::TimeOut:
      return Fail(kUsb488TimedOut, USB488_STATUS_ERROR | USB488_STATUS_TIMEOUT);
    case Exchanged::Kind::Error:
      return Fail(static_cast<std::int32_t>(static_cast<std::uint32_t>(exchanged.status)));
    case Exchanged::Kind::Gone:
    case Exchanged::Kind::NotAddressed:
      return Fail(USB488_ERROR_NO_DEVICE);
    case Exchanged::Kind::Done:
      break;
  }
  return status_;
}

template <class Operation>
std::int32_t Usb488Face::OnDevice(std::int32_t handle, Operation operation) {
  if (!initialized_) return Fail(kUsb488NotInitialized);
  if (handle <= 0 || handle != open_) return Fail(kUsb488BadHandle);
  VirtualInstrument* const instrument = bench_.OnUsb488(open_);
  return Finish(instrument == nullptr ? Exchanged{Exchanged::Kind::Gone} : operation(*instrument));
}

std::int32_t Usb488Face::Initialize() {
  initialized_ = true;
  return ClearStatus();
}

std::int32_t Usb488Face::Finalize() {
  initialized_ = false;
  open_ = 0;
  return status_;
}

std::int32_t Usb488Face::OpenDevice(std::int32_t id) {
  if (!initialized_) {
    Fail(kUsb488NotInitialized);
  } else if (open_ != 0) {
    Fail(kUsb488Busy);
  } else if (bench_.OnUsb488(id) == nullptr) {
    Fail(USB488_ERROR_NO_DEVICE);
  } else {
    open_ = id;
    return open_;
  }
  return 0;
}

std::int32_t Usb488Face::CloseDevice(std::int32_t handle) {
  if (handle <= 0 || handle != open_) return Fail(kUsb488BadHandle);
  open_ = 0;
  return status_;
}

std::int32_t Usb488Face::SendTextData(std::int32_t handle, std::string_view text) {
  return OnDevice(handle,
                  [&](VirtualInstrument& instrument) { return io_.Write(instrument, text, true, timeOut_); });
}

std::int32_t Usb488Face::ReceiveTextData(std::int32_t handle, std::span<char> buffer) {
  count_ = 0;
  return OnDevice(handle, [&](VirtualInstrument& instrument) {
    const Exchanged read = io_.Read(instrument, buffer, std::nullopt, timeOut_);
    count_ = static_cast<std::int32_t>(read.count);
    return read;
  });
}

std::int32_t Usb488Face::StatusByteQuery(std::int32_t handle, std::int32_t* statusByte) {
  return OnDevice(handle, [&](VirtualInstrument& instrument) {
    std::uint8_t byte = 0;
    const Exchanged polled = io_.Poll(instrument, byte, timeOut_);
    if (polled.kind == Exchanged::Kind::Done) *statusByte = byte;
    return polled;
  });
}

std::int32_t Usb488Face::SetTimeout(std::int32_t handle, std::int32_t milliseconds) {
  return OnDevice(handle, [&](VirtualInstrument&) {
    timeOut_ = milliseconds <= 0 ? std::numeric_limits<std::uint32_t>::max()
                                 : static_cast<std::uint32_t>(milliseconds);
    return Exchanged{};
  });
}

std::int32_t Usb488Face::DeviceClear(std::int32_t handle) {
  return OnDevice(handle, [&](VirtualInstrument& instrument) { return io_.Clear(instrument, timeOut_); });
}

std::int32_t Usb488Face::SetInterfaceClear(std::int32_t handle) {
  return OnDevice(handle, [](VirtualInstrument&) { return Exchanged{}; });
}

std::int32_t Usb488Face::SetRemote(std::int32_t handle, bool on) {
  return OnDevice(handle, [on](VirtualInstrument& instrument) {
    instrument.SetRemote(on);
    return Exchanged{};
  });
}

std::int32_t Usb488Face::ClearStatus() {
  status_ = 0;
  error_ = 0;
  return 0;
}

}  // namespace corlune
