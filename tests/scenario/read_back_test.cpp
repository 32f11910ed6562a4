// A sequence that was downloaded comes back as it was sent.
#include <random>

#include "compile/sequence_text.h"
#include "sequence/start_values.h"
#include "support/program_rig.h"

namespace corlune::testing {
namespace {

constexpr const char* kNotReceived = "critical: The error was detected while receiving data. ";

// Random sequences that the compiler takes: values within the model's ranges, targets among the used steps.
class Generator {
 public:
  explicit Generator(unsigned seed) : random_(seed) {}
  int Integer(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
  bool Flag() { return Integer(0, 1) == 1; }
  // A multiple of `resolution`.
  double Value(double low, double high, double resolution) {
    const auto steps = static_cast<std::int64_t>((high - low) / resolution);
    return low +
           static_cast<double>(std::uniform_int_distribution<std::int64_t>(0, steps)(random_)) * resolution;
  }
  std::int16_t Step(int count) { return static_cast<std::int16_t>(Integer(1, count)); }
  std::int16_t Bit() { return static_cast<std::int16_t>(Integer(0, 1)); }

  void Fill(SequenceData& sequence, int channels) {
    const int count = Integer(1, 40);
    sequence.StepCount = static_cast<std::int16_t>(count);
    sequence.Common = {Step(count), Integer(0, 2), Integer(0, 1), Integer(0, 1), Integer(0, 1)};
    for (int slot = 0; slot < count; ++slot) {
      StepRow& row = sequence.Steps[static_cast<std::size_t>(slot)];
      row.StepTime = Value(0.001, 5, 0.001);
      row.StepTerm = Bit();
      row.AutoHold = Bit();
      row.StepCode = static_cast<std::int16_t>(Integer(0, 3));
      row.StateBranchOn = Bit();
      row.StateBranchStep = Step(count);
      row.EventBranchOn = Bit();
      row.EventBranchStep = Step(count);
      row.JumpOn = Bit();
      row.JumpTo = Step(count);
      row.JumpCountOn = Bit();
      row.JumpCount = static_cast<std::int16_t>(Integer(1, 99));
      row.StopPhaseOn = Bit();
      row.StopPhase = Value(0, 360, 0.01);
      for (int channel = 0; channel < channels; ++channel) FillCells(sequence, channel, slot);
    }
  }

 private:
  void FillCells(SequenceData& sequence, int channel, int slot) {
    const auto set = [&](int param, double value) { sequence.Cell(channel, slot, param).Value = value; };
    const double amplitude = Value(0, 10, 0.001);
    set(kSlotWaveform, Integer(kWaveSine, kWaveDc));
    set(kSlotArbNumber, Integer(1, 128));
    set(kSlotPolarityRange, Integer(0, 5));
    set(kSlotExternal, Integer(0, 1));
    set(kSlotFrequency, Flag() ? Value(0.01, 100, 0.01) : Value(1000, 1e6, 1));
    set(kSlotAmplitude, amplitude);
    set(kSlotOffset, Value(-4, 4, 0.001));
    set(kSlotPhase, Value(-360, 360, 0.01));
    set(kSlotDuty, Value(1, 99, 0.1));
    for (const int param : {kSlotFrequency, kSlotAmplitude, kSlotOffset, kSlotPhase, kSlotDuty}) {
      // A duty sweep of every step would outgrow the work area.
      const int most = param == kSlotDuty ? 1 : 2;
      sequence.Cell(channel, slot, param).ChangeMode = static_cast<std::int16_t>(Integer(0, most));
    }
  }

  std::mt19937 random_;
};

std::string TextOf(const SequenceData& sequence, int channels) {
  std::string text;
  AppendSequenceText(text, sequence, ModelDefinition{}, "", channels);
  return text;
}

TEST(ReadBack, GivesBackWhatWasSent) {
  int accepted = 0;
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE(seed);
    const bool twoChannels = seed % 2 == 0;
    ProgramRig rig(twoChannels ? "QM2220:QM000001" : "QM2210:QM000001");
    rig.Connect();
    Generator generator(seed);
    SequenceData& sequence = rig.session->Sequence();
    generator.Fill(sequence, twoChannels ? 2 : 1);
    sequence.SequenceNumber = static_cast<std::int16_t>(generator.Integer(0, 10));
    const auto number = std::to_string(sequence.SequenceNumber);
    if (!rig.Download()) {
      // Only the compiler may say no, before anything is sent.
      EXPECT_EQ(rig.session->Download().Outcome().End, DownloadEnd::Refused);
      rig.ExpectSent({});
      rig.prompts.said.clear();
      continue;
    }
    ++accepted;
    rig.ExpectPrompts({"input: Seq" + number});
    // Memory 0 is the working memory alone; another one is recorded too.
    EXPECT_EQ(rig.CountSent("1 < :TRAC:SEQ " + number + ",\"E2E\",#"), 1);
    EXPECT_EQ(rig.CountSent("1 < :TRAC:SEQ:REC"), number == "0" ? 0 : 1);
    ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
    const int channels = twoChannels ? 2 : 1;
    const std::string sent = TextOf(sequence, channels);
    const std::int16_t count = sequence.StepCount;

    ASSERT_TRUE(rig.session->NewSequence());
    sequence.SequenceNumber = static_cast<std::int16_t>(std::stoi(number));
    EXPECT_NE(TextOf(sequence, channels), sent);
    rig.Forget();
    ASSERT_TRUE(rig.session->ReadBack());
    EXPECT_EQ(TextOf(sequence, channels), sent);
    EXPECT_EQ(sequence.StepCount, count);
    const auto computed = std::make_unique<SequenceData>(sequence);
    ComputeStartValues(*computed);
    EXPECT_TRUE(sequence.Cells == computed->Cells) << "start values";
    EXPECT_TRUE(rig.session->State().Modified);
    rig.ExpectSent({"1 < :TRACe:SEQuence? " + number});
    rig.session->State().Modified = false;
  }
  EXPECT_GT(accepted, 20) << "too few sequences got through the compiler to mean anything";
}

TEST(ReadBack, AFaultLeavesTheSequenceAsItWas) {
  for (const char* fault :
       {"timeout=1", "timeout=2", "error=1:0xBFFF003E", "error=2:0xBFFF003E", "gone=0", "gone=1", "drop=1",
        "late=1:9000", "empty=1", "long=1", "binary=1", "text=1:SEQ=1,SYNC,0,STAR,POS"}) {
    SCOPED_TRACE(fault);
    ProgramRig rig;
    rig.Connect();
    rig.UseSteps({0.5, 0.25});
    ASSERT_TRUE(rig.Download());
    rig.ExpectPrompts({kAsksName});
    ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
    rig.UseSteps({7, 8, 9});
    const auto before = std::make_unique<SequenceData>(rig.session->Sequence());
    rig.Faults(fault);
    EXPECT_FALSE(rig.session->ReadBack());
    rig.ExpectPrompts({kNotReceived});
    EXPECT_TRUE(rig.session->Sequence() == *before);
    EXPECT_FALSE(rig.session->State().Modified);
    rig.ExpectAtRest(OperationMode::Edit, false);

    // Nor does a memory that nobody filled. The next one works, and finds no rest of the failed ones.
    rig.Replug();
    rig.session->Sequence().SequenceNumber = 7;
    EXPECT_FALSE(rig.session->ReadBack());
    rig.ExpectPrompts({kNotReceived});
    rig.session->Sequence().SequenceNumber = 0;
    EXPECT_TRUE(rig.session->Sequence() == *before);
    ASSERT_TRUE(rig.session->ReadBack());
    EXPECT_EQ(rig.session->Sequence().StepCount, 2);
    EXPECT_EQ(rig.session->Sequence().Steps[1].StepTime, 0.25);
    rig.session->State().Modified = false;
  }
}

// A close request, a file command or another read in the wait for the answer is refused.
TEST(ReadBack, NothingComesInBetween) {
  ProgramRig rig;
  rig.Connect();
  rig.UseSteps({0.5});
  ASSERT_TRUE(rig.Download());
  rig.ExpectPrompts({kAsksName});
  ASSERT_TRUE(rig.session->Control().SetOperationMode(OperationMode::Edit));
  int waits = 0;
  rig.pump.OnEveryCall([&] {
    ++waits;
    EXPECT_FALSE(rig.session->RequestClose());
    EXPECT_FALSE(rig.session->NewSequence());
    EXPECT_FALSE(rig.session->ReadBack());
    EXPECT_FALSE(rig.Download());
  });
  EXPECT_TRUE(rig.session->ReadBack());
  EXPECT_GT(waits, 0);
  rig.pump.OnEveryCall({});
  EXPECT_EQ(rig.progress.texts.back(), "Reading the sequence 0 back from the instrument.");
  EXPECT_EQ(rig.progress.depth, 0);

  // Cancelled within a second; the answer that is under way is dropped.
  rig.session->State().Modified = false;
  rig.Forget();
  const std::uint32_t before = rig.clock.Now();
  rig.pump.At(before + 1500, [&] { rig.progress.cancel = true; });
  EXPECT_FALSE(rig.session->ReadBack());
  EXPECT_EQ(rig.clock.Now() - before, 2000U);
  EXPECT_EQ(rig.recorder.exchanges, (EventList{"1 < :TRACe:SEQuence? 0", "1 clear"}));
  EXPECT_FALSE(rig.session->State().Modified);
}

}  // namespace
}  // namespace corlune::testing
