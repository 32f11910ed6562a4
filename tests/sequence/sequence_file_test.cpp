// Sequence files: exact bytes, round trips, refusals that leave everything as it was.
#include "sequence/sequence_file.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

#include "core/files.h"
#include "sequence/defaults.h"
#include "sequence/run_times.h"
#include "sequence/start_values.h"
#include "sequence/waveform_path.h"
#include "sequence_samples.h"
#include "support/environment.h"
#include "support/temp_folder.h"

namespace corlune {
namespace {

using testing::SampleDefinition;
using testing::SampleState;
using testing::SequenceGenerator;
using testing::TempFolder;
using Form = SequenceFileForm;

constexpr unsigned kSeed = 20240611;

std::string CrLf(std::string_view text) {
  std::string out;
  for (char c : text) out += c == '\n' ? "\r\n" : std::string(1, c);
  return out;
}

std::vector<std::string> LinesWith(const std::string& text, std::string_view part) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.find(part) != std::string::npos) lines.push_back(line);
  }
  return lines;
}

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

class SequenceFileTest : public ::testing::Test {
 protected:
  SequenceFileTest() { ResetSequence(sequence, definition); }

  std::string Format(Form form) const { return FormatSequenceFile(sequence, state, definition, form); }
  ReadResult Parse(std::string_view text, Form form) {
    return ParseSequenceFile(text, form, OneDefinition(definition), sequence, settings);
  }

  ModelDefinition definition = SampleDefinition();
  AppState state = SampleState();
  SequenceData sequence;
  SystemSettings settings = SettingsOf(SampleState());
};

TEST_F(SequenceFileTest, WritesTheFormByteForByte) {
  sequence.StepCount = 2;
  sequence.StartStep = 7;
  definition.Sequence.ParamCount = 3;
  StepRow& row = sequence.Steps[1];
  row.StepTime = 0.00001;
  row.TimeUnit = 1;
  row.StopPhaseOn = 1;
  row.StopPhase = -2.25;
  row.JumpOn = 1;
  row.JumpCount = -1;
  row.BranchStep = {1, 2, 3, 4, 5};
  sequence.Cell(1, 1, 2) = {kModeSweep, 0, 1.5e15, 0};
  sequence.Channels.Loads[1] = {1, 50};
  sequence.Channels.UserUnits[1][7] = {1, 1, "dBm", 20, -0.5};
  sequence.Channels.ArbFiles[127].FilePath = "C:\\waves\\a=b.wdb";
  sequence.ModeSettings[0][kModeSlots + 2] = 4;
  sequence.ViewAreas[4] = {1, -2, 3, 4};

  std::string expected =
      "[FILE]\nPROGID=CORLUNE\nVERNO=1.00\n"
      "[SYSTEM]\nSS_MODEL=QM2220\nSS_CNT=1\nSS_INTERFACE0=3\nSS_ADDRESS0=2\nSS_SERIALNO0=SN0\nSS_CHNCNT0=2\n"
      "[COMMON]\nCP_LOAD#0=0,10000\nCP_LOAD#1=1,50\nCP_LOAD#2=0,10000\n";
  for (int i = 0; i < 20; ++i) {
    expected += "CP_USERSCL#" + std::to_string(i / 10) + "#" + std::to_string(i % 10) + "=" +
                (i == 17 ? "1,1,dBm,20,-0.5\n" : "0,0,usr,1,0\n");
  }
  for (int n = 0; n < 127; ++n) expected += "CP_ARBFILE#" + std::to_string(n) + "=\n";
  expected +=
      "CP_ARBFILE#127=C:\\waves\\a=b.wdb\n"
      "[MODE]\nMD_MODESET00=0,0\nMD_MODESET01=0,0\nMD_MODESET02=0,4\n"
      "[FRMEDIT]\nFI_STEPNUM=2\nFI_STARTSTEP=7\nFI_BRCHCHN=2\n"
      "CM_START=1\nCM_TRIG=0\nCM_EXTCTRL=0\nCM_MLTIO=0\nCM_SYNCOUT=0\n"
      "ST_SETVAL#0=1,0,0,0,90,0,1,0,1,0,1,0,1,1,0\n"
      "ST_SETVAL#1=1E-05,1,0,1,-2.25,0,1,0,1,1,1,0,-1,1,0\n"
      "SE_SETVAL#0#0=0,0,0,0,1,0,0,1,1\nSE_SETVAL#0#1=0,0,0,0,1,0,0,1,1\n"
      "SE_SETVAL#1#0=0,0,0,0,1,0,0,1,1\nSE_SETVAL#1#1=0,0,0,0,1,0,2,1.5E+15,0\n"
      "BR_SETVAL#1=1,2,3,4,5\n"
      "[FRMVIEW]\nFV_AREASET0=0,0,0,0\nFV_AREASET1=0,0,0,0\nFV_AREASET2=0,0,0,0\nFV_AREASET3=0,0,0,0\n"
      "FV_AREASET4=1,-2,3,4\n";
  EXPECT_EQ(Format(Form::Work), CrLf(expected));
  const std::string user =
      Replaced(expected, "[FRMEDIT]\nFI_STEPNUM=2\nFI_STARTSTEP=7\nFI_BRCHCHN=2\n", "[DATA]\n");
  EXPECT_EQ(Format(Form::User), CrLf(user));
}

