// GridControl: cursor, selection and cell entry of the grids. It turns presses and keys into cursor moves
// and operations of SequenceEditor, opens the cell's editor, and brings the views up to date afterwards.
//
// An entry is stored by Enter, Tab, the arrow keys, a press on another cell or control and every command; a
// refused one shows its message, and the editor keeps focus and place with the cell's text selected.
#pragma once

#include <array>
#include <optional>

#include <QObject>
#include <QPoint>

#include "editing/control_states.h"
#include "editing/sequence_editor.h"
#include "ui/cell_editors.h"
#include "ui/grid_keys.h"
#include "ui/grid_table.h"
#include "view/entry_field.h"

class QTabWidget;

namespace corlune {

struct GridTables {
  GridTable* Common = nullptr;
  std::array<GridTable*, MAX_CHANNELS> Channels{};
  GridTable* Branch = nullptr;
  QTabWidget* Tabs = nullptr;  // SSTab1, page i holds Channels[i]
};

class GridControl : public QObject {
  Q_OBJECT

 public:
  // All must outlive this object.
  GridControl(SequenceEditor& editor, Prompts& prompts, const GridTables& tables, QWidget& panel);

  void Rebuild();
  void Apply(const EditOutcome& outcome);
  // Stores what was typed. False: refused, or a message is still open. Pumps events in the message, which
  // only a key or command shows.
  bool Commit(EntryEnd end = EntryEnd::Key);
  // Hides the editors without storing.
  void CloseEditors();
  void SetStates(const ControlStates& states);

  // Shows cursor and selection; `open`: with the editor of the current cell.
  void ShowCursor(bool open);
  void SelectFirstCell();
  void ReduceSelection();
  void HighlightRow(GridRow row, bool on);
  // Makes `top` the first row of the step grids, as far as each of them then shows the highlighted row.
  void ScrollTo(GridRow top);
  // Scrolls as little as possible until every step grid shows the highlighted row, else the current one.
  void KeepInSight();
  // Gives the focus to the current cell, with its editor where it can be edited.
  void FocusCell();
  // Sizes of rows, header and columns anew, for another font or screen.
  void LayOut();

  int RowHeight() const { return editors_.RowHeight(); }

 signals:
  // Cells, rows or the current row are shown anew.
  void Refreshed();
  // The sequence, the cursor or what can be undone changed.
  void Changed();
  void CommandRequested(GridCommand command);
  void MenuRequested(const QPoint& global);
  // Queued to itself: a focus change is no moment to show messages or to move the focus on.
  void FocusWent(QPrivateSignal);
  void FocusCame(corlune::GridTable* table, QPrivateSignal);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::array<GridTable*, MAX_CHANNELS + 2> AllTables() const;
  GridTable& ActiveTable() const;
  GridTable& TableOf(GridArea area, int channel) const;
  GridPosition Position() const;
  void SetPosition(GridPosition position);
  int LastRow() const;
  int LastColumn() const;
  CellPlace CurrentPlace() const;
  void KeepCursorInside();
  void ShowSelection(int row, int column);
  void ShowRow(int row, int top);
  int FirstRow() const;
  int RowInSight() const;
  void OpenEditor();
  void PlaceEditor();
  bool FocusInside() const;
  void RefreshViews(const EditOutcome& outcome);
  void Show(const EditMessage& message);

  void Press(GridTable& table, int row, int column, bool extend);
  void Drag(GridTable& table, int row, int column);
  void Release(GridTable& table);
  void RequestMenu(GridTable& table, const QPoint& global, int row, int column);
  void ChangeTab(int tab);

  bool HandleKey(QKeyEvent& event);
  bool WouldHandle(const GridKey& key, const QKeyEvent& event) const;
  void Do(const GridKey& key, const QKeyEvent& event);
  bool ReleaseKey(const QKeyEvent& event);
  bool TypeIntoCell(QKeyEvent& event);
  void Move(CursorKey key);
  void Extend(CursorKey key);
  void Jump(GridJump jump, bool extend);
  void NextGrid(bool forward);
  bool FinishArrow();
  void NextOption();
  void EditText();
  void Enter(GridTable& table);
  void Leave(bool forward);
  bool EndsEntry(const QWidget* now) const;
  void FocusChanged(QWidget* now);
  void FinishLeaving();

  SequenceEditor& editor_;
  Prompts& prompts_;
  GridTables tables_;
  QWidget& panel_;
  CellEditors editors_;
  ControlStates states_;
  int branchRow_ = 1;
  std::optional<CursorKey> heldArrow_;  // pressed and not yet let go
  bool pressed_ = false;                // the mouse button went down on a cell
  bool showing_ = false;                // focus and tab changes are this object's own
  bool committing_ = false;
};

}  // namespace corlune
