#include "editing/csv_columns.h"

#include <algorithm>

#include "editing/param_rules.h"

namespace corlune {

namespace {

std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

std::string WithUnit(const std::string& name, const std::string& unit) {
  // Some headers name their unit themselves.
  if (unit.empty() || name.find('[') != std::string::npos) return name;
  return name + " [" + unit + "]";
}

std::string CommonHeaderOf(const GridViews& views, int column) {
  const ParamDef& definition = CommonDefinition(views.Definition(), column);
  // The heading of the step times names the unit of a list itself.
  const std::string unit = definition.UnitKind == 1 ? definition.UnitName : std::string();
  return WithUnit(OneLine(views.CommonHeader(column)), unit);
}

std::string ChannelHeaderOf(const GridViews& views, int channel, int column, bool withUnit) {
  const std::string header = views.ChannelHeader(channel, column);
  const std::size_t unitAt = header.find('\n');
  std::string name = views.TabCaption(channel) + " " + header.substr(0, unitAt);
  if (!withUnit || unitAt == std::string::npos) return name;
  return WithUnit(name, header.substr(unitAt + 1));
}

}  // namespace

std::vector<CsvColumn> CsvColumns(const GridViews& views) {
  using Content = CsvColumn::Content;
  std::vector<CsvColumn> columns;
  columns.push_back({Content::StepNumber, GridArea::Common, 0, 0, 0, OneLine(views.CommonHeader(0))});
  for (int column = 1; column < kCommonColumns; ++column) {
    columns.push_back({Content::Value, GridArea::Common, 0, column, 0, CommonHeaderOf(views, column)});
  }
  const std::string modeWord = views.Catalogue().GetResString(TextId::CsvModeColumn);
  for (int channel = 0; channel < views.ChannelGrids(); ++channel) {
    for (int column = 1; column < views.ChannelColumns(); ++column) {
      columns.push_back({Content::Value, GridArea::Sequence, channel, column, 0,
                         ChannelHeaderOf(views, channel, column, true)});
      if (ChangeModesOf(ChannelColumn(views.Definition(), column - 1)).empty()) continue;
      columns.push_back({Content::Mode, GridArea::Sequence, channel, column, 0,
                         ChannelHeaderOf(views, channel, column, false) + " " + modeWord});
    }
  }
  for (int row = 1; views.BranchVisible() && row < views.BranchRows(); ++row) {
    const std::string header = OneLine(views.BranchHeader(0)) + " " + std::to_string(row);
    columns.push_back({Content::Value, GridArea::Branch, 0, 1, row, header});
  }
  return columns;
}

std::string CsvText(const GridViews& views, const CsvColumn& column, GridRow row) {
  const CellPlace place{column.Area, column.Channel, row, column.Column, column.BranchRow};
  const CellView cell = views.Cell(place);
  if (column.Kind != CsvColumn::Content::Mode || cell.State != CellState::Value) return cell.Text;
  const int param = column.Column - 1;
  const ParamDef& definition = ChannelColumn(views.Definition(), param);
  const std::vector<std::int16_t> modes = ChangeModesOf(definition);
  const std::int16_t mode = views.Sequence().Cell(column.Channel, IndexOf(row).value, param).ChangeMode;
  const auto found = std::find(modes.begin(), modes.end(), mode);
  if (found == modes.end()) return std::to_string(mode);
  return definition.ModeNames[static_cast<std::size_t>(found - modes.begin())];
}

}  // namespace corlune
