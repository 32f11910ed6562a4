// The form of the waveform dialog: which files are taken, where every waveform is, and what is left of it
// when the dialog is closed or cancelled.
#include "forms/waveform_form.h"

#include <gmock/gmock.h>

#include "sequence/defaults.h"
#include "support/samples.h"
#include "support/temp_folder.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct WaveformFormRig {
  WaveformFormRig() {
    ResetSequence(*sequence, definition);
    state.AppFolder = folder.Path();
    state.Online = 1;
    for (const char* name : {"a.txt", "b.txt", "c.txt"}) Write(name, 4096);
    sequence->StepCount = 2;
    sequence->Cell(0, 1, kSlotWaveform).Value = kWaveUser;
    sequence->Cell(0, 1, kSlotArbNumber).Value = 5;
  }
  std::string Write(const std::string& name, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "1,";
    return folder.Write(name, text);
  }
  WaveformForm Form() { return {*sequence, state, definition, facts, english}; }
  ArbFileEntry& Stored(int number) {
    return sequence->Channels.ArbFiles[static_cast<std::size_t>(number - 1)];
  }

  TempFolder folder;
  ModelDefinition definition = ShippedDefinition();
  AppState state = TwoChannelState();
  std::unique_ptr<SequenceData> sequence = std::make_unique<SequenceData>();
  WaveFacts facts;
  MessageCatalogue english{10000};
};

TEST(WaveformForm, AssignsToTheFollowingFreeNumbers) {
  WaveformFormRig rig;
  rig.Stored(6).FilePath = "c.txt";
  WaveformForm form = rig.Form();
  const std::string a = rig.folder.File("a.txt");
  const std::string b = rig.folder.File("b.txt");
  EXPECT_THAT(form.Assign(5, {a, b}).Numbers, ElementsAre(5, 7));
  EXPECT_THAT(form.Assign(6, {b}).Numbers, ElementsAre(6)) << "the one that was pointed at is replaced";
  struct Row {
    int first;
    std::vector<std::string> paths;
    const char* problem;
  };
  for (const Row& row : {Row{127, {a, b, a}, "left behind ARB 127 for: "},
                         Row{9, {rig.folder.File("none.txt")}, "There is no such file"},
                         Row{9, {rig.folder.Write("a.dat", "")}, "neither a .wdb nor a .txt"},
                         Row{9, {"/a\nb.txt"}, "cannot hold this path"}}) {
    EXPECT_THAT(form.Assign(row.first, row.paths).Problem, HasSubstr(row.problem));
  }
  EXPECT_EQ(form.Path(9), "");
  EXPECT_THAT(form.WithFile(AllArbNumbers()), ElementsAre(5, 6, 7, 127, 128));
  EXPECT_THAT(form.UsedWithFile(), ElementsAre(5));
  EXPECT_EQ(form.Row(5).UseSteps, "CH1: step 2");
  EXPECT_EQ(form.Row(6).Use, "");

  // What is in a file its row says, once it has been counted.
  form.Assign(9, {rig.Write("few.txt", 5000)});
  EXPECT_EQ(form.Row(9).Points, "counting");
  while (form.CountNext() != 0) continue;
  EXPECT_THAT(form.Row(9).Problem, HasSubstr("Values: 5000"));
  EXPECT_EQ(form.Row(5).Points, "4,096");
  EXPECT_TRUE(rig.Form().Row(5).Path == "- - - -") << "nothing before it is applied";
}

