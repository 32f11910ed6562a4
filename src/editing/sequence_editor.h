// SequenceEditor: every change that a person makes to the sequence, below the widgets. Each operation checks
// its input, changes the sequence, recolours the rows, sets the modified flag and records one undo entry, or
// refuses and changes nothing. Operations act on the current cell and selection of Cursor() unless a place is
// given, and do nothing outside edit mode.
//
// Only DeleteRow asks questions (through Prompts, which pumps events); all others return their message.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/app_state.h"
#include "core/catalogue.h"
#include "core/ports.h"
#include "editing/edit_outcome.h"
#include "editing/editor_for.h"
#include "editing/grid_place.h"
#include "editing/grid_views.h"
#include "editing/undo_history.h"
#include "editing/value_entry.h"

namespace corlune {

class SequenceEditor {
 public:
  // The referred objects must outlive this one.
  SequenceEditor(AppState& state, const ModelDefinition& definition, SequenceData& sequence,
                 const MessageCatalogue& catalogue, Prompts& prompts);

  GridCursor& Cursor() { return cursor_; }
  const GridCursor& Cursor() const { return cursor_; }
  GridViews& Views() { return views_; }
  const GridViews& Views() const { return views_; }
  bool Editable() const;  // edit mode and stopped

  // Cell entries. The same text as the cell shows is accepted without a change.
  EditOutcome EnterText(const CellPlace& place, std::string_view text);
  EditOutcome Choose(const CellPlace& place, int index);        // list editor
  EditOutcome ChooseOption(const CellPlace& place, int index);  // off/on, or change mode
  EditOutcome ChooseUnit(const CellPlace& place, int index);    // the unit of the whole column

  // Rows. The cursor follows: to the new last row, to the exchanged row, back to the last step.
  EditOutcome AddRow();
  EditOutcome InsertRow();
  EditOutcome DeleteRow();
  EditOutcome RowUp();
  EditOutcome RowDown();
  EditOutcome DuplicateRows();  // copies of the selected rows under them

  // Blocks. Copy fills the editor's own buffer, which stays when the sequence changes.
  bool Copy();
  bool CopyBufferFilled() const { return copied_.has_value(); }
  EditOutcome Paste();
  bool SelectAll();  // moves the cursor; false without steps
  EditOutcome Initialize();
  EditOutcome FillDown();  // the first selected row into the others; a single row takes the row above

  // Tab-separated text of the selection, one line a row.
  std::string CopyText() const;
  // Sets cells from the selection's first one; text beyond the last step or column is refused. Tab-separated
  // when a tab is present, else comma-separated. A text of one cell fills the whole selection.
  EditOutcome PasteText(std::string_view text);
  // All steps of all grids.
  std::string ExportCsv() const;
  // Replaces the steps by the rows of the text; columns are found by their header.
  EditOutcome ImportCsv(std::string_view text);

  // Undo. The cursor goes where the change was made.
  EditOutcome Undo();
  EditOutcome Redo();
  bool CanUndo() const { return Editable() && history_.CanUndo(); }
  bool CanRedo() const { return Editable() && history_.CanRedo(); }
  std::string UndoText() const;  // "Undo: Paste"; without an entry only the first word
  std::string RedoText() const;
  const UndoHistory& History() const { return history_; }
  // Runs `change`, which may alter the sequence in any way (a dialog's OK, a read-back), as one entry
  // called `action`. Sets the modified flag when something changed.
  EditOutcome Record(TextId action, const std::function<void()>& change);
  // After New and Open: forgets history and copy buffer, puts the cursor on the first cell, recolours.
  void Restart();

  // Fields beside the grids. The stored value stays when the entry is refused.
  EditOutcome EnterStartStep(std::string_view text);
  EditOutcome EnterBranchChannel(std::string_view text);
  // 0..10; stays in the field until a download or read-back takes it.
  EditOutcome CheckSequenceNumber(std::string_view text);

 private:
  // The rows of Copy, with the cells of both channels.
  struct CopyBuffer {
    GridBlock Source;
    std::vector<StepRow> Steps;
    std::vector<std::array<StepCells, MAX_CHANNELS>> Cells;
  };
  using Change = std::function<std::optional<EditMessage>()>;

  // Runs `change` as one entry; a message refuses it and puts the sequence back. Perform: while editable.
  EditOutcome Perform(TextId action, const Change& change);
  EditOutcome RecordEntry(TextId action, const Change& change);
  EditOutcome Finish(const std::optional<UndoSpan>& span);
  EditMessage Message(TextId id, const std::vector<std::string>& arguments = {}) const;
  EditMessage Message(const EntryRefusal& refusal) const { return Message(refusal.Id, refusal.Arguments); }
  // The refusal with the step and column it concerns.
  EditMessage CellMessage(const EntryRefusal& refusal, const CellPlace& place) const;
  std::string ColumnName(const CellPlace& place) const;
  bool IsEditableCell(const CellPlace& place) const;
  EditOutcome EnterField(std::string_view text, const SelectorSpec& range, std::int16_t& field);

  void OpenSlots(int slot, int count);
  EditOutcome MoveRow(TextId action, int distance);
  bool AskBeforeDelete(int slot);
  // The selection without header, spare row and column 0; nullopt when nothing is left.
  std::optional<GridBlock> Selection() const;
  void CopyRowCells(const StepRow& row, const std::array<StepCells, MAX_CHANNELS>& cells,
                    const GridBlock& source, const GridBlock& target, int step);
  // Checks the steps first..last of a block that replaced whole cells.
  std::optional<EditMessage> SettleBlock(const GridBlock& block, const SequenceData& before);
  std::optional<EditMessage> StoreBlockText(const GridBlock& block, const std::vector<std::string>& cells,
                                            int step);

  AppState& state_;
  const ModelDefinition& definition_;
  SequenceData& sequence_;
  const MessageCatalogue& catalogue_;
  Prompts& prompts_;
  GridViews views_;
  GridCursor cursor_;
  UndoHistory history_;
  std::optional<CopyBuffer> copied_;
};

}  // namespace corlune
