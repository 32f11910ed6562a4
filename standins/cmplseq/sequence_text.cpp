// The text form of a CompiledSequence.
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>

#include "compiled_sequence.h"
#include "core/numbers.h"

namespace corlune {

namespace {

constexpr std::array<std::string_view, 5> kWaveforms{"SIN", "SQU", "NOIS", "DC", "USER"};
constexpr std::array<std::string_view, 3> kRanges{"FS", "PFS", "MFS"};
constexpr std::array<std::string_view, 3> kChanges{"CONS", "KEEP", "SWE"};
constexpr std::array<std::string_view, 3> kTriggers{"POS", "NEG", "OFF"};
constexpr std::array<std::string_view, 2> kPolarities{"NORM", "INV"};
constexpr std::array<std::string_view, 2> kTerminals{"CONT", "STOP"};
constexpr std::array<std::string_view, 2> kJumpCounts{"INF", "ON"};
constexpr std::array<std::string_view, 2> kSyncOutputs{"SYNC", "SSYN"};
constexpr std::array<std::string_view, 2> kPinInputs{"STAR", "SBR"};

// Takes the fields of one value from left to right. The first field that does not fit turns Good() off.
class Fields {
 public:
  explicit Fields(std::string_view value) : rest_(value) {}

  std::string_view Text() {
    if (done_) {
      good_ = false;
      return {};
    }
    const std::size_t comma = rest_.find(',');
    const std::string_view field = rest_.substr(0, comma);
    done_ = comma == std::string_view::npos;
    if (!done_) rest_.remove_prefix(comma + 1);
    return field;
  }
  template <std::size_t Count>
  std::size_t Word(const std::array<std::string_view, Count>& words) {
    const std::string_view field = Text();
    for (std::size_t i = 0; i < Count; ++i) {
      if (words[i] == field) return i;
    }
    good_ = false;
    return 0;
  }
  std::int16_t Integer(int minimum = std::numeric_limits<std::int16_t>::min(),
                       int maximum = std::numeric_limits<std::int16_t>::max()) {
    const std::string_view field = Text();
    int value = 0;
    const auto result = std::from_chars(field.data(), field.data() + field.size(), value);
    if (result.ec != std::errc{} || result.ptr != field.data() + field.size() || value < minimum ||
        value > maximum) {
      good_ = false;
      return 0;
    }
    return static_cast<std::int16_t>(value);
  }
  double Number() {
    const std::string_view field = Text();
    const std::optional<double> value = ParseNumber(field);
    // ParseNumber allows blanks around a number; the sequence text has none.
    if (!value || !std::isfinite(*value) || field.find_first_of(" \t\r\n") != std::string_view::npos) {
      good_ = false;
      return 0;
    }
    return *value;
  }
  SeqValue Value() {
    SeqValue value;
    value.Value = Number();
    value.Change = static_cast<SeqChange>(Word(kChanges));
    return value;
  }
  bool Whole() const { return good_ && done_; }

 private:
  std::string_view rest_;
  bool done_ = false;
  bool good_ = true;
};

class TextParser {
 public:
  explicit TextParser(std::string_view text) : rest_(text) {}

  bool Parse(CompiledSequence& out) {
    if (!Exact("[FILE]") || !Exact("VERSION=\"1.00\"") || !Exact("[SYSTEM]")) return false;
    if (!Model(out) || !Channels(out) || !Exact("VERSION=\"1.00\"") || !Exact("[DATA]") || !Common(out)) {
      return false;
    }
    for (int slot = 0; slot < kSequenceSlots; ++slot) {
      step_ = slot + 1;
      if (!Step(slot, out.Steps[static_cast<std::size_t>(slot)])) return false;
    }
    for (int channel = 0; channel < out.Channels; ++channel) {
      auto& cells = out.Cells[static_cast<std::size_t>(channel)];
      channel_ = channel;
      for (int slot = 0; slot < kSequenceSlots; ++slot) {
        step_ = slot + 1;
        if (!Cell(slot, channel, cells[static_cast<std::size_t>(slot)])) return false;
      }
    }
    channel_ = 0;
    step_ = 0;
    return rest_.empty() || Fail("text after the last line");
  }
  TextProblem Problem() const { return {"line " + std::to_string(line_) + ": " + reason_, channel_, step_}; }

