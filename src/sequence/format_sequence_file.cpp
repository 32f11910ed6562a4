// Writing the text of a sequence file.
#include <algorithm>
#include <array>
#include <charconv>

#include "core/numbers.h"
#include "sequence/channel_tabs.h"
#include "sequence/sequence_file.h"

namespace corlune {

namespace {

constexpr int kStoredUserUnits = 10;  // parameter slots 0..9
constexpr std::size_t kTypicalHeadSize = 4096;
constexpr std::size_t kTypicalStepSize = 48;
constexpr std::size_t kTypicalCellSize = 9;

class TextWriter {
 public:
  explicit TextWriter(std::string& out) : out_(out) {}

  TextWriter& Text(std::string_view text) {
    out_ += text;
    return *this;
  }
  TextWriter& Integer(std::int64_t value) {
    // Flags, modes and unit indexes: most numbers of a file are a single digit.
    if (value >= 0 && value <= 9) {
      out_ += static_cast<char>('0' + value);
    } else {
      AppendInteger(out_, value);
    }
    return *this;
  }
  TextWriter& Number(double value) {
    AppendNumber(out_, value);
    return *this;
  }
  TextWriter& Comma() {
    out_ += ',';
    return *this;
  }
  void EndLine() { out_ += "\r\n"; }

  void Line(std::string_view text) { Text(text).EndLine(); }
  void Line(std::string_view key, std::string_view value) { Text(key).Text(value).EndLine(); }
  void Line(std::string_view key, std::int64_t value) { Text(key).Integer(value).EndLine(); }
  // key + index + "="
  TextWriter& Key(std::string_view key, int index) { return Text(key).Integer(index).Text("="); }
  // key + one + "#" + two + "="
  TextWriter& Key(std::string_view key, int one, int two) {
    return Text(key).Integer(one).Text("#").Integer(two).Text("=");
  }

