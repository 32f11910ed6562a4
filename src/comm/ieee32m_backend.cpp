#include "comm/ieee32m_backend.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace corlune {

namespace {

// By GP_MTerm code: the terminator as byte values behind a data text.
constexpr std::array<std::string_view, 4> kSuffixes{"", " 10", " 13", " 13 10"};

// The board counts in steps of its own; 55 ms is its shortest time-out.
std::int32_t BoardMilliseconds(std::int16_t code) {
  constexpr std::array<std::int32_t, 9> kFrom100ms{110,   330,    1045,   3025,   10010,
                                                   30030, 100045, 300250, 1000010};
  if (code >= 1 && code <= 8) return 55;
  if (code >= 9 && code <= 17) return kFrom100ms[static_cast<std::size_t>(code - 9)];
  return 0;
}

CommStatus Converted(std::int32_t status) {
  if (status < 0) return CommStatus::Error;
  return status > 0 ? CommStatus::TimeOut : CommStatus::Success;
}

// Of calls that answer with a negative number for an error and anything else for success.
CommStatus Accepted(std::int32_t result) {
  return result < 0 ? CommStatus::Error : CommStatus::Success;
}

// A quote would end the text; it goes as its byte value.
std::string QuotedText(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') {
      quoted += "' 39 '";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

}  // namespace

std::string DataCommand(const std::string& text, std::string_view suffix, bool endOnWrite) {
  if (text.empty() && suffix.empty()) return {};
  if (!endOnWrite) return "DATA " + QuotedText(text) + " " + std::string(suffix);
  if (!suffix.empty()) return "DATA " + QuotedText(text) + " EOI " + std::string(suffix);
  const std::string_view all = text;
  return "DATA " + QuotedText(all.substr(0, all.size() - 1)) + " EOI DATA " +
         QuotedText(all.substr(all.size() - 1));
}

Ieee32mMdl::Ieee32mMdl(const BackendServices& services, LibraryLoader<Ieee32mTable> loader)
    : GpBackendBase(services), loader_(std::move(loader)) {}

CommStatus Ieee32mMdl::Open(const InitOptions& options) {
  open_ = false;
  endOnWrite_ = true;
  problem_.clear();
  if (!ieee_) ieee_ = loader_(&problem_);
  if (!ieee_ || ieee_->BoardPresent() == 0) return Checked("GP_Init", CommStatus::NoBoard);
  CommStatus status = Accepted(ieee_->Initialize(options.Number("MYADRS"), 0));
  open_ = !Failed(status);
  if (open_) {
    status = GP_REN(true);
    status = status | GP_MTerm(kTerminatorLf);
    status = status | GP_EOI(true);
    status = status | GP_Time_Out(kTimeOut300ms);
  }
  return Checked("GP_Init", status);
}

CommStatus Ieee32mMdl::Close() {
  return open_ ? Checked("GP_END", GoToLocal()) : CommStatus::Success;
}

CommStatus Ieee32mMdl::Transmit(const std::string& command) {
  if (!open_) return CommStatus::NoBoard;
  std::int32_t status = 0;
  ieee_->Transmit(command.c_str(), -1, &status);
  return Converted(status);
}

CommStatus Ieee32mMdl::GoToLocal() {
  return Transmit("UNL LISTEN " + std::to_string(Device()) + " GTL");
}

CommStatus Ieee32mMdl::Select(const char* operation, Transfer transfer, std::int16_t address) {
  if (!open_) return Checked(operation, CommStatus::NoBoard);
  // A serial poll addresses by itself; without an address the bus stays as it was addressed before.
  if (transfer == Transfer::Poll || address == kSameDevice) return CommStatus::Success;
  const std::string parties = transfer == Transfer::Send ? "TALK MTA LISTEN " : "LISTEN MLA TALK ";
  return Checked(operation, Transmit("UNT UNL " + parties + std::to_string(address)));
}

CommStatus Ieee32mMdl::Write(const std::string& text) {
  const std::string command =
      DataCommand(text, kSuffixes[static_cast<std::size_t>(TerminatorCode())], endOnWrite_);
  return command.empty() ? CommStatus::Success : Transmit(command);
}

CommStatus Ieee32mMdl::Read(std::span<char> buffer, Received& received) {
  std::int32_t status = 0;
  std::int32_t count = 0;
  const auto size = static_cast<std::int32_t>(buffer.size());
  ieee_->Receive(buffer.data(), size, &status, &count);
  received.count = static_cast<std::size_t>(std::clamp(count, 0, size));
  // The library does not say that a message has ended; a full buffer without the end character goes on.
  received.ended = received.count < buffer.size() ||
                   static_cast<std::uint8_t>(buffer.back()) == TerminatorOf(TerminatorCode()).endOfRead;
  return Converted(status);
}

CommStatus Ieee32mMdl::InterfaceClear() {
  return Transmit("IFC");
}

CommStatus Ieee32mMdl::DeviceClear() {
  return Transmit("DCL");
}

CommStatus Ieee32mMdl::SerialPoll(std::int16_t& statusByte) {
  std::uint8_t byte = 0;
  std::int32_t status = 0;
  ieee_->SerialPoll(Device(), &byte, &status);
  statusByte = byte;
  return Converted(status);
}

CommStatus Ieee32mMdl::SetTimeOut(std::int16_t code) {
  return open_ ? Accepted(ieee_->SetTimeout(BoardMilliseconds(code))) : CommStatus::NoBoard;
}

CommStatus Ieee32mMdl::SetTerminator(std::int16_t code) {
  return open_ ? Accepted(ieee_->SetInputEos(TerminatorOf(code).endOfRead)) : CommStatus::NoBoard;
}

CommStatus Ieee32mMdl::SetEndOnWrite(bool on) {
  endOnWrite_ = on;
  return CommStatus::Success;
}

CommStatus Ieee32mMdl::SetRemote(bool on) {
  return on ? Transmit("REN") : GoToLocal();
}

std::string_view Ieee32mMdl::TimeOutLogName(std::int16_t code) const {
  return code >= 1 && code <= 8 ? std::string_view("55ms") : TimeOutName(code);
}

}  // namespace corlune
