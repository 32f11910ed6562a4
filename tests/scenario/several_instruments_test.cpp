// Two and five instruments: downloads and questions go to the first, run commands to all.
#include "scenario/bench_rig.h"

namespace corlune::testing {
namespace {

using ::testing::Each;
using ::testing::StartsWith;

std::string Instruments(int count) {
  std::string text;
  for (int i = 1; i <= count; ++i) text += (i == 1 ? "" : ",") + ("QM2220:QM00000" + std::to_string(i));
  return text;
}

// All instruments hold the same sequence, as after a download of each in turn.
struct Bench : BenchRig {
  explicit Bench(int instruments) : BenchRig(Instruments(instruments)), count(instruments) {
    ConnectAll();
    UseSteps({1, 0.5});
    EXPECT_TRUE(Download());
    ExpectPrompts({kAsksName});
    EXPECT_THAT(TakeSent(), Each(StartsWith("1 < ")));
    for (int i = 2; i <= count; ++i) Prepare(Instrument(i));
  }

  // Through the front door of instrument `to`: the sequence that instrument 1 was sent.
  void Prepare(VirtualInstrument& to) {
    const std::string bytes = TempFolder::Read(folder.File("sendata.bin"));
    const std::string length = std::to_string(bytes.size());
    to.Write(":SOUR1:SEQ:STAT 1\n", true);
    to.Write(":TRAC:SEQ 0,\"E2E\",#" + std::to_string(length.size()) + length + bytes, true);
    to.Write(":TRIG:COMP\n", true);
    clock.Advance(kCompileMs);
    EXPECT_EQ(to.SerialPoll() & 0x80, 0x80);
  }
  EventList ToAll(const EventList& commands) const {
    EventList lines;
    for (int i = 1; i <= count; ++i) {
      for (const std::string& command : commands) lines.push_back(std::to_string(i) + " < " + command);
    }
    return lines;
  }
  void Start() {
    Press(Run::Start);
    ExpectPrompts({kAsksOutput});
  }
  static EventList Joined(EventList first, const EventList& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
  }

