#include "ui/grid_delegate.h"

#include <QAbstractItemView>
#include <QPainter>

#include "ui/grid_model.h"
#include "ui/step_number_painter.h"
#include "view/to_qcolor.h"

namespace corlune {

namespace {

constexpr double kSelectionOpacity = 0.3;
constexpr int kFrameWidth = 2;
constexpr int kRowLine = 2;  // above and below the marked row

int Mix(int under, int over) {
  return qRound(under * (1 - kSelectionOpacity) + over * kSelectionOpacity);
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
  DefinitionColors::Look look = colors_.Of(option.palette, cell.Background);
  if (option.state.testFlag(QStyle::State_Selected)) {
    look.Background = SelectedColor(look.Background, highlight);
    look.Text = ToQColor(TextIn(colors_.Theme(option.palette), ToColor(look.Background)));
  }

  painter->save();
  painter->fillRect(option.rect, look.Background);
  const bool marked = model->IsMarked(index);
  const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
  const bool current = view != nullptr && view->currentIndex() == index;
  if (marked && index.column() == 0) {
    QFont font = option.font;
    font.setBold(true);
    painter->setFont(font);
  } else {
    painter->setFont(option.font);
  }
  // Costs more than the cell; few cells have one.
  const QColor accent = marked || current ? colors_.Line(look.Background, highlight) : QColor();
  if (marked) {
    painter->fillRect(QRect(option.rect.topLeft(), QSize(option.rect.width(), kRowLine)), accent);
    painter->fillRect(option.rect.adjusted(0, option.rect.height() - kRowLine, 0, 0), accent);
  }
  if (index.column() == 0 && model->Area() != GridArea::Branch) {
    PaintNumber(*painter, option.rect, *model, index, cell, look);
  } else if (!cell.Text.empty()) {
    painter->setPen(look.Text);
    texts_.DrawCut(*painter, option.rect.adjusted(kCellPadding, 0, -kCellPadding, 0),
                   GridModel::AlignmentOf(cell.Alignment), QString::fromStdString(cell.Text));
  }
  // The frame stays when the focus is elsewhere: it tells where the row commands act.
  if (current) {
    painter->setPen(QPen(accent, kFrameWidth, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter->drawRect(option.rect.adjusted(1, 1, -1, -1));
  }
  painter->restore();
}

void GridDelegate::PaintNumber(QPainter& painter, const QRect& rect, const GridModel& model,
                               const QModelIndex& index, const CellView& cell,
                               const DefinitionColors::Look& look) const {
  const GridViews& views = model.Views();
  StepNumberCell shown;
  shown.Number = QString::fromStdString(cell.Text);
  shown.Running = cell.Running;
  shown.Text = look.Text;
  if (cell.State == CellState::Value) {
    shown.Lanes = views.LoopLanes();
    shown.Loops = views.LoopParts({index.row() + 1});
    if (!shown.Loops.empty()) {
      shown.LoopColor = colors_.Line(look.Background, views.Definition().LoopSequence);
      shown.EndlessColor = colors_.Line(look.Background, views.Definition().EndlessSequence);
    }
  }
  PaintStepNumber(painter, rect, shown, texts_);
}

}  // namespace corlune
