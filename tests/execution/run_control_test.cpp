#include "execution/run_control.h"

#include <gmock/gmock.h>

#include "execution/run_rig.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

TEST(RunControl, StartHoldAndResume) {
  const std::string question =
      "message information: Output switch truns to 'on' and sequence will start. Is it OK?";
  RunRig rig;
  rig.UseInstruments(2);
  rig.UseSteps(20);
  rig.state.Instruments[1].InterfaceKind = InterfaceKind::NiGpib;
  rig.state.Instruments[1].Address = 9;
  rig.state.OutputOn = false;
  rig.state.SequenceViewShown = true;
  rig.prompts.Answer(PromptAnswer::Cancel);
  EXPECT_FALSE(rig.control.RunCommand(Run::Start));
  rig.prompts.Answer(PromptAnswer::Ok);
  ASSERT_TRUE(rig.control.RunCommand(Run::Start));
  EXPECT_THAT(rig.events,
              ElementsAre("refresh", question, "refresh", "refresh", question, "0 < :OUTP ON",
                          "[0] 9 < :OUTP ON", "0 < :START", "[0] 9 < :START", "0 < :STEP?", "0 > 0",
                          "scroll 1", "highlight 1", "timer on", "view start", "refresh"));
  EXPECT_TRUE(rig.state.OutputOn);
  EXPECT_FALSE(rig.control.RunCommand(Run::Start)) << "runs already";

  rig.state.SequenceViewShown = false;
  rig.Reply("1", "4", "4");
  rig.Tick();
  rig.control.MenuItem(2);
  EXPECT_THAT(rig.Tick(1),
              ElementsAre(::testing::StartsWith("elapsed"), "0 < :HOLD", "[0] 9 < :HOLD", "timer off",
                          "refresh", "0 < :STEP?", "0 > 4", "unhighlight 5", "highlight 5", "scroll 4"));
  rig.Forget();
  const std::uint32_t before = rig.clock.Now();
  rig.control.MenuItem(0);
  EXPECT_THAT(rig.events, ElementsAre("refresh", "0 < :TRIG1:SEL:EXEC RES", "[0] 9 < :TRIG1:SEL:EXEC RES",
                                      "scroll 4", "timer on", "refresh"));
  EXPECT_EQ(rig.clock.Now() - before, 800U);
  EXPECT_EQ(rig.state.CurrentStep, 4);
}

TEST(RunControl, MenuItemsByState) {
  struct Row {
    RunState state;
    int item;
    EventList sent;  // at once
    PendingRequest pending;
  };
  using P = PendingRequest;
  const std::vector<Row> rows{
      {RunState::Stopped, 1, {}, P::None},
      {RunState::Stopped, 4, {":OUTP ON"}, P::None},
      {RunState::Stopped, 5, {":OUTP OFF"}, P::None},
      {RunState::Running, 0, {}, P::None},
      {RunState::Running, 1, {}, P::Stop},
      {RunState::Running, 2, {}, P::Hold},
      {RunState::Running, 3, {}, P::Branch},
      {RunState::Running, 5, {":OUTP OFF"}, P::None},
      {RunState::Held, 0, {":TRIG1:SEL:EXEC RES"}, P::None},
      {RunState::Held, 1, {":STOP", ":STAT?"}, P::None},
      {RunState::Held, 2, {}, P::None},
      {RunState::Held, 3, {}, P::None},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE("item " + std::to_string(row.item) + " in state " +
                 std::to_string(static_cast<int>(row.state)));
    RunRig rig;
    if (row.state != RunState::Stopped) rig.StartRun();
    if (row.state == RunState::Held) {
      ASSERT_TRUE(rig.control.RunCommand(Run::Hold));
    }
    rig.Forget();
    rig.control.MenuItem(row.item);
    EXPECT_THAT(rig.script.Sent(), ElementsAreArray(row.sent));
    EXPECT_EQ(rig.state.PendingRequest, row.pending);
    // A stop that waits is not replaced.
    if (row.pending != P::Stop) continue;
    for (const int item : {2, 3}) rig.control.MenuItem(item);
    EXPECT_EQ(rig.state.PendingRequest, P::Stop);
  }
  RunRig editing;
  editing.state.OperationMode = OperationMode::Edit;
  for (const int item : {0, 1, 4, 5}) editing.control.MenuItem(item);
  EXPECT_THAT(editing.events, ::testing::IsEmpty());
}

