#include "execution/run_monitor.h"

#include <gmock/gmock.h>

#include "execution/run_rig.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const char* const kEndMessage = "message information: The sequence execution was ended.";
const char* const kCritical1 = "message critical: The communication error to the instrument 1 occurred.";
const char* const kError1 = "message exclamation: The communication error to the instrument 1 occurred.";
const char* const kOffMessage =
    "message information: The output of the instrument 1 was turned off. The sequence execution is "
    "discontinued.";

// The end of a run while step row 1 is highlighted, and what a stop adds.
const std::string kEnding = "timer off|unhighlight 1|elapsed 0|scroll 1|";
const std::string kStop = "0 < :STOP|" + kEnding;

EventList Split(const std::string& text) {
  EventList events;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t bar = std::min(text.find('|', at), text.size());
    events.push_back(text.substr(at, bar - at));
    at = bar + 1;
  }
  return events;
}

enum class End { Well, Badly, No };

// What a tick leaves.
struct After {
  End ends = End::No;
  std::int16_t step = 0;
  RunState run = RunState::Running;
  bool outputOn = true;
  OperationMode mode = OperationMode::Execution;
};

struct TickRow {
  const char* name;
  std::vector<const char*> replies;  // to the output, step and status query, as far as they are asked
  std::string events;                // behind those queries
  After after = {};
  std::function<void(RunRig&)> prepare = {};
};

std::function<void(RunRig&)> Pending(PendingRequest request, std::int16_t branch = 0) {
  return [=](RunRig& rig) {
    rig.sequence.Steps[0].BranchStep[0] = branch;
    rig.state.PendingRequest = request;
  };
}
void LateStep(RunRig& rig) {
  rig.onExchange = [&rig](const std::string& line) { rig.clock.Advance(line == "0 > 1" ? 350 : 0); };
}
std::function<void(RunRig&)> Failing(const char* exchange) {
  return [=](RunRig& rig) { rig.script.FailOn(exchange, CommStatus::Error); };
}
void EndsWithMessage(RunRig& rig) {
  rig.sequence.Steps[0].StepTerm = 2;
}
void ShowView(RunRig& rig) {
  rig.state.SequenceViewShown = true;
}
void FollowBranch(RunRig& rig) {
  rig.state.BranchRequested = true;
  rig.state.BranchTarget = 3;
}
void SecondReply(RunRig& rig) {
  rig.Reply("1", "0", "16");
  rig.script.Reply(":STEP?", {"x", "0"});
}

std::vector<TickRow> TickRows() {
  using P = PendingRequest;
  const RunState stopped = RunState::Stopped;
  const After held{End::No, 0, RunState::Held};
  const After well{End::Well, 2, stopped};
  const After failed{End::Badly, 2, stopped};
  const After off{End::Badly, 2, stopped, false};
  const After edit{End::Badly, 2, stopped, true, OperationMode::Edit};
  const After editOff{End::Badly, 2, stopped, false, OperationMode::Edit};
  const auto to = [](std::int16_t step) { return After{End::No, step}; };
  const std::string error = kError1;
  const std::string trip = std::string("0 < :STOP|") + kOffMessage + "|" + kEnding + "refresh|refresh";
  const std::string end = "elapsed 101|0 < :OUTP?|0 > 1|" + kEnding + "refresh|" + kEndMessage;
  const std::string stop4 = kStop + "0 < :STAT?|0 > 4|refresh";
  const std::string stopFails = std::string("0 < :STOP|refresh|") + kCritical1 + "|" + kEnding + "refresh";
  const std::string noOutput = error + "|" + kEnding + "refresh|0 < :STEP?|0 > 0";
  const std::string noStatus = "0 < :STAT?|" + error + "|layout 0|" + kEnding + "refresh";
  const std::string again = "ifc|dcl|0 < :STEP?|0 > ";
  const std::string hold = "0 < :HOLD|timer off|refresh|0 < :STEP?|0 > 1|unhighlight 1|highlight 1";
  const std::string view = "elapsed 101|unhighlight 1|highlight 1|scroll 1|view redraw|view marker 1201";
  return {
      {"next step", {"1", "1", "4"}, "elapsed 801|unhighlight 1|highlight 2", to(1), LateStep},
      {"final step", {"1", "0", "4"}, "unhighlight 1|highlight 1|scroll 1", {}, EndsWithMessage},
      {"unknown status", {"1", "1", "16"}, ""},
      {"status no number", {"1", "1", "BUSY"}, ""},
      {"both outputs on", {"1;1", "0", "16"}, ""},
      {"step equal to the count", {"1", "3", "4"}, "elapsed 101|unhighlight 1", to(3)},
      {"followed after a branch", {"1", "0", "16"}, "unhighlight 1|highlight 3|refresh", to(2), FollowBranch},
      {"view follows", {"1", "0", "4"}, view, {}, ShowView},
      {"branch without target",
       {"1", "0", "16"},
       "notice: No branch: the step has no branch step for branch channel 1.|refresh",
       {},
       Pending(P::Branch)},
      {"branch waits", {"1", "0", "16"}, "0 < :BRAN 3|refresh", {}, Pending(P::Branch, 3)},
      {"hold waits", {"1", "1", "16"}, hold, held, Pending(P::Hold)},
      {"held at the instrument", {"1", "0", "8"}, "elapsed 101|refresh|timer off", held},
      {"stop waits", {"1", "0", "16"}, kStop + "0 < :STAT?|0 > 16|refresh", well, Pending(P::Stop)},
      {"stop at the instrument", {"1", "0", "2"}, kStop + "0 < :STAT?|0 > 2|refresh", well},
      {"that stop fails", {"1", "0", "2"}, stopFails, off, Failing("0 < :STOP")},
      {"end of the run", {"1", "-1"}, end, well},
      {"negative step", {"1", "-2"}, stop4, failed},
      {"beyond the last step", {"1", "4"}, stop4, failed},
      {"the same with message", {"1", "4"}, stop4 + "|" + kEndMessage, well, EndsWithMessage},
      {"output off", {"0"}, trip, off},
      {"second output off", {"1;0"}, trip, off},
      {"output no number", {"?"}, trip, off},
      {"output query fails", {}, noOutput, failed, Failing("0 < :OUTP?")},
      {"status query fails", {"1", "0"}, noStatus, edit, Failing("0 < :STAT?")},
      {"step no number, then one", {"1", "x"}, again + "0|0 < :STAT?|0 > 16", {}, SecondReply},
      {"step no number twice", {"1", "x"}, again + "x|layout 0|" + kEnding + "refresh|refresh", editOff},
  };
}

