// Each exchange of a download fails in turn. The table says what the program does about it: what it still
// sends, what it says, and in which state it is left. Afterwards it must be usable.
#include "compile/download_outcome_text.h"
#include "scenario/exchange_table.h"
#include "support/program_rig.h"

namespace corlune::testing {
namespace {

enum class Fate {
  NotSent,         // the download ends, nothing more is sent
  WaveNotSent,     // the same, with the message of a waveform that failed
  WaveBroken,      // the same; a clear makes the instrument forget what it has of the block
  BlockBroken,     // the same, without the message
  NotCompiled,     // the same, once the instrument was to take the sequence over
  NotPrepared,     // not checked: the instrument refuses to compile in its normal operation
  ErrorUnknown,    // counts as no error; the instrument's complaint about it is found by the next question
  ErrorForgotten,  // the same, but "*CLS" clears the complaint
  Unchecked,       // the rest follows as if nothing had happened
  PollAgain,       // the status byte is asked for again
  OutputUnknown,   // the sequence is in the instrument; the output counts as off
};

const std::vector<Exchange<Fate>> kDownload = Exchanges<Fate>({
    {Fate::NotSent, "1 < *CLS;:SYST:REM;*ESE 60|1 < :SOUR1:SEQ:STAT?|1 > 0"},
    {Fate::NotPrepared, "1 < :SOUR1:SEQ:STAT 1"},
    {Fate::NotSent, "1 < :STAT:OPER:CH1:COND?|1 > 0"},
    {Fate::WaveNotSent, "1 < *CLS"},
    {Fate::WaveBroken, "1 < :TRACe:DATA 1,\"Arb1\",#48200|1 < (8200 bytes)"},
    {Fate::ErrorUnknown, "1 < :SYST:ERR?|1 > 0,\"No error\""},
    {Fate::BlockBroken, "1 < :TRAC:SEQ 1,\"E2E\",#3337|1 < (337 bytes)"},
    {Fate::ErrorUnknown, "1 < :SYST:ERR?|1 > 0,\"No error\""},
    {Fate::NotSent, "1 < :TRAC:SEQ:REC 1"},
    {Fate::ErrorForgotten, "1 < :SYST:ERR?|1 > 0,\"No error\""},
    {Fate::Unchecked, "1 < *CLS|1 poll 0"},
    {Fate::NotSent, "1 < :TRIG:COMP"},
    {Fate::PollAgain, "1 poll 0|1 poll 0|1 poll 128"},
    {Fate::NotCompiled, "1 < :STAT:OPER:CH1:COND?|1 > 2"},
    {Fate::OutputUnknown, "1 < :OUTP1?;:OUTP2?|1 > 0;0"},
});
constexpr const char* kWaveFailed = "exclamation: Please specify a correct file name.";
constexpr std::size_t kFirstPoll = 21;
constexpr std::size_t kCompiled = 24;
constexpr std::size_t kOutput = 26;

EventList Lines(std::size_t from = 0, std::size_t to = kDownload.size()) {
  return LinesOf(kDownload, from, to);
}

// Connected, with two steps, of which one plays an arbitrary waveform, for memory 1.
struct DownloadBench : ProgramRig {
  DownloadBench() {
    Connect();
    UseSteps({0.5, 0.25});
    SequenceData& sequence = session->Sequence();
    sequence.SequenceNumber = 1;
    sequence.Cell(0, 0, kSlotWaveform).Value = kWaveUser;
    sequence.Cell(0, 0, kSlotArbNumber).Value = 1;
    sequence.Channels.ArbFiles[0].FilePath = std::string(CORLUNE_DATA) + "/examples/chirp.txt";
    sequence.Channels.ArbFiles[1] = sequence.Channels.ArbFiles[0];  // no step plays it
  }
  const DownloadOutcome& Outcome() { return session->Download().Outcome(); }
  void ExpectSaid(EventList messages) {
    messages.insert(messages.begin(), "input: " + lastName);
    lastName = "E2E";
    ExpectPrompts(messages);
  }
  // Whatever went wrong: with the fault gone, the next download works and the sequence runs.
  void ExpectUsable() {
    if (session->State().OperationMode == OperationMode::Execution) {
      ASSERT_TRUE(session->Control().SetOperationMode(OperationMode::Edit));
    }
    ASSERT_TRUE(Download()) << "the next download fails: "
                            << DownloadOutcomeText(Outcome(), session->Catalogue());
    ExpectSaid({});
    Press(Run::Start);
    RunToEnd();
    ExpectPrompts({kAsksOutput, kSaysEnd});
    ExpectAtRest(OperationMode::Execution, true);
  }

