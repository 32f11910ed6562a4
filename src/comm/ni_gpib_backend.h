// NI_GPIB_Mdl: a GPIB board driven by the NI-488.2 library. The program is the controller in charge and
// addresses each device itself with command bytes.
#pragma once

#include <span>
#include <string>

#include "comm/gp_backend_base.h"
#include "comm/io_libraries.h"

namespace corlune {

class NiGpibMdl final : public GpBackendBase {
 public:
  NiGpibMdl(const BackendServices& services, LibraryLoader<Ni488Table> loader);
  ~NiGpibMdl() override;
  NiGpibMdl(const NiGpibMdl&) = delete;
  NiGpibMdl& operator=(const NiGpibMdl&) = delete;

  std::string LibraryProblem() const override { return problem_; }

 private:
  std::string LibraryOrigin() const override { return gpib_ ? gpib_->Origin : std::string(); }
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

  // Status word, error code and count of the library's last call.
  int Status() const { return registered_ ? ibsta_ : gpib_->Status(); }
  int ErrorCode() const { return registered_ ? iberr_ : gpib_->ErrorCode(); }
  long Count() const { return registered_ ? ibcntl_ : gpib_->Count(); }
  CommStatus Converted() const;
  // Makes the library write its status into the variables below. False when it refuses.
  bool RegisterGlobals();
  void UnregisterGlobals();
  CommStatus SendCommandBytes(std::span<const char> bytes);

  LibraryLoader<Ni488Table> loader_;
  const Ni488Table* gpib_ = nullptr;
  bool registered_ = false;
  int ibsta_ = 0;
  int iberr_ = 0;
  int ibcnt_ = 0;
  long ibcntl_ = 0;
  int board_ = -1;  // descriptor, -1: not open
  int boardIndex_ = 0;
  std::int16_t ownAddress_ = 0;
  std::string problem_;
};

}  // namespace corlune
