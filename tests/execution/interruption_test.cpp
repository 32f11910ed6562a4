// A whole run in which something happens in one of its waits: each wait in turn, each kind of press. The run
// is an outputs-on question, a start, steps 0 to 2 with a hold, a resume and a branch, and the end.
#include <algorithm>
#include <gmock/gmock.h>

#include "execution/run_rig.h"

namespace corlune::testing {
namespace {

using ::testing::Contains;

// Lets handlers run while a message is open, as a message box does, and agrees to everything.
class PumpingPrompts : public Prompts {
 public:
  PromptAnswer Message(const MessageRequest& request) override {
    texts.push_back(request.text);
    if (pump) pump->HandlePending();
    return PromptAnswer::Ok;
  }
  std::optional<std::string> Input(const InputRequest&) override { return std::nullopt; }
  EventPump* pump = nullptr;
  std::vector<std::string> texts;
};

struct WholeRun {
  WholeRun() {
    prompts.pump = &rig.pump;
    // Every exchange waits, so that handlers run between a query and its reply, too.
    CommandTable& commands = rig.definition.Commands;
    for (CommandEntry* entry : {&commands.OutputOn, &commands.OutputOff, &commands.OutputQuery,
                                &commands.CurrentStep, &commands.Status, &commands.Branch}) {
      entry->Wait = 20;
    }
    rig.state.OutputOn = false;
    for (StepRow& step : rig.sequence.Steps) step.BranchStep[0] = 3;
    rig.onExchange = [this](const std::string& line) {
      EXPECT_LE(rig.activity.commandDepth, 1);
      CheckOrder(line);
    };
  }

  // A reply belongs to the query right before it: nothing was sent in between.
  void CheckOrder(const std::string& line) {
    if (line.find(" > ") != std::string::npos) {
      EXPECT_NE(lastSent.find('?'), std::string::npos) << "reply after " << lastSent;
    } else if (!lastSent.empty() && lastSent.find('?') != std::string::npos) {
      ADD_FAILURE() << line << " was sent before the reply to " << lastSent;
    }
    lastSent = line.find(" > ") != std::string::npos ? "" : line;
  }

  void Play() {
    rig.script.Reply(":STEP?", {"0", "0", "1", "1", "1", "1", "2", "2", "2", "-1"});
    rig.control.Button(1);
    for (; tick < 60 && rig.state.RunState != RunState::Stopped; ++tick) {
      if (rig.state.RunState == RunState::Held) rig.control.Button(1);
      if (tick == 3) rig.control.Button(3);
      if (tick == 6) rig.control.Button(4);
      rig.clock.Advance(101);
      if (rig.timer.enabled) rig.monitor.Tick();
    }
  }

  void CheckEnded() {
    EXPECT_EQ(rig.state.RunState, RunState::Stopped);
    EXPECT_FALSE(rig.timer.enabled);
    EXPECT_EQ(rig.state.PendingRequest, PendingRequest::None);
    EXPECT_FALSE(rig.state.BranchRequested);
    EXPECT_FALSE(rig.control.Busy());
    EXPECT_EQ(rig.state.OperationMode, OperationMode::Execution);
  }

