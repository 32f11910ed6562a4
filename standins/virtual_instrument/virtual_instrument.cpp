#include "standins/virtual_instrument/virtual_instrument.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "core/ports.h"
#include "standins/virtual_instrument/instrument_commands.h"

namespace corlune {
namespace {

// The longest command is a waveform of 524,288 point pairs, 3 MiB.
constexpr std::size_t kInputLimit = std::size_t{4} << 20;
// Buffers above this size are given back when they are empty.
constexpr std::size_t kKeptCapacity = std::size_t{64} << 10;
constexpr std::size_t kHeadBytes = 256;
constexpr std::size_t kLongReply = 300;

void Release(std::string& buffer) {
  if (buffer.capacity() > kKeptCapacity) {
    std::string().swap(buffer);  // assigning an empty text would keep the memory
  } else {
    buffer.clear();
  }
}

std::string AllBytes() {
  std::string bytes;
  for (int c = 0; c < 256; ++c) {
    if (c != '\n' && c != '\r') bytes += static_cast<char>(c);
  }
  return bytes;
}

bool IsCommandError(ScpiError error) {
  return static_cast<int>(error) <= -100 && static_cast<int>(error) > -200;
}

}  // namespace

VirtualInstrument::VirtualInstrument(InstrumentIdentity identity, InstrumentClock clock)
    : state_(std::move(identity)), clock_(std::move(clock)), lastTick_(clock_()) {}

void VirtualInstrument::Update() {
  const std::uint32_t now = clock_();
  const std::int32_t passed = TicksSince(now, lastTick_);
  lastTick_ = now;
  if (passed > 0) state_.Advance(static_cast<std::uint32_t>(passed));
  if (state_.waitWanted && state_.PendingMs() == 0) {
    state_.waitWanted = false;
    const std::string rest = std::exchange(deferred_, std::string());
    HandleInput(rest, true);
  }
}

ExchangeVerdict VirtualInstrument::BeginExchange(ExchangeKind kind, std::string_view bytes) {
  Update();
  if (kind == ExchangeKind::Write) {
    if (!messageOpen_) head_.clear();
    head_ += bytes.substr(0, kHeadBytes - std::min(kHeadBytes, head_.size()));
  }
  return state_.faults.Next(kind, head_);
}

void VirtualInstrument::Write(std::string_view bytes, bool end) {
  Update();
  if (trace_) trace_(ExchangeKind::Write, bytes, end);
  if (!messageOpen_ && ReplyWaiting()) {
    state_.status.Report(ScpiError::Interrupted);
    Release(output_);
    readAt_ = 0;
  }
  messageOpen_ = !end;
  if (skipToEnd_) {
    skipToEnd_ = !end;
    return;
  }
  if (input_.empty() && end) {
    HandleInput(bytes, true);
    return;
  }
  if (input_.size() + bytes.size() > kInputLimit) {
    state_.status.Report(ScpiError::InputOverrun);
    Release(input_);
    skipToEnd_ = !end;
    return;
  }
  input_ += bytes;
  // Without END only a line feed can end a message.
  if (!end && (bytes.empty() || bytes.back() != '\n')) return;
  std::string complete = std::exchange(input_, std::string());
  HandleInput(complete, end);
}

void VirtualInstrument::HandleInput(std::string_view bytes, bool end) {
  while (!bytes.empty()) {
    const auto span = FirstScpiMessage(bytes, end);
    if (!span) {
      input_ = bytes;
      return;
    }
    const std::string_view message = bytes.substr(0, span->content);
    bytes.remove_prefix(span->whole);
    if (!HandleMessage(message)) {
      skipToEnd_ = !end;
      return;
    }
    messageOpen_ = !end && !bytes.empty();
  }
}

// False when a block was malformed: nobody knows what the bytes behind it are.
bool VirtualInstrument::HandleMessage(std::string_view message) {
  if (state_.waitWanted) {
    deferred_.append(message).append("\n");
    return true;
  }
  if (ReplyWaiting()) {
    state_.status.Report(ScpiError::Interrupted);
    Release(output_);
    readAt_ = 0;
  }
  state_.reply.clear();
  state_.replyDelay = 0;
  ScpiUnitReader reader(message);
  std::vector<ScpiNode> path;
  while (const auto unit = reader.Next()) {
    const ScpiError error = ExecuteUnit(state_, *unit, path);
    if (error != ScpiError::None) state_.status.Report(error);
    // What the parser cannot make out spoils the rest of the message; what cannot be carried out does not.
    if (IsCommandError(error)) break;
    if (state_.waitWanted) {
      deferred_.append(reader.Rest()).append("\n");
      break;
    }
  }
  if (reader.Error() != ScpiError::None) state_.status.Report(reader.Error());
  FinishReply();
  return reader.Error() != ScpiError::InvalidBlock;
}

void VirtualInstrument::FinishReply() {
  const auto& fault = state_.faults.ReplyFault();
  // A text answers also for an instrument that cannot.
  const bool invented = fault && fault->kind == FaultKind::TextReply && head_.find('?') != std::string::npos;
  if (state_.reply.empty() && !invented) return;
  output_ = std::exchange(state_.reply, std::string());
  readAt_ = 0;
  if (fault) {
    switch (fault->kind) {
      case FaultKind::DropReply:
        output_.clear();
        return;
      case FaultKind::LateReply:
        state_.replyDelay = std::max(state_.replyDelay, static_cast<std::uint32_t>(fault->value));
        break;
      case FaultKind::LongReply:
        output_ = std::string(kLongReply, '9');
        break;
      case FaultKind::TextReply:
        output_ = fault->text;
        break;
      case FaultKind::BinaryReply:
        output_ = AllBytes();
        break;
      case FaultKind::EmptyReply:
        output_.clear();
        break;
      case FaultKind::BareReply:
        return;
      default:
        break;
    }
  }
  output_ += '\n';
}

std::optional<std::uint32_t> VirtualInstrument::ReplyDelay() {
  Update();
  if (ReplyWaiting()) return state_.replyDelay;
  if (state_.waitWanted) return state_.PendingMs();
  return std::nullopt;
}

void VirtualInstrument::ReadFailed() {
  Update();
  // A reply that the fault plan swallowed is no mistake of the client.
  const auto& fault = state_.faults.ReplyFault();
  if (fault && fault->kind == FaultKind::DropReply) return;
  state_.status.Report(ScpiError::Unterminated);
}

VirtualInstrument::ReadResult VirtualInstrument::Read(std::span<char> buffer,
                                                      std::optional<char> terminator) {
  Update();
  ReadResult result;
  if (state_.replyDelay > 0) return result;
  const std::size_t available = std::min(buffer.size(), output_.size() - readAt_);
  result.count = available;
  if (terminator && available > 0) {
    const void* const found = std::memchr(output_.data() + readAt_, *terminator, available);
    if (found != nullptr) {
      result.count =
          static_cast<std::size_t>(static_cast<const char*>(found) - (output_.data() + readAt_)) + 1;
      result.terminator = true;
    }
  }
  if (result.count > 0) std::memcpy(buffer.data(), output_.data() + readAt_, result.count);
  readAt_ += result.count;
  if (result.count > 0 && readAt_ == output_.size()) {
    result.end = true;
    Release(output_);
    readAt_ = 0;
  }
  if (trace_) trace_(ExchangeKind::Read, {buffer.data(), result.count}, result.end);
  return result;
}

std::uint8_t VirtualInstrument::SerialPoll() {
  Update();
  if (trace_) trace_(ExchangeKind::Poll, {}, false);
  return state_.status.SerialPoll(ReplyWaiting() && state_.replyDelay == 0);
}

bool VirtualInstrument::RequestsService() {
  Update();
  return state_.status.RequestsService(ReplyWaiting() && state_.replyDelay == 0);
}

void VirtualInstrument::DeviceClear() {
  Update();
  if (trace_) trace_(ExchangeKind::Clear, {}, false);
  Release(input_);
  Release(output_);
  Release(deferred_);
  readAt_ = 0;
  skipToEnd_ = false;
  messageOpen_ = false;
  state_.waitWanted = false;
  state_.completeWanted = false;
}

bool VirtualInstrument::Output(int channel) {
  Update();
  return state_.outputs.at(static_cast<std::size_t>(channel - 1));
}

void VirtualInstrument::SetOutput(int channel, bool on) {
  Update();
  state_.outputs.at(static_cast<std::size_t>(channel - 1)) = on;
}

int VirtualInstrument::CurrentSlot() {
  Update();
  return state_.engine.CurrentSlot();
}

RunPhase VirtualInstrument::Phase() {
  Update();
  return state_.engine.Phase();
}

int VirtualInstrument::Condition() {
  Update();
  return state_.engine.Condition();
}

void VirtualInstrument::PressHold() {
  Update();
  state_.engine.Hold();
}

void VirtualInstrument::PressStop() {
  Update();
  state_.engine.Stop(false);
}

void VirtualInstrument::Event() {
  Update();
  state_.engine.EventBranch();
}

void VirtualInstrument::SetStateLine(bool on) {
  Update();
  state_.engine.SetStateLine(on);
}

}  // namespace corlune
