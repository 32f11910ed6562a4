#include <filesystem>
#include <gmock/gmock.h>

#include "core/files.h"
#include "session/session_rig.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

const char* const kNoIni = "Initialization file doesn't exist";

// A work file with three steps, as a normal close leaves it.
void LeaveWorkFile(SessionRig& rig, const std::function<void(Session&)>& change = {}) {
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  rig.session->Sequence().StepCount = 3;
  rig.session->Sequence().Steps[2].StepTime = 7.5;
  if (change) change(*rig.session);
  ASSERT_TRUE(rig.session->RequestClose());
  rig.Restart();
}

struct FailureRow {
  const char* name;
  std::function<void(SessionRig&)> prepare;
  std::vector<std::string> messages;
  StartUpResult result;
};

TEST(StartUp, FailureTable) {
  const auto replaceInWorkFile = [](SessionRig& rig, const std::string& from, const std::string& to) {
    LeaveWorkFile(rig);
    std::string text = TempFolder::Read(rig.WorkFile());
    const std::size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos);
    rig.folder.Write("Corlune_QM2210.ini", text.replace(at, from.size(), to));
  };
  const std::vector<FailureRow> rows{
      {"no Corlune.ini",
       [](SessionRig& rig) { std::filesystem::remove(rig.folder.File("Corlune.ini")); },
       {kNoIni},
       StartUpResult::Show},
      {"empty model", [](SessionRig& rig) { rig.EditModel(""); }, {kNoIni}, StartUpResult::Show},
      {"no model name", [](SessionRig& rig) { rig.EditModel("1"); }, {kNoIni}, StartUpResult::Show},
      {"no model definition",
       [](SessionRig& rig) { std::filesystem::remove(rig.folder.File("Corlune_Std.ini")); },
       {kNoIni},
       StartUpResult::EndProcess},
      {"bad number in the model definition",
       [](SessionRig& rig) {
         rig.folder.Write("Corlune_Std.ini",
                          "[FILE]\r\nPROGID=C\r\nVERNO=1\r\n[SYSTEM]\r\n"
                          "SS_MODEL=QM2210\r\nSS_CNT=x,1,5\r\n");
       },
       {"section SYSTEM: key SS_CNT"},
       StartUpResult::EndProcess},
      {"model that is gone, without work file",
       [](SessionRig& rig) { rig.EditModel("5,QM9999"); },
       {"The model name QM9999 is not registered in initialization file?"},
       StartUpResult::Show},
      {"work file of a model that is gone",
       [&](SessionRig& rig) { replaceInWorkFile(rig, "SS_MODEL=QM2210", "SS_MODEL=QM9999"); },
       {"The model name QM9999 is not registered in initialization file?"},
       StartUpResult::EndProcess},
      {"work file without a section",
       [&](SessionRig& rig) { replaceInWorkFile(rig, "[MODE]", "[MADE]"); },
       {"The sequence data file error."},
       StartUpResult::EndProcess},
      {"no instrument", [](SessionRig&) {}, {}, StartUpResult::Show},
  };
  for (const FailureRow& row : rows) {
    SCOPED_TRACE(row.name);
    SessionRig rig;
    row.prepare(rig);
    rig.prompts.messages.clear();
    const std::string workFile = TempFolder::Read(rig.WorkFile());
    for (std::size_t i = 0; i < row.messages.size(); ++i) rig.Answer(PromptAnswer::Ok);
    EXPECT_EQ(rig.Start(), row.result);
    ASSERT_EQ(rig.prompts.messages.size(), row.messages.size());
    for (std::size_t i = 0; i < row.messages.size(); ++i) {
      EXPECT_THAT(rig.prompts.messages[i].text, HasSubstr(row.messages[i]));
      EXPECT_EQ(rig.prompts.messages[i].icon, PromptIcon::Exclamation);
    }
    EXPECT_EQ(rig.session->State().StartupDone, row.result == StartUpResult::Show);
    if (row.result == StartUpResult::Show) {
      EXPECT_EQ(rig.session->State().ModelName, "QM2210");
      EXPECT_EQ(rig.session->State().Online, 0);
    } else {
      // A file that could not be loaded is not replaced when the program ends.
      std::filesystem::remove(rig.folder.File("Corlune.ini"));
      rig.sessionEnd->EndNow(1);
      EXPECT_EQ(TempFolder::Read(rig.WorkFile()), workFile);
      EXPECT_FALSE(FileExists(rig.folder.File("Corlune.ini")));
    }
    EXPECT_THAT(rig.script.Log(), IsEmpty());
  }
}