  int tick = 0;
  PumpingPrompts prompts;
  RunRig rig{&prompts};
  std::string lastSent;
};

struct Undisturbed {
  EventList events;
  EventList sent;
  int waits = 0;
};

Undisturbed PlayUndisturbed() {
  WholeRun whole;
  whole.Play();
  whole.CheckEnded();
  return {whole.rig.events, whole.rig.script.Sent(), whole.rig.pump.Calls()};
}

TEST(Interruption, TheUndisturbedRunHasEveryKindOfWait) {
  const Undisturbed run = PlayUndisturbed();
  for (const char* command : {":OUTP ON", ":START", ":HOLD", ":TRIG1:SEL:EXEC RES", ":BRAN 3", ":OUTP?"}) {
    EXPECT_THAT(run.sent, Contains(command));
  }
  EXPECT_GT(run.waits, 30);
}

TEST(Interruption, ATickInAnyWaitDoesNothing) {
  const Undisturbed undisturbed = PlayUndisturbed();
  for (int wait = 1; wait <= undisturbed.waits; ++wait) {
    SCOPED_TRACE("wait " + std::to_string(wait));
    WholeRun whole;
    whole.rig.pump.OnCall(wait, [&] { whole.rig.monitor.Tick(); });
    whole.Play();
    EXPECT_EQ(whole.rig.events, undisturbed.events);
    whole.CheckEnded();
  }
}

TEST(Interruption, ACloseRequestIsRefusedInEveryWaitOfTheRun) {
  const Undisturbed undisturbed = PlayUndisturbed();
  for (int wait = 1; wait <= undisturbed.waits; ++wait) {
    SCOPED_TRACE("wait " + std::to_string(wait));
    WholeRun whole;
    bool asked = false;
    whole.rig.pump.OnCall(wait, [&] {
      asked = true;
      EXPECT_TRUE(whole.rig.control.BusyOrRunning());
      EXPECT_FALSE(whole.rig.control.SetOperationMode(OperationMode::Edit));
    });
    whole.Play();
    EXPECT_TRUE(asked);
    EXPECT_EQ(whole.rig.events, undisturbed.events);
  }
}

TEST(Interruption, AStopInAnyWaitStopsTheRun) {
  const Undisturbed undisturbed = PlayUndisturbed();
  for (int wait = 1; wait <= undisturbed.waits; ++wait) {
    SCOPED_TRACE("wait " + std::to_string(wait));
    WholeRun whole;
    int pressedIn = -1;
    bool ended = false;
    whole.rig.pump.OnCall(wait, [&] {
      pressedIn = whole.tick;
      ended = whole.rig.state.RunState == RunState::Stopped && whole.tick > 0;
      whole.rig.control.MenuItem(1);
    });
    whole.Play();
    whole.CheckEnded();
    // In the tick that finds the run at its end there is nothing left to stop.
    const int stops = whole.rig.script.CountOf("0 < :STOP");
    EXPECT_EQ(stops + (whole.rig.script.CountOf("0 > -1") > 0 ? 1 : 0), 1);
    EXPECT_LE(whole.tick, pressedIn + 1) << "another tick went by before the stop";
    if (ended) {
      EXPECT_EQ(stops, 0);
    }
  }
}

struct Press {
  const char* name;
  int item;
  const char* command;
};

TEST(Interruption, OtherPressesInAnyWaitAreCarriedOutOrIgnored) {
  const Undisturbed undisturbed = PlayUndisturbed();
  for (const Press& press : {Press{"start", 0, ":START"}, Press{"hold", 2, ":HOLD"},
                             Press{"branch", 3, ":BRAN"}, Press{"output on", 4, ":OUTP ON"}}) {
    int effects = 0;
    for (int wait = 1; wait <= undisturbed.waits; ++wait) {
      SCOPED_TRACE(std::string(press.name) + " in wait " + std::to_string(wait));
      WholeRun whole;
      whole.rig.pump.OnCall(wait, [&] { whole.rig.control.MenuItem(press.item); });
      whole.Play();
      whole.CheckEnded();
      const auto count = [&](const EventList& sent) {
        return std::count_if(sent.begin(), sent.end(),
                             [&](const std::string& line) { return line.starts_with(press.command); });
      };
      effects += static_cast<int>(count(whole.rig.script.Sent()) - count(undisturbed.sent));
    }
    // Only the message at the end finds the run stopped, so that it can start anew; the others take effect in
    // many of the waits.
    if (press.item == 0) {
      EXPECT_EQ(effects, 1);
    } else {
      EXPECT_GT(effects, 3) << press.name;
    }
  }
}

// The hold was made at the instrument in the very tick in which the person pressed Stop.
TEST(Interruption, AStopPressedWhileTheInstrumentHoldsIsNotLost) {
  RunRig rig;
  rig.definition.Commands.Status.Wait = 20;
  rig.StartRun();
  rig.Reply("1", "0", "8");
  rig.pump.OnCall(rig.pump.Calls() + 1, [&] { rig.control.MenuItem(1); });
  rig.Tick();
  EXPECT_EQ(rig.state.RunState, RunState::Stopped);
  EXPECT_EQ(rig.script.CountOf("0 < :STOP"), 1);
}

TEST(Interruption, AStopPressedDuringTheStartIsCarriedOutBehindIt) {
  RunRig rig;
  rig.pump.OnCall(1, [&] {
    rig.control.MenuItem(1);
    EXPECT_EQ(rig.state.PendingRequest, PendingRequest::Stop);
    rig.control.MenuItem(1);
  });
  ASSERT_TRUE(rig.control.RunCommand(Run::Start));
  EXPECT_THAT(rig.script.Sent(), ::testing::ElementsAre(":START", ":STEP?", ":STOP", ":STAT?"));
  EXPECT_EQ(rig.state.RunState, RunState::Stopped);
  EXPECT_FALSE(rig.timer.enabled);
}

}  // namespace
}  // namespace corlune::testing
