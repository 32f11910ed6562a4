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
    for (const std::string action : {"new", "open", "close"}) {
      SCOPED_TRACE(std::to_string(static_cast<int>(row.answer)) + row.chosen + action);
      const bool unwritable = *row.chosen && !row.done;
      const bool closing = action == "close";
      // Closed without a name, the sequence is kept in the work file alone.
      const bool goesOn = row.done || (closing && row.answer == PromptAnswer::Yes && !unwritable);
      EditedRig rig;
      std::filesystem::remove(rig.folder.File("Corlune.ini"));
      rig.Answer(row.answer);
      if (row.answer == PromptAnswer::Yes) {
        rig.files.save.push_back(*row.chosen ? std::optional(rig.folder.File(row.chosen)) : std::nullopt);
      }
      if (unwritable) rig.Answer(PromptAnswer::Ok);
      rig.prompts.WhileOpen([&] { EXPECT_FALSE(rig.session->RequestClose()); });
      if (action == "open" && row.done) rig.files.open.push_back(std::nullopt);
      const bool done = closing            ? rig.session->RequestClose()
                        : action == "open" ? rig.session->OpenWithDialog()
                                           : rig.session->NewSequence();
      EXPECT_EQ(done, goesOn && action != "open");
      EXPECT_EQ(rig.prompts.messages.at(0).text, closing ? kSaveChanges : kSaveFirst);
      EXPECT_EQ(rig.prompts.messages.at(0).buttons, PromptButtons::YesNoCancel);
      EXPECT_EQ(rig.session->Sequence().StepCount, done && !closing ? 0 : 2);
      EXPECT_EQ(FileExists(rig.folder.File("kept.dat")), row.done && *row.chosen);
      EXPECT_EQ(FileExists(rig.WorkFile()), closing && goesOn);
      // The model choice is written before the question.
      EXPECT_EQ(TempFolder::Read(rig.folder.File("Corlune.ini")),
                closing ? "[EDIT]\r\nEDIT_MODEL=0,QM2210\r\n" : "");
      if (unwritable) {
        EXPECT_THAT(rig.prompts.messages.at(1).text, StartsWith("The file could not be written."));
      }
      if (!goesOn) {
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
    const char* fault;
    std::optional<PromptAnswer> answer;
    const char* message;
    EventList connections;
  };
  const char* const cannot = "Cannot find the instrument 1. It starts in off-line mode?";
  const char* const wrong = "The model name 1 is not correct. It starts in off-line mode?";
  const char* const silent = "drop@*IDN?";
  const char* const other = "text=1:TAVRIN,QM2220,1,1@*IDN?";
  for (const Row& row : {Row{1, "", {}, "", {}}, Row{1, silent, PromptAnswer::Yes, cannot, {"1 close"}},
                         Row{1, "empty@*IDN?", PromptAnswer::Yes, cannot, {"1 close"}},
                         Row{1, other, PromptAnswer::Yes, wrong, {"1 close"}},
                         Row{1, other, PromptAnswer::No, wrong, {"1 close"}},
                         Row{2, "", {}, "", {"1 close", "1 open", "2 open"}},
                         Row{2, silent, PromptAnswer::Yes, cannot, {"1 close", "1 open", "1 close"}}}) {
    SCOPED_TRACE(std::to_string(row.instruments) + row.fault);
    SessionRig rig;
    rig.Plug("QM2210:1000001");
    ASSERT_EQ(rig.Start(), StartUpResult::Show);
    rig.Plug("QM2210:1000002");
    AppState& state = rig.session->State();
    state.InstrumentCount = static_cast<std::int16_t>(row.instruments);
    state.Instruments[1] = state.Instruments[0];
    state.Instruments[1].SerialNo = "1000002";
    rig.session->Sequence().StepCount = 4;
    ASSERT_TRUE(rig.session->WriteFile(rig.folder.File("a.dat"), true));
    state.InstrumentCount = 1;
    rig.Forget();
    rig.Faults(row.fault);
    if (row.answer) rig.Answer(*row.answer);
    EXPECT_TRUE(rig.session->OpenFile(rig.folder.File("a.dat")));
    EXPECT_EQ(rig.session->Sequence().StepCount, 4);
    if (row.answer) {
      EXPECT_EQ(rig.prompts.messages.at(0).escape, PromptAnswer::Yes) << "the other answer ends the program";
    }
    EXPECT_THAT(rig.Messages(), ElementsAreArray(row.answer ? std::vector<std::string>{row.message}
                                                            : std::vector<std::string>{}));
    EXPECT_EQ(rig.recorder.connections, row.connections);
    EXPECT_EQ(rig.CountSent("2 < *IDN?"), row.answer ? 0 : row.instruments - 1);
    EXPECT_EQ(state.Online, row.answer ? 0 : 1);
    EXPECT_EQ(state.Connected, !row.answer);
    // Ended at once or not, nothing of the new sequence is lost.
    EXPECT_EQ(rig.end.ended, row.answer == PromptAnswer::No);
    EXPECT_EQ(rig.end.code, rig.end.ended ? 1 : 0);
    EXPECT_EQ(TempFolder::Read(rig.WorkFile()).find("FI_STEPNUM=4") != std::string::npos, rig.end.ended);
    if (row.answer != PromptAnswer::Yes) continue;
    // The next file finds the instrument again, once it is there and matches.
    for (const bool there : {false, true}) {
      rig.Faults(there ? "" : "gone");
      EXPECT_TRUE(rig.session->OpenFile(rig.folder.File("a.dat")));
      EXPECT_EQ(state.Online, there ? 1 : 0);
    }
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

}  // namespace
}  // namespace corlune::testing
