#include "comm/command_layer.h"

#include <algorithm>
#include <cstddef>

#include "comm/gp_codes.h"
#include "core/ascii_case.h"
#include "core/numbers.h"

namespace corlune {

namespace {

constexpr std::int32_t kBusyPollInterval = 500;  // ms

// Values from 32768 upward become negative.
std::int16_t DeviceAddress(std::int32_t address) {
  return static_cast<std::int16_t>(address);
}

int InstrumentsInUse(const AppState& state) {
  return std::clamp(static_cast<int>(state.InstrumentCount), 1, kMaxInstruments);
}

// The kinds of the instruments in use, that of instrument 0 first, each with its first instrument.
struct KindInUse {
  InterfaceKind kind;
  int firstInstrument;
};
std::vector<KindInUse> KindsInUse(const AppState& state) {
  std::vector<KindInUse> kinds;
  for (int i = 0; i < InstrumentsInUse(state); ++i) {
    const InterfaceKind kind = state.Instruments[static_cast<std::size_t>(i)].InterfaceKind;
    const bool known =
        std::any_of(kinds.begin(), kinds.end(), [&](const KindInUse& row) { return row.kind == kind; });
    if (!known) kinds.push_back({kind, i});
  }
  return kinds;
}

// A serial number that is a resource name already stays as it is.
std::string ResourceName(const std::string& prefix, const std::string& serialNo) {
  if (serialNo.find("::") != std::string::npos) return serialNo;
  std::string name = prefix + serialNo;
  if (!EndsWithIgnoringCase(name, "INSTR")) name += "::INSTR";
  return name;
}

// The options of an opening of `kind`, for those of `instruments` that are of that kind.
std::string InitString(const ModelDefinition& definition, int modelIndex, InterfaceKind kind,
                       std::span<const InstrumentEntry> instruments) {
  std::string text = definition.Commands.LibraryInit;
  if (kind != InterfaceKind::UsbTmc) return text;
  text += ",USBTMC_DEVNO=0,USBTMC_NAME=";
  const std::string& prefix = definition.InterfaceOf(modelIndex).UsbTmcId;
  bool first = true;
  for (const InstrumentEntry& entry : instruments) {
    if (entry.InterfaceKind != InterfaceKind::UsbTmc) continue;
    if (!first) text += '/';
    text += ResourceName(prefix, entry.SerialNo);
    first = false;
  }
  return text;
}

}  // namespace

CommandLayer::CommandLayer(AppState& state, const ModelDefinition& definition, GpFrontEnd& gp,
                           TickClock& clock, EventPump& pump)
    : state_(state), definition_(definition), gp_(gp), clock_(clock), pump_(pump) {}

bool CommandLayer::OpenInstrumentInterface(int* failedInstrument, std::string* problem) {
  const std::vector<KindInUse> kinds = KindsInUse(state_);
  openKinds_.clear();
  for (const KindInUse& row : kinds) {
    if (!Failed(Open(row.kind, &row == &kinds.front()))) {
      openKinds_.push_back(row.kind);
    } else {
      if (failedInstrument) *failedInstrument = row.firstInstrument;
      if (problem) *problem = gp_.OwnLibraryProblem();
      if (!openKinds_.empty()) CloseInstrumentInterface();
      state_.CurrentInterface = kinds.front().kind;
      return false;
    }
  }
  state_.CurrentInterface = kinds.front().kind;
  return true;
}

CommStatus CommandLayer::Open(InterfaceKind kind, bool emptyLog) {
  state_.CurrentInterface = kind;
  const std::span instruments(state_.Instruments.data(), static_cast<std::size_t>(InstrumentsInUse(state_)));
  CommStatus status = gp_.GP_Init(InitString(definition_, state_.ModelIndex, kind, instruments), emptyLog);
  if (Failed(status)) return status;
  status = gp_.GP_Time_Out(kTimeOut3s);
  if (Failed(status)) gp_.GP_End();
  return status;
}

CommStatus CommandLayer::CloseInstrumentInterface() {
  // The kinds that were opened, not those of the present set-up: that may have changed since.
  std::vector<InterfaceKind> kinds;
  kinds.swap(openKinds_);
  CommStatus first = CommStatus::Success;
  for (const InterfaceKind& kind : kinds) {
    state_.CurrentInterface = kind;
    const CommStatus status = gp_.GP_End();
    if (&kind == &kinds.front()) first = status;
  }
  state_.CurrentInterface = state_.Instruments[0].InterfaceKind;
  return first;
}

AnswerAlone CommandLayer::AskAlone(const InstrumentEntry& entry, const ModelDefinition& definition,
                                   int modelIndex, const CommandEntry& query) {
  AnswerAlone answer;
  const InterfaceKind before = state_.CurrentInterface;
  state_.CurrentInterface = entry.InterfaceKind;
  const bool wasOpen =
      std::find(openKinds_.begin(), openKinds_.end(), entry.InterfaceKind) != openKinds_.end();
  if (wasOpen) gp_.GP_End();
  answer.Status =
      gp_.GP_Init(InitString(definition, modelIndex, entry.InterfaceKind, std::span(&entry, 1)), false);
  if (!Failed(answer.Status)) {
    AskOpened(entry, query, answer);
  } else {
    answer.Problem = gp_.OwnLibraryProblem();
  }
  if (wasOpen) {
    answer.Reopened = !Failed(Open(entry.InterfaceKind, false));
    if (!answer.Reopened) {
      answer.LossProblem = gp_.OwnLibraryProblem();
      std::erase(openKinds_, entry.InterfaceKind);
    }
  }
  state_.CurrentInterface = before;
  return answer;
}

void CommandLayer::AskOpened(const InstrumentEntry& entry, const CommandEntry& query, AnswerAlone& answer) {
  answer.Opened = true;
  const std::int16_t address =
      entry.InterfaceKind == InterfaceKind::UsbTmc ? std::int16_t{0} : DeviceAddress(entry.Address);
  answer.Status = gp_.GP_Time_Out(kTimeOut3s);
  if (!Failed(answer.Status)) answer.Status = gp_.GP_Send_Str(address, query.Template);
  if (!Failed(answer.Status)) {
    DelayMs(query.Wait);
    answer.Status = gp_.GP_Receive_Str(address, answer.Reply);
  }
  if (Failed(answer.Status)) answer.Problem = gp_.OwnLibraryProblem();
  gp_.GP_End();
}

std::int32_t CommandLayer::SelectInstrument(int index) {
  if (index < 0 || index >= kMaxInstruments) return kSameDevice;
  const InstrumentEntry& entry = state_.Instruments[static_cast<std::size_t>(index)];
  state_.CurrentInterface = entry.InterfaceKind;
  if (entry.InterfaceKind != InterfaceKind::UsbTmc) return entry.Address;
  const auto begin = state_.Instruments.begin();
  return static_cast<std::int32_t>(std::count_if(begin, begin + index, [](const InstrumentEntry& before) {
    return before.InterfaceKind == InterfaceKind::UsbTmc;
  }));
}

bool CommandLayer::CarriesBlocks() {
  bool carries = false;
  KeepingInterface([&] {
    SelectInstrument(0);
    carries = gp_.CarriesBlocks();
  });
  return carries;
}

bool CommandLayer::InstrumentLost(int index) {
  bool lost = false;
  KeepingInterface([&] { lost = gp_.ConnectionLost(DeviceAddress(SelectInstrument(index))); });
  return lost;
}

CommStatus CommandLayer::SendCommand(std::int32_t address, const std::string& command, std::int32_t wait) {
  if (!Online()) return CommStatus::Success;
  const CommStatus status = gp_.GP_Send_Str(DeviceAddress(address), command);
  if (Failed(status) || wait == 0) return status;
  if (wait > 0) {
    DelayMs(wait);
    return CommStatus::Success;
  }
  const BusyQuery& busy = definition_.Commands.Busy;
  const CommStatus waited = WaitWhileBusy(address, busy.Mask, busy.TimeLimit);
  return Failed(waited) ? CommStatus::TimeOut : CommStatus::Success;
}

CommStatus CommandLayer::ReceiveReply(std::int32_t address, std::string& reply) {
  if (!Online()) return CommStatus::Success;
  return gp_.GP_Receive_Str(DeviceAddress(address), reply);
}

CommStatus CommandLayer::SendBlockData(const std::string& header, std::span<const std::uint8_t> data,
                                       std::int32_t address, std::int16_t elementFormat) {
  if (!Online()) return CommStatus::Success;
  return gp_.GP_Send_AsciiBinary_Data(header, data, DeviceAddress(address), elementFormat, false);
}

CommStatus CommandLayer::WaitWhileBusy(std::int32_t address, const std::string& mask, std::int32_t limit) {
  const std::uint32_t start = clock_.Now();
  // A model without a busy query has nothing to wait for.
  if (!Online() || definition_.Commands.Busy.Query.empty()) return CommStatus::Success;
  const std::int32_t busyBits = LeadingInteger(mask);
  while (true) {
    KeepingInterface([&] { pump_.HandlePending(); });
    CommStatus status = SendCommand(address, definition_.Commands.Busy.Query, 0);
    if (Failed(status)) return status;
    std::string reply;
    status = ReceiveReply(address, reply);
    if (Failed(status)) return status;
    const auto bits = ParseInt32(reply);
    if (bits && (*bits & busyBits) == 0) return CommStatus::Success;
    if (TicksSince(clock_.Now(), start) >= limit) return CommStatus::TimeOut;
    DelayMs(kBusyPollInterval);
  }
}

void CommandLayer::DelayMs(std::int32_t milliseconds) {
  if (milliseconds <= 0) return;
  const std::uint32_t deadline = clock_.Now() + static_cast<std::uint32_t>(milliseconds);
  KeepingInterface([&] { pump_.SleepUntil(deadline); });
}

void CommandLayer::KeepingInterface(const std::function<void()>& wait) {
  const InterfaceKind kind = state_.CurrentInterface;
  wait();
  state_.CurrentInterface = kind;
}

}  // namespace corlune
