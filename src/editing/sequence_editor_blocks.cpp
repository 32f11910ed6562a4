// Block operations of the SequenceEditor: copy, paste, select all, initialize, fill down.
#include <algorithm>
#include <memory>
#include <utility>

#include "editing/param_rules.h"
#include "editing/sequence_editor.h"
#include "sequence/defaults.h"
#include "sequence/units.h"

namespace corlune {

namespace {

// Takes everything over but the unit, which is that of the column.
void CopyCell(const ModelDefinition& definition, int param, const ParamCell& from, ParamCell& to) {
  const std::int16_t unit = to.UnitIndex;
  to = from;
  to.UnitIndex = unit;
  SetBaseValue(definition, param, BaseValue(definition, param, from), to);
}

}  // namespace

std::optional<GridBlock> SequenceEditor::Selection() const {
  if (cursor_.ActiveGrid == GridArea::Branch || cursor_.CurrentRow < 1) return std::nullopt;
  if (cursor_.SelEndRow < 1 || cursor_.SelEndCol < 1 || cursor_.CurrentCol() < 1) return std::nullopt;
  GridBlock block = SelectedBlock(cursor_);
  const bool channelGrid = block.Area == GridArea::Sequence;
  if (channelGrid && (block.Channel < 0 || block.Channel >= views_.ChannelGrids())) return std::nullopt;
  const int columns = channelGrid ? views_.ChannelColumns() : kCommonColumns;
  block.LastRow = std::min<int>(block.LastRow, sequence_.StepCount);
  block.LastColumn = std::min(block.LastColumn, columns - 1);
  if (block.LastRow < block.FirstRow || block.LastColumn < block.FirstColumn) return std::nullopt;
  return block;
}

bool SequenceEditor::Copy() {
  const std::optional<GridBlock> block = Selection();
  if (!block) return false;
  CopyBuffer buffer;
  buffer.Source = *block;
  for (int step = block->FirstRow - 1; step < block->LastRow; ++step) {
    buffer.Steps.push_back(sequence_.Step(step));
    buffer.Cells.push_back({CellsOf(sequence_, 0, step), CellsOf(sequence_, 1, step)});
  }
  copied_ = std::move(buffer);
  return true;
}

// Copies one row's cells of the source columns into the same columns of `step`.
void SequenceEditor::CopyRowCells(const StepRow& row, const std::array<StepCells, MAX_CHANNELS>& cells,
                                  const GridBlock& source, const GridBlock& target, int step) {
  for (int column = source.FirstColumn; column <= source.LastColumn; ++column) {
    if (source.Area == GridArea::Common) {
      CopyCommonField(definition_, row, sequence_.Step(step), column);
      continue;
    }
    const ParamCell& from =
        cells[static_cast<std::size_t>(source.Channel)][static_cast<std::size_t>(column - 1)];
    CopyCell(definition_, column - 1, from, sequence_.Cell(target.Channel, step, column - 1));
  }
}

std::optional<EditMessage> SequenceEditor::SettleBlock(const GridBlock& block, const SequenceData& before) {
  CellPlace place;
  place.Area = block.Area;
  place.Channel = block.Channel;
  for (int row = block.FirstRow; row <= block.LastRow; ++row) {
    place.Row = GridRow{row};
    const int step = row - 1;
    if (block.Area == GridArea::Sequence) {
      int param = 0;
      const StepCells old = CellsOf(before, block.Channel, step);
      if (const auto refused = SettleChannelStep(views_, sequence_, block.Channel, step, old, &param)) {
        place.Column = param + 1;
        return CellMessage(*refused, place);
      }
      continue;
    }
    const StepRow& now = sequence_.Step(step);
    const StepRow& old = before.Step(step);
    for (place.Column = block.FirstColumn; place.Column <= block.LastColumn; ++place.Column) {
      const int column = place.Column;
      const bool same =
          CommonBaseValue(definition_, now, column) == CommonBaseValue(definition_, old, column) &&
          CommonSwitch(now, column) == CommonSwitch(old, column);
      if (same) continue;
      if (const auto refused = CheckCommonValue(views_, sequence_, step, column)) {
        return CellMessage(*refused, place);
      }
    }
  }
  return std::nullopt;
}

EditOutcome SequenceEditor::Paste() {
  if (!copied_) return {};
  const std::optional<GridBlock> selected = Selection();
  if (sequence_.StepCount == 0) return {};
  const GridBlock& source = copied_->Source;
  const bool fits =
      selected && selected->Area == source.Area && selected->FirstColumn == source.FirstColumn &&
      selected->LastColumn == source.LastColumn &&
      (selected->FirstRow == source.FirstRow || source.Rows() == 1 || selected->Rows() == source.Rows());
  if (!fits) {
    EditMessage message = Message(TextId::CopyFormsDiffer);
    message.Icon = PromptIcon::None;
    return EditOutcome::Refused(std::move(message));
  }
  GridBlock target = *selected;
  if (source.Rows() != 1) target.LastRow = target.FirstRow + std::min(target.Rows(), source.Rows()) - 1;
  const auto before = std::make_unique<SequenceData>(sequence_);
  return Perform(TextId::EditPaste, [&] {
    for (int row = target.FirstRow; row <= target.LastRow; ++row) {
      const auto from = static_cast<std::size_t>(source.Rows() == 1 ? 0 : row - target.FirstRow);
      CopyRowCells(copied_->Steps[from], copied_->Cells[from], source, target, row - 1);
    }
    return SettleBlock(target, *before);
  });
}

bool SequenceEditor::SelectAll() {
  if (sequence_.StepCount == 0 || cursor_.ActiveGrid == GridArea::Branch) return false;
  const bool common = cursor_.ActiveGrid == GridArea::Common;
  (common ? cursor_.CurrentCol1 : cursor_.CurrentCol2) = 1;
  cursor_.CurrentRow = 1;
  cursor_.SelEndRow = sequence_.StepCount;
  cursor_.SelEndCol = common ? kCommonColumns - 1 : views_.ChannelColumns() - 1;
  return true;
}

EditOutcome SequenceEditor::Initialize() {
  const std::optional<GridBlock> block = Selection();
  if (!block) return {};
  const auto before = std::make_unique<SequenceData>(sequence_);
  return Perform(TextId::EditInitialize, [&]() -> std::optional<EditMessage> {
    const auto fresh = std::make_unique<SequenceData>();
    ResetStep(*fresh, 0, definition_);
    for (int step = block->FirstRow - 1; step < block->LastRow; ++step) {
      for (int column = block->FirstColumn; column <= block->LastColumn; ++column) {
        if (block->Area == GridArea::Common) {
          ResetCommonField(sequence_.Step(step), definition_, column);
        } else {
          CopyCell(definition_, column - 1, fresh->Cell(block->Channel, 0, column - 1),
                   sequence_.Cell(block->Channel, step, column - 1));
        }
      }
      if (block->Area == GridArea::Common) continue;
      // A default is given for the first waveform; others may be narrower.
      for (int param = block->FirstColumn - 1; param < block->LastColumn; ++param) {
        if (!ChannelInUse(definition_, sequence_, block->Channel, step, param)) continue;
        ParamCell& cell = sequence_.Cell(block->Channel, step, param);
        const ValueBounds bounds = ChannelBounds(definition_, sequence_, block->Channel, step, param);
        SetBaseValue(definition_, param, bounds.Nearest(BaseValue(definition_, param, cell)), cell);
      }
    }
    return SettleBlock(*block, *before);
  });
}

EditOutcome SequenceEditor::FillDown() {
  const std::optional<GridBlock> selected = Selection();
  if (!selected) return {};
  GridBlock target = *selected;
  const int sourceRow = target.Rows() == 1 ? target.FirstRow - 1 : target.FirstRow;
  target.FirstRow = sourceRow + 1;
  if (sourceRow < 1) return {};
  const auto before = std::make_unique<SequenceData>(sequence_);
  return Perform(TextId::EditFillDown, [&] {
    const StepRow row = sequence_.Step(sourceRow - 1);
    const std::array<StepCells, MAX_CHANNELS> cells{CellsOf(sequence_, 0, sourceRow - 1),
                                                    CellsOf(sequence_, 1, sourceRow - 1)};
    for (int step = target.FirstRow - 1; step < target.LastRow; ++step) {
      CopyRowCells(row, cells, target, target, step);
    }
    return SettleBlock(target, *before);
  });
}

}  // namespace corlune