TEST(WaveformForm, TellsTheInstrumentsTruthWhetherAppliedOrNot) {
  WaveformFormRig rig;
  const std::string a = rig.folder.File("a.txt");
  for (const int number : {1, 2, 3, 4, 5}) {
    ArbFileEntry& entry = rig.Stored(number);
    if (number != 2) entry.FilePath = a;
    entry.ArrayForm = 1;
    entry.PointCount = number == 2 ? 8192 : 4096;
    entry.InInstrument = number != 1;
    entry.Transferred = number > 3;
    entry.Sent = StampOf(a);
  }
  rig.Stored(5).Sent.Time -= 1;
  WaveformForm form = rig.Form();
  const auto places = [&] {
    std::vector<WavePlace> all;
    for (int number = 1; number <= 6; ++number) all.push_back(form.Row(number).Place);
    return all;
  };
  using enum WavePlace;
  EXPECT_THAT(places(), ElementsAre(File, Instrument, NotSent, Both, Changed, Nowhere));
  EXPECT_EQ(form.Row(2).Points, "8,192");
  EXPECT_THAT(form.UsedToSend(), ElementsAre(5));

  // Another file, sent as a transfer would leave it; 4 is only renamed, and back again.
  form.Assign(3, {rig.folder.File("b.txt")});
  form.PrepareToSend({3});
  ArbFileEntry& sent = form.Instrument()[2];
  sent.Transferred = sent.InInstrument = sent.ArrayForm = 1;
  sent.PointCount = 4096;
  sent.Sent = StampOf(rig.folder.File("b.txt"));
  form.Assign(4, {rig.folder.File("b.txt")});
  EXPECT_THAT(places(), ElementsAre(File, Instrument, Both, NotSent, Changed, Nowhere));
  form.Assign(4, {a});
  form.RemoveFiles({5});
  EXPECT_THAT(places(), ElementsAre(File, Instrument, Both, Both, Instrument, Nowhere));
  rig.state.Online = 0;
  EXPECT_THAT(places(), ElementsAre(File, Nowhere, File, File, Nowhere, Nowhere));

  auto cancelled = std::make_unique<SequenceData>(*rig.sequence);
  form.KeepInstrument(*cancelled);
  const auto& dropped = cancelled->Channels.ArbFiles;
  EXPECT_EQ(dropped[2].FilePath, a);
  EXPECT_EQ(dropped[2].Transferred, 0) << "the instrument holds the other file";
  EXPECT_EQ(dropped[4], rig.Stored(5));
  form.ApplyTo(*rig.sequence);
  EXPECT_EQ(rig.Stored(3), sent);
  EXPECT_EQ(rig.Stored(5).FilePath, "");
  EXPECT_EQ(rig.Stored(5).PointCount, 4096) << "of what the instrument holds";
}

TEST(WaveformForm, ShowsTheMemoryThatAChannelNeeds) {
  WaveformFormRig rig;
  rig.sequence->Cell(1, 1, kSlotWaveform).Value = kWaveUser;
  rig.sequence->Cell(1, 1, kSlotArbNumber).Value = 6;
  std::string whole(352 + 1048576, '\0');
  WaveformForm form = rig.Form();
  form.Assign(6, {rig.folder.Write("whole.wdb", whole)});
  form.Assign(5, {rig.folder.File("a.txt")});
  while (form.CountNext() != 0) continue;
  EXPECT_EQ(form.Memory(0).Text, "CH1: 520,192 points left");
  // Its first step is a sine, which needs room as well.
  EXPECT_EQ(form.Memory(1).Text, "CH2: 0 points left, too few for the other waveforms");
  rig.sequence->Cell(1, 0, kSlotWaveform).Value = kWaveUser;
  rig.sequence->Cell(1, 0, kSlotArbNumber).Value = 7;
  WaveformForm more = rig.Form();
  more.Assign(6, {rig.folder.File("whole.wdb"), rig.folder.File("a.txt")});
  while (more.CountNext() != 0) continue;
  EXPECT_EQ(more.Memory(1).Text, "CH2: 4,096 points too many");
  EXPECT_EQ(more.Memory(1).Used, 528384);
}

TEST(WaveformForm, OffersWhatTheDefinitionNames) {
  using enum WaveformAction;
  WaveformFormRig rig;
  rig.definition.ArbItems.Texts = {"Update", "Transfer", "Print"};
  EXPECT_THAT(rig.Form().Actions(), ElementsAre(Update, Transfer));
  rig.definition.ArbItems.Texts.clear();
  EXPECT_THAT(rig.Form().Actions(), ElementsAre(Transfer, Clear, ClearAll, Update));
}

}  // namespace
}  // namespace corlune::testing
