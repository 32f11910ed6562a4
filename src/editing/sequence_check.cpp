#include "editing/sequence_check.h"

#include <algorithm>
#include <array>
#include <memory>
#include <tuple>
#include <utility>

#include "compile/download.h"
#include "compile/sequence_text.h"
#include "compile/step_flow.h"
#include "compile/transfer_file.h"
#include "compile/waveform_transfer.h"
#include "core/numbers.h"
#include "editing/param_rules.h"
#include "editing/value_entry.h"
#include "sequence/channel_tabs.h"
#include "sequence/units.h"
#include "sequence/waveform_path.h"

namespace corlune {

namespace {

constexpr auto kWarning = FindingSeverity::Warning;
constexpr auto kError = FindingSeverity::Error;
constexpr std::array<int, 5> kTextValues{kSlotFrequency, kSlotAmplitude, kSlotOffset, kSlotPhase, kSlotDuty};

std::size_t Index(int value) {
  return static_cast<std::size_t>(value);
}

// The parameter that a refusal of the compiler concerns: the field of the "CHAN#" line that it names, else
// the first one that its code stands for. -1: none.
int RefusedSlot(const CompileErrorRecord& record) {
  for (const auto& [field, slot] :
       {std::pair{2, kSlotArbNumber}, std::pair{6, kSlotFrequency}, std::pair{8, kSlotAmplitude},
        std::pair{10, kSlotOffset}, std::pair{14, kSlotDuty}}) {
    if (record.PositionC == field) return slot;
  }
  switch (record.Code) {
    case 40:
      return kSlotFrequency;
    case 41:
      return kSlotAmplitude;
    case 42:
      return kSlotDuty;
    default:
      return -1;
  }
}

class SequenceCheck {
 public:
  explicit SequenceCheck(const CheckedParts& parts)
      : parts_(parts),
        definition_(parts.Definition),
        sequence_(parts.Sequence),
        views_(parts.State, parts.Definition, parts.Sequence, parts.Catalogue),
        channels_(EditedChannels(parts.State)),
        flow_(WalkSteps(parts.Sequence, channels_)) {}

  std::vector<SequenceFinding> Run() {
    if (sequence_.StepCount == 0) Add(kError, TextId::StepNeeded);
    CheckCommonParameters();
    // All slots are sent, so what cannot be written at all counts in unused ones too.
    for (int step = 0; step < MAX_STEPS; ++step) {
      CheckStep(step);
      for (int channel = 0; channel < channels_; ++channel) CheckCells(channel, step);
      if (step < sequence_.StepCount) CheckBranchArea(step);
    }
    CheckWaveforms();
    const bool fits = CheckResources();
    if (fits && !unwritable_ && sequence_.StepCount > 0) Compile();
    std::stable_sort(findings_.begin(), findings_.end(),
                     [](const auto& a, const auto& b) { return Order(a) < Order(b); });
    return std::move(findings_);
  }

 private:
  static std::tuple<int, int, int, int, int> Order(const SequenceFinding& finding) {
    if (!finding.Place) return {};
    const CellPlace& place = *finding.Place;
    return {place.Row.value, static_cast<int>(place.Area), place.Channel, place.BranchRow, place.Column};
  }
  CellPlace CommonPlace(int step, int column) const {
    return {GridArea::Common, 0, RowOf(StepIndex{step}), column, 0};
  }
  CellPlace ChannelPlace(int channel, int step, int slot) const {
    return {GridArea::Sequence, channel, RowOf(StepIndex{step}), slot + 1, 0};
  }
  bool Used(int step) const { return step < sequence_.StepCount; }
  std::string ColumnName(const CellPlace& place) const {
    std::string name = views_.CommonHeader(place.Column);
    if (place.Area == GridArea::Sequence) {
      name = views_.TabCaption(place.Channel) + " " + ChannelColumn(definition_, place.Column - 1).Name;
    }
    if (place.Area == GridArea::Branch) name = views_.BranchHeader(0) + " " + std::to_string(place.BranchRow);
    std::replace(name.begin(), name.end(), '\n', ' ');
    return name;
  }
  SequenceFinding& Add(FindingSeverity severity, TextId id, const std::vector<std::string>& arguments = {}) {
    return findings_.emplace_back(
        SequenceFinding{id, severity, {}, {}, parts_.Catalogue.GetResString(id, arguments)});
  }
  void Add(FindingSeverity severity, const CellPlace& place, TextId id,
           const std::vector<std::string>& arguments = {}) {
    SequenceFinding& finding = Add(severity, id, arguments);
    finding.Place = place;
    finding.Where = ColumnName(place);
  }
  void Add(const CellPlace& place, const EntryResult& refusal) {
    if (refusal) Add(kWarning, place, refusal->Id, refusal->Arguments);
  }
  // A value that the sequence text has no form for.
  void Unwritable(const CellPlace& place, TextId id, const std::string& value) {
    Add(kError, place, id, {value});
    unwritable_ = true;
  }
  std::string Shown(int target) const {
    return std::to_string(ShownNumber(StepNumber{target}, sequence_.StartStep));
  }

