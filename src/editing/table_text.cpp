#include "editing/table_text.h"

#include <utility>

namespace corlune {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

class TableParser {
 public:
  TableParser(std::string_view text, char separator, const TableLimits& limits, BlankLines blankLines)
      : text_(text), separator_(separator), limits_(limits), blankLines_(blankLines) {}

  ParsedTable Parse() {
    while (at_ < text_.size() && table_.Problem == TableProblem::None) ReadRow();
    return std::move(table_);
  }

 private:
  void Fail(TableProblem problem) {
    table_.Problem = problem;
    table_.Line = line_;
  }
  bool AtLineEnd() const { return text_[at_] == '\r' || text_[at_] == '\n'; }
  void SkipLineEnd() {
    if (at_ + 1 < text_.size() && text_[at_] == '\r' && text_[at_ + 1] == '\n') ++at_;
    ++at_;
    ++line_;
  }
  void ReadRow() {
    TableRow row;
    row.Line = line_;
    while (true) {
      std::string cell;
      if (!ReadCell(cell)) return;
      row.Cells.push_back(std::move(cell));
      if (row.Cells.size() > limits_.Columns) return Fail(TableProblem::TooLarge);
      if (at_ >= text_.size()) break;
      if (AtLineEnd()) {
        SkipLineEnd();
        break;
      }
      ++at_;  // the separator
    }
    if (row.Cells.size() == 1 && row.Cells[0].empty()) {
      if (blankLines_ == BlankLines::Rows) ++blank_;
      return;
    }
    if (table_.Rows.size() + blank_ >= limits_.Rows) return Fail(TableProblem::TooLarge);
    for (; blank_ > 0; --blank_) table_.Rows.push_back({row.Line - blank_, {std::string()}});
    table_.Rows.push_back(std::move(row));
  }
  bool Append(std::string& cell, char c) {
    if (cell.size() >= kLongestTableCell) {
      Fail(TableProblem::TooLarge);
      return false;
    }
    cell += c;
    return true;
  }
  // A quotation mark begins a quoted part only at the start of a cell.
  bool ReadCell(std::string& cell) {
    if (at_ < text_.size() && text_[at_] == '"' && !ReadQuoted(cell)) return false;
    while (at_ < text_.size() && text_[at_] != separator_ && !AtLineEnd()) {
      if (!Append(cell, text_[at_++])) return false;
    }
    return true;
  }
  bool ReadQuoted(std::string& cell) {
    const std::size_t opened = line_;
    for (++at_; at_ < text_.size(); ++at_) {
      const char c = text_[at_];
      if (c == '"') {
        const bool doubled = at_ + 1 < text_.size() && text_[at_ + 1] == '"';
        if (!doubled) {
          ++at_;
          return true;
        }
        ++at_;
      }
      if (c == '\n') ++line_;
      if (!Append(cell, c)) return false;
    }
    line_ = opened;
    Fail(TableProblem::OpenQuote);
    return false;
  }

  std::string_view text_;
  char separator_;
  TableLimits limits_;
  BlankLines blankLines_;
  std::size_t blank_ = 0;  // lines since the last row
  std::size_t at_ = 0;
  std::size_t line_ = 1;
  ParsedTable table_;
};

}  // namespace

ParsedTable ParseTable(std::string_view text, char separator, const TableLimits& limits,
                       BlankLines blankLines) {
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());
  return TableParser(text, separator, limits, blankLines).Parse();
}

void AppendTableCell(std::string& out, std::string_view cell, char separator) {
  const bool quoted = cell.find_first_of("\"\r\n") != std::string_view::npos ||
                      cell.find(separator) != std::string_view::npos;
  if (!quoted) {
    out += cell;
    return;
  }
  out += '"';
  for (const char c : cell) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

}  // namespace corlune
