#include "ui/grid_split.h"

#include <algorithm>

#include "ui/channel_tabs.h"

namespace corlune {

GridSplit::GridSplit(QWidget* top, const GridTables& tables, QWidget* parent)
    : ShareSplit(Qt::Vertical, parent), tables_(tables) {
  setObjectName(QStringLiteral("SplitGrids"));
  addWidget(top);
  addWidget(tables_.Tabs);
}

int GridSplit::TopExtra() const {
  return tables_.Common->HeightBesideRows();
}

int GridSplit::BottomExtra() const {
  int most = 0;
  for (const GridTable* table : tables_.Channels) {
    if (table->isVisibleTo(tables_.Tabs)) most = std::max(most, table->HeightBesideRows());
  }
  return tables_.Tabs->CaptionHeight() + most;
}

int GridSplit::HeightFor(int rows) const {
  return TopExtra() + BottomExtra() + handleWidth() + 2 * rows * tables_.Common->RowHeight();
}

int GridSplit::FirstPart(int length) const {
  const int row = std::max(tables_.Common->RowHeight(), 1);
  return TopExtra() + std::max(length - TopExtra() - BottomExtra(), 0) / (2 * row) * row;
}

}  // namespace corlune