TEST_F(SequenceFileTest, GeneratedSequencesComeBackWhole) {
  SequenceGenerator generate(kSeed);
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE("seed " + std::to_string(kSeed) + ", round " + std::to_string(round));
    const int steps = round == 0 ? 0 : round == 1 ? MAX_STEPS : generate.Integer(0, 40);
    const int channels = generate.Integer(1, 2);
    const int instruments = generate.Integer(1, 5);
    const Form form = round % 2 ? Form::User : Form::Work;
    state = SampleState(instruments, channels);
    ResetSequence(sequence, definition);
    generate.Fill(sequence, steps, channels);
    for (int device = 0; device < instruments; ++device) {
      for (int slot = 0; slot <= channels; ++slot) {
        for (int set = 0; set < definition.ModeSetCount; ++set) {
          sequence.ModeSettings[static_cast<std::size_t>(device)]
                               [static_cast<std::size_t>(set * kModeSlots + slot)] = generate.Short();
        }
      }
    }
    const std::string text = Format(form);
    SequenceData expected = sequence;
    ComputeStartValues(expected);
    ComputeRunTimes(expected, definition);

    // Load over another sequence and set-up.
    generate.Fill(sequence, 200, 2);
    sequence.SequenceName = "before";
    sequence.SequenceNumber = 9;
    if (form == Form::User) {
      sequence.StartStep = expected.StartStep = 33;
      sequence.BranchChannel = expected.BranchChannel = 4;
    }
    for (auto& device : sequence.ModeSettings) device.fill(7);
    settings = SettingsOf(SampleState(1, 1));
    settings.Instruments[0].SerialNo = "found";
    const ReadResult result = Parse(text, form);
    ASSERT_EQ(result.Problem, SequenceFileProblem::None) << result.Detail;
    EXPECT_TRUE(sequence == expected);
    state.Instruments[0].SerialNo = "found";
    for (std::size_t i = static_cast<std::size_t>(instruments); i < kMaxInstruments; ++i) {
      state.Instruments[i] = SampleState(1, 1).Instruments[i];
    }
    EXPECT_TRUE(settings == SettingsOf(state));
    state.Instruments[0].SerialNo = "SN0";
    EXPECT_EQ(Format(form), text);
  }
}

TEST_F(SequenceFileTest, LoadingKeepsAndReplacesTheRightThings) {
  sequence.StepCount = 1;
  sequence.Channels.ArbFiles[1].FilePath = "new.txt";
  const std::string text = Format(Form::User);

  sequence.Channels.UserUnits[0][10].UnitText = "kept";
  sequence.Channels.UserUnits[2][0].UnitText = "gone";
  sequence.Channels.ArbFiles[0] = {"old.txt", 1, 1, 1, 4096, 1};
  sequence.Channels.ArbFiles[1] = {"old.txt", 1, 1, 1, 4096, 1};
  sequence.Channels.ArbFiles[2] = {"", 0, 0, 0, 77, 1};
  sequence.Channels.ArbFiles[3] = {"unsent.txt", 1, 0, 1, 4096, 1};
  sequence.Steps[200].StepTime = 5;
  sequence.Steps[0].BranchStep = {9, 9, 9, 9, 9};
  ASSERT_EQ(Parse(text, Form::User).Problem, SequenceFileProblem::None);

  EXPECT_EQ(sequence.Channels.UserUnits[0][10].UnitText, "kept");
  EXPECT_EQ(sequence.Channels.UserUnits[2][0].UnitText, "usr");
  const auto& arbs = sequence.Channels.ArbFiles;
  EXPECT_EQ(arbs[0], (ArbFileEntry{"", 0, 0, 1, 4096, 1})) << "the instrument still holds what was sent";
  EXPECT_EQ(arbs[1], (ArbFileEntry{"new.txt", 0, 0, 0, 0, 1}));
  EXPECT_EQ(arbs[2], (ArbFileEntry{"", 0, 0, 0, 77, 1}));
  EXPECT_EQ(arbs[3], (ArbFileEntry{"", 0, 0, 0, 0, 1})) << "the size was that of a file that was never sent";
  EXPECT_EQ(sequence.Steps[200].StepTime, 1);
  EXPECT_THAT(sequence.Steps[0].BranchStep, ::testing::ElementsAre(3, 3, 0, 0, 0));
}