TEST(RunMonitor, EveryRowOfATick) {
  const char* const queries[] = {"0 < :OUTP?", "0 < :STEP?", "0 < :STAT?"};
  for (const TickRow& row : TickRows()) {
    SCOPED_TRACE(row.name);
    RunRig rig;
    rig.StartRun();
    const auto reply = [&](std::size_t query, const char* other) {
      return query < row.replies.size() ? row.replies[query] : other;
    };
    rig.Reply(reply(0, "1"), reply(1, "0"), reply(2, "4"));
    if (row.prepare) row.prepare(rig);
    EventList expected{"elapsed 101"};
    for (std::size_t i = 0; i < row.replies.size(); ++i) {
      expected.insert(expected.end(), {queries[i], std::string("0 > ") + row.replies[i]});
    }
    if (row.replies.empty()) expected.push_back(queries[0]);
    for (const std::string& event : Split(row.events)) {
      expected.push_back(event);
      if (event.starts_with("message")) rig.prompts.Answer(PromptAnswer::Ok);
    }
    EXPECT_THAT(rig.Tick(), ElementsAreArray(expected));
    EXPECT_EQ(rig.state.RunState, row.after.run);
    EXPECT_EQ(rig.state.OperationMode, row.after.mode);
    EXPECT_EQ(rig.state.OutputOn, row.after.outputOn);
    EXPECT_EQ(rig.state.CurrentStep, row.after.step);
    EXPECT_EQ(rig.timer.enabled, row.after.run == RunState::Running);
    EXPECT_EQ(rig.state.PendingRequest, PendingRequest::None);
    EXPECT_FALSE(rig.control.Busy());
    if (row.after.ends != End::No) {
      EXPECT_EQ(rig.monitor.EndedWell(), row.after.ends == End::Well);
    }
    // A stop that was taken leaves no doubt; a failed one or a failed query does.
    const bool stopped = row.events.find("0 < :STOP|timer") != std::string::npos ||
                         row.events.find(kOffMessage) != std::string::npos;
    EXPECT_EQ(rig.state.MayStillRun, row.after.ends == End::Badly && !stopped);
  }
}

// Once in each 100 ms from the start, also when a tick comes late.
TEST(RunMonitor, PollsOnceAnInterval) {
  struct Row {
    std::uint32_t after;
    bool polls;
  };
  RunRig rig;
  rig.StartRun();
  std::int32_t elapsed = 0;
  for (const Row& row :
       {Row{0, true}, Row{99, false}, Row{61, true}, Row{41, true}, Row{98, false}, Row{1, true}}) {
    const EventList events = rig.Tick(row.after);
    elapsed += static_cast<std::int32_t>(row.after);
    EXPECT_EQ(events.front(), "elapsed " + std::to_string(elapsed));
    EXPECT_EQ(rig.script.CountOf("0 < :OUTP?"), row.polls ? 1 : 0) << elapsed;
  }
}

