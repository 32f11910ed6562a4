// Every place that takes a stored value to its base unit or shows it in the unit of its column.
#include "sequence/units.h"

#include <gtest/gtest.h>

#include "compile/read_back.h"
#include "compile/sequence_text.h"
#include "core/numbers.h"
#include "graph/graph_picture.h"
#include "sequence/run_times.h"
#include "sequence/start_values.h"
#include "tests/editing/editing_rig.h"

namespace corlune {
namespace {

using testing::Channel;
using testing::Common;
using testing::EditingRig;
using testing::kColFrequency;

struct UnitRow {
  const char* file;
  std::int16_t timeUnit;
  double stepTime;  // 0.5 s
  std::int16_t unit;
  double frequency;  // 5 kHz
  const char* timeHeader;
  const char* header;
  const char* timeText;
  const char* text;
  const char* refused;  // above 20 MHz
  const char* message;
  const char* tooLong;  // 10,001 s
};

constexpr const char* kShipped = CORLUNE_DATA "/Corlune_Std.ini";
constexpr const char* kLists = CORLUNE_TEST_DATA "/definitions/unit_lists.ini";

TEST(Units, EveryConsumerTakesTheSameBaseValue) {
  const UnitRow rows[] = {
      {kLists, 0, 500, 1, 5, "Step\nTime[ms]", "Frequency\nkHz", "500", "5", "30000", "0.000000001-20000",
       "10001000"},
      {kLists, 1, 0.5, 0, 5000, "Step\nTime[s]", "Frequency\nHz", "0.5", "5000", "30000000",
       "0.000001-20000000", "10001"},
      {kShipped, 0, 0.5, 1, 5, "Step\nTime", "Frequency\nHz", "0.5", "5000", "30000000", "0.000001-20000000",
       "10001"},
  };
  for (const UnitRow& row : rows) {
    SCOPED_TRACE(std::string(row.file) + row.timeHeader);
    ModelDefinition definition;
    ASSERT_EQ(ReadModelDefinition(row.file, "QM2220", false, definition), DefinitionLoad::Ok);
    definition.Common.Params[kColumnStepTime].UnitDefault = static_cast<std::int16_t>(1 - row.timeUnit);
    EditingRig rig(3, definition);
    SequenceData& sequence = *rig.sequence;
    rig.Step(1).TimeUnit = row.timeUnit;
    rig.Step(1).StepTime = row.stepTime;
    rig.Step(1).StopPhaseOn = 1;
    rig.Step(1).StopPhase = 360;
    rig.Cell(0, 1, kSlotFrequency).UnitIndex = row.unit;
    rig.Cell(0, 1, kSlotFrequency).Value = row.frequency;
    // The next step keeps the frequency, in the other unit.
    rig.Cell(0, 2, kSlotFrequency).UnitIndex = static_cast<std::int16_t>(1 - row.unit);
    rig.Cell(0, 2, kSlotFrequency).ChangeMode = kModeKeep;
    ComputeStartValues(sequence);
    const auto text = [&] {
      std::string lines;
      AppendSequenceText(lines, sequence, definition, "QM2220", 2);
      return lines;
    };
    const std::string sent = text();
    EXPECT_NE(sent.find("STEP#0=0.5,"), std::string::npos);
    EXPECT_NE(sent.find("STEP#2=1,"), std::string::npos) << "default";
    EXPECT_NE(sent.find("CHAN#0#1=SIN,1,NORM,FS,0,5000,CONS"), std::string::npos);
    EXPECT_NE(sent.find("CHAN#2#1=SIN,1,NORM,FS,0,1000,CONS"), std::string::npos) << "default";
    EXPECT_EQ(ComputeRunTimes(sequence, definition).Total, 2500);
    EXPECT_EQ(rig.Step(1).StepRunTime, 500.2);
    EXPECT_EQ(StepSpans(sequence, definition, TimeAxis::Time, StepLength::Entered)[0].EndTime, 500);
    EXPECT_EQ(StoredValue(definition, kSlotFrequency, rig.Cell(0, 2, kSlotFrequency)).To, 5000);
    EXPECT_EQ(NumberText(ValueInStep(sequence, definition, 0, 1, kSlotFrequency)->To), row.text);

    const GridViews& views = rig.editor->Views();
    EXPECT_EQ(
        rig.Enter(Channel(0, 1, kColFrequency), "600") + rig.Enter(Channel(0, 1, kColFrequency), row.text),
        0);
    EXPECT_EQ(views.CommonHeader(kGridStepTime), row.timeHeader);
    EXPECT_EQ(views.ChannelHeader(0, kColFrequency), row.header);
    EXPECT_EQ(rig.Text(Common(1, kGridStepTime)), row.timeText);
    EXPECT_EQ(rig.Text(Common(3, kGridStepTime)), row.stepTime == 500 ? "1000" : "1")
        << "stored in the other";
    EXPECT_EQ(rig.Text(Channel(0, 1, kColFrequency)), row.text);
    ASSERT_EQ(rig.Enter(Channel(0, 1, kColFrequency), row.refused), 9105);
    EXPECT_NE(rig.last.Message->Text.find(row.message), std::string::npos) << rig.last.Message->Text;
    EXPECT_EQ(rig.Enter(Common(1, kGridStepTime), row.tooLong), 9105);

    // Typing, text and CSV out and in, a copied block, a new and an initialized row, the values read back.
    EXPECT_EQ(rig.Enter(Channel(0, 2, kColFrequency), row.text), 0);
    EXPECT_EQ(rig.Text(Channel(0, 2, kColFrequency)), row.text);
    EXPECT_EQ(BaseValue(definition, kSlotFrequency, rig.Cell(0, 2, kSlotFrequency)), 5000);
    rig.editor->ChooseOption(Channel(0, 2, kColFrequency), 0);
    for (const GridArea area : {GridArea::Common, GridArea::Sequence}) {
      rig.Select(area, 0, 1, 1, 1, area == GridArea::Common ? 1 : 9);
      const std::string copied = rig.editor->CopyText();
      rig.editor->Copy();
      rig.Select(area, 0, 2, 2, 1, area == GridArea::Common ? 1 : 9);
      EXPECT_EQ(rig.IdOf(rig.editor->PasteText(copied)), 0);
      rig.Select(area, 0, 3, 3, 1, area == GridArea::Common ? 1 : 9);
      EXPECT_EQ(rig.IdOf(rig.editor->Paste()), 0);
    }
    EXPECT_EQ(ComputeRunTimes(sequence, definition).Total, 1500);
    EXPECT_NE(text().find("CHAN#2#1=SIN,1,NORM,FS,0,5000,CONS"), std::string::npos);
    const std::string edited = text();
    EXPECT_EQ(rig.IdOf(rig.editor->ImportCsv(rig.editor->ExportCsv())), 0);
    EXPECT_EQ(text(), edited);
    EXPECT_NE(rig.editor->ExportCsv().find(std::string(",") + row.timeText + ","), std::string::npos);
    rig.Select(GridArea::Sequence, 0, 1, 1, 1, 9);
    rig.editor->Initialize();
    rig.editor->InsertRow();
    EXPECT_EQ(views.CommonHeader(kGridStepTime), row.timeHeader) << "the inserted row keeps the unit";
    EXPECT_NE(text().find("STEP#0=1,"), std::string::npos);
    EXPECT_NE(text().find("CHAN#1#1=SIN,1,NORM,FS,0,1000,CONS"), std::string::npos);
    ReadSequenceText(edited, 2, definition, sequence);
    EXPECT_EQ(text(), edited);
    EXPECT_EQ(rig.Step(1).TimeUnit + rig.Cell(0, 1, kSlotFrequency).UnitIndex, 0);
  }
}

}  // namespace
}  // namespace corlune
