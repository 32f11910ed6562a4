// GridControl: turns presses, keys and focus changes of the grids into moves of the cursor (CellCursor), into
// entries (CellEntry) and into commands, and brings the views up to date afterwards.
#pragma once

#include <functional>
#include <optional>

#include <QObject>
#include <QPoint>

#include "ui/cell_cursor.h"
#include "ui/cell_entry.h"

namespace corlune {

class GridControl : public QObject {
  Q_OBJECT

 public:
  // All must outlive this object.
  GridControl(SequenceEditor& editor, Prompts& prompts, const GridTables& tables, QWidget& panel);

  void Rebuild();
  void Apply(const EditOutcome& outcome);
  // Stores what was typed. False: refused, or a message is still open. Pumps events in the message, which
  // only a key or command shows.
  bool Commit(EntryEnd end = EntryEnd::Key) { return entry_.Commit(end); }
  // Hides the editors without storing.
  void CloseEditors() { entry_.Close(); }
  void AllowEditing(bool on);

  // Shows cursor and selection; `open`: with the editor of the current cell.
  void ShowCursor(bool open);
  void SelectFirstCell();
  void SelectRow(GridRow row);
  void SelectCell(const CellPlace& place);
  void ReduceSelection();
  void HighlightRow(GridRow row, bool on);
  void ScrollTo(GridRow top) { cursor_.ScrollTo(top); }
  // Gives the focus to the current cell, with its editor where it can be edited.
  void FocusCell();
  // Moves tables about: the cursor, an open editor with what is typed in it and the focus stay.
  void Rearrange(const std::function<void()>& change);
  // Sizes of rows, header and columns anew, for another font or screen.
  void LayOut();

  int RowHeight() const { return entry_.RowHeight(); }

 signals:
  // Cells, rows or the current row are shown anew.
  void Refreshed();
  // The sequence, the cursor or what can be undone changed.
  void Changed();
  void CommandRequested(corlune::Command command);
  // Something to say that must not interrupt.
  void NoticeGiven(const std::string& text);
  void MenuRequested(const QPoint& global);
  // Queued to itself: the editor takes the focus over, which is not for the middle of a focus change.
  void FocusCame(corlune::GridTable* table, QPrivateSignal);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Connect(GridTable& table);
  bool FocusInside() const;
  void MarkStep();
  // Shows the cursor where a key or press has taken it.
  void Moved(bool open);

  void Press(GridTable& table, int row, int column, bool extend);
  void Drag(GridTable& table, int row, int column);
  void Release(GridTable& table);
  void RequestMenu(GridTable& table, const QPoint& global, int row, int column);
  void ChangeTab(int tab);

  bool HandleKey(QKeyEvent& event);
  void Do(const GridKey& key, const QKeyEvent& event);
  bool ReleaseKey(const QKeyEvent& event);
  void PressMove(CursorKey key, bool repeated);
  void Move(CursorKey key);
  void Extend(CursorKey key);
  void Jump(GridJump jump, bool extend);
  void NextGrid(bool forward);
  bool FinishArrow();
  void EditText();
  void Enter(GridTable& table);
  void Leave(bool forward);

  SequenceEditor& editor_;
  GridTables tables_;
  QWidget& panel_;
  CellCursor cursor_;
  CellEntry entry_;
  std::optional<CursorKey> heldArrow_;  // pressed and not yet let go
  bool pressed_ = false;                // the mouse button went down on a cell
};

}  // namespace corlune
