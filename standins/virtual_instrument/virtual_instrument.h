// VirtualInstrument: a QM2210 or QM2220 in memory, seen through its interface: messages in, replies out,
// status byte, device clear. It runs on a clock given from outside and never waits itself: a library face
// (visa_face.h) asks how long a reply takes and does the waiting.
//
// Single-threaded. Nothing here pumps events.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "standins/virtual_instrument/fault_plan.h"
#include "standins/virtual_instrument/instrument_state.h"

namespace corlune {

// Unsigned 32-bit milliseconds that wrap; only differences count.
using InstrumentClock = std::function<std::uint32_t()>;

class VirtualInstrument {
 public:
  VirtualInstrument(InstrumentIdentity identity, InstrumentClock clock);

  const InstrumentIdentity& Identity() const { return state_.identity; }
  void SetFaults(FaultPlan plan) { state_.faults = std::move(plan); }
  const FaultPlan& Faults() const { return state_.faults; }
  bool Present() const { return !state_.faults.Unplugged(); }

  // What reaches the instrument, for whoever wants to see the line: bytes of a message or of a reply, and
  // whether END came with them. Polls and clears have no bytes.
  using Trace = std::function<void(ExchangeKind kind, std::string_view bytes, bool end)>;
  void SetTrace(Trace trace) { trace_ = std::move(trace); }

  // ---- The interface side ----

  // Every transfer begins here: counts it against the fault plan. `bytes` is what a write would carry.
  // Unless the verdict is Pass the transfer must not follow.
  ExchangeVerdict BeginExchange(ExchangeKind kind, std::string_view bytes = {});
  // Bytes of a message; `end` marks the last one. A message ends with END or a line feed. A new message
  // clears a reply that nobody read (-410).
  void Write(std::string_view bytes, bool end);
  // ms until a reply can be read, 0 when it can be read now; nullopt when none will come.
  std::optional<std::uint32_t> ReplyDelay();
  // A read that found nothing to come (-420).
  void ReadFailed();
  struct ReadResult {
    std::size_t count = 0;
    bool end = false;         // the reply's last byte was read
    bool terminator = false;  // stopped at the terminator
  };
  // Takes the next bytes of the reply, up to `terminator` (with it; nullopt: to the end).
  ReadResult Read(std::span<char> buffer, std::optional<char> terminator);
  std::uint8_t SerialPoll();
  bool RequestsService();
  void DeviceClear();  // drops input and output; a run goes on
  void SetRemote(bool on) { state_.remote = on; }

  // ---- The front panel and the rear connectors ----

  bool Output(int channel);  // 1-based
  void SetOutput(int channel, bool on);
  bool Remote() const { return state_.remote; }
  int CurrentSlot();  // 0-based, -1 when no step runs
  RunPhase Phase();
  int Condition();
  void PressHold();
  void PressStop();
  void Event();                // event input: the running step's event branch
  void SetStateLine(bool on);  // pin 14 as state branch input
  std::uint32_t WaveformPoints() const { return state_.waveforms.UsedPoints(); }
  // Largest part of a message that is kept while it is put together, bytes.
  std::size_t InputBytes() const { return input_.capacity(); }

 private:
  void Update();
  void HandleInput(std::string_view bytes, bool end);
  bool HandleMessage(std::string_view message);
  void FinishReply();
  bool ReplyWaiting() const { return readAt_ < output_.size(); }

  InstrumentState state_;
  Trace trace_;
  InstrumentClock clock_;
  std::uint32_t lastTick_;
  std::string input_;         // of a message without its end
  bool skipToEnd_ = false;    // input overrun: the rest of the message is dropped
  bool messageOpen_ = false;  // bytes of a message have come, its end has not
  std::string head_;          // first bytes of the last message, for the fault plan
  std::string deferred_;      // behind *WAI
  std::string output_;
  std::size_t readAt_ = 0;
};

}  // namespace corlune