TEST(StartUp, GivesWayToOtherPrograms) {
  SessionRig rig;
  EXPECT_EQ(rig.session->StartUp({[] { return true; }, {}, {}}), StartUpResult::ActivateOther);
  rig.Answer(PromptAnswer::Ok);
  std::string title;
  EXPECT_EQ(rig.session->StartUp({[] { return false; },
                                  [&](const std::string& text) {
                                    title = text;
                                    return true;
                                  },
                                  {}}),
            StartUpResult::EndProcess);
  EXPECT_EQ(title, "Tavrin Plindor for QM2210/20");
  EXPECT_THAT(rig.Messages(), ElementsAre("Tavrin Plindor is running. Please restart after terminating it."));
  EXPECT_THAT(rig.search.expressions, IsEmpty());
}

TEST(StartUp, OneInstrumentGoesOnLine) {
  SessionRig rig;
  rig.search.Attach(kPrefix2210, "1000001");
  rig.search.Attach(kPrefix2220, "2000001");
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  const AppState& state = rig.session->State();
  EXPECT_EQ(state.Online, 1);
  EXPECT_TRUE(state.Connected);
  EXPECT_EQ(state.Instruments[0].SerialNo, "1000001");
  EXPECT_EQ(state.Instruments[0].InterfaceKind, InterfaceKind::UsbTmc);
  EXPECT_THAT(rig.search.expressions, ElementsAre("USB0::0x3A1F::0x2210::?*INSTR"));
  EXPECT_THAT(rig.script.Log(),
              ElementsAre(HasSubstr("USBTMC_NAME=USB0::0x3A1F::0x2210::1000001"), "timeout 12",
                          "0 < :TRAC:INF? 1", "0 > \"Arb1\",1,4096", "0 < :TRAC:INF? 2", "0 > (none)"));
  EXPECT_EQ(rig.session->Sequence().Channels.ArbFiles[0].InInstrument, 1);

  // The serial number that was found stays when the work file names another one.
  ASSERT_TRUE(rig.session->RequestClose());
  rig.Restart();
  rig.search.bus[0] = {std::string(kPrefix2210) + "1000009::INSTR", "1000009"};
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  EXPECT_EQ(rig.session->State().Instruments[0].SerialNo, "1000009");
  EXPECT_EQ(rig.script.CountOf("init"), 1);
}

TEST(StartUp, SeveralInstruments) {
  struct Row {
    const char* name;
    std::function<bool(Session&)> select;
    int online;
  };
  for (const Row& row : {Row{"no dialog", {}, 0}, Row{"cancelled", [](Session&) { return false; }, 0},
                         Row{"chosen",
                             [](Session& session) {
                               session.SelectSerial(session.Gp().Found().at(1).SerialNo);
                               return true;
                             },
                             1}}) {
    SCOPED_TRACE(row.name);
    SessionRig rig;
    rig.search.Attach(kPrefix2210, "1000001");
    rig.search.Attach(kPrefix2210, "1000002");
    if (row.select) rig.select = [&] { return row.select(*rig.session); };
    rig.Answer(PromptAnswer::Ok);
    ASSERT_EQ(rig.Start(), StartUpResult::Show);
    EXPECT_EQ(rig.prompts.messages.at(0).icon, PromptIcon::Information);
    EXPECT_EQ(rig.session->State().Online, row.online);
    EXPECT_EQ(rig.script.CountOf("init"), row.online);
    if (row.online == 1) {
      EXPECT_EQ(rig.session->State().Instruments[0].SerialNo, "1000002");
    }
  }
}

