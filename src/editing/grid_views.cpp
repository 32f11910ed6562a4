#include "editing/grid_views.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/numbers.h"
#include "editing/param_rules.h"
#include "sequence/channel_tabs.h"
#include "sequence/units.h"
#include "sequence/user_units.h"

namespace corlune {

namespace {

// Twips. A column without an own width takes one that fits its header.
constexpr std::array<int, kCommonColumns> kCommonWidths{720, 1000, 670, 800, 720, 720, 710, 710, 950, 1050};
constexpr int kNamedColumnWidth = 750;
constexpr int kNumberColumnWidth = 720;
constexpr std::array<int, MAX_PARAMS> kChannelWidths{900, 800, 1500, 1000, 1400, 1000,
                                                     900, 900, 800,  1000, 1000};
constexpr int kTwipsPerHeaderCharacter = 100;

// Display columns of UTF-8 text: characters beyond Latin count twice.
int DisplayLength(const std::string& text) {
  int length = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0U) == 0x80U) continue;
    length += byte >= 0xE0U ? 2 : 1;
  }
  return length;
}

int LongestLine(const std::string& text) {
  int longest = 0;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    longest = std::max(longest, DisplayLength(text.substr(start, end - start)));
    start = end + 1;
  }
  return longest;
}

std::string IntegerText(double value) {
  return FormatNumber(value, "0");
}

std::string TargetText(int stored, int startStep) {
  // With start step 0 the number 0 is the first step.
  if (stored == 0 && startStep == 0) return kNotInUseText;
  return std::to_string(ShownNumber({stored}, startStep));
}

std::string ChoiceText(const ChoiceList& list, double value) {
  const int index = list.IndexOf(ToInt16(value).value_or(-1));
  return index < 0 ? IntegerText(value) : list.Texts[static_cast<std::size_t>(index)];
}

std::string CommonText(const ModelDefinition& definition, const SequenceData& sequence, const StepRow& row,
                       int column) {
  const double value = CommonValue(row, column);
  if (column == kGridStepTime) {
    const int unit = ShownTimeUnit(definition, sequence);
    return NumberText(Converted(TimeColumn(definition), value, row.TimeUnit, unit));
  }
  if (column == kGridStopPhase) return FormatNumber(value, "#0.#");
  if (IsTargetColumn(column)) return TargetText(static_cast<int>(value), sequence.StartStep);
  const ChoiceList list = CommonChoices(definition, column);
  return list.Texts.empty() ? IntegerText(value) : ChoiceText(list, value);
}

}  // namespace

GridViews::GridViews(const AppState& state, const ModelDefinition& definition, const SequenceData& sequence,
                     const MessageCatalogue& catalogue)
    : state_(state),
      definition_(definition),
      sequence_(sequence),
      catalogue_(catalogue),
      colors_(JumpColorSet(sequence, definition)),
      loops_(sequence) {}

int GridViews::MaxSteps() const {
  return std::clamp<int>(definition_.Common.MaxSteps, 0, MAX_STEPS);
}

bool GridViews::HasSpareRow() const {
  return sequence_.StepCount < MaxSteps();
}

int GridViews::RowCount() const {
  return sequence_.StepCount + (HasSpareRow() ? 2 : 1);
}

int GridViews::ChannelGrids() const {
  return EditedChannels(state_);
}

std::string GridViews::TabCaption(int tab) const {
  const bool channels = definition_.InterfaceOf(state_.ModelIndex).ChannelSelectable;
  return catalogue_.GetResString(channels ? TextId::ChannelTab : TextId::DeviceTab) + std::to_string(tab + 1);
}

int GridViews::CommonColumnWidth(int column) const {
  if (column > 0) {
    const ParamDef& param = CommonDefinition(definition_, column);
    if (param.ModeKind == 2 && !param.Name.empty()) return kNamedColumnWidth;
  }
  return kCommonWidths[static_cast<std::size_t>(column)];
}

std::string GridViews::CommonHeader(int column) const {
  if (column > 0) {
    const ParamDef& param = CommonDefinition(definition_, column);
    if (param.ModeKind == 2 && !param.Name.empty()) return param.Name;
    if (column == kGridStepTime && param.UnitKind == 2) {
      return catalogue_.GetResString(Next(TextId::HeadStep, column)) + "[" +
             UnitName(param, ShownTimeUnit(definition_, sequence_)) + "]";
    }
  }
  return catalogue_.GetResString(Next(TextId::HeadStep, column));
}

CellView GridViews::SpareCell(Color background) const {
  CellView cell;
  cell.State = CellState::Spare;
  cell.Background = background;
  return cell;
}

CellView GridViews::NumberCell(GridRow row) const {
  CellView cell;
  cell.Text = std::to_string(sequence_.StartStep + IndexOf(row).value);
  cell.Background = colors_[static_cast<std::size_t>(IndexOf(row).value)];
  cell.Alignment = CellAlignment::Center;
  return cell;
}

void GridViews::Overlay(CellView& cell, GridRow row) const {
  if (highlight_ != row) return;
  cell.Background = definition_.Common.CurrentCell;
  cell.Running = true;
}