 private:
  bool Fail(std::string reason) {
    reason_ = std::move(reason);
    return false;
  }
  bool Line(std::string_view& line) {
    ++line_;
    const std::size_t end = rest_.find("\r\n");
    if (end == std::string_view::npos) return Fail("line end missing");
    line = rest_.substr(0, end);
    rest_.remove_prefix(end + 2);
    return true;
  }
  bool Exact(std::string_view expected) {
    std::string_view line;
    if (!Line(line)) return false;
    return line == expected || Fail("expected " + std::string(expected));
  }
  bool Valued(const std::string& key, std::string_view& value) {
    if (!Line(value)) return false;
    if (value.substr(0, key.size()) != key || value.substr(key.size(), 1) != "=")
      return Fail("expected " + key);
    value.remove_prefix(key.size() + 1);
    return true;
  }
  bool Model(CompiledSequence& out) {
    std::string_view value;
    if (!Valued("MODEL", value)) return false;
    const bool quoted = value.size() > 2 && value.front() == '"' && value.back() == '"';
    if (!quoted || value.size() > 257) return Fail("model name");
    value = value.substr(1, value.size() - 2);
    if (value.find_first_of("\"\r\n") != std::string_view::npos) return Fail("model name");
    out.Model = value;
    return true;
  }
  bool Channels(CompiledSequence& out) {
    std::string_view value;
    if (!Valued("NCHAN", value)) return false;
    if (value != "1" && value != "2") return Fail("channel count");
    out.Channels = value == "1" ? 1 : 2;
    return true;
  }
  bool Common(CompiledSequence& out) {
    std::string_view value;
    if (!Valued("SEQ", value)) return false;
    Fields fields(value);
    out.StartStep = fields.Integer(1, kSequenceSlots);
    out.SyncStepCode = fields.Word(kSyncOutputs) != 0;
    out.ExternalControl = fields.Integer();
    out.StateBranchInput = fields.Word(kPinInputs) != 0;
    out.Trigger = static_cast<SeqTrigger>(fields.Word(kTriggers));
    return fields.Whole() || Fail("common parameters");
  }
  bool Step(int slot, SeqStep& step) {
    const std::string key = "STEP#" + std::to_string(slot);
    std::string_view value;
    if (!Valued(key, value)) return false;
    Fields fields(value);
    step.StepTime = fields.Number();
    step.Stop = fields.Word(kTerminals) != 0;
    step.AutoHold = fields.Integer();
    step.StepCode = fields.Integer();
    step.StateBranchOn = fields.Integer();
    step.StateBranchStep = fields.Integer(0, kSequenceSlots);
    step.EventBranchOn = fields.Integer();
    step.EventBranchStep = fields.Integer(0, kSequenceSlots);
    step.JumpOn = fields.Integer();
    step.JumpTo = fields.Integer(0, kSequenceSlots);
    step.JumpCounted = fields.Word(kJumpCounts) != 0;
    step.JumpCount = fields.Integer();
    step.StopPhaseOn = fields.Integer();
    step.StopPhase = fields.Number();
    return (fields.Whole() && step.StepTime >= 0) || Fail(key);
  }
  bool Cell(int slot, int channel, SeqCell& cell) {
    const std::string key = "CHAN#" + std::to_string(slot) + "#" + std::to_string(channel + 1);
    std::string_view value;
    if (!Valued(key, value)) return false;
    Fields fields(value);
    cell.Waveform = static_cast<SeqWaveform>(fields.Word(kWaveforms));
    cell.ArbNumber = fields.Number();
    cell.Inverted = fields.Word(kPolarities) != 0;
    cell.Range = static_cast<SeqRange>(fields.Word(kRanges));
    cell.External = fields.Number();
    cell.Frequency = fields.Value();
    cell.Amplitude = fields.Value();
    cell.Offset = fields.Value();
    cell.Phase = fields.Value();
    cell.Duty = fields.Value();
    return fields.Whole() || Fail(key);
  }

