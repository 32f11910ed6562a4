// GridPanel: the three grids of the main window with their cell editors and row buttons. It shows what
// editing/ says and turns keys and clicks into operations of SequenceEditor; it holds no rules of its own.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QWidget>

#include "core/step_numbering.h"
#include "editing/edit_outcome.h"
#include "editing/sequence_editor.h"
#include "editing/window_commands.h"
#include "ui/twips.h"
#include "view/entry_field.h"

namespace corlune {

class GridPanel : public QWidget {
  Q_OBJECT

 public:
  // `editor` and `prompts` must outlive the panel.
  GridPanel(SequenceEditor& editor, Prompts& prompts, QWidget* parent = nullptr);
  ~GridPanel() override;

  // Builds all grids anew from definition and sequence (CmnAreaInit, SeqAreaInit, BrncAreaInit,
  // JumpColorSet); repaints once. The cursor of the editor is shown again.
  void Rebuild();
  // Repaints what an operation changed, moves the cursor and opens the cell's editor again; shows the
  // outcome's message first when it was refused.
  void Apply(const EditOutcome& outcome);
  // Stores what is typed in an open cell editor, as that ending does. False: it was refused, and the editor
  // keeps the focus. To be called before a command that leaves or saves the sequence.
  bool CommitEntry(EntryEnd end = EntryEnd::Key);
  // Called by every command on the grids before it is carried out; false: an entry was refused, and the
  // command is dropped. Without it, what is typed in the cell is stored.
  void SetBeforeCommand(std::function<bool()> takeEntries);
  // The current cell has the focus, with its editor where editing is possible.
  void FocusCell();
  // Takes back every open cell editor without storing.
  void HideEditors();
  // Enabled states and visibilities of row buttons, tabs and editors.
  void ShowStates(const ControlStates& states);

  // CellColorChange / CellColorBack.
  void HighlightRow(GridRow row, bool on);
  // Makes `top` the first visible step row of the common grid and the channel grids.
  void ScrollTo(GridRow top);
  // Selects the first cell of the common area and opens its editor (Timer2 after loading).
  void SelectFirstCell();
  // Makes the row of a step (or a cell) the current one, as the sequence view asks. What is being typed must
  // have been stored; the focus stays where it is.
  void SelectRow(GridRow row);
  void SelectCell(const CellPlace& place);
  // Reduces the selections to the current cell (execution mode).
  void ReduceSelection();

  // The size that shows `rows` whole step rows and every column in all grids, in pixels; in a panel as wide
  // as that the channels stand side by side if `sideBySide`.
  QSize SizeFor(int rows, bool sideBySide) const;
  // Share of the common grid in the height, in permille; nullopt: as many rows as the channels' grids.
  std::optional<int> Share() const;
  void SetShare(std::optional<int> permille);

  // A command of the Edit menu; nothing when its state forbids it.
  void Run(Command command);
  void ImportCsv(const std::string& path);
  void ExportCsv(const std::string& path);

 signals:
  // Something about the sequence, the cursor, undo or the copy buffer changed: refresh titles and menus.
  void Changed();
  // Something to say that must not interrupt.
  void NoticeGiven(const std::string& text);
  // A command of the window was chosen from the context menu.
  void WindowCommand(corlune::Command command);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool event(QEvent* event) override;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace corlune