TEST(StartUp, AnInstrumentThatDoesNotOpenLeavesTheProgramOffLine) {
  SessionRig rig;
  rig.search.Attach(kPrefix2210, "1000001");
  rig.script.FailOn("init", CommStatus::NoBoard);
  rig.Answer(PromptAnswer::Ok);
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  EXPECT_THAT(rig.Messages(), ElementsAre("The communication error to the instrument 1 occurred."));
  EXPECT_EQ(rig.session->State().Online, 0);
  EXPECT_FALSE(rig.session->State().Connected);
  EXPECT_EQ(rig.script.CountOf("0 < "), 0);
}

TEST(StartUp, RestoresWhatACloseWrote) {
  SessionRig rig;
  rig.EditModel("1,QM2220");
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  EXPECT_EQ(rig.session->State().Instruments[0].ChannelCount, 2);
  EXPECT_EQ(rig.session->Sequence().StepCount, 0);
  rig.session->Sequence().StepCount = 2;
  rig.session->Sequence().StartStep = 5;
  rig.session->Sequence().Steps[1].StepTime = 0.25;
  ASSERT_TRUE(rig.session->RequestClose());
  EXPECT_EQ(TempFolder::Read(rig.folder.File("Corlune.ini")), "[EDIT]\r\nEDIT_MODEL=1,QM2220\r\n");

  rig.Restart();
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  EXPECT_EQ(rig.session->State().ModelName, "QM2220");
  EXPECT_EQ(rig.session->Sequence().StepCount, 2);
  EXPECT_EQ(rig.session->Sequence().StartStep, 5);
  EXPECT_EQ(rig.session->Sequence().Steps[1].StepTime, 0.25);
  EXPECT_FALSE(rig.session->State().Modified);
}

// A work file with more instruments than the one that was found opens and checks them all.
TEST(StartUp, ConnectsTheInstrumentsOfTheWorkFile) {
  const auto twoInstruments = [](Session& session) {
    session.State().InstrumentCount = 2;
    session.State().Instruments[1] = session.State().Instruments[0];
    session.State().Instruments[1].SerialNo = "1000002";
  };
  struct Row {
    const char* name;
    bool secondAnswers;
    PromptAnswer answer;
    StartUpResult result;
    int online;
  };
  for (const Row& row : {Row{"both there", true, PromptAnswer::Ok, StartUpResult::Show, 1},
                         Row{"off-line", false, PromptAnswer::Yes, StartUpResult::Show, 0},
                         Row{"end", false, PromptAnswer::No, StartUpResult::EndProcess, 0}}) {
    SCOPED_TRACE(row.name);
    SessionRig rig;
    LeaveWorkFile(rig, twoInstruments);
    rig.search.Attach(kPrefix2210, "1000001");
    if (!row.secondAnswers) {
      rig.script.FailOn("1 < *IDN?", CommStatus::TimeOut);
      rig.Answer(row.answer);
    }
    EXPECT_EQ(rig.Start(), row.result);
    EXPECT_EQ(rig.session->State().Online, row.online);
    EXPECT_EQ(rig.end.ended, row.result == StartUpResult::EndProcess);
    ASSERT_EQ(rig.script.CountOf("init"), 2);
    EXPECT_THAT(rig.script.Log(),
                ::testing::Contains(HasSubstr("2210::1000001::INSTR/USB0::0x3A1F::0x2210::1000002")));
    EXPECT_THAT(rig.Messages(),
                ElementsAreArray(row.secondAnswers
                                     ? std::vector<std::string>{}
                                     : std::vector<std::string>{"Cannot find the instrument 2. It starts in "
                                                                "off-line mode?"}));
  }
}

TEST(StartUp, SimulatedInstrumentsNeedNoSearch) {
  SessionRig rig;
  rig.options.simulated = true;
  rig.search.Attach(kPrefix2210, "1000001");
  rig.Restart();
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  EXPECT_EQ(rig.session->State().Online, 1);
  EXPECT_THAT(rig.search.expressions, IsEmpty());
  EXPECT_THAT(rig.script.Log().front(), StartsWith("[4] init"));
}

