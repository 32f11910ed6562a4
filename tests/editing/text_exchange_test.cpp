// Blocks as text: clipboard and CSV.
#include <gtest/gtest.h>

#include "editing/table_text.h"
#include "editing_rig.h"

namespace corlune {
namespace {

using testing::Channel;
using testing::Common;
using testing::EditingRig;
using testing::kColAmplitude;
using testing::kColFrequency;
using testing::kColOffset;
using testing::kColRange;
using testing::kColWaveform;

TEST(TableText, Quoting) {
  struct Row {
    const char* text;
    const char* cells;  // "|" between cells, "/" between rows
  };
  const Row rows[] = {
      // clang-format off
      {"a,b\r\nc,d\r\n", "a|b/c|d"},      {"a,b\nc", "a|b/c"},      {"a\rb", "a/b"},
      {"\"a,b\",\"c\"\"d\"", "a,b|c\"d"}, {"\"a\nb\",c", "a\nb|c"}, {"a\"b,c", "a\"b|c"},
      {",,", "||"},                       {"\n\na\n\n", "a"},       {"\xEF\xBB\xBFx", "x"},
      {"", ""},
      // clang-format on
  };
  for (const Row& row : rows) {
    std::string cells;
    for (const TableRow& line : ParseTable(row.text, ',', {10, 10}).Rows) {
      if (!cells.empty()) cells += '/';
      for (std::size_t i = 0; i < line.Cells.size(); ++i) cells += (i > 0 ? "|" : "") + line.Cells[i];
    }
    EXPECT_EQ(cells, row.cells) << row.text;
  }
  EXPECT_EQ(ParseTable("a\n\"b", ',', {10, 10}).Problem, TableProblem::OpenQuote);
  EXPECT_EQ(ParseTable("a\n\"b", ',', {10, 10}).Line, 2U);
  EXPECT_EQ(ParseTable("a\nb\nc", ',', {2, 10}).Problem, TableProblem::TooLarge);
  EXPECT_EQ(ParseTable("a,b,c", ',', {2, 2}).Problem, TableProblem::TooLarge);
  EXPECT_EQ(ParseTable(std::string(1U << 16U, 'x'), ',', {2, 2}).Problem, TableProblem::TooLarge);
}

TEST(ClipboardText, RoundTrip) {
  EditingRig rig(3);
  rig.Enter(Common(1, kGridStepTime), "0.25");
  rig.editor->ChooseOption(Common(3, kGridJumpTo), kSwitchOn);
  rig.editor->Choose(Common(2, kGridStepTerm), 1);
  rig.Select(GridArea::Common, 0, 1, 3, 1, 9);
  const std::string text = rig.editor->CopyText();
  EXPECT_EQ(text.substr(0, text.find('\n')),
            "0.25\tOFF\t- - - -\t- - - -\t- - - -\t- - - -\t- - - -\tCONT\t0");
  EditingRig other(3);
  other.Select(GridArea::Common, 0, 1, 1, 1, 1);
  EXPECT_EQ(other.IdOf(other.editor->PasteText(text)), 0);
  EXPECT_EQ(other.sequence->Steps, rig.sequence->Steps);
  EXPECT_FALSE(other.editor->PasteText(text).Changed) << "the same again changes nothing";
}

TEST(ClipboardText, PasteChecksLikeTyping) {
  struct Row {
    const char* name;
    const char* text;
    int message;
    const char* cells;  // step time, auto hold and stop phase of steps 2 and 3
  };
  const Row rows[] = {
      {"tabs", "2\tON\t45\n3\toff\t- - - -\n", 0, "2 ON 45 / 3 OFF - - - -"},
      {"commas", "2,ON\r\n3,OFF", 0, "2 ON - - - - / 3 OFF - - - -"},
      {"a comma beside a tab is text", "2,5\tON", 9108, "1 OFF - - - - / 1 OFF - - - -"},
      {"one cell fills the selection", "7", 0, "7 OFF - - - - / 7 OFF - - - -"},
      {"full-width", "２．５", 0, "2.5 OFF - - - - / 2.5 OFF - - - -"},
      {"second cell refused", "2\n0", 9105, "1 OFF - - - - / 1 OFF - - - -"},
      {"unknown choice", "2\tMAYBE", 9108, "1 OFF - - - - / 1 OFF - - - -"},
      {"too many rows", "1\n2\n3", 9555, "1 OFF - - - - / 1 OFF - - - -"},
      {"too many columns", "1\t1\t1\t1\t1\t1\t1\t1\t1\t1", 9555, "1 OFF - - - - / 1 OFF - - - -"},
      {"open quotation mark", "\"1", 9557, "1 OFF - - - - / 1 OFF - - - -"},
      {"empty", "", 0, "1 OFF - - - - / 1 OFF - - - -"},
      {"control characters", "\x01\x02", 9108, "1 OFF - - - - / 1 OFF - - - -"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EditingRig rig(3);
    rig.Select(GridArea::Common, 0, 2, 3, 1, 1);
    EXPECT_EQ(rig.IdOf(rig.editor->PasteText(row.text)), row.message);
    const auto cells = [&](int step) {
      return rig.Text(Common(step, 1)) + " " + rig.Text(Common(step, 2)) + " " + rig.Text(Common(step, 3));
    };
    EXPECT_EQ(cells(2) + " / " + cells(3), row.cells);
    EXPECT_EQ(rig.editor->CanUndo(), row.message == 0 && *row.text != '\0');
  }
  EditingRig rig(3);
  rig.Select(GridArea::Common, 0, 2, 3, 1, 1);
  rig.editor->EnterStartStep("11");
  EXPECT_EQ(rig.editor->PasteText("2\tON\t400").Message->Text,
            "Step 12, Stop Phs[deg]: Input value Error!  Input value 400  Range of Input 0-360");
}

TEST(ClipboardText, AnEmptyCellOfAColumnKeepsItsRow) {
  EditingRig rig(4);
  rig.Select(GridArea::Sequence, 0, 1, 1, kColFrequency, kColFrequency);
  EXPECT_EQ(rig.IdOf(rig.editor->PasteText("\r\n50\r\n\r\n70\r\n\r\n")), 0);
  const auto frequency = [&](int row) { return rig.Text(Channel(0, row, kColFrequency)); };
  EXPECT_EQ(frequency(1) + " " + frequency(2) + " " + frequency(3) + " " + frequency(4), "1000 50 1000 70");
  rig.Select(GridArea::Common, 0, 1, 1, kGridStepTime, kGridStepTime);
  EXPECT_EQ(rig.IdOf(rig.editor->PasteText("2\n\n4")), 9108) << "a step without a time";
  EXPECT_EQ(rig.last.Message->Text.substr(0, 8), "Step 2, ");
  EXPECT_EQ(rig.IdOf(rig.editor->PasteText("2\n\n\n\n5")), 9555);
  EXPECT_EQ(rig.IdOf(rig.editor->PasteText(std::string(1U << 16U, '\n'))), 0);
}

TEST(ClipboardText, WaveformAndRangeComeFirst) {
  EditingRig rig(2);
  rig.Select(GridArea::Sequence, 0, 1, 1, kColWaveform, kColWaveform);
  const std::string row = "SQU\t- - - -\t9000000\t10\tNORM PFS\t-5\t0\t30\tOFF";
  EXPECT_EQ(rig.IdOf(rig.editor->PasteText(row)), 9110) << "10 Vp-p in the half range are 20 Vp-p inside";
  EXPECT_EQ(rig.last.Message->Text.substr(0, 8), "Step 1, ");
  EXPECT_EQ(rig.IdOf(rig.editor->PasteText("SQU\t- - - -\t9000000\t5\tNORM PFS\t-5\t0\t30\tOFF")), 0);
  EXPECT_EQ(rig.Cell(0, 1, kSlotAmplitude).Value, 10);
  EXPECT_EQ(rig.editor->CopyText(), "SQU\n");
  EXPECT_EQ(rig.IdOf(rig.editor->PasteText("DC\t\t5")), 9108) << "DC has no frequency";
  EXPECT_EQ(rig.Text(Channel(0, 1, kColWaveform)), "SQU");
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

TEST(Csv, RoundTrip) {
  EditingRig rig(4);
  rig.Enter(Common(1, kGridStepTime), "0.25");
  rig.editor->ChooseOption(Common(3, kGridJumpTo), kSwitchOn);
  rig.editor->Choose(Channel(1, 2, kColWaveform), kWaveUser);
  rig.Enter(Channel(1, 2, testing::kColArb), "77");
  rig.editor->Choose(Channel(0, 3, kColRange), 2);
  rig.Enter(Channel(0, 3, kColAmplitude), "4");
  rig.editor->ChooseOption(Channel(0, 3, kColFrequency), 2);
  rig.Enter(testing::Branch(4, 2), "3");
  const std::string csv = rig.editor->ExportCsv();
  EXPECT_EQ(csv.substr(0, 66), "Step,Step Time [s],Auto Hold,Stop Phs[deg],Event Branch,State Bran");
  EXPECT_NE(csv.find(",Ch1 Frequency [Hz],Ch1 Frequency Mode,"), std::string::npos);
  for (const int steps : {0, 2, 6}) {
    EditingRig other(steps);
    other.Step(7).AutoHold = 1;  // left in a slot behind the last step
    other.editor->ImportCsv("Step Time [s]\n1\n1\n1\n1\n1\n1\n1\n");
    EXPECT_EQ(other.Step(7).AutoHold, 0) << "columns that the file lacks";
    other.editor->Undo();
    EXPECT_EQ(other.IdOf(other.editor->ImportCsv(csv)), 0);
    EXPECT_EQ(other.editor->ExportCsv(), csv);
    EXPECT_EQ(other.Cell(0, 3, kSlotAmplitude).Value, 8);
    EXPECT_EQ(other.Cell(0, 3, kSlotFrequency).ChangeMode, kModeSweep);
    other.editor->Undo();
    EXPECT_EQ(other.sequence->StepCount, steps);
  }
}

TEST(Csv, ErrorsNameTheirPlace) {
  EditingRig source(3);
  const std::string good = source.editor->ExportCsv();
  const std::string first = "1,1,OFF,";
  struct Row {
    const char* name;
    std::string text;
    const char* message;
  };
  const Row rows[] = {
      {"refused value", Replaced(good, "\r\n2,1,OFF,", "\r\n2,x,OFF,"),
       "Line 3, column Step Time [s]: Input value Error!"},
      {"out of range", Replaced(good, ",1000,CONST,", ",1E9,CONST,"),
       "Line 2, column Ch1 Frequency [Hz]: Input value Error!  Input value 1E9  Range of Input "
       "0.000001-20000000"},
      {"unknown mode", Replaced(good, ",1000,CONST,", ",1000,HOLD,"),
       "Line 2, column Ch1 Frequency Mode: Input value Error!"},
      {"unknown column", Replaced(good, "Auto Hold", "Auto Pilot"),
       "The column \"Auto Pilot\" is not known."},
      {"column twice", Replaced(good, "Auto Hold", "Step"), "The column \"Step\" occurs twice."},
      {"field missing", Replaced(good, "\r\n3,1,OFF,", "\r\n3,1,"),
       "Line 4 does not have as many fields as the header."},
      {"header only", good.substr(0, good.find('\n')), "The text holds no steps."},
      {"empty", "", "The text holds no steps."},
      {"open quotation mark", good + "\"", "A quotation mark is not closed (line 5)."},
      {"binary", std::string(1U << 20U, '\0'), "Line 1 does not have as many fields as the header."},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EditingRig rig(2);
    const SequenceData before = *rig.sequence;
    const EditOutcome outcome = rig.editor->ImportCsv(row.text);
    ASSERT_TRUE(outcome.Message);
    EXPECT_EQ(outcome.Message->Text, row.message);
    EXPECT_TRUE(*rig.sequence == before);
    EXPECT_FALSE(rig.state.Modified);
  }
  std::string many = "Step\r\n";
  for (int i = 0; i < 257; ++i) many += "1\r\n";
  EXPECT_EQ(source.editor->ImportCsv(many).Message->Text, "The sequence cannot hold more than 256 steps.");
}

TEST(Csv, JapaneseHeadersCarryAByteOrderMark) {
  EditingRig rig(1);
  const MessageCatalogue japanese(0);
  SequenceEditor editor(rig.state, rig.definition, *rig.sequence, japanese, rig.prompts);
  const std::string csv = editor.ExportCsv();
  EXPECT_EQ(csv.substr(0, 3), "\xEF\xBB\xBF");
  EXPECT_TRUE(editor.ImportCsv(csv).Accepted);
}

}  // namespace
}  // namespace corlune
