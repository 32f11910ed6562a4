#include "commands/expand_template.h"

#include <optional>
#include <string_view>

#include "core/numbers.h"
#include "sequence/channel_tabs.h"

namespace corlune {

namespace {

constexpr std::size_t kKeyLength = 7;  // "$" and six letters

struct Expansion {
  std::string text;
  std::size_t length = kKeyLength + 1;  // characters of the template that the text replaces
};

// Selection of a mode set for one channel tab; -1 without such a tab.
int ModeSelection(const SequenceData& sequence, const std::vector<ChannelTab>& tabs, int tab, int modeSet) {
  if (tab < 0 || tab >= static_cast<int>(tabs.size())) return -1;
  const ChannelTab& place = tabs[static_cast<std::size_t>(tab)];
  if (place.Device < 0 || place.Device >= kModeDevices || place.Channel < 0 || place.Channel >= kModeSlots) {
    return -1;
  }
  const auto& ofDevice = sequence.ModeSettings[static_cast<std::size_t>(place.Device)];
  const int slot = modeSet * kModeSlots + place.Channel;
  return ofDevice[static_cast<std::size_t>(slot)];
}

std::string ChoiceText(int selection, const char* first, const char* second) {
  if (selection == 0) return first;
  return selection == 1 ? second : "";
}

// Waveform name of the first step: the two built-in ones, then the sixteen arbitrary waveforms.
std::string WaveformName(const SequenceData& sequence, int channel) {
  if (channel < 0 || channel >= MAX_CHANNELS) return "";
  const std::optional<std::int32_t> code = ToInt32(sequence.Cell(channel, 0, kSlotAmplitude).Value);
  if (!code) return "";
  if (*code == 0) return "SIN";
  if (*code == 1) return "SQU";
  return *code >= 2 && *code <= 17 ? "ARB" + std::to_string(*code - 1) : "";
}

// Nothing when `digit` names no branch entry: the template is then sent as it stands.
std::optional<Expansion> BranchStepText(const SequenceData& sequence, int step, std::string_view digit) {
  if (digit.empty() || digit[0] < '0' || digit[0] >= '0' + kBranchEntries) return std::nullopt;
  if (step < 0 || step >= MAX_STEPS) return Expansion{"0"};
  const StepRow& row = sequence.Step(step);
  return Expansion{std::to_string(row.BranchStep[static_cast<std::size_t>(digit[0] - '0')])};
}

}  // namespace

std::int16_t ExpandCommandTemplate(std::string& commandTemplate, std::int16_t channel, std::int16_t step,
                                   const SequenceData& sequence, const std::vector<ChannelTab>& tabs) {
  const std::size_t at = commandTemplate.find('$');
  if (at == std::string::npos) return 0;
  const std::string_view rest = std::string_view(commandTemplate).substr(at);
  const std::string_view key = rest.substr(0, kKeyLength);

  std::optional<Expansion> expansion;
  if (key == "$MAXSTE") {
    expansion = Expansion{std::to_string(sequence.StepCount)};
  } else if (key == "$CURMOD") {
    expansion = Expansion{ChoiceText(ModeSelection(sequence, tabs, channel, 0), "AC-INT", "ACDC-INT")};
  } else if (key == "$CURRAN") {
    expansion = Expansion{ChoiceText(ModeSelection(sequence, tabs, channel, 1), "100", "200")};
  } else if (key == "$WAVENU") {
    expansion = Expansion{WaveformName(sequence, channel)};
  } else if (key == "$STEPNU") {
    expansion = Expansion{std::to_string(step + 1)};
  } else if (key == "$BNHSTP") {
    expansion = BranchStepText(sequence, step, rest.substr(kKeyLength));
  } else if (key == "$BNHCHN") {
    expansion = Expansion{std::to_string(sequence.BranchChannel), kKeyLength};
  }
  if (expansion) commandTemplate.replace(at, expansion->length, expansion->text);
  return 1;
}

}  // namespace corlune