TEST(StartUp, TheConsoleTakesModelAndSetUpFromTheFile) {
  SessionRig rig;
  rig.EditModel("1,QM2220");
  LeaveWorkFile(rig);
  const std::string workFile = rig.WorkFile("QM2220");
  std::filesystem::rename(workFile, rig.folder.File("my.ini"));
  std::filesystem::remove(rig.folder.File("Corlune.ini"));
  rig.options.writeSettings = false;
  rig.Restart();
  ASSERT_TRUE(rig.session->StartUpFromFile(rig.folder.File("my.ini")));
  EXPECT_EQ(rig.session->State().ModelName, "QM2220");
  EXPECT_EQ(rig.session->State().ModelIndex, 1);
  EXPECT_EQ(rig.session->Definition().Sequence.Params.size(), 11U);
  EXPECT_EQ(rig.session->Sequence().StepCount, 3);

  EXPECT_EQ(rig.session->Connect({}), ConnectResult::NoneFound);
  rig.search.Attach(kPrefix2220, "1");
  rig.search.Attach(kPrefix2220, "2");
  EXPECT_EQ(rig.session->Connect({}), ConnectResult::SeveralFound);
  EXPECT_EQ(rig.session->Connect("3"), ConnectResult::NotFound);
  EXPECT_THAT(rig.script.Log(), IsEmpty());
  rig.script.Reply("*IDN?", {"TAVRIN,QM2220,2,1.00"});
  EXPECT_EQ(rig.session->Connect("2"), ConnectResult::Connected);
  EXPECT_THAT(rig.script.Log().front(), HasSubstr("2220::2::INSTR"));
  ASSERT_TRUE(rig.session->RequestClose());
  EXPECT_FALSE(FileExists(workFile));
  EXPECT_FALSE(FileExists(rig.folder.File("Corlune.ini")));
}

TEST(StartUp, TheConsoleIsToldWhatIsWrongWithAFile) {
  struct Row {
    const char* content;  // null: no file
    const char* message;
    const char* problem;
  };
  for (const Row& row :
       {Row{nullptr, "The file could not be read.", ""}, Row{"", "The sequence data file error.", "my.dat: "},
        Row{"[FILE]\r\nPROGID=C\r\nVERNO=1\r\n[SYSTEM]\r\nSS_MODEL=QM1\r\n",
            "The model name QM1 is not registered", "unknown model QM1"}}) {
    SCOPED_TRACE(row.message);
    SessionRig rig;
    if (row.content) rig.folder.Write("my.dat", row.content);
    rig.Answer(PromptAnswer::Ok);
    EXPECT_FALSE(rig.session->StartUpFromFile(rig.folder.File("my.dat")));
    EXPECT_THAT(rig.Messages(), ElementsAre(StartsWith(row.message)));
    EXPECT_THAT(rig.session->LoadProblem(), HasSubstr(row.problem));
  }
}

TEST(StartUp, WithoutAFileTheInstrumentTellsItsModel) {
  SessionRig rig;
  rig.search.Attach(kPrefix2220, "2000001");
  rig.script.Reply("*IDN?", {"TAVRIN,QM2220,2000001,1.00"});
  ASSERT_TRUE(rig.session->StartUpWithoutFile());
  EXPECT_EQ(rig.session->State().ModelName, "QM2210");
  ASSERT_EQ(rig.session->Connect({}), ConnectResult::Connected);
  EXPECT_EQ(rig.session->State().ModelName, "QM2220");
  EXPECT_EQ(rig.session->State().Instruments[0].ChannelCount, 2);
  EXPECT_EQ(rig.session->Definition().Commands.OutputOn.Template, ":OUTP1 ON;:OUTP2 ON");
}

TEST(StartUp, WithoutAFileASerialNumberNamesAnInstrumentOfAnyModel) {
  SessionRig rig;
  rig.search.Attach(kPrefix2210, "1000001");
  rig.search.Attach(kPrefix2220, "2000001");
  rig.script.Reply("*IDN?", {"TAVRIN,QM2220,2000001,1.00"});
  ASSERT_TRUE(rig.session->StartUpWithoutFile());
  EXPECT_EQ(rig.session->Connect("3000001"), ConnectResult::NotFound);
  ASSERT_EQ(rig.session->Connect("2000001"), ConnectResult::Connected);
  EXPECT_EQ(rig.session->State().ModelName, "QM2220");
}

}  // namespace
}  // namespace corlune::testing
