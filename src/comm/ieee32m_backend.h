// KI_GPIB_MDL: a GPIB board driven by the IEEE_32M library. Every bus action is a text command handed to the
// library.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "comm/gp_backend_base.h"
#include "comm/io_libraries.h"

namespace corlune {

class Ieee32mMdl final : public GpBackendBase {
 public:
  Ieee32mMdl(const BackendServices& services, LibraryLoader<Ieee32mTable> loader);

  std::string LibraryProblem() const override { return problem_; }

 private:
  std::string LibraryOrigin() const override { return ieee_ ? ieee_->Origin : std::string(); }
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
  std::string_view DeviceClearName() const override { return "GP_DCL"; }
  std::string_view TimeOutLogName(std::int16_t code) const override;

  CommStatus Transmit(const std::string& command);
  CommStatus GoToLocal();

  LibraryLoader<Ieee32mTable> loader_;
  const Ieee32mTable* ieee_ = nullptr;
  bool open_ = false;
  bool endOnWrite_ = true;
  std::string problem_;
};

// The library's command that writes `text`, with the terminator suffix of a GP_MTerm code. Empty when there
// is nothing to write.
std::string DataCommand(const std::string& text, std::string_view suffix, bool endOnWrite);

}  // namespace corlune