 private:
  std::string& out_;
};

int Channels(const InstrumentEntry& instrument) {
  return std::clamp<int>(instrument.ChannelCount, 0, MAX_CHANNELS);
}

void WriteSystem(TextWriter& out, const AppState& state) {
  const int count = std::clamp<int>(state.InstrumentCount, 0, kMaxInstruments);
  const auto instrument = [&](int i) -> const InstrumentEntry& {
    return state.Instruments[static_cast<std::size_t>(i)];
  };
  out.Line("[SYSTEM]");
  out.Line("SS_MODEL=", state.ModelName);
  out.Line("SS_CNT=", count);
  for (int i = 0; i < count; ++i) out.Key("SS_INTERFACE", i).Integer(instrument(i).Interface).EndLine();
  for (int i = 0; i < count; ++i) out.Key("SS_ADDRESS", i).Integer(instrument(i).Address).EndLine();
  for (int i = 0; i < count; ++i) out.Key("SS_SERIALNO", i).Text(instrument(i).SerialNo).EndLine();
  for (int i = 0; i < count; ++i) out.Key("SS_CHNCNT", i).Integer(instrument(i).ChannelCount).EndLine();
}

void WriteCommon(TextWriter& out, const ChannelSettings& settings, int channels) {
  out.Line("[COMMON]");
  for (int channel = 0; channel <= channels; ++channel) {
    const OutputLoad& load = settings.Loads[static_cast<std::size_t>(channel)];
    out.Key("CP_LOAD#", channel).Integer(load.LoadType).Comma().Number(load.LoadValue).EndLine();
  }
  for (int channel = 0; channel < channels; ++channel) {
    for (int param = 0; param < kStoredUserUnits; ++param) {
      const UserUnitDef& unit =
          settings.UserUnits[static_cast<std::size_t>(channel)][static_cast<std::size_t>(param)];
      out.Key("CP_USERSCL#", channel, param).Integer(unit.UseUserUnit).Comma().Integer(unit.Form).Comma();
      out.Text(unit.UnitText).Comma().Number(unit.M).Comma().Number(unit.N).EndLine();
    }
  }
  for (int n = 0; n < kArbNumbers; ++n) {
    out.Key("CP_ARBFILE#", n).Text(settings.ArbFiles[static_cast<std::size_t>(n)].FilePath).EndLine();
  }
}

void WriteModes(TextWriter& out, const SequenceData& sequence, const AppState& state,
                const ModelDefinition& definition) {
  const int sets = std::clamp<int>(definition.ModeSetCount, 0, kModeSets);
  const int devices = std::clamp<int>(state.InstrumentCount, 0, kMaxInstruments);
  out.Line("[MODE]");
  for (int device = 0; device < devices; ++device) {
    const auto& selections = sequence.ModeSettings[static_cast<std::size_t>(device)];
    const int channels = Channels(state.Instruments[static_cast<std::size_t>(device)]);
    for (int channel = 0; channel <= channels; ++channel) {
      out.Text("MD_MODESET").Integer(device).Integer(channel).Text("=");
      for (int set = 0; set < sets; ++set) {
        if (set > 0) out.Comma();
        const int index = set * kModeSlots + channel;
        out.Integer(selections[static_cast<std::size_t>(index)]);
      }
      out.EndLine();
    }
  }
}

void WriteStep(TextWriter& out, int slot, const StepRow& row) {
  out.Key("ST_SETVAL#", slot).Number(row.StepTime).Comma().Integer(row.TimeUnit).Comma();
  out.Integer(row.AutoHold).Comma().Integer(row.StopPhaseOn).Comma().Number(row.StopPhase);
  for (const std::int16_t field :
       {row.EventBranchOn, row.EventBranchStep, row.StateBranchOn, row.StateBranchStep, row.JumpOn,
        row.JumpTo, row.JumpCountOn, row.JumpCount, row.StepTerm, row.StepCode}) {
    out.Comma().Integer(field);
  }
  out.EndLine();
}

void WriteCells(TextWriter& out, const SequenceData& sequence, int channel, int slot, int params) {
  out.Key("SE_SETVAL#", channel, slot);
  for (int param = 0; param < params; ++param) {
    const ParamCell& cell = sequence.Cell(channel, slot, param);
    if (param > 0) out.Comma();
    out.Integer(cell.ChangeMode).Comma().Number(cell.Value).Comma().Integer(cell.UnitIndex);
  }
  out.EndLine();
}

void WriteBranches(TextWriter& out, const SequenceData& sequence, int steps, std::int16_t branchDefault) {
  const std::array<std::int16_t, kBranchEntries> defaults{branchDefault, branchDefault};
  for (int slot = 0; slot < steps; ++slot) {
    const auto& targets = sequence.Step(slot).BranchStep;
    if (targets == defaults) continue;
    out.Key("BR_SETVAL#", slot).Integer(targets[0]);
    for (int entry = 1; entry < kBranchEntries; ++entry) {
      out.Comma().Integer(targets[static_cast<std::size_t>(entry)]);
    }
    out.EndLine();
  }
}

void WriteSteps(TextWriter& out, const SequenceData& sequence, int channels, int steps,
                const ModelDefinition& definition) {
  out.Line("CM_START=", sequence.Common.StartStepNo);
  out.Line("CM_TRIG=", sequence.Common.Trigger);
  out.Line("CM_EXTCTRL=", sequence.Common.ExtCtrl);
  out.Line("CM_MLTIO=", sequence.Common.MultiIo);
  out.Line("CM_SYNCOUT=", sequence.Common.SyncOut);
  for (int slot = 0; slot < steps; ++slot) WriteStep(out, slot, sequence.Step(slot));
  const int params = std::clamp<int>(definition.Sequence.ParamCount, 0, MAX_PARAMS);
  for (int channel = 0; channel < channels; ++channel) {
    for (int slot = 0; slot < steps; ++slot) WriteCells(out, sequence, channel, slot, params);
  }
  WriteBranches(out, sequence, steps, definition.Branches.Default);
}

void WriteViewAreas(TextWriter& out, const SequenceData& sequence) {
  out.Line("[FRMVIEW]");
  for (int area = 0; area < kViewAreas; ++area) {
    const auto& values = sequence.ViewAreas[static_cast<std::size_t>(area)];
    out.Key("FV_AREASET", area).Integer(values[0]);
    for (std::size_t i = 1; i < values.size(); ++i) out.Comma().Integer(values[i]);
    out.EndLine();
  }
}

}  // namespace

std::string FormatSequenceFile(const SequenceData& sequence, const AppState& state,
                               const ModelDefinition& definition, SequenceFileForm form) {
  const int steps = std::clamp<int>(sequence.StepCount, 0, MAX_STEPS);
  const int channels = EditedChannels(state);
  std::string text;
  text.reserve(kTypicalHeadSize + static_cast<std::size_t>(steps) *
                                      (kTypicalStepSize + static_cast<std::size_t>(channels) *
                                                              (kTypicalCellSize * MAX_PARAMS + 16)));
  TextWriter out(text);
  out.Line("[FILE]");
  out.Line("PROGID=", state.ProgId);
  out.Line("VERNO=", state.VerNo);
  WriteSystem(out, state);
  WriteCommon(out, sequence.Channels, channels);
  WriteModes(out, sequence, state, definition);
  if (form == SequenceFileForm::Work) {
    out.Line("[FRMEDIT]");
    out.Line("FI_STEPNUM=", steps);
    out.Line("FI_STARTSTEP=", sequence.StartStep);
    out.Line("FI_BRCHCHN=", sequence.BranchChannel);
  } else {
    out.Line("[DATA]");
  }
  WriteSteps(out, sequence, channels, steps, definition);
  WriteViewAreas(out, sequence);
  return text;
}

}  // namespace corlune
