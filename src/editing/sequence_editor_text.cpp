// Text in and out of the SequenceEditor: clipboard text and CSV.
#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "core/ascii_case.h"
#include "editing/csv_columns.h"
#include "editing/param_rules.h"
#include "editing/sequence_editor.h"
#include "editing/table_text.h"
#include "sequence/defaults.h"

namespace corlune {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kLongestName = 40;  // characters of a foreign header that a message repeats

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80U; });
}

EntryResult StoreMode(const GridViews& views, SequenceData& sequence, const CsvColumn& column, int step,
                      std::string_view text) {
  const std::string plain = PlainEntry(text);
  const int param = column.Column - 1;
  if (plain == kNotInUseText || plain.empty()) return std::nullopt;
  const ParamDef& definition = ChannelColumn(views.Definition(), param);
  const std::vector<std::int16_t> modes = ChangeModesOf(definition);
  for (std::size_t i = 0; i < modes.size(); ++i) {
    if (!EqualIgnoringCase(definition.ModeNames[i], plain)) continue;
    sequence.Cell(column.Channel, step, param).ChangeMode = modes[i];
    return std::nullopt;
  }
  return EntryRefusal{TextId::InputError, {}};
}

EntryResult StoreCsvCell(const GridViews& views, SequenceData& sequence, const CsvColumn& column, int step,
                         std::string_view text) {
  if (column.Kind == CsvColumn::Content::StepNumber) return std::nullopt;
  if (column.Kind == CsvColumn::Content::Mode) return StoreMode(views, sequence, column, step, text);
  switch (column.Area) {
    case GridArea::Common:
      return StoreCommonText(views, sequence, step, column.Column, text, EntryMode::Block);
    case GridArea::Sequence:
      return StoreChannelText(views, sequence, column.Channel, step, column.Column - 1, text,
                              EntryMode::Block);
    case GridArea::Branch:
      break;
  }
  return StoreBranchText(views, sequence, step, column.BranchRow, text);
}

// Waveform, then polarity and range come first: the other cells of a step depend on them.
int StoringOrder(const CsvColumn& column) {
  if (column.Area != GridArea::Sequence || column.Kind != CsvColumn::Content::Value) return 2;
  if (column.Column - 1 == kSlotWaveform) return 0;
  return column.Column - 1 == kSlotPolarityRange ? 1 : 2;
}

// A column of the text and where it goes.
struct MappedColumn {
  std::size_t Field = 0;
  CsvColumn Target;
};

}  // namespace

std::string SequenceEditor::CopyText() const {
  std::string text;
  const std::optional<GridBlock> block = Selection();
  if (!block) return text;
  for (int row = block->FirstRow; row <= block->LastRow; ++row) {
    for (int column = block->FirstColumn; column <= block->LastColumn; ++column) {
      if (column > block->FirstColumn) text += '\t';
      const CellPlace place{block->Area, block->Channel, GridRow{row}, column, 0};
      AppendTableCell(text, views_.Cell(place).Text, '\t');
    }
    text += '\n';
  }
  return text;
}

// Stores one row of texts from the block's first column on.
std::optional<EditMessage> SequenceEditor::StoreBlockText(const GridBlock& block,
                                                          const std::vector<std::string>& cells, int step) {
  const auto store = [&](int column) -> std::optional<EditMessage> {
    const std::string& text = cells[static_cast<std::size_t>(column - block.FirstColumn)];
    const CellPlace place{block.Area, block.Channel, RowOf(StepIndex{step}), column, 0};
    const EntryResult result =
        block.Area == GridArea::Common
            ? StoreCommonText(views_, sequence_, step, column, text, EntryMode::Block)
            : StoreChannelText(views_, sequence_, block.Channel, step, column - 1, text, EntryMode::Block);
    if (!result) return std::nullopt;
    return CellMessage(*result, place);
  };
  const int end = block.FirstColumn + static_cast<int>(cells.size());
  const int early = kSlotPolarityRange + 1;
  const bool earlyFirst = block.Area == GridArea::Sequence && early > block.FirstColumn && early < end;
  for (int column = block.FirstColumn; column < end; ++column) {
    // Amplitudes are shown by the range of the step, so it is set directly after the waveform.
    if (earlyFirst && column == std::max(block.FirstColumn, kSlotWaveform + 2)) {
      if (auto refused = store(early)) return refused;
    }
    if (earlyFirst && column == early) continue;
    if (auto refused = store(column)) return refused;
  }
  return std::nullopt;
}

EditOutcome SequenceEditor::PasteText(std::string_view text) {
  const std::optional<GridBlock> selected = Selection();
  if (!selected) return {};
  GridBlock target = *selected;
  const int lastColumn = (target.Area == GridArea::Common ? kCommonColumns : views_.ChannelColumns()) - 1;
  const TableLimits limits{static_cast<std::size_t>(sequence_.StepCount - target.FirstRow + 1),
                           static_cast<std::size_t>(lastColumn - target.FirstColumn + 1)};
  const char separator = text.find('\t') != std::string_view::npos ? '\t' : ',';
  const ParsedTable table = ParseTable(text, separator, limits, BlankLines::Rows);
  if (table.Problem != TableProblem::None) {
    return EditOutcome::Refused(
        Message(table.Problem == TableProblem::OpenQuote ? TextId::OpenQuote : TextId::TextTooLarge,
                {std::to_string(table.Line)}));
  }
  if (table.Rows.empty()) return {};
  const bool single = table.Rows.size() == 1 && table.Rows[0].Cells.size() == 1;
  const int columns = target.LastColumn - target.FirstColumn + 1;
  const auto width = static_cast<std::size_t>(columns);
  const std::vector<std::string> repeated(single ? width : 0, table.Rows[0].Cells[0]);
  if (!single) target.LastRow = target.FirstRow + static_cast<int>(table.Rows.size()) - 1;
  target.LastColumn = lastColumn;
  const auto before = std::make_unique<SequenceData>(sequence_);
  return Perform(TextId::EditPasteText, [&]() -> std::optional<EditMessage> {
    for (int row = target.FirstRow; row <= target.LastRow; ++row) {
      const auto& cells =
          single ? repeated : table.Rows[static_cast<std::size_t>(row - target.FirstRow)].Cells;
      if (auto refused = StoreBlockText(target, cells, row - 1)) return refused;
    }
    return SettleBlock(target, *before);
  });
}

