// GridTables: the tables of the window and what concerns all of them.
#pragma once

#include <array>

#include "editing/edit_outcome.h"
#include "editing/grid_place.h"
#include "ui/grid_table.h"

namespace corlune {

class ChannelTabs;

struct GridTables {
  GridTable* Common = nullptr;
  std::array<GridTable*, MAX_CHANNELS> Channels{};
  GridTable* Branch = nullptr;
  ChannelTabs* Tabs = nullptr;  // SSTab1, channel i is Channels[i]

  std::array<GridTable*, MAX_CHANNELS + 2> All() const;
  // Those with a row for each step.
  std::array<GridTable*, MAX_CHANNELS + 1> OfSteps() const;
  GridTable& Of(GridArea area, int channel) const;

  // Shows what an operation changed, with rows of `rowHeight` pixels.
  void Refresh(const EditOutcome& outcome, int rowHeight) const;
  // Shows everything anew.
  void Reset(int rowHeight) const;
};

}  // namespace corlune
