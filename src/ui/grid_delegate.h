// GridDelegate: paints the cells of a step or branch grid. The cell's colour always shows; selection and
// current cell and the marked row lie over it.
#pragma once

#include <QStyledItemDelegate>

#include "editing/grid_views.h"
#include "ui/cell_texts.h"
#include "view/theme.h"

namespace corlune {

class GridModel;

// Blank pixels beside a cell's text.
inline constexpr int kCellPadding = 3;

class GridDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 private:
  void PaintNumber(QPainter& painter, const QRect& rect, const GridModel& model, const QModelIndex& index,
                   const CellView& cell, const DefinitionColors::Look& look) const;

  mutable DefinitionColors colors_;
  mutable CellTexts texts_;
};

// `over` laid over `under` with the opacity of the selection.
QColor SelectedColor(const QColor& under, const QColor& over);

}  // namespace corlune
