// A whole run over instruments that make every exchange wait, with something happening in each wait in turn,
// also between a query and its reply and while a message is open. The run is an outputs-on question, a start,
// steps 0 to 2 with a hold, a resume and a branch, and the end.
#include <gmock/gmock.h>

#include "execution/run_rig.h"

namespace corlune::testing {
namespace {

// Lets handlers run while a message is open, as a message box does, and agrees to everything.
class PumpingPrompts : public Prompts {
 public:
  PromptAnswer Message(const MessageRequest&) override {
    if (pump) pump->HandlePending();
    return PromptAnswer::Ok;
  }
  std::optional<std::string> Input(const InputRequest&) override { return std::nullopt; }
  EventPump* pump = nullptr;
};

struct WholeRun {
  WholeRun() {
    prompts.pump = &rig.pump;
    CommandTable& commands = rig.definition.Commands;
    for (CommandEntry* entry : {&commands.OutputOn, &commands.OutputOff, &commands.OutputQuery,
                                &commands.CurrentStep, &commands.Status, &commands.Branch}) {
      entry->Wait = 20;
    }
    rig.state.OutputOn = false;
    for (StepRow& step : rig.sequence.Steps) step.BranchStep[0] = 3;
    rig.onExchange = [this](const std::string& line) {
      // A reply belongs to the query right before it: nothing was sent in between.
      const bool reply = line.find(" > ") != std::string::npos;
      EXPECT_EQ(reply, lastSent.find('?') != std::string::npos) << line << " behind " << lastSent;
      lastSent = reply ? "" : line;
    };
  }

  // Runs `action` in wait `wait`; 0: in none.
  void Play(int wait = 0, const std::function<void()>& action = {}) {
    if (wait > 0) rig.pump.OnCall(wait, action);
    rig.script.Reply(":STEP?", {"0", "0", "1", "1", "1", "1", "2", "2", "2", "-1"});
    rig.control.Button(1);
    for (; tick < 60 && rig.state.RunState != RunState::Stopped; ++tick) {
      if (rig.state.RunState == RunState::Held) rig.control.Button(1);
      if (tick == 3) rig.control.Button(3);
      if (tick == 6) rig.control.Button(4);
      rig.clock.Advance(101);
      if (rig.timer.enabled) rig.monitor.Tick();
    }
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

TEST(Interruption, TicksAndCloseRequestsInAnyWaitDoNothing) {
  WholeRun undisturbed;
  undisturbed.Play();
  const int waits = undisturbed.rig.pump.Calls();
  EXPECT_GT(waits, 30);
  for (int wait = 1; wait <= waits; ++wait) {
    SCOPED_TRACE("wait " + std::to_string(wait));
    WholeRun whole;
    whole.Play(wait, [&] {
      whole.rig.monitor.Tick();
      EXPECT_TRUE(whole.rig.control.BusyOrRunning());
      EXPECT_FALSE(whole.rig.control.SetOperationMode(OperationMode::Edit));
    });
    EXPECT_EQ(whole.rig.events, undisturbed.rig.events);
  }
}

TEST(Interruption, AStopInAnyWaitStopsTheRun) {
  WholeRun undisturbed;
  undisturbed.Play();
  for (int wait = 1; wait <= undisturbed.rig.pump.Calls(); ++wait) {
    SCOPED_TRACE("wait " + std::to_string(wait));
    WholeRun whole;
    int pressedIn = -1;
    whole.Play(wait, [&] {
      pressedIn = whole.tick;
      whole.rig.control.MenuItem(1);
    });
    // In the tick that finds the run at its end there is nothing left to stop.
    const int stops = whole.rig.script.CountOf("0 < :STOP");
    EXPECT_EQ(stops + (whole.rig.script.CountOf("0 > -1") > 0 ? 1 : 0), 1);
    EXPECT_LE(whole.tick, pressedIn + 1) << "another tick went by before the stop";
  }
}

// Only the message at the end finds the run stopped, so that it can start anew.
TEST(Interruption, AStartIsCarriedOutInTheLastMessageOnly) {
  WholeRun undisturbed;
  undisturbed.Play();
  int starts = 0;
  for (int wait = 1; wait <= undisturbed.rig.pump.Calls(); ++wait) {
    SCOPED_TRACE("wait " + std::to_string(wait));
    WholeRun whole;
    whole.Play(wait, [&] { whole.rig.control.MenuItem(0); });
    starts += whole.rig.script.CountOf("0 < :START") - 1;
  }
  EXPECT_EQ(starts, 1);
}

// The hold was made at the instrument in the very tick in which the person pressed Stop, or Hold.
TEST(Interruption, PressesWhileTheInstrumentHolds) {
  for (const int item : {1, 2}) {
    RunRig rig;
    rig.definition.Commands.Status.Wait = 20;
    rig.StartRun();
    rig.Reply("1", "0", "8");
    rig.pump.OnCall(rig.pump.Calls() + 1, [&] { rig.control.MenuItem(item); });
    rig.Tick();
    EXPECT_EQ(rig.state.RunState, item == 1 ? RunState::Stopped : RunState::Held);
    EXPECT_EQ(rig.script.CountOf("0 < :STOP"), item == 1 ? 1 : 0) << "a stop is not lost";
    EXPECT_EQ(rig.state.PendingRequest, PendingRequest::None) << "a hold has come about";
  }
}

}  // namespace
}  // namespace corlune::testing
