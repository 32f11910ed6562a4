#include "compile/read_back.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "compile/sequence_text.h"
#include "compile/transfer_file.h"
#include "core/ascii_case.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/profile_file.h"
#include "sequence/channel_tabs.h"
#include "sequence/defaults.h"
#include "sequence/start_values.h"
#include "sequence/units.h"

namespace corlune {

namespace {

constexpr std::int32_t kAnswerWait = 5500;           // ms until the instrument has put its answer together
constexpr std::int32_t kSecond = 1000;               // ms
constexpr std::uint32_t kLongestAnswer = 1'000'000;  // bytes
constexpr std::size_t kValueLength = 1023;           // characters of one value
constexpr std::size_t kCommonFields = 5;
constexpr std::size_t kStepFields = 14;
constexpr std::size_t kChannelFields = 15;

// Reads the fields of one line and remembers whether one of them was malformed.
class FieldReader {
 public:
  explicit FieldReader(std::string_view line) : fields_(SplitList(line)) {}

  bool Has(std::size_t count) const { return fields_.size() >= count; }
  bool Malformed() const { return malformed_; }

  // Fields count from 1, as in the descriptions of the text.
  std::string_view Raw(std::size_t field) const { return fields_[field - 1]; }
  std::string_view Word(std::size_t field) const { return TrimBlanks(Raw(field)); }
  double Number(std::size_t field) { return Checked(ParseNumber(Raw(field))); }
  std::int16_t Integer(std::size_t field) { return Checked(ParseInt16(Raw(field))); }
  // A number as it is, "ON" in any case 1, any other word 0.
  double OnOffValue(std::size_t field) const {
    if (const std::optional<double> number = ParseNumber(Raw(field))) return *number;
    return UpperAscii(Word(field)) == "ON" ? 1 : 0;
  }
  std::int16_t OnOffFlag(std::size_t field) { return Checked(ToInt16(OnOffValue(field))); }

 private:
  template <typename T>
  T Checked(const std::optional<T>& value) {
    if (!value) malformed_ = true;
    return value.value_or(T{});
  }

  std::vector<std::string_view> fields_;
  bool malformed_ = false;
};

bool ReadCommonLine(std::string_view line, CommonParams& common) {
  FieldReader fields(line);
  if (!fields.Has(kCommonFields)) return false;
  CommonParams read = common;
  read.StartStepNo = fields.Integer(1);
  read.SyncOut = fields.Word(2) == "SYNC" ? 0 : 1;
  read.ExtCtrl = fields.OnOffFlag(3);
  read.MultiIo = fields.Raw(4) == "STAR" ? 0 : 1;
  const std::string_view trigger = fields.Word(5).substr(0, 3);
  if (trigger == "POS") read.Trigger = 0;
  if (trigger == "NEG") read.Trigger = 1;
  if (trigger == "OFF") read.Trigger = 2;
  if (fields.Malformed()) return false;
  common = read;
  return true;
}

bool ReadStepLine(std::string_view line, const ModelDefinition& definition, StepRow& row) {
  FieldReader fields(line);
  if (!fields.Has(kStepFields)) return false;
  StepRow read = row;
  read.TimeUnit = 0;
  read.StepTime = FromBase(TimeColumn(definition), fields.Number(1), 0);
  read.StepTerm = fields.Word(2) == "CONT" ? 0 : 1;
  read.AutoHold = fields.OnOffFlag(3);
  read.StepCode = fields.Integer(4);
  read.StateBranchOn = fields.OnOffFlag(5);
  read.StateBranchStep = fields.Integer(6);
  read.EventBranchOn = fields.OnOffFlag(7);
  read.EventBranchStep = fields.Integer(8);
  read.JumpOn = fields.OnOffFlag(9);
  read.JumpTo = fields.Integer(10);
  read.JumpCountOn = fields.Word(11) == "INF" ? 0 : 1;
  read.JumpCount = fields.Integer(12);
  read.StopPhaseOn = fields.OnOffFlag(13);
  read.StopPhase = fields.Number(14);
  if (fields.Malformed()) return false;
  row = read;
  return true;
}

int WaveformCodeOf(std::string_view word) {
  constexpr std::array<std::string_view, 5> kWords{"SIN", "SQU", "NOIS", "DC", "USER"};
  const auto* const found = std::find(kWords.begin(), kWords.end(), UpperAscii(word));
  return found == kWords.end() ? kWaveSine : static_cast<int>(found - kWords.begin());
}

std::int16_t ChangeModeOf(std::string_view word) {
  if (word == "KEEP") return kModeKeep;
  return word == "SWE" ? kModeSweep : kModeConst;
}

bool ReadChannelLine(std::string_view line, const ModelDefinition& definition, SequenceData& sequence,
                     int channel, int slot) {
  struct Read {
    int slot;
    double value;
    std::optional<std::int16_t> mode;
  };
  FieldReader fields(line);
  if (!fields.Has(kChannelFields)) return false;
  const int range = fields.Word(4) == "PFS" ? 1 : fields.Word(4) == "MFS" ? 2 : 0;
  const std::array<Read, 9> read{{
      {kSlotWaveform, static_cast<double>(WaveformCodeOf(fields.Word(1))), {}},
      {kSlotArbNumber, fields.Number(2), {}},
      {kSlotPolarityRange, static_cast<double>((fields.Word(3) == "INV" ? 3 : 0) + range), {}},
      {kSlotExternal, fields.OnOffValue(5), {}},
      {kSlotFrequency, fields.Number(6), ChangeModeOf(fields.Word(7))},
      {kSlotAmplitude, fields.Number(8), ChangeModeOf(fields.Word(9))},
      {kSlotOffset, fields.Number(10), ChangeModeOf(fields.Word(11))},
      {kSlotPhase, fields.Number(12), ChangeModeOf(fields.Word(13))},
      {kSlotDuty, fields.Number(14), ChangeModeOf(fields.Word(15))},
  }};
  if (fields.Malformed()) return false;
  for (const Read& item : read) {
    ParamCell& cell = sequence.Cell(channel, slot, item.slot);
    cell.UnitIndex = 0;
    SetBaseValue(definition, item.slot, item.value, cell);
    if (item.mode) cell.ChangeMode = *item.mode;
  }
  return true;
}

// "STEP#12" has one index, "CHAN#12#2" two. Written as the program writes them: no sign, no padding.
bool ReadIndexes(std::string_view text, int* indexes, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const char* const end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, indexes[i]);
    const bool padded = text.size() > 1 && text[0] == '0' && next - text.data() > 1;
    if (error != std::errc{} || indexes[i] < 0 || padded) return false;
    text.remove_prefix(static_cast<std::size_t>(next - text.data()));
    if (i + 1 == count) break;
    if (text.empty() || text[0] != '#') return false;
    text.remove_prefix(1);
  }
  return text.empty();
}