CellView GridViews::CommonCell(GridRow row, int column) const {
  if (!IsStepRow(row)) return SpareCell(definition_.Common.Background);
  CellView cell = NumberCell(row);
  if (column > 0) {
    const StepRow& step = sequence_.Step(IndexOf(row));
    const ParamDef& param = CommonDefinition(definition_, column);
    const bool inUse = CommonInUse(definition_, step, column);
    cell.State = inUse ? CellState::Value : CellState::NotInUse;
    cell.Text = inUse ? CommonText(definition_, sequence_, step, column) : kNotInUseText;
    const bool list = !CommonChoices(definition_, column).Texts.empty();
    cell.Alignment = inUse && !list ? CellAlignment::Right : CellAlignment::Center;
    const auto option = static_cast<std::size_t>(inUse ? kSwitchOn : kSwitchOff);
    if (HasSwitch(column) && SwitchedByStep(param) && option < param.ModeColors.size()) {
      cell.Background = param.ModeColors[option];
    }
  }
  Overlay(cell, row);
  return cell;
}

int GridViews::ChannelColumns() const {
  return 1 + ChannelParams(definition_);
}

int GridViews::ChannelColumnWidth(int channel, int column) const {
  if (column == 0) return kNumberColumnWidth;
  const int fitting = LongestLine(ChannelHeader(channel, column)) * kTwipsPerHeaderCharacter;
  return std::max(kChannelWidths[static_cast<std::size_t>(column - 1)], fitting);
}

std::string GridViews::ChannelHeader(int channel, int column) const {
  if (column == 0) return catalogue_.GetResString(TextId::HeadStep);
  const int param = column - 1;
  const ParamDef& definition = ChannelColumn(definition_, param);
  const std::string unit = UserUnits(sequence_, definition_).UnitText(channel, param);
  return unit.empty() ? definition.Name : definition.Name + "\n" + unit;
}

CellView GridViews::ChannelCell(int channel, GridRow row, int column) const {
  if (!IsStepRow(row)) return SpareCell(definition_.Sequence.Background);
  CellView cell = NumberCell(row);
  if (column > 0) {
    const int step = IndexOf(row).value;
    const int param = column - 1;
    const ParamDef& definition = ChannelColumn(definition_, param);
    if (!ChannelInUse(definition_, sequence_, channel, step, param)) {
      cell.State = CellState::NotInUse;
      cell.Text = kNotInUseText;
      cell.Background = definition_.Sequence.Background;
      Overlay(cell, row);
      return cell;
    }
    const ParamCell& value = sequence_.Cell(channel, step, param);
    const ChoiceList list = ChannelChoices(definition_, param);
    cell.Alignment = list.Texts.empty() ? CellAlignment::Right : CellAlignment::Center;
    cell.Text = list.Texts.empty()
                    ? UserUnits(sequence_, definition_)
                          .UserUnitText(BaseValue(definition_, param, value), channel, step, param)
                    : ChoiceText(list, value.Value);
    const std::vector<std::int16_t> modes = ChangeModesOf(definition);
    const auto mode = std::find(modes.begin(), modes.end(), value.ChangeMode);
    const auto index = static_cast<std::size_t>(mode - modes.begin());
    if (index < std::min(modes.size(), definition.ModeColors.size())) {
      // A mode in the window colour has no colour of its own, so that the row's jump colour shows.
      const Color color = definition.ModeColors[index];
      if (!(color == kWindowColor)) cell.Background = color;
    }
  }
  Overlay(cell, row);
  return cell;
}

int GridViews::BranchRows() const {
  return 1 + std::clamp<int>(definition_.Branches.MaxChannel, 0, kBranchEntries);
}

int GridViews::BranchColumnWidth(int column) {
  return column == 0 ? 1100 : 900;
}

std::string GridViews::BranchHeader(int column) const {
  return catalogue_.GetResString(column == 0 ? TextId::HeadBranchChannel : TextId::HeadBranchStep);
}

std::string GridViews::BranchStepNumber(GridRow step) const {
  return IsStepRow(step) ? std::to_string(sequence_.StartStep + IndexOf(step).value) : std::string();
}

CellView GridViews::BranchCell(GridRow step, int branchRow, int column) const {
  CellView cell = SpareCell(definition_.Branches.Background);
  if (branchRow < 1 || branchRow >= BranchRows()) return cell;
  if (column == 0) {
    cell.State = CellState::Value;
    cell.Text = std::to_string(branchRow);
    cell.Alignment = CellAlignment::Center;
    return cell;
  }
  if (!IsStepRow(step)) return cell;
  const int stored = sequence_.Step(IndexOf(step)).BranchStep[static_cast<std::size_t>(branchRow - 1)];
  const ChoiceList list = BranchChoices(definition_);
  cell.State = CellState::Value;
  cell.Text = list.Texts.empty() ? TargetText(stored, sequence_.StartStep) : ChoiceText(list, stored);
  return cell;
}

CellView GridViews::Cell(const CellPlace& place) const {
  switch (place.Area) {
    case GridArea::Common:
      return CommonCell(place.Row, place.Column);
    case GridArea::Sequence:
      return ChannelCell(place.Channel, place.Row, place.Column);
    case GridArea::Branch:
      break;
  }
  return BranchCell(place.Row, place.BranchRow, place.Column);
}

std::optional<GridRow> GridViews::Highlight(std::optional<GridRow> row) {
  return std::exchange(highlight_, row);
}

bool GridViews::RefreshRowColors() {
  const RowColors colors = JumpColorSet(sequence_, definition_);
  LoopBrackets loops(sequence_);
  if (colors == colors_ && loops == loops_) return false;
  colors_ = colors;
  loops_ = std::move(loops);
  return true;
}

std::string GridViews::LoopText(GridRow row) const {
  return loops_.Text(IndexOf(row).value, sequence_.StartStep, catalogue_);
}

}  // namespace corlune
