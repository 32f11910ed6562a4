#include <filesystem>
#include <gmock/gmock.h>
#include <regex>

#include "core/files.h"
#include "session/session_rig.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

const char* const kSaveFirst = "Save the sequence data under the edit?";
const char* const kSaveChanges = "Save changes in the sequence data?";

// Started off-line, with two steps that are not saved.
struct EditedRig : SessionRig {
  EditedRig() {
    EXPECT_EQ(Start(), StartUpResult::Show);
    session->Sequence().StepCount = 2;
    session->State().Modified = true;
  }
  AppState& State() { return session->State(); }
};

TEST(FileCommands, TheSaveQuestionGuardsTheWork) {
  struct Row {
    PromptAnswer answer;
    const char* chosen;  // in the save dialog after Yes
    bool done;
  };
  for (const Row& row : {Row{PromptAnswer::No, "", true}, Row{PromptAnswer::Cancel, "", false},
                         Row{PromptAnswer::Yes, "kept.dat", true}, Row{PromptAnswer::Yes, "", false},
                         Row{PromptAnswer::Yes, "none/kept.dat", false}}) {
    for (const bool open : {false, true}) {
      SCOPED_TRACE(std::to_string(static_cast<int>(row.answer)) + row.chosen + (open ? ", open" : ", new"));
      const bool unwritable = *row.chosen && !row.done;
      EditedRig rig;
      rig.Answer(row.answer);
      if (row.answer == PromptAnswer::Yes) {
        rig.files.save.push_back(*row.chosen ? std::optional(rig.folder.File(row.chosen)) : std::nullopt);
      }
      if (unwritable) rig.Answer(PromptAnswer::Ok);
      if (open && row.done) rig.files.open.push_back(std::nullopt);
      const bool done = open ? rig.session->OpenWithDialog() : rig.session->NewSequence();
      EXPECT_EQ(done, row.done && !open);
      EXPECT_EQ(rig.prompts.messages.at(0).text, kSaveFirst);
      EXPECT_EQ(rig.prompts.messages.at(0).buttons, PromptButtons::YesNoCancel);
      EXPECT_EQ(rig.session->Sequence().StepCount, done ? 0 : 2);
      EXPECT_EQ(FileExists(rig.folder.File("kept.dat")), row.done && *row.chosen);
      if (unwritable) {
        EXPECT_THAT(rig.prompts.messages.at(1).text, StartsWith("The file could not be written."));
      }
      if (!row.done) {
        EXPECT_TRUE(rig.State().Modified);
      }
    }
  }
}

TEST(FileCommands, SaveAsksForANameOnce) {
  EditedRig rig;
  rig.files.save.push_back(rig.folder.File("ramp"));
  EXPECT_TRUE(rig.session->Save());
  EXPECT_THAT(rig.files.asked, ElementsAre("save Sequence data(*.dat) | *.dat []"));
  EXPECT_EQ(rig.State().CurrentFilePath, rig.folder.File("ramp.dat"));
  EXPECT_FALSE(rig.State().Modified);
  EXPECT_EQ(rig.display.caption, "Tavrin Corlune for QM2210/20  " + rig.folder.File("ramp.dat"));
  rig.session->Sequence().StepCount = 1;
  EXPECT_TRUE(rig.session->Save());
  EXPECT_EQ(rig.files.asked.size(), 1U);

  // A name without extension may hit a file that the dialog did not ask about.
  const std::string before = TempFolder::Read(rig.folder.File("ramp.dat"));
  for (const PromptAnswer answer : {PromptAnswer::No, PromptAnswer::Yes}) {
    rig.session->Sequence().StepCount = 5;
    rig.files.save.push_back(rig.folder.File("ramp"));
    rig.Answer(answer);
    EXPECT_EQ(rig.session->SaveAs(), answer == PromptAnswer::Yes);
    EXPECT_EQ(TempFolder::Read(rig.folder.File("ramp.dat")) == before, answer == PromptAnswer::No);
  }
  EXPECT_THAT(rig.files.asked.back(), HasSubstr("[" + rig.folder.File("ramp.dat") + "]"));
}

TEST(FileCommands, AFileThatCannotBeWrittenStaysAndTheSequenceStaysModified) {
  EditedRig rig;
  std::filesystem::create_directory(rig.folder.File("old.dat"));  // a folder in the way
  rig.State().CurrentFilePath = rig.folder.File("old.dat");
  rig.Answer(PromptAnswer::Ok);
  EXPECT_FALSE(rig.session->Save());
  rig.Answer(PromptAnswer::Ok);
  EXPECT_FALSE(rig.session->WriteFile(rig.folder.File("old.dat"), true));
  EXPECT_THAT(rig.Messages(), ElementsAre(HasSubstr("old.dat"), HasSubstr("old.dat")));
  EXPECT_TRUE(rig.State().Modified);
}

