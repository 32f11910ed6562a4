// What happens at the instrument while the program follows a run, and what the person does about it.
#include "support/program_rig.h"

namespace corlune::testing {
namespace {

using ::testing::Contains;
using ::testing::Not;

TEST(RunStory, HoldAndResumeAtTheProgram) {
  ProgramRig rig;
  rig.Connect();
  rig.UseSteps({1, 1});
  rig.DownloadAndStart();
  rig.Advance(500);
  rig.Press(Run::Hold);
  rig.Advance(100);
  EXPECT_EQ(rig.session->State().RunState, RunState::Held);
  EXPECT_EQ(rig.Instrument().Phase(), RunPhase::Held);
  EXPECT_FALSE(rig.timer.enabled);
  EXPECT_EQ(rig.CountSent("1 < :TRIG1:SEL:EXEC HOLD"), 1);
  const std::int32_t elapsed = rig.session->State().ElapsedTime;

  // Held, nothing is polled and nothing moves; closing and editing are refused.
  rig.Forget();
  rig.Advance(20000);
  rig.ExpectSent({});
  EXPECT_FALSE(rig.session->RequestClose());
  EXPECT_FALSE(rig.session->Control().SetOperationMode(OperationMode::Edit));
  EXPECT_EQ(rig.Instrument().CurrentSlot(), 0);

  rig.Press(Run::Start);
  rig.ExpectSent({"1 < :TRIG1:SEL:EXEC RES"});
  rig.Advance(100);
  // The time held does not count; the resume itself takes 400 ms, in which the sequence runs.
  EXPECT_NEAR(rig.session->State().ElapsedTime, elapsed, 300);
  rig.RunToEnd();
  rig.ExpectPrompts({kSaysEnd});
  rig.ExpectAtRest(OperationMode::Execution, true);
}

// A step with auto hold is a hold made at the instrument, as its key is. Stopping from there needs no tick.
TEST(RunStory, HoldsAtTheInstrument) {
  ProgramRig rig;
  rig.Connect();
  rig.UseSteps({0.5, 60});
  rig.session->Sequence().Steps[0].AutoHold = 1;
  rig.DownloadAndStart();
  rig.Advance(1000);
  EXPECT_EQ(rig.session->State().RunState, RunState::Held);
  EXPECT_FALSE(rig.timer.enabled);
  rig.Press(Run::Start);
  EXPECT_EQ(rig.Instrument().Phase(), RunPhase::Running);
  rig.Advance(300);
  EXPECT_EQ(rig.session->State().CurrentStep, 1);
  rig.Instrument().PressHold();
  rig.Advance(200);
  EXPECT_EQ(rig.session->State().RunState, RunState::Held);
  EXPECT_EQ(rig.CountSent("1 < :TRIG1:SEL:EXEC HOLD"), 0);
  rig.Forget();
  rig.Press(Run::Stop);
  rig.ExpectSent({"1 < :TRIG1:SEL:EXEC STOP", "1 < :STAT:OPER:CH1:COND?"});
  EXPECT_EQ(rig.Instrument().Phase(), RunPhase::Idle);
  rig.ExpectAtRest(OperationMode::Execution, true);
}

TEST(RunStory, BranchAtTheProgramAndAtTheInstrument) {
  ProgramRig rig;
  rig.Connect();
  rig.UseSteps({60, 60, 60, 0.5});
  SequenceData& sequence = rig.session->Sequence();
  sequence.BranchChannel = 2;
  sequence.Steps[0].BranchStep = {4, 3, 0, 0, 0};
  sequence.Steps[2].EventBranchOn = 1;
  sequence.Steps[2].EventBranchStep = 4;
  rig.DownloadAndStart();
  rig.Advance(400);
  rig.Press(Run::Branch);
  sequence.BranchChannel = 1;  // too late for that press
  EXPECT_EQ(rig.session->State().CurrentStep, 0);
  rig.Advance(300);
  EXPECT_EQ(rig.CountSent("1 < :TRIG1:SEL:EXEC BRAN 3"), 1);
  EXPECT_EQ(rig.session->State().CurrentStep, 2);
  EXPECT_FALSE(rig.session->State().BranchRequested);

  // A step whose chosen entry is 0 branches nowhere.
  sequence.BranchChannel = 2;
  rig.Forget();
  rig.Press(Run::Branch);
  rig.Advance(300);
  EXPECT_THAT(rig.TakeSent(), Not(Contains(::testing::HasSubstr("BRAN"))));

  rig.Instrument().Event();
  rig.Advance(300);
  EXPECT_EQ(rig.session->State().CurrentStep, 3);
  rig.RunToEnd();
  rig.ExpectPrompts({kSaysEnd});
}

TEST(RunStory, AnOutputTrips) {
  struct Case {
    const char* model;
    int channel;  // 0: all, by the instrument's own protection
  };
  for (const Case& c : {Case{"QM2220", 0}, Case{"QM2220", 2}, Case{"QM2210", 1}}) {
    SCOPED_TRACE(std::string(c.model) + " channel " + std::to_string(c.channel));
    ProgramRig rig(std::string(c.model) + ":QM000001");
    rig.Connect();
    rig.UseSteps({60});
    if (c.channel == 0) rig.Faults("trip=900");
    rig.DownloadAndStart();
    rig.Advance(700);
    rig.ExpectPrompts({});
    if (c.channel != 0) rig.Instrument().SetOutput(c.channel, false);
    rig.Forget();
    rig.Advance(300);
    rig.ExpectPrompts({OutputTurnedOff(1)});
    EXPECT_EQ(rig.TakeSent().back(), "1 < :TRIG1:SEL:EXEC STOP");
    EXPECT_EQ(rig.Instrument().Phase(), RunPhase::Idle);
    rig.ExpectAtRest(OperationMode::Execution, false);
    // Started again, the outputs are switched on first.
    rig.Faults("");
    rig.Press(Run::Start);
    rig.ExpectPrompts({kAsksOutput});
    rig.Press(Run::Stop);
    rig.Advance(200);
    rig.ExpectAtRest(OperationMode::Execution, true);
  }
}

// The instrument waits for the stop phase: it asks for a stop, and still names the step.
TEST(RunStory, StopAtTheInstrument) {
  ProgramRig rig;
  rig.Connect();
  rig.UseSteps({60, 60});
  SequenceData& sequence = rig.session->Sequence();
  sequence.Steps[0].StopPhaseOn = 1;
  sequence.Steps[0].StopPhase = 90;
  sequence.Cell(0, 0, kSlotFrequency).Value = 0.1;
  rig.DownloadAndStart();
  rig.Advance(1000);
  rig.Forget();
  rig.Instrument().PressStop();
  rig.Advance(200);
  EXPECT_EQ(rig.CountSent("1 < :TRIG1:SEL:EXEC STOP"), 1);
  rig.ExpectPrompts({});
  rig.ExpectAtRest(OperationMode::Execution, true);
}

// Commands that keep the instrument busy: the next one waits, at most 5 s.
TEST(RunStory, ABusyInstrument) {
  for (const int busy : {1200, 9000}) {
    SCOPED_TRACE(busy);
    ProgramRig rig;
    rig.Connect();
    rig.UseSteps({1});
    ASSERT_TRUE(rig.Download());
    rig.ExpectPrompts({kAsksName});
    rig.Faults("busy=" + std::to_string(busy));
    const std::uint32_t pressed = rig.clock.Now();
    rig.Press(Run::OutputOn);
    const bool inTime = busy < 5000;
    rig.ExpectPrompts(inTime ? EventList{} : EventList{CommunicationError(1, "critical")});
    rig.ExpectAtRest(OperationMode::Execution, inTime);
    // Polled every 500 ms.
    EXPECT_EQ(TicksSince(rig.clock.Now(), pressed), inTime ? 1500 : 5000);
  }
}

}  // namespace
}  // namespace corlune::testing
