// Session: opening, closing and checking the instruments, and the system set-up.
#include <algorithm>
#include <memory>
#include <utility>

#include "modeldef/read_model_definition.h"
#include "session/session.h"

namespace corlune {

namespace {

constexpr int kMostChannels = 20;
constexpr std::uint32_t kQuietTime = 300;  // ms that a reconnection takes before it shows what it waits for
// ms: a window that was just opened is looked at this often until it can be read, and not longer than that.
constexpr std::uint32_t kLookEvery = 2;
constexpr std::uint32_t kLongestPaint = 300;

bool OnGpib(const InstrumentEntry& entry) {
  return entry.InterfaceKind == InterfaceKind::NiGpib || entry.InterfaceKind == InterfaceKind::KiGpib;
}

// The message that forbids the two instruments beside each other, nullopt for none.
std::optional<TextId> Conflict(const InstrumentEntry& a, const InstrumentEntry& b) {
  if (a.InterfaceKind == InterfaceKind::UsbTmc && b.InterfaceKind == InterfaceKind::UsbTmc) {
    if (a.SerialNo == b.SerialNo) return TextId::SameSerialNumber;
    return std::nullopt;
  }
  const bool bothUsb = a.InterfaceKind == InterfaceKind::Usb488 && b.InterfaceKind == InterfaceKind::Usb488;
  const bool byAddress = bothUsb || (OnGpib(a) && OnGpib(b));
  if (byAddress && a.Address == b.Address) return TextId::SameAddress;
  return std::nullopt;
}

std::array<InstrumentEntry, kMaxInstruments> WithKinds(const SystemSettings& setup,
                                                       const ModelInterfaceSpec& model) {
  auto instruments = setup.Instruments;
  for (InstrumentEntry& entry : instruments) {
    if (entry.Interface < 0 || entry.Interface >= static_cast<int>(model.InterfaceNames.size())) continue;
    const std::string& name = model.InterfaceNames[static_cast<std::size_t>(entry.Interface)];
    entry.InterfaceKind = KindOfInterface(name).value_or(entry.InterfaceKind);
  }
  return instruments;
}

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
    lost = commands_->InstrumentLost(i);
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
  if (FindInstruments() == 0) return false;
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

std::optional<TextId> Session::CheckSetup(const SystemSettings& setup) const {
  const auto count = static_cast<std::size_t>(std::clamp<int>(setup.InstrumentCount, 1, kMaxInstruments));
  const int model = definition_.IndexOfModel(setup.ModelName);
  const auto instruments = WithKinds(setup, definition_.InterfaceOf(model));
  int channels = 0;
  for (std::size_t i = 0; i < count; ++i) channels += instruments[i].ChannelCount;
  if (channels > kMostChannels) return TextId::TooManyChannels;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t j = i + 1; j < count; ++j) {
      if (const auto message = Conflict(instruments[i], instruments[j])) return message;
    }
  }
  return std::nullopt;
}

bool Session::ApplySetup(const SystemSettings& setup) {
  if (!MayReplaceSequence() || !control_->AgreeToGoOn()) return false;
  const WorkGuard guard(activity_, Work::Exchange);
  const bool newModel = setup.ModelName != state_.ModelName;
  if (newModel) {
    auto definition = std::make_unique<ModelDefinition>(definition_);
    AppState next = state_;
    next.ModelName = setup.ModelName;
    next.ModelIndex = static_cast<std::int16_t>(std::max(0, definition_.IndexOfModel(setup.ModelName)));
    if (!AskToSave()) return false;
    if (!LoadDefinitionOf(next, *definition, true)) return false;
    state_.ModelName = next.ModelName;
    state_.ModelIndex = next.ModelIndex;
    definition_ = std::move(*definition);
    SetWorkFilePath();
    ClearSequence();
  }
  state_.InstrumentCount =
      static_cast<std::int16_t>(std::clamp<int>(setup.InstrumentCount, 1, kMaxInstruments));
  state_.Instruments = WithKinds(setup, definition_.InterfaceOf(state_.ModelIndex));
  ApplySimulated();
  ports_.display.SequenceReplaced(newModel ? SequenceChange::New : SequenceChange::SetupChanged);
  ports_.display.ShowCaption(Caption());
  Reconnect();
  return true;
}

}  // namespace corlune
