// Session: the set-up of the instruments, checked and taken.
#include <algorithm>
#include <memory>
#include <utility>

#include "comm/usbtmc_backend.h"
#include "core/ascii_case.h"
#include "core/profile_file.h"
#include "sequence/channel_tabs.h"
#include "session/session.h"

namespace corlune {

namespace {

constexpr int kMostChannels = 20;

bool OnGpib(const InstrumentEntry& entry) {
  return entry.InterfaceKind == InterfaceKind::NiGpib || entry.InterfaceKind == InterfaceKind::KiGpib;
}

// The message that forbids the two instruments beside each other, nullopt for none.
std::optional<TextId> Conflict(const InstrumentEntry& a, const InstrumentEntry& b) {
  if (a.InterfaceKind == InterfaceKind::UsbTmc && b.InterfaceKind == InterfaceKind::UsbTmc) {
    // One may be written as a whole resource name; the libraries take either letter case.
    const bool same = EqualIgnoringCase(SerialOfResource(a.SerialNo), SerialOfResource(b.SerialNo));
    if (same) return TextId::SameSerialNumber;
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
  if (!MayReplaceSequence() || !AgreeToGoOn()) return false;
  const WorkGuard guard(activity_, Work::Exchange);
  return TakeSetup(setup);
}

// Files hold the edited channels only: what fewer of them leave out is to be saved before.
bool Session::AgreeToFewerChannels(const SystemSettings& setup) {
  AppState next = state_;
  ApplySettings(next, setup);
  if (sequence_.StepCount == 0 || EditedChannels(next) >= EditedChannels(state_)) return true;
  const bool before = std::exchange(state_.Modified, true);
  if (AskToSave()) {
    state_.Modified = true;
    return true;
  }
  state_.Modified = before;
  return false;
}

bool Session::TakeSetup(const SystemSettings& setup) {
  const bool newModel = setup.ModelName != state_.ModelName;
  if (!newModel && !AgreeToFewerChannels(setup)) return false;
  if (newModel) {
    auto definition = std::make_unique<ModelDefinition>(definition_);
    AppState next = state_;
    next.ModelName = setup.ModelName;
    next.ModelIndex = static_cast<std::int16_t>(std::max(0, definition_.IndexOfModel(setup.ModelName)));
    if (!LoadDefinitionOf(next, *definition, true) || !AskToSave()) return false;
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

void Session::ResetModeSettings() {
  sequence_.ModeSettings = {};
}

std::string Session::LastSerial(const std::string& model) const {
  if (state_.StartupDone && model == state_.ModelName) return state_.Instruments[0].SerialNo;
  return GetIniString(WorkFileOf(model), "SYSTEM", "SS_SERIALNO0");
}

void Session::SearchInstruments(const std::string& model) {
  if (!Idle()) return;
  const WorkGuard guard(activity_, Work::Exchange);
  FindInstruments(definition_.IndexOfModel(model));
}

bool Session::TakeChosen(const InstrumentChoice& choice) {
  SystemSettings setup = SettingsOf(state_);
  setup.ModelName = choice.ModelName;
  setup.Instruments[0] = UsbTmcInstrument(definition_.IndexOfModel(choice.ModelName), choice.SerialNo);
  if (!TakeSetup(setup)) return false;
  const auto modes = sequence_.ModeSettings;
  ResetModeSettings();
  if (modes != sequence_.ModeSettings) state_.Modified = true;
  return true;
}

bool Session::ConnectOwn(bool& several) {
  InstrumentEntry& own = state_.Instruments[0];
  if (state_.InstrumentCount != 1 || own.InterfaceKind != InterfaceKind::UsbTmc) return Reconnect();
  if (Gp().CanSearch() && !WaitFor(TextId::SearchingInstruments)) return false;
  FindInstruments(state_.ModelIndex);
  const std::vector<FoundInstrument>& found = Gp().Found();
  const bool there = std::any_of(found.begin(), found.end(), [&](const FoundInstrument& one) {
    return one.SerialNo == own.SerialNo || one.Resource == own.SerialNo;
  });
  if (there) return Reconnect();
  several = found.size() > 1;
  if (several) return false;
  if (found.empty()) {
    if (HideWait()) return false;
    std::string text = catalogue_.GetResString(TextId::NoneOfModelFound, {state_.ModelName});
    if (const std::string problem = Gp().LibraryProblem(); !problem.empty()) text += "\n" + problem;
    Warn(text);
    return false;
  }
  const std::string sought = std::exchange(own.SerialNo, found[0].SerialNo);
  const bool online = Reconnect();
  if (online && !sought.empty()) {
    ports_.runDisplay.ShowNotice(NoticeLevel::Warning,
                                 catalogue_.GetResString(TextId::SearchFoundOther, {own.SerialNo, sought}));
  }
  return online;
}

bool Session::GoOnline(const ChooseInstrument& choose) {
  if (!MayReplaceSequence() || !AgreeToGoOn()) return false;
  bool several = false;
  bool online = false;
  {
    const WorkGuard guard(activity_, Work::Exchange);
    waitsFrom_ = ports_.clock.Now();
    online = ConnectOwn(several);
    const bool cancelled = HideWait();
    waitsFrom_.reset();
    if (!several || cancelled) return online;
  }
  // Nothing is under way while the person chooses: an instrument can be asked who it is.
  ShowMessage(ports_.prompts, catalogue_, TextId::SelectSerialNumber, PromptIcon::Information);
  const auto choice = choose ? choose() : std::nullopt;
  if (!choice || !MayReplaceSequence()) return false;
  const WorkGuard guard(activity_, Work::Exchange);
  return TakeChosen(*choice) && state_.Online == 1;
}

std::optional<InstrumentTest> Session::TestInstrument(const SystemSettings& setup, int index, bool agreed) {
  if (!Idle() || (!agreed && !AgreeToGoOn())) return std::nullopt;
  const WorkGuard guard(activity_, Work::Exchange);
  const int model = definition_.IndexOfModel(setup.ModelName);
  auto definition = std::make_unique<ModelDefinition>(definition_);
  if (setup.ModelName != state_.ModelName) {
    AppState next = state_;
    next.ModelName = setup.ModelName;
    if (!LoadDefinitionOf(next, *definition, false)) return InstrumentTest{false, loadProblem_};
  }
  InstrumentEntry entry = WithKinds(setup, definition->InterfaceOf(model))[static_cast<std::size_t>(index)];
  if (options_.simulated) entry.InterfaceKind = InterfaceKind::Simulated;
  const AnswerAlone answer = commands_->AskAlone(entry, *definition, model, definition->Commands.Model);
  if (!answer.Reopened) {
    GoOffline(true);
    wasOnline_ = true;
    const auto* lost =
        std::find_if(state_.Instruments.begin(), state_.Instruments.end(),
                     [&](const InstrumentEntry& one) { return one.InterfaceKind == entry.InterfaceKind; });
    const auto number = lost == state_.Instruments.end() ? 1 : lost - state_.Instruments.begin() + 1;
    Warn(catalogue_.GetResString(TextId::CommunicationError, {std::to_string(number)}) + "\n" +
         answer.LossProblem);
  }
  return TestOf(answer, setup.ModelName);
}

InstrumentTest Session::TestOf(const AnswerAlone& answer, const std::string& model) const {
  const auto text = [&](TextId id, const std::vector<std::string>& arguments = {}) {
    std::string said = catalogue_.GetResString(id, arguments);
    if (!answer.Problem.empty()) said += "\n" + answer.Problem;
    return said;
  };
  if (Has(answer.Status, CommStatus::NoBoard)) return {false, text(TextId::TestNoBoard)};
  if (answer.Opened && Has(answer.Status, CommStatus::TimeOut)) return {false, text(TextId::TestNoAnswer)};
  if (Failed(answer.Status)) return {false, text(TextId::TestNotReached)};
  if (answer.Reply.empty()) return {false, text(TextId::TestNoAnswer)};
  if (answer.Reply.find(model) == std::string::npos) {
    return {false, text(TextId::TestOtherModel, {model, answer.Reply})};
  }
  return {true, text(TextId::TestAnswered, {answer.Reply})};
}

}  // namespace corlune
