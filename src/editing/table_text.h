// TableText: rows of cells as delimited text (RFC 4180 quoting, any line ends).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace corlune {

struct TableRow {
  std::size_t Line = 1;  // 1-based, where the row begins
  std::vector<std::string> Cells;
};

// Blank lines at the end never count. Before it, a column copied from a spreadsheet has one for each empty
// cell, while in a file they mean nothing.
enum class BlankLines { LeftOut, Rows };

enum class TableProblem { None, TooLarge, OpenQuote };

struct ParsedTable {
  TableProblem Problem = TableProblem::None;
  std::size_t Line = 1;  // of the problem
  std::vector<TableRow> Rows;
};

struct TableLimits {
  std::size_t Rows = 0;
  std::size_t Columns = 0;
};

inline constexpr std::size_t kLongestTableCell = 4096;  // bytes

// Stops at the first row, column or cell beyond the limits, however long the text is. A byte-order mark is
// dropped.
ParsedTable ParseTable(std::string_view text, char separator, const TableLimits& limits,
                       BlankLines blankLines = BlankLines::LeftOut);

// Appends a cell, quoted when it has to be.
void AppendTableCell(std::string& out, std::string_view cell, char separator);

}  // namespace corlune
