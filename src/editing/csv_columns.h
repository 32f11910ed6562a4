// CsvColumns: the columns of an exported table and their headers.
#pragma once

#include <string>
#include <vector>

#include "editing/grid_views.h"

namespace corlune {

struct CsvColumn {
  enum class Content { StepNumber, Value, Mode };
  Content Kind = Content::Value;
  GridArea Area = GridArea::Common;
  int Channel = 0;
  int Column = 0;     // of the grid; Branch: always 1
  int BranchRow = 0;  // Branch: 1..5
  std::string Header;
};

// Step number, the common columns, each channel's parameters with their change modes, the branch steps.
std::vector<CsvColumn> CsvColumns(const GridViews& views);
// Text of a column for a step row.
std::string CsvText(const GridViews& views, const CsvColumn& column, GridRow row);

}  // namespace corlune