  std::string lastName = "Seq1";
};

// What follows after exchange `n` has failed once, and how the download ends.
struct Rest {
  EventList lines;
  DownloadEnd end = DownloadEnd::Done;
  std::int32_t error = 0;
  EventList messages;
};

Rest RestAfterOneFailure(std::size_t n, bool timedOut) {
  const std::string line = kDownload[n].line;
  const bool write = IsWrite(line);
  switch (kDownload[n].fate) {
    case Fate::NotSent:
      return {{}, DownloadEnd::NotSent, 0, {}};
    case Fate::WaveNotSent:
      return {{}, DownloadEnd::NotSent, 0, {kWaveFailed}};
    case Fate::WaveBroken:
      return {{"1 clear"}, DownloadEnd::NotSent, 0, {kWaveFailed}};
    case Fate::BlockBroken:
      return {{"1 clear"}, DownloadEnd::NotSent, 0, {}};
    case Fate::NotCompiled:
      return {{}, DownloadEnd::NotCompiled, 0, {}};
    case Fate::NotPrepared:
      return {Joined(Lines(n + 1, kFirstPoll), {"1 poll 36", "1 < *ESR?", "1 > 16", "1 < :SYST:ERR?",
                                                "1 > -221,\"Settings conflict\""}),
              DownloadEnd::NotCompiled,
              0,
              {}};
    case Fate::ErrorUnknown: {
      Rest rest{{}, DownloadEnd::InstrumentError, write ? -420 : -410, {}};
      // The reply is asked for all the same.
      if (write) rest.lines.emplace_back("1 >  !timeout");
      const std::size_t next = n + (write ? 2 : 1);
      std::size_t question = next;
      while (std::string(kDownload[question].line) != "1 < :SYST:ERR?") ++question;
      rest.lines = Joined(rest.lines, Lines(next, question + 1));
      rest.lines.emplace_back(write ? "1 > -420,\"Query UNTERMINATED\"" : "1 > -410,\"Query INTERRUPTED\"");
      return rest;
    }
    case Fate::ErrorForgotten:
      if (!write) return {Lines(n + 1), DownloadEnd::Done, 0, {}};
      return {Joined({"1 >  !timeout"}, Lines(n + 2)), DownloadEnd::Done, 0, {}};
    case Fate::Unchecked:
      return {Lines(n + 1), DownloadEnd::Done, 0, {}};
    case Fate::PollAgain: {
      // A poll that times out takes 3 s, in which the instrument gets ready.
      const bool ready = timedOut || n > kFirstPoll;
      EventList polls = ready ? EventList{"1 poll 128"} : EventList{"1 poll 0", "1 poll 128"};
      return {Joined(polls, Lines(kCompiled)), DownloadEnd::Done, 0, {}};
    }
    case Fate::OutputUnknown:
      if (timedOut) return {Joined({"1 clear"}, Lines(kOutput)), DownloadEnd::Done, 0, {}};
      return {{}, DownloadEnd::Done, 0, {CommunicationError(1, "exclamation")}};
  }
  return {};
}

void ExpectEnd(DownloadBench& rig, bool downloaded, const Rest& rest) {
  EXPECT_EQ(rig.Outcome().End, rest.end);
  EXPECT_EQ(rig.Outcome().ErrorNumber, rest.error);
  const bool done = rest.end == DownloadEnd::Done;
  EXPECT_EQ(downloaded, done);
  // The places that do not interrupt have something to say.
  EXPECT_EQ(DownloadOutcomeText(rig.Outcome(), rig.session->Catalogue()).empty(), done);
  rig.ExpectSaid(rest.messages);
  rig.ExpectAtRest(done ? OperationMode::Execution : OperationMode::Edit, false);
}

TEST(DownloadFaults, TheTableIsTheDownloadWithoutFaults) {
  DownloadBench rig;
  const std::uint32_t before = rig.clock.Now();
  EXPECT_TRUE(rig.Download());
  EXPECT_EQ(rig.recorder.exchanges, Lines());
  ExpectEnd(rig, true, {});
  // 1 s for the waveform, 10 s for the block, 5 s for the memory; preparation, queries, polls.
  EXPECT_EQ(rig.clock.Now() - before, 17700U);
  const std::string sequence = "Transmitting the sequence data.";
  EXPECT_EQ(
      rig.progress.texts,
      (EventList{"Preparing the instrument.", "Transmitting the arbitrary wave data.....ARB 1", sequence,
                 sequence, rig.session->Catalogue().GetResString(TextId::WaitingForCompilation)}));
  EXPECT_EQ(rig.progress.advances, 16);
  EXPECT_FALSE(TempFolder::Read(rig.folder.File("UseStep.txt")).empty());
  // An unchanged waveform is sent once.
  rig.Forget();
  rig.ExpectUsable();
  EXPECT_EQ(rig.CountSent("1 < :TRACe:DATA"), 0);
}

TEST(DownloadFaults, EachExchangeFailsOnce) {
  for (const bool timedOut : {true, false}) {
    for (std::size_t n = 0; n < kDownload.size(); ++n) {
      const std::string suffix = timedOut ? " !timeout" : " !error";
      SCOPED_TRACE("exchange " + std::to_string(n + 1) + ": " + kDownload[n].line + suffix);
      DownloadBench rig;
      const std::string number = std::to_string(n + 1);
      rig.Faults(timedOut ? "timeout=" + number : "error=" + number + ":0xBFFF003E");
      const bool downloaded = rig.Download();
      const Rest rest = RestAfterOneFailure(n, timedOut);
      EXPECT_EQ(rig.recorder.exchanges,
                Joined(Joined(Lines(0, n), {FailedLine(kDownload[n].line, suffix)}), rest.lines));
      ExpectEnd(rig, downloaded, rest);
      rig.Faults("");
      rig.ExpectUsable();
    }
  }
}

// A reply behind the time-out is as good as none, and must not be taken for the reply to the next question.
TEST(DownloadFaults, EachReplyIsLateOrLost) {
  int messages = 0;
  for (std::size_t n = 0; n < kDownload.size(); ++n) {
    if (IsWrite(kDownload[n].line)) ++messages;
    if (!IsRead(kDownload[n].line)) continue;
    const std::string number = std::to_string(messages);
    for (const std::string& fault : {"late=" + number + ":31000", "drop=" + number}) {
      SCOPED_TRACE(fault + " of " + kDownload[n - 1].line);
      DownloadBench rig;
      rig.Faults(fault);
      const bool downloaded = rig.Download();
      Rest rest = RestAfterOneFailure(n, true);
      // A reply that is lost on its way leaves the instrument without a complaint.
      if (fault.starts_with("drop") && rest.error != 0) {
        rest = {Lines(n + 1), DownloadEnd::Done, 0, {}};
      }
      EXPECT_EQ(rig.recorder.exchanges, Joined(Joined(Lines(0, n), {"1 >  !timeout"}), rest.lines));
      ExpectEnd(rig, downloaded, rest);
      rig.Faults("");
      rig.ExpectUsable();
    }
  }
}

// Garbage for an error number may mean anything, so nothing that follows may rest on it.
TEST(DownloadFaults, AnErrorReplyIsUnreadable) {
  for (std::size_t n = 0, questions = 0; n < kDownload.size(); ++n) {
    if (std::string(kDownload[n].line) != "1 < :SYST:ERR?") continue;
    SCOPED_TRACE(++questions);
    DownloadBench rig;
    int messages = 0;
    for (std::size_t i = 0; i <= n; ++i) messages += IsWrite(kDownload[i].line) ? 1 : 0;
    rig.Faults("text=" + std::to_string(messages) + ":~?");
    const bool downloaded = rig.Download();
    Rest rest{{}, DownloadEnd::ReplyUnreadable, 0, {}};
    if (questions == 1) rest.messages = {kWaveFailed};
    EXPECT_EQ(rig.recorder.exchanges, Joined(Lines(0, n + 1), {"1 > ~?"}));
    ExpectEnd(rig, downloaded, rest);
    EXPECT_EQ(rig.session->Sequence().Channels.ArbFiles[0].Transferred, questions == 1 ? 0 : 1);
  }
}

TEST(DownloadFaults, RepliesWithinTheTimeOutChangeNothing) {
  DownloadBench rig;
  rig.Faults("late:2500");
  EXPECT_TRUE(rig.Download());
  // The instrument is ready before the first poll that waited that long behind it.
  EXPECT_EQ(rig.recorder.exchanges, Lines());
  ExpectEnd(rig, true, {});
}

// Whether the download ends for good when this exchange keeps failing.
bool IsChecked(Fate fate) {
  return fate != Fate::NotPrepared && fate != Fate::ErrorUnknown && fate != Fate::ErrorForgotten &&
         fate != Fate::Unchecked;
}

bool BreaksBlock(Fate fate) {
  return fate == Fate::WaveBroken || fate == Fate::BlockBroken;
}

TEST(DownloadFaults, TheDeviceIsUnpluggedBeforeEachExchange) {
  for (std::size_t n = 0; n < kDownload.size(); ++n) {
    SCOPED_TRACE("exchange " + std::to_string(n + 1) + ": " + kDownload[n].line);
    DownloadBench rig;
    rig.Faults("gone=" + std::to_string(n));
    const bool downloaded = rig.Download();

    // It ends at the first exchange that is checked; at most three more are tried on the way there.
    Rest rest;
    std::size_t checked = n;
    while (!IsChecked(kDownload[checked].fate)) ++checked;
    const Fate fate = kDownload[checked].fate;
    rest.end = DownloadEnd::NotSent;
    for (std::size_t i = n; i <= checked; ++i) rest.lines.push_back(FailedLine(kDownload[i].line, " !error"));
    if (BreaksBlock(fate)) rest.lines.emplace_back("1 clear !error");
    if (fate == Fate::WaveNotSent || fate == Fate::WaveBroken) rest.messages = {kWaveFailed};
    if (kDownload[n].fate == Fate::OutputUnknown) {
      rest.end = DownloadEnd::Done;
      rest.messages = {CommunicationError(1, "exclamation")};
    }
    EXPECT_EQ(rig.recorder.exchanges, Joined(Lines(0, n), rest.lines));
    ExpectEnd(rig, downloaded, rest);

    // Plugged in again, with an empty memory: the set-up's OK connects anew.
    if (downloaded) {
      ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
    }
    rig.Replug();
    ASSERT_TRUE(rig.Reconnect());
    rig.ExpectUsable();
  }
}

// ---- What the instrument refuses ----

// The sequence is sent all the same; here it needs the waveform, so the instrument does not take it over.
TEST(DownloadFaults, TheWaveformMemoryIsFull) {
  DownloadBench rig;
  rig.Faults("full");
  EXPECT_FALSE(rig.Download());
  EXPECT_EQ(rig.CountSent("1 < :TRAC:SEQ 1,\"E2E\",#3337"), 1);
  EXPECT_EQ(rig.CountSent("1 < :TRIG:COMP"), 1);
  EXPECT_EQ(rig.Outcome().End, DownloadEnd::NotCompiled);
  rig.ExpectSaid({"critical: The total size of ARB data exceeds the upper bound. Transfer cannot be done.",
                  "critical: The error was detected by the compilation with the device."});
  rig.ExpectAtRest(OperationMode::Edit, false);
  EXPECT_EQ(rig.session->Sequence().Channels.ArbFiles[0].Transferred, 0);
  rig.Faults("");
  rig.ExpectUsable();
}

}  // namespace
}  // namespace corlune::testing