  int count;
};

TEST(SeveralInstruments, RunCommandsGoToAllInOrder) {
  for (const int count : {2, 5}) {
    SCOPED_TRACE(count);
    Bench rig(count);
    rig.Start();
    rig.ExpectSent(Bench::Joined(
        Bench::Joined(rig.ToAll({":OUTP1 ON;:OUTP2 ON", ":SYST:BUSY?"}), rig.ToAll({":TRIG1:SEL:EXEC STAR"})),
        {"1 < :SOUR1:SEQ:CST?"}));
    for (int i = 1; i <= count; ++i) EXPECT_EQ(rig.Instrument(i).Phase(), RunPhase::Running);

    rig.Advance(200);
    rig.Forget();
    rig.Press(Run::Hold);
    rig.Advance(100);
    EXPECT_EQ(rig.session->State().RunState, RunState::Held);
    for (int i = 1; i <= count; ++i) EXPECT_EQ(rig.Instrument(i).Phase(), RunPhase::Held);
    rig.Forget();
    rig.Press(Run::Start);
    rig.ExpectSent(rig.ToAll({":TRIG1:SEL:EXEC RES"}));

    rig.RunToEnd();
    rig.ExpectPrompts({kSaysEnd});
    // At the end every output is looked at, in order.
    const EventList sent = rig.TakeSent();
    const EventList outputs = rig.ToAll({":OUTP1?;:OUTP2?"});
    EXPECT_EQ(EventList(sent.end() - count, sent.end()), outputs);
    rig.ExpectAtRest(OperationMode::Execution, true);

    rig.Press(Run::OutputOff);
    rig.ExpectSent(rig.ToAll({":OUTP1 OFF;:OUTP2 OFF", ":SYST:BUSY?"}));
    for (int i = 1; i <= count; ++i) EXPECT_FALSE(rig.Instrument(i).Output(1));
  }
}

TEST(SeveralInstruments, StopReachesAll) {
  Bench rig(5);
  rig.Start();
  rig.Advance(300);
  rig.Forget();
  rig.Press(Run::Stop);
  rig.Advance(100);
  const EventList sent = rig.TakeSent();
  const EventList stops = rig.ToAll({":TRIG1:SEL:EXEC STOP"});
  EXPECT_THAT(sent, ::testing::IsSupersetOf(stops));
  EXPECT_EQ(sent.back(), "1 < :STAT:OPER:CH1:COND?");
  for (int i = 1; i <= 5; ++i) EXPECT_EQ(rig.Instrument(i).Phase(), RunPhase::Idle);
  rig.ExpectAtRest(OperationMode::Execution, true);
}

// An output that trips at the first instrument stops the others first, then itself.
TEST(SeveralInstruments, AnOutputTripStopsAll) {
  Bench rig(5);
  rig.Start();
  rig.Advance(300);
  rig.Instrument(1).SetOutput(2, false);
  rig.Forget();
  rig.Advance(200);
  rig.ExpectPrompts({OutputTurnedOff(1)});
  EventList expected{"1 < :OUTP1?;:OUTP2?"};
  for (const int i : {2, 3, 4, 5, 1}) expected.push_back(std::to_string(i) + " < :TRIG1:SEL:EXEC STOP");
  rig.ExpectSent(expected);
  for (int i = 1; i <= 5; ++i) EXPECT_EQ(rig.Instrument(i).Phase(), RunPhase::Idle);
  rig.ExpectAtRest(OperationMode::Execution, false);
}

// The outputs of the others are looked at when the run has ended.
TEST(SeveralInstruments, AnOutputOfAnotherInstrumentIsFoundOffAtTheEnd) {
  Bench rig(5);
  rig.Start();
  rig.Instrument(3).SetOutput(1, false);
  rig.RunToEnd();
  rig.ExpectPrompts({});
  EXPECT_EQ(rig.TakeSent().back(), "3 < :OUTP1?;:OUTP2?");
  rig.ExpectAtRest(OperationMode::Execution, false);
}

// One of several is unplugged: the command that meets it names it, and nothing more is sent.
TEST(SeveralInstruments, OneIsUnplugged) {
  struct Case {
    const char* what;
    std::function<void(Bench&)> act;
    EventList sent;  // the last messages
    EventList said;
    bool outputOn;
  };
  const std::string critical = CommunicationError(2, "critical");
  const std::string exclamation = CommunicationError(2, "exclamation");
  const Case cases[] = {
      {"stop",
       [](Bench& rig) {
         rig.Press(Run::Stop);
         rig.Advance(100);
       },
       {"1 < :TRIG1:SEL:EXEC STOP", "2 < :TRIG1:SEL:EXEC STOP !error"},
       {critical},
       false},
      {"hold",
       [](Bench& rig) {
         rig.Press(Run::Hold);
         rig.Advance(100);
       },
       {"1 < :TRIG1:SEL:EXEC HOLD", "2 < :TRIG1:SEL:EXEC HOLD !error"},
       {critical},
       false},
      {"output off",
       [](Bench& rig) {
         rig.Press(Run::OutputOff);
         rig.Advance(100);
       },
       {},
       {critical},
       true},
      {"output trip",
       [](Bench& rig) {
         rig.Instrument(1).SetOutput(1, false);
         rig.Advance(200);
       },
       {"1 < :OUTP1?;:OUTP2?", "2 < :TRIG1:SEL:EXEC STOP !error"},
       {critical},
       false},
      {"end",
       [](Bench& rig) { rig.RunToEnd(); },
       {"1 < :OUTP1?;:OUTP2?", "2 < :OUTP1?;:OUTP2? !error"},
       {exclamation},
       false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Bench rig(5);
    rig.Start();
    rig.Advance(300);
    rig.Forget();
    rig.Faults("gone", 1);
    c.act(rig);
    if (rig.session->State().RunState == RunState::Running) {
      // The output command failed; the run goes on at the others.
      EXPECT_STREQ(c.what, "output off");
      rig.ExpectPrompts(c.said);
      EXPECT_TRUE(rig.session->State().OutputOn);
      rig.Press(Run::Stop);
      rig.Advance(200);
      rig.ExpectPrompts({critical});
      rig.ExpectAtRest(OperationMode::Execution, false);
    } else {
      const EventList sent = rig.TakeSent();
      ASSERT_GE(sent.size(), c.sent.size());
      EXPECT_EQ(EventList(sent.end() - static_cast<std::ptrdiff_t>(c.sent.size()), sent.end()), c.sent);
      rig.ExpectPrompts(c.said);
      rig.ExpectAtRest(OperationMode::Execution, c.outputOn);
    }

    // Back again: connected, downloaded and run on all of them.
    ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
    rig.Replug(1);
    ASSERT_TRUE(rig.Reconnect());
    for (int i = 1; i <= 5; ++i) rig.Instrument(i).PressStop();
    ASSERT_TRUE(rig.Download());
    rig.ExpectPrompts({"input: E2E"});
    rig.Press(Run::Start);
    rig.RunToEnd();
    if (!rig.prompts.said.empty() && rig.prompts.said.front() == kAsksOutput) {
      rig.prompts.said.erase(rig.prompts.said.begin());
    }
    rig.ExpectPrompts({kSaysEnd});
  }
}

TEST(SeveralInstruments, TheModelCheckNamesTheOneThatDoesNotAnswer) {
  struct Case {
    const char* fault;
    const char* said;
  };
  for (const Case& c : {Case{"drop", "question: Cannot find the instrument 2. It starts in off-line mode?"},
                        Case{"empty", "question: Cannot find the instrument 2. It starts in off-line mode?"},
                        Case{"text=1:TAVRIN,QM2210,7,1.00",
                             "question: The model name 2 is not correct. It starts in off-line mode?"}}) {
    SCOPED_TRACE(c.fault);
    BenchRig rig(Instruments(3));
    rig.ConnectAll();
    rig.Faults(std::string(c.fault) + "@*IDN?", 1);
    EXPECT_FALSE(rig.Reconnect());
    rig.ExpectPrompts({c.said});
    EXPECT_EQ(rig.session->State().Online, 0);
    EXPECT_EQ(rig.CountSent("3 < *IDN?"), 0);
    // Off-line, the program can still be used: the run times are shown, nothing is sent.
    rig.Forget();
    rig.UseSteps({1, 2});
    EXPECT_TRUE(rig.Download());
    EXPECT_EQ(rig.session->State().TotalTime, 3000);
    rig.ExpectSent({});
  }
}

}  // namespace
}  // namespace corlune::testing
