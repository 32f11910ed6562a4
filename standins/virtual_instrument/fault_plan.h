// FaultPlan: how a virtual instrument misbehaves on request.
//
// An exchange is one transfer between a library and the instrument: a write, a read, a status poll or a
// device clear. Exchanges are numbered from 1, counted since the plan was set. A fault that names a command
// looks only at exchanges whose message (for a read: the message it answers) contains that text, in either
// letter case, and counts only those. Faults of a reply count writes only: "the third message".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corlune {

enum class FaultKind {
  TimeOut,        // the exchange times out; nothing reaches the instrument
  ErrorStatus,    // the library reports the status `value`; nothing reaches the instrument
  DropReply,      // the message is carried out, its reply is lost
  LateReply,      // the reply can be read only `value` ms after its message
  LongReply,      // 300 characters "9" in place of the reply
  TextReply,      // `text` (or "ERROR") in place of the reply
  BinaryReply,    // every byte value but line feed and carriage return, once, in place of the reply
  EmptyReply,     // the terminator alone in place of the reply
  BareReply,      // the reply without its terminator: END alone ends it
  Gone,           // the device is unplugged after exchange `exchange` (0: before the first)
  OutputTrip,     // all outputs go off `value` ms after a start
  SlowBusy,       // every output or memory command keeps the instrument busy for `value` ms
  MemoryFull,     // no waveform fits any more (-225)
  RefuseCompile,  // every compilation is refused (-222)
};

struct Fault {
  FaultKind kind = FaultKind::TimeOut;
  int exchange = 0;        // 1-based; 0: every one (Gone: at once)
  std::int64_t value = 0;  // ms, or a library's status code
  std::string text;        // TextReply: the reply
  std::string command;     // only exchanges with this text; empty: all
  bool operator==(const Fault&) const = default;
};

enum class ExchangeKind { Write, Read, Poll, Clear };

// What the library must do in place of the exchange.
struct ExchangeVerdict {
  enum class Kind { Pass, TimeOut, Error, Gone };
  Kind kind = Kind::Pass;
  std::int64_t status = 0;  // Error: the status to report
};

class FaultPlan {
 public:
  FaultPlan() = default;
  explicit FaultPlan(std::vector<Fault> faults);

  // Counts one exchange of the message `message` and says what becomes of it.
  ExchangeVerdict Next(ExchangeKind kind, std::string_view message);
  // What happens to the reply of the message written last: a reply fault, or nullopt.
  const std::optional<Fault>& ReplyFault() const { return replyFault_; }
  // First fault of a standing kind (OutputTrip, SlowBusy, MemoryFull, RefuseCompile).
  const Fault* Standing(FaultKind kind) const;
  bool Unplugged() const { return unplugged_; }

 private:
  struct Entry {
    Fault fault;
    int seen = 0;
  };
  std::vector<Entry> entries_;
  std::optional<Fault> replyFault_;
  bool unplugged_ = false;
};

// Parses the text form, entries separated by ";":
//   [serial/]name[=exchange][:value][@command]
// with the names timeout, error, drop, late, long, text, binary, empty, bare, gone, trip, busy, full, refuse.
// "trip=1500", "busy=3000" and "gone=20" take their number behind "=". Entries with a serial number apply to
// that instrument only; entries for other serial numbers are left out. nullopt when an entry is malformed;
// *error (may be null) then says which.
std::optional<std::vector<Fault>> ParseFaults(std::string_view text, std::string_view serial,
                                              std::string* error = nullptr);

}  // namespace corlune
