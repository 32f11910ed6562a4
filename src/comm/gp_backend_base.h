// GpBackendBase: what the five back-ends have in common. The operations of the family check every status,
// write the log line and cut replies here; a back-end only translates its library's calls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "comm/gp_codes.h"
#include "comm/gp_family.h"
#include "comm/init_options.h"
#include "core/app_state.h"
#include "core/ports.h"

namespace corlune {

// What a back-end needs from the program. All of it must outlive the back-end.
struct BackendServices {
  const AppState& state;  // AppFolder: where relative file names of the options start
  Prompts& prompts;
  EndProgram& endProgram;
  const TickClock& clock;
};

class GpBackendBase : public GpFamily {
 public:
  explicit GpBackendBase(const BackendServices& services) : services_(services) {}

  CommStatus GP_Init(const std::string& initString, bool emptyLog) override;
  CommStatus GP_End() override;
  CommStatus GP_Send_Str(std::int16_t address, const std::string& text) override;
  CommStatus GP_Receive_Str(std::int16_t address, std::string& reply) override;
  CommStatus GP_IFC() override;
  CommStatus GP_DCL() override;
  CommStatus GP_Spoll(std::int16_t address, std::int16_t& statusByte) override;
  CommStatus GP_Time_Out(std::int16_t code) override;
  CommStatus GP_MTerm(std::int16_t code) override;
  CommStatus GP_Send_AsciiBinary_Data(const std::string& header, std::span<const std::uint8_t> data,
                                      std::int16_t address, std::int16_t elementFormat,
                                      bool swapBytes) override;
  CommStatus Gp_Recv_ToFile(std::int16_t address, const std::string& fileName, std::uint32_t byteCount,
                            std::uint32_t& bytesRead) override;

 protected:
  enum class Transfer { Send, Receive, Poll };
  // One read of a library.
  struct Received {
    std::size_t count = 0;
    bool ended = true;  // the message's end was read, or the library cannot tell that more follows
  };

  // What a back-end supplies. Unless it says otherwise a hook returns the converted library status and
  // leaves checking and logging to the caller.

  // Opens the board or the library's first device and sets the initial state. Checks its own statuses.
  virtual CommStatus Open(const InitOptions& options) = 0;
  // Gives the bus or device back. Checks its own statuses.
  virtual CommStatus Close() = 0;
  // Points the interface at the current device before a transfer. Checks its own statuses.
  virtual CommStatus Select(const char* operation, Transfer transfer, std::int16_t address) = 0;
  // One message with the write terminator.
  virtual CommStatus Write(const std::string& text) = 0;
  virtual CommStatus Read(std::span<char> buffer, Received& received) = 0;
  virtual CommStatus InterfaceClear() = 0;
  virtual CommStatus DeviceClear() = 0;
  virtual CommStatus SerialPoll(std::int16_t& statusByte) = 0;
  virtual CommStatus SetTimeOut(std::int16_t code) = 0;
  // `code` is 0..3 and stands in TerminatorCode() already.
  virtual CommStatus SetTerminator(std::int16_t code) = 0;
  virtual CommStatus SetEndOnWrite(bool on) = 0;
  virtual CommStatus SetRemote(bool on) = 0;

  // Where the library was loaded from, empty when nobody needs to know.
  virtual std::string LibraryOrigin() const { return {}; }
  virtual CommStatus RefuseTerminator() { return CommStatus::Error; }
  virtual std::string DeviceName(std::int16_t device) const { return std::to_string(device); }
  virtual std::string_view DeviceClearName() const { return "DCL"; }
  virtual std::string_view TimeOutLogName(std::int16_t code) const { return TimeOutName(code); }
  virtual std::string SerialPollLogText(std::int16_t statusByte) const { return std::to_string(statusByte); }

  // Logged operations that no caller outside the back-ends needs.
  CommStatus GP_REN(bool on);
  CommStatus GP_EOI(bool on);

  // Shows the fatal prompt when asked for; returns `status`.
  CommStatus Checked(std::string_view operation, CommStatus status);
  bool LogIsOn() const { return !logPath_.empty(); }
  void Log(std::string_view line, CommStatus status) const;
  // "<device> <direction> <text>"
  void LogDevice(std::int16_t device, char direction, std::string_view text, CommStatus status) const;
  void LogBlock(std::int16_t device, std::span<const std::uint8_t> data, std::int16_t elementFormat,
                CommStatus status) const;
  // Reads on until the message ends. BufferOverflow when the device does not come to an end.
  CommStatus DropRest();

  // The device of the call, which becomes the one of calls with kSameDevice.
  std::int16_t RememberDevice(std::int16_t address);
  std::int16_t Device() const { return device_; }
  void SetDevice(std::int16_t device) { device_ = device; }
  std::int16_t TerminatorCode() const { return terminatorCode_; }
  void SetTerminatorCode(std::int16_t code) { terminatorCode_ = code; }
  std::string_view WriteTerminator() const { return TerminatorOf(terminatorCode_).text; }
  const BackendServices& Services() const { return services_; }

 private:
  void LogAll(std::string_view operation, CommStatus status) const;
  void LogAll(std::string_view operation, std::string_view quoted, CommStatus status) const;

  BackendServices services_;
  std::string logPath_;  // empty: no log
  bool showErrorDialog_ = false;
  std::int16_t device_ = 0;
  std::int16_t terminatorCode_ = kTerminatorLf;
};

// Text of a reply: up to the first carriage return, else the first line feed, else all of it; without
// trailing blanks.
std::string CutReply(std::string_view received);

}  // namespace corlune
