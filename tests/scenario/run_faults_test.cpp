// Each exchange of a run fails in turn: start, two polls, hold, resume, branch, stop. The table says what the
// program does about it. Afterwards it must be usable.
#include "scenario/exchange_table.h"
#include "support/program_rig.h"

namespace corlune::testing {
namespace {

enum class Fate {
  Output,   // critical message; nothing was started
  Command,  // stop is tried; critical message, stopped, output taken as off
  Stop,     // the same, and the instrument may go on
  // Behind a failed query nobody knows what the instrument does.
  OutputQuery,  // message, run given up; the step is still asked for
  StepQuery,    // message, edit mode, output taken as off
  StepInHold,   // message, edit mode
  StatusQuery,  // message, edit mode
  Discarded,    // nobody needs the answer
};

constexpr const char* kStop = "1 < :TRIG1:SEL:EXEC STOP";

const std::vector<Exchange<Fate>> kRun = Exchanges<Fate>({
    {Fate::Output, "1 < :OUTP1 ON;:OUTP2 ON|1 < :SYST:BUSY?|1 > 0"},
    {Fate::Command, "1 < :TRIG1:SEL:EXEC STAR"},
    {Fate::StepQuery, "1 < :SOUR1:SEQ:CST?|1 > 0"},
    // first poll
    {Fate::OutputQuery, "1 < :OUTP1?;:OUTP2?|1 > 1;1"},
    {Fate::StepQuery, "1 < :SOUR1:SEQ:CST?|1 > 0"},
    {Fate::StatusQuery, "1 < :STAT:OPER:CH1:COND?|1 > 4"},
    // the poll that carries out the hold
    {Fate::OutputQuery, "1 < :OUTP1?;:OUTP2?|1 > 1;1"},
    {Fate::StepQuery, "1 < :SOUR1:SEQ:CST?|1 > 0"},
    {Fate::StatusQuery, "1 < :STAT:OPER:CH1:COND?|1 > 4"},
    {Fate::Command, "1 < :TRIG1:SEL:EXEC HOLD"},
    {Fate::StepInHold, "1 < :SOUR1:SEQ:CST?|1 > 0"},
    {Fate::Command, "1 < :TRIG1:SEL:EXEC RES"},
    // the poll behind the resume
    {Fate::OutputQuery, "1 < :OUTP1?;:OUTP2?|1 > 1;1"},
    {Fate::StepQuery, "1 < :SOUR1:SEQ:CST?|1 > 0"},
    {Fate::StatusQuery, "1 < :STAT:OPER:CH1:COND?|1 > 4"},
    {Fate::Command, "1 < :TRIG1:SEL:EXEC BRAN 3"},
    {Fate::OutputQuery, "1 < :OUTP1?;:OUTP2?|1 > 1;1"},
    {Fate::StepQuery, "1 < :SOUR1:SEQ:CST?|1 > 2"},
    {Fate::StatusQuery, "1 < :STAT:OPER:CH1:COND?|1 > 4"},
    {Fate::Stop, "1 < :TRIG1:SEL:EXEC STOP"},
    {Fate::Discarded, "1 < :STAT:OPER:CH1:COND?|1 > 2"},
});

EventList Lines(std::size_t from = 0, std::size_t to = kRun.size()) {
  return LinesOf(kRun, from, to);
}

// Downloaded; three steps of a minute, the first branches to the third.
struct RunBench : ProgramRig {
  RunBench() {
    Connect();
    UseSteps({60, 60, 60});
    session->Sequence().Steps[0].BranchStep[0] = 3;
    EXPECT_TRUE(Download());
    ExpectPrompts({kAsksName});
    Forget();
  }
  // One tick of the monitor, far enough from the last one to poll.
  void Poll() {
    clock.Advance(101);
    if (timer.enabled) session->Monitor().Tick();
  }
  void Play() {
    Press(Run::Start);
    Poll();
    Press(Run::Hold);
    Poll();
    if (session->State().RunState == RunState::Held) Press(Run::Start);
    Press(Run::Branch);
    Poll();
    if (session->State().MayStillRun) return;
    Press(Run::Stop);
    Poll();
  }
  void ExpectSaid(EventList messages) {
    messages.insert(messages.begin(), kAsksOutput);
    ExpectPrompts(messages);
  }
  // Whatever may still run can be stopped, in either mode; then everything goes on as usual.
  void ExpectUsable() {
    if (session->State().MayStillRun) {
      EXPECT_FALSE(session->Control().RunCommand(Run::Start));
      Press(Run::Stop);
      EXPECT_FALSE(session->State().MayStillRun);
      EXPECT_EQ(Instrument().Phase(), RunPhase::Idle);
      EXPECT_EQ(session->State().OutputOn, Instrument().Output(1) && Instrument().Output(2));
    }
    if (session->State().OperationMode == OperationMode::Execution) {
      ASSERT_TRUE(session->Control().SetOperationMode(OperationMode::Edit));
    }
    UseSteps({0.5, 0.5});
    ASSERT_TRUE(Download());
    ExpectPrompts({"input: E2E"});
    const bool outputOn = session->State().OutputOn;
    EXPECT_EQ(outputOn, Instrument().Output(1) && Instrument().Output(2));
    Press(Run::Start);
    RunToEnd();
    ExpectPrompts(outputOn ? EventList{kSaysEnd} : EventList{kAsksOutput, kSaysEnd});
    ExpectAtRest(OperationMode::Execution, true);
  }
};

// What follows exchange n, and the state that is left, when it fails and keeps failing its repetitions.
struct Rest {
  EventList lines;
  EventList messages;
  OperationMode mode = OperationMode::Execution;
  bool outputOn = true;
  bool mayStillRun = false;
};

bool IsRepeated(std::size_t n) {
  return kRun[n].fate >= Fate::OutputQuery && kRun[n].fate != Fate::Discarded;
}
// In the last poll a stop is waiting already: a failed query does not swallow it.
bool StopWaits(std::size_t n) {
  return IsRepeated(n) && n + 9 >= kRun.size();
}

Rest UndisturbedRest(std::size_t n) {
  const std::string message = CommunicationError(1, "exclamation");
  switch (kRun[n].fate) {
    case Fate::Output:
      return {{}, {CommunicationError(1, "critical")}, OperationMode::Execution, false};
    case Fate::Command:
      return {{kStop}, {CommunicationError(1, "critical")}, OperationMode::Execution, false};
    case Fate::Stop:
      return {{}, {CommunicationError(1, "critical")}, OperationMode::Execution, false, true};
    case Fate::OutputQuery: {
      const std::size_t step = IsRead(kRun[n].line) ? n + 1 : n + 2;
      return {Lines(step, step + 2), {message}, OperationMode::Execution, true, true};
    }
    case Fate::StepQuery:
      return {{}, {message}, OperationMode::Edit, false, true};
    case Fate::StepInHold:
    case Fate::StatusQuery:
      return {{}, {message}, OperationMode::Edit, true, true};
    case Fate::Discarded:
      return {};
  }
  return {};
}
Rest RestAfterFailure(std::size_t n) {
  Rest rest = UndisturbedRest(n);
  if (!StopWaits(n)) return rest;
  rest.lines = Joined(rest.lines, Joined(Lines(kRun.size() - 3), {"1 < :OUTP1?;:OUTP2?", "1 > 1;1"}));
  rest.outputOn = true;
  rest.mayStillRun = false;
  return rest;
}

void ExpectEnd(RunBench& rig, const Rest& rest) {
  rig.ExpectSaid(rest.messages);
  rig.ExpectAtRest(rest.mode, rest.outputOn);
  // An error on the way leaves nothing to be taken for an end that was reached.
  EXPECT_EQ(rig.session->State().ElapsedTime, 0);
  EXPECT_EQ(rig.session->State().MayStillRun, rest.mayStillRun);
}

TEST(RunFaults, TheTableIsTheRunWithoutFaults) {
  RunBench rig;
  rig.Play();
  EXPECT_EQ(rig.recorder.exchanges, Lines());
  ExpectEnd(rig, {});
  EXPECT_EQ(rig.Instrument().Phase(), RunPhase::Idle);
}

TEST(RunFaults, EachExchangeFailsWithAnError) {
  for (std::size_t n = 0; n < kRun.size(); ++n) {
    SCOPED_TRACE("exchange " + std::to_string(n + 1) + ": " + kRun[n].line);
    RunBench rig;
    rig.Faults("error=" + std::to_string(n + 1) + ":0xBFFF003E");
    rig.Play();
    const Rest rest = RestAfterFailure(n);
    EXPECT_EQ(rig.recorder.exchanges,
              Joined(Joined(Lines(0, n), {FailedLine(kRun[n].line, " !error")}), rest.lines));
    ExpectEnd(rig, rest);
    rig.Faults("");
    rig.ExpectUsable();
  }
}

// The queries of a run are repeated once, behind a device clear; a reply that comes too late is none.
TEST(RunFaults, EachExchangeTimesOutOnce) {
  int messages = 0;
  for (std::size_t n = 0; n < kRun.size(); ++n) {
    if (!IsRead(kRun[n].line)) ++messages;
    std::vector<std::string> faults{"timeout=" + std::to_string(n + 1)};
    if (IsRead(kRun[n].line)) {
      faults.push_back("late=" + std::to_string(messages) + ":3500");
      faults.push_back("drop=" + std::to_string(messages));
    }
    for (const std::string& fault : faults) {
      SCOPED_TRACE("exchange " + std::to_string(n + 1) + ": " + kRun[n].line + ", " + fault);
      RunBench rig;
      rig.Faults(fault);
      rig.Play();
      Rest rest = RestAfterFailure(n);
      if (IsRepeated(n)) rest = {Joined({"1 clear"}, Lines(IsRead(kRun[n].line) ? n - 1 : n)), {}};
      EXPECT_EQ(rig.recorder.exchanges,
                Joined(Joined(Lines(0, n), {FailedLine(kRun[n].line, " !timeout")}), rest.lines));
      ExpectEnd(rig, rest);
      rig.Faults("");
      rig.ExpectUsable();
    }
  }
}

TEST(RunFaults, EachQueryTimesOutTwice) {
  for (std::size_t n = 0; n < kRun.size(); ++n) {
    if (!IsRepeated(n)) continue;
    SCOPED_TRACE("exchange " + std::to_string(n + 1) + ": " + kRun[n].line);
    RunBench rig;
    // Between the two lie the clear and, for a reply, the repeated question.
    const std::size_t again = n + (IsRead(kRun[n].line) ? 3 : 2);
    rig.Faults("timeout=" + std::to_string(n + 1) + ";timeout=" + std::to_string(again + 1));
    rig.Play();
    const Rest rest = RestAfterFailure(n);
    EventList repeated{FailedLine(kRun[n].line, " !timeout"), "1 clear"};
    if (IsRead(kRun[n].line)) repeated.emplace_back(kRun[n - 1].line);
    repeated.push_back(FailedLine(kRun[n].line, " !timeout"));
    EXPECT_EQ(rig.recorder.exchanges, Joined(Joined(Lines(0, n), repeated), rest.lines));
    ExpectEnd(rig, rest);
    rig.Faults("");
    rig.ExpectUsable();
  }
}

TEST(RunFaults, TheDeviceIsUnpluggedBeforeEachExchange) {
  for (std::size_t n = 0; n < kRun.size(); ++n) {
    SCOPED_TRACE("exchange " + std::to_string(n + 1) + ": " + kRun[n].line);
    RunBench rig;
    rig.Faults("gone=" + std::to_string(n));
    rig.Play();
    Rest rest = UndisturbedRest(n);
    if (kRun[n].fate == Fate::OutputQuery) {
      // The step query finds it gone, too.
      const std::string message = CommunicationError(1, "exclamation");
      rest = {{"1 < :SOUR1:SEQ:CST? !error"}, {message, message}, OperationMode::Edit, false, true};
    } else if (kRun[n].fate == Fate::Command) {
      rest.lines = {std::string(kStop) + " !error"};
      rest.mayStillRun = true;
    }
    if (StopWaits(n)) {
      rest.lines.push_back(std::string(kStop) + " !error");
      rest.messages.push_back(CommunicationError(1, "critical"));
      rest.outputOn = false;
    }
    EXPECT_EQ(rig.recorder.exchanges,
              Joined(Joined(Lines(0, n), {FailedLine(kRun[n].line, " !error")}), rest.lines));
    ExpectEnd(rig, rest);

    // Still unplugged: going on needs an answer; a download tells so and changes nothing.
    if (rest.mayStillRun) {
      rig.prompts.Answer(PromptAnswer::Cancel);
      EXPECT_FALSE(rest.mode == OperationMode::Edit
                       ? rig.session->NewSequence()
                       : rig.session->Control().SetOperationMode(OperationMode::Edit));
      EXPECT_EQ(std::exchange(rig.prompts.said, {}), (EventList{kAsksToGoOn}));
      EXPECT_EQ(rig.prompts.messages.back().escape, PromptAnswer::Cancel);
    }
    if (rest.mode == OperationMode::Execution) {
      ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
    }
    EXPECT_FALSE(rig.Download());
    EXPECT_EQ(rig.session->Download().Outcome().End, DownloadEnd::NotSent);
    EXPECT_EQ(std::erase(rig.prompts.said, kAsksToGoOn) > 0, rest.mayStillRun);
    rig.ExpectPrompts({"input: E2E"});
    // Plugged in again; it has gone on running meanwhile.
    rig.Replug();
    ASSERT_TRUE(rig.Reconnect());
    rig.prompts.said.clear();
    rig.ExpectUsable();
  }
}

TEST(RunFaults, RepliesThatAreNoAnswer) {
  struct Case {
    const char* query;
    const char* what;
    EventList sent;  // from the first poll on, until the run is over or the second poll begins
    EventList said;
    RunState state;
    OperationMode mode;
    bool outputOn;
  };
  const EventList repeatedStep{"1 < :OUTP1?;:OUTP2?", "1 < :SOUR1:SEQ:CST?", "1 < :SOUR1:SEQ:CST?"};
  const EventList outputOff{"1 < :OUTP1?;:OUTP2?", "1 < :TRIG1:SEL:EXEC STOP"};
  const EventList wholePoll{"1 < :OUTP1?;:OUTP2?", "1 < :SOUR1:SEQ:CST?", "1 < :STAT:OPER:CH1:COND?"};
  using enum OperationMode;
  // clang-format off
  const Case cases[] = {
      // Counts as off: the run is stopped rather than left alone.
      {":OUTP1?", "output", outputOff, {OutputTurnedOff(1)}, RunState::Stopped, Execution, false},
      // Repeated once, then given up.
      {":CST?", "step", repeatedStep, {}, RunState::Stopped, Edit, false},
      // Says nothing about the run, which goes on.
      {":COND?", "status", wholePoll, {}, RunState::Running, Execution, true},
  };
  // clang-format on
  for (const Case& c : cases) {
    for (const char* reply : {"empty", "long", "binary", "text", "text:12 steps"}) {
      SCOPED_TRACE(std::string(c.what) + " query: " + reply);
      RunBench rig;
      rig.Press(Run::Start);
      rig.ExpectSaid({});
      rig.Forget();
      rig.Faults(std::string(reply) + "@" + c.query);
      rig.Advance(100);
      rig.ExpectSent(c.sent);
      rig.ExpectPrompts(c.said);
      EXPECT_EQ(rig.session->State().RunState, c.state);
      EXPECT_EQ(rig.session->State().OperationMode, c.mode);
      EXPECT_EQ(rig.session->State().OutputOn, c.outputOn);
      rig.Faults("");
      if (c.state == RunState::Running) {
        rig.Press(Run::Stop);
        rig.Advance(200);
      }
      rig.ExpectUsable();
    }
  }
}

}  // namespace
}  // namespace corlune::testing