  // The first finding of a cell; null: none.
  SequenceFinding* FindingAt(const CellPlace& place) {
    const auto found = std::find_if(findings_.begin(), findings_.end(),
                                    [&](const SequenceFinding& finding) { return finding.Place == place; });
    return found == findings_.end() ? nullptr : &*found;
  }

  void CheckCommonParameters() {
    const CommonParams& common = sequence_.Common;
    const std::array<std::int32_t, 5> values{common.StartStepNo, common.Trigger, common.ExtCtrl,
                                             common.MultiIo, common.SyncOut};
    constexpr std::array<std::int32_t, 5> kLeast{1, 0, 0, 0, 0};
    constexpr std::array<std::int32_t, 5> kMost{255, 2, 1, 1, 1};
    for (std::size_t i = 0; i < values.size(); ++i) {
      const std::string value = std::to_string(values[i]);
      const bool start = i == 0;
      if (values[i] < kLeast[i] || values[i] > kMost[i]) {
        // Only the start step and the trigger have no form in the text then.
        unwritable_ = unwritable_ || i < 2;
        Add(i < 2 ? kError : kWarning, TextId::ValueOutOfRange,
            {value, std::to_string(kLeast[i]), std::to_string(kMost[i])});
      } else if (start && values[i] > sequence_.StepCount && sequence_.StepCount > 0) {
        Add(kWarning, TextId::FindingNoStep, {value});
      } else {
        continue;
      }
      findings_.back().Where =
          parts_.Catalogue.GetResString(Next(TextId::CommonStartStep, static_cast<int>(i)));
    }
  }

  void CheckStep(int step) {
    const StepRow& row = sequence_.Steps[Index(step)];
    for (int column = kGridStepTime; column < kCommonColumns; ++column) {
      const CellPlace place = CommonPlace(step, column);
      const double value = CommonValue(row, column);
      if (column == kGridStepTime && value < 0) {
        Unwritable(place, TextId::FindingNegativeTime, NumberText(value));
      } else if (IsTargetColumn(column) && (value < 0 || value > MAX_STEPS)) {
        Unwritable(place, TextId::FindingNoStep, Shown(static_cast<int>(value)));
      } else if (Used(step)) {
        CheckCommonValueOf(row, step, place);
      }
    }
    if (Used(step) && (row.TimeUnit < 0 || row.TimeUnit >= kUnits)) {
      Add(kWarning, CommonPlace(step, kGridStepTime), TextId::FindingNoUnit, {std::to_string(row.TimeUnit)});
    }
  }
  void CheckCommonValueOf(const StepRow& row, int step, const CellPlace& place) {
    if (!CommonInUse(definition_, row, place.Column)) return;
    const ChoiceList list = CommonChoices(definition_, place.Column);
    const auto value = static_cast<std::int16_t>(list.Texts.empty() ? 0 : CommonValue(row, place.Column));
    if (!list.Texts.empty()) {
      if (list.IndexOf(value) < 0) Add(kWarning, place, TextId::FindingNoCode, {std::to_string(value)});
    } else if (IsTargetColumn(place.Column)) {
      CheckTarget(place, static_cast<int>(CommonValue(row, place.Column)));
    } else {
      Add(place, CheckCommonValue(views_, sequence_, step, place.Column));
    }
  }
  void CheckTarget(const CellPlace& place, int target) {
    if (target < 1 || target > sequence_.StepCount) {
      Add(kWarning, place, TextId::FindingNoStep, {Shown(target)});
    }
  }