TEST(RunMonitor, TheClockMayWrapInAStepAndInAHold) {
  RunRig rig;
  rig.clock.Set(0xFFFFFF7CU);  // the start command waits 100 ms
  rig.StartRun();
  EXPECT_EQ(rig.Tick(40).front(), "elapsed 40");
  EXPECT_EQ(rig.script.CountOf("0 < :STEP?"), 1);
  rig.Tick(50);
  EXPECT_THAT(rig.script.Log(), IsEmpty());

  rig.clock.Set(0xFFFFFF00U);
  rig.state.RunStartTime = 0xFFFFFE00U;
  rig.state.PendingRequest = PendingRequest::Hold;
  rig.Tick(0);
  ASSERT_EQ(rig.state.RunState, RunState::Held);
  const std::uint32_t heldSince = rig.state.HoldStartTime;
  const auto ran = static_cast<std::int32_t>(heldSince - rig.state.RunStartTime);
  rig.clock.Advance(5000);
  ASSERT_TRUE(rig.control.RunCommand(Run::Start));
  EXPECT_EQ(rig.Tick(10).front(), "elapsed " + std::to_string(ran + 10));
}

TEST(RunMonitor, ElapsedTimeStaysAtItsMaximum) {
  RunRig rig;
  rig.StartRun();
  for (int quarter = 1; quarter <= 5; ++quarter) {
    const std::string shown = quarter == 1 ? "elapsed 1073741824" : "elapsed 2147483647";
    EXPECT_EQ(rig.Tick(1U << 30).front(), shown) << quarter;
  }
  ASSERT_TRUE(rig.control.RunCommand(Run::Stop));
  rig.StartRun();
  EXPECT_EQ(rig.Tick(7).front(), "elapsed 7");
}

TEST(RunMonitor, ScrollsWithTheStep) {
  struct Row {
    int count;
    int step;
    const char* scroll;  // null: none
  };
  for (const Row& row :
       {Row{30, 0, "scroll 1"}, Row{30, 5, "scroll 5"}, Row{30, 20, "scroll 20"}, Row{30, 21, "scroll 20"},
        Row{30, 29, "scroll 20"}, Row{11, 2, "scroll 1"}, Row{11, 1, "scroll 1"}, Row{10, 1, nullptr},
        Row{10, 9, nullptr}, Row{10, 0, "scroll 1"}}) {
    SCOPED_TRACE(std::to_string(row.step) + " of " + std::to_string(row.count));
    RunRig rig;
    rig.UseSteps(row.count);
    rig.StartRun();
    rig.Reply("1", std::to_string(row.step), "4");
    const EventList events = rig.Tick();
    if (row.scroll) {
      EXPECT_EQ(events.back(), row.scroll);
    } else {
      EXPECT_EQ(events.back(), "highlight " + std::to_string(row.step + 1));
    }
  }
}

// Off-line the run goes on until it is stopped, without traffic.
TEST(RunMonitor, RunsOffLineWithoutTraffic) {
  RunRig rig;
  rig.state.Online = 0;
  rig.StartRun();
  rig.sequence.Steps[0].BranchStep[0] = 2;
  EXPECT_THAT(rig.Tick(), ElementsAre("elapsed 101"));
  rig.control.MenuItem(3);
  rig.Tick();
  rig.Tick();
  EXPECT_EQ(rig.state.CurrentStep, 1);
  rig.control.MenuItem(1);
  rig.Tick();
  EXPECT_EQ(rig.state.RunState, RunState::Stopped);
  EXPECT_THAT(rig.script.Log(), IsEmpty());
}

// Each query waits as the definition says; the repetition waits as the output query does.
TEST(RunQueries, TheRepetitionBehindATimeOutWaits) {
  RunRig rig;
  rig.StartRun();
  rig.Reply("1", "1", "1");
  rig.definition.Commands.OutputQuery.Wait = 30;
  rig.definition.Commands.Status.Wait = 20;
  rig.definition.Commands.CurrentStep.Wait = 10;
  const std::pair<std::function<int()>, std::uint32_t> queries[] = {
      {[&] { return rig.queries.OutputQuery(0); }, 60},
      {[&] { return rig.queries.StatusQuery(0); }, 50},
      {[&] { return rig.queries.StepQuery(0); }, 40},
  };
  for (const auto& [ask, waits] : queries) {
    rig.script.FailOn("0 > ", CommStatus::TimeOut, 1);
    const std::uint32_t before = rig.clock.Now();
    EXPECT_EQ(ask(), 1);
    EXPECT_EQ(rig.clock.Now() - before, waits);
  }
}

}  // namespace
}  // namespace corlune::testing