TEST(RunControl, BranchSendsTheChosenEntry) {
  struct Row {
    const char* commandTemplate;
    int channel;
    EventList sent;
  };
  const std::vector<Row> rows{
      {":BRAN $BNHSTP4,OK", 1, {":BRAN 11,OK"}},
      {":BRAN $BNHCHN", 2, {":BRAN 2"}},
      {":BRAN $BNHSTPx", 5, {":BRAN $BNHSTPx"}},
      {":BRAN $BNHSTP", 1, {":BRAN $BNHSTP"}},
      {":BRAN $BNHSTP0", 4, {}},  // entry 0: none
      {":BRAN $BNHSTP0", 0, {}},
      {":BRAN $BNHSTP0", 6, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.commandTemplate) + " channel " + std::to_string(row.channel));
    RunRig rig;
    rig.definition.Commands.Branch.Template = row.commandTemplate;
    rig.sequence.BranchChannel = static_cast<std::int16_t>(row.channel);
    rig.sequence.Steps[0].BranchStep = {11, 12, 13, 0, 15};
    rig.StartRun();
    EXPECT_EQ(rig.control.RunCommand(Run::Branch), !row.sent.empty());
    EXPECT_THAT(rig.script.Sent(), ElementsAreArray(row.sent));
    EXPECT_EQ(rig.state.BranchRequested, !row.sent.empty());
    const std::string notice = "notice: No branch: the step has no branch step for branch channel " +
                               std::to_string(row.channel) + ".";
    EXPECT_EQ(std::count(rig.events.begin(), rig.events.end(), notice), row.sent.empty() ? 1 : 0);
    if (!row.sent.empty()) {
      EXPECT_EQ(rig.state.BranchTarget, 10 + row.channel);
    }
  }
}

TEST(RunControl, EntersExecutionModeAfterADownload) {
  const char* const noSteps =
      "message information: One or more than one steps are necessary for the sequence execution.";
  struct Row {
    int steps;
    bool downloads;
    const char* output;
    EventList events;
  };
  for (const Row& row : {Row{0, true, "1", {noSteps, "refresh"}}, Row{2, false, "1", {"download", "refresh"}},
                         Row{2, true, "1", {"download", "0 < :OUTP?", "0 > 1", "layout 1", "refresh"}},
                         Row{2, true, "0", {"download", "0 < :OUTP?", "0 > 0", "layout 1", "refresh"}}}) {
    SCOPED_TRACE(row.events.front() + row.output);
    RunRig rig;
    rig.state.OperationMode = OperationMode::Edit;
    rig.state.OutputOn = false;
    rig.UseSteps(row.steps);
    rig.script.Reply(":OUTP?", {row.output});
    rig.download = [&] {
      rig.events.push_back("download");
      EXPECT_TRUE(rig.control.Busy());
      EXPECT_FALSE(rig.control.SetOperationMode(OperationMode::Execution));
      return row.downloads;
    };
    if (row.steps == 0) rig.prompts.Answer(PromptAnswer::Ok);
    const bool entered = row.steps > 0 && row.downloads;
    EXPECT_EQ(rig.control.SetOperationMode(OperationMode::Execution), entered);
    EXPECT_THAT(rig.events, ElementsAreArray(row.events));
    EXPECT_EQ(rig.state.OperationMode, entered ? OperationMode::Execution : OperationMode::Edit);
    EXPECT_EQ(rig.state.OutputOn, entered && *row.output == '1');
    EXPECT_FALSE(rig.control.Busy());
  }
}

}  // namespace
}  // namespace corlune::testing