  void CheckCells(int channel, int step) {
    const auto cell = [&](int slot) -> const ParamCell& { return sequence_.Cell(channel, step, slot); };
    const auto place = [&](int slot) { return ChannelPlace(channel, step, slot); };
    const double waveform = cell(kSlotWaveform).Value;
    const int code = WaveformOf(sequence_, channel, step);
    const bool known = waveform == code && code >= kWaveSine && code <= kWaveUser;
    if (!known) Unwritable(place(kSlotWaveform), TextId::FindingNoCode, NumberText(waveform));
    const double range = cell(kSlotPolarityRange).Value;
    if (ToInt32(range).value_or(-1) < 0) {
      Unwritable(place(kSlotPolarityRange), TextId::FindingNoCode, NumberText(range));
    }
    for (const int slot : kTextValues) {
      const int mode = cell(slot).ChangeMode;
      if (mode < 0 || mode >= kChangeModes) {
        Unwritable(place(slot), TextId::FindingNoCode, std::to_string(mode));
      }
    }
    if (!Used(step) || !known) return;
    for (int slot = 0; slot < ChannelParams(definition_); ++slot) {
      if (ChannelInUse(definition_, sequence_, channel, step, slot)) CheckCell(channel, step, slot);
    }
    const CellPlace level = place(code == kWaveDc ? kSlotOffset : kSlotAmplitude);
    if (ChannelInUse(definition_, sequence_, channel, step, kSlotOffset) &&
        !PeakFits(definition_, sequence_, channel, step) && FindingAt(level) == nullptr) {
      Add(kWarning, level, TextId::PeakTooHigh);
    }
  }
  void CheckCell(int channel, int step, int slot) {
    const ParamCell& cell = sequence_.Cell(channel, step, slot);
    const CellPlace place = ChannelPlace(channel, step, slot);
    const ChoiceList list = ChannelChoices(definition_, slot);
    if (slot == kSlotArbNumber && ArbNumberOf(cell) == 0) {
      Add(flow_.Reachable[Index(step)] ? kError : kWarning, place, TextId::ArbNumberZero);
    } else if (list.Texts.empty()) {
      Add(place, CheckChannelValue(views_, sequence_, channel, step, slot));
    } else if (cell.Value >= 0 && list.IndexOf(ToInt16(cell.Value).value_or(-1)) < 0) {
      Add(kWarning, place, TextId::FindingNoCode, {NumberText(cell.Value)});
    }
    if (ChannelColumn(definition_, slot).UnitKind != 0 && (cell.UnitIndex < 0 || cell.UnitIndex >= kUnits)) {
      Add(kWarning, place, TextId::FindingNoUnit, {std::to_string(cell.UnitIndex)});
    }
  }

  void CheckBranchArea(int step) {
    const ChoiceList list = BranchChoices(definition_);
    for (int row = 1; views_.BranchVisible() && row < views_.BranchRows(); ++row) {
      const CellPlace place{GridArea::Branch, 0, RowOf(StepIndex{step}), 1, row};
      const std::int16_t target = sequence_.Steps[Index(step)].BranchStep[Index(row - 1)];
      if (!list.Texts.empty()) {
        if (list.IndexOf(target) < 0) Add(kWarning, place, TextId::FindingNoCode, {std::to_string(target)});
      } else if (target != 0) {
        CheckTarget(place, target);
      }
    }
  }

  // Each number once, where it is used first; also in slots beyond the last step, which are sent, too.
  void CheckWaveforms() {
    std::array<bool, kArbNumbers> seen{};
    for (int step = 0; step < MAX_STEPS; ++step) {
      for (int channel = 0; channel < channels_; ++channel) {
        if (WaveformOf(sequence_, channel, step) != kWaveUser) continue;
        const int number = ArbNumberOf(sequence_.Cell(channel, step, kSlotArbNumber));
        if (number == 0 || std::exchange(seen[Index(number - 1)], true)) continue;
        CheckWaveform(ChannelPlace(channel, step, kSlotArbNumber), number, step);
      }
    }
  }
  void CheckWaveform(const CellPlace& place, int number, int step) {
    const ArbFileEntry& entry = sequence_.Channels.ArbFiles[Index(number - 1)];
    if (entry.FilePath.empty()) {
      if (entry.InInstrument != 0) return;
      const bool missing = parts_.State.Online != 0 && flow_.Reachable[Index(step)];
      Add(missing ? kError : kWarning, place,
          missing ? TextId::SelectedArbMissing : TextId::FindingArbWithoutFile, {std::to_string(number)});
      return;
    }
    const std::string path = ResolveWaveformPath(entry.FilePath, parts_.State);
    const WaveformRead read = ReadArbFile(path);
    if (read.problem == WaveformProblem::None) return;
    std::string reason = path + ":";
    if (const auto id = MessageOf(read.problem)) reason += " " + parts_.Catalogue.GetResString(*id);
    reason += " " + ReasonText(read.reason, parts_.Catalogue);
    Add(kError, place, TextId::FindingUnusableFile, {reason});
  }

