// The set-up of the instruments: checked, taken, connected again, and each instrument asked who it is.
#include <gmock/gmock.h>

#include "session/session_rig.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

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
      {{Entry(0, 0, "a1", 2), Entry(0, 0, "USB0::0x3A1F::0x2220::A1::INSTR", 2)}, 9309},
      {{Entry(1, 5, "", 2), Entry(2, 5, "", 2)}, 9301},
      {{Entry(3, 5, "", 2), Entry(3, 5, "", 2)}, 9301},
      {{Entry(1, 5, "", 2), Entry(3, 5, "", 2)}, 0},
  };
  SessionRig rig;
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  for (const Row& row : rows) {
    SystemSettings setup{"QM2220", 0, static_cast<std::int16_t>(row.entries.size()), {}};
    std::copy(row.entries.begin(), row.entries.end(), setup.Instruments.begin());
    EXPECT_EQ(rig.session->CheckSetup(setup).value_or(TextId{}), TextId{row.message});
  }
}

TEST(SystemSetup, AnotherInstrumentIsNotTrustedToHoldTheWaveforms) {
  SessionRig rig;
  rig.Plug("QM2210:1000001");
  rig.Faults("text=1:\"Arb1\",1,4096@:TRAC:INF?");
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  auto& entries = rig.session->Sequence().Channels.ArbFiles;
  entries[4] = {"a.wdb", 1, 1, 1, 4096, 1};
  ASSERT_EQ(entries[0].InInstrument, 1);
  rig.Forget();
  rig.Faults("drop=2@:TRAC:INF?");
  ASSERT_TRUE(rig.session->Reconnect());
  EXPECT_EQ(entries[4].Transferred, 0);
  EXPECT_EQ(entries[4].InInstrument, 0);
  EXPECT_EQ(entries[4].PointCount, 4096) << "the size is the file's";
  EXPECT_EQ(entries[0].InInstrument, 0);
  EXPECT_THAT(rig.recorder.connections, ElementsAre("1 close", "1 open"));
}

TEST(SystemSetup, AModelChangeAsksAndStartsAnEmptySequence) {
  SystemSettings setup{"QM2220", 0, 1, {}};
  setup.Instruments[0] = Entry(0, 9, "2000001", 2);
  SessionRig rig;
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  rig.session->Sequence().StepCount = 2;
  AppState& state = rig.session->State();
  state.Modified = true;
  rig.Plug("QM2220:2000001");
  // A model without a definition is refused before anybody is asked to save.
  rig.folder.Write("Corlune_Std.ini", rig.definition.substr(0, rig.definition.find("[SPEC QM2220]")));
  rig.Answer(PromptAnswer::Ok);
  EXPECT_FALSE(rig.session->ApplySetup(setup));
  EXPECT_THAT(rig.Messages(), ElementsAre(HasSubstr("section SPEC QM2220: the section is missing")));
  rig.folder.Write("Corlune_Std.ini", rig.definition);
  rig.Answer(PromptAnswer::Cancel);
  EXPECT_FALSE(rig.session->ApplySetup(setup));
  EXPECT_EQ(state.ModelName, "QM2210");
  EXPECT_EQ(rig.session->Sequence().StepCount, 2);
  EXPECT_THAT(rig.recorder.exchanges, IsEmpty());

  rig.Answer(PromptAnswer::No);
  EXPECT_TRUE(rig.session->ApplySetup(setup));
  EXPECT_EQ(state.ModelName, "QM2220");
  EXPECT_EQ(rig.session->Sequence().StepCount, 0);
  EXPECT_EQ(state.Instruments[0].SerialNo, "2000001");
  EXPECT_EQ(state.Online, 1);
  EXPECT_EQ(rig.recorder.exchanges.front(), "1 < *IDN?");

  // Fewer channels leave a channel's steps out of the files.
  rig.session->Sequence().StepCount = 2;
  setup.Instruments[0].ChannelCount = 1;
  rig.Answer(PromptAnswer::Cancel);
  EXPECT_FALSE(rig.session->ApplySetup(setup));
  EXPECT_EQ(state.Instruments[0].ChannelCount, 2);
  EXPECT_FALSE(state.Modified);
}

