// A run, tick by tick: every exchange, message, display and timer switch in one list, in order.
#include "scenario/exchange_table.h"
#include "support/program_rig.h"

namespace corlune::testing {
namespace {

constexpr const char* kEndMessage = "message information: The sequence execution was ended.";
constexpr const char* kCritical = "message critical: The communication error to the instrument 1 occurred.";
constexpr const char* kQuestion =
    "message information: Output switch truns to 'on' and sequence will start. Is it OK?";
constexpr const char* kOn = "1 < :OUTP1 ON;:OUTP2 ON|1 < :SYST:BUSY?|1 > 0|";
constexpr const char* kAskOutput = "1 < :OUTP1?;:OUTP2?|";
constexpr const char* kAskStep = "1 < :SOUR1:SEQ:CST?|1 > ";
constexpr const char* kAskStatus = "1 < :STAT:OPER:CH1:COND?|1 > ";
// The end of a run while step row 1 is highlighted, and what a stop adds.
const std::string kEnding = "timer off|unhighlight 1|elapsed 0|scroll 1|";
const std::string kStop = "1 < :TRIG1:SEL:EXEC STOP|" + kEnding + kAskStatus;

// Downloaded, with outputs off; steps of a minute.
struct RunRig : ProgramRig {
  explicit RunRig(int steps = 3) : state(session->State()) {
    Connect();
    SequenceData& sequence = session->Sequence();
    sequence.StepCount = static_cast<std::int16_t>(steps);
    for (StepRow& row : sequence.Steps) row.StepTime = 60;
    EXPECT_TRUE(Download());
    ExpectPrompts({kAsksName});
    recorder.onExchange = [this](const std::string& line) { events.push_back(line); };
    ForgetAll();
  }
  void ForgetAll() {
    Forget();
    events.clear();
    prompts.said.clear();
  }
  void StartRun() {
    Press(Run::Start);
    ASSERT_EQ(state.RunState, RunState::Running);
    ForgetAll();
  }
  // What the instrument answers from now on.
  void Answers(const std::string& step, const std::string& status = "4", const std::string& faults = "") {
    Faults("text:" + step + "@:CST?;text:" + status + "@:COND?;" + faults);
  }
  // The events of one tick, `after` ms from now.
  EventList Tick(std::uint32_t after = 101) {
    ForgetAll();
    clock.Advance(after);
    session->Monitor().Tick();
    return events;
  }
  EventList Pressed(Run command) {
    ForgetAll();
    Press(command);
    return events;
  }