// The slots and channels whose first line was seen: a key that comes twice counts once.
struct SeenKeys {
  bool common = false;
  ReceivedSteps steps;
  std::array<ReceivedSteps, MAX_CHANNELS> cells;
};

bool FirstTime(ReceivedSteps& seen, int slot) {
  const auto bit = static_cast<std::size_t>(slot);
  const bool first = !seen[bit];
  seen.set(bit);
  return first;
}

void ReadEntry(const IniEntry& entry, int channels, const ModelDefinition& definition, SequenceData& sequence,
               SeenKeys& seen, ReceivedSteps& received) {
  const std::string key = UpperAscii(TrimBlanks(entry.key));
  const std::string_view value = TrimBlanks(entry.rawValue).substr(0, kValueLength);
  if (value.empty() || value[0] == '\0') return;
  const std::string_view indexText = std::string_view(key).substr(std::min<std::size_t>(5, key.size()));
  std::array<int, 2> index{};
  if (key == "SEQ") {
    if (!std::exchange(seen.common, true)) ReadCommonLine(value, sequence.Common);
  } else if (key.starts_with("STEP#") && ReadIndexes(indexText, index.data(), 1) && index[0] < MAX_STEPS) {
    if (!FirstTime(seen.steps, index[0])) return;
    if (ReadStepLine(value, definition, sequence.Step(index[0]))) {
      received.set(static_cast<std::size_t>(index[0]));
    }
  } else if (key.starts_with("CHAN#") && ReadIndexes(indexText, index.data(), 2) && index[0] < MAX_STEPS &&
             index[1] >= 1 && index[1] <= std::min(channels, MAX_CHANNELS)) {
    if (!FirstTime(seen.cells[static_cast<std::size_t>(index[1] - 1)], index[0])) return;
    if (ReadChannelLine(value, definition, sequence, index[1] - 1, index[0])) {
      received.set(static_cast<std::size_t>(index[0]));
    }
  }
}

// False: cancelled.
bool WaitForAnswer(CommandLayer& commands, Progress& progress) {
  for (std::int32_t left = kAnswerWait; left > 0; left -= kSecond) {
    commands.DelayMs(std::min(left, kSecond));
    progress.Advance();
    if (progress.Cancelled()) return false;
  }
  return true;
}

