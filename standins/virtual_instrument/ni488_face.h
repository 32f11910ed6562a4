// Ni488Face: an NI-488.2 library's operations on the board "gpib0", address 0, of the bench's bus. Not
// thread-safe. Its C operations work on the face that SetFace chose (chosen_face.h).
#pragma once

#include "platform/abi/ni488.h"
#include "standins/virtual_instrument/gpib_bus.h"

namespace corlune {

class Ni488Face {
 public:
  explicit Ni488Face(GpibBus& bus) : bus_(bus) {}

  // The descriptor is 0; -1 for every other board (ENEB) and for a name that is none (EDVR).
  int Find(const char* name);
  // These return ibsta. A descriptor other than 0: EARG.
  int Config(int ud, int option, int value);
  int SendInterfaceClear(int ud);
  int RemoteEnable(int ud, int on);
  int Command(int ud, const void* commands, long count);
  int Write(int ud, const void* data, long count);
  int Read(int ud, void* buffer, long count);
  int EndOfString(int ud, int value);
  int EndOfTransfer(int ud, int on);
  int TimeOut(int ud, int code);
  void ReadStatusByte(int board, short address, short* result);

  int Status() const { return ibsta_; }
  int ErrorCode() const { return iberr_; }
  long Count() const { return ibcnt_; }
  int RegisterGlobals(int* ibsta, int* iberr, int* ibcnt, long* ibcntl);
  int UnregisterGlobals();

  bool AutoPoll() const { return autoPoll_; }
  bool Registered() const { return statusPlace_ != nullptr; }

 private:
  // Sets status word, error code and count, also in the registered variables; the status word.
  int Finish(int bits, int error, long count);
  int Finish(const Exchanged& exchanged);
  template <class Operation>
  int OnBoard(int ud, Operation operation);

  GpibBus& bus_;
  std::uint32_t timeOut_ = 10'000;  // ms
  std::optional<char> terminator_;
  bool endOnWrite_ = true;
  bool autoPoll_ = true;
  int ibsta_ = NI488_CMPL;
  int iberr_ = 0;
  long ibcnt_ = 0;
  int* statusPlace_ = nullptr;
  int* errorPlace_ = nullptr;
  int* countPlace_ = nullptr;
  long* longCountPlace_ = nullptr;
};

}  // namespace corlune
