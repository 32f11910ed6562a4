#include "ui/grid_table.h"

#include <algorithm>

#include <QAccessible>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolTip>

#include "ui/grid_delegate.h"
#include "ui/twips.h"

namespace corlune {

namespace {

constexpr int kHeaderPadding = 2;  // pixels on each side of a header text
constexpr int kNarrowest = 75;     // percent
constexpr int kChannelShare = 58;  // percent of a narrow branch grid
constexpr int kLeastRows = 2;      // rows that stay visible in a small window
constexpr int kUsualRows = 12;
constexpr int kMostGrowth = 50;  // percent by which columns grow in a wide window
constexpr int kGrowthSlack = 8;  // pixels that are left over before they grow

int TextWidth(const QFontMetrics& metrics, const QString& text) {
  return metrics.size(0, text).width();
}

}  // namespace

GridHeader::GridHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setSectionsClickable(false);
  setHighlightSections(false);
  setSectionResizeMode(QHeaderView::Fixed);
  setMinimumSectionSize(1);
  setDefaultAlignment(Qt::AlignCenter);
}

int GridHeader::TwoLines() const {
  return fontMetrics().height() + fontMetrics().lineSpacing() + 2 * kHeaderPadding;
}

int GridHeader::StretchOf(int section) const {
  const int room = sectionSize(section) - 2 * kHeaderPadding;
  const QString text = model()->headerData(section, Qt::Horizontal).toString();
  const int width = TextWidth(fontMetrics(), text);
  return width <= room ? 100 : std::max(room * 100 / width, 1);
}

void GridHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
  painter->save();
  const int stretch = StretchOf(section);
  if (stretch < 100) {
    QFont narrow = font();
    narrow.setStretch(std::max(stretch, kNarrowest));
    painter->setFont(narrow);
  }
  QHeaderView::paintSection(painter, rect, section);
  painter->restore();
}

bool GridHeader::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const auto* help = static_cast<QHelpEvent*>(event);
    const int section = logicalIndexAt(help->pos());
    const bool cut = section >= 0 && StretchOf(section) < kNarrowest;
    const QString text =
        cut ? model()->headerData(section, Qt::Horizontal).toString().simplified() : QString();
    QToolTip::showText(help->globalPos(), text, this);
    return true;
  }
  return QHeaderView::viewportEvent(event);
}

GridTable::GridTable(GridModel& model, QWidget* parent)
    : QTableView(parent), model_(model), header_(new GridHeader(this)) {
  setHorizontalHeader(header_);
  // Before the model comes: a header that can be seen measures the texts of hundreds of rows.
  verticalHeader()->hide();
  setModel(&model);
  setItemDelegate(new GridDelegate(this));
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setSelectionMode(QAbstractItemView::NoSelection);
  setAutoScroll(false);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setCornerButtonEnabled(false);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
  setFocusPolicy(Qt::StrongFocus);
  verticalHeader()->setMinimumSectionSize(1);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
}

void GridTable::LayOut(int rowHeight) {
  rowHeight_ = rowHeight;
  verticalHeader()->setDefaultSectionSize(rowHeight);
  header_->setFixedHeight(std::max(TwipsToPixels(kHeaderHeight, this), header_->TwoLines()));
  if (model_.Area() == GridArea::Branch) setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  FitToFrame();
  updateGeometry();
}

int GridTable::NaturalLength() const {
  int length = 0;
  for (int column = 0; column < model_.columnCount(); ++column) {
    length += TwipsToPixels(model_.ColumnTwips(column), this);
  }
  return length;
}

int GridTable::SidesWidth() const {
  return 2 * frameWidth() + verticalScrollBar()->sizeHint().width();
}

// The columns of the step grids share the room that a wide window gives them. The frame around the branch
// grid decides about its width: the channel column leaves room for the step.
void GridTable::FitToFrame() {
  if (model_.Area() != GridArea::Branch) {
    const int natural = std::max(NaturalLength(), 1);
    const int spare = width() - SidesWidth() - natural - kGrowthSlack;
    const int percent = 100 + std::clamp(spare * 100 / natural, 0, kMostGrowth);
    for (int column = 0; column < model_.columnCount(); ++column) {
      header_->resizeSection(column, TwipsToPixels(model_.ColumnTwips(column), this) * percent / 100);
    }
    return;
  }
  const int room = viewport()->width();
  const int channel =
      std::clamp(TwipsToPixels(model_.ColumnTwips(0), this), 1, std::max(room * kChannelShare / 100, 1));
  header_->resizeSection(0, channel);
  header_->resizeSection(1, std::max(room - channel, 1));
}

void GridTable::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  FitToFrame();
  emit Resized(event->oldSize().height() / rowHeight_);
}

void GridTable::PreferWidth(int pixels) {
  preferredWidth_ = pixels;
  updateGeometry();
}

int GridTable::ContentWidth() const {
  return NaturalLength() + SidesWidth();
}

int GridTable::MostWidth() const {
  return NaturalLength() * (100 + kMostGrowth) / 100 + SidesWidth() + kGrowthSlack;
}

int GridTable::HeightBesideRows() const {
  const QScrollBar* bar = horizontalScrollBar();
  return header_->height() + 2 * frameWidth() + (bar->maximum() > 0 ? bar->sizeHint().height() : 0);
}

