#include "commands/instrument_dialogues.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "core/numbers.h"

namespace corlune {

namespace {

// Characters of a reply that count; an instrument that sends more is not understood any better.
constexpr std::size_t kStateReply = 16;
constexpr std::size_t kErrorReply = 128;

constexpr std::int16_t kStatusEvent = 0x20;     // event status summary
constexpr std::int16_t kStatusCompiled = 0x80;  // the instrument has taken the sequence over
constexpr int kCompilePolls = 200;
constexpr std::int32_t kCompilePollWait = 100;  // ms
// Polls that time out take seconds each; a dead instrument must not hold the program up for all of them.
constexpr std::int32_t kCompileLimit = 60000;  // ms

constexpr std::int32_t kConditionCompiled = 2;
constexpr std::int32_t kConditionRunning = 4;
constexpr std::int32_t kConditionHeld = 8;
constexpr std::int32_t kErrorSequenceRefused = -222;  // SCPI "Data out of range"

}  // namespace

InstrumentDialogues::InstrumentDialogues(CommandLayer& commands, Prompts& prompts,
                                         const MessageCatalogue& catalogue)
    : commands_(commands), prompts_(prompts), catalogue_(catalogue) {}

// Selected anew for every exchange: a handler that ran inside a wait may have addressed another instrument.
std::int32_t InstrumentDialogues::Address() const {
  return commands_.SelectInstrument(0);
}

bool InstrumentDialogues::QueryNumber(const std::string& query, std::int32_t wait, std::int32_t& number) {
  std::string reply;
  if (Failed(commands_.SendCommand(Address(), query, wait))) return false;
  if (Failed(commands_.ReceiveReply(Address(), reply))) return false;
  number = LeadingInteger(reply.substr(0, kStateReply));
  return true;
}

std::int16_t InstrumentDialogues::SerialPoll() {
  std::int16_t statusByte = 0;
  const auto address = static_cast<std::int16_t>(Address());
  // A poll that fails counts as "nothing to report".
  return Failed(commands_.Gp().GP_Spoll(address, statusByte)) ? std::int16_t{0} : statusByte;
}

void InstrumentDialogues::ClearStatus() {
  commands_.SendCommand(Address(), "*CLS", 100);
  SerialPoll();
}

std::optional<std::int32_t> InstrumentDialogues::QueryErrorNumber() {
  std::string reply;
  commands_.SendCommand(Address(), commands_.Definition().Commands.ErrorQuery, 0);
  if (Failed(commands_.ReceiveReply(Address(), reply))) return 0;
  reply.resize(std::min(reply.size(), kErrorReply));
  if (!reply.empty() && !BeginsWithNumber(reply)) return std::nullopt;
  return LeadingInteger(reply);
}

bool InstrumentDialogues::PrepareSequenceMode() {
  std::int32_t sequenceState = 0;
  if (!QueryNumber(":SOUR1:SEQ:STAT?", 100, sequenceState)) return false;
  // Not checked: an instrument that cannot switch over says so when the sequence arrives.
  if (sequenceState == 0) commands_.SendCommand(Address(), ":SOUR1:SEQ:STAT 1", 1000);

  std::int32_t condition = 0;
  if (!QueryNumber(":STAT:OPER:CH1:COND?", 100, condition)) return false;
  if (condition != kConditionRunning && condition != kConditionHeld) return true;
  return !Failed(commands_.SendCommand(Address(), ":TRIG1:SEL:EXEC IST", 1000));
}

bool InstrumentDialogues::HoldsCompiledSequence() {
  std::int32_t condition = 0;
  return QueryNumber(":STAT:OPER:CH1:COND?", 100, condition) && condition == kConditionCompiled;
}

bool InstrumentDialogues::WaitCompileDone(const std::function<bool()>& goOn) {
  const std::uint32_t start = commands_.Clock().Now();
  for (int poll = 0; poll < kCompilePolls; ++poll) {
    if (TicksSince(commands_.Clock().Now(), start) >= kCompileLimit) break;
    const std::int16_t statusByte = SerialPoll();
    if (commands_.InstrumentLost(0)) return false;
    commands_.DelayMs(kCompilePollWait);
    if (goOn && !goOn()) return false;
    if (statusByte == 0) continue;
    if ((statusByte & kStatusCompiled) != 0) {
      const CommandEntry& query = commands_.Definition().Commands.Status;
      std::int32_t sequenceStatus = 0;
      return QueryNumber(query.Template, query.Wait, sequenceStatus) && (sequenceStatus & 2) != 0;
    }
    if ((statusByte & kStatusEvent) != 0) {
      std::string eventStatus;  // read only to clear it
      commands_.SendCommand(Address(), "*ESR?", 0);
      commands_.ReceiveReply(Address(), eventStatus);
    }
    break;
  }
  if (QueryErrorNumber() == kErrorSequenceRefused) {
    ShowMessage(prompts_, catalogue_, TextId::RefusedByInstrument, PromptIcon::Critical);
  }
  return false;
}

}  // namespace corlune
