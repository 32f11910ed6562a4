#include "graph/signal_subject.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/numbers.h"
#include "core/step_numbering.h"
#include "editing/param_rules.h"
#include "graph/output_swing.h"
#include "graph/step_graph.h"
#include "sequence/run_times.h"
#include "sequence/units.h"
#include "sequence/user_units.h"
#include "sequence/waveform_path.h"

namespace corlune {

namespace {

constexpr double kMsPerSecond = 1000;
constexpr double kFullTurn = 360;  // degrees
constexpr int kRanges = 3;         // of a polarity
constexpr const char* kBetween = "  ";

// One channel's part of the step.
class ChannelReader {
 public:
  ChannelReader(const SequenceData& sequence, const ModelDefinition& definition,
                const MessageCatalogue& catalogue, int channel, int step)
      : sequence_(sequence),
        definition_(definition),
        catalogue_(catalogue),
        units_(sequence, definition),
        channel_(channel),
        step_(step) {}

  ChannelSignal Read(const std::string& folder) const {
    ChannelSignal signal;
    signal.Caption = CaptionText();
    const int code = Code(kSlotWaveform);
    if (code < kWaveSine || code > kWaveUser) {
      signal.Note = catalogue_.GetResString(TextId::SignalNotShown);
      return signal;
    }
    signal.Waveform = static_cast<WaveformCode>(code);
    signal.Frequency = Ramp(kSlotFrequency);
    signal.Phase = Ramp(kSlotPhase);
    signal.Duty = Ramp(kSlotDuty);
    signal.Amplitude = Level(kSlotAmplitude);
    signal.Offset = Level(kSlotOffset);
    if (InUse(kSlotPolarityRange)) {
      const auto [below, above] = SwingParts(sequence_, channel_, step_);
      signal.Below = below;
      signal.Above = above;
      signal.Inverted = Code(kSlotPolarityRange) / kRanges > 0;
    }
    if (signal.Waveform == kWaveUser) TakeWaveform(folder, signal);
    signal.Legend = LegendText(signal);
    return signal;
  }

  // The step's parameters by their names, a line each.
  std::string Description() const {
    std::string text = CaptionText();
    for (int slot = 0; slot < ChannelParams(definition_); ++slot) {
      if (!InUse(slot)) continue;
      const std::string& name = ChannelColumn(definition_, slot).Name;
      const StepValue value = Stored(slot);
      const std::string unit = units_.UnitText(channel_, slot);
      const std::string end = unit.empty() ? Shown(slot, value.To) : Shown(slot, value.To) + " " + unit;
      text += "\n";
      text += value.From == value.To
                  ? catalogue_.GetResString(TextId::GraphTipConstant, {name, end})
                  : catalogue_.GetResString(TextId::GraphTipRamp, {name, Shown(slot, value.From), end});
    }
    return text;
  }

 private:
  bool InUse(int slot) const { return ChannelInUse(definition_, sequence_, channel_, step_, slot); }
  const ParamCell& Cell(int slot) const { return sequence_.Cell(channel_, step_, slot); }
  int Code(int slot) const { return ToInt16(Cell(slot).Value).value_or(-1); }
  StepValue Stored(int slot) const { return StoredValue(definition_, slot, Cell(slot)); }

  SignalRamp Ramp(int slot) const {
    if (!InUse(slot)) return {};
    const StepValue stored = Stored(slot);
    return {stored.From, stored.To};
  }

  // Amplitude or offset in the unit of the axis.
  SignalRamp Level(int slot) const {
    if (!InUse(slot)) return {};
    const bool inUserUnit = HasUserUnit();
    const auto level = [&](double stored) {
      return inUserUnit ? units_.SystemToUser(stored, channel_, step_, slot)
                        : units_.Volts(stored, channel_, step_, slot);
    };
    const StepValue stored = Stored(slot);
    return {level(stored.From), level(stored.To)};
  }

  bool HasUserUnit() const {
    return units_.Active(channel_, kSlotOffset) && SameUnit(sequence_, definition_, channel_);
  }

  std::string CaptionText() const {
    const OutputLoad& load = sequence_.Channels.Loads[static_cast<std::size_t>(channel_)];
    std::string text = catalogue_.GetResString(Next(TextId::SettingChannel1, channel_)) + kBetween;
    text += (HasUserUnit() ? units_.UnitText(channel_, kSlotOffset) : "V") + " ";
    return text + (load.LoadType == 1
                       ? catalogue_.GetResString(TextId::SignalIntoLoad, {NumberText(load.LoadValue)})
                       : catalogue_.GetResString(TextId::SignalOpenCircuit));
  }

  std::string Shown(int slot, double stored) const {
    const ChoiceList choices = ChannelChoices(definition_, slot);
    const int index = choices.IndexOf(ToInt16(stored).value_or(-1));
    if (index >= 0) return choices.Texts[static_cast<std::size_t>(index)];
    return units_.UserUnitText(stored, channel_, step_, slot);
  }