int GridTable::VisibleRows() const {
  return std::max(viewport()->height() / rowHeight_, 1);
}

QSize GridTable::sizeHint() const {
  const int width = preferredWidth_ > 0 ? preferredWidth_ : ContentWidth();
  const int rows = model_.Area() == GridArea::Branch ? kLeastRows : kUsualRows;
  return {width, header_->height() + rows * rowHeight_};
}

QSize GridTable::minimumSizeHint() const {
  // The branch grid stands in an area that scrolls: one of the two is enough.
  if (model_.Area() == GridArea::Branch) {
    return {60, header_->height() + model_.rowCount() * rowHeight_ + 2 * frameWidth()};
  }
  return {120, header_->height() + kLeastRows * rowHeight_ + horizontalScrollBar()->sizeHint().height()};
}

void GridTable::scrollTo(const QModelIndex& index, ScrollHint hint) {
  QTableView::scrollTo(index, hint);
  for (QWidget* around = parentWidget(); around != nullptr; around = around->parentWidget()) {
    auto* area = qobject_cast<QScrollArea*>(around);
    if (area == nullptr) continue;
    const QRect cell = visualRect(index);
    const QPoint at = viewport()->mapTo(area->widget(), cell.center());
    area->ensureVisible(at.x(), at.y(), cell.width() / 2, cell.height());
    return;
  }
}

void GridTable::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const QModelIndex index = indexAt(event->position().toPoint());
  const bool cell = index.isValid() && index.flags().testFlag(Qt::ItemIsSelectable);
  emit Pressed(cell ? index.row() + 1 : 0, cell ? index.column() : 0,
               event->modifiers().testFlag(Qt::ShiftModifier));
}

void GridTable::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons().testFlag(Qt::LeftButton)) DragTo(event->globalPosition().toPoint());
}

void GridTable::DragTo(const QPoint& global) {
  const QPoint at = viewport()->mapFromGlobal(global);
  // Beyond an edge: the next cell behind it, so that the selection scrolls.
  int row = verticalHeader()->logicalIndexAt(std::clamp(at.y(), 0, viewport()->height() - 1));
  if (row < 0) row = model_.rowCount() - 1;
  if (at.y() < 0) row = std::max(row - 1, 0);
  if (at.y() >= viewport()->height()) row = std::min(row + 1, model_.rowCount() - 1);
  int column = header_->logicalIndexAt(std::clamp(at.x(), 0, viewport()->width() - 1));
  if (column < 0) column = model_.columnCount() - 1;
  if (at.x() < 0) column = std::max(column - 1, 0);
  if (at.x() >= viewport()->width()) column = std::min(column + 1, model_.columnCount() - 1);
  if (row >= 0 && column >= 0) emit Dragged(row + 1, column);
}

void GridTable::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) emit Released();
}

void GridTable::mouseDoubleClickEvent(QMouseEvent* event) {
  mousePressEvent(event);
}

void GridTable::contextMenuEvent(QContextMenuEvent* event) {
  int row = 0;
  int column = 0;
  QPoint global = event->globalPos();
  if (event->reason() == QContextMenuEvent::Keyboard) {
    if (currentIndex().isValid()) {
      global = viewport()->mapToGlobal(visualRect(currentIndex()).bottomLeft());
    }
  } else {
    const QModelIndex index = indexAt(viewport()->mapFromGlobal(event->globalPos()));
    if (index.isValid() && index.flags().testFlag(Qt::ItemIsSelectable)) {
      row = index.row() + 1;
      column = index.column();
    }
  }
  emit MenuRequested(global, row, column);
  event->accept();
}

bool GridTable::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const auto* help = static_cast<QHelpEvent*>(event);
    const QModelIndex index = indexAt(help->pos());
    const QString text = index.data().toString();
    const bool cut = TextWidth(fontMetrics(), text) > visualRect(index).width() - 2 * kCellPadding;
    const QString about = index.data(Qt::ToolTipRole).toString();
    QToolTip::showText(help->globalPos(), about.isEmpty() && cut ? text : about, this);
    return true;
  }
  return QTableView::viewportEvent(event);
}

void GridTable::scrollContentsBy(int dx, int dy) {
  QTableView::scrollContentsBy(dx, dy);
  emit Moved();
}

void GridTable::updateGeometries() {
  QTableView::updateGeometries();
  emit Moved();
}

bool GridTable::focusNextPrevChild(bool) {
  return false;  // Tab moves the cell cursor
}

// The inherited one repaints the whole view; a run marks another row several times a second.
void GridTable::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                            const QList<int>& roles) {
  Q_UNUSED(roles);
  const int top = rowViewportPosition(topLeft.row());
  const int bottom = rowViewportPosition(bottomRight.row()) + rowHeight(bottomRight.row());
  viewport()->update(QRect(0, top, viewport()->width(), bottom - top) & viewport()->rect());
  if (QAccessible::isActive()) {
    QAccessibleTableModelChangeEvent event(this, QAccessibleTableModelChangeEvent::DataChanged);
    event.setFirstRow(topLeft.row());
    event.setFirstColumn(topLeft.column());
    event.setLastRow(bottomRight.row());
    event.setLastColumn(bottomRight.column());
    QAccessible::updateAccessibility(&event);
  }
}

}  // namespace corlune
