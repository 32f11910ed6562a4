// Debug_Mdl: the simulated interface. No instrument and no library: every operation succeeds and is logged
// as the other back-ends log it, replies come from a response file or from the person at the program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "comm/gp_backend_base.h"

namespace corlune {

// The response file is a profile file: one section "ADRS<address>" a device, one key a query; key "spoll"
// holds the answer of a serial poll.
class SimulatedMdl final : public GpBackendBase {
 public:
  // `responseFile`: used when the options name none; may be empty, and may change before the next opening.
  SimulatedMdl(const BackendServices& services, std::shared_ptr<const std::string> responseFile);

  CommStatus GP_Send_AsciiBinary_Data(const std::string& header, std::span<const std::uint8_t> data,
                                      std::int16_t address, std::int16_t elementFormat,
                                      bool swapBytes) override;

 private:
  CommStatus Open(const InitOptions& options) override;
  CommStatus Close() override { return CommStatus::Success; }
  CommStatus Select(const char* operation, Transfer transfer, std::int16_t address) override;
  CommStatus Write(const std::string& text) override;
  CommStatus Read(std::span<char> buffer, Received& received) override;
  CommStatus InterfaceClear() override { return CommStatus::Success; }
  CommStatus DeviceClear() override { return CommStatus::Success; }
  CommStatus SerialPoll(std::int16_t& statusByte) override;
  CommStatus SetTimeOut(std::int16_t code) override;
  CommStatus SetTerminator(std::int16_t code) override;
  CommStatus RefuseTerminator() override { return CommStatus::Success; }
  CommStatus SetEndOnWrite(bool on) override;
  CommStatus SetRemote(bool on) override;
  std::string_view DeviceClearName() const override { return "GP_DCL"; }
  std::string SerialPollLogText(std::int16_t statusByte) const override;

  // Reply of the current device to the last key of `keys`; empty when there is none.
  std::string LookUp(std::string_view keys) const;

  std::shared_ptr<const std::string> usualFile_;
  std::string responseFile_;
  bool replyPrompt_ = false;
  std::string queryKeys_;  // of the last text sent, separated by ","
  std::string pendingReply_;
};

// The commands of `text` that hold a "?", trimmed and joined by ",".
std::string QueryKeys(std::string_view text);

}  // namespace corlune