TEST(FileCommands, OpenReplacesTheSequenceOrLeavesItAlone) {
  EditedRig rig;
  rig.files.save.push_back(rig.folder.File("a.dat"));
  ASSERT_TRUE(rig.session->SaveAs());
  std::string text = TempFolder::Read(rig.folder.File("a.dat"));
  rig.folder.Write("broken.dat", text.substr(0, text.find("[DATA]")) + "[DATA]\r\nST_SETVAL#900=1\r\n");
  const std::size_t model = text.find("QM2210");
  rig.folder.Write("gone.dat", std::string(text).replace(model, 6, "QM9999"));
  rig.folder.Write("two.dat", std::string(text).replace(model, 6, "QM2220"));
  ASSERT_TRUE(rig.session->NewSequence());
  rig.session->Sequence().StepCount = 7;
  rig.display.changes.clear();

  struct Row {
    const char* file;
    const char* message;  // null: loaded
  };
  const char* const noName = "Please specify a correct file name.";
  const char* const noModel = "The model name QM9999 is not registered in initialization file?";
  for (const Row& row :
       {Row{"none.dat", noName}, Row{"", noName}, Row{"broken.dat", "The sequence data file error.\n"},
        Row{"gone.dat", noModel}, Row{"a.dat", nullptr}, Row{"two.dat", nullptr}}) {
    SCOPED_TRACE(row.file);
    if (row.message) rig.Answer(PromptAnswer::Ok);
    rig.files.open.push_back(*row.file ? rig.folder.File(row.file) : std::string());
    EXPECT_EQ(rig.session->OpenWithDialog(), row.message == nullptr);
    const std::vector<std::string> messages = rig.Messages();
    ASSERT_EQ(messages.size(), row.message ? 1U : 0U);
    EXPECT_THAT(row.message ? messages[0] : "", HasSubstr(row.message ? row.message : ""));
    EXPECT_EQ(rig.session->Sequence().StepCount, row.message ? 7 : 2);
    EXPECT_EQ(rig.display.changes.size(), row.message ? 0U : 1U);
    EXPECT_EQ(rig.State().CurrentFilePath, row.message ? "" : rig.folder.File(row.file));
    rig.display.changes.clear();
  }
  rig.State().Modified = true;
  rig.Answer(PromptAnswer::No);
  EXPECT_TRUE(rig.session->OpenFile(rig.folder.File("two.dat")));
  EXPECT_FALSE(rig.State().Modified);
  rig.Messages();
  // A model that the definition file describes wrongly is not called unknown as well.
  const std::string definition = TempFolder::Read(rig.folder.File("Corlune_Std.ini"));
  rig.folder.Write("Corlune_Std.ini",
                   std::regex_replace(definition, std::regex("SC_BRANCH="), "SC_BRANCH=1,x,"));
  rig.Answer(PromptAnswer::Ok);
  EXPECT_FALSE(rig.session->OpenFile(rig.folder.File("a.dat")));
  EXPECT_THAT(rig.Messages(), ElementsAre(HasSubstr("key SC_BRANCH")));
  // The last one changed the model.
  EXPECT_EQ(rig.State().ModelName, "QM2220");
  EXPECT_EQ(rig.State().ModelIndex, 1);
  EXPECT_EQ(rig.session->Definition().Commands.OutputOn.Template, ":OUTP1 ON;:OUTP2 ON");
  EXPECT_EQ(rig.State().WorkFilePath, rig.WorkFile("QM2220"));
}

