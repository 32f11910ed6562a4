#include "forms/waveform_form.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string_view>
#include <utility>

#include "core/ascii_case.h"
#include "core/numbers.h"
#include "sequence/channel_tabs.h"
#include "sequence/defaults.h"
#include "sequence/sequence_file.h"
#include "sequence/waveform_path.h"

namespace corlune {

namespace {

constexpr const char* kNothing = "- - - -";
constexpr double kFullScale = 32767;

std::size_t Index(int number) {
  return static_cast<std::size_t>(number - 1);
}

template <typename Holds>
std::vector<int> Those(const std::vector<int>& numbers, const Holds& holds) {
  std::vector<int> some;
  std::copy_if(numbers.begin(), numbers.end(), std::back_inserter(some), holds);
  return some;
}

// The entry of a number whose file is `path` now.
ArbFileEntry EntryFor(const ArbFileEntry& held, const std::string& path) {
  return held.FilePath == path ? held : EntryWithFile(held, path);
}

// Takes the number that `text` begins with from it; its digits without leading zeros.
std::string_view TakeNumber(std::string_view& text) {
  const std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
  std::string_view number = text.substr(0, end);
  number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
  text.remove_prefix(end);
  return number;
}

// As people number files: "wave2" comes before "Wave10".
bool ComesBefore(std::string_view one, std::string_view other) {
  const auto digit = [](std::string_view text) { return text[0] >= '0' && text[0] <= '9'; };
  while (!one.empty() && !other.empty()) {
    if (digit(one) && digit(other)) {
      const std::string_view a = TakeNumber(one);
      const std::string_view b = TakeNumber(other);
      if (a.size() != b.size()) return a.size() < b.size();
      if (a != b) return a < b;
      continue;
    }
    const char a = LowerAscii(one[0]);
    const char b = LowerAscii(other[0]);
    if (a != b) return static_cast<unsigned char>(a) < static_cast<unsigned char>(b);
    one.remove_prefix(1);
    other.remove_prefix(1);
  }
  return one.empty() && !other.empty();
}

// mm:ss of whole seconds, with hours where there are any.
std::string LengthText(std::int32_t milliseconds) {
  const int seconds = (milliseconds + 999) / 1000;
  const auto two = [](int value) { return (value < 10 ? "0" : "") + std::to_string(value); };
  const std::string rest = two(seconds / 60 % 60) + ":" + two(seconds % 60);
  return seconds >= 3600 ? std::to_string(seconds / 3600) + ":" + rest : rest;
}

}  // namespace

std::vector<int> AllArbNumbers() {
  std::vector<int> numbers(kArbNumbers);
  std::iota(numbers.begin(), numbers.end(), 1);
  return numbers;
}

std::string NumberList(const std::vector<int>& numbers) {
  std::string text;
  for (std::size_t i = 0; i < numbers.size();) {
    std::size_t last = i;
    while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
    if (!text.empty()) text += ", ";
    text += std::to_string(numbers[i]);
    if (last > i) text += (last > i + 1 ? "-" : ", ") + std::to_string(numbers[last]);
    i = last + 1;
  }
  return text;
}

std::string GroupedNumber(std::int64_t number) {
  std::string text = std::to_string(number);
  for (std::ptrdiff_t at = std::ssize(text) - 3; at > (number < 0 ? 1 : 0); at -= 3) {
    text.insert(static_cast<std::size_t>(at), 1, ',');
  }
  return text;
}

WaveformForm::WaveformForm(const SequenceData& sequence, const AppState& state,
                           const ModelDefinition& definition, WaveFacts& facts,
                           const MessageCatalogue& catalogue)
    : state_(state),
      definition_(definition),
      facts_(facts),
      catalogue_(catalogue),
      held_(sequence.Channels.ArbFiles) {
  for (std::size_t i = 0; i < held_.size(); ++i) paths_[i] = held_[i].FilePath;
  const int channels = EditedChannels(state);
  const StepFlow flow = WalkSteps(sequence, channels);
  uses_.resize(static_cast<std::size_t>(channels));
  for (int channel = 0; channel < channels; ++channel) {
    Use& use = uses_[static_cast<std::size_t>(channel)];
    use.Flow = flow.Channels[static_cast<std::size_t>(channel)];
    for (int slot = 0; slot < sequence.StepCount; ++slot) {
      if (WaveformOf(sequence, channel, slot) != kWaveUser) continue;
      const int number = ArbNumberOf(sequence.Cell(channel, slot, kSlotArbNumber));
      if (number != 0) use.Steps[Index(number)].push_back(slot + sequence.StartStep);
    }
  }
}

ArbFileEntry WaveformForm::EntryOf(int number) const {
  return EntryFor(held_[Index(number)], paths_[Index(number)]);
}

const std::string& WaveformForm::Path(int number) const {
  return paths_[Index(number)];
}

std::string WaveformForm::FileOf(int number) const {
  return ResolveWaveformPath(Path(number), state_);
}

WavePlace WaveformForm::PlaceOf(const ArbFileEntry& entry) const {
  const bool file = !entry.FilePath.empty();
  if (state_.Online != 1 || entry.InInstrument == 0) return file ? WavePlace::File : WavePlace::Nowhere;
  if (!file) return WavePlace::Instrument;
  if (entry.Transferred == 0) return WavePlace::NotSent;
  return NeedsTransfer(entry, WaveformFolder(state_)) ? WavePlace::Changed : WavePlace::Both;
}

WaveformRow WaveformForm::Row(int number) {
  const ArbFileEntry entry = EntryOf(number);
  WaveformRow row;
  for (std::size_t channel = 0; channel < uses_.size(); ++channel) {
    const std::vector<int>& steps = uses_[channel].Steps[Index(number)];
    if (steps.empty()) continue;
    const std::string name = std::to_string(channel + 1);
    row.Use += (row.Use.empty() ? "CH" : " CH") + name;
    if (!row.UseSteps.empty()) row.UseSteps += "\n";
    row.UseSteps += Text(TextId::ArbUseTip, {name, NumberList(steps)});
  }
  row.Path = entry.FilePath.empty() ? kNothing : entry.FilePath;
  row.Place = PlaceOf(entry);
  std::int32_t points = row.Place == WavePlace::Instrument ? entry.PointCount : 0;
  bool arrayForm = entry.ArrayForm == 1;
  if (!entry.FilePath.empty()) {
    const WaveFact* fact = facts_.Find(FileOf(number));
    if (!fact) row.Points = Text(TextId::ArbCounting);
    if (fact && !fact->Usable()) row.Problem = ReasonText(fact->Reason, catalogue_);
    points = fact ? fact->Points : 0;
    arrayForm = !fact || fact->ArrayForm;
  }
  row.Form = points != 0 ? Text(arrayForm ? TextId::ArbFormArray : TextId::ArbFormPairs) : kNothing;
  if (row.Points.empty()) row.Points = points != 0 ? GroupedNumber(points) : kNothing;
  constexpr std::array kTexts{TextId::ArbPlaceFile, TextId::ArbPlaceInstrument, TextId::ArbPlaceBoth,
                              TextId::ArbPlaceNotSent, TextId::ArbPlaceChanged};
  const auto place = static_cast<std::size_t>(row.Place);
  row.PlaceText = place == 0 ? kNothing : Text(kTexts[place - 1]);
  return row;
}

ChannelMemory WaveformForm::Memory(int channel) {
  const Use& use = uses_[static_cast<std::size_t>(channel)];
  ArbEntries planned{};
  for (std::size_t i = 0; i < planned.size(); ++i) {
    if (!use.Flow.Arbs[i]) continue;
    const int number = static_cast<int>(i) + 1;
    if (paths_[i].empty()) {
      planned[i].PointCount = EntryOf(number).PointCount;
    } else if (const WaveFact* fact = facts_.Find(FileOf(number))) {
      planned[i].PointCount = fact->Points;
    }
  }
  const MemoryUse memory = MemoryUseOf(use.Flow, planned);
  ChannelMemory result{memory.Points, CheckMemory(memory), {}};
  const bool over = result.Check == ArbCheck::MemoryFull;
  const TextId text = result.Check == ArbCheck::Passed ? TextId::ArbMemoryLeft
                      : over                           ? TextId::ArbMemoryOver
                                                       : TextId::ArbMemoryShort;
  result.Text =
      Text(text, {std::to_string(channel + 1), GroupedNumber(std::abs(kWaveformMemory - memory.Points))});
  return result;
}

std::vector<WaveformAction> WaveformForm::Actions() const {
  constexpr std::array kNames{std::pair{WaveformAction::Transfer, TextId::ArbTransfer},
                              std::pair{WaveformAction::Clear, TextId::ArbClearMemory},
                              std::pair{WaveformAction::ClearAll, TextId::ArbClearAll},
                              std::pair{WaveformAction::Update, TextId::ButtonUpdate}};
  const MessageCatalogue english(10000);
  std::vector<WaveformAction> actions;
  for (const std::string& item : definition_.ArbItems.Texts) {
    for (const auto& [action, name] : kNames) {
      if (item == english.GetResString(name) || item == Text(name)) actions.push_back(action);
    }
  }
  if (actions.empty()) {
    for (const auto& [action, name] : kNames) actions.push_back(action);
  }
  return actions;
}

// Empty: the path can be taken.
std::string WaveformForm::Refusal(const std::string& path) const {
  if (!SequenceFileHolds(path)) return Text(TextId::ArbPathNotKept, {path});
  const WaveFact* fact = facts_.Find(ResolveWaveformPath(path, state_));
  // What is in the file the row says; it can still be put right.
  const bool taken = !fact || (fact->Problem != WaveformProblem::CannotAccess &&
                               fact->Problem != WaveformProblem::BadExtension);
  return taken ? std::string() : path + ": " + ReasonText(fact->Reason, catalogue_);
}

WaveformForm::Assigned WaveformForm::Assign(int first, std::vector<std::string> paths) {
  std::stable_sort(paths.begin(), paths.end(), ComesBefore);
  Assigned assigned;
  const auto complain = [&](const std::string& line) {
    assigned.Problem += (assigned.Problem.empty() ? "" : "\n") + line;
  };
  int number = first;
  std::string left;
  for (const std::string& path : paths) {
    if (const std::string refusal = Refusal(path); !refusal.empty()) {
      complain(refusal);
      continue;
    }
    if (!assigned.Numbers.empty()) {
      while (number <= kArbNumbers && !paths_[Index(number)].empty()) ++number;
    }
    if (number > kArbNumbers) {
      left += (left.empty() ? "" : ", ") + path;
      continue;
    }
    paths_[Index(number)] = path;
    assigned.Numbers.push_back(number++);
  }
  if (!left.empty()) complain(Text(TextId::ArbNoNumberLeft, {std::to_string(first), left}));
  return assigned;
}

void WaveformForm::RemoveFiles(const std::vector<int>& numbers) {
  for (const int number : numbers) paths_[Index(number)].clear();
}

int WaveformForm::CountNext() {
  for (int number = 1; number <= kArbNumbers; ++number) {
    const std::string file = FileOf(number);
    if (file.empty() || facts_.Find(file)) continue;
    facts_.Count(file);
    return number;
  }
  return 0;
}

std::vector<int> WaveformForm::WithFile(const std::vector<int>& numbers) const {
  return Those(numbers, [this](int number) { return !Path(number).empty(); });
}

std::vector<int> WaveformForm::UsedWithFile() const {
  std::vector<int> numbers;
  for (int number = 1; number <= kArbNumbers; ++number) {
    const bool used = std::any_of(uses_.begin(), uses_.end(),
                                  [&](const Use& use) { return !use.Steps[Index(number)].empty(); });
    if (used && !Path(number).empty()) numbers.push_back(number);
  }
  return numbers;
}

std::vector<int> WaveformForm::UsedToSend() const {
  return Those(UsedWithFile(),
               [this](int number) { return NeedsTransfer(EntryOf(number), WaveformFolder(state_)); });
}

std::vector<int> WaveformForm::Held(const std::vector<int>& numbers) const {
  return Those(numbers, [this](int number) { return held_[Index(number)].InInstrument != 0; });
}

void WaveformForm::PrepareToSend(const std::vector<int>& numbers) {
  for (const int number : numbers) held_[Index(number)] = EntryOf(number);
}

void WaveformForm::ForgetInstrument() {
  for (ArbFileEntry& entry : held_) {
    ArbFileEntry fresh;
    fresh.FilePath = entry.FilePath;
    entry = fresh;
  }
}

void WaveformForm::ApplyTo(SequenceData& sequence) const {
  for (int number = 1; number <= kArbNumbers; ++number) {
    sequence.Channels.ArbFiles[Index(number)] = EntryOf(number);
  }
}

void WaveformForm::KeepInstrument(SequenceData& sequence) const {
  for (std::size_t i = 0; i < held_.size(); ++i) {
    ArbFileEntry& entry = sequence.Channels.ArbFiles[i];
    const std::string path = entry.FilePath;
    entry = EntryFor(held_[i], path);
  }
}

std::string WaveformForm::ProgressText(const WaveformStep& step) const {
  const std::string number = std::to_string(step.Number);
  const std::string count = std::to_string(step.Count);
  const int turn = std::min(step.Done + 1, step.Count);
  if (step.BytesAll == 0) return Text(TextId::ArbDeleting, {number, std::to_string(turn), count});
  return Text(TextId::ArbProgress, {number, std::to_string(turn), count, GroupedNumber(step.BytesDone),
                                    GroupedNumber(step.BytesAll), LengthText(step.TimeLeft)});
}

std::string WaveformForm::PeakText(const SignalWave& wave) const {
  const WaveRange range = wave.Between(0, 1);
  const auto points = [](double part) { return std::to_string(std::lround(part * kFullScale)); };
  return Text(TextId::ArbPeakMean,
              {points(range.High), points(range.Low), FormatNumber(wave.Mean() * kFullScale, "0.##")});
}

}  // namespace corlune
