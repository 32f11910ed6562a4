// Runs on a clock that the test moves: which slot runs when.

#include <functional>
#include <gtest/gtest.h>
#include <vector>

#include "tests/virtual_instrument/instrument_rig.h"

namespace corlune::testing {
namespace {

// Slot and condition at one time after the start.
struct Moment {
  std::uint32_t time;  // ms
  int slot;
  int condition;
};

struct Scenario {
  const char* name;
  CompiledSequence sequence;
  std::vector<Moment> moments;
  std::vector<std::pair<std::uint32_t, std::function<void(InstrumentRig&)>>> actions;  // time, what happens
};

CompiledSequence With(CompiledSequence sequence, const std::function<void(CompiledSequence&)>& change) {
  change(sequence);
  return sequence;
}

std::function<void(InstrumentRig&)> Says(const char* message) {
  return [message](InstrumentRig& rig) { rig.Tell(message); };
}

std::vector<Scenario> Scenarios() {
  std::vector<Scenario> rows;
  // clang-format off
  rows.push_back({"step after step, and a grace behind the last one", Steps({0.1, 0.25, 0.05}),
      {{0, 0, 4}, {99, 0, 4}, {100, 1, 4}, {349, 1, 4}, {350, 2, 4}, {399, 2, 4}, {400, -1, 4},
      {699, -1, 4}, {700, -1, 2}}, {}});
  rows.push_back({"fractions of a millisecond add up", With(Steps({0.0105, 0.0105, 1}),
      [](CompiledSequence& s) { s.Steps[1].JumpOn = 1; s.Steps[1].JumpTo = 1; s.Steps[1].JumpCounted = true;
      s.Steps[1].JumpCount = 99; }),
      {{2099, 1, 4}, {2100, 2, 4}}, {}});
  rows.push_back({"start step", With(Steps({0.1, 0.1, 0.1}), [](CompiledSequence& s) { s.StartStep = 3; }),
      {{0, 2, 4}, {100, -1, 4}}, {}});
  rows.push_back({"unset slot ends the run", With(Steps({0.1, 0.1}), [](CompiledSequence& s) {
      s.Steps[1].Stop = false; }),
      {{199, 1, 4}, {200, -1, 4}}, {}});
  rows.push_back({"counted jumps, an outer loop counts the inner one anew", With(Steps({0.01, 0.01, 0.01}),
      [](CompiledSequence& s) { s.Steps[1] = { .StepTime = 0.01, .JumpOn = 1, .JumpTo = 2,
      .JumpCounted = true, .JumpCount = 2}; s.Steps[2].JumpOn = 1; s.Steps[2].JumpTo = 1;
      s.Steps[2].JumpCounted = true; s.Steps[2].JumpCount = 1; }),
      {{9, 0, 4}, {10, 1, 4}, {39, 1, 4}, {40, 2, 4}, {50, 0, 4}, {60, 1, 4}, {89, 1, 4}, {90, 2, 4},
      {100, -1, 4}}, {}});
  rows.push_back({"endless jump, whatever the step's end says", With(Steps({0.01, 0.02}),
      [](CompiledSequence& s) { s.Steps[1].JumpOn = 1; s.Steps[1].JumpTo = 1; s.Steps[1].JumpCount = 1; }),
      {{10, 1, 4}, {30, 0, 4}, {40, 1, 4}, {3'600'000, 0, 4}, {3'600'010, 1, 4}}, {}});
  rows.push_back({"hold stops the time", Steps({0.1, 0.1}),
      {{49, 0, 4}, {50, 0, 8}, {5000, 0, 8}, {5050, 0, 4}, {5099, 0, 4}, {5100, 1, 4}},
      {{50, Says(":TRIG1:SEL:EXEC HOLD")}, {5050, Says(":TRIG1:SEL:EXEC RES")}}});
  rows.push_back({"auto hold at the step's end", With(Steps({0.1, 0.1}), [](CompiledSequence& s) {
      s.Steps[0].AutoHold = 1; }),
      {{99, 0, 4}, {100, 0, 8}, {900, 0, 8}, {1000, 1, 4}, {1099, 1, 4}, {1100, -1, 4}},
      {{1000, Says(":TRIG1:SEL:EXEC RES")}}});
  rows.push_back({"stop", Steps({0.1, 0.1}),
      {{49, 0, 4}, {50, -1, 2}, {60, -1, 2}}, {{50, Says(":TRIG1:SEL:EXEC STOP")}}});
  rows.push_back({"stop of a held run", Steps({0.1}),
      {{20, 0, 8}, {50, -1, 2}}, {{10, Says(":TRIG1:SEL:EXEC HOLD")}, {50, Says(":TRIG1:SEL:EXEC STOP")}}});
  rows.push_back({"branch by command, with blank or comma", Steps({1, 0.1, 0.1, 0.1}),
      {{0, 0, 4}, {50, 2, 4}, {149, 2, 4}, {150, 3, 4}, {160, 1, 4}, {260, 2, 4}},
      {{50, Says(":TRIG1:SEL:EXEC BRAN 3")}, {160, Says(":TRIG1:SEL:EXEC BRAN,2")}}});
  rows.push_back({"branch beyond the used steps ends the run", Steps({1, 0.1}),
      {{50, -1, 4}}, {{50, Says(":TRIG1:SEL:EXEC BRAN 200")}}});
  rows.push_back({"event branch", With(Steps({1, 1, 1}), [](CompiledSequence& s) {
      s.Steps[0].EventBranchOn = 1; s.Steps[0].EventBranchStep = 3; s.Steps[2].EventBranchOn = 1;
      s.Steps[2].EventBranchStep = 2; s.Steps[1].EventBranchStep = 1; }),
      {{50, 2, 4}, {60, 1, 4}, {70, 1, 4}}, {{50, [](InstrumentRig& rig) { rig.instrument.Event(); }},
      {60, Says(":TRIG1:SEL:EXEC BRAN")}, {70, [](InstrumentRig& rig) { rig.instrument.Event(); }}}});
  const auto stateBranch = With(Steps({0.1, 0.1, 0.1}), [](CompiledSequence& s) { s.StateBranchInput = true;
      s.Steps[0].StateBranchOn = 1; s.Steps[0].StateBranchStep = 1; });
  rows.push_back({"state branch while the line is on", stateBranch,
      {{99, 0, 4}, {100, 0, 4}, {199, 0, 4}, {299, 0, 4}, {300, 1, 4}}, {{0, [](InstrumentRig& rig) {
      rig.instrument.SetStateLine(true); }}, {250, [](InstrumentRig& rig) {
      rig.instrument.SetStateLine(false); }}}});
  rows.push_back({"state branch needs the input", With(stateBranch, [](CompiledSequence& s) {
      s.StateBranchInput = false; }),
      {{100, 1, 4}}, {{0, [](InstrumentRig& rig) { rig.instrument.SetStateLine(true); }}}});
  const auto slow = With(Steps({0.1, 0.1}), [](CompiledSequence& s) { s.Cells[0][0].Frequency.Value = 2;
      s.Steps[0].StopPhaseOn = 1; s.Steps[0].StopPhase = 90; });
  rows.push_back({"stop phase: one period and a quarter", slow,
      {{624, 0, 4}, {625, 1, 4}}, {}});
  rows.push_back({"stop waits for the phase", slow,
      {{30, 0, 2}, {124, 0, 2}, {125, -1, 2}, {625, -1, 2}}, {{30, Says(":TRIG1:SEL:EXEC STOP")},
      {120, Says(":TRIG1:SEL:EXEC BRAN 2")}}});
  rows.push_back( {"stop at once does not", slow,
      {{29, 0, 4}, {30, -1, 2}}, {{30, Says(":TRIG1:SEL:EXEC IST")}}});
  // clang-format on
  return rows;
}

TEST(RunEngine, Scenarios) {
  for (const Scenario& row : Scenarios()) {
    SCOPED_TRACE(row.name);
    InstrumentRig rig;
    rig.Start(row.sequence);
    std::uint32_t time = 0;
    auto action = row.actions.begin();
    for (const Moment& moment : row.moments) {
      for (; action != row.actions.end() && action->first <= moment.time; ++action) {
        rig.Pass(action->first - time);
        time = action->first;
        action->second(rig);
      }
      rig.Pass(moment.time - time);
      time = moment.time;
      const std::string wanted = std::to_string(moment.slot) + ";" + std::to_string(moment.condition);
      EXPECT_EQ(rig.Ask(":SOUR1:SEQ:CST?;:STAT:OPER:CH1:COND?"), wanted) << "at " << moment.time;
    }
  }
}

TEST(RunEngine, CommandsThatDoNotFitThePhase) {
  InstrumentRig rig;
  rig.Start(Steps({1, 1}));
  const std::pair<const char*, const char*> rows[] = {
      {":TRIG1:SEL:EXEC STAR", "-284,\"Program currently running\""},
      {":TRIG:COMP", "-284,\"Program currently running\""},
      {":TRIG1:SEL:EXEC RES", "-221,\"Settings conflict\""},
      {":TRIG1:SEL:EXEC BRAN", "-221,\"Settings conflict\""},
      {":TRIG1:SEL:EXEC BRAN 0", "-222,\"Data out of range\""},
      {":TRIG1:SEL:EXEC BRAN X", "-104,\"Data type error\""},
  };
  for (const auto& [message, error] : rows) {
    rig.Tell(message);
    EXPECT_EQ(rig.Error(), error) << message;
    EXPECT_EQ(rig.instrument.CurrentSlot(), 0) << message;
  }
  rig.Tell(":TRAC:SEQ 0,\"Other\"," + BlockOf(CompiledBytes(Steps({5}))));
  EXPECT_EQ(rig.Error(), "-284,\"Program currently running\"");
  rig.Tell(":SOUR1:SEQ:STAT 0");
  EXPECT_EQ(rig.instrument.Phase(), RunPhase::Idle);
}

}  // namespace
}  // namespace corlune::testing