  // False when it leaves the compiler nothing to find. Missing waveforms have been found before.
  bool CheckResources() {
    entries_ = sequence_.Channels.ArbFiles;
    for (ArbFileEntry& entry : entries_) {
      if (parts_.State.Online == 0 && entry.FilePath.empty()) entry.InInstrument = 1;
    }
    const ArbCheck check = CheckArbResources(flow_, channels_, entries_, WaveformFolder(parts_.State));
    if (check == ArbCheck::MemoryFull || check == ArbCheck::TooManyWaveforms) {
      Add(kError, TextId::FunctionsTooLarge);
    }
    return check == ArbCheck::Passed;
  }

  void Compile() {
    const std::string file = TransferFile(parts_.State, kSendFileName);
    std::string problem;
    CompileErrorRecord record{};
    std::int32_t result = 0;
    const bool called =
        BuildSequenceText(file, sequence_, definition_, parts_.State.ModelName, channels_, &problem) &&
        parts_.Compiler.CompileSeqData(file, ArbInformationTable(entries_), record, result) ==
            CompilerCall::Done;
    if (!called) {
      if (problem.empty()) problem = parts_.Compiler.Problem();
      Add(kError, TextId::CompilerDataIllegal).Text += " " + problem;
    } else if (record.Code != 0) {
      AddRefusal(record);
    } else if (!IsGoodCompilerResult(result)) {
      Add(kWarning, TextId::CompilerDataIllegal);  // shown at a download, which goes on
    }
  }
  void AddRefusal(const CompileErrorRecord& record) {
    const TextId id = CompilerParameterMessage(record.Code).value_or(TextId::CompilerDataIllegal);
    const std::string text = parts_.Catalogue.GetResString(id);
    const int slot = RefusedSlot(record);
    const bool placed = record.PositionB >= 1 && record.PositionB <= MAX_STEPS && slot >= 0 &&
                        record.Channel >= 0 && record.Channel < channels_;
    if (!placed) {
      Add(kError, TextId::FindingRefused, {text});
      return;
    }
    const CellPlace place = ChannelPlace(record.Channel, record.PositionB - 1, slot);
    SequenceFinding* const same = FindingAt(place);
    // What the check has found itself says more.
    if (same != nullptr) {
      same->Severity = kError;
    } else {
      Add(kError, place, TextId::FindingRefused, {text});
    }
  }

  const CheckedParts& parts_;
  const ModelDefinition& definition_;
  const SequenceData& sequence_;
  GridViews views_;
  int channels_;
  StepFlow flow_;
  ArbEntries entries_{};
  bool unwritable_ = false;
  std::vector<SequenceFinding> findings_;
};

}  // namespace

std::vector<SequenceFinding> CheckSequenceData(const CheckedParts& parts) {
  return SequenceCheck(parts).Run();
}

std::string FindingLine(const SequenceFinding& finding, const MessageCatalogue& catalogue, int startStep) {
  std::string line =
      catalogue.GetResString(finding.Severity == kError ? TextId::SeverityError : TextId::SeverityWarning) +
      ": ";
  if (finding.Place) {
    const std::string step = std::to_string(startStep + IndexOf(finding.Place->Row).value);
    line += catalogue.GetResString(TextId::StepMessage, {step, finding.Where, finding.Text});
  } else {
    line += (finding.Where.empty() ? std::string() : finding.Where + ": ") + finding.Text;
  }
  std::replace(line.begin(), line.end(), '\n', ' ');
  return line;
}

bool PreventsDownload(const std::vector<SequenceFinding>& findings) {
  return std::any_of(findings.begin(), findings.end(),
                     [](const SequenceFinding& finding) { return finding.Severity == kError; });
}

}  // namespace corlune
