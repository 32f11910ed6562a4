// Ieee32mFace: an IEEE_32M library's operations on its board on the bench's bus. Not thread-safe. Its C
// operations work on the face that SetFace chose (chosen_face.h).
#pragma once

#include <string>
#include <vector>

#include "platform/abi/ieee32m.h"
#include "standins/virtual_instrument/gpib_bus.h"

namespace corlune {

// Statuses of the library: 0 is success, above 0 a time-out, below 0 an error.
enum Ieee32mStatus : std::int32_t {
  kIeee32mTimeOut = 1,
  kIeee32mSyntax = -1,
  kIeee32mNotAddressed = -2,
  kIeee32mNobody = -3,
};

class Ieee32mFace {
 public:
  explicit Ieee32mFace(GpibBus& bus) : bus_(bus) {}

  std::int32_t Initialize(std::int32_t address);
  // Carries the words out from left to right, up to the first failure:
  //   UNT UNL MTA MLA        unaddress; the board talks, listens
  //   TALK n, LISTEN n ...   addresses; also "TALK MTA"
  //   DATA ...               texts in quotation marks and byte values, one message part; END goes with the
  //                          last of them when EOI stands among them
  //   REN IFC DCL SDC GTL GET
  std::int32_t Transmit(std::string_view command);
  std::int32_t Receive(std::span<char> buffer, std::int32_t* count);
  std::int32_t SerialPoll(std::int32_t address, std::uint8_t* statusByte);
  std::int32_t SetTimeout(std::int32_t milliseconds);  // 0: endless
  std::int32_t SetInputEos(std::int32_t character);    // 0: none

 private:
  enum class Mode { None, Talk, Listen, Data };

  std::int32_t Word(std::string_view word);
  std::int32_t Number(std::string_view word);
  std::int32_t Command(std::uint8_t byte);
  // Sends what a DATA has gathered.
  std::int32_t Flush();
  static std::int32_t StatusOf(const Exchanged& exchanged);

  GpibBus& bus_;
  int own_ = 0;
  std::uint32_t timeOut_ = 10'000;  // ms
  std::optional<char> terminator_;
  Mode mode_ = Mode::None;
  std::string data_;
  bool end_ = false;
};

}  // namespace corlune
