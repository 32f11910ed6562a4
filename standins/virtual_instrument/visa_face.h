// VisaFace: a VISA library's operations over the instruments of a VirtualBench.
//
// The operations answer with the completion codes of the standard and never throw. They run on a clock and
// wait through a function, both given from outside, so that tests can run them on a clock of their own; the
// shared library (visa_library.cpp) brings the real ones. Not thread-safe; waits block the caller unless
// `sleep` does something else.
//
// To use the face through C function pointers: SetFace(&face) of chosen_face.h, then take &viOpen and its
// sisters from the library target corlune_virtual_visa_face.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/abi/visa.h"
#include "standins/virtual_instrument/instrument_io.h"
#include "standins/virtual_instrument/virtual_bench.h"

namespace corlune {

class VisaFace {
 public:
  using Sleep = InstrumentIo::Sleep;

  // The bench must outlive the face. `sleep` is called for time-outs and late replies.
  VisaFace(VirtualBench& bench, Sleep sleep) : bench_(bench), io_(std::move(sleep)) {}

  ViStatus OpenDefaultRM(ViSession* manager);
  ViStatus FindRsrc(ViSession manager, const char* expression, ViFindList* list, ViUInt32* count, char* name);
  ViStatus FindNext(ViFindList list, char* name);
  ViStatus ParseRsrc(ViSession manager, const char* name, ViUInt16* type, ViUInt16* number,
                     char* resourceClass, char* expanded, char* alias);
  ViStatus Open(ViSession manager, const char* name, ViAccessMode mode, ViSession* session);
  ViStatus Close(ViObject object);

  ViStatus SetAttribute(ViObject object, ViAttr attribute, ViAttrState state);
  ViStatus GetAttribute(ViObject object, ViAttr attribute, void* state);
  ViStatus StatusDesc(ViObject object, ViStatus status, char* text);
  ViStatus Lock(ViSession session, ViAccessMode type, ViUInt32 timeOut);
  ViStatus Unlock(ViSession session);

  ViStatus EnableEvent(ViSession session, ViEventType type, ViUInt16 mechanism);
  ViStatus DisableEvent(ViSession session, ViEventType type, ViUInt16 mechanism);
  ViStatus DiscardEvents(ViSession session, ViEventType type, ViUInt16 mechanism);
  // Service requests only, through the queue.
  ViStatus WaitOnEvent(ViSession session, ViEventType type, ViUInt32 timeOut, ViEventType* found,
                       ViEvent* event);

  ViStatus Read(ViSession session, ViByte* buffer, ViUInt32 size, ViUInt32* count);
  ViStatus ReadToFile(ViSession session, const char* fileName, ViUInt32 size, ViUInt32* count);
  ViStatus Write(ViSession session, const ViByte* bytes, ViUInt32 size, ViUInt32* count);
  ViStatus WriteFromFile(ViSession session, const char* fileName, ViUInt32 size, ViUInt32* count);
  ViStatus ReadSTB(ViSession session, ViUInt16* status);
  ViStatus Clear(ViSession session);
  ViStatus AssertTrigger(ViSession session, ViUInt16 protocol);
  ViStatus GpibControlREN(ViSession session, ViUInt16 mode);

  // Objects that are open, for tests of leaks.
  std::size_t OpenObjects() const { return objects_.size(); }

 private:
  struct Manager {};
  struct FindResult {
    ViSession manager = 0;
    std::vector<std::string> names;
    std::size_t next = 0;
  };
  struct Event {
    ViSession session = 0;
  };
  struct Session {
    ViSession manager = 0;
    std::size_t instrument = 0;
    std::map<ViAttr, ViUInt64> attributes;  // those that were set
    bool serviceRequests = false;           // queued
    int locks = 0;
  };
  using Object = std::variant<Manager, FindResult, Event, Session>;

  template <class Kind>
  Kind* Find(ViObject object);
  ViObject Register(Object object);
  ViUInt64 Value(const Session& session, ViAttr attribute) const;
  std::optional<ViUInt64> DeviceValue(const Session& session, ViAttr attribute);
  std::optional<std::string> DeviceText(const Session& session, ViAttr attribute) const;
  static ViStatus GetManagerAttribute(ViAttr attribute, void* state);
  VirtualInstrument& Instrument(const Session& session) { return bench_.At(session.instrument); }
  bool LockedByOther(const Session& session);
  // Finds the session and begins an exchange with its instrument; VI_SUCCESS: go on.
  ViStatus Begin(ViSession handle, ExchangeKind kind, std::string_view bytes, Session*& session);
  // Reads up to `size` bytes in parts; `take` gets each and returns false to stop.
  ViStatus Transfer(const Session& session, std::size_t size, std::span<char> part,
                    const std::function<bool(std::span<const char>)>& take);
  ViUInt32 TimeOut(const Session& session) const;

  VirtualBench& bench_;
  InstrumentIo io_;
  std::map<ViObject, Object> objects_;
  ViObject lastHandle_ = 0;
};

}  // namespace corlune