  // "1000 → 2000 Hz", or "1000 Hz (kept)".
  std::string ValueText(int slot) const {
    const StepValue value = Stored(slot);
    std::string text = Shown(slot, value.To);
    if (value.From != value.To) text = Shown(slot, value.From) + " → " + text;
    const std::string unit = units_.UnitText(channel_, slot);
    if (!unit.empty()) text += " " + unit;
    const bool kept = Cell(slot).ChangeMode == kModeKeep;
    return kept ? catalogue_.GetResString(TextId::SignalKept, {text}) : text;
  }

  std::string LegendText(const ChannelSignal& signal) const {
    std::string text = Shown(kSlotWaveform, Cell(kSlotWaveform).Value);
    for (const int slot :
         {kSlotFrequency, kSlotAmplitude, kSlotPolarityRange, kSlotOffset, kSlotPhase, kSlotDuty}) {
      if (!InUse(slot)) continue;
      if (slot == kSlotPolarityRange && Code(slot) == 0) continue;
      text += kBetween + ValueText(slot);
    }
    if (signal.Waveform == kWaveUser && !signal.WavePath.empty()) {
      const std::size_t name = signal.WavePath.find_last_of("/\\") + 1;
      text += kBetween +
              catalogue_.GetResString(TextId::SignalWaveformFile,
                                      {std::to_string(signal.ArbNumber), signal.WavePath.substr(name)});
    }
    if (InUse(kSlotExternal) && Code(kSlotExternal) == 1) {
      text += kBetween + catalogue_.GetResString(TextId::SignalExternal);
    }
    return text;
  }

  void TakeWaveform(const std::string& folder, ChannelSignal& signal) const {
    signal.ArbNumber = Code(kSlotArbNumber);
    if (signal.ArbNumber < 1 || signal.ArbNumber > kArbNumbers) {
      signal.Note = catalogue_.GetResString(TextId::SignalNoArbNumber);
      return;
    }
    const auto entry = static_cast<std::size_t>(signal.ArbNumber - 1);
    signal.WavePath = ResolveWaveformPath(sequence_.Channels.ArbFiles[entry].FilePath, folder);
    if (signal.WavePath.empty()) {
      signal.Note = catalogue_.GetResString(TextId::SignalNoFile, {std::to_string(signal.ArbNumber)});
    }
  }

  const SequenceData& sequence_;
  const ModelDefinition& definition_;
  const MessageCatalogue& catalogue_;
  UserUnits units_;
  int channel_;
  int step_;
};

bool Drawable(const ChannelSignal& signal) {
  const std::array<SignalRamp, 5> ramps{signal.Frequency, signal.Amplitude, signal.Offset, signal.Phase,
                                        signal.Duty};
  return std::all_of(ramps.begin(), ramps.end(), [](const SignalRamp& ramp) {
    return std::isfinite(ramp.From) && std::isfinite(ramp.To);
  });
}

std::string StepTextOf(const SequenceData& sequence, const ModelDefinition& definition,
                       const MessageCatalogue& catalogue, const SignalWish& wish, double length) {
  const int number = ShownNumber(NumberOf(StepIndex{wish.Step}), sequence.StartStep);
  const ParamDef& time = TimeColumn(definition);
  const std::string unit = time.UnitKind == 1 ? time.UnitName : "s";
  return catalogue.GetResString(wish.Running ? TextId::SignalRunningStep : TextId::GraphTipStep,
                                {std::to_string(number), NumberText(length) + " " + unit});
}

}  // namespace

double ChannelSignal::Periods(double time, double length) const {
  const double part = length > 0 ? time / length : 0;
  const double cycles = (Frequency.From + (Frequency.To - Frequency.From) * part / 2) * time;
  return cycles + Phase.At(part) / kFullTurn;
}

SignalSubject BuildSignalSubject(const SequenceData& sequence, const ModelDefinition& definition,
                                 const MessageCatalogue& catalogue, const SignalWish& wish) {
  SignalSubject subject;
  if (sequence.StepCount <= 0) {
    subject.Note = catalogue.GetResString(TextId::GraphNoSteps);
    return subject;
  }
  if (wish.Step < 0 || wish.Step >= std::min<int>(sequence.StepCount, MAX_STEPS)) {
    subject.Note = catalogue.GetResString(TextId::SignalNoStep);
    return subject;
  }
  subject.Length = RunTimeOf(sequence, definition, wish.Step) / kMsPerSecond;
  subject.StepText = StepTextOf(sequence, definition, catalogue, wish, subject.Length);
  subject.Description = subject.StepText;
  for (int channel = 0; channel < std::min(wish.Channels, MAX_CHANNELS); ++channel) {
    const ChannelReader reader(sequence, definition, catalogue, channel, wish.Step);
    subject.Channels.push_back(reader.Read(wish.WaveformFolder));
    ChannelSignal& signal = subject.Channels.back();
    if (!Drawable(signal)) signal.Note = catalogue.GetResString(TextId::SignalNotShown);
    subject.Description += "\n" + reader.Description();
  }
  const bool hasLength = subject.Length > 0 && std::isfinite(subject.Length);
  if (!hasLength) subject.Note = catalogue.GetResString(TextId::SignalNoTime);
  return subject;
}

}  // namespace corlune
