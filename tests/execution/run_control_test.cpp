#include "execution/run_control.h"

#include <gmock/gmock.h>

#include "execution/run_rig.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const char* const kQuestion =
    "message information: Output switch truns to 'on' and sequence will start. Is it OK?";

std::string Critical(int instrument) {
  return "message critical: The communication error to the instrument " + std::to_string(instrument) +
         " occurred.";
}

TEST(RunControl, StartsWithOutputsOffAndOn) {
  RunRig rig;
  rig.UseInstruments(2);
  rig.state.Instruments[1].InterfaceKind = InterfaceKind::NiGpib;
  rig.state.Instruments[1].Address = 9;
  rig.state.OutputOn = false;
  rig.state.SequenceViewShown = true;
  rig.prompts.Answer(PromptAnswer::Ok);
  ASSERT_TRUE(rig.control.RunCommand(Run::Start));
  EXPECT_THAT(rig.events, ElementsAre(kQuestion, "0 < :OUTP ON", "[0] 9 < :OUTP ON", "0 < :START",
                                      "[0] 9 < :START", "0 < :STEP?", "0 > 0", "scroll 1", "highlight 1",
                                      "timer on", "view start", "refresh"));
  EXPECT_TRUE(rig.state.OutputOn);
  EXPECT_FALSE(rig.control.RunCommand(Run::Start)) << "runs already";

  RunRig cancelled;
  cancelled.state.OutputOn = false;
  cancelled.prompts.Answer(PromptAnswer::Cancel);
  EXPECT_FALSE(cancelled.control.RunCommand(Run::Start));
  EXPECT_THAT(cancelled.events, ElementsAre(kQuestion));
}

TEST(RunControl, HoldAndResume) {
  RunRig rig;
  rig.UseInstruments(2);
  rig.UseSteps(20);
  rig.StartRun();
  rig.Reply("1", "4", "4");
  rig.Tick();
  rig.control.MenuItem(2);
  EXPECT_THAT(rig.Tick(1),
              ElementsAre(::testing::StartsWith("elapsed"), "0 < :HOLD", "1 < :HOLD", "timer off", "refresh",
                          "0 < :STEP?", "0 > 4", "unhighlight 5", "highlight 5", "scroll 4"));
  rig.Forget();
  const std::uint32_t before = rig.clock.Now();
  rig.control.Button(1);
  EXPECT_THAT(rig.events, ElementsAre("0 < :TRIG1:SEL:EXEC RES", "1 < :TRIG1:SEL:EXEC RES", "scroll 4",
                                      "timer on", "refresh"));
  EXPECT_EQ(rig.clock.Now() - before, 800U);
  EXPECT_EQ(rig.state.CurrentStep, 4);
}

// Every exchange of every command fails in turn.
TEST(RunControl, AFailedCommandStopsTheRunAndSendsNothingMore) {
  struct Row {
    const char* name;
    corlune::Run command;
    const char* failing;
    int instrument;  // 1-based
    RunState before;
    bool outputBefore;
    bool outputAfter;
    RunState after;
  };
  const std::vector<Row> rows{
      {"start", Run::Start, "1 < :START", 2, RunState::Stopped, true, false, RunState::Stopped},
      {"outputs for start", Run::Start, "0 < :OUTP ON", 1, RunState::Stopped, false, false,
       RunState::Stopped},
      {"resume", Run::Start, "1 < :TRIG1", 2, RunState::Held, true, false, RunState::Stopped},
      {"stop", Run::Stop, "0 < :STOP", 1, RunState::Running, true, false, RunState::Stopped},
      {"stop held", Run::Stop, "1 < :STOP", 2, RunState::Held, true, false, RunState::Stopped},
      {"hold", Run::Hold, "0 < :HOLD", 1, RunState::Running, true, false, RunState::Stopped},
      {"branch", Run::Branch, "1 < :BRAN", 2, RunState::Running, true, false, RunState::Stopped},
      {"output on", Run::OutputOn, "1 < :OUTP ON", 2, RunState::Stopped, false, false, RunState::Stopped},
      {"output off", Run::OutputOff, "0 < :OUTP OFF", 1, RunState::Running, true, true, RunState::Running},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    RunRig rig;
    rig.UseInstruments(2);
    rig.sequence.Steps[0].BranchStep[0] = 2;
    if (row.before != RunState::Stopped) rig.StartRun();
    if (row.before == RunState::Held) {
      ASSERT_TRUE(rig.control.RunCommand(Run::Hold));
    }
    rig.state.OutputOn = row.outputBefore;
    rig.Forget();
    rig.script.FailOn(row.failing, CommStatus::Error);
    if (row.command == Run::Start && !row.outputBefore) rig.prompts.Answer(PromptAnswer::Ok);
    rig.prompts.Answer(PromptAnswer::Ok);
    EXPECT_FALSE(rig.control.RunCommand(row.command));
    EXPECT_THAT(rig.events, ::testing::Contains(Critical(row.instrument)));
    EXPECT_THAT(rig.script.Log().back(), ::testing::StartsWith(row.failing));
    EXPECT_EQ(rig.state.OutputOn, row.outputAfter);
    EXPECT_EQ(rig.state.RunState, row.after);
    EXPECT_EQ(rig.timer.enabled, row.after == RunState::Running);
    EXPECT_TRUE(rig.display.outputEnabled);
    EXPECT_FALSE(rig.control.Busy());
  }
}

