#include "standins/virtual_instrument/gpib_bus.h"

namespace corlune {

void GpibBus::InterfaceClear() {
  talker_.reset();
  listeners_.clear();
}

void GpibBus::RemoteEnable(bool on) {
  remote_ = on;
  if (on) return;
  for (int address = 1; address <= kLastGpibAddress; ++address) {
    if (VirtualInstrument* const instrument = bench_.OnGpib(address)) instrument->SetRemote(false);
  }
}

Exchanged GpibBus::Command(std::span<const std::uint8_t> bytes, std::uint32_t timeOut) {
  for (const std::uint8_t byte : bytes) {
    const Exchanged done = CommandByte(byte, timeOut);
    if (done.kind != Exchanged::Kind::Done) return done;
  }
  return {};
}

Exchanged GpibBus::CommandByte(std::uint8_t byte, std::uint32_t timeOut) {
  const int address = byte & 0x1F;
  if (byte == kGpibUnlisten) {
    listeners_.clear();
  } else if (byte == kGpibUntalk) {
    talker_.reset();
  } else if ((byte & 0x60) == kGpibTalk) {
    talker_ = address;
    listeners_.erase(address);
  } else if ((byte & 0x60) == kGpibListen) {
    listeners_.insert(address);
    if (talker_ == address) talker_.reset();
    VirtualInstrument* const instrument = bench_.OnGpib(address);
    if (instrument != nullptr && remote_) instrument->SetRemote(true);
  } else {
    for (int each = 1; each <= kLastGpibAddress; ++each) {
      VirtualInstrument* const instrument = bench_.OnGpib(each);
      if (instrument == nullptr || (byte != kGpibClear && !listeners_.contains(each))) continue;
      if (byte == kGpibGoToLocal) instrument->SetRemote(false);
      if (byte == kGpibTrigger) io_.Write(*instrument, "*TRG\n", true, timeOut);
      if (byte != kGpibClear && byte != kGpibSelectedClear) continue;
      const Exchanged cleared = io_.Clear(*instrument, timeOut);
      if (cleared.kind != Exchanged::Kind::Done) return cleared;
    }
  }
  return {};
}

Exchanged GpibBus::Write(int own, std::string_view bytes, bool end, std::uint32_t timeOut) {
  if (talker_ != own) return {Exchanged::Kind::NotAddressed};
  Exchanged result{Exchanged::Kind::Gone};
  for (const int listener : listeners_) {
    VirtualInstrument* const instrument = bench_.OnGpib(listener);
    if (instrument == nullptr) continue;
    result = io_.Write(*instrument, bytes, end, timeOut);
    if (result.kind != Exchanged::Kind::Done) break;
  }
  return result;
}

Exchanged GpibBus::Read(int own, std::span<char> buffer, std::optional<char> terminator,
                        std::uint32_t timeOut) {
  if (!listeners_.contains(own)) return {Exchanged::Kind::NotAddressed};
  VirtualInstrument* const instrument = talker_ ? bench_.OnGpib(*talker_) : nullptr;
  if (instrument != nullptr) return io_.Read(*instrument, buffer, terminator, timeOut);
  io_.Wait(timeOut);
  return {Exchanged::Kind::TimeOut};
}

Exchanged GpibBus::Poll(int address, std::uint8_t& statusByte, std::uint32_t timeOut) {
  VirtualInstrument* const instrument = bench_.OnGpib(address);
  if (instrument != nullptr) return io_.Poll(*instrument, statusByte, timeOut);
  io_.Wait(timeOut);
  return {Exchanged::Kind::TimeOut};
}

}  // namespace corlune
