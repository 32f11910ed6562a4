// GridViews: what the three grids show, computed from the sequence and the model definition. Nothing is kept
// but the row colours, the loops and the running row, so that a cell always shows what a rebuild from scratch
// would.
//
// Rows and columns as in grid_place.h. Widths and heights are twips (15 to a pixel at 96 dpi). Texts are
// UTF-8, lines separated by "\n".
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/app_state.h"
#include "core/catalogue.h"
#include "editing/grid_place.h"
#include "editing/loop_brackets.h"
#include "editing/row_colors.h"

namespace corlune {

enum class CellState {
  Value,
  NotInUse,  // switched off in this step, or no parameter of the step's waveform
  Spare,     // the empty row under the last step
};

enum class CellAlignment { Left, Center, Right };

struct CellView {
  std::string Text;
  CellState State = CellState::Value;
  Color Background;
  CellAlignment Alignment = CellAlignment::Right;
  bool Running = false;  // cell of the row that the instrument is executing
  bool operator==(const CellView&) const = default;
};

inline constexpr const char* kNotInUseText = "- - - -";
inline constexpr int kHeaderHeight = 500;  // twips
inline constexpr int kCommonColumns = 10;  // with column 0
inline constexpr int kSwitchOff = 0;       // options of a parameter that is switched by step
inline constexpr int kSwitchOn = 1;

class GridViews {
 public:
  // The referred objects must outlive this one. Changes to them show in the next call; after a change of
  // jumps, rows or the definition's colours call RefreshRowColors.
  GridViews(const AppState& state, const ModelDefinition& definition, const SequenceData& sequence,
            const MessageCatalogue& catalogue);

  // Grid rows with the header and, below the maximum step count, the spare row.
  int RowCount() const;
  bool HasSpareRow() const;
  int StepCount() const { return sequence_.StepCount; }
  int MaxSteps() const;  // CA_MAXSTE, at most 256
  // Channel grids on visible tabs, 0..2; at most what the sequence tables hold.
  int ChannelGrids() const;
  std::string TabCaption(int tab) const;  // 0-based

  int CommonColumnWidth(int column) const;
  std::string CommonHeader(int column) const;
  CellView CommonCell(GridRow row, int column) const;

  int ChannelColumns() const;  // with column 0
  int ChannelColumnWidth(int channel, int column) const;
  std::string ChannelHeader(int channel, int column) const;
  CellView ChannelCell(int channel, GridRow row, int column) const;

  bool BranchVisible() const { return definition_.Branches.Visible; }
  int BranchRows() const;  // with the header row
  static constexpr int kBranchColumns = 2;
  static int BranchColumnWidth(int column);
  std::string BranchHeader(int column) const;
  // Step number of the step whose branches are shown (TxtStepNo); empty when `step` is no step row.
  std::string BranchStepNumber(GridRow step) const;
  CellView BranchCell(GridRow step, int branchRow, int column) const;

  // Any of the above.
  CellView Cell(const CellPlace& place) const;

  // CellColorChange and CellColorBack: the row shown as running; none: no row. Returns the row marked before.
  std::optional<GridRow> Highlight(std::optional<GridRow> row);
  std::optional<GridRow> HighlightedRow() const { return highlight_; }

  const RowColors& Colors() const { return colors_; }
  // Returns true when a colour or a loop changed.
  bool RefreshRowColors();

  // Brackets beside the step numbers; up to date as the row colours are.
  int LoopLanes() const { return loops_.Lanes(); }
  std::vector<LoopPart> LoopParts(GridRow row) const { return loops_.At(IndexOf(row).value); }
  // The loops around a step in words, a line each; empty: none.
  std::string LoopText(GridRow row) const;

  const AppState& State() const { return state_; }
  const ModelDefinition& Definition() const { return definition_; }
  const SequenceData& Sequence() const { return sequence_; }
  const MessageCatalogue& Catalogue() const { return catalogue_; }

 private:
  bool IsStepRow(GridRow row) const { return row.value >= 1 && row.value <= sequence_.StepCount; }
  CellView SpareCell(Color background) const;
  CellView NumberCell(GridRow row) const;
  void Overlay(CellView& cell, GridRow row) const;

  const AppState& state_;
  const ModelDefinition& definition_;
  const SequenceData& sequence_;
  const MessageCatalogue& catalogue_;
  RowColors colors_{};
  LoopBrackets loops_;
  std::optional<GridRow> highlight_;
};

}  // namespace corlune
