#include "compile/read_back.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>

#include "compile/sequence_text.h"
#include "core/numbers.h"
#include "sequence/start_values.h"
#include "support/instrument_rig.h"
#include "support/temp_folder.h"

namespace corlune {
namespace {

using ::testing::ElementsAre;

std::string TextOf(const SequenceData& sequence, int channels) {
  std::string text;
  AppendSequenceText(text, sequence, "QM2220", channels);
  return text;
}

// A sequence with a random value in every field that the text carries.
std::unique_ptr<SequenceData> RandomSequence(std::mt19937& random) {
  const auto pick = [&](int last) { return std::uniform_int_distribution<int>(0, last)(random); };
  const auto number = [&] {
    const double mantissa = pick(2000000) - 1000000;
    constexpr double kScales[] = {1e-9, 1e-4, 0.001, 1, 1000, 1e10};
    return *ParseNumber(NumberText(mantissa * kScales[pick(5)]));  // as typed: at most 15 digits
  };
  auto sequence = std::make_unique<SequenceData>();
  sequence->Common = {static_cast<std::int16_t>(pick(255)), pick(2), pick(1), pick(1), pick(1)};
  for (StepRow& row : sequence->Steps) {
    row.StepTime = number();
    row.StepTerm = static_cast<std::int16_t>(pick(1));
    row.StopPhase = number();
    for (std::int16_t* field : {&row.AutoHold, &row.StateBranchOn, &row.EventBranchOn, &row.JumpOn,
                                &row.JumpCountOn, &row.StopPhaseOn}) {
      *field = static_cast<std::int16_t>(pick(1));
    }
    for (std::int16_t* field :
         {&row.StepCode, &row.StateBranchStep, &row.EventBranchStep, &row.JumpTo, &row.JumpCount}) {
      *field = static_cast<std::int16_t>(pick(300) - 20);
    }
  }
  for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
    for (int slot = 0; slot < MAX_STEPS; ++slot) {
      for (int param = kSlotFrequency; param <= kSlotDuty; ++param) {
        sequence->Cell(channel, slot, param).Value = number();
        sequence->Cell(channel, slot, param).ChangeMode = static_cast<std::int16_t>(pick(2));
      }
      sequence->Cell(channel, slot, kSlotWaveform).Value = pick(4);
      sequence->Cell(channel, slot, kSlotArbNumber).Value = pick(128);
      sequence->Cell(channel, slot, kSlotPolarityRange).Value = pick(5);
      sequence->Cell(channel, slot, kSlotPolarityRange).ChangeMode = 0;
      sequence->Cell(channel, slot, kSlotExternal).Value = pick(1);
    }
  }
  return sequence;
}

TEST(ReadSequenceText, GivesBackWhatWasWritten) {
  std::mt19937 random(20);
  for (int round = 0; round < 20; ++round) {
    for (const int channels : {1, 2}) {
      const auto written = RandomSequence(random);
      // What the text does not carry has to stay.
      auto read = std::make_unique<SequenceData>();
      read->StepCount = 17;
      read->StartStep = 4;
      read->BranchChannel = 2;
      for (StepRow& row : read->Steps) {
        row.TimeUnit = 1;
        row.BranchStep = {1, 2, 3, 4, 5};
      }
      for (ParamCell& cell : read->Cells) {
        cell.UnitIndex = 1;
        cell.StartValue = 9;
      }
      auto expected = std::make_unique<SequenceData>(*read);
      expected->Common = written->Common;
      for (int slot = 0; slot < MAX_STEPS; ++slot) {
        StepRow& row = expected->Steps[static_cast<std::size_t>(slot)];
        row = written->Steps[static_cast<std::size_t>(slot)];
        row.TimeUnit = 1;
        row.BranchStep = {1, 2, 3, 4, 5};
        for (int param = kSlotWaveform; param <= kSlotExternal; ++param) {
          for (int channel = 0; channel < channels; ++channel) {
            expected->Cell(channel, slot, param).Value = written->Cell(channel, slot, param).Value;
            expected->Cell(channel, slot, param).ChangeMode = written->Cell(channel, slot, param).ChangeMode;
          }
        }
      }
      EXPECT_TRUE(ReadSequenceText(TextOf(*written, channels), channels, *read).all());
      ASSERT_TRUE(*read == *expected) << "round " << round << ", channels " << channels;
    }
  }
}

struct LineCase {
  const char* line;
  std::function<void(SequenceData&)> edit;  // null: the line is skipped whole
};

TEST(ReadSequenceText, Lines) {
  const LineCase cases[] = {
      {"SEQ=12, SYNC ,on ,STAR, NEGative",
       [](SequenceData& s) {
         s.Common = {12, 1, 1, 0, 0};
       }},
      {"SEQ=12,SSYN,0, STAR,other",
       [](SequenceData& s) {
         s.Common = {12, 1, 0, 1, 1};
       }},
      {"seq=3,SYNC,0,STAR,OFF",
       [](SequenceData& s) {
         s.Common = {3, 2, 0, 0, 0};
       }},
      {"SEQ=12,SYNC,0,STAR", nullptr},
      {"SEQ=x,SYNC,0,STAR,POS", nullptr},
      {"SEQ=", nullptr},
      {"STEP#3=1.5, STOP ,ON,7,on ,8,OFF,9,2,10,ON,11,1, -2.5,more",
       [](SequenceData& s) {
         s.Steps[3] = StepRow{};
         s.Steps[3].StepTime = 1.5;
         s.Steps[3].StepTerm = 1;
         s.Steps[3].AutoHold = 1;
         s.Steps[3].StepCode = 7;
         s.Steps[3].StateBranchOn = 1;
         s.Steps[3].StateBranchStep = 8;
         s.Steps[3].EventBranchStep = 9;
         s.Steps[3].JumpOn = 2;
         s.Steps[3].JumpTo = 10;
         s.Steps[3].JumpCountOn = 1;
         s.Steps[3].JumpCount = 11;
         s.Steps[3].StopPhaseOn = 1;
         s.Steps[3].StopPhase = -2.5;
       }},
      {"STEP#3=1,CONT,0,0,0,1,0,1,0,1,INF,1,0", nullptr},        // 13 fields
      {"STEP#3=1,CONT,0,x,0,1,0,1,0,1,INF,1,0,0", nullptr},      // no number
      {"STEP#3=,CONT,0,0,0,1,0,1,0,1,INF,1,0,0", nullptr},       // empty
      {"STEP#3=1,CONT,0,0,0,1,0,1,0,40000,INF,1,0,0", nullptr},  // more than 16 bits
      {"STEP#256=1,CONT,0,0,0,1,0,1,0,1,INF,1,0,0", nullptr},
      {"STEP#-1=1,CONT,0,0,0,1,0,1,0,1,INF,1,0,0", nullptr},
      {"STEP#03=1,CONT,0,0,0,1,0,1,0,1,INF,1,0,0", nullptr},
      {"STEP#=1,CONT,0,0,0,1,0,1,0,1,INF,1,0,0", nullptr},
      {"CHAN#2#2= user ,5, INV , MFS ,ON,1000, KEEP ,2,SWE,3,CONS,4,x,5,keep",
       [](SequenceData& s) {
         s.Cell(1, 2, kSlotWaveform).Value = 4;
         s.Cell(1, 2, kSlotArbNumber).Value = 5;
         s.Cell(1, 2, kSlotPolarityRange).Value = 5;
         s.Cell(1, 2, kSlotExternal).Value = 1;
         s.Cell(1, 2, kSlotFrequency).Value = 1000;
         s.Cell(1, 2, kSlotFrequency).ChangeMode = kModeKeep;
         s.Cell(1, 2, kSlotAmplitude).Value = 2;
         s.Cell(1, 2, kSlotAmplitude).ChangeMode = kModeSweep;
         s.Cell(1, 2, kSlotOffset).Value = 3;
         s.Cell(1, 2, kSlotPhase).Value = 4;
         s.Cell(1, 2, kSlotDuty).Value = 5;
       }},
      {"CHAN#2#1=,0,NORM,FS,0.5,0,CONS,0,CONS,0,CONS,0,CONS,0,CONS",
       [](SequenceData& s) { s.Cell(0, 2, kSlotExternal).Value = 0.5; }},
      {"CHAN#2#1=SIN,0,NORM,FS,0,0,CONS,0,CONS,0,CONS,0,CONS,1", nullptr},
      {"CHAN#2#1=SIN,0,NORM,FS,0,1 k,CONS,0,CONS,0,CONS,0,CONS,0,CONS", nullptr},
      {"CHAN#2#3=USER,1,INV,FS,0,0,CONS,0,CONS,0,CONS,0,CONS,0,CONS", nullptr},
      {"CHAN#2#0=USER,1,INV,FS,0,0,CONS,0,CONS,0,CONS,0,CONS,0,CONS", nullptr},
      {"CHAN#2=USER,1,INV,FS,0,0,CONS,0,CONS,0,CONS,0,CONS,0,CONS", nullptr},
      {"OTHER=1", nullptr},
  };
  for (const LineCase& c : cases) {
    auto read = std::make_unique<SequenceData>();
    read->Common = {1, 1, 0, 1, 1};
    read->Steps[3].JumpTo = 77;
    read->Steps[3].EventBranchOn = 1;
    auto expected = std::make_unique<SequenceData>(*read);
    if (c.edit) c.edit(*expected);
    const std::string text = "[FILE]\r\nSEQ=99,SYNC,0,STAR,POS\r\n[DATA]\r\n" + std::string(c.line) + "\r\n";
    const ReceivedSteps received = ReadSequenceText(text, 2, *read);
    EXPECT_TRUE(*read == *expected) << c.line;
    const std::string kind = std::string(c.line).substr(0, 4);
    const bool isStep = kind == "STEP" || kind == "CHAN";
    EXPECT_EQ(received.any(), c.edit != nullptr && isStep) << c.line;
  }
}

TEST(ReadSequenceText, TheFirstOfTwoLinesCounts) {
  auto read = std::make_unique<SequenceData>();
  const std::string line = ",CONT,0,0,0,1,0,1,0,1,INF,1,0,0\r\n";
  const ReceivedSteps received =
      ReadSequenceText("[DATA]\r\nSTEP#0=2" + line + "STEP#0=3" + line + "STEP#1=x" + line, 1, *read);
  EXPECT_EQ(read->Steps[0].StepTime, 2);
  EXPECT_EQ(read->Steps[1].StepTime, 0);
  EXPECT_EQ(received.to_ullong(), 1u);
}

struct ReadRig : corlune::testing::InstrumentRig {
  ReadRig() {
    state.AppFolder = folder.Path();
    sequence->StepCount = 3;
    sequence->Steps[0].StepTime = 5;
    before = std::make_unique<SequenceData>(*sequence);
  }
  corlune::testing::TempFolder folder;
  std::unique_ptr<SequenceData> sequence = std::make_unique<SequenceData>();
  std::unique_ptr<SequenceData> before;
};

TEST(ReadBackSequence, TakesOverTheStepsThatDifferFromNewOnes) {
  ReadRig rig;
  auto held = std::make_unique<SequenceData>();
  held->Steps[6].AutoHold = 1;
  held->Cell(1, 8, kSlotFrequency).ChangeMode = kModeSweep;
  held->Cell(1, 8, kSlotFrequency).Value = 7;
  rig.script.FileReply(TextOf(*held, 2));
  ASSERT_TRUE(ReadBackSequence(rig.commands, rig.prompts, rig.catalogue, 3, *rig.sequence));
  EXPECT_THAT(rig.script.Log(), ElementsAre("0 < :TRACe:SEQuence? 3", "0 file recvdata.bin"));
  EXPECT_EQ(rig.clock.Now(), 6500u);
  EXPECT_EQ(rig.sequence->StepCount, 9);
  EXPECT_EQ(rig.sequence->Steps[0].StepTime, 0);
  held->StepCount = 9;
  ComputeStartValues(*held);
  EXPECT_TRUE(*rig.sequence == *held);

  // The second channel does not exist for a one-channel instrument.
  rig.state.Instruments[0].ChannelCount = 1;
  ASSERT_TRUE(ReadBackSequence(rig.commands, rig.prompts, rig.catalogue, 0, *rig.sequence));
  EXPECT_EQ(rig.sequence->StepCount, 7);
}

TEST(ReadBackSequence, AFailureLeavesTheSequenceAsItWas) {
  struct Case {
    const char* what;
    int failing;
    std::optional<std::string> reply;
    std::size_t exchanges;
  };
  const Case cases[] = {
      {"query", 0, "[DATA]\r\n", 1},
      {"answer", 1, "[DATA]\r\n", 2},
      {"time-out", -1, std::nullopt, 2},
      {"empty", -1, "", 2},
      {"no steps", -1, "[DATA]\r\nSEQ=7,SYNC,0,STAR,POS\r\n", 2},
      {"binary", -1, std::string("\x00\xFF[DATA]\x81\x00STEP#0", 16), 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ReadRig rig;
    if (c.reply) rig.script.FileReply(*c.reply);
    if (c.failing >= 0) rig.script.FailAt(static_cast<std::size_t>(c.failing), CommStatus::Error);
    rig.prompts.Answer(PromptAnswer::Ok);
    EXPECT_FALSE(ReadBackSequence(rig.commands, rig.prompts, rig.catalogue, 0, *rig.sequence));
    EXPECT_TRUE(*rig.sequence == *rig.before);
    EXPECT_EQ(rig.script.Count(), c.exchanges);
    ASSERT_EQ(rig.prompts.messages.size(), 1u);
    EXPECT_EQ(rig.prompts.messages[0].text, rig.catalogue.GetResString(9207));
    EXPECT_EQ(rig.prompts.messages[0].icon, PromptIcon::Critical);
  }
}

TEST(ReadBackSequence, WorksInTheTransferFolderWhenThereIsOne) {
  ReadRig rig;
  const corlune::testing::TempFolder own;
  rig.state.TransferFolder = own.Path();
  rig.folder.Write("recvdata.bin", "of another program");
  auto held = std::make_unique<SequenceData>();
  held->Steps[1].AutoHold = 1;
  rig.script.FileReply(TextOf(*held, 2));
  ASSERT_TRUE(ReadBackSequence(rig.commands, rig.prompts, rig.catalogue, 3, *rig.sequence));
  EXPECT_EQ(rig.sequence->Steps[1].AutoHold, 1);
  EXPECT_EQ(corlune::testing::TempFolder::Read(rig.folder.File("recvdata.bin")), "of another program");
}

TEST(ReadBackSequence, OfflineNothingIsReplaced) {
  ReadRig rig;
  rig.state.Online = 0;
  rig.folder.Write("recvdata.bin", TextOf(SequenceData{}, 2));
  EXPECT_FALSE(ReadBackSequence(rig.commands, rig.prompts, rig.catalogue, 0, *rig.sequence));
  EXPECT_TRUE(*rig.sequence == *rig.before);
  EXPECT_EQ(rig.script.Count(), 0u);
}

}  // namespace
}  // namespace corlune