TEST_F(SequenceFileTest, ReadsWhatAnEditorMayLeave) {
  sequence.StepCount = 2;
  const std::string text = Format(Form::User);
  std::string bare, oldMac, doubled;  // "\r\r\n": a transfer took "\n" for a line end of its own
  for (char c : text) {
    if (c != '\r') bare += c;
    if (c != '\n') oldMac += c;
    doubled += c == '\n' ? "\r\n" : std::string(1, c);
  }
  const std::size_t system = text.find("[SYSTEM]");
  const std::size_t common = text.find("[COMMON]");
  const auto before = [&](const std::string& line) {
    return Replaced(text, "CM_TRIG", line + "\r\nCM_TRIG");
  };
  for (const std::string& left :
       {bare, oldMac, doubled, before(";" + std::string(10000, 'x')),  // longer than the reader's window
        before("\r\n ;CM_TRIG=9"), before("XX_NEW=1") + "[OTHER]\r\nA=B\r\n",
        text.substr(0, text.find("[FRMVIEW]")),
        Replaced(Replaced(text, "[DATA]", "[data]"), "[FILE]", " [ File ]"),
        text.substr(0, system) + text.substr(common) + text.substr(system, common - system),
        text + "[DATA]\r\nCM_TRIG=x\r\n", Replaced(text, "CM_TRIG=0", "CM_TRIG = 0 "),
        Replaced(text, "ST_SETVAL#0=1,0,", "ST_SETVAL#0=+0.1E+1,0e0,"), before("CP_ARBFILE#128=x")}) {
    sequence.Steps[1].StepTime = 99;
    const ReadResult result = Parse(left, Form::User);
    EXPECT_EQ(result.Problem, SequenceFileProblem::None) << result.Detail;
    EXPECT_EQ(Format(Form::User), text) << left;
  }
}

