#include "ui/grid_delegate.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QPainterPath>

#include "editing/color_theme.h"
#include "ui/grid_model.h"
#include "view/theme.h"
#include "view/to_qcolor.h"

namespace corlune {

namespace {

constexpr double kSelectionOpacity = 0.3;
constexpr int kFrameWidth = 2;

int Mix(int under, int over) {
  return qRound(under * (1 - kSelectionOpacity) + over * kSelectionOpacity);
}

// A triangle that points at the number of the running step. It is drawn, because not every font has one.
void PaintRunningMark(QPainter& painter, QRect& text) {
  const int side = text.height() * 2 / 5;
  const QPoint middle(text.left(), text.center().y());
  QPainterPath mark(QPointF(middle.x(), middle.y() - side / 2.0));
  mark.lineTo(middle.x() + side * 0.85, middle.y());
  mark.lineTo(middle.x(), middle.y() + side / 2.0);
  mark.closeSubpath();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(mark, painter.pen().color());
  painter.setRenderHint(QPainter::Antialiasing, false);
  text.setLeft(text.left() + side);
}

}  // namespace

QColor SelectedColor(const QColor& under, const QColor& over) {
  return {Mix(under.red(), over.red()), Mix(under.green(), over.green()), Mix(under.blue(), over.blue())};
}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
  const auto* model = qobject_cast<const GridModel*>(index.model());
  if (model == nullptr) return;
  const CellView cell = model->Cell(index);
  const QColor highlight = option.palette.color(QPalette::Highlight);
  QColor background = ToQColor(cell.Background);
  if (option.state.testFlag(QStyle::State_Selected)) background = SelectedColor(background, highlight);

  painter->save();
  painter->fillRect(option.rect, background);
  painter->setFont(option.font);
  painter->setPen(ToQColor(TextColorOn(ToColor(background))));
  QRect text = option.rect.adjusted(kCellPadding, 0, -kCellPadding, 0);
  if (cell.Running && index.column() == 0) PaintRunningMark(*painter, text);
  if (!cell.Text.empty()) {
    const QString shown =
        option.fontMetrics.elidedText(QString::fromStdString(cell.Text), Qt::ElideRight, text.width());
    const auto alignment = static_cast<int>(index.data(Qt::TextAlignmentRole).toInt());
    painter->drawText(text, alignment | Qt::TextSingleLine, shown);
  }
  // The frame stays when the focus is elsewhere: it tells where the row commands act.
  const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
  if (view != nullptr && view->currentIndex() == index) {
    painter->setPen(QPen(highlight, kFrameWidth, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter->drawRect(option.rect.adjusted(1, 1, -1, -1));
  }
  painter->restore();
}

}  // namespace corlune