// What "Connect" does with what stands on the bus, from a set-up of one instrument.
TEST(SystemSetup, ConnectFindsTheInstrument) {
  struct Row {
    const char* bus;
    const char* own;      // serial number of the set-up
    const char* fault;    // of the first on the bus
    const char* message;  // part of the only one; empty: none
    const char* online;   // serial number; empty: off-line
  };
  const char* const choose = "Please select the serial number";
  for (const Row& row :
       {Row{"", "1", "", "No QM2210 was found on USB.", ""}, Row{"QM2210:1", "", "", "", "1"},
        Row{"QM2210:2", "1", "", "", "2"}, Row{"QM2210:2,QM2210:1", "1", "", "", "1"},
        Row{"QM2210:2,QM2210:3", "1", "", choose, "3"}, Row{"QM2210:2,QM2210:3", "", "", choose, ""},
        Row{"QM2210:1", "1", "drop@*IDN?", "Cannot find the instrument 1.", ""}}) {
    SCOPED_TRACE(std::string(row.bus) + " " + row.own);
    SessionRig rig;
    ASSERT_EQ(rig.Start(), StartUpResult::Show);
    AppState& state = rig.session->State();
    state.Instruments[0].SerialNo = row.own;
    rig.session->Sequence().ModeSettings[0][0] = 1;
    if (*row.bus) rig.Plug(row.bus);
    if (*row.fault) rig.Faults(row.fault);
    if (*row.message) rig.Answer(*row.fault ? PromptAnswer::Yes : PromptAnswer::Ok);
    const bool asked = row.message == choose;
    const bool online = rig.session->GoOnline([&]() -> std::optional<InstrumentChoice> {
      EXPECT_EQ(rig.session->Gp().Found().size(), 2U);
      EXPECT_TRUE(rig.session->Idle()) << "so that an instrument can be asked who it is";
      if (!*row.online) return std::nullopt;
      return InstrumentChoice{"QM2210", row.online};
    });
    EXPECT_EQ(online, *row.online != 0);
    EXPECT_EQ(state.Online, *row.online ? 1 : 0);
    EXPECT_EQ(state.Instruments[0].SerialNo, *row.online ? row.online : row.own);
    const std::vector<std::string> messages = rig.Messages();
    EXPECT_EQ(messages.size(), *row.message ? 1U : 0U);
    EXPECT_THAT(messages.empty() ? "" : messages[0], HasSubstr(row.message));
    EXPECT_EQ(rig.session->Sequence().ModeSettings[0][0], asked && online ? 0 : 1);
    EXPECT_EQ(state.Modified, asked && online);
    EXPECT_EQ(rig.progress.depth, 0);
  }
}

TEST(SystemSetup, ATestAsksOneInstrumentAndRestoresTheConnection) {
  SessionRig rig;
  rig.Plug("QM2210:1000001,QM2220:2000001");
  ASSERT_EQ(rig.Start(), StartUpResult::Show);
  AppState& state = rig.session->State();
  rig.Forget();
  SystemSettings setup{"QM2220", 1, 2, {}};
  setup.Instruments[1] = Entry(0, 0, "2000001", 2);
  setup.Instruments[2] = Entry(0, 0, "USB0::0x3A1F::0x2210::1000001::INSTR", 2);
  setup.Instruments[3] = Entry(1, 5, "", 2);  // no GPIB library
  const auto test = [&](int index) {
    return rig.session->TestInstrument(setup, index).value_or(InstrumentTest{});
  };
  EXPECT_EQ(test(1).Text, "Answers: TAVRIN,QM2220,2000001,1.00");
  EXPECT_THAT(rig.recorder.connections, ElementsAre("1 close", "2 open", "2 close", "1 open"));
  EXPECT_THAT(rig.recorder.exchanges, ElementsAre("2 < *IDN?", HasSubstr("2 > TAVRIN")));
  EXPECT_TRUE(test(1).Good);
  EXPECT_EQ(test(2).Text, "Answers, but is not a QM2220: TAVRIN,QM2210,1000001,1.00");
  EXPECT_FALSE(test(2).Good);
  EXPECT_THAT(test(3).Text, HasSubstr("library is missing.\nNI-488.2: switched off"));
  rig.Faults("drop@*IDN?", 1);
  EXPECT_EQ(test(1).Text, "It does not answer.");
  EXPECT_EQ(state.ModelName, "QM2210");
  EXPECT_TRUE(rig.session->CheckModels()) << "the connection works";
  // While an instrument may still run nothing is asked without consent.
  state.MayStillRun = true;
  rig.Answer(PromptAnswer::Cancel);
  EXPECT_FALSE(rig.session->TestInstrument(setup, 1));
  state.MayStillRun = false;
  rig.Messages();
  // Its own instrument is gone when the connection is opened again.
  rig.Faults("gone");
  rig.Answer(PromptAnswer::Ok);
  EXPECT_THAT(test(1).Text, HasSubstr("does not answer"));
  EXPECT_THAT(rig.Messages(),
              ElementsAre(HasSubstr("1 occurred.\nUSB0::0X3A1F::0X2210::1000001::INSTR does not")));
  EXPECT_EQ(state.Online, 0);
  EXPECT_FALSE(state.Connected);
}

}  // namespace
}  // namespace corlune::testing