TEST(RunControl, AFreshStartNeedsAnAnswerToTheStepQuery) {
  RunRig rig;
  rig.script.FailOn("0 < :STEP?", CommStatus::Error);
  rig.prompts.Answer(PromptAnswer::Ok);
  EXPECT_FALSE(rig.control.RunCommand(Run::Start));
  EXPECT_EQ(rig.state.RunState, RunState::Stopped);
  EXPECT_EQ(rig.state.OperationMode, OperationMode::Edit);
  EXPECT_FALSE(rig.state.OutputOn);
  EXPECT_FALSE(rig.timer.enabled);
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
  }
}

TEST(RunControl, AStopThatWaitsIsNotReplaced) {
  RunRig rig;
  rig.StartRun();
  rig.control.MenuItem(1);
  rig.control.MenuItem(2);
  rig.control.MenuItem(3);
  EXPECT_EQ(rig.state.PendingRequest, PendingRequest::Stop);
}

TEST(RunControl, NoRunCommandInEditMode) {
  RunRig rig;
  rig.state.OperationMode = OperationMode::Edit;
  for (const int item : {0, 1, 4, 5}) rig.control.MenuItem(item);
  EXPECT_THAT(rig.events, IsEmpty());
}

TEST(RunControl, BranchSendsTheChosenEntry) {
  struct Row {
    const char* commandTemplate;
    int channel;
    EventList sent;
  };
  const std::vector<Row> rows{
      {":BRAN $BNHSTP0", 1, {":BRAN 11"}},
      {":BRAN $BNHSTP0", 3, {":BRAN 13"}},
      {":BRAN $BNHSTP4,OK", 5, {":BRAN 15,OK"}},
      {":BRAN $BNHCHN", 2, {":BRAN 2"}},
      {":BRAN", 2, {":BRAN"}},
      {":BRAN $BNHSTPx", 1, {":BRAN $BNHSTPx"}},
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
    if (!row.sent.empty()) {
      EXPECT_EQ(rig.state.BranchTarget, 10 + row.channel);
    }
  }
}

TEST(RunControl, EntersExecutionModeAfterADownload) {
  struct Row {
    const char* name;
    int steps;
    bool downloads;
    const char* output;
    bool entered;
    bool outputOn;
    EventList events;
  };
  const std::vector<Row> rows{
      {"no steps",
       0,
       true,
       "1",
       false,
       false,
       {"message information: One or more than one steps are necessary for the sequence execution."}},
      {"refused", 2, false, "1", false, false, {"download"}},
      {"output on", 2, true, "1", true, true, {"download", "0 < :OUTP?", "0 > 1", "layout 1", "refresh"}},
      {"output off", 2, true, "0", true, false, {"download", "0 < :OUTP?", "0 > 0", "layout 1", "refresh"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    RunRig rig;
    rig.state.OperationMode = OperationMode::Edit;
    rig.state.OutputOn = false;
    rig.UseSteps(row.steps);
    rig.script.Reply(":OUTP?", {row.output});
    rig.download = [&] {
      rig.events.push_back("download");
      // Nothing can start while the sequence is on its way.
      EXPECT_TRUE(rig.control.Busy());
      EXPECT_FALSE(rig.control.RunCommand(Run::Start));
      EXPECT_FALSE(rig.control.SetOperationMode(OperationMode::Execution));
      for (const int button : {0, 1, 2, 5}) rig.control.Button(button);
      return row.downloads;
    };
    if (row.steps == 0) rig.prompts.Answer(PromptAnswer::Ok);
    EXPECT_EQ(rig.control.SetOperationMode(OperationMode::Execution), row.entered);
    EXPECT_THAT(rig.events, ElementsAreArray(row.events));
    EXPECT_EQ(rig.state.OperationMode, row.entered ? OperationMode::Execution : OperationMode::Edit);
    EXPECT_EQ(rig.state.OutputOn, row.outputOn);
    EXPECT_FALSE(rig.control.Busy());
  }
}

TEST(RunControl, TheModeStaysWhileARunIsGoingOrHeld) {
  RunRig rig;
  rig.StartRun();
  EXPECT_FALSE(rig.control.SetOperationMode(OperationMode::Edit));
  ASSERT_TRUE(rig.control.RunCommand(Run::Hold));
  EXPECT_FALSE(rig.control.SetOperationMode(OperationMode::Edit));
  rig.control.MenuItem(1);
  rig.Forget();
  EXPECT_TRUE(rig.control.SetOperationMode(OperationMode::Edit));
  EXPECT_THAT(rig.events, ElementsAre("layout 0", "refresh"));
}

}  // namespace
}  // namespace corlune::testing
