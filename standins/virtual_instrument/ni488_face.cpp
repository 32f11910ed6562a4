#include "standins/virtual_instrument/ni488_face.h"

#include <algorithm>
#include <limits>

#include "core/ascii_case.h"

namespace corlune {
namespace {

constexpr int kBoard = 0;  // descriptor and address
constexpr int kLastTimeOutCode = 17;

// Codes 1..17 stand for 10 us, 30 us, 100 us ... 1000 s; less than 1 ms counts as 1 ms, code 0 as endless.
std::uint32_t TimeOutMs(int code) {
  if (code == 0) return std::numeric_limits<std::uint32_t>::max();
  std::uint32_t microseconds = code % 2 == 1 ? 10 : 30;
  for (int decade = 0; decade < (code - 1) / 2; ++decade) microseconds *= 10;
  return std::max(microseconds / 1000, 1U);
}

}  // namespace

int Ni488Face::Finish(int bits, int error, long count) {
  ibsta_ = bits | NI488_CMPL | NI488_CIC;
  iberr_ = error;
  ibcnt_ = count;
  if (statusPlace_ != nullptr) {
    *statusPlace_ = ibsta_;
    *errorPlace_ = iberr_;
    *countPlace_ = static_cast<int>(count);
    *longCountPlace_ = count;
  }
  return ibsta_;
}

int Ni488Face::Finish(const Exchanged& exchanged) {
  switch (exchanged.kind) {
    case Exchanged::Kind::TimeOut:
      return Finish(NI488_ERR | NI488_TIMO, NI488_EABO, 0);
    case Exchanged::Kind::Error:
      return Finish(NI488_ERR, static_cast<int>(exchanged.status), 0);
    case Exchanged::Kind::Gone:
      return Finish(NI488_ERR, NI488_ENOL, 0);
    case Exchanged::Kind::NotAddressed:
      return Finish(NI488_ERR, NI488_EADR, 0);
    case Exchanged::Kind::Done:
      break;
  }
  return Finish(exchanged.end || exchanged.terminator ? NI488_END : 0, 0, static_cast<long>(exchanged.count));
}

template <class Operation>
int Ni488Face::OnBoard(int ud, Operation operation) {
  if (ud != kBoard) return Finish(NI488_ERR, NI488_EARG, 0);
  return Finish(operation());
}

int Ni488Face::Find(const char* name) {
  const std::string_view wanted = name == nullptr ? "" : name;
  const bool board = wanted.size() == 5 && EqualIgnoringCase(wanted.substr(0, 4), "gpib") &&
                     wanted[4] >= '0' && wanted[4] <= '3';
  if (!board || wanted[4] != '0') {
    Finish(NI488_ERR, board ? NI488_ENEB : NI488_EDVR, 0);
    return -1;
  }
  Finish({});
  return kBoard;
}

int Ni488Face::Config(int ud, int option, int value) {
  return OnBoard(ud, [&] {
    if (option == NI488_IBC_AUTOPOLL) autoPoll_ = value != 0;
    return Exchanged{};
  });
}

int Ni488Face::SendInterfaceClear(int ud) {
  return OnBoard(ud, [&] {
    bus_.InterfaceClear();
    return Exchanged{};
  });
}

int Ni488Face::RemoteEnable(int ud, int on) {
  return OnBoard(ud, [&] {
    bus_.RemoteEnable(on != 0);
    return Exchanged{};
  });
}

int Ni488Face::Command(int ud, const void* commands, long count) {
  return OnBoard(ud, [&] {
    return bus_.Command({static_cast<const std::uint8_t*>(commands), static_cast<std::size_t>(count)},
                        timeOut_);
  });
}

int Ni488Face::Write(int ud, const void* data, long count) {
  return OnBoard(ud, [&] {
    return bus_.Write(kBoard, {static_cast<const char*>(data), static_cast<std::size_t>(count)}, endOnWrite_,
                      timeOut_);
  });
}

int Ni488Face::Read(int ud, void* buffer, long count) {
  return OnBoard(ud, [&] {
    return bus_.Read(kBoard, {static_cast<char*>(buffer), static_cast<std::size_t>(count)}, terminator_,
                     timeOut_);
  });
}

int Ni488Face::EndOfString(int ud, int value) {
  return OnBoard(ud, [&] {
    terminator_.reset();
    if ((value & NI488_EOS_REOS) != 0) terminator_ = static_cast<char>(value & 0xFF);
    return Exchanged{};
  });
}

int Ni488Face::EndOfTransfer(int ud, int on) {
  return OnBoard(ud, [&] {
    endOnWrite_ = on != 0;
    return Exchanged{};
  });
}

int Ni488Face::TimeOut(int ud, int code) {
  if (code < 0 || code > kLastTimeOutCode) return Finish(NI488_ERR, NI488_EARG, 0);
  return OnBoard(ud, [&] {
    timeOut_ = TimeOutMs(code);
    return Exchanged{};
  });
}

void Ni488Face::ReadStatusByte(int board, short address, short* result) {
  if (board != kBoard || result == nullptr) {
    Finish(NI488_ERR, board == kBoard ? NI488_EARG : NI488_ENEB, 0);
    return;
  }
  std::uint8_t byte = 0;
  const Exchanged polled = bus_.Poll(address, byte, timeOut_);
  if (polled.kind == Exchanged::Kind::Done) *result = byte;
  Finish(polled);
}

int Ni488Face::RegisterGlobals(int* ibsta, int* iberr, int* ibcnt, long* ibcntl) {
  if (statusPlace_ != nullptr) return 1;
  if (ibsta == nullptr || iberr == nullptr || ibcnt == nullptr || ibcntl == nullptr) return 3;
  statusPlace_ = ibsta;
  errorPlace_ = iberr;
  countPlace_ = ibcnt;
  longCountPlace_ = ibcntl;
  return 0;
}

int Ni488Face::UnregisterGlobals() {
  statusPlace_ = nullptr;
  return 0;
}

}  // namespace corlune
