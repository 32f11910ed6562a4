// Something happens in a wait of a download and a run: each wait in turn, each kind of press. Nothing may
// come between the exchanges of what is under way.
#include "support/program_rig.h"

namespace corlune::testing {
namespace {

using ::testing::AnyOf;
using ::testing::IsEmpty;

// The whole way: download, start, hold, resume, branch, end.
struct WholeWay : ProgramRig {
  WholeWay() : ProgramRig("QM2220:QM000001", {.queriesWait = true}) {
    Connect();
    UseSteps({0.6, 60, 0.5});
    SequenceData& sequence = session->Sequence();
    sequence.SequenceNumber = 2;
    sequence.Cell(0, 0, kSlotWaveform).Value = kWaveUser;
    sequence.Cell(0, 0, kSlotArbNumber).Value = 1;
    sequence.Channels.ArbFiles[0].FilePath = std::string(CORLUNE_DATA) + "/examples/chirp.txt";
    for (std::size_t slot = 0; slot < 3; ++slot) sequence.Steps[slot].BranchStep[0] = 3;
  }
  void Play() {
    inDownload = true;
    downloaded = Download();
    inDownload = false;
    if (!downloaded) return;
    Press(Run::Start);
    for (; tick < 80 && session->State().RunState != RunState::Stopped; ++tick) {
      if (tick == 2) Press(Run::Hold);
      if (tick == 9 || tick == 40) Press(Run::Branch);  // a hold in between drops the first one
      Advance(100);
      if (session->State().RunState == RunState::Held) Press(Run::Start);
    }
    // A reply belongs to the query right before it: nothing was sent in between.
    for (std::size_t i = 1; i < recorder.exchanges.size(); ++i) {
      const bool reply = recorder.exchanges[i].find(" > ") != std::string::npos;
      EXPECT_EQ(reply, recorder.exchanges[i - 1].find('?') != std::string::npos) << recorder.exchanges[i];
    }
  }
  void ExpectEnded() {
    EXPECT_TRUE(downloaded);
    ExpectAtRest(OperationMode::Execution, true);
    EXPECT_EQ(Instrument().Phase(), RunPhase::Idle);
  }

