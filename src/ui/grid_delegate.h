// GridDelegate: paints the cells of a step or branch grid. The cell's colour always shows; selection and
// current cell lie over it.
#pragma once

#include <QStyledItemDelegate>

namespace corlune {

// Blank pixels beside a cell's text.
inline constexpr int kCellPadding = 3;

class GridDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

// `over` laid over `under` with the opacity of the selection.
QColor SelectedColor(const QColor& under, const QColor& over);

}  // namespace corlune
