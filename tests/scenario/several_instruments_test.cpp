// Two and five instruments: downloads and questions go to the first, run commands to all.
#include <random>

#include "core/output_state.h"
#include "scenario/exchange_table.h"
#include "support/program_rig.h"

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
struct Bench : ProgramRig {
  explicit Bench(int instruments) : ProgramRig(Instruments(instruments)), count(instruments) {
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

  int count;
};

TEST(SeveralInstruments, RunCommandsGoToAllInOrder) {
  for (const int count : {2, 5}) {
    SCOPED_TRACE(count);
    Bench rig(count);
    rig.Start();
    rig.ExpectSent(
        Joined(Joined(rig.ToAll({":OUTP1 ON;:OUTP2 ON", ":SYST:BUSY?"}), rig.ToAll({":TRIG1:SEL:EXEC STAR"})),
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

  // Pressed while the first one starts: the others are not started any more.
  rig.Forget();
  rig.pump.OnCall(rig.pump.Calls() + 1, [&] { rig.Press(Run::Stop); });
  rig.Press(Run::Start);
  EXPECT_EQ(rig.CountSent("1 < :TRIG1:SEL:EXEC STAR"), 1);
  EXPECT_EQ(rig.CountSent("2 < :TRIG1:SEL:EXEC STAR"), 0);
  EXPECT_THAT(rig.TakeSent(), ::testing::IsSupersetOf(stops));

  // Told to end from outside: all, also behind an unplugged one.
  rig.Press(Run::Start);
  rig.Faults("gone=0", 2);
  rig.Forget();
  EXPECT_TRUE(rig.session->EndFromOutside());
  EXPECT_THAT(rig.TakeSent(), ::testing::IsSupersetOf({stops[0], stops[1], stops[3], stops[4]}));
}

// Stop between the outputs of a start: those that are on go off again. Output OFF in a hold waits for it.
TEST(SeveralInstruments, NoOutputIsLeftBehind) {
  Bench rig(3);
  const AppState& state = rig.session->State();
  const auto inWaitBehind = [&](const std::string& line, corlune::Run command) {
    rig.pump.OnEveryCall([&rig, line, command, pressed = false]() mutable {
      if (rig.CountSent(line) > 0 && !std::exchange(pressed, true)) rig.Press(command);
    });
  };
  inWaitBehind("1 < :OUTP1 ON;:OUTP2 ON", Run::Stop);
  rig.Start();
  for (int i = 1; i <= 3; ++i) EXPECT_FALSE(rig.Instrument(i).Output(1)) << i;
  rig.ExpectAtRest(OperationMode::Execution, false);

  rig.pump.OnEveryCall({});
  rig.Start();
  inWaitBehind("1 < :TRIG1:SEL:EXEC HOLD", Run::OutputOff);
  rig.Press(Run::Hold);
  rig.Advance(100);
  EXPECT_EQ(state.RunState, RunState::Held);
  EXPECT_FALSE(state.OutputOn);
  EXPECT_FALSE(rig.Instrument(3).Output(1));
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

// The outputs of all are looked at when the run has ended, silently.
TEST(SeveralInstruments, AnOutputIsFoundOffAtTheEnd) {
  // Of the first one in the 1.5 s between the last step and the message of the end.
  for (const int instrument : {1, 3}) {
    Bench rig(5);
    rig.Start();
    rig.pump.At(rig.clock.Now() + 2300, [&] { rig.Instrument(instrument).SetOutput(1, false); });
    rig.RunToEnd();
    rig.ExpectPrompts({});
    EXPECT_EQ(rig.TakeSent().back(), std::to_string(instrument) + " < :OUTP1?;:OUTP2?");
    rig.ExpectAtRest(OperationMode::Execution, false);
  }
}

// One of several is unplugged: the command that meets it names it, and all others are stopped.
TEST(SeveralInstruments, OneIsUnplugged) {
  struct Case {
    const char* what;
    std::function<void(Bench&)> act;
    EventList sent;  // the last messages
    EventList said;
  };
  const auto lines = [](const char* command, std::initializer_list<int> order) {
    EventList sent;
    for (const int i : order) {
      sent.push_back(std::to_string(i) + " < " + command + (i == 2 ? " !error" : ""));
    }
    return sent;
  };
  const auto press = [](corlune::Run command) {
    return [command](Bench& rig) {
      rig.Press(command);
      rig.Advance(100);
    };
  };
  constexpr const char* kStop = ":TRIG1:SEL:EXEC STOP";
  const EventList stops = lines(kStop, {1, 2, 3, 4, 5});
  const EventList others = lines(kStop, {2, 3, 4, 5});
  const std::string critical = CommunicationError(2, "critical");
  const Case cases[] = {
      {"stop", press(Run::Stop), stops, {critical}},
      {"hold", press(Run::Hold), Joined(lines(":TRIG1:SEL:EXEC HOLD", {1, 2}), stops), {critical}},
      // The poll behind it finds the output of the first one off.
      {"output off", press(Run::OutputOff), Joined(others, lines(kStop, {1})), {critical, critical}},
      {"output trip",
       [](Bench& rig) {
         rig.Instrument(1).SetOutput(1, false);
         rig.Advance(200);
       },
       Joined(others, lines(kStop, {1})),
       {critical}},
      {"end", [](Bench& rig) { rig.RunToEnd(); }, others, {critical}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Bench rig(5);
    rig.Start();
    rig.Advance(300);
    rig.Forget();
    rig.Faults("gone", 1);
    c.act(rig);
    const EventList sent = rig.TakeSent();
    ASSERT_GE(sent.size(), c.sent.size());
    EXPECT_EQ(EventList(sent.end() - static_cast<std::ptrdiff_t>(c.sent.size()), sent.end()), c.sent);
    rig.ExpectPrompts(c.said);
    rig.ExpectAtRest(OperationMode::Execution, false);
    EXPECT_TRUE(rig.session->State().MayStillRun);
    for (const int i : {1, 3, 4, 5}) EXPECT_EQ(rig.Instrument(i).Phase(), RunPhase::Idle) << i;
    if (c.said.size() == 2) {
      EXPECT_FALSE(rig.Instrument(5).Output(1)) << "switched off behind the one that failed";
    }
    rig.session->NoticeLostConnection();
    EXPECT_THAT(rig.session->State().Lost, ::testing::ElementsAre(false, true, false, false, false));
    EXPECT_EQ(rig.session->State().Online, 1);

    // Back again: connected, stopped, downloaded and run on all of them.
    ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
    rig.Replug(1);
    ASSERT_TRUE(rig.Reconnect());
    rig.ExpectPrompts({kAsksToGoOn, kAsksToGoOn});
    rig.Press(Run::Stop);
    EXPECT_FALSE(rig.session->State().MayStillRun);
    for (int i = 1; i <= 5; ++i) EXPECT_EQ(rig.Instrument(i).Phase(), RunPhase::Idle) << i;
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

// The only one left is unplugged in a run: off-line and back in edit mode, with the warning. Plugged in
// again, a stop opens the connection.
TEST(SeveralInstruments, NoneIsLeft) {
  Bench rig(1);
  rig.Start();
  rig.Faults("gone");
  const AppState& state = rig.session->State();
  rig.pump.OnCall(rig.pump.Calls() + 1, [&] {
    rig.session->NoticeLostConnection();
    EXPECT_EQ(state.Online, 1) << "not in the middle of the tick";
  });
  rig.Advance(200);
  rig.prompts.said.clear();
  rig.session->State().OutputOn = true;
  rig.session->NoticeLostConnection();
  EXPECT_EQ(state.Online, 0);
  EXPECT_TRUE(state.MayStillRun);
  rig.ExpectAtRest(OperationMode::Edit, false);
  rig.Press(Run::Stop);
  rig.ExpectPrompts({CommunicationError(1, "exclamation") +
                     "\nUSB0::0X3A1F::0X2220::QM000001::INSTR does not open: status BFFF0011"});
  EXPECT_TRUE(state.MayStillRun);
  EXPECT_EQ(rig.Instrument().Phase(), RunPhase::Running);
  rig.Replug();
  rig.Press(Run::Stop);
  EXPECT_EQ(state.Online, 1);
  EXPECT_FALSE(state.MayStillRun);
  EXPECT_EQ(rig.Instrument().Phase(), RunPhase::Idle);
}

// The reason stands beside the message, also of a kind that is not the first.
TEST(SeveralInstruments, AnInterfaceThatCannotBeOpenedSaysWhy) {
  ProgramRig rig;
  rig.Connect();
  SystemSettings setup = SettingsOf(rig.session->State());
  setup.InstrumentCount = 2;
  setup.Instruments[1].Interface = 1;  // NI
  EXPECT_TRUE(rig.session->ApplySetup(setup));
  rig.ExpectPrompts({CommunicationError(2, "exclamation") + "\nNI-488.2: switched off"});
  EXPECT_EQ(rig.session->State().Online, 0);
  EXPECT_EQ(rig.session->State().CurrentInterface, InterfaceKind::UsbTmc);
  EXPECT_EQ(rig.recorder.connections, (EventList{"1 close", "1 open", "1 close"})) << "the rest is closed";
}

// Whatever is pressed and whatever fails, in whatever wait: a window that shows "stopped" without the warning
// is right about every instrument.
TEST(SeveralInstruments, StoppedWithoutAWarningMeansStopped) {
  int warned = 0;
  int ran = 0;
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&](unsigned n) { return static_cast<int>(random() % n); };
    Bench rig(1 + below(3));
    rig.session->Sequence().Steps[0].BranchStep[0] = 2;
    const AppState& state = rig.session->State();
    const auto press = [&] { rig.session->Control().MenuItem(below(6)); };
    for (int action = 0; action < 60 && !::testing::Test::HasFailure(); ++action) {
      const auto at = static_cast<std::size_t>(below(static_cast<unsigned>(rig.count)));
      const std::string exchange = std::to_string(1 + below(6));
      switch (below(10)) {
        case 0:
          rig.Faults("timeout=" + exchange + (below(2) ? ";timeout" : ""), at);
          break;
        case 1:
          rig.Faults("error=" + exchange + ":0xBFFF003E;drop=" + exchange, at);
          if (below(2)) rig.Faults("timeout=1@STOP", at);
          break;
        case 2:
          rig.Faults(below(4) ? "" : "gone=" + exchange, at);
          break;
        case 3:
          if (below(2)) {
            rig.Instrument(static_cast<int>(at) + 1).SetOutput(1, false);
            rig.Faults("timeout=1@STOP", at);
          }
          rig.pump.OnCall(rig.pump.Calls() + 1 + below(4), press);
          break;
        case 4:
          if (!below(3)) rig.prompts.Answer(PromptAnswer::Cancel);
          switch (const int button = below(6)) {
            case 0:
              rig.session->Control().SetOperationMode(state.OperationMode == OperationMode::Edit
                                                          ? OperationMode::Execution
                                                          : OperationMode::Edit);
              break;
            case 5:
              rig.session->Control().MenuItem(OutputSwitchesOff(state) ? 5 : 4);
              break;
            default:
              rig.session->Control().MenuItem(button - 1);
          }
          break;
        case 5:
        case 6:
          rig.Advance(static_cast<std::uint32_t>(below(24)) * 100);
          break;
        case 7:  // all well again
          for (int i = 0; i < rig.count; ++i) rig.Faults("", static_cast<std::size_t>(i));
          rig.Press(Run::Stop);
          rig.Download();
          rig.Press(Run::Start);
          break;
        default:
          press();
      }
      rig.session->NoticeLostConnection();
      ran += state.RunState == RunState::Running;
      warned += state.MayStillRun;
      for (int i = 1; i <= rig.count && !OutputSwitchesOff(state) && rig.session->Idle(); ++i) {
        EXPECT_FALSE(rig.Instrument(i).Output(1) || rig.Instrument(i).Output(2)) << "shown as off: " << i;
      }
      if (state.RunState != RunState::Stopped || state.MayStillRun || !rig.session->Idle()) continue;
      for (int i = 1; i <= rig.count; ++i) {
        EXPECT_EQ(rig.Instrument(i).Phase(), RunPhase::Idle) << "instrument " << i << ", action " << action;
      }
    }
    rig.prompts.said.clear();
  }
  EXPECT_GT(ran, 500);
  EXPECT_GT(warned, 500);
}

}  // namespace
}  // namespace corlune::testing