TEST(FileCommands, AnOnLineLoadChecksOrReconnectsTheInstruments) {
  struct Row {
    int instruments;  // in the file
    const char* identity;
    std::optional<PromptAnswer> answer;
    const char* message;
    int online;
  };
  const char* const good = "TAVRIN,QM2210,1,1";
  const char* const other = "TAVRIN,QM2220,1,1";
  const char* const cannot = "Cannot find the instrument 1. It starts in off-line mode?";
  const char* const wrong = "The model name 1 is not correct. It starts in off-line mode?";
  for (const Row& row :
       {Row{1, good, {}, "", 1}, Row{1, "", PromptAnswer::Yes, cannot, 0},
        Row{1, other, PromptAnswer::Yes, wrong, 0}, Row{1, other, PromptAnswer::No, wrong, 0},
        Row{2, good, {}, "", 1}, Row{2, "", PromptAnswer::Yes, cannot, 0}}) {
    SCOPED_TRACE(std::to_string(row.instruments) + row.identity);
    SessionRig rig;
    rig.search.Attach(kPrefix2210, "1000001");
    ASSERT_EQ(rig.Start(), StartUpResult::Show);
    AppState& state = rig.session->State();
    state.InstrumentCount = static_cast<std::int16_t>(row.instruments);
    state.Instruments[1] = state.Instruments[0];
    state.Instruments[1].SerialNo = "1000002";
    rig.session->Sequence().StepCount = 4;
    ASSERT_TRUE(rig.session->WriteFile(rig.folder.File("a.dat"), true));
    state.InstrumentCount = 1;
    rig.script.ClearLog();
    rig.script.Reply("*IDN?", {row.identity});
    if (row.answer) rig.Answer(*row.answer);
    EXPECT_TRUE(rig.session->OpenFile(rig.folder.File("a.dat")));
    EXPECT_EQ(rig.session->Sequence().StepCount, 4);
    EXPECT_THAT(rig.Messages(), ElementsAreArray(row.answer ? std::vector<std::string>{row.message}
                                                            : std::vector<std::string>{}));
    const int opened = row.instruments == 2 ? 1 : 0;
    EXPECT_EQ(rig.script.CountOf("init"), opened);
    EXPECT_EQ(rig.script.CountOf("end"), opened + (row.online == 1 ? 0 : 1));
    EXPECT_EQ(rig.script.CountOf("1 < *IDN?"), opened * row.online);
    EXPECT_EQ(state.Online, row.online);
    EXPECT_EQ(state.Connected, row.online == 1);
    // Ended at once or not, nothing of the new sequence is lost.
    EXPECT_EQ(rig.end.ended, row.answer == PromptAnswer::No);
    EXPECT_EQ(FileExists(rig.WorkFile()), rig.end.ended);
    if (row.answer != PromptAnswer::Yes) continue;
    // The next file finds the instrument again, once it is there and matches.
    rig.script.Reply("*IDN?", {good});
    rig.search.bus.clear();
    for (const int online : {0, 1}) {
      EXPECT_TRUE(rig.session->OpenFile(rig.folder.File("a.dat")));
      EXPECT_EQ(state.Online, online);
      rig.search.Attach(kPrefix2210, "1000001");
    }
  }
}

TEST(Closing, Table) {
  struct Row {
    const char* name;
    bool modified;
    std::optional<PromptAnswer> answer;
    const char* chosen;
    bool closes;
    RunState run = RunState::Stopped;
  };
  const std::vector<Row> rows{
      {"unmodified", false, {}, "", true},
      {"no", true, PromptAnswer::No, "", true},
      {"cancel", true, PromptAnswer::Cancel, "", false},
      {"yes", true, PromptAnswer::Yes, "my.dat", true},
      {"yes, dialog cancelled", true, PromptAnswer::Yes, "", true},
      {"running", true, {}, "", false, RunState::Running},
      {"held", true, {}, "", false, RunState::Held},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    SessionRig rig;
    rig.search.Attach(kPrefix2210, "1000001");
    ASSERT_EQ(rig.Start(), StartUpResult::Show);
    rig.session->State().Modified = row.modified;
    rig.session->State().RunState = row.run;
    std::filesystem::remove(rig.folder.File("Corlune.ini"));
    if (row.answer) rig.Answer(*row.answer);
    if (row.answer == PromptAnswer::Yes) {
      rig.files.save.push_back(*row.chosen ? std::optional(rig.folder.File(row.chosen)) : std::nullopt);
    }
    EXPECT_EQ(rig.session->RequestClose(), row.closes);
    EXPECT_THAT(rig.Messages(), ElementsAreArray(row.answer ? std::vector<std::string>{kSaveChanges}
                                                            : std::vector<std::string>{}));
    // The model choice is written before the question.
    EXPECT_EQ(TempFolder::Read(rig.folder.File("Corlune.ini")),
              row.run == RunState::Stopped ? "[EDIT]\r\nEDIT_MODEL=0,QM2210\r\n" : "");
    EXPECT_EQ(FileExists(rig.WorkFile()), row.closes);
    EXPECT_EQ(FileExists(rig.folder.File("my.dat")), *row.chosen != 0);
    EXPECT_EQ(rig.script.CountOf("end"), row.closes ? 1 : 0);
    EXPECT_EQ(rig.session->State().Connected, !row.closes);
  }
}

TEST(Closing, AWorkFileThatCannotBeWrittenIsNotLostSilently) {
  for (const PromptAnswer answer : {PromptAnswer::Cancel, PromptAnswer::Ok}) {
    EditedRig rig;
    rig.State().Modified = false;
    std::filesystem::create_directory(rig.WorkFile());
    rig.Answer(answer);
    EXPECT_EQ(rig.session->RequestClose(), answer == PromptAnswer::Ok);
    EXPECT_THAT(rig.Messages(), ElementsAre(HasSubstr("Close all the same?")));
  }
}