  int tick = 0;
  bool inDownload = false;
  bool downloaded = false;
};

struct Undisturbed {
  EventList exchanges;
  EventList said;
  int waits = 0;
  int downloadWaits = 0;
};

const Undisturbed& PlayUndisturbed() {
  static const Undisturbed record = [] {
    WholeWay way;
    const int before = way.pump.Calls();
    Undisturbed result;
    way.pump.OnEveryCall([&] { result.downloadWaits += way.inDownload ? 1 : 0; });
    way.Play();
    way.pump.OnEveryCall({});
    way.ExpectEnded();
    result.exchanges = way.recorder.exchanges;
    result.said = std::exchange(way.prompts.said, {});
    result.waits = way.pump.Calls() - before;
    return result;
  }();
  return record;
}

// Plays the whole way and runs `action` in wait `wait`, counted from the beginning of the download.
void PlayWith(WholeWay& way, int wait, const std::function<void()>& action) {
  bool reached = false;
  way.pump.OnCall(way.pump.Calls() + wait, [&] {
    reached = true;
    action();
  });
  way.Play();
  EXPECT_TRUE(reached);
}

// Every reply comes after 200 ms: start-up says what it waits for, and Cancel ends it off-line, with its
// window.
TEST(SlowStart, SaysWhatItWaitsForAndCanBeCancelled) {
  ProgramRig rig("QM2210:QM000001");
  rig.Faults("late:200");
  const auto asking = [](int number) {
    return "Arbitrary waveforms in the instrument: " + std::to_string(number) + "/128";
  };
  rig.progress.cancelAt = asking(3);
  EXPECT_EQ(rig.session->StartUp({}), StartUpResult::Show);
  EXPECT_EQ(rig.progress.waits, (EventList{"Searching for instruments...", "Connecting to the instrument...",
                                           asking(1), asking(2), asking(3)}));
  EXPECT_EQ(rig.TakeSent().back(), "1 < :TRAC:INF? 2");
  EXPECT_EQ(rig.session->State().Online, 0);
  EXPECT_FALSE(rig.session->State().Connected);
  rig.ExpectAtRest(OperationMode::Edit, false);
  rig.ExpectPrompts({"exclamation: Initialization file doesn't exist"});

  // The set-up dialog connects; what it waits for is shown after 300 ms.
  rig.progress.waits.clear();
  rig.progress.cancelAt.clear();
  ASSERT_TRUE(rig.Reconnect());
  EXPECT_EQ(rig.progress.waits.size(), 127U);
}

TEST(InterruptionOnTheWay, TheUndisturbedWayHasEveryKindOfWait) {
  const Undisturbed& record = PlayUndisturbed();
  EXPECT_EQ(record.said, (EventList{"input: Seq2", kAsksOutput, kSaysEnd}));
  for (const char* command : {":TRAC:SEQ:REC 2", ":TRIG:COMP", ":TRIG1:SEL:EXEC STAR", ":TRIG1:SEL:EXEC HOLD",
                              ":TRIG1:SEL:EXEC RES", ":TRIG1:SEL:EXEC BRAN 3"}) {
    EXPECT_THAT(record.exchanges, ::testing::Contains("1 < " + std::string(command)));
  }
  // Name, preparation, waveform, 10 s, 5 s, polls; question, busy polling, commands, the end.
  EXPECT_GT(record.downloadWaits, 35);
  EXPECT_GT(record.waits, record.downloadWaits + 7);
}

// What must not start while something is under way is refused in every wait, and leaves no trace.
TEST(InterruptionOnTheWay, ItIsRefused) {
  struct Attempt {
    const char* what;
    std::function<void(WholeWay&)> action;
  };
  const Attempt attempts[] = {
      {"tick", [](WholeWay& way) { way.session->Monitor().Tick(); }},
      {"close, files and set-up",
       [](WholeWay& way) {
         Session& session = *way.session;
         EXPECT_FALSE(session.RequestClose());
         EXPECT_FALSE(session.NewSequence());
         EXPECT_FALSE(session.OpenFile(std::string(CORLUNE_DATA) + "/examples/ramp.dat"));
         EXPECT_FALSE(session.ReadBack());
         EXPECT_FALSE(way.Reconnect());
         EXPECT_FALSE(way.Download());
         EXPECT_FALSE(session.Control().SetOperationMode(OperationMode::Edit));
       }},
      {"output",
       [](WholeWay& way) {
         // In a tick it is carried out behind it; everywhere else it is ignored.
         if (!way.session->Activity().Under(Work::Tick)) way.Press(Run::OutputOff);
       }},
      {"run commands in a download",
       [](WholeWay& way) {
         for (int item = 0; item <= 5 && way.inDownload; ++item) way.session->Control().MenuItem(item);
       }},
  };
  const Undisturbed& record = PlayUndisturbed();
  for (const Attempt& attempt : attempts) {
    for (int wait = 1; wait <= record.waits; ++wait) {
      SCOPED_TRACE(std::string(attempt.what) + " in wait " + std::to_string(wait));
      WholeWay way;
      PlayWith(way, wait, [&] { attempt.action(way); });
      EXPECT_EQ(way.recorder.exchanges, record.exchanges);
      way.ExpectPrompts(record.said);
      way.ExpectEnded();
    }
  }
}

TEST(InterruptionOnTheWay, EndingFromOutsideLeavesNothingRunning) {
  struct ProcessEnd {};  // nothing that is under way comes back
  int takenOver = 0;
  for (int wait = 1; wait <= PlayUndisturbed().waits; ++wait) {
    SCOPED_TRACE("wait " + std::to_string(wait));
    WholeWay way;
    bool inDownload = false;
    const auto end = [&] {
      const std::uint32_t before = way.clock.Now();
      const bool sending = way.session->Activity().Under(Work::Download);
      inDownload = inDownload || sending;
      EXPECT_NE(way.session->EndFromOutside(), sending) << "a block that is being sent ends first";
      EXPECT_LE(way.clock.Now() - before, 2000U);
      if (way.end.ended) throw ProcessEnd{};
      way.Forget();
    };
    EXPECT_THROW((PlayWith(way, wait, end), end()), ProcessEnd);
    EXPECT_EQ(way.Instrument().Phase(), RunPhase::Idle);
    EXPECT_EQ(way.faces.visa.OpenObjects(), 0U);
    way.prompts.said.clear();
    takenOver += inDownload && way.downloaded ? 1 : 0;
    if (!inDownload || way.downloaded) continue;
    EXPECT_EQ(way.session->Download().Outcome().End, DownloadEnd::Cancelled);
    EXPECT_THAT(way.TakeSent(), ::testing::Each(::testing::Not(::testing::HasSubstr("< :TR"))))
        << "no other part";
  }
  EXPECT_LE(takenOver, 6);  // it was compiling what it had taken over, or asked about that
}

TEST(InterruptionOnTheWay, StopInAnyWaitOfTheRunStopsIt) {
  const Undisturbed& record = PlayUndisturbed();
  int stopped = 0;
  for (int wait = record.downloadWaits + 1; wait <= record.waits; ++wait) {
    SCOPED_TRACE("wait " + std::to_string(wait));
    WholeWay way;
    constexpr const char* kStart = "1 < :TRIG1:SEL:EXEC STAR";
    int started = 0;
    int pressedIn = -1;
    PlayWith(way, wait, [&] {
      started = way.CountSent(kStart);
      pressedIn = way.tick;
      way.Press(Run::Stop);
    });
    EXPECT_EQ(way.CountSent(kStart), started) << "no start behind a stop";
    EXPECT_LE(way.tick, pressedIn + 1) << "another tick went by before the stop";
    // A stop in the question leaves the output as it was.
    way.ExpectAtRest(OperationMode::Execution, way.CountSent("1 < :OUTP1 ON;:OUTP2 ON") > 0);
    EXPECT_EQ(way.Instrument().Phase(), RunPhase::Idle);
    const int stops = way.CountSent("1 < :TRIG1:SEL:EXEC STOP");
    const bool ended = way.CountSent("1 > -1") > 0;
    // Either the run had come to its end by itself or it was stopped, once.
    EXPECT_EQ(stops + (ended ? 1 : 0), 1);
    stopped += stops;
    EventList said = record.said;
    if (!ended) said.pop_back();
    way.ExpectPrompts(said);
    // Behind the last word of the instrument nothing more is sent.
    EXPECT_THAT(way.recorder.exchanges.back(), AnyOf("1 > 2", "1 > 1;1"));
  }
  EXPECT_GT(stopped, 4);
}

// Only the message at the end finds the run stopped, so that it can start anew.
TEST(InterruptionOnTheWay, AStartIsCarriedOutInTheLastMessageOnly) {
  const Undisturbed& record = PlayUndisturbed();
  int starts = 0;
  for (int wait = record.downloadWaits + 1; wait <= record.waits; ++wait) {
    SCOPED_TRACE("wait " + std::to_string(wait));
    WholeWay way;
    PlayWith(way, wait, [&] { way.Press(Run::Start); });
    starts += way.CountSent("1 < :TRIG1:SEL:EXEC STAR") - 1;
    way.prompts.said.clear();
  }
  EXPECT_EQ(starts, 1);
}

// The hold was made at the instrument in the very tick in which the person pressed Stop, or Hold.
TEST(InterruptionOnTheWay, PressesWhileTheInstrumentHolds) {
  for (const corlune::Run press : {Run::Stop, Run::Hold}) {
    WholeWay way;
    EXPECT_TRUE(way.Download());
    way.Press(Run::Start);
    way.prompts.said.clear();
    way.Instrument().PressHold();
    way.pump.OnCall(way.pump.Calls() + 3, [&] {  // between status query and reply
      if (press == Run::Stop) way.Press(Run::OutputOff);
      way.Press(press);
    });
    way.Advance(100);
    EXPECT_EQ(way.session->State().RunState, press == Run::Stop ? RunState::Stopped : RunState::Held);
    EXPECT_EQ(way.CountSent("1 < :TRIG1:SEL:EXEC STOP"), press == Run::Stop ? 1 : 0) << "a stop is not lost";
    EXPECT_EQ(way.session->State().PendingRequest, PendingRequest::None) << "a hold has come about";
    EXPECT_EQ(way.Instrument().Output(1), press != Run::Stop) << "nor is the output switched off before it";
  }
}

TEST(InterruptionOnTheWay, HoldAndBranchInAnyWaitOfTheRun) {
  const Undisturbed& record = PlayUndisturbed();
  for (const corlune::Run press : {Run::Hold, Run::Branch}) {
    int effects = 0;
    for (int wait = record.downloadWaits + 1; wait <= record.waits; ++wait) {
      SCOPED_TRACE((press == Run::Hold ? "hold in wait " : "branch in wait ") + std::to_string(wait));
      WholeWay way;
      bool holding = false;
      PlayWith(way, wait, [&] {
        holding = way.recorder.exchanges.back() == "1 < :TRIG1:SEL:EXEC HOLD";
        way.Press(press);
      });
      // Held runs are resumed; in the end it ends as always.
      way.ExpectEnded();
      way.ExpectPrompts(record.said);
      const std::string command =
          press == Run::Hold ? "1 < :TRIG1:SEL:EXEC HOLD" : "1 < :TRIG1:SEL:EXEC BRAN 3";
      effects += way.CountSent(command) - 1;
      if (holding) {
        EXPECT_EQ(way.CountSent(command), 1) << "what was pressed during the hold is dropped with it";
      }
      EXPECT_EQ(way.CountSent("1 < :TRIG1:SEL:EXEC RES"), way.CountSent("1 < :TRIG1:SEL:EXEC HOLD"));
    }
    EXPECT_GT(effects, 0);
  }
}

}  // namespace
}  // namespace corlune::testing
