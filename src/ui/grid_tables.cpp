#include "ui/grid_tables.h"

#include <algorithm>

namespace corlune {

std::array<GridTable*, MAX_CHANNELS + 2> GridTables::All() const {
  return {Common, Channels[0], Channels[1], Branch};
}

std::array<GridTable*, MAX_CHANNELS + 1> GridTables::OfSteps() const {
  return {Common, Channels[0], Channels[1]};
}

GridTable& GridTables::Of(GridArea area, int channel) const {
  switch (area) {
    case GridArea::Sequence:
      return *Channels[static_cast<std::size_t>(std::clamp(channel, 0, MAX_CHANNELS - 1))];
    case GridArea::Branch:
      return *Branch;
    case GridArea::Common:
      break;
  }
  return *Common;
}

void GridTables::Refresh(const EditOutcome& outcome, int rowHeight) const {
  if (outcome.WholeWindow) {
    Reset(rowHeight);
    return;
  }
  for (GridTable* table : All()) {
    GridModel& model = table->Model();
    model.SyncRows();
    const bool every = outcome.RowColorsChanged || outcome.CountChanged || model.Area() == GridArea::Branch;
    if (every) {
      model.RowsChanged(1, model.rowCount());
    } else {
      model.RowsChanged(outcome.FirstRow, outcome.LastRow);
    }
  }
}

void GridTables::Reset(int rowHeight) const {
  for (GridTable* table : All()) table->Model().Reset();
  for (GridTable* table : All()) table->LayOut(rowHeight);
}

}  // namespace corlune
