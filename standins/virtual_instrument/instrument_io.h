// InstrumentIo: what every interface does with an instrument, whatever its library calls it: an exchange
// begins with the fault plan, a read waits for its reply, a time-out takes its time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>

#include "standins/virtual_instrument/virtual_instrument.h"

namespace corlune {

// What became of an exchange; each library has words of its own for it.
struct Exchanged {
  enum class Kind {
    Done,
    TimeOut,
    Error,         // a fault: the library reports `status`
    Gone,          // nobody is there
    NotAddressed,  // GPIB: the controller is not addressed for this transfer
  };
  Kind kind = Kind::Done;
  std::int64_t status = 0;
  std::size_t count = 0;    // bytes read
  bool end = false;         // the reply's last byte was read
  bool terminator = false;  // the read stopped at the terminator
};

class InstrumentIo {
 public:
  using Sleep = std::function<void(std::uint32_t milliseconds)>;

  // `sleep` is called for time-outs and late replies.
  explicit InstrumentIo(Sleep sleep) : sleep_(std::move(sleep)) {}

  // A minute at most: a reply that is not under way will not come.
  void Wait(std::uint32_t milliseconds) const;

  // Counts the exchange against the fault plan. Unless it is Done the transfer must not follow; the time of
  // one that times out has passed. Time-outs are in ms.
  Exchanged Begin(VirtualInstrument& instrument, ExchangeKind kind, std::string_view bytes,
                  std::uint32_t timeOut) const;
  // Waits until a reply can be read; false when none comes in time.
  bool AwaitReply(VirtualInstrument& instrument, std::uint32_t timeOut) const;

  // Whole exchanges.
  Exchanged Write(VirtualInstrument& instrument, std::string_view bytes, bool end,
                  std::uint32_t timeOut) const;
  Exchanged Read(VirtualInstrument& instrument, std::span<char> buffer, std::optional<char> terminator,
                 std::uint32_t timeOut) const;
  Exchanged Poll(VirtualInstrument& instrument, std::uint8_t& statusByte, std::uint32_t timeOut) const;
  Exchanged Clear(VirtualInstrument& instrument, std::uint32_t timeOut) const;

 private:
  Sleep sleep_;
};

}  // namespace corlune