std::string SequenceEditor::ExportCsv() const {
  const std::vector<CsvColumn> columns = CsvColumns(views_);
  std::string text;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (i > 0) text += ',';
    AppendTableCell(text, columns[i].Header, ',');
  }
  text += "\r\n";
  for (int row = 1; row <= sequence_.StepCount; ++row) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) text += ',';
      AppendTableCell(text, CsvText(views_, columns[i], GridRow{row}), ',');
    }
    text += "\r\n";
  }
  // Spreadsheets take a file without the mark for the system's code page.
  return IsAscii(text) ? text : std::string(kByteOrderMark) + text;
}

EditOutcome SequenceEditor::ImportCsv(std::string_view text) {
  const std::vector<CsvColumn> columns = CsvColumns(views_);
  const auto maxSteps = static_cast<std::size_t>(views_.MaxSteps());
  const ParsedTable table = ParseTable(text, ',', {maxSteps + 1, columns.size()});
  const auto refuse = [&](TextId id, const std::vector<std::string>& arguments) {
    return EditOutcome::Refused(Message(id, arguments));
  };
  if (table.Problem == TableProblem::OpenQuote) {
    return refuse(TextId::OpenQuote, {std::to_string(table.Line)});
  }
  if (table.Problem == TableProblem::TooLarge && table.Rows.size() > maxSteps) {
    return refuse(TextId::TooManySteps, {std::to_string(maxSteps)});
  }
  if (table.Problem == TableProblem::TooLarge) {
    return refuse(TextId::FieldCountDiffers, {std::to_string(table.Line)});
  }
  if (table.Rows.size() < 2) return refuse(TextId::TextWithoutSteps, {});

  std::vector<MappedColumn> mapped;
  for (std::size_t field = 0; field < table.Rows[0].Cells.size(); ++field) {
    const std::string header = PlainEntry(table.Rows[0].Cells[field]);
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const CsvColumn& column) {
      return EqualIgnoringCase(PlainEntry(column.Header), header);
    });
    if (found == columns.end()) return refuse(TextId::UnknownColumn, {header.substr(0, kLongestName)});
    const bool twice = std::any_of(mapped.begin(), mapped.end(), [&](const MappedColumn& other) {
      return other.Target.Header == found->Header;
    });
    if (twice) return refuse(TextId::ColumnTwice, {header});
    mapped.push_back({field, *found});
  }
  std::stable_sort(mapped.begin(), mapped.end(), [](const MappedColumn& a, const MappedColumn& b) {
    return StoringOrder(a.Target) < StoringOrder(b.Target);
  });
  for (const TableRow& row : table.Rows) {
    if (row.Cells.size() != mapped.size()) {
      return refuse(TextId::FieldCountDiffers, {std::to_string(row.Line)});
    }
  }

  const auto lineMessage = [&](std::size_t line, const std::string& column, const EntryRefusal& refusal) {
    EditMessage message = Message(TextId::LineMessage, {std::to_string(line), column, Message(refusal).Text});
    message.Id = refusal.Id;
    return message;
  };
  return Perform(TextId::EditImportCsv, [&]() -> std::optional<EditMessage> {
    const int oldCount = sequence_.StepCount;
    const int count = static_cast<int>(table.Rows.size()) - 1;
    sequence_.StepCount = static_cast<std::int16_t>(count);
    for (int step = oldCount; step < count; ++step) ResetStep(sequence_, step, definition_);
    for (int step = 0; step < count; ++step) {
      const TableRow& row = table.Rows[static_cast<std::size_t>(step) + 1];
      const std::array<StepCells, MAX_CHANNELS> before{CellsOf(sequence_, 0, step),
                                                       CellsOf(sequence_, 1, step)};
      for (const MappedColumn& column : mapped) {
        const EntryResult result =
            StoreCsvCell(views_, sequence_, column.Target, step, row.Cells[column.Field]);
        if (result) return lineMessage(row.Line, column.Target.Header, *result);
      }
      for (int channel = 0; channel < views_.ChannelGrids(); ++channel) {
        int param = 0;
        const EntryResult result = SettleChannelStep(views_, sequence_, channel, step,
                                                     before[static_cast<std::size_t>(channel)], &param);
        if (!result) continue;
        const CellPlace place{GridArea::Sequence, channel, RowOf(StepIndex{step}), param + 1, 0};
        return lineMessage(row.Line, views_.TabCaption(channel) + " " + ColumnName(place), *result);
      }
    }
    return std::nullopt;
  });
}

}  // namespace corlune
