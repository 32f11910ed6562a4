#include "comm/usb488_backend.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace corlune {

Usb488Mdl::Usb488Mdl(const BackendServices& services, LibraryLoader<Usb488Table> loader)
    : GpBackendBase(services), loader_(std::move(loader)) {}

Usb488Mdl::~Usb488Mdl() {
  Release();
}

void Usb488Mdl::CloseDevice() {
  const std::int32_t handle = std::exchange(handle_, 0);
  if (handle > 0) usb_->CloseDevice(handle);
}

void Usb488Mdl::Release() {
  CloseDevice();
  if (std::exchange(initialized_, false)) usb_->Finalize();
}

CommStatus Usb488Mdl::Converted() {
  const std::int32_t status = usb_->GetStatus();
  CommStatus converted = CommStatus::Success;
  if ((status & USB488_STATUS_TIMEOUT) != 0) {
    converted = CommStatus::TimeOut;
  } else if ((status & USB488_STATUS_ERROR) != 0) {
    converted = usb_->GetErrorCode() == USB488_ERROR_NO_DEVICE ? CommStatus::NoBoard : CommStatus::Error;
  }
  // The next call's status must not carry this failure.
  if (Failed(converted)) usb_->ClearStatus();
  return converted;
}

CommStatus Usb488Mdl::Open(const InitOptions& /*options*/) {
  timeOutCode_ = kTimeOut300ms;
  endOnWrite_ = true;
  problem_.clear();
  if (!usb_) usb_ = loader_(&problem_);
  if (!usb_) return Checked("GP_INIT", CommStatus::Error);
  CloseDevice();
  if (initialized_) return CommStatus::Success;
  usb_->Initialize();
  const CommStatus status = Converted();
  initialized_ = !Failed(status);
  return Checked("GP_INIT", status);
}

CommStatus Usb488Mdl::Close() {
  const CommStatus status = handle_ > 0 ? GP_REN(false) : CommStatus::Success;
  Release();
  return status;
}

CommStatus Usb488Mdl::OpenDevice(std::int16_t id) {
  CloseDevice();
  const std::int32_t handle = usb_->OpenDevice(id);
  CommStatus status = Converted();
  if (handle <= 0 && !Failed(status)) status = CommStatus::Error;
  if (Failed(Checked("Device Open Error", status))) return status;
  handle_ = handle;
  openDevice_ = id;
  status = GP_IFC();
  status = status | GP_REN(true);
  status = status | GP_MTerm(TerminatorCode());
  status = status | GP_EOI(endOnWrite_);
  status = status | GP_Time_Out(timeOutCode_);
  // Half set up is not open: the next call tries again.
  if (Failed(status)) CloseDevice();
  return status;
}

CommStatus Usb488Mdl::Select(const char* operation, Transfer /*transfer*/, std::int16_t /*address*/) {
  if (!initialized_) return Checked(operation, CommStatus::Error);
  if (handle_ > 0 && openDevice_ == Device()) return CommStatus::Success;
  return OpenDevice(Device());
}

CommStatus Usb488Mdl::Write(const std::string& text) {
  const std::string message = text + std::string(WriteTerminator());
  usb_->SendTextData(handle_, message.data(), static_cast<std::int32_t>(message.size()));
  return Converted();
}

CommStatus Usb488Mdl::Read(std::span<char> buffer, Received& received) {
  usb_->ReceiveTextData(handle_, buffer.data(), static_cast<std::int32_t>(buffer.size()));
  const CommStatus status = Converted();
  if (Failed(status)) return status;
  received.count = static_cast<std::size_t>(
      std::clamp<std::int32_t>(usb_->GetDataCount(), 0, static_cast<std::int32_t>(buffer.size())));
  // The library does not say that a message has ended; a full buffer without a line end goes on.
  received.ended = received.count < buffer.size() || buffer.back() == '\n' || buffer.back() == '\r';
  return status;
}

CommStatus Usb488Mdl::InterfaceClear() {
  if (handle_ <= 0) return CommStatus::Success;
  usb_->SetInterfaceClear(handle_);
  return Converted();
}

CommStatus Usb488Mdl::DeviceClear() {
  if (handle_ <= 0) return CommStatus::Success;
  usb_->DeviceClear(handle_);
  return Converted();
}

CommStatus Usb488Mdl::SerialPoll(std::int16_t& statusByte) {
  std::int32_t byte = 0;
  usb_->StatusByteQuery(handle_, &byte);
  statusByte = static_cast<std::int16_t>(byte);
  return Converted();
}

CommStatus Usb488Mdl::SetTimeOut(std::int16_t code) {
  timeOutCode_ = code;
  if (handle_ <= 0) return CommStatus::Success;  // applied when a device is opened
  usb_->SetTimeout(handle_, static_cast<std::int32_t>(TimeOutMilliseconds(code)));
  return Converted();
}

CommStatus Usb488Mdl::SetTerminator(std::int16_t /*code*/) {
  return CommStatus::Success;
}

CommStatus Usb488Mdl::SetEndOnWrite(bool on) {
  endOnWrite_ = on;
  return CommStatus::Success;
}

CommStatus Usb488Mdl::SetRemote(bool on) {
  if (handle_ <= 0) return CommStatus::Success;
  if (on) {
    usb_->EnableRemote(handle_);
  } else {
    usb_->EnableLocal(handle_);
  }
  return Converted();
}

}  // namespace corlune
