// USB488_MDL: instruments on USB488. The library works on one open device at a time; the back-end opens the
// device that a call addresses when it differs from the open one.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "comm/gp_backend_base.h"
#include "comm/io_libraries.h"

namespace corlune {

class Usb488Mdl final : public GpBackendBase {
 public:
  Usb488Mdl(const BackendServices& services, LibraryLoader<Usb488Table> loader);
  ~Usb488Mdl() override;
  Usb488Mdl(const Usb488Mdl&) = delete;
  Usb488Mdl& operator=(const Usb488Mdl&) = delete;

  std::string LibraryProblem() const override { return problem_; }

 private:
  std::string LibraryOrigin() const override { return usb_ ? usb_->Origin : std::string(); }
  CommStatus Open(const InitOptions& options) override;
  CommStatus Close() override;
  CommStatus Select(const char* operation, Transfer transfer, std::int16_t address) override;
  CommStatus Write(const std::string& text) override;
  CommStatus Read(std::span<char> buffer, Received& received) override;
  CommStatus InterfaceClear() override;
  CommStatus DeviceClear() override;
  CommStatus SerialPoll(std::int16_t& statusByte) override;
  CommStatus SetTimeOut(std::int16_t code) override;
  CommStatus SetTerminator(std::int16_t code) override;
  CommStatus SetEndOnWrite(bool on) override;
  CommStatus SetRemote(bool on) override;

  CommStatus Converted();
  CommStatus OpenDevice(std::int16_t id);
  void CloseDevice();
  void Release();

  LibraryLoader<Usb488Table> loader_;
  const Usb488Table* usb_ = nullptr;
  bool initialized_ = false;
  std::int32_t handle_ = 0;      // 0: no device is open
  std::int16_t openDevice_ = 0;  // id of the open device
  std::int16_t timeOutCode_ = kTimeOut300ms;
  bool endOnWrite_ = true;
  std::string problem_;
};

}  // namespace corlune
