#include "standins/virtual_instrument/visa_face.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <regex>
#include <type_traits>
#include <utility>

#include "standins/virtual_instrument/visa_resources.h"

namespace corlune {
namespace {

constexpr ViUInt32 kLongestWaitMs = 60'000;  // for a service request, whatever the time-out
constexpr std::size_t kFilePart = std::size_t{16} << 10;
constexpr ViUInt32 kEventPollMs = 10;

void CopyName(char* out, std::string_view name) {
  if (out == nullptr) return;
  const std::size_t length = std::min<std::size_t>(name.size(), VI_FIND_BUFLEN - 1);
  std::memcpy(out, name.data(), length);
  out[length] = '\0';
}

ViStatus StatusOf(std::int64_t word) {
  return static_cast<ViStatus>(static_cast<std::uint32_t>(word));
}

}  // namespace

template <class Kind>
Kind* VisaFace::Find(ViObject object) {
  const auto found = objects_.find(object);
  return found == objects_.end() ? nullptr : std::get_if<Kind>(&found->second);
}

ViObject VisaFace::Register(Object object) {
  do {
    ++lastHandle_;
  } while (lastHandle_ == 0 || objects_.contains(lastHandle_));
  objects_.emplace(lastHandle_, std::move(object));
  return lastHandle_;
}

// ---- Resource manager ----

ViStatus VisaFace::OpenDefaultRM(ViSession* manager) {
  if (manager == nullptr) return VI_ERROR_USER_BUF;
  *manager = Register(Manager{});
  return VI_SUCCESS;
}

ViStatus VisaFace::FindRsrc(ViSession manager, const char* expression, ViFindList* list, ViUInt32* count,
                            char* name) {
  if (Find<Manager>(manager) == nullptr) return VI_ERROR_INV_OBJECT;
  if (expression == nullptr) return VI_ERROR_INV_EXPR;
  const auto pattern = ResourceExpression(expression);
  if (!pattern) return VI_ERROR_INV_EXPR;
  FindResult found{manager, {}, 1};
  for (std::size_t i = 0; i < bench_.Count(); ++i) {
    const std::string resource = VirtualBench::ResourceName(bench_.At(i).Identity());
    if (bench_.OnUsbTmc(i) && std::regex_match(resource, *pattern)) found.names.push_back(resource);
  }
  if (count != nullptr) *count = static_cast<ViUInt32>(found.names.size());
  if (found.names.empty()) return VI_ERROR_RSRC_NFOUND;
  CopyName(name, found.names.front());
  if (list != nullptr) *list = Register(std::move(found));
  return VI_SUCCESS;
}

ViStatus VisaFace::FindNext(ViFindList list, char* name) {
  auto* const found = Find<FindResult>(list);
  if (found == nullptr) return VI_ERROR_INV_OBJECT;
  if (found->next >= found->names.size()) return VI_ERROR_RSRC_NFOUND;
  CopyName(name, found->names[found->next++]);
  return VI_SUCCESS;
}

ViStatus VisaFace::ParseRsrc(ViSession manager, const char* name, ViUInt16* type, ViUInt16* number,
                             char* resourceClass, char* expanded, char* alias) {
  if (Find<Manager>(manager) == nullptr) return VI_ERROR_INV_OBJECT;
  if (name == nullptr || !IsResourceName(name)) return VI_ERROR_INV_RSRC_NAME;
  const auto resource = ParseUsbResource(name);
  if (!resource) return VI_ERROR_RSRC_NFOUND;
  if (type != nullptr) *type = VI_INTF_USB;
  if (number != nullptr) *number = resource->board;
  CopyName(resourceClass, "INSTR");
  std::string whole = name;
  for (std::size_t i = 0; i < bench_.Count(); ++i) {
    const std::string known = VirtualBench::ResourceName(bench_.At(i).Identity());
    if (ParseUsbResource(known) == resource) whole = known;
  }
  CopyName(expanded, whole);
  CopyName(alias, "");
  return VI_SUCCESS;
}

ViStatus VisaFace::Open(ViSession manager, const char* name, ViAccessMode mode, ViSession* session) {
  if (Find<Manager>(manager) == nullptr) return VI_ERROR_INV_OBJECT;
  if (session == nullptr) return VI_ERROR_USER_BUF;
  *session = VI_NULL;
  if (name == nullptr || !IsResourceName(name)) return VI_ERROR_INV_RSRC_NAME;
  if ((mode & ~static_cast<ViAccessMode>(VI_EXCLUSIVE_LOCK | VI_LOAD_CONFIG)) != 0)
    return VI_ERROR_INV_ACC_MODE;
  const auto wanted = ParseUsbResource(name);
  for (std::size_t i = 0; wanted && i < bench_.Count(); ++i) {
    const VirtualInstrument& instrument = bench_.At(i);
    if (!bench_.OnUsbTmc(i)) continue;
    if (ParseUsbResource(VirtualBench::ResourceName(instrument.Identity())) != wanted) continue;
    Session opened;
    opened.manager = manager;
    opened.instrument = i;
    if (LockedByOther(opened)) return VI_ERROR_RSRC_LOCKED;
    if ((mode & VI_EXCLUSIVE_LOCK) != 0) opened.locks = 1;
    *session = Register(std::move(opened));
    return VI_SUCCESS;
  }
  return VI_ERROR_RSRC_NFOUND;
}

ViStatus VisaFace::Close(ViObject object) {
  if (object == VI_NULL) return VI_WARN_NULL_OBJECT;
  const auto found = objects_.find(object);
  if (found == objects_.end()) return VI_ERROR_INV_OBJECT;
  if (std::holds_alternative<Manager>(found->second)) {
    // A resource manager takes everything with it that was opened through it.
    std::erase_if(objects_, [object](const auto& entry) {
      return std::visit(
          [object](const auto& kind) {
            using Kind = std::decay_t<decltype(kind)>;
            if constexpr (std::is_same_v<Kind, Session> || std::is_same_v<Kind, FindResult>) {
              return kind.manager == object;
            } else {
              return false;
            }
          },
          entry.second);
    });
  }
  objects_.erase(object);
  return VI_SUCCESS;
}

// ---- Locks ----

bool VisaFace::LockedByOther(const Session& session) {
  return std::any_of(objects_.begin(), objects_.end(), [&](const auto& entry) {
    const auto* const other = std::get_if<Session>(&entry.second);
    return other != nullptr && other != &session && other->instrument == session.instrument &&
           other->locks > 0;
  });
}

ViStatus VisaFace::Lock(ViSession session, ViAccessMode type, ViUInt32 timeOut) {
  auto* const found = Find<Session>(session);
  if (found == nullptr) return VI_ERROR_INV_OBJECT;
  if (type != VI_EXCLUSIVE_LOCK) return VI_ERROR_INV_LOCK_TYPE;
  if (LockedByOther(*found)) {
    io_.Wait(timeOut);
    return VI_ERROR_TMO;
  }
  return ++found->locks > 1 ? VI_SUCCESS_NESTED_EXCLUSIVE : VI_SUCCESS;
}

ViStatus VisaFace::Unlock(ViSession session) {
  auto* const found = Find<Session>(session);
  if (found == nullptr) return VI_ERROR_INV_OBJECT;
  if (found->locks == 0) return VI_ERROR_SESN_NLOCKED;
  return --found->locks > 0 ? VI_SUCCESS_NESTED_EXCLUSIVE : VI_SUCCESS;
}

// ---- Events ----

ViStatus VisaFace::EnableEvent(ViSession session, ViEventType type, ViUInt16 mechanism) {
  auto* const found = Find<Session>(session);
  if (found == nullptr) return VI_ERROR_INV_OBJECT;
  if (type != VI_EVENT_SERVICE_REQ) return VI_ERROR_INV_EVENT;
  if (mechanism != VI_QUEUE) return VI_ERROR_NSUP_MECH;
  return std::exchange(found->serviceRequests, true) ? VI_SUCCESS_EVENT_EN : VI_SUCCESS;
}

ViStatus VisaFace::DisableEvent(ViSession session, ViEventType type, ViUInt16 mechanism) {
  auto* const found = Find<Session>(session);
  if (found == nullptr) return VI_ERROR_INV_OBJECT;
  if (type != VI_EVENT_SERVICE_REQ && type != VI_ALL_ENABLED_EVENTS) return VI_ERROR_INV_EVENT;
  if ((mechanism & VI_QUEUE) == 0) return VI_SUCCESS_EVENT_DIS;
  return std::exchange(found->serviceRequests, false) ? VI_SUCCESS : VI_SUCCESS_EVENT_DIS;
}

ViStatus VisaFace::DiscardEvents(ViSession session, ViEventType type, ViUInt16) {
  if (Find<Session>(session) == nullptr) return VI_ERROR_INV_OBJECT;
  if (type != VI_EVENT_SERVICE_REQ && type != VI_ALL_ENABLED_EVENTS) return VI_ERROR_INV_EVENT;
  return VI_SUCCESS_QUEUE_EMPTY;  // a request stays with the instrument until it is polled
}

ViStatus VisaFace::WaitOnEvent(ViSession session, ViEventType type, ViUInt32 timeOut, ViEventType* found,
                               ViEvent* event) {
  auto* const waiting = Find<Session>(session);
  if (waiting == nullptr) return VI_ERROR_INV_OBJECT;
  if (type != VI_EVENT_SERVICE_REQ && type != VI_ALL_ENABLED_EVENTS) return VI_ERROR_INV_EVENT;
  if (!waiting->serviceRequests) return VI_ERROR_NENABLED;
  VirtualInstrument& instrument = Instrument(*waiting);
  ViUInt32 left = std::min(timeOut, kLongestWaitMs);
  while (!instrument.RequestsService()) {
    if (left == 0) return VI_ERROR_TMO;
    const ViUInt32 part = std::min(left, kEventPollMs);
    io_.Wait(part);
    left -= part;
  }
  if (found != nullptr) *found = VI_EVENT_SERVICE_REQ;
  if (event != nullptr) *event = Register(Event{session});
  return VI_SUCCESS;
}

// ---- Transfers ----

ViUInt32 VisaFace::TimeOut(const Session& session) const {
  return static_cast<ViUInt32>(Value(session, VI_ATTR_TMO_VALUE));
}

ViStatus VisaFace::Begin(ViSession handle, ExchangeKind kind, std::string_view bytes, Session*& session) {
  session = Find<Session>(handle);
  if (session == nullptr) return VI_ERROR_INV_OBJECT;
  if (LockedByOther(*session)) return VI_ERROR_RSRC_LOCKED;
  const Exchanged begun = io_.Begin(Instrument(*session), kind, bytes, TimeOut(*session));
  switch (begun.kind) {
    case Exchanged::Kind::TimeOut:
      return VI_ERROR_TMO;
    case Exchanged::Kind::Error:
      return StatusOf(begun.status);
    case Exchanged::Kind::Gone:
    case Exchanged::Kind::NotAddressed:
      return VI_ERROR_CONN_LOST;
    case Exchanged::Kind::Done:
      break;
  }
  return VI_SUCCESS;
}

ViStatus VisaFace::Write(ViSession session, const ViByte* bytes, ViUInt32 size, ViUInt32* count) {
  if (count != nullptr) *count = 0;
  if (bytes == nullptr && size > 0) return VI_ERROR_USER_BUF;
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  Session* found = nullptr;
  const ViStatus status = Begin(session, ExchangeKind::Write, text, found);
  if (status != VI_SUCCESS) return status;
  if (size == 0) return VI_SUCCESS;
  Instrument(*found).Write(text, Value(*found, VI_ATTR_SEND_END_EN) != VI_FALSE);
  if (count != nullptr) *count = size;
  return VI_SUCCESS;
}

ViStatus VisaFace::WriteFromFile(ViSession session, const char* fileName, ViUInt32 size, ViUInt32* count) {
  if (count != nullptr) *count = 0;
  if (Find<Session>(session) == nullptr) return VI_ERROR_INV_OBJECT;
  std::ifstream file(fileName == nullptr ? "" : fileName, std::ios::binary);
  if (!file) return VI_ERROR_FILE_ACCESS;
  std::string bytes(std::istreambuf_iterator<char>(file), {});
  if (bytes.size() > size) bytes.resize(size);
  return Write(session, reinterpret_cast<const ViByte*>(bytes.data()), static_cast<ViUInt32>(bytes.size()),
               count);
}

ViStatus VisaFace::Transfer(const Session& session, std::size_t size, std::span<char> part,
                            const std::function<bool(std::span<const char>)>& take) {
  if (!io_.AwaitReply(Instrument(session), TimeOut(session))) return VI_ERROR_TMO;
  std::optional<char> terminator;
  if (Value(session, VI_ATTR_TERMCHAR_EN) != VI_FALSE) {
    terminator = static_cast<char>(Value(session, VI_ATTR_TERMCHAR));
  }
  while (size > 0) {
    const auto result = Instrument(session).Read(part.subspan(0, std::min(size, part.size())), terminator);
    if (!take(part.subspan(0, result.count))) return VI_ERROR_FILE_IO;
    size -= result.count;
    if (result.end) return VI_SUCCESS;
    if (result.terminator) return VI_SUCCESS_TERM_CHAR;
  }
  return VI_SUCCESS_MAX_CNT;
}

ViStatus VisaFace::Read(ViSession session, ViByte* buffer, ViUInt32 size, ViUInt32* count) {
  if (count != nullptr) *count = 0;
  if (buffer == nullptr && size > 0) return VI_ERROR_USER_BUF;
  Session* found = nullptr;
  const ViStatus status = Begin(session, ExchangeKind::Read, {}, found);
  if (status != VI_SUCCESS) return status;
  if (size == 0) return VI_SUCCESS_MAX_CNT;
  // A reply is read in one part, straight into the caller's buffer.
  return Transfer(*found, size, std::span(reinterpret_cast<char*>(buffer), size),
                  [count](std::span<const char> bytes) {
                    if (count != nullptr) *count = static_cast<ViUInt32>(bytes.size());
                    return true;
                  });
}

ViStatus VisaFace::ReadToFile(ViSession session, const char* fileName, ViUInt32 size, ViUInt32* count) {
  if (count != nullptr) *count = 0;
  Session* found = Find<Session>(session);
  if (found == nullptr) return VI_ERROR_INV_OBJECT;
  const bool append = Value(*found, VI_ATTR_FILE_APPEND_EN) != VI_FALSE;
  std::ofstream file(fileName == nullptr ? "" : fileName,
                     std::ios::binary | (append ? std::ios::app : std::ios::trunc));
  if (!file) return VI_ERROR_FILE_ACCESS;
  const ViStatus status = Begin(session, ExchangeKind::Read, {}, found);
  if (status != VI_SUCCESS) return status;
  std::string part(kFilePart, '\0');
  ViUInt32 total = 0;
  const ViStatus result = Transfer(*found, size, part, [&](std::span<const char> bytes) {
    total += static_cast<ViUInt32>(bytes.size());
    return static_cast<bool>(file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())));
  });
  if (count != nullptr) *count = total;
  file.close();
  return file || result < VI_SUCCESS ? result : VI_ERROR_FILE_IO;
}

