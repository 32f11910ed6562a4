#include "execution/run_monitor.h"

#include <gmock/gmock.h>

#include "execution/run_rig.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const char* const kEndMessage = "message information: The sequence execution was ended.";
const char* const kError1 = "message exclamation: The communication error to the instrument 1 occurred.";
const char* const kOffMessage =
    "message information: The output of the instrument 1 was turned off. The sequence execution is "
    "discontinued.";

// What MeasureEnd does while step `row` is highlighted.
EventList Ending(const std::string& row) {
  return {"timer off", "unhighlight " + row, "elapsed 0", "scroll 1"};
}

EventList Joined(std::initializer_list<EventList> parts) {
  EventList all;
  for (const EventList& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

const EventList kOutputOn{"elapsed 101", "0 < :OUTP?", "0 > 1"};
EventList StepIs(const std::string& step) {
  return {"0 < :STEP?", "0 > " + step};
}
EventList StatusIs(const std::string& status) {
  return {"0 < :STAT?", "0 > " + status};
}
// Stop at step row 1, with its closing status query.
EventList Stopped(const std::string& status) {
  return Joined({{"0 < :STOP"}, Ending("1"), StatusIs(status), {"refresh"}});
}

struct TickRow {
  const char* name;
  const char* output;
  const char* step;
  const char* status;
  std::function<void(RunRig&)> prepare;
  EventList events;
  RunState after = RunState::Stopped;
  OperationMode mode = OperationMode::Execution;
  bool outputOn = true;
  int currentStep = 0;
};

void OneMessage(RunRig& rig) {
  rig.prompts.Answer(PromptAnswer::Ok);
}

std::vector<TickRow> TickRows() {
  const auto nothing = [](RunRig&) {};
  const EventList following{"scroll 1"};
  const auto stopped = [](const std::string& status) { return Stopped(status); };
  std::vector<TickRow> rows;
  rows.push_back(
      {"next step", "1", "1", "4", nothing,
       Joined({kOutputOn, StepIs("1"), StatusIs("4"), {"elapsed 101", "unhighlight 1", "highlight 2"}}),
       RunState::Running, OperationMode::Execution, true, 1});
  rows.push_back(
      {"final step keeps its time", "1", "0", "4", [](RunRig& rig) { rig.sequence.Steps[0].StepTerm = 2; },
       Joined({kOutputOn, StepIs("0"), StatusIs("4"), {"unhighlight 1", "highlight 1", "scroll 1"}}),
       RunState::Running});
  rows.push_back({"unknown status", "1", "1", "16", nothing, Joined({kOutputOn, StepIs("1"), StatusIs("16")}),
                  RunState::Running});
  rows.push_back({"status no number", "1", "1", "BUSY", nothing,
                  Joined({kOutputOn, StepIs("1"), StatusIs("BUSY")}), RunState::Running});
  rows.push_back({"step equal to the count", "1", "3", "4", nothing,
                  Joined({kOutputOn, StepIs("3"), StatusIs("4"), {"elapsed 101", "unhighlight 1"}}),
                  RunState::Running, OperationMode::Execution, true, 3});
  rows.push_back({"instrument asks for a stop", "1", "0", "2", nothing,
                  Joined({kOutputOn, StepIs("0"), StatusIs("2"), stopped("2")}), RunState::Stopped,
                  OperationMode::Execution, true, 2});
  rows.push_back({"held at the instrument", "1", "0", "8", nothing,
                  Joined({kOutputOn, StepIs("0"), StatusIs("8"), {"elapsed 101", "refresh", "timer off"}}),
                  RunState::Held});
  rows.push_back({"output off", "0", "0", "4", OneMessage,
                  Joined({kOutputOn, {kOffMessage, "0 < :STOP"}, Ending("1"), {"refresh", "refresh"}}),
                  RunState::Stopped, OperationMode::Execution, false, 2});
  rows.back().events[2] = "0 > 0";
  rows.push_back(rows.back());
  rows.back().name = "second output off";
  rows.back().output = "1;0";
  rows.back().events[2] = "0 > 1;0";
  rows.push_back(rows.back());
  rows.back().name = "output no number";
  rows.back().output = "?";
  rows.back().events[2] = "0 > ?";
  rows.push_back({"both outputs on",
                  "1;1",
                  "0",
                  "16",
                  nothing,
                  {"elapsed 101", "0 < :OUTP?", "0 > 1;1", "0 < :STEP?", "0 > 0", "0 < :STAT?", "0 > 16"},
                  RunState::Running});
  rows.push_back({"end of the run", "1", "-1", "4", OneMessage,
                  Joined({kOutputOn,
                          StepIs("-1"),
                          {"elapsed 101", "0 < :OUTP?", "0 > 1"},
                          Ending("1"),
                          {"refresh", kEndMessage}}),
                  RunState::Stopped, OperationMode::Execution, true, 2});
  rows.push_back({"negative step", "1", "-2", "4", nothing, Joined({kOutputOn, StepIs("-2"), stopped("4")}),
                  RunState::Stopped, OperationMode::Execution, true, 2});
  rows.push_back({"beyond the last step", "1", "4", "4", nothing,
                  Joined({kOutputOn, StepIs("4"), stopped("4")}), RunState::Stopped, OperationMode::Execution,
                  true, 2});
  rows.push_back({"beyond the last step with message", "1", "4", "4",
                  [](RunRig& rig) {
                    rig.sequence.Steps[0].StepTerm = 2;
                    OneMessage(rig);
                  },
                  Joined({kOutputOn, StepIs("4"), stopped("4"), {kEndMessage}}), RunState::Stopped,
                  OperationMode::Execution, true, 2});
  rows.push_back({"step no number, then one", "1", "", "16",
                  [](RunRig& rig) {
                    rig.script.Reply(":STEP?", {"x", "0"});
                  },
                  Joined({kOutputOn, StepIs("x"), {"ifc", "dcl"}, StepIs("0"), StatusIs("16")}),
                  RunState::Running});
  rows.push_back({"step no number twice", "1", "x", "4", nothing,
                  Joined({kOutputOn,
                          StepIs("x"),
                          {"ifc", "dcl"},
                          StepIs("x"),
                          {"layout 0"},
                          Ending("1"),
                          {"refresh", "refresh"}}),
                  RunState::Stopped, OperationMode::Edit, false, 2});
  rows.push_back({"stop waits", "1", "0", "16",
                  [](RunRig& rig) { rig.state.PendingRequest = PendingRequest::Stop; },
                  Joined({kOutputOn, StepIs("0"), StatusIs("16"), stopped("16")}), RunState::Stopped,
                  OperationMode::Execution, true, 2});
  rows.push_back({"hold waits", "1", "1", "16",
                  [](RunRig& rig) { rig.state.PendingRequest = PendingRequest::Hold; },
                  Joined({kOutputOn,
                          StepIs("1"),
                          StatusIs("16"),
                          {"0 < :HOLD", "timer off", "refresh"},
                          StepIs("1"),
                          {"unhighlight 1", "highlight 1"}}),
                  RunState::Held});
  rows.push_back({"branch waits", "1", "0", "16",
                  [](RunRig& rig) {
                    rig.sequence.Steps[0].BranchStep[0] = 3;
                    rig.state.PendingRequest = PendingRequest::Branch;
                  },
                  Joined({kOutputOn, StepIs("0"), StatusIs("16"), {"0 < :BRAN 3", "refresh"}}),
                  RunState::Running});
  rows.push_back({"branch without target", "1", "0", "16",
                  [](RunRig& rig) { rig.state.PendingRequest = PendingRequest::Branch; },
                  Joined({kOutputOn, StepIs("0"), StatusIs("16")}), RunState::Running});
  rows.push_back({"followed after a branch", "1", "0", "16",
                  [](RunRig& rig) {
                    rig.state.BranchRequested = true;
                    rig.state.BranchTarget = 3;
                  },
                  Joined({kOutputOn, StepIs("0"), StatusIs("16"), {"unhighlight 1", "highlight 3"}}),
                  RunState::Running, OperationMode::Execution, true, 2});
  rows.push_back({"view follows", "1", "0", "4", [](RunRig& rig) { rig.state.SequenceViewShown = true; },
                  Joined({kOutputOn,
                          StepIs("0"),
                          StatusIs("4"),
                          {"elapsed 101", "unhighlight 1", "highlight 1"},
                          following,
                          {"view redraw", "view marker 1201"}}),
                  RunState::Running});
  rows.push_back({"output query fails, step query goes on", "1", "0", "4",
                  [](RunRig& rig) {
                    rig.script.FailOn("0 < :OUTP?", CommStatus::Error);
                    OneMessage(rig);
                  },
                  Joined({{"elapsed 101", "0 < :OUTP?", kError1}, Ending("1"), {"refresh"}, StepIs("0")}),
                  RunState::Stopped, OperationMode::Execution, true, 2});
  rows.push_back(
      {"status query fails", "1", "0", "4",
       [](RunRig& rig) {
         rig.script.FailOn("0 < :STAT?", CommStatus::Error);
         OneMessage(rig);
       },
       Joined({kOutputOn, StepIs("0"), {"0 < :STAT?", kError1, "layout 0"}, Ending("1"), {"refresh"}}),
       RunState::Stopped, OperationMode::Edit, true, 2});
  rows.push_back({"device gone", "1", "0", "4",
                  [](RunRig& rig) {
                    rig.script.FailFrom(rig.script.Count(), CommStatus::Error);
                    OneMessage(rig);
                    OneMessage(rig);
                  },
                  Joined({{"elapsed 101", "0 < :OUTP?", kError1},
                          Ending("1"),
                          {"refresh", "0 < :STEP?", kError1, "layout 0", "timer off", "elapsed 0", "scroll 1",
                           "refresh", "refresh"}}),
                  RunState::Stopped, OperationMode::Edit, false, 2});
  return rows;
}

TEST(RunMonitor, EveryRowOfATick) {
  for (const TickRow& row : TickRows()) {
    SCOPED_TRACE(row.name);
    RunRig rig;
    rig.StartRun();
    rig.Reply(row.output, row.step, row.status);
    row.prepare(rig);
    EXPECT_THAT(rig.Tick(), ElementsAreArray(row.events));
    EXPECT_EQ(rig.state.RunState, row.after);
    EXPECT_EQ(rig.state.OperationMode, row.mode);
    EXPECT_EQ(rig.state.OutputOn, row.outputOn);
    EXPECT_EQ(rig.state.CurrentStep, row.currentStep);
    EXPECT_EQ(rig.timer.enabled, row.after == RunState::Running);
    EXPECT_EQ(rig.state.PendingRequest, PendingRequest::None);
    EXPECT_FALSE(rig.control.Busy());
  }
}

TEST(RunMonitor, PollsOnlyWhenMoreThanTheIntervalHasPassed) {
  struct Row {
    std::uint32_t after;
    bool polls;
  };
  RunRig rig;
  rig.StartRun();
  std::int32_t elapsed = 0;
  for (const Row& row : {Row{0, true}, Row{100, false}, Row{1, true}, Row{99, false}, Row{2, true}}) {
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

TEST(RunMonitor, KnowsWhetherARunEndedAsItShould) {
  struct Row {
    const char* name;
    const char* output;
    const char* step;
    const char* status;
    const char* failing;
    int messages;
    bool endedWell;
  };
  for (const Row& row : {Row{"behind the last step", "1", "-1", "4", "", 1, true},
                         Row{"stop asked for by the instrument", "1", "0", "2", "", 0, true},
                         Row{"that stop fails", "1", "0", "2", "0 < :STOP", 1, false},
                         Row{"output switched off", "0", "0", "4", "", 1, false},
                         Row{"output query fails", "1", "0", "4", "0 < :OUTP?", 1, false},
                         Row{"status query fails", "1", "0", "4", "0 < :STAT?", 1, false},
                         Row{"the step is no number", "1", "x", "4", "", 0, false}}) {
    SCOPED_TRACE(row.name);
    RunRig rig;
    rig.StartRun();
    rig.Reply(row.output, row.step, row.status);
    if (*row.failing) rig.script.FailOn(row.failing, CommStatus::Error);
    for (int i = 0; i < row.messages; ++i) OneMessage(rig);
    rig.Tick();
    ASSERT_EQ(rig.state.RunState, RunState::Stopped);
    EXPECT_EQ(rig.monitor.EndedWell(), row.endedWell);
  }
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

TEST(RunMonitor, ChecksEveryOutputAtTheEnd) {
  struct Row {
    const char* name;
    int offAt;    // instrument that answers 0; -1 none
    int errorAt;  // instrument that does not answer; -1 none
    const char* message;
    bool outputOn;
  };
  const char* const error4 = "message exclamation: The communication error to the instrument 4 occurred.";
  for (const Row& row : {Row{"all on", -1, -1, kEndMessage, true}, Row{"one off", 2, -1, nullptr, false},
                         Row{"one gone", -1, 3, error4, false}}) {
    SCOPED_TRACE(row.name);
    RunRig rig;
    rig.UseInstruments(5);
    rig.StartRun();
    rig.Reply("1", "-1", "4");
    if (row.offAt >= 0) rig.script.ReplyFrom(static_cast<std::int16_t>(row.offAt), ":OUTP?", {"0"});
    if (row.errorAt >= 0) rig.script.FailOn(std::to_string(row.errorAt) + " < :OUTP?", CommStatus::Error);
    if (row.message) OneMessage(rig);
    const std::uint32_t before = rig.clock.Now();
    const EventList events = rig.Tick();
    EXPECT_EQ(rig.clock.Now() - before, 101U + 1500U);
    const int asked = row.offAt >= 0 ? row.offAt : row.errorAt >= 0 ? row.errorAt : 4;
    for (int i = 1; i < 5; ++i) {
      EXPECT_EQ(rig.script.CountOf(std::to_string(i) + " < :OUTP?"), i <= asked ? 1 : 0) << i;
    }
    EXPECT_EQ(rig.script.CountOf("0 < :STOP"), 0);
    EXPECT_EQ(rig.state.OutputOn, row.outputOn);
    EXPECT_EQ(rig.state.RunState, RunState::Stopped);
    EXPECT_EQ(rig.state.OperationMode, OperationMode::Execution);
    EXPECT_FALSE(rig.timer.enabled);
    ASSERT_EQ(rig.prompts.messages.size(), row.message ? 1U : 0U);
    if (row.message) {
      EXPECT_THAT(events, ::testing::Contains(row.message));
    }
  }
}

TEST(RunMonitor, AnOutputTripStopsEveryInstrument) {
  RunRig rig;
  rig.UseInstruments(3);
  rig.StartRun();
  rig.Reply("0", "0", "4");
  OneMessage(rig);
  EXPECT_THAT(rig.Tick(), ElementsAre("elapsed 101", "0 < :OUTP?", "0 > 0", "1 < :STOP", "2 < :STOP",
                                      kOffMessage, "0 < :STOP", "timer off", "unhighlight 1", "elapsed 0",
                                      "scroll 1", "refresh", "refresh"));

  RunRig gone;
  gone.UseInstruments(3);
  gone.StartRun();
  gone.Reply("0", "0", "4");
  gone.script.FailOn("1 < :STOP", CommStatus::Error);
  OneMessage(gone);
  EXPECT_THAT(gone.Tick(),
              ElementsAre("elapsed 101", "0 < :OUTP?", "0 > 0", "1 < :STOP",
                          "message critical: The communication error to the instrument 2 occurred.",
                          "timer off", "unhighlight 1", "elapsed 0", "scroll 1", "refresh", "refresh"));
  EXPECT_EQ(gone.state.RunState, RunState::Stopped);
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

// Which query, what fails, and what becomes of the run.
struct RetryRow {
  const char* query;
  const char* failing;  // beginning of the failing exchange
  CommStatus status;
  int times;
  EventList exchanges;
  int result;
};

TEST(RunQueries, AreRepeatedOnceAfterATimeOut) {
  const auto good = [](const std::string& q) {
    return EventList{"0 < " + q, "0 > 1", "ifc", "dcl", "0 < " + q, "0 > 1"};
  };
  struct Query {
    const char* text;
    int failed;
    std::function<int(RunRig&)> ask;
  };
  const std::vector<Query> queries{
      {":OUTP?", kQueryFailed, [](RunRig& rig) { return rig.queries.OutputQuery(0); }},
      {":STAT?", kQueryFailed, [](RunRig& rig) { return rig.queries.StatusQuery(0); }},
      {":STEP?", kStepQueryFailed, [](RunRig& rig) { return rig.queries.StepQuery(0); }},
  };
  for (const Query& query : queries) {
    const std::string send = "0 < " + std::string(query.text);
    const std::vector<RetryRow> rows{
        {query.text, "0 < ", CommStatus::TimeOut, 1, {send, "ifc", "dcl", send, "0 > 1"}, 1},
        {query.text, "0 < ", CommStatus::TimeOut, 2, {send, "ifc", "dcl", send}, query.failed},
        {query.text, "0 > ", CommStatus::TimeOut, 1, good(query.text), 1},
        {query.text, "0 > ", CommStatus::TimeOut, 2, good(query.text), query.failed},
        {query.text, "0 < ", CommStatus::Error, 1, {send}, query.failed},
        {query.text, "0 > ", CommStatus::Error, 1, {send, "0 > 1"}, query.failed},
    };
    for (const RetryRow& row : rows) {
      SCOPED_TRACE(std::string(row.query) + " " + row.failing + std::to_string(static_cast<int>(row.status)) +
                   " x" + std::to_string(row.times));
      RunRig rig;
      rig.StartRun();
      rig.Reply("1", "1", "1");
      rig.definition.Commands.OutputQuery.Wait = 30;
      rig.definition.Commands.Status.Wait = 20;
      rig.definition.Commands.CurrentStep.Wait = 20;
      const int firstWait = query.text == std::string(":OUTP?") ? 30 : 20;
      const std::uint32_t before = rig.clock.Now();
      rig.script.FailOn(row.failing, row.status, row.times);
      const bool fails = row.result != 1;
      if (fails) OneMessage(rig);
      EXPECT_EQ(query.ask(rig), row.result);
      EventList exchanges;
      for (const std::string& event : rig.events) {
        if (event[0] == '0' || event == "ifc" || event == "dcl") exchanges.push_back(event);
      }
      EXPECT_THAT(exchanges, ElementsAreArray(row.exchanges));
      // A sending that failed is not waited for; the repetition waits as the output query does.
      const bool firstSent = std::string(row.failing) == "0 > ";
      const bool secondSent = row.status == CommStatus::TimeOut && (firstSent || row.times == 1);
      EXPECT_EQ(rig.clock.Now() - before,
                static_cast<std::uint32_t>((firstSent ? firstWait : 0) + (secondSent ? 30 : 0)));
      EXPECT_EQ(rig.state.RunState, fails ? RunState::Stopped : RunState::Running);
      EXPECT_EQ(rig.state.OperationMode, fails && query.text != std::string(":OUTP?")
                                             ? OperationMode::Edit
                                             : OperationMode::Execution);
      if (fails) {
        EXPECT_EQ(rig.prompts.messages.at(0).icon, PromptIcon::Exclamation);
      }
    }
  }
}

}  // namespace
}  // namespace corlune::testing
