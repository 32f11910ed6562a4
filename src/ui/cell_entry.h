// CellEntry: what is typed or chosen in the editor over a cell, from opening the editor to storing the entry.
//
// An entry is stored by Enter, Tab, the arrow keys, a press on another cell or control and every command; a
// refused one shows its message, and the editor keeps focus and place with the cell's text selected.
#pragma once

#include <QObject>
#include <QScopedValueRollback>

#include "editing/sequence_editor.h"
#include "ui/cell_editors.h"
#include "ui/grid_keys.h"
#include "ui/grid_tables.h"
#include "view/entry_field.h"

namespace corlune {

class CellEntry : public QObject {
  Q_OBJECT

 public:
  // All must outlive this object.
  CellEntry(SequenceEditor& editor, Prompts& prompts, const GridTables& tables, QWidget& panel);

  // Gets every key of an editor first; true: done with.
  void SetKeyHandler(std::function<bool(QKeyEvent*)> handler) { editors_.SetKeyHandler(std::move(handler)); }
  void Allow(bool editing) { allowed_ = editing; }
  bool Allowed() const { return allowed_; }

  // Opens the editor of a cell and gives it the focus; the grid has it where nothing can be edited.
  void Open(const CellPlace& place);
  // Hides the editor without storing.
  void Close();
  // Cells have another place or size.
  void FollowCell();
  bool IsOpen() const { return editors_.IsOpen(); }
  bool HasFocus() const { return editors_.HasFocus(); }
  void Focus() { editors_.Focus(); }

  // Stores what was typed. False: refused, or a message is still open. Pumps events in the message, which
  // only a key or command shows.
  bool Commit(EntryEnd end = EntryEnd::Key);
  // Shows the message; no entry is taken while it is open.
  void Say(const EditMessage& message);
  bool MessageOpen() const { return committing_; }

  // The key belongs to the grid; false: to the editor's text, its list or the window.
  bool Leaves(const GridKey& key) const;
  // A key that types, on a cell whose editor is closed or switched off. True: taken.
  bool Type(QKeyEvent& event, const CellPlace& current);
  void EditText();
  void Restore() { editors_.Restore(); }
  // Something was typed that can be taken back.
  bool CanRestore() const { return editors_.Changed() || editors_.InText(); }
  void OpenList() { editors_.OpenList(); }
  void NextOption();

  int RowHeight() const { return editors_.RowHeight(); }

  // Focus changes are the grids' own for as long as the result lives: they end no entry and enter no grid.
  [[nodiscard]] QScopedValueRollback<bool> OwnFocus() { return QScopedValueRollback<bool>(own_, true); }
  bool FocusIsOwn() const { return own_; }

 signals:
  // An operation of the open editor was carried out or refused; it is still to be shown.
  void Operated(const corlune::EditOutcome& outcome);
  // Something to say that must not interrupt.
  void NoticeGiven(const std::string& text);
  // What was typed is stored and shown.
  void Stored();
  // The mouse was dragged out of the untouched text editor to a point of the screen, and let go.
  void DraggedTo(const QPoint& global);
  void DragEnded();
  // Queued to itself: a focus change is no moment to show messages or to move the focus on.
  void FocusWent(QPrivateSignal);

 private:
  void TellNotInUse(const CellPlace& place);
  void Put(const CellPlace& place, const EditorSpec& spec);
  bool EndsEntry(const QWidget* now) const;
  void FocusChanged(const QWidget* now);
  void FinishLeaving();

  SequenceEditor& editor_;
  Prompts& prompts_;
  GridTables tables_;
  QWidget& panel_;
  CellEditors editors_;
  bool allowed_ = false;
  bool own_ = false;
  bool committing_ = false;
};

}  // namespace corlune
