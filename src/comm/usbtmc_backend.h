// USBTMC_MDL: instruments on USB (USBTMC class) through a VISA library. The only back-end that carries
// blocks and that searches for instruments.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "comm/gp_backend_base.h"
#include "comm/gp_front_end.h"
#include "comm/io_libraries.h"

namespace corlune {

inline constexpr std::size_t kUsbTmcDevices = 21;  // indexes 0..20 of "USBTMC_NAME"

class UsbTmcMdl final : public GpBackendBase, public InstrumentSearch {
 public:
  UsbTmcMdl(const BackendServices& services, LibraryLoader<VisaTable> loader);
  // Closes what is open, without log lines.
  ~UsbTmcMdl() override;
  UsbTmcMdl(const UsbTmcMdl&) = delete;
  UsbTmcMdl& operator=(const UsbTmcMdl&) = delete;

  CommStatus GP_Send_AsciiBinary_Data(const std::string& header, std::span<const std::uint8_t> data,
                                      std::int16_t address, std::int16_t elementFormat,
                                      bool swapBytes) override;
  CommStatus Gp_Recv_ToFile(std::int16_t address, const std::string& fileName, std::uint32_t byteCount,
                            std::uint32_t& bytesRead) override;
  bool CanSearch() override { return BindLibrary(); }
  int GP_Find_Devices(const std::string& expression) override;
  const std::vector<FoundInstrument>& Found() const override { return found_; }
  std::string LibraryProblem() const override { return problem_; }
  bool ConnectionLost(std::int16_t address) const override;

 private:
  std::string LibraryOrigin() const override { return visa_ ? visa_->Origin : std::string(); }
  CommStatus Open(const InitOptions& options) override;
  CommStatus Close() override;
  CommStatus Select(const char* operation, Transfer transfer, std::int16_t address) override;
  CommStatus Write(const std::string& text) override;
  CommStatus Read(std::span<char> buffer, Received& received) override;
  CommStatus InterfaceClear() override { return CommStatus::Success; }
  CommStatus DeviceClear() override;
  CommStatus SerialPoll(std::int16_t& statusByte) override;
  CommStatus SetTimeOut(std::int16_t code) override;
  CommStatus SetTerminator(std::int16_t code) override;
  CommStatus RefuseTerminator() override;
  CommStatus SetEndOnWrite(bool on) override;
  CommStatus SetRemote(bool on) override;
  std::string DeviceName(std::int16_t device) const override;

  bool BindLibrary();
  // The default resource manager, 0 with problem_ set when it does not open.
  ViSession OpenResourceManager();
  CommStatus GP_SDC(std::size_t index);
  CommStatus OpenDevice(const char* operation, std::size_t index);
  // Closes sessions and resource manager; the first failure.
  CommStatus Release();
  // Calls `action` with every open session, stops at the first failure.
  CommStatus ForEachSession(const std::function<ViStatus(ViSession)>& action);
  // Converts the status of an operation on device `index` and notes when it was unplugged.
  CommStatus Exchanged(ViStatus status, std::size_t index);
  CommStatus WriteBytes(const void* data, std::size_t size);
  CommStatus WriteBlock(const std::string& header, std::span<const std::uint8_t> data);
  std::size_t CurrentIndex() const { return static_cast<std::size_t>(Device()); }
  ViSession CurrentSession() const { return sessions_[CurrentIndex()]; }

  LibraryLoader<VisaTable> loader_;
  const VisaTable* visa_ = nullptr;
  ViSession resourceManager_ = 0;
  std::array<std::string, kUsbTmcDevices> names_{};
  std::array<ViSession, kUsbTmcDevices> sessions_{};  // 0: not open
  std::int16_t timeOutCode_ = kTimeOut300ms;
  std::vector<FoundInstrument> found_;
  std::string problem_;
  std::array<bool, kUsbTmcDevices> lost_{};
};

// Serial number in a VISA resource name: the text between its third and fourth "::". The whole name when it
// has fewer than four separators.
std::string SerialOfResource(const std::string& resource);

}  // namespace corlune