ReadBackEnd ReceiveIntoFile(CommandLayer& commands, Progress& progress, int number, const std::string& path) {
  const std::string query = ":TRACe:SEQuence? " + std::to_string(number);
  if (Failed(commands.SendCommand(commands.SelectInstrument(0), query, 0))) return ReadBackEnd::Failed;
  const bool waited = WaitForAnswer(commands, progress);
  // A handler that ran meanwhile may have addressed another instrument.
  const auto address = static_cast<std::int16_t>(commands.SelectInstrument(0));
  if (!waited) {
    // Nobody reads the answer any more; the next command must not meet it.
    commands.Gp().GP_DCL();
    return ReadBackEnd::Cancelled;
  }
  std::uint32_t bytesRead = 0;
  return Failed(commands.Gp().Gp_Recv_ToFile(address, path, kLongestAnswer, bytesRead)) ? ReadBackEnd::Failed
                                                                                        : ReadBackEnd::Done;
}

ReadBackEnd Refuse(Prompts& prompts, const MessageCatalogue& catalogue) {
  ShowMessage(prompts, catalogue, TextId::ReadBackError, PromptIcon::Critical);
  return ReadBackEnd::Failed;
}

}  // namespace

ReceivedSteps ReadSequenceText(std::string_view text, int channels, const ModelDefinition& definition,
                               SequenceData& sequence) {
  ReceivedSteps received;
  SeenKeys seen;
  const std::string section = GetIniSectionOfText(text, "DATA");
  ForEachIniEntry(section, [&](const IniEntry& entry) {
    ReadEntry(entry, channels, definition, sequence, seen, received);
    return true;
  });
  return received;
}

std::int16_t ReceivedStepCount(const ReceivedSteps& received, const SequenceData& sequence,
                               const SequenceData& fresh, const ModelDefinition& definition, int channels) {
  std::string lines;
  std::string freshLines;
  for (int slot = MAX_STEPS - 1; slot >= 0; --slot) {
    if (!received[static_cast<std::size_t>(slot)]) continue;
    lines.clear();
    freshLines.clear();
    AppendStepLines(lines, sequence, definition, slot, channels);
    AppendStepLines(freshLines, fresh, definition, slot, channels);
    if (lines != freshLines) return static_cast<std::int16_t>(slot + 1);
  }
  return 0;
}

ReadBackEnd ReadBackSequence(CommandLayer& commands, Prompts& prompts, Progress& progress,
                             const MessageCatalogue& catalogue, int number, SequenceData& sequence) {
  if (!commands.Online()) return ReadBackEnd::Failed;
  const std::string path = TransferFile(commands.State(), kReceiveFileName);
  // The library that writes the file cannot say why it failed, so room for the longest answer is made first.
  std::string error;
  if (!ReplaceFile(path, std::string(kLongestAnswer, '\0'), &error)) {
    ShowMessage(prompts, catalogue, TextId::CannotWriteFile, PromptIcon::Exclamation, PromptButtons::Ok,
                {path, error});
    return ReadBackEnd::Failed;
  }
  progress.Begin(catalogue.GetResString(TextId::ReadingBack, {std::to_string(number)}),
                 (kAnswerWait + kSecond - 1) / kSecond);
  progress.OfferCancel(catalogue.GetResString(TextId::ButtonCancelTransfer), {});
  const ReadBackEnd end = ReceiveIntoFile(commands, progress, number, path);
  progress.End();
  if (end == ReadBackEnd::Cancelled) return end;
  const std::optional<std::string> bytes = end == ReadBackEnd::Done ? ReadWholeFile(path) : std::nullopt;
  if (!bytes) return Refuse(prompts, catalogue);
  const int channels = EditedChannels(commands.State());
  const auto read = std::make_unique<SequenceData>(sequence);
  const ModelDefinition& definition = commands.Definition();
  const ReceivedSteps received = ReadSequenceText(DecodeText(*bytes), channels, definition, *read);
  if (received.none()) return Refuse(prompts, catalogue);
  const auto fresh = std::make_unique<SequenceData>();
  for (int slot = 0; slot < MAX_STEPS; ++slot) ResetStep(*fresh, slot, definition);
  read->StepCount = ReceivedStepCount(received, *read, *fresh, definition, channels);
  ComputeStartValues(*read);
  sequence = *read;
  return ReadBackEnd::Done;
}

}  // namespace corlune
