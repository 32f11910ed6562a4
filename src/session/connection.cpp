// Session: opening, closing and checking the instruments.
#include <algorithm>
#include <utility>

#include "session/session.h"

namespace corlune {

namespace {

constexpr std::uint32_t kQuietTime = 300;  // ms that a reconnection takes before it shows what it waits for
// ms: a window that was just opened is looked at this often until it can be read, and not longer than that.
constexpr std::uint32_t kLookEvery = 2;
constexpr std::uint32_t kLongestPaint = 300;

}  // namespace

bool Session::WaitFor(TextId text, const std::vector<std::string>& arguments, int done, int steps) {
  if (!waitsFrom_ || options_.simulated || !TickReached(ports_.clock.Now(), *waitsFrom_)) return true;
  ports_.progress.ShowWait(catalogue_.GetResString(text, arguments),
                           catalogue_.GetResString(TextId::ButtonWorkOffLine), done, steps);
  if (!std::exchange(waitShown_, true)) {
    const std::uint32_t latest = ports_.clock.Now() + kLongestPaint;
    while (!ports_.progress.Painted() && !TickReached(ports_.clock.Now(), latest)) {
      ports_.pump.SleepUntil(ports_.clock.Now() + kLookEvery);
    }
  }
  ports_.pump.HandlePending();
  return !ports_.progress.Cancelled() || !HideWait();
}

bool Session::HideWait() {
  if (!std::exchange(waitShown_, false)) return false;
  ports_.pump.HandlePending();
  const bool cancelled = ports_.progress.Cancelled();
  ports_.progress.End();
  if (!cancelled) return false;
  state_.MayStillRun = false;
  GoOffline();
  return true;
}

bool Session::OpenConnection() {
  int failed = 0;
  std::string problem;
  state_.Online = 1;
  state_.Lost = {};
  wasOnline_ = false;
  if (commands_->OpenInstrumentInterface(&failed, &problem)) {
    state_.Connected = true;
    state_.OutputInDoubt = true;
    return true;
  }
  state_.Online = 0;
  if (HideWait()) return false;
  std::string text = catalogue_.GetResString(TextId::CommunicationError, {std::to_string(failed + 1)});
  if (!problem.empty()) text += "\n" + problem;
  Warn(text);
  return false;
}

void Session::Disconnect() {
  if (!state_.Connected) return;
  commands_->CloseInstrumentInterface();
  state_.Connected = false;
}

void Session::GoOffline(bool lost) {
  Disconnect();
  state_.Online = 0;
  state_.OutputOn = false;
  state_.OutputInDoubt = lost;
  state_.Lost = {};
  if (state_.OperationMode == OperationMode::Execution) {
    state_.OperationMode = OperationMode::Edit;
    ports_.runDisplay.ShowModeLayout(static_cast<int>(OperationMode::Edit));
  }
  ports_.display.ConnectionChanged();
}

void Session::NoticeLostConnection() {
  control_->ExchangeEnded();
  if (state_.Online != 1 || !state_.Connected) return;
  const auto before = state_.Lost;
  bool oneLeft = false;
  for (int i = 0; i < state_.InstrumentCount; ++i) {
    bool& lost = state_.Lost[static_cast<std::size_t>(i)];
    lost = lost || commands_->InstrumentLost(i);
    oneLeft = oneLeft || !lost;
  }
  if (!oneLeft && Idle()) {
    GoOffline(true);
    wasOnline_ = true;
  } else if (state_.Lost != before) {
    state_.OutputInDoubt = true;
    ports_.display.ConnectionChanged();
  }
}

bool Session::Reopen() {
  if (!OpenConnection()) return false;
  ForgetInstrumentMemory();
  ports_.display.ConnectionChanged();
  return true;
}

void Session::ForgetInstrumentMemory() {
  for (ArbFileEntry& entry : sequence_.Channels.ArbFiles) {
    entry.Transferred = 0;
    entry.InInstrument = 0;
    if (entry.FilePath.empty()) {
      entry.ArrayForm = 0;
      entry.PointCount = 0;
    }
  }
}

bool Session::Reconnect() {
  const WorkGuard guard(activity_, Work::Exchange);
  // A start has begun to say what it waits for.
  const auto before = waitsFrom_;
  if (!before) waitsFrom_ = ports_.clock.Now() + kQuietTime;
  Disconnect();
  ForgetInstrumentMemory();
  state_.OutputOn = false;
  if (WaitFor(TextId::ConnectingInstrument) && OpenConnection() && CheckModels()) QueryArbDirectory();
  HideWait();
  waitsFrom_ = before;
  ports_.display.ConnectionChanged();
  return state_.Online == 1;
}

bool Session::CheckModels() {
  const WorkGuard guard(activity_, Work::Exchange);
  const CommandEntry& query = definition_.Commands.Model;
  for (int i = 0; i < state_.InstrumentCount; ++i) {
    const InterfaceKind kind = state_.Instruments[static_cast<std::size_t>(i)].InterfaceKind;
    if (kind == InterfaceKind::Simulated) continue;  // its replies are the person's
    if (!WaitFor(TextId::CheckingModel, {std::to_string(i + 1)})) return false;
    const std::int32_t address = commands_->SelectInstrument(i);
    std::string reply;
    bool answered = !Failed(commands_->SendCommand(address, query.Template, query.Wait));
    answered = answered && !Failed(commands_->ReceiveReply(address, reply)) && !reply.empty();
    if (answered && reply.find(state_.ModelName) != std::string::npos) continue;
    if (HideWait()) return false;
    const PromptAnswer answer = ShowMessage(
        ports_.prompts, catalogue_, answered ? TextId::WrongInstrumentModel : TextId::InstrumentNotFound,
        PromptIcon::Question, PromptButtons::YesNo, {std::to_string(i + 1)}, PromptAnswer::Yes);
    if (answer != PromptAnswer::Yes) {
      Disconnect();
      end_.EndNow(1);
    }
    state_.MayStillRun = false;
    GoOffline();
    wasOnline_ = true;
    return false;
  }
  return true;
}

void Session::QueryArbDirectory() {
  if (state_.Online != 1) return;
  const WorkGuard guard(activity_, Work::Exchange);
  commands_->SelectInstrument(0);
  waveforms_->QueryArbDirectory(sequence_.Channels.ArbFiles, [this](int asked) {
    return WaitFor(TextId::ReadingArbDirectory, {std::to_string(asked + 1), std::to_string(kArbNumbers)},
                   asked, kArbNumbers);
  });
}

bool Session::MayGoOnlineAgain() {
  if (!wasOnline_) return false;
  const InstrumentEntry& first = state_.Instruments[0];
  if (first.InterfaceKind != InterfaceKind::UsbTmc) return true;
  if (FindInstruments(state_.ModelIndex) == 0) return false;
  const auto& found = Gp().Found();
  return std::any_of(found.begin(), found.end(), [&](const FoundInstrument& instrument) {
    return instrument.SerialNo == first.SerialNo;
  });
}

bool Session::SetupChangedSince(const SystemSettings& before) const {
  if (before.InstrumentCount != state_.InstrumentCount) return true;
  for (std::size_t i = 0; i < static_cast<std::size_t>(state_.InstrumentCount); ++i) {
    const InstrumentEntry& old = before.Instruments[i];
    const InstrumentEntry& now = state_.Instruments[i];
    if (old.InterfaceKind != now.InterfaceKind) return true;
    if (now.InterfaceKind == InterfaceKind::Simulated) continue;  // has no address
    const bool usbTmc = now.InterfaceKind == InterfaceKind::UsbTmc;
    if (usbTmc ? old.SerialNo != now.SerialNo : old.Address != now.Address) return true;
  }
  return false;
}

}  // namespace corlune