  std::string_view rest_;
  int line_ = 0;
  int channel_ = 0;
  int step_ = 0;
  std::string reason_;
};

template <typename Words, typename Code>
std::string_view WordOf(const Words& words, Code code) {
  return words[static_cast<std::size_t>(code)];
}

void AppendStep(std::string& out, int slot, const SeqStep& step) {
  out += "STEP#";
  AppendInteger(out, slot);
  out += '=';
  AppendNumber(out, step.StepTime);
  out += ',';
  out += WordOf(kTerminals, step.Stop);
  for (const std::int16_t field : {step.AutoHold, step.StepCode, step.StateBranchOn, step.StateBranchStep,
                                   step.EventBranchOn, step.EventBranchStep, step.JumpOn, step.JumpTo}) {
    out += ',';
    AppendInteger(out, field);
  }
  out += ',';
  out += WordOf(kJumpCounts, step.JumpCounted);
  out += ',';
  AppendInteger(out, step.JumpCount);
  out += ',';
  AppendInteger(out, step.StopPhaseOn);
  out += ',';
  AppendNumber(out, step.StopPhase);
  out += "\r\n";
}

void AppendCell(std::string& out, int slot, int channel, const SeqCell& cell) {
  out += "CHAN#";
  AppendInteger(out, slot);
  out += '#';
  AppendInteger(out, channel + 1);
  out += '=';
  out += WordOf(kWaveforms, cell.Waveform);
  out += ',';
  AppendNumber(out, cell.ArbNumber);
  out += ',';
  out += WordOf(kPolarities, cell.Inverted);
  out += ',';
  out += WordOf(kRanges, cell.Range);
  out += ',';
  AppendNumber(out, cell.External);
  for (const SeqValue* value : {&cell.Frequency, &cell.Amplitude, &cell.Offset, &cell.Phase, &cell.Duty}) {
    out += ',';
    AppendNumber(out, value->Value);
    out += ',';
    out += WordOf(kChanges, value->Change);
  }
  out += "\r\n";
}

}  // namespace

bool ParseSequenceText(std::string_view text, CompiledSequence& out, TextProblem* problem) {
  const auto parsed = std::make_unique<CompiledSequence>();
  TextParser parser(text);
  if (!parser.Parse(*parsed)) {
    if (problem != nullptr) *problem = parser.Problem();
    return false;
  }
  out = std::move(*parsed);
  return true;
}

std::string WriteSequenceText(const CompiledSequence& sequence) {
  std::string out = "[FILE]\r\nVERSION=\"1.00\"\r\n[SYSTEM]\r\nMODEL=\"" + sequence.Model + "\"\r\nNCHAN=";
  AppendInteger(out, sequence.Channels);
  out += "\r\nVERSION=\"1.00\"\r\n[DATA]\r\nSEQ=";
  AppendInteger(out, sequence.StartStep);
  out += ',';
  out += WordOf(kSyncOutputs, sequence.SyncStepCode);
  out += ',';
  AppendInteger(out, sequence.ExternalControl);
  out += ',';
  out += WordOf(kPinInputs, sequence.StateBranchInput);
  out += ',';
  out += WordOf(kTriggers, sequence.Trigger);
  out += "\r\n";
  for (int slot = 0; slot < kSequenceSlots; ++slot) {
    AppendStep(out, slot, sequence.Steps[static_cast<std::size_t>(slot)]);
  }
  for (int channel = 0; channel < sequence.Channels; ++channel) {
    for (int slot = 0; slot < kSequenceSlots; ++slot) {
      AppendCell(out, slot, channel,
                 sequence.Cells[static_cast<std::size_t>(channel)][static_cast<std::size_t>(slot)]);
    }
  }
  return out;
}

}  // namespace corlune
