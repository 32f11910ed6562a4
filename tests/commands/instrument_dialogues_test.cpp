#include "commands/instrument_dialogues.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "support/instrument_rig.h"

namespace corlune {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

struct Rig : corlune::testing::InstrumentRig {
  InstrumentDialogues dialogues{commands, prompts, catalogue};
};

TEST(InstrumentDialogues, TalkToInstrumentZeroWhateverWasAddressedLast) {
  Rig rig;
  rig.state.CurrentInterface = InterfaceKind::NiGpib;
  rig.script.Reply(":SYST:ERR?", {"0,\"No error\""});
  rig.dialogues.QueryErrorNumber();
  EXPECT_THAT(rig.script.Log(), ElementsAre("0 < :SYST:ERR?", "0 > 0,\"No error\""));
}

TEST(InstrumentDialogues, ErrorNumberIsTheLeadingNumberOfTheReply) {
  struct Case {
    std::string reply;
    std::int32_t number;
  };
  const Case cases[] = {
      {"-222,\"Data out of range\"", -222},
      {"  +7", 7},
      {"0,\"No error\"", 0},
      {"", 0},
      {"99999999999", 2147483647},
      {std::string(127, ' ') + "12", 1},  // cut at 128 characters
  };
  for (const Case& c : cases) {
    Rig rig;
    rig.script.Reply(":SYST:ERR?", {c.reply});
    EXPECT_EQ(rig.dialogues.QueryErrorNumber(), c.number) << c.reply;
  }
}

struct PrepareCase {
  const char* state;      // reply to the sequence state query
  const char* condition;  // reply to the operation condition query
  int failing;            // exchange that fails, -1 none
  bool ready;
  std::vector<std::string> sent;
};

TEST(InstrumentDialogues, PrepareSequenceMode) {
  const std::string stateQuery = ":SOUR1:SEQ:STAT?";
  const std::string on = ":SOUR1:SEQ:STAT 1";
  const std::string conditionQuery = ":STAT:OPER:CH1:COND?";
  const std::string stop = ":TRIG1:SEL:EXEC IST";
  const PrepareCase cases[] = {
      {"0", "0", -1, true, {stateQuery, on, conditionQuery}},
      {"", "2", -1, true, {stateQuery, on, conditionQuery}},
      {"1", "4", -1, true, {stateQuery, conditionQuery, stop}},
      {"1", "12", -1, true, {stateQuery, conditionQuery}},
      {"1", "                4", -1, true, {stateQuery, conditionQuery}},  // beyond the 16 characters
      {"0", "4", 5, false, {stateQuery, on, conditionQuery, stop + " !1"}},
  };
  for (const PrepareCase& c : cases) {
    SCOPED_TRACE(std::string(c.state) + "/" + c.condition + " failing " + std::to_string(c.failing));
    Rig rig;
    rig.script.Reply(stateQuery, {c.state});
    rig.script.Reply(conditionQuery, {c.condition});
    if (c.failing >= 0) rig.script.FailAt(static_cast<std::size_t>(c.failing), CommStatus::TimeOut);
    EXPECT_EQ(rig.dialogues.PrepareSequenceMode(), c.ready);
    EXPECT_THAT(rig.script.Sent(), ElementsAreArray(c.sent));
  }
}

struct CompileCase {
  const char* what;
  std::vector<std::int16_t> statusBytes;
  const char* sequenceStatus;
  const char* error;
  bool done;
  bool message;  // 9311
  int polls;
  std::vector<std::string> sent;
};

TEST(InstrumentDialogues, WaitCompileDone) {
  const CompileCase cases[] = {
      {"after three polls", {0, 0, 0x80}, "3", "0", true, false, 3, {":STAT?"}},
      {"status bit missing", {0x80}, "5", "-222", false, false, 1, {":STAT?"}},
      {"both bits", {0xA0}, "2", "0", true, false, 1, {":STAT?"}},
      {"refused", {0, 0x20}, "2", "-222,\"Data out of range\"", false, true, 2, {"*ESR?", ":SYST:ERR?"}},
      {"another error", {0x20}, "2", "-225", false, false, 1, {"*ESR?", ":SYST:ERR?"}},
      {"another bit", {0x04}, "2", "-222", false, true, 1, {":SYST:ERR?"}},
      {"never", {0}, "2", "0", false, false, 200, {":SYST:ERR?"}},
  };
  for (const CompileCase& c : cases) {
    SCOPED_TRACE(c.what);
    Rig rig;
    rig.script.StatusBytes(c.statusBytes);
    rig.script.Reply(":STAT?", {c.sequenceStatus});
    rig.script.Reply("*ESR?", {"32"});
    rig.script.Reply(":SYST:ERR?", {c.error});
    if (c.message) rig.prompts.Answer(PromptAnswer::Ok);
    EXPECT_EQ(rig.dialogues.WaitCompileDone(), c.done);
    EXPECT_THAT(rig.script.Sent(), ElementsAreArray(c.sent));
    EXPECT_EQ(rig.script.CountOf("0 spoll"), c.polls);
    EXPECT_EQ(rig.clock.Now(), 1000u + 100u * static_cast<unsigned>(c.polls));
    EXPECT_EQ(rig.prompts.messages.size(), c.message ? 1u : 0u);
    if (c.message && !rig.prompts.messages.empty()) {
      EXPECT_EQ(rig.prompts.messages[0].text, rig.catalogue.GetResString(TextId{9311}));
      EXPECT_EQ(rig.prompts.messages[0].icon, PromptIcon::Critical);
    }
  }
}

// An instrument that is gone lets every poll run into its time-out.
TEST(InstrumentDialogues, CompileWaitIsLimitedInTime) {
  Rig rig;
  rig.script.StatusBytes({0});
  rig.script.onExchange = [&](const std::string&) { rig.clock.Advance(3000); };
  EXPECT_FALSE(rig.dialogues.WaitCompileDone());
  EXPECT_EQ(rig.script.CountOf("0 spoll"), 20);
}

}  // namespace
}  // namespace corlune
