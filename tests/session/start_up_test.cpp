#include <filesystem>
#include <gmock/gmock.h>
#include <regex>

#include "core/files.h"
#include "session/session_rig.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// A work file with three steps, as a normal close leaves it.
void LeaveWorkFile(SessionRig& rig, const std::function<void(Session&)>& change = {}) {
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  rig.session->Sequence().StepCount = 3;
  rig.session->Sequence().Steps[2].StepTime = 7.5;
  if (change) change(*rig.session);
  ASSERT_TRUE(rig.session->RequestClose());
  rig.Restart();
}

TEST(StartUp, FailureTable) {
  struct Row {
    const char* name;
    std::function<void(SessionRig&)> prepare;
    std::string message;
    bool shows = false;
  };
  const auto replaceInWorkFile = [](const std::string& from, const std::string& to) {
    return [=](SessionRig& rig) {
      LeaveWorkFile(rig);
      std::string text = TempFolder::Read(rig.WorkFile());
      const std::size_t at = text.find(from);
      ASSERT_NE(at, std::string::npos);
      rig.folder.Write("Corlune_QM2210.ini", text.replace(at, from.size(), to));
    };
  };
  const auto model = [](const char* value) { return [=](SessionRig& rig) { rig.EditModel(value); }; };
  const auto without = [](const char* name) {
    return [=](SessionRig& rig) { std::filesystem::remove(rig.folder.File(name)); };
  };
  const auto badNumber = [](SessionRig& rig) {
    rig.folder.Write("Corlune_Std.ini",
                     "[FILE]\r\nPROGID=C\r\nVERNO=1\r\n[SYSTEM]\r\nSS_MODEL=QM2210\r\nSS_CNT=x,1,5\r\n");
  };
  const std::string noIni = "Initialization file doesn't exist";
  const std::string noModel = "The model name QM9999 is not registered in initialization file?";
  const std::vector<Row> rows{
      {"no Corlune.ini", without("Corlune.ini"), noIni, true},
      {"empty model", model(""), noIni, true},
      {"no model name", model("1"), noIni, true},
      {"no model definition", without("Corlune_Std.ini"), noIni},
      {"bad number in the model definition", badNumber, "section SYSTEM: key SS_CNT"},
      {"model that is gone, without work file", model("5,QM9999"), noModel, true},
      {"work file of a model that is gone", replaceInWorkFile("SS_MODEL=QM2210", "SS_MODEL=QM9999"), noModel,
       true},
      {"work file without a section", replaceInWorkFile("[MODE]", "[MADE]"), "[MODE] is missing.", true},
      {"work file with a bad interface", replaceInWorkFile("SS_INTERFACE0=0", "SS_INTERFACE0=9"),
       ", line 7, cannot be taken:\nSS_INTERFACE0=9\nIt is kept as ", true},
      {"work file with a bad step", replaceInWorkFile("ST_SETVAL#2=7.5", "ST_SETVAL#2=x"), "\nST_SETVAL#2=x",
       true},
      {"a folder in its place", [](SessionRig& rig) { std::filesystem::create_directory(rig.WorkFile()); },
       "Corlune_QM2210.ini cannot be read.\nIt is kept as ", true},
      {"no instrument", [](SessionRig&) {}, "", true},
  };
  const auto content = [](const std::string& path) {
    return FileExists(path) ? TempFolder::Read(path) : std::string();
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    SessionRig rig;
    row.prepare(rig);
    rig.folder.Write("Corlune_QM2210.ini.bad1", "of another day");
    rig.prompts.messages.clear();
    const bool stood = std::filesystem::exists(rig.WorkFile());
    const std::string workFile = content(rig.WorkFile());
    if (!row.message.empty()) rig.Answer(PromptAnswer::Ok);
    EXPECT_EQ(rig.Start(), row.shows ? StartUpResult::Show : StartUpResult::EndProcess);
    ASSERT_EQ(rig.prompts.messages.size(), row.message.empty() ? 0U : 1U);
    if (!row.message.empty()) {
      EXPECT_THAT(rig.prompts.messages[0].text, HasSubstr(row.message));
      EXPECT_EQ(rig.prompts.messages[0].icon, PromptIcon::Exclamation);
    }
    EXPECT_EQ(rig.session->State().StartupDone, row.shows);
    if (row.shows) {
      EXPECT_EQ(rig.session->State().ModelName, "QM2210");
      EXPECT_EQ(rig.session->State().Online, 0);
      EXPECT_EQ(rig.session->Sequence().StepCount, 0);
      if (stood) {
        EXPECT_THAT(rig.prompts.messages[0].text, HasSubstr(rig.WorkFile() + ".bad2. The program starts"));
        EXPECT_EQ(TempFolder::Read(rig.WorkFile() + ".bad1"), "of another day");
        EXPECT_EQ(content(rig.WorkFile() + ".bad2"), workFile);
        EXPECT_TRUE(rig.session->RequestClose());
        EXPECT_TRUE(FileExists(rig.WorkFile()));
      }
    } else {
      // A file that could not be loaded is not replaced when the program ends.
      std::filesystem::remove(rig.folder.File("Corlune.ini"));
      rig.sessionEnd->EndNow(1);
      EXPECT_EQ(TempFolder::Read(rig.WorkFile()), workFile);
      EXPECT_FALSE(FileExists(rig.folder.File("Corlune.ini")));
    }
    EXPECT_THAT(rig.recorder.exchanges, IsEmpty());
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
  EXPECT_THAT(rig.recorder.searches, IsEmpty());
  // A search without its library is not waited for.
  rig.library = false;
  rig.Restart();
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  EXPECT_THAT(rig.progress.waits, IsEmpty());
}

TEST(StartUp, OneInstrumentGoesOnLine) {
  SessionRig rig;
  rig.Plug("QM2210:1000001,QM2220:2000001");
  rig.Faults("text=1:\"Arb1\",1,4096@:TRAC:INF?;drop=3@:TRAC:INF?");
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  const AppState& state = rig.session->State();
  EXPECT_EQ(state.Online, 1);
  EXPECT_TRUE(state.Connected);
  EXPECT_EQ(state.Instruments[0].SerialNo, "1000001");
  EXPECT_EQ(state.Instruments[0].InterfaceKind, InterfaceKind::UsbTmc);
  EXPECT_THAT(rig.recorder.searches, ElementsAre("USB0::0x3A1F::0x2210::?*INSTR"));
  EXPECT_THAT(rig.recorder.connections, ElementsAre("1 open"));
  // The directory, as far as the instrument tells it.
  EXPECT_THAT(rig.recorder.exchanges,
              ElementsAre("1 < :TRAC:INF? 1", "1 > \"Arb1\",1,4096", "1 < :TRAC:INF? 2", "1 > \"\",0,0",
                          "1 < :TRAC:INF? 3", "1 >  !timeout"));
  EXPECT_EQ(rig.session->Sequence().Channels.ArbFiles[0].InInstrument, 1);

  // The serial number that was found stays when the work file names another one.
  ASSERT_TRUE(rig.session->RequestClose());
  EXPECT_EQ(rig.recorder.connections.back(), "1 close");
  rig.Restart();
  rig.Faults("gone");
  rig.Plug("QM2210:1000009");
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  EXPECT_EQ(rig.session->State().Instruments[0].SerialNo, "1000009");
  EXPECT_THAT(rig.recorder.connections, ElementsAre("3 open"));
}

// Unplugged between the search and the opening.
TEST(StartUp, AnInstrumentThatDoesNotOpenLeavesTheProgramOffLine) {
  SessionRig rig;
  rig.Plug("QM2210:1000001");
  rig.pump.OnEveryCall([&] {
    if (!rig.recorder.searches.empty()) rig.Faults("gone");
  });
  rig.Answer(PromptAnswer::Ok);
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  EXPECT_THAT(rig.Messages(),
              ElementsAre(StartsWith("The communication error to the instrument 1 occurred.\nUSB0::")));
  EXPECT_THAT(rig.recorder.connections, ElementsAre("1 open !error"));
  EXPECT_EQ(rig.session->State().Online, 0);
  EXPECT_FALSE(rig.session->State().Connected);
}

TEST(StartUp, SeveralInstruments) {
  for (const char* const chosen : {"", "1000002", "2000001"}) {
    SCOPED_TRACE(chosen);
    const std::string model = chosen[0] == '2' ? "QM2220" : "QM2210";
    SessionRig rig;
    LeaveWorkFile(rig, [](Session& session) {
      session.State().Instruments[0].SerialNo = "1000001";
      session.Sequence().ModeSettings[0][0] = 1;
    });
    rig.Plug("QM2210:1000001,QM2210:1000002,QM2220:2000001");
    rig.choose = [&]() -> std::optional<InstrumentChoice> {
      EXPECT_EQ(rig.session->LastSerial("QM2210"), "1000001");
      if (!*chosen) return std::nullopt;
      rig.session->SearchInstruments(model);
      return InstrumentChoice{model, rig.session->Gp().Found().back().SerialNo};
    };
    rig.Answer(PromptAnswer::Ok);
    ASSERT_EQ(rig.Start(), StartUpResult::Show);
    EXPECT_EQ(rig.prompts.messages.at(0).icon, PromptIcon::Information);
    EXPECT_EQ(rig.session->State().Online, *chosen ? 1 : 0);
    const std::string number = model == "QM2220" ? "3" : "2";
    EXPECT_EQ(rig.recorder.connections, *chosen ? EventList{number + " open"} : EventList{});
    EXPECT_EQ(rig.CountSent(number + " < *IDN?"), *chosen ? 1 : 0);
    EXPECT_EQ(rig.session->State().Instruments[0].SerialNo, *chosen ? chosen : "1000001");
    EXPECT_EQ(rig.session->State().Instruments[0].ChannelCount, model == "QM2220" ? 2 : 1);
    EXPECT_EQ(rig.session->Sequence().ModeSettings[0][0], *chosen ? 0 : 1);
  }
}

// A work file with more instruments than the one that was found opens and checks them all.
TEST(StartUp, ConnectsTheInstrumentsOfTheWorkFile) {
  const auto twoInstruments = [](Session& session) {
    session.State().InstrumentCount = 2;
    session.State().Instruments[1] = session.State().Instruments[0];
    // Not of the model that the search looks for.
    session.State().Instruments[1].SerialNo = "USB0::0x3A1F::0x2220::1000002::INSTR";
  };
  const auto answers = {std::optional<PromptAnswer>(), std::optional(PromptAnswer::Yes),
                        std::optional(PromptAnswer::No)};
  for (const auto& answer : answers) {  // none: the second instrument is there
    SessionRig rig;
    LeaveWorkFile(rig, twoInstruments);
    rig.Plug("QM2210:1000001,QM2220:1000002");
    rig.Faults(answer ? "drop@*IDN?" : "text:TAVRIN,QM2210,1000002,1.00@*IDN?", 1);
    if (answer) rig.Answer(*answer);
    EXPECT_EQ(rig.Start(), answer == PromptAnswer::No ? StartUpResult::EndProcess : StartUpResult::Show);
    EXPECT_EQ(rig.session->State().Online, answer ? 0 : 1);
    EXPECT_EQ(rig.end.ended, answer == PromptAnswer::No);
    EXPECT_EQ(rig.CountSent("2 < *IDN?"), 1);
    if (!answer) continue;
    EXPECT_THAT(rig.Messages(), ElementsAre("Cannot find the instrument 2. It starts in off-line mode?"));
  }
}

// A serial number names an instrument of any model; a definition may leave the number of channels to the
// model.
TEST(StartUp, WithoutAFile) {
  SessionRig rig;
  rig.folder.Write("Corlune_Std.ini", std::regex_replace(rig.definition, std::regex("IF_CH=1"), "IF_CH=0"));
  rig.Plug("QM2210:1000001,QM2220:2000001");
  ASSERT_TRUE(rig.session->StartUpWithoutFile());
  EXPECT_EQ(rig.session->State().ModelName, "QM2210");
  EXPECT_EQ(rig.session->Connect("3000001"), ConnectResult::NotFound);
  ASSERT_EQ(rig.session->Connect("2000001"), ConnectResult::Connected);
  EXPECT_EQ(rig.session->State().ModelName, "QM2220");
  EXPECT_EQ(rig.session->State().Instruments[0].ChannelCount, 2);
  EXPECT_EQ(rig.session->Definition().Commands.OutputOn.Template, ":OUTP1 ON;:OUTP2 ON");
}

}  // namespace
}  // namespace corlune::testing
