// CellEditors: the editors that lie over a cell: Text1..3 and Combo1..3 for common, sequence and branch area,
// OptModeSet1..3 for the change modes of a channel parameter, OptModeSet4 and 5 for the switch of a common
// one. They show what an EditorSpec says and report intent; nothing is stored here.
#pragma once

#include <array>
#include <functional>
#include <vector>

#include <QLineEdit>
#include <QObject>

#include "editing/editor_for.h"
#include "ui/cell_widgets.h"

class QAbstractScrollArea;

namespace corlune {

class CellEditors : public QObject {
  Q_OBJECT

 public:
  // The viewports of the grids of the three areas; the widgets belong to them and must not be used after
  // them.
  explicit CellEditors(const std::array<QWidget*, 3>& viewports, QObject* parent = nullptr);

  // Gets every key of an editor first; true: done with.
  void SetKeyHandler(std::function<bool(QKeyEvent*)> handler) { keyHandler_ = std::move(handler); }

  // Shows the editors of `spec` over `cell` (coordinates of the grid's viewport). The editors are children of
  // that viewport. `name` is what the editor is called for assistive tools. Does not take the focus.
  void Open(QAbstractScrollArea& grid, const QRect& cell, const CellPlace& place, const EditorSpec& spec,
            const QString& name);
  // The cell stands elsewhere now.
  void Place(const QRect& cell);
  // Hides them; what was typed is gone.
  void Close();

  bool IsOpen() const { return open_; }
  const CellPlace& Where() const { return place_; }
  const EditorSpec& Spec() const { return spec_; }
  // The text or the chosen entry differs from what the cell holds.
  bool Changed() const;
  // The text cursor is in use: after EditText, or a click into the text.
  bool InText() const { return open_ && inText_; }
  QString Text() const;
  int Choice() const;

  void Focus();
  bool HasFocus() const;
  bool Owns(const QObject* widget) const;
  // Deselects the text and puts the text cursor behind it.
  void EditText();
  // What the cell holds comes back, selected.
  void Restore();
  // Opens the list of values or units.
  void OpenList();

  // Height of a list editor, which is the height of the grids' rows.
  int RowHeight() const;

 signals:
  void Chosen(int index);
  void OptionChosen(int index);
  void UnitChosen(int index);
  // The mouse was dragged out of the untouched text editor to a point of the screen, and let go.
  void DraggedTo(const QPoint& global);
  void DragEnded();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QLineEdit& TextOf(GridArea area) const;
  CellCombo& ComboOf(GridArea area) const;
  std::vector<CellOption*> OptionsOf(GridArea area) const;
  QWidget* Main() const;  // the editor that takes the focus
  std::vector<QWidget*> Shown() const;
  void FillText();
  void FillList(CellCombo& combo, const std::vector<std::string>& texts, int chosen);
  void FillOptions();
  bool TextMouse(QEvent* event);

  std::array<QLineEdit*, 3> texts_{};
  std::array<CellCombo*, 3> combos_{};
  std::array<CellOption*, 5> options_{};
  std::function<bool(QKeyEvent*)> keyHandler_;
  EditorSpec spec_;
  CellPlace place_;
  QRect cell_;
  QWidget* viewport_ = nullptr;
  QString original_;
  bool open_ = false;
  bool inText_ = false;
  bool dragging_ = false;
};

// Rectangles, top to bottom, of `sizes` stacked at a cell inside a viewport: below the cell, above it when
// there is more room, and beside it where neither side has enough.
std::vector<QRect> StackAtCell(const QRect& cell, const QSize& viewport, const std::vector<QSize>& sizes);

}  // namespace corlune
