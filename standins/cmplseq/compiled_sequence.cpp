#include "compiled_sequence.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace corlune {

std::uint32_t Crc32(std::span<const std::uint8_t> bytes) {
  std::uint32_t crc = 0xFFFFFFFFU;
  for (const std::uint8_t byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
  }
  return ~crc;
}

namespace {

constexpr std::array<std::uint8_t, 4> kMagic{'Q', 'M', 'S', 'Q'};
constexpr std::uint16_t kVersion = 1;

class Writer {
 public:
  void Unsigned(std::uint64_t value, int size) {
    for (int i = 0; i < size; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
  void Int16(std::int16_t value) { Unsigned(static_cast<std::uint16_t>(value), 2); }
  void Flag(bool value) { Unsigned(value ? 1 : 0, 1); }
  template <typename Code>
  void Enum(Code value) {
    Unsigned(static_cast<std::uint8_t>(value), 1);
  }
  void Double(double value) { Unsigned(std::bit_cast<std::uint64_t>(value), 8); }
  void Value(const SeqValue& value) {
    Double(value.Value);
    Enum(value.Change);
  }
  void Bytes(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
  std::vector<std::uint8_t> Take() { return std::move(bytes_); }
  std::span<const std::uint8_t> All() const { return bytes_; }

 private:
  std::vector<std::uint8_t> bytes_;
};

// Reads past the end and values outside their range turn Good() off; what is read from then on is zero.
class Reader {
 public:
  explicit Reader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
  std::uint64_t Unsigned(std::size_t size) {
    if (bytes_.size() < size) {
      good_ = false;
      bytes_ = {};
      return 0;
    }
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value |= std::uint64_t{bytes_[i]} << (8 * i);
    bytes_ = bytes_.subspan(size);
    return value;
  }
  std::int16_t Int16() { return static_cast<std::int16_t>(Unsigned(2)); }
  bool Flag() { return Code(1) != 0; }
  std::uint8_t Code(std::uint8_t maximum) {
    const auto value = static_cast<std::uint8_t>(Unsigned(1));
    if (value > maximum) good_ = false;
    return value;
  }
  double Double() {
    const double value = std::bit_cast<double>(Unsigned(8));
    if (!std::isfinite(value)) good_ = false;
    return value;
  }
  SeqValue Value() {
    SeqValue value;
    value.Value = Double();
    value.Change = static_cast<SeqChange>(Code(2));
    return value;
  }
  bool Good() const { return good_; }
  bool AtEnd() const { return bytes_.empty(); }

 private:
  std::span<const std::uint8_t> bytes_;
  bool good_ = true;
};

void WriteRecord(Writer& out, const SeqStep& step) {
  out.Double(step.StepTime);
  out.Flag(step.Stop);
  for (const std::int16_t field : {step.AutoHold, step.StepCode, step.StateBranchOn, step.StateBranchStep,
                                   step.EventBranchOn, step.EventBranchStep, step.JumpOn, step.JumpTo}) {
    out.Int16(field);
  }
  out.Flag(step.JumpCounted);
  out.Int16(step.JumpCount);
  out.Int16(step.StopPhaseOn);
  out.Double(step.StopPhase);
}

SeqStep ReadRecord(Reader& in, const SeqStep& /*type*/) {
  SeqStep step;
  step.StepTime = in.Double();
  step.Stop = in.Flag();
  for (std::int16_t* field : {&step.AutoHold, &step.StepCode, &step.StateBranchOn, &step.StateBranchStep,
                              &step.EventBranchOn, &step.EventBranchStep, &step.JumpOn, &step.JumpTo}) {
    *field = in.Int16();
  }
  step.JumpCounted = in.Flag();
  step.JumpCount = in.Int16();
  step.StopPhaseOn = in.Int16();
  step.StopPhase = in.Double();
  return step;
}

void WriteRecord(Writer& out, const SeqCell& cell) {
  out.Enum(cell.Waveform);
  out.Double(cell.ArbNumber);
  out.Flag(cell.Inverted);
  out.Enum(cell.Range);
  out.Double(cell.External);
  for (const SeqValue* value : {&cell.Frequency, &cell.Amplitude, &cell.Offset, &cell.Phase, &cell.Duty}) {
    out.Value(*value);
  }
}

SeqCell ReadRecord(Reader& in, const SeqCell& /*type*/) {
  SeqCell cell;
  cell.Waveform = static_cast<SeqWaveform>(in.Code(4));
  cell.ArbNumber = in.Double();
  cell.Inverted = in.Flag();
  cell.Range = static_cast<SeqRange>(in.Code(2));
  cell.External = in.Double();
  for (SeqValue* value : {&cell.Frequency, &cell.Amplitude, &cell.Offset, &cell.Phase, &cell.Duty}) {
    *value = in.Value();
  }
  return cell;
}

// Runs of equal records: length - 1 in one byte, then the record once.
template <typename Record>
void WriteTable(Writer& out, const std::array<Record, kSequenceSlots>& table) {
  for (std::size_t first = 0; first < table.size();) {
    std::size_t end = first + 1;
    while (end < table.size() && table[end] == table[first]) ++end;
    out.Unsigned(end - first - 1, 1);
    WriteRecord(out, table[first]);
    first = end;
  }
}

template <typename Record>
bool ReadTable(Reader& in, std::array<Record, kSequenceSlots>& table) {
  for (std::size_t first = 0; first < table.size();) {
    const std::size_t end = first + in.Unsigned(1) + 1;
    const Record record = ReadRecord(in, Record{});
    if (!in.Good() || end > table.size()) return false;
    std::fill(table.begin() + static_cast<std::ptrdiff_t>(first),
              table.begin() + static_cast<std::ptrdiff_t>(end), record);
    first = end;
  }
  return true;
}

std::optional<CompiledSequence> Fail(std::string* error, const char* reason) {
  if (error != nullptr) *error = reason;
  return std::nullopt;
}

}  // namespace

bool IsUnsetSlot(const CompiledSequence& sequence, int slot) {
  const auto index = static_cast<std::size_t>(slot);
  if (!(sequence.Steps[index] == SeqStep{})) return false;
  for (int channel = 0; channel < sequence.Channels; ++channel) {
    if (!(sequence.Cells[static_cast<std::size_t>(channel)][index] == SeqCell{})) return false;
  }
  return true;
}

std::vector<int> NextSlots(const CompiledSequence& sequence, int slot) {
  const SeqStep& step = sequence.Steps[static_cast<std::size_t>(slot)];
  std::vector<int> next;
  const auto add = [&](int target) {
    if (target < 0 || target >= kSequenceSlots || IsUnsetSlot(sequence, target)) return;
    if (std::find(next.begin(), next.end(), target) == next.end()) next.push_back(target);
  };
  const bool jumps = step.JumpOn != 0 && step.JumpTo != 0;
  if (jumps) add(step.JumpTo - 1);
  if (step.EventBranchOn != 0) add(step.EventBranchStep - 1);
  if (step.StateBranchOn != 0) add(step.StateBranchStep - 1);
  if (!step.Stop && !(jumps && !step.JumpCounted)) add(slot + 1);
  return next;
}

std::vector<std::uint8_t> EncodeCompiledSequence(const CompiledSequence& sequence) {
  Writer out;
  for (const std::uint8_t byte : kMagic) out.Unsigned(byte, 1);
  out.Unsigned(kVersion, 2);
  const std::string_view model = std::string_view(sequence.Model).substr(0, 255);
  out.Unsigned(model.size(), 1);
  out.Bytes(model);
  out.Unsigned(static_cast<std::uint64_t>(sequence.Channels), 1);
  out.Int16(sequence.StartStep);
  out.Flag(sequence.SyncStepCode);
  out.Int16(sequence.ExternalControl);
  out.Flag(sequence.StateBranchInput);
  out.Enum(sequence.Trigger);
  WriteTable(out, sequence.Steps);
  for (int channel = 0; channel < sequence.Channels; ++channel) {
    WriteTable(out, sequence.Cells[static_cast<std::size_t>(channel)]);
  }
  out.Unsigned(Crc32(out.All()), 4);
  return out.Take();
}

std::optional<CompiledSequence> DecodeCompiledSequence(std::span<const std::uint8_t> bytes,
                                                       std::string* error) {
  if (bytes.size() < kMagic.size() || !std::equal(kMagic.begin(), kMagic.end(), bytes.begin())) {
    return Fail(error, "not a compiled sequence");
  }
  if (bytes.size() < kMagic.size() + 6) return Fail(error, "cut short");
  const auto body = bytes.first(bytes.size() - 4);
  if (Reader(bytes.last(4)).Unsigned(4) != Crc32(body)) return Fail(error, "checksum differs");

  Reader in(body.subspan(kMagic.size()));
  if (in.Unsigned(2) != kVersion) return Fail(error, "unknown version");
  CompiledSequence sequence;
  const auto modelLength = in.Unsigned(1);
  for (std::uint64_t i = 0; i < modelLength; ++i) sequence.Model += static_cast<char>(in.Unsigned(1));
  sequence.Channels = in.Code(kSequenceChannels);
  sequence.StartStep = in.Int16();
  sequence.SyncStepCode = in.Flag();
  sequence.ExternalControl = in.Int16();
  sequence.StateBranchInput = in.Flag();
  sequence.Trigger = static_cast<SeqTrigger>(in.Code(2));
  if (!in.Good() || sequence.Channels < 1 || sequence.StartStep < 1 || sequence.StartStep > kSequenceSlots) {
    return Fail(error, "header field out of range");
  }
  bool whole = ReadTable(in, sequence.Steps);
  for (int channel = 0; whole && channel < sequence.Channels; ++channel) {
    whole = ReadTable(in, sequence.Cells[static_cast<std::size_t>(channel)]);
  }
  if (!whole) return Fail(error, "step table out of range");
  for (const SeqStep& step : sequence.Steps) {
    for (const int target : {step.JumpTo, step.EventBranchStep, step.StateBranchStep}) {
      if (target < 0 || target > kSequenceSlots) return Fail(error, "target step out of range");
    }
    if (step.StepTime < 0) return Fail(error, "negative step time");
  }
  if (!in.AtEnd()) return Fail(error, "surplus bytes");
  return sequence;
}

}  // namespace corlune