ViStatus VisaFace::ReadSTB(ViSession session, ViUInt16* status) {
  if (status == nullptr) return VI_ERROR_USER_BUF;
  Session* found = nullptr;
  const ViStatus begun = Begin(session, ExchangeKind::Poll, {}, found);
  if (begun != VI_SUCCESS) return begun;
  *status = Instrument(*found).SerialPoll();
  return VI_SUCCESS;
}

ViStatus VisaFace::Clear(ViSession session) {
  Session* found = nullptr;
  const ViStatus begun = Begin(session, ExchangeKind::Clear, {}, found);
  if (begun != VI_SUCCESS) return begun;
  Instrument(*found).DeviceClear();
  return VI_SUCCESS;
}

ViStatus VisaFace::AssertTrigger(ViSession session, ViUInt16 protocol) {
  if (protocol != VI_TRIG_PROT_DEFAULT) return VI_ERROR_INV_PROT;
  static constexpr std::string_view kTrigger = "*TRG\n";
  Session* found = nullptr;
  const ViStatus begun = Begin(session, ExchangeKind::Write, kTrigger, found);
  if (begun != VI_SUCCESS) return begun;
  Instrument(*found).Write(kTrigger, true);
  return VI_SUCCESS;
}

ViStatus VisaFace::GpibControlREN(ViSession session, ViUInt16 mode) {
  auto* const found = Find<Session>(session);
  if (found == nullptr) return VI_ERROR_INV_OBJECT;
  if (mode > VI_GPIB_REN_ADDRESS_GTL) return VI_ERROR_INV_MODE;
  if (!Instrument(*found).Present()) return VI_ERROR_CONN_LOST;
  const bool local =
      mode == VI_GPIB_REN_DEASSERT || mode == VI_GPIB_REN_DEASSERT_GTL || mode == VI_GPIB_REN_ADDRESS_GTL;
  Instrument(*found).SetRemote(!local);
  return VI_SUCCESS;
}

}  // namespace corlune