TEST(Closing, IsRefusedWhileTheQuestionOfAnotherCommandIsOpen) {
  EditedRig rig;
  rig.prompts.WhileOpen([&] { EXPECT_FALSE(rig.session->RequestClose()); });
  rig.Answer(PromptAnswer::Cancel);
  EXPECT_FALSE(rig.session->NewSequence());
  EXPECT_THAT(rig.Messages(), ElementsAre(kSaveFirst));
}

TEST(Closing, EndingAtOnceSavesTheWorkWithoutAQuestion) {
  EditedRig rig;
  rig.sessionEnd->EndNow(3);
  EXPECT_TRUE(rig.end.ended);
  EXPECT_EQ(rig.end.code, 3);
  EXPECT_THAT(TempFolder::Read(rig.WorkFile()), HasSubstr("FI_STEPNUM=2"));
  EXPECT_THAT(rig.Messages(), IsEmpty());
}

InstrumentEntry Entry(int interface, int address, const std::string& serial, int channels) {
  InstrumentEntry entry;
  entry.Interface = static_cast<std::int16_t>(interface);
  entry.Address = address;
  entry.SerialNo = serial;
  entry.ChannelCount = static_cast<std::int16_t>(channels);
  return entry;
}

TEST(SystemSetup, IsCheckedBeforeItIsApplied) {
  // Interfaces of the shipped definition: 0 USBTMC, 1 NI, 2 KI, 3 USB.
  struct Row {
    std::vector<InstrumentEntry> entries;
    int message;
  };
  const std::vector<Row> rows{
      {{Entry(0, 0, "1", 8), Entry(0, 0, "2", 8), Entry(0, 0, "3", 4)}, 0},
      {{Entry(0, 0, "1", 8), Entry(0, 0, "2", 8), Entry(0, 0, "3", 5)}, 9302},
      {{Entry(0, 0, "1", 2), Entry(0, 0, "1", 2)}, 9309},
      {{Entry(1, 5, "", 2), Entry(2, 5, "", 2)}, 9301},
      {{Entry(3, 5, "", 2), Entry(3, 5, "", 2)}, 9301},
      {{Entry(1, 5, "", 2), Entry(3, 5, "", 2)}, 0},
  };
  EditedRig rig;
  for (const Row& row : rows) {
    SystemSettings setup{"QM2220", 0, static_cast<std::int16_t>(row.entries.size()), {}};
    std::copy(row.entries.begin(), row.entries.end(), setup.Instruments.begin());
    EXPECT_EQ(rig.session->CheckSetup(setup).value_or(TextId{}), TextId{row.message});
  }
}

TEST(SystemSetup, AnotherInstrumentIsNotTrustedToHoldTheWaveforms) {
  SessionRig rig;
  rig.search.Attach(kPrefix2210, "1000001");
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  auto& entries = rig.session->Sequence().Channels.ArbFiles;
  entries[4] = {"a.wdb", 1, 1, 1, 4096, 1};
  ASSERT_EQ(entries[0].InInstrument, 1);
  rig.script.ClearLog();
  rig.script.Reply(":TRAC:INF? 1", {"\"\",0,0"});
  ASSERT_TRUE(rig.session->Reconnect());
  EXPECT_EQ(entries[4].Transferred, 0);
  EXPECT_EQ(entries[4].InInstrument, 0);
  EXPECT_EQ(entries[4].PointCount, 4096) << "the size is the file's";
  EXPECT_EQ(entries[0].InInstrument, 0);
  EXPECT_EQ(rig.script.CountOf("end"), 1);
  EXPECT_EQ(rig.script.CountOf("init"), 1);
}

TEST(SystemSetup, AModelChangeAsksAndStartsAnEmptySequence) {
  SystemSettings setup{"QM2220", 0, 1, {}};
  setup.Instruments[0] = Entry(1, 9, "", 2);
  EditedRig rig;
  rig.Answer(PromptAnswer::Cancel);
  EXPECT_FALSE(rig.session->ApplySetup(setup));
  EXPECT_EQ(rig.State().ModelName, "QM2210");
  EXPECT_EQ(rig.session->Sequence().StepCount, 2);
  EXPECT_THAT(rig.script.Log(), IsEmpty());

  rig.script.Reply("*IDN?", {"TAVRIN,QM2220,1,1"});
  rig.Answer(PromptAnswer::No);
  EXPECT_TRUE(rig.session->ApplySetup(setup));
  EXPECT_EQ(rig.State().ModelName, "QM2220");
  EXPECT_EQ(rig.session->Sequence().StepCount, 0);
  EXPECT_EQ(rig.State().Instruments[0].InterfaceKind, InterfaceKind::NiGpib);
  EXPECT_EQ(rig.State().Online, 1);
  EXPECT_THAT(rig.script.Log(), ::testing::IsSupersetOf({"[0] timeout 12", "[0] 9 < *IDN?"}));
}

}  // namespace
}  // namespace corlune::testing
