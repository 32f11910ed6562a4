#include "compile/read_back.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace corlune {
namespace {

struct LineCase {
  const char* line;
  std::function<void(SequenceData&)> edit;  // null: the line is skipped whole
};

TEST(ReadSequenceText, Lines) {
  // clang-format off
  const LineCase cases[] = {
      {"SEQ=12, SYNC ,on ,STAR, NEGative", [](SequenceData& s) { s.Common = {12, 1, 1, 0, 0}; }},
      {"SEQ=12,SSYN,0, STAR,other", [](SequenceData& s) { s.Common = {12, 1, 0, 1, 1}; }},
      {"SEQ=12,SYNC,0,STAR", nullptr},
      {"SEQ=x,SYNC,0,STAR,POS", nullptr},
      {"SEQ=", nullptr},
      {"STEP#3=1.5, STOP ,ON,7,on ,8,OFF,9,2,10,ON,11,1, -2.5,more", [](SequenceData& s) {
       StepRow& row = s.Steps[3]; row.EventBranchOn = 0; row.StepTime = 1.5;
       row.StepTerm = row.AutoHold = row.StateBranchOn = row.JumpCountOn = row.StopPhaseOn = 1;
       row.StepCode = 7; row.StateBranchStep = 8; row.EventBranchStep = 9; row.JumpOn = 2; row.JumpTo = 10;
       row.JumpCount = 11; row.StopPhase = -2.5; }},
      {"STEP#3=1,CONT,0,0,0,1,0,1,0,1,INF,1,0", nullptr},  // 13 fields
      {"STEP#3=1,CONT,0,x,0,1,0,1,0,1,INF,1,0,0", nullptr},  // no number
      {"STEP#3=1,CONT,0,0,0,1,0,1,0,40000,INF,1,0,0", nullptr},  // more than 16 bits
      {"STEP#256=1,CONT,0,0,0,1,0,1,0,1,INF,1,0,0", nullptr},
      {"STEP#03=1,CONT,0,0,0,1,0,1,0,1,INF,1,0,0", nullptr},
      {"CHAN#2#2= user ,5, INV , MFS ,ON,1000, KEEP ,2,SWE,3,CONS,4,x,5,keep", [](SequenceData& s) {
       s.Cell(1, 2, kSlotWaveform).Value = 4; s.Cell(1, 2, kSlotArbNumber).Value = 5;
       s.Cell(1, 2, kSlotPolarityRange).Value = 5; s.Cell(1, 2, kSlotExternal).Value = 1;
       s.Cell(1, 2, kSlotFrequency).Value = 1000; s.Cell(1, 2, kSlotFrequency).ChangeMode = kModeKeep;
       s.Cell(1, 2, kSlotAmplitude).Value = 2; s.Cell(1, 2, kSlotAmplitude).ChangeMode = kModeSweep;
       s.Cell(1, 2, kSlotOffset).Value = 3; s.Cell(1, 2, kSlotPhase).Value = 4;
       s.Cell(1, 2, kSlotDuty).Value = 5; }},
      {"CHAN#2#1=,0,NORM,FS,0.5,0,CONS,0,CONS,0,CONS,0,CONS,0,CONS", [](SequenceData& s) {
       s.Cell(0, 2, kSlotExternal).Value = 0.5; }},
      {"CHAN#2#1=SIN,0,NORM,FS,0,0,CONS,0,CONS,0,CONS,0,CONS,1", nullptr},
      {"CHAN#2#1=SIN,0,NORM,FS,0,1 k,CONS,0,CONS,0,CONS,0,CONS,0,CONS", nullptr},
      {"CHAN#2#3=USER,1,INV,FS,0,0,CONS,0,CONS,0,CONS,0,CONS,0,CONS", nullptr},
      {"CHAN#2=USER,1,INV,FS,0,0,CONS,0,CONS,0,CONS,0,CONS,0,CONS", nullptr},
      {"OTHER=1", nullptr},
  };
  // clang-format on
  for (const LineCase& c : cases) {
    auto read = std::make_unique<SequenceData>();
    read->Common = {1, 1, 0, 1, 1};
    read->Steps[3].JumpTo = 77;
    read->Steps[3].EventBranchOn = 1;
    // What the text does not carry has to stay.
    read->StepCount = 17;
    read->Steps[3].BranchStep = {1, 2, 3, 4, 5};
    for (ParamCell& cell : read->Cells) cell.StartValue = 9;
    auto expected = std::make_unique<SequenceData>(*read);
    if (c.edit) c.edit(*expected);
    const std::string text = "[FILE]\r\nSEQ=99,SYNC,0,STAR,POS\r\n[DATA]\r\n" + std::string(c.line) + "\r\n";
    const ReceivedSteps received = ReadSequenceText(text, 2, ModelDefinition{}, *read);
    EXPECT_TRUE(*read == *expected) << c.line;
    const std::string kind = std::string(c.line).substr(0, 4);
    const bool isStep = kind == "STEP" || kind == "CHAN";
    EXPECT_EQ(received.any(), c.edit != nullptr && isStep) << c.line;
  }
}

TEST(ReadSequenceText, TheFirstOfTwoLinesCounts) {
  auto read = std::make_unique<SequenceData>();
  const std::string line = ",CONT,0,0,0,1,0,1,0,1,INF,1,0,0\r\n";
  const std::string beyond =
      "CHAN#2#2=USER,5,INV,FS,0,0,CONS,0,CONS,0,CONS,0,CONS,0,CONS\r\n";  // of one channel
  const ReceivedSteps received =
      ReadSequenceText("[DATA]\r\nSTEP#0=2" + line + "STEP#0=3" + line + "STEP#1=x" + line + beyond, 1,
                       ModelDefinition{}, *read);
  EXPECT_EQ(read->Steps[0].StepTime, 2);
  EXPECT_EQ(read->Steps[1].StepTime, 0);
  EXPECT_EQ(received.to_ullong(), 1u);
}

}  // namespace
}  // namespace corlune