  AppState& state;
};

TEST(RunInOrder, ModeStartHoldAndResume) {
  RunRig rig(20);
  ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
  rig.session->Sequence().StepCount = 0;
  EXPECT_FALSE(rig.Download());
  rig.ExpectPrompts({"information: One or more than one steps are necessary for the sequence execution."});
  rig.session->Sequence().StepCount = 20;
  for (const char* outputs : {"0;1", "1;1"}) {
    rig.Instrument().SetOutput(1, *outputs == '1');
    rig.Instrument().SetOutput(2, true);
    ASSERT_TRUE(rig.Download());
    rig.ExpectPrompts({"input: E2E"});
    EXPECT_EQ(EventList(rig.events.end() - 4, rig.events.end()),
              Split(kAskOutput + std::string("1 > ") + outputs + "|layout 1|refresh"));
    EXPECT_EQ(rig.state.OutputOn, *outputs == '1');
    ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
  }
  rig.Instrument().SetOutput(1, false);
  ASSERT_TRUE(rig.Download());

  rig.state.SequenceViewShown = true;
  rig.prompts.Answer(PromptAnswer::Cancel);
  EXPECT_EQ(rig.Pressed(Run::Start), Split(std::string("refresh|") + kQuestion + "|refresh"));
  EXPECT_EQ(rig.Pressed(Run::Start),
            Split(std::string("refresh|") + kQuestion + "|" + kOn + "1 < :TRIG1:SEL:EXEC STAR|" + kAskStep +
                  "0|scroll 1|highlight 1|timer on|view start|refresh"));
  rig.state.SequenceViewShown = false;
  rig.Answers("4");
  rig.Tick();
  rig.Press(Run::Hold);
  EXPECT_EQ(rig.Tick(1), Split("elapsed 102|1 < :TRIG1:SEL:EXEC HOLD|timer off|refresh|" +
                               std::string(kAskStep) + "4|unhighlight 5|highlight 5|scroll 4"));
  const std::uint32_t before = rig.clock.Now();
  EXPECT_EQ(rig.Pressed(Run::Start), Split("refresh|1 < :TRIG1:SEL:EXEC RES|scroll 4|timer on|refresh"));
  EXPECT_EQ(rig.clock.Now() - before, 400U);
  rig.prompts.said.clear();
}

struct PressRow {
  corlune::Run press;
  EventList sent = {};  // at once
  PendingRequest pending = PendingRequest::None;
};

TEST(RunInOrder, PressesByState) {
  using P = PendingRequest;
  RunRig rig;
  const auto expect = [&](const std::vector<PressRow>& rows) {
    for (const PressRow& row : rows) {
      SCOPED_TRACE("press " + std::to_string(static_cast<int>(row.press)));
      rig.Press(row.press);
      rig.ExpectSent(row.sent);
      EXPECT_EQ(rig.state.PendingRequest, row.pending);
    }
  };
  const EventList off{"1 < :OUTP1 OFF;:OUTP2 OFF", "1 < :SYST:BUSY?"};
  expect(
      {{Run::Stop}, {Run::OutputOn, {"1 < :OUTP1 ON;:OUTP2 ON", "1 < :SYST:BUSY?"}}, {Run::OutputOff, off}});
  rig.StartRun();
  // A stop that waits is not replaced.
  expect({{Run::Start},
          {Run::Hold, {}, P::Hold},
          {Run::Branch, {}, P::Branch},
          {Run::Stop, {}, P::Stop},
          {Run::Hold, {}, P::Stop},
          {Run::Branch, {}, P::Stop}});
  rig.Tick();
  EXPECT_EQ(rig.state.RunState, RunState::Stopped);
  rig.StartRun();
  ASSERT_TRUE(rig.session->Control().RunCommand(Run::Hold));
  rig.Forget();
  expect({{Run::Hold}, {Run::Branch}, {Run::Start, {"1 < :TRIG1:SEL:EXEC RES"}}});
  ASSERT_TRUE(rig.session->Control().RunCommand(Run::Hold));
  rig.Forget();
  expect({{Run::Stop, {"1 < :TRIG1:SEL:EXEC STOP", "1 < :STAT:OPER:CH1:COND?"}}});
  rig.StartRun();
  expect({{Run::OutputOff, off}});
  rig.Tick();
  rig.ExpectPrompts({OutputTurnedOff(1)});
  ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
  rig.Forget();
  expect({{Run::Start}, {Run::Stop}, {Run::OutputOn}, {Run::OutputOff}});
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
  const char* step;    // the answer to the step query
  const char* status;  // to the status query; null: not asked
  std::string events;  // behind the queries
  After after = {};
  std::function<void(RunRig&)> prepare = {};
  const char* faults = "";
};

std::function<void(RunRig&)> Pending(PendingRequest request, std::int16_t branch = 0) {
  return [=](RunRig& rig) {
    rig.session->Sequence().Steps[0].BranchStep[0] = branch;
    rig.state.PendingRequest = request;
  };
}
void EndsWithMessage(RunRig& rig) {
  rig.session->Sequence().Steps[0].StepTerm = 2;
}
void ShowView(RunRig& rig) {
  rig.state.SequenceViewShown = true;
}
void FollowBranch(RunRig& rig) {
  rig.state.BranchRequested = true;
  rig.state.BranchTarget = 3;
}

// clang-format off
std::vector<TickRow> TickRows() {
  using P = PendingRequest;
  const RunState stopped = RunState::Stopped;
  const After held{End::No, 0, RunState::Held};
  const After well{End::Well, 2, stopped};
  const After failed{End::Badly, 2, stopped};
  const After off{End::Badly, 2, stopped, false};
  const auto to = [](std::int16_t step) { return After{End::No, step}; };
  const std::string end =
      std::string("elapsed 101|") + kAskOutput + "1 > 1;1|" + kEnding + "refresh|" + kEndMessage;
  const std::string stop4 = kStop + "4|refresh";
  const std::string stopFails =
      std::string("1 < :TRIG1:SEL:EXEC STOP !error|refresh|") + kCritical + "|" + kEnding + "refresh";
  const std::string hold =
      "1 < :TRIG1:SEL:EXEC HOLD|timer off|refresh|" + std::string(kAskStep) + "1|unhighlight 1|highlight 1";
  return {
      {"next step", "1", "4", "elapsed 451|unhighlight 1|highlight 2", to(1), {}, "late=1:350@:OUTP1?"},
      {"final step", "0", "4", "unhighlight 1|highlight 1|scroll 1", {}, EndsWithMessage},
      {"unknown status", "1", "16", ""},
      {"step equal to the count", "3", "4", "elapsed 101|unhighlight 1", to(3)},
      {"followed after a branch", "0", "16", "unhighlight 1|highlight 3|refresh", to(2), FollowBranch},
      {"view follows", "0", "4", "elapsed 101|unhighlight 1|highlight 1|scroll 1|view redraw|view marker", {}, ShowView},
      {"branch without target", "0", "16",
       "notice: No branch: the step has no branch step for branch channel 1.|refresh", {}, Pending(P::Branch)},
      {"branch waits", "0", "16", "1 < :TRIG1:SEL:EXEC BRAN 3|refresh", {}, Pending(P::Branch, 3)},
      {"hold waits", "1", "16", hold, held, Pending(P::Hold)},
      {"held at the instrument", "0", "8", "elapsed 101|refresh|timer off", held},
      {"stop waits", "0", "16", kStop + "16|refresh", well, Pending(P::Stop)},
      {"stop at the instrument", "0", "2", kStop + "2|refresh", well},
      {"that stop fails", "0", "2", stopFails, off, {}, "error:0xBFFF003E@STOP"},
      {"end of the run", "-1", nullptr, end, well},
      {"negative step", "-2", nullptr, stop4, failed},
      {"beyond the last step", "4", nullptr, stop4, failed},
      {"the same with message", "4", nullptr, stop4 + "|" + kEndMessage, well, EndsWithMessage},
  };
}
// clang-format on

TEST(RunInOrder, EveryRowOfATick) {
  for (const TickRow& row : TickRows()) {
    SCOPED_TRACE(row.name);
    RunRig rig;
    rig.StartRun();
    rig.Answers(row.step, row.status ? row.status : "4", row.faults);
    if (row.prepare) row.prepare(rig);
    std::string expected = std::string("elapsed 101|") + kAskOutput + "1 > 1;1|" + kAskStep + row.step + "|";
    if (row.status) expected += kAskStatus + std::string(row.status) + "|";
    EventList events = rig.Tick();
    if (events.back() == "view marker " + std::to_string(rig.clock.Now())) events.back() = "view marker";
    EXPECT_EQ(events, Split(expected + row.events));
    EXPECT_EQ(rig.state.RunState, row.after.run);
    EXPECT_EQ(rig.state.OperationMode, row.after.mode);
    EXPECT_EQ(rig.state.OutputOn, row.after.outputOn);
    EXPECT_EQ(rig.state.CurrentStep, row.after.step);
    if (row.after.ends == End::No && row.after.step != 0) {
      EXPECT_EQ(rig.state.StepChangedAt, rig.clock.Now());
    }
    EXPECT_EQ(rig.timer.enabled, row.after.run == RunState::Running);
    EXPECT_EQ(rig.state.PendingRequest, PendingRequest::None);
    EXPECT_FALSE(rig.session->Control().Busy());
    if (row.after.ends != End::No) {
      EXPECT_EQ(rig.session->Monitor().EndedWell(), row.after.ends == End::Well);
    }
    // A failed stop leaves a doubt.
    EXPECT_EQ(rig.state.MayStillRun, *row.faults == 'e');
    rig.prompts.said.clear();
  }
}

// Once in each 100 ms from the start, also when a tick comes late; over the wrap of the clock.
TEST(RunInOrder, PollsOnceAnInterval) {
  struct Row {
    std::uint32_t after;
    bool polls;
  };
  RunRig rig;
  rig.clock.Set(0xFFFFFF7CU);  // the start command waits 100 ms
  rig.StartRun();
  std::int32_t elapsed = 0;
  for (const Row& row : {Row{0, true}, Row{40, false}, Row{59, false}, Row{61, true}, Row{41, true},
                         Row{98, false}, Row{1, true}}) {
    const EventList events = rig.Tick(row.after);
    elapsed += static_cast<std::int32_t>(row.after);
    EXPECT_EQ(events.front(), "elapsed " + std::to_string(elapsed));
    EXPECT_EQ(rig.CountSent("1 < :OUTP1?"), row.polls ? 1 : 0) << elapsed;
  }
}

TEST(RunInOrder, ElapsedTimeStaysAtItsMaximumUntilTheNextStart) {
  RunRig rig;
  rig.StartRun();
  rig.Answers("0");
  for (int quarter = 1; quarter <= 5; ++quarter) {
    const std::string shown = quarter == 1 ? "elapsed 1073741824" : "elapsed 2147483647";
    EXPECT_EQ(rig.Tick(1U << 30).front(), shown) << quarter;
  }
  rig.Press(Run::Stop);
  rig.Tick();
  rig.StartRun();
  EXPECT_EQ(rig.Tick(7).front(), "elapsed 7");
}

TEST(RunInOrder, ScrollsWithTheStep) {
  struct Row {
    std::int16_t count;
    int step;
    const char* last;  // event of the tick
  };
  RunRig rig;
  rig.StartRun();
  for (const Row& row :
       {Row{30, 0, "scroll 1"}, Row{30, 5, "scroll 5"}, Row{30, 20, "scroll 20"}, Row{30, 21, "scroll 20"},
        Row{30, 29, "scroll 20"}, Row{11, 2, "scroll 1"}, Row{11, 1, "scroll 1"}, Row{10, 1, "highlight 2"},
        Row{10, 9, "highlight 10"}, Row{10, 0, "scroll 1"}}) {
    rig.session->Sequence().StepCount = row.count;
    rig.Answers(std::to_string(row.step));
    EXPECT_EQ(rig.Tick().back(), row.last) << row.step << " of " << row.count;
  }
}

// Off-line the run goes on until it is stopped, without traffic.
TEST(RunInOrder, RunsOffLineWithoutTraffic) {
  RunRig rig;
  rig.session->Sequence().Steps[0].BranchStep[0] = 2;
  ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
  rig.state.Online = 0;
  EXPECT_TRUE(rig.Download());
  EXPECT_EQ(rig.state.TotalTime, 180000) << "the run times are shown, nothing is sent";
  rig.StartRun();
  EXPECT_EQ(rig.Tick(), Split("elapsed 101"));
  rig.Press(Run::Branch);
  rig.Tick();
  rig.Tick();
  EXPECT_EQ(rig.state.CurrentStep, 1);
  rig.Press(Run::Stop);
  rig.Tick();
  EXPECT_EQ(rig.state.RunState, RunState::Stopped);
  rig.ExpectSent({});
  rig.state.Online = 1;
}

// Each query waits as the definition says; the repetition behind a time-out waits as the output query does.
TEST(RunInOrder, TheRepetitionBehindATimeOutWaits) {
  RunRig rig;
  CommandTable& table = rig.session->Definition().Commands;
  table.OutputQuery.Wait = 30;
  table.Status.Wait = 20;
  table.CurrentStep.Wait = 10;
  rig.StartRun();
  for (const std::string query : {":OUTP1?", ":CST?", ":COND?"}) {
    rig.Faults("timeout=2@" + query);
    const std::uint32_t before = rig.clock.Now();
    rig.Tick();
    EXPECT_EQ(rig.clock.Now() - before, 101U + 30 + 20 + 10 + 3000 + 30) << query;
  }
}

}  // namespace
}  // namespace corlune::testing
