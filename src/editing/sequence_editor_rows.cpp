// Row operations of the SequenceEditor.
#include <algorithm>
#include <array>
#include <utility>

#include "editing/param_rules.h"
#include "editing/sequence_editor.h"
#include "sequence/defaults.h"
#include "sequence/units.h"

namespace corlune {

namespace {

void CopyCells(SequenceData& sequence, int channels, int from, int to) {
  for (int channel = 0; channel < channels; ++channel) {
    for (int param = 0; param < MAX_PARAMS; ++param) {
      sequence.Cell(channel, to, param) = sequence.Cell(channel, from, param);
    }
  }
}

// Channels without a tab keep their values.
void ResetVisible(SequenceData& sequence, int channels, int slot, const ModelDefinition& definition) {
  std::array<StepCells, MAX_CHANNELS> hidden{};
  for (int channel = channels; channel < MAX_CHANNELS; ++channel) {
    hidden[static_cast<std::size_t>(channel)] = CellsOf(sequence, channel, slot);
  }
  ResetStep(sequence, slot, definition);
  for (int channel = channels; channel < MAX_CHANNELS; ++channel) {
    for (int param = 0; param < MAX_PARAMS; ++param) {
      sequence.Cell(channel, slot, param) =
          hidden[static_cast<std::size_t>(channel)][static_cast<std::size_t>(param)];
    }
  }
}

// Gives the new step in `slot` the units in which the columns are shown.
void AdoptUnits(SequenceData& sequence, int channels, int slot, const ModelDefinition& definition) {
  const int other = slot == 0 ? 1 : 0;
  if (other >= sequence.StepCount) return;
  StepRow& row = sequence.Step(slot);
  const std::int16_t unit = sequence.Step(other).TimeUnit;
  row.StepTime = Converted(TimeColumn(definition), row.StepTime, std::exchange(row.TimeUnit, unit), unit);
  for (int channel = 0; channel < channels; ++channel) {
    for (int param = 0; param < MAX_PARAMS; ++param) {
      ParamCell& cell = sequence.Cell(channel, slot, param);
      const double base = BaseValue(definition, param, cell);
      cell.UnitIndex = sequence.Cell(channel, other, param).UnitIndex;
      SetBaseValue(definition, param, base, cell);
    }
  }
}

bool BranchesTo(const StepRow& row, int number, const BranchAreaDef& branches) {
  if (row.EventBranchOn != 0 && row.EventBranchStep == number) return true;
  if (row.StateBranchOn != 0 && row.StateBranchStep == number) return true;
  if (!branches.Visible) return false;
  return std::any_of(row.BranchStep.begin(), row.BranchStep.end(),
                     [&](std::int16_t target) { return target == number && target != branches.Default; });
}

}  // namespace

// Moves the steps from `slot` to the end of the sequence `count` slots up; the caller fills the gap.
void SequenceEditor::OpenSlots(int slot, int count) {
  for (int from = sequence_.StepCount - 1; from >= slot; --from) {
    const int to = from + count;
    sequence_.Step(to) = sequence_.Step(from);
    CopyCells(sequence_, views_.ChannelGrids(), from, to);
  }
  sequence_.StepCount = static_cast<std::int16_t>(sequence_.StepCount + count);
}

EditOutcome SequenceEditor::AddRow() {
  if (sequence_.StepCount >= views_.MaxSteps()) return {};
  EditOutcome outcome = Perform(TextId::EditAddRow, [&]() -> std::optional<EditMessage> {
    const int slot = sequence_.StepCount++;
    ResetStep(sequence_, slot, definition_);
    AdoptUnits(sequence_, views_.ChannelGrids(), slot, definition_);
    return std::nullopt;
  });
  if (!outcome.Changed) return outcome;
  cursor_.CurrentRow = cursor_.SelEndRow = sequence_.StepCount;
  return outcome;
}

EditOutcome SequenceEditor::InsertRow() {
  if (sequence_.StepCount >= views_.MaxSteps()) return {};
  if (sequence_.StepCount == 0) return AddRow();
  const int slot = std::clamp<int>(cursor_.CurrentRow, 1, sequence_.StepCount) - 1;
  EditOutcome outcome = Perform(TextId::EditInsertRow, [&]() -> std::optional<EditMessage> {
    OpenSlots(slot, 1);
    ResetVisible(sequence_, views_.ChannelGrids(), slot, definition_);
    AdoptUnits(sequence_, views_.ChannelGrids(), slot, definition_);
    return std::nullopt;
  });
  if (outcome.Changed) outcome.FirstRow = slot + 1;
  return outcome;
}

bool SequenceEditor::AskBeforeDelete(int slot) {
  const int number = NumberOf(StepIndex{slot}).value;
  bool jump = false;
  bool branch = false;
  for (int other = 0; other < sequence_.StepCount; ++other) {
    if (other == slot) continue;
    const StepRow& row = sequence_.Step(other);
    jump = jump || (row.JumpOn != 0 && row.JumpTo == number);
    branch = branch || BranchesTo(row, number, definition_.Branches);
  }
  const auto agreed = [&](TextId id) {
    return ShowMessage(prompts_, catalogue_, id, PromptIcon::Question, PromptButtons::OkCancel) ==
           PromptAnswer::Ok;
  };
  if (jump && !agreed(TextId::JumpTargetDeletedQuestion)) return false;
  return !branch || agreed(TextId::BranchTargetDeletedQuestion);
}

EditOutcome SequenceEditor::DeleteRow() {
  const int row = cursor_.CurrentRow;
  if (!Editable() || row < 1 || row > sequence_.StepCount) return {};
  if (!AskBeforeDelete(row - 1)) {
    EditOutcome cancelled;
    cancelled.Accepted = false;
    return cancelled;
  }
  EditOutcome outcome = Perform(TextId::EditDeleteRow, [&]() -> std::optional<EditMessage> {
    for (int slot = row - 1; slot + 1 < MAX_STEPS; ++slot) {
      sequence_.Step(slot) = sequence_.Step(slot + 1);
      CopyCells(sequence_, views_.ChannelGrids(), slot + 1, slot);
    }
    ResetVisible(sequence_, views_.ChannelGrids(), MAX_STEPS - 1, definition_);
    --sequence_.StepCount;
    return std::nullopt;
  });
  cursor_.SelEndRow = cursor_.CurrentRow;
  if (outcome.Changed) {
    outcome.FirstRow = row;
    outcome.LastRow = sequence_.StepCount;
  }
  return outcome;
}

EditOutcome SequenceEditor::MoveRow(TextId action, int distance) {
  const int row = cursor_.CurrentRow;
  const int other = row + distance;
  if (row < 1 || row > sequence_.StepCount || other < 1 || other > sequence_.StepCount) return {};
  EditOutcome outcome = Perform(action, [&]() -> std::optional<EditMessage> {
    // Jumps keep pointing at the same step.
    for (int slot = 0; slot < sequence_.StepCount; ++slot) {
      std::int16_t& target = sequence_.Step(slot).JumpTo;
      if (target == row) {
        target = static_cast<std::int16_t>(other);
      } else if (target == other) {
        target = static_cast<std::int16_t>(row);
      }
    }
    std::swap(sequence_.Step(row - 1), sequence_.Step(other - 1));
    for (int channel = 0; channel < views_.ChannelGrids(); ++channel) {
      for (int param = 0; param < MAX_PARAMS; ++param) {
        std::swap(sequence_.Cell(channel, row - 1, param), sequence_.Cell(channel, other - 1, param));
      }
    }
    return std::nullopt;
  });
  if (outcome.Accepted) cursor_.CurrentRow = cursor_.SelEndRow = other;
  return outcome;
}

EditOutcome SequenceEditor::RowUp() {
  return MoveRow(TextId::EditRowUp, -1);
}

EditOutcome SequenceEditor::RowDown() {
  return MoveRow(TextId::EditRowDown, 1);
}

EditOutcome SequenceEditor::DuplicateRows() {
  const std::optional<GridBlock> block = Selection();
  if (!block) return {};
  const int count = block->Rows();
  if (sequence_.StepCount + count > views_.MaxSteps()) {
    return EditOutcome::Refused(Message(TextId::TooManySteps, {std::to_string(views_.MaxSteps())}));
  }
  EditOutcome outcome = Perform(TextId::EditDuplicateRows, [&]() -> std::optional<EditMessage> {
    OpenSlots(block->LastRow, count);
    for (int slot = block->LastRow; slot < block->LastRow + count; ++slot) {
      const int source = slot - count;
      sequence_.Step(slot) = sequence_.Step(source);
      CopyCells(sequence_, views_.ChannelGrids(), source, slot);
    }
    return std::nullopt;
  });
  if (outcome.Changed) {
    cursor_.CurrentRow = block->LastRow + 1;
    cursor_.SelEndRow = block->LastRow + count;
  }
  return outcome;
}

}  // namespace corlune
