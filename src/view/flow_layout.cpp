#include "view/flow_layout.h"

#include <algorithm>

#include <QWidget>

namespace corlune {

namespace {

constexpr int kRowGap = 4;  // pixels between two rows, at most

}  // namespace

FlowLayout::FlowLayout(QWidget* parent, int spacing, Items items) : QLayout(parent), kind_(items) {
  setContentsMargins(0, 0, 0, 0);
  setSpacing(spacing);
}

FlowLayout::~FlowLayout() = default;

void FlowLayout::addItem(QLayoutItem* item) {
  items_.emplace_back(item);
}

QLayoutItem* FlowLayout::itemAt(int index) const {
  return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)].get() : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
  if (index < 0 || index >= count()) return nullptr;
  const auto place = items_.begin() + index;
  QLayoutItem* item = place->release();
  items_.erase(place);
  return item;
}

QSize FlowLayout::sizeHint() const {
  QSize size(-spacing(), 0);
  for (const auto& item : items_) {
    if (item->isEmpty()) continue;
    const QSize own = item->sizeHint();
    size = {size.width() + own.width() + spacing(), std::max(size.height(), own.height())};
  }
  return size.expandedTo(minimumSize());
}

QSize FlowLayout::minimumSize() const {
  QSize size;
  for (const auto& item : items_) {
    if (!item->isEmpty()) size = size.expandedTo(item->minimumSize());
  }
  return size;
}

void FlowLayout::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  Place(rect, true);
}

// What `item` gets where one row has `width`.
QSize FlowLayout::SizeIn(int width, QLayoutItem& item) const {
  QSize size = item.sizeHint();
  if (kind_ == Items::Keep) {
    size.setWidth(std::min(size.width(), width));
    if (item.hasHeightForWidth()) size.setHeight(item.heightForWidth(size.width()));
    return size;
  }
  int wanted = -spacing();
  int least = -spacing();
  for (const auto& each : items_) {
    if (each->isEmpty()) continue;
    wanted += each->sizeHint().width() + spacing();
    least += each->minimumSize().width() + spacing();
  }
  if (wanted > width && least <= width) {
    const int own = size.width() - item.minimumSize().width();
    size.setWidth(item.minimumSize().width() + own * (width - least) / (wanted - least));
  }
  return size;
}

int FlowLayout::Place(const QRect& rect, bool apply) const {
  // A row is placed when it is full, so that lower items can stand at its bottom line.
  std::vector<QLayoutItem*> row;
  int x = rect.x();
  int y = rect.y();
  int rowHeight = 0;
  const auto finishRow = [&] {
    int left = rect.x();
    for (QLayoutItem* item : row) {
      const QSize size = SizeIn(rect.width(), *item);
      if (apply) item->setGeometry({QPoint(left, y + rowHeight - size.height()), size});
      left += size.width() + spacing();
    }
    row.clear();
  };
  for (const auto& item : items_) {
    if (item->isEmpty()) continue;
    const QSize size = SizeIn(rect.width(), *item);
    if (!row.empty() && x + size.width() > rect.x() + rect.width()) {
      finishRow();
      x = rect.x();
      y += rowHeight + std::min(spacing(), kRowGap);
      rowHeight = 0;
    }
    row.push_back(item.get());
    x += size.width() + spacing();
    rowHeight = std::max(rowHeight, size.height());
  }
  finishRow();
  return y + rowHeight - rect.y();
}

}  // namespace corlune
