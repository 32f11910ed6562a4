// GpFamily: the operations through which the whole program talks to instruments, whatever the interface.
// One back-end per interface kind implements them; GpFrontEnd (comm/gp_front_end.h) routes each call to
// the back-end of AppState::CurrentInterface.
//
// Every operation returns a CommStatus (never throws), writes one line to the back-end's log when one is
// set, and may show the fatal prompt of "VIEW_ERR_DIALOG" (then it pumps events).
//
// Address: GPIB primary address, USB488 id, or index 0..20 into the USBTMC resource list; -1 means the
// device of the previous call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "comm/comm_status.h"

namespace corlune {

inline constexpr std::int16_t kSameDevice = -1;
inline constexpr std::size_t kReceiveBuffer = 256;  // characters of one reply

class GpFamily {
 public:
  virtual ~GpFamily() = default;

  // Parses the options ("KEY=value,..."), empties the log file when `emptyLog`, opens board or device and
  // puts it into its initial state.
  virtual CommStatus GP_Init(const std::string& initString, bool emptyLog) = 0;
  virtual CommStatus GP_End() = 0;
  // Writes `text` and the write terminator.
  virtual CommStatus GP_Send_Str(std::int16_t address, const std::string& text) = 0;
  // Reads one reply of at most kReceiveBuffer characters, without terminator and trailing blanks; the rest
  // of a longer reply is read and dropped. `reply` is unchanged when the read fails.
  virtual CommStatus GP_Receive_Str(std::int16_t address, std::string& reply) = 0;
  virtual CommStatus GP_IFC() = 0;
  virtual CommStatus GP_DCL() = 0;
  virtual CommStatus GP_Spoll(std::int16_t address, std::int16_t& statusByte) = 0;
  // Code 0..17, see comm/gp_codes.h for names and milliseconds.
  virtual CommStatus GP_Time_Out(std::int16_t code) = 0;
  // Code 0 none, 1 LF, 2 CR, 3 CR LF; another code returns Error.
  virtual CommStatus GP_MTerm(std::int16_t code) = 0;
  // IEEE 488.2 block: header text, then `data` with END on its last byte. elementFormat 0: one byte an
  // element, 1: 16 bits low byte first, 2: 32 bits; `swapBytes` reverses the bytes of each element.
  // The GPIB and USB488 back-ends carry no blocks: they do nothing and return Success.
  virtual CommStatus GP_Send_AsciiBinary_Data(const std::string& header, std::span<const std::uint8_t> data,
                                              std::int16_t address, std::int16_t elementFormat,
                                              bool swapBytes) = 0;
  // Block reply of at most `byteCount` bytes straight into a file. USBTMC only; elsewhere Error.
  virtual CommStatus Gp_Recv_ToFile(std::int16_t address, const std::string& fileName,
                                    std::uint32_t byteCount, std::uint32_t& bytesRead) = 0;
  // Why the last opening failed below the instrument: names tried and the reason for each, a missing symbol,
  // a resource manager that does not open. Empty when it worked or when there is no library.
  virtual std::string LibraryProblem() const { return {}; }
  // The device at `address` was unplugged since the last GP_Init: its session is dead even when it comes
  // back. LibraryProblem names it.
  virtual bool ConnectionLost(std::int16_t /*address*/) const { return false; }
};

}  // namespace corlune