TEST_F(SequenceFileTest, RefusalsLeaveEverythingAsItWas) {
  SequenceGenerator(kSeed).Fill(sequence, 4, 2);
  sequence.Steps[3].BranchStep = {1, 2, 3, 4, 5};
  const std::string user = Format(Form::User);
  const std::string work = Format(Form::Work);
  const auto line = [&](std::string_view key) { return LinesWith(user, key).at(0); };
  struct Row {
    std::string name;
    std::string text;
    Form form = Form::User;
    SequenceFileProblem problem = SequenceFileProblem::Malformed;
  };
  std::vector<Row> rows = {
      {"empty", ""},
      {"another form", user, Form::Work},
      {"unknown model", Replaced(user, "QM2220", "QM9999"), Form::User, SequenceFileProblem::UnknownModel},
      {"step count above the table", Replaced(work, "FI_STEPNUM=4", "FI_STEPNUM=257"), Form::Work},
      {"negative step count", Replaced(work, "FI_STEPNUM=4", "FI_STEPNUM=-1"), Form::Work},
      {"step line without a slot", Replaced(user, "ST_SETVAL#1=", "ST_SETVAL=")},
      {"a field too few", Replaced(user, "ST_SETVAL#1=", "ST_SETVAL#1=1,2\r\nX=")},
      {"a field too many", Replaced(user, line("ST_SETVAL#1="), line("ST_SETVAL#1=") + ",0")},
      {"half a triple", Replaced(user, line("SE_SETVAL#0#1="), "SE_SETVAL#0#1=0,1")},
      {"twelve triples", Replaced(user, line("SE_SETVAL#0#1="), line("SE_SETVAL#0#1=") + ",0,0,0")},
      {"user unit without factors", Replaced(user, line("CP_USERSCL#0#1="), "CP_USERSCL#0#1=0,0,usr")},
      {"nine mode sets", Replaced(user, "MD_MODESET00=", "MD_MODESET00=1,2,3,4,5,6,7,8,9\r\nX=")},
      {"257 step lines", user.substr(0, user.find("SE_SETVAL")) + [] {
         std::string lines;
         for (int i = 0; i < 253; ++i) lines += "ST_SETVAL#0=1,0,0,0,0,0,0,0,0,0,0,0,0,0,0\r\n";
         return lines;
       }()}};
  for (const char* section : {"FILE", "SYSTEM", "COMMON", "MODE", "DATA"}) {
    const std::string heading = std::string("[") + section + "]";
    rows.push_back({"without " + heading, Replaced(user, heading, "[X]")});
    const std::size_t start = user.find(heading) + heading.size() + 2;
    rows.push_back({"empty " + heading, user.substr(0, start) + ";only=a comment\r\n" +
                                            user.substr(user.find("\n[", start) + 1)});
  }
  struct Change {
    std::string from;
    std::vector<std::string> to;
  };
  const std::vector<Change> changes = {
      {"SS_CNT=1", {"SS_CNT=6", "SS_CNT=0"}},
      {"SS_CHNCNT0=2", {"SS_CHNCNT0=0", "SS_CHNCNT5=2"}},
      {"SS_ADDRESS0=2", {"SS_ADDRESS0="}},
      {"SS_INTERFACE0=3", {"SS_INTERFACE0=4"}},
      {"CP_LOAD#2", {"CP_LOAD#3"}},
      {"CP_USERSCL#1#9", {"CP_USERSCL#1#11", "CP_USERSCL#3#9"}},
      {"CP_ARBFILE#127", {"CP_ARBFILE#129", "CP_ARBFILE#"}},
      {"MD_MODESET02", {"MD_MODESET06", "MD_MODESET62"}},
      {"ST_SETVAL#3", {"ST_SETVAL#256", "ST_SETVAL#-1"}},
      {"SE_SETVAL#1#3", {"SE_SETVAL#2#3", "SE_SETVAL#1#256"}},
      {"BR_SETVAL#3=1,2,3,4,5", {"BR_SETVAL#3=1,2,3,4", "BR_SETVAL#256=1,2,3,4,5"}},
      {"FV_AREASET4", {"FV_AREASET5"}},
      {line("CM_START="), {"CM_START=40000"}},
      {line("CM_TRIG="), {"CM_TRIG=1,2"}},
      {line("CM_EXTCTRL="), {"CM_EXTCTRL=0x1"}},
      {line("CP_LOAD#0="), {"CP_LOAD#0=0,nan", "CP_LOAD#0=0,1e999", "CP_LOAD#0=0,inf"}},
  };
  for (const auto& [from, replacements] : changes) {
    for (const auto& to : replacements) rows.push_back({from + " -> " + to, Replaced(user, from, to)});
  }
  const SequenceData sequenceBefore = sequence;
  const SystemSettings settingsBefore = settings;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(Parse(row.text, row.form).Problem, row.problem);
    EXPECT_TRUE(sequence == sequenceBefore);
    EXPECT_TRUE(settings == settingsBefore);
  }
}

TEST_F(SequenceFileTest, EveryTruncationIsWholeOrRefused) {
  SequenceGenerator(kSeed).Fill(sequence, 3, 2);
  const std::string text = Format(Form::User);
  const std::size_t firstStep = text.find("ST_SETVAL#0");
  SequenceData before;
  ResetSequence(before, definition);
  before.StepCount = 77;
  const SystemSettings settingsBefore = settings;
  std::size_t taken = 0;
  for (std::size_t length = 0; length <= text.size(); ++length) {
    SequenceData target = before;
    SystemSettings setup = settingsBefore;
    const ReadResult result = ParseSequenceFile(std::string_view(text).substr(0, length), Form::User,
                                                OneDefinition(definition), target, setup);
    if (result.Problem != SequenceFileProblem::None) {
      ASSERT_TRUE(target == before && setup == settingsBefore) << length;
      continue;
    }
    ++taken;
    // What is complete in the text is complete in memory.
    ASSERT_EQ(target.StepCount, static_cast<int>(LinesWith(text.substr(0, length), "ST_SETVAL").size()))
        << length;
    ASSERT_EQ(target.Channels, sequence.Channels) << length;
  }
  EXPECT_GT(taken, 0u);
  EXPECT_LT(taken, text.size() - firstStep);
}

TEST_F(SequenceFileTest, NewStepsComeFromTheNamedModel) {
  const std::string text = Replaced(Format(Form::Work), "FI_STEPNUM=0", "FI_STEPNUM=5");
  ModelDefinition other = definition;
  other.Common.Params[0].Default = 42;
  std::vector<std::string> asked;
  const auto definitions = [&](const std::string& model) {
    asked.push_back(model);
    return &other;
  };
  settings.ModelName = "QM2210";
  settings.ModelIndex = 0;
  ASSERT_EQ(ParseSequenceFile(text, Form::Work, definitions, sequence, settings).Problem,
            SequenceFileProblem::None);
  EXPECT_THAT(asked, ::testing::ElementsAre("QM2220"));
  EXPECT_EQ(settings.ModelIndex, 1);
  EXPECT_EQ(settings.Instruments[0].InterfaceKind, InterfaceKind::UsbTmc);
  EXPECT_EQ(sequence.StepCount, 5);
  EXPECT_EQ(sequence.Steps[4].StepTime, 42);
}

