#include "standins/virtual_instrument/ieee32m_face.h"

#include <array>
#include <charconv>
#include <limits>
#include <utility>

namespace corlune {
namespace {

struct CommandWord {
  std::string_view word;
  std::uint8_t byte;
};

constexpr std::array kCommandWords{CommandWord{"UNT", kGpibUntalk},  CommandWord{"UNL", kGpibUnlisten},
                                   CommandWord{"DCL", kGpibClear},   CommandWord{"SDC", kGpibSelectedClear},
                                   CommandWord{"GET", kGpibTrigger}, CommandWord{"GTL", kGpibGoToLocal}};

}  // namespace

std::int32_t Ieee32mFace::StatusOf(const Exchanged& exchanged) {
  switch (exchanged.kind) {
    case Exchanged::Kind::TimeOut:
      return kIeee32mTimeOut;
    case Exchanged::Kind::Error:
      return static_cast<std::int32_t>(static_cast<std::uint32_t>(exchanged.status));
    case Exchanged::Kind::Gone:
      return kIeee32mNobody;
    case Exchanged::Kind::NotAddressed:
      return kIeee32mNotAddressed;
    case Exchanged::Kind::Done:
      break;
  }
  return 0;
}

std::int32_t Ieee32mFace::Initialize(std::int32_t address) {
  if (address < 0 || address > kLastGpibAddress) return kIeee32mSyntax;
  own_ = address;
  bus_.InterfaceClear();
  return 0;
}

std::int32_t Ieee32mFace::Command(std::uint8_t byte) {
  return StatusOf(bus_.Command({&byte, 1}, timeOut_));
}

std::int32_t Ieee32mFace::Flush() {
  const std::string data = std::exchange(data_, {});
  const bool end = std::exchange(end_, false);
  return data.empty() ? 0 : StatusOf(bus_.Write(own_, data, end, timeOut_));
}

std::int32_t Ieee32mFace::Number(std::string_view word) {
  int value = 0;
  const auto [stop, problem] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (problem != std::errc() || stop != word.data() + word.size() || value < 0) return kIeee32mSyntax;
  if (mode_ == Mode::Data) {
    if (value > 255) return kIeee32mSyntax;
    data_ += static_cast<char>(value);
    return 0;
  }
  if (mode_ == Mode::None || value > kLastGpibAddress) return kIeee32mSyntax;
  return Command(static_cast<std::uint8_t>((mode_ == Mode::Talk ? kGpibTalk : kGpibListen) + value));
}

std::int32_t Ieee32mFace::Word(std::string_view word) {
  if (word.front() >= '0' && word.front() <= '9') return Number(word);
  if (mode_ == Mode::Data && word == "EOI") {
    end_ = true;
    return 0;
  }
  if (word == "DATA") {
    mode_ = Mode::Data;
    return 0;
  }
  const std::int32_t sent = Flush();
  if (sent != 0) return sent;
  mode_ = word == "TALK" ? Mode::Talk : word == "LISTEN" ? Mode::Listen : mode_;
  if (word == "TALK" || word == "LISTEN") return 0;
  if (word == "MTA") return Command(static_cast<std::uint8_t>(kGpibTalk + own_));
  if (word == "MLA") return Command(static_cast<std::uint8_t>(kGpibListen + own_));
  if (word == "IFC") bus_.InterfaceClear();
  if (word == "REN") bus_.RemoteEnable(true);
  if (word == "IFC" || word == "REN") return 0;
  for (const CommandWord& row : kCommandWords) {
    if (row.word == word) return Command(row.byte);
  }
  return kIeee32mSyntax;
}

std::int32_t Ieee32mFace::Transmit(std::string_view command) {
  mode_ = Mode::None;
  data_.clear();
  end_ = false;
  while (!command.empty()) {
    if (command.front() == ' ') {
      command.remove_prefix(1);
      continue;
    }
    const bool text = command.front() == '\'';
    const std::size_t length = text ? command.find('\'', 1) : command.find(' ');
    if (text) {
      if (mode_ != Mode::Data || length == std::string_view::npos) return kIeee32mSyntax;
      data_ += command.substr(1, length - 1);
      command.remove_prefix(length + 1);
      continue;
    }
    const std::string_view word = command.substr(0, length);
    const std::int32_t status = Word(word);
    if (status != 0) return status;
    command.remove_prefix(word.size());
  }
  return Flush();
}

std::int32_t Ieee32mFace::Receive(std::span<char> buffer, std::int32_t* count) {
  const Exchanged read = bus_.Read(own_, buffer, terminator_, timeOut_);
  *count = static_cast<std::int32_t>(read.count);
  return StatusOf(read);
}

std::int32_t Ieee32mFace::SerialPoll(std::int32_t address, std::uint8_t* statusByte) {
  return StatusOf(bus_.Poll(address, *statusByte, timeOut_));
}

std::int32_t Ieee32mFace::SetTimeout(std::int32_t milliseconds) {
  if (milliseconds < 0) return kIeee32mSyntax;
  timeOut_ = milliseconds == 0 ? std::numeric_limits<std::uint32_t>::max()
                               : static_cast<std::uint32_t>(milliseconds);
  return 0;
}

std::int32_t Ieee32mFace::SetInputEos(std::int32_t character) {
  if (character < 0 || character > 255) return kIeee32mSyntax;
  terminator_.reset();
  if (character != 0) terminator_ = static_cast<char>(character);
  return 0;
}

}  // namespace corlune
