#include "standins/virtual_instrument/instrument_io.h"

#include <algorithm>

namespace corlune {
namespace {

constexpr std::uint32_t kLongestWaitMs = 60'000;

}  // namespace

void InstrumentIo::Wait(std::uint32_t milliseconds) const {
  if (milliseconds > 0) sleep_(std::min(milliseconds, kLongestWaitMs));
}

Exchanged InstrumentIo::Begin(VirtualInstrument& instrument, ExchangeKind kind, std::string_view bytes,
                              std::uint32_t timeOut) const {
  const ExchangeVerdict verdict = instrument.BeginExchange(kind, bytes);
  switch (verdict.kind) {
    case ExchangeVerdict::Kind::TimeOut:
      Wait(timeOut);
      return {Exchanged::Kind::TimeOut};
    case ExchangeVerdict::Kind::Error:
      return {Exchanged::Kind::Error, verdict.status};
    case ExchangeVerdict::Kind::Gone:
      return {Exchanged::Kind::Gone};
    case ExchangeVerdict::Kind::Pass:
      break;
  }
  return {};
}

bool InstrumentIo::AwaitReply(VirtualInstrument& instrument, std::uint32_t timeOut) const {
  std::uint32_t left = std::min(timeOut, kLongestWaitMs);
  for (;;) {
    const auto delay = instrument.ReplyDelay();
    if (delay && *delay == 0) return true;
    const std::uint32_t part = std::min(delay.value_or(left), left);
    if (part > 0) sleep_(part);
    left -= part;
    if (left > 0 && delay) continue;
    const auto now = instrument.ReplyDelay();
    if (now && *now == 0) return true;
    if (!now) instrument.ReadFailed();
    return false;
  }
}

Exchanged InstrumentIo::Write(VirtualInstrument& instrument, std::string_view bytes, bool end,
                              std::uint32_t timeOut) const {
  const Exchanged begun = Begin(instrument, ExchangeKind::Write, bytes, timeOut);
  if (begun.kind == Exchanged::Kind::Done && !bytes.empty()) instrument.Write(bytes, end);
  return begun;
}

Exchanged InstrumentIo::Read(VirtualInstrument& instrument, std::span<char> buffer,
                             std::optional<char> terminator, std::uint32_t timeOut) const {
  const Exchanged begun = Begin(instrument, ExchangeKind::Read, {}, timeOut);
  if (begun.kind != Exchanged::Kind::Done || buffer.empty()) return begun;
  if (!AwaitReply(instrument, timeOut)) return {Exchanged::Kind::TimeOut};
  const auto read = instrument.Read(buffer, terminator);
  return {Exchanged::Kind::Done, 0, read.count, read.end, read.terminator};
}

Exchanged InstrumentIo::Poll(VirtualInstrument& instrument, std::uint8_t& statusByte,
                             std::uint32_t timeOut) const {
  const Exchanged begun = Begin(instrument, ExchangeKind::Poll, {}, timeOut);
  if (begun.kind == Exchanged::Kind::Done) statusByte = instrument.SerialPoll();
  return begun;
}

Exchanged InstrumentIo::Clear(VirtualInstrument& instrument, std::uint32_t timeOut) const {
  const Exchanged begun = Begin(instrument, ExchangeKind::Clear, {}, timeOut);
  if (begun.kind == Exchanged::Kind::Done) instrument.DeviceClear();
  return begun;
}

}  // namespace corlune
