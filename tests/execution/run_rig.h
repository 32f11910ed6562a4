// A run over scripted instruments: everything that happens (exchanges, messages, displays, the timer) in one
// ordered list.
#pragma once

#include <functional>
#include <string>

#include "execution/run_monitor.h"
#include "support/instrument_rig.h"

namespace corlune::testing {

struct RunRig : InstrumentRig {
  RunRig() {
    script.onExchange = [this](const std::string& line) {
      events.push_back(line);
      if (onExchange) onExchange(line);
    };
    state.OperationMode = OperationMode::Execution;
    state.OutputOn = true;
    UseSteps(3);
    Reply("1", "0", "4");
  }

  // `count` steps of one second each.
  void UseSteps(int count) {
    sequence.StepCount = static_cast<std::int16_t>(count);
    for (int i = 0; i < count; ++i) sequence.Steps[static_cast<std::size_t>(i)].StepRunTime = 1000;
  }
  void UseInstruments(int count) {
    state.InstrumentCount = static_cast<std::int16_t>(count);
    for (auto& entry : state.Instruments) entry = state.Instruments[0];
  }
  void Reply(const std::string& output, const std::string& step, const std::string& status) {
    script.Reply(":OUTP?", {output});
    script.Reply(":STEP?", {step});
    script.Reply(":STAT?", {status});
  }
  // A fresh run at step 0; forgets the events so far.
  void StartRun() {
    script.Reply(":STEP?", {"0"});
    ASSERT_TRUE(control.RunCommand(Run::Start));
    Forget();
  }
  void Forget() {
    events.clear();
    script.ClearLog();
  }
  // The events of one tick, `after` ms from now.
  EventList Tick(std::uint32_t after = 101) {
    Forget();
    clock.Advance(after);
    monitor.Tick();
    return events;
  }

  SequenceData sequence;
  RecordedTickSource timer{&events};
  RecordedDisplay display{&events};
  RecordedView view{&events};
  RunContext run{state, sequence, commands, catalogue, prompts, timer, display, view};
  Activity activity;
  Measure measure{run};
  RunQueries queries{run, measure};
  std::function<bool()> download;
  RunControl control{run, measure, queries, activity, [this] { return !download || download(); }};
  RunMonitor monitor{run, measure, queries, control, activity};
  std::function<void(const std::string&)> onExchange;
};

}  // namespace corlune::testing