TEST_F(SequenceFileTest, TheStepSectionTellsTheFormAndTheCount) {
  sequence.StepCount = 3;
  const std::string gap = Replaced(Format(Form::User), "ST_SETVAL#2=", "ST_SETVAL#20=");
  EXPECT_EQ(Parse(gap, Form::User).Problem, SequenceFileProblem::None);
  EXPECT_EQ(sequence.StepCount, 3);
  EXPECT_EQ(DetectForm(Format(Form::User)), Form::User);
  EXPECT_EQ(DetectForm(Format(Form::Work)), Form::Work);
  EXPECT_EQ(DetectForm("[FILE]\r\nPROGID=1\r\n;[DATA]\r\n"), std::nullopt);
}

TEST_F(SequenceFileTest, AFailedSaveSaysWhyAndKeepsTheOldFile) {
  TempFolder folder;
  std::string path = folder.Write("old.dat", "old");
  sequence.Channels.ArbFiles[0].FilePath = "a\r\nST_SETVAL#0=1";
  std::string error;
  EXPECT_FALSE(WriteSeqFile(path, Form::User, state, definition, sequence, &error));
  EXPECT_FALSE(error.empty());
  EXPECT_EQ(TempFolder::Read(path), "old");
  for (const auto& [name, holds] : std::initializer_list<std::pair<std::string, bool>>{
           {"/波形 1,=;#[x].wdb", true}, {std::string(4000, 'a') + ".txt", true}, {"a\nb.txt", false}}) {
    EXPECT_EQ(SequenceFileHolds(name), holds) << name;
  }
}

TEST_F(SequenceFileTest, RelativeWaveformsStayFindable) {
  const testing::Environment locale({"LC_ALL"});
  locale.Set("C");
  TempFolder folder;
  std::filesystem::create_directories(folder.File("moved"));
  state.CurrentFilePath = folder.File("old.dat");
  state.AppFolder = folder.File("moved");
  folder.Write("é.txt", "1");
  auto& arbs = sequence.Channels.ArbFiles;
  arbs[0].FilePath = "é.txt";
  arbs[1].FilePath = "not there.txt";
  arbs[2].FilePath = "D:\\elsewhere.txt";
  EXPECT_EQ(ResolveWaveformPath(arbs[0].FilePath, state), folder.File("é.txt"));
  EXPECT_EQ(ResolveWaveformPath(arbs[2].FilePath, state), "D:\\elsewhere.txt");
  EXPECT_EQ(ResolveWaveformPath("", state), "");

  std::string path = folder.File("copy.dat");
  ASSERT_TRUE(WriteSeqFile(path, Form::User, state, definition, sequence));
  EXPECT_THAT(LinesWith(TempFolder::Read(path), "#0="), ::testing::Contains("CP_ARBFILE#0=\xE9.txt"));
  SequenceData back;
  AppState other;
  ASSERT_EQ(ReadSeqFile(path, Form::User, OneDefinition(definition), other, back).Problem,
            SequenceFileProblem::None);
  EXPECT_EQ(back.Channels.ArbFiles[0].FilePath, "é.txt");
  EXPECT_EQ(other.ModelName, "QM2220");

  path = folder.File("moved/Corlune_QM2220.ini");
  ASSERT_TRUE(WriteSeqFile(path, Form::Work, state, definition, sequence));
  const std::string work = TempFolder::Read(path);
  EXPECT_THAT(LinesWith(work, "CP_ARBFILE#0="),
              ::testing::ElementsAre("CP_ARBFILE#0=" + folder.File("\xE9.txt")));
  EXPECT_THAT(LinesWith(work, "CP_ARBFILE#1="), ::testing::ElementsAre("CP_ARBFILE#1=not there.txt"));
  EXPECT_EQ(arbs[0].FilePath, "é.txt") << "the person's own file still lies where it was";

  path = folder.File("moved/copy.dat");
  ASSERT_TRUE(WriteSeqFile(path, Form::User, state, definition, sequence));
  EXPECT_EQ(arbs[0].FilePath, folder.File("é.txt"));
}

}  // namespace
}  // namespace corlune
