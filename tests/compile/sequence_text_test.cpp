#include "compile/sequence_text.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace corlune {
namespace {

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t at = 0;
  for (std::size_t end = 0; (end = text.find("\r\n", at)) != std::string::npos; at = end + 2) {
    lines.push_back(text.substr(at, end - at));
  }
  EXPECT_EQ(at, text.size()) << "the text does not end with CR LF";
  return lines;
}

TEST(SequenceText, WholeTextOfATwoChannelSequence) {
  auto sequence = std::make_unique<SequenceData>();
  sequence->StepCount = 1;
  sequence->Common = {7, 1, 0, 1, 1};
  StepRow& row = sequence->Steps[255];
  row.StepTime = 0.00001;
  row.StepTerm = 2;
  row.StepCode = 255;
  row.AutoHold = row.StateBranchOn = row.EventBranchOn = row.JumpOn = row.JumpCountOn = row.StopPhaseOn = 1;
  row.StateBranchStep = 256;
  row.EventBranchStep = 3;
  row.JumpTo = -1;
  row.JumpCount = 32767;
  row.StopPhase = -2.25;
  const auto set = [&](int param, double value, std::int16_t mode = 0) {
    sequence->Cell(1, 255, param).Value = value;
    sequence->Cell(1, 255, param).ChangeMode = mode;
  };
  set(kSlotWaveform, kWaveUser);
  set(kSlotArbNumber, 128, kModeSweep);  // this mode is not written
  set(kSlotFrequency, 1.5e15, kModeSweep);
  set(kSlotAmplitude, 0.1 + 0.2, kModeKeep);
  set(kSlotPolarityRange, 5);
  set(kSlotOffset, -1e-5, kModeConst);
  set(kSlotPhase, -0.0, kModeSweep);
  set(kSlotDuty, 12345.678901234567, kModeKeep);
  set(kSlotExternal, 1);

  std::string text;
  AppendSequenceText(text, *sequence, ModelDefinition{}, "QM2220", 2);
  const std::vector<std::string> lines = Lines(text);
  ASSERT_EQ(lines.size(), 8u + 256 + 512);
  const std::vector<std::string> head(lines.begin(), lines.begin() + 8);
  EXPECT_EQ(head,
            (std::vector<std::string>{"[FILE]", "VERSION=\"1.00\"", "[SYSTEM]", "MODEL=\"QM2220\"", "NCHAN=2",
                                      "VERSION=\"1.00\"", "[DATA]", "SEQ=7,SSYN,0,SBR,NEG"}));
  const std::string emptyStep = "=0,CONT,0,0,0,0,0,0,0,0,INF,0,0,0";
  const std::string emptyCell = "=SIN,0,NORM,FS,0,0,CONS,0,CONS,0,CONS,0,CONS,0,CONS";
  for (std::size_t slot = 0; slot < 256; ++slot) {
    const std::string number = std::to_string(slot);
    const bool last = slot == 255;
    EXPECT_EQ(lines[8 + slot],
              "STEP#" + number + (last ? "=1E-05,STOP,1,255,1,256,1,3,1,-1,ON,32767,1,-2.25" : emptyStep));
    EXPECT_EQ(lines[8 + 256 + slot], "CHAN#" + number + "#1" + emptyCell);
    EXPECT_EQ(lines[8 + 512 + slot],
              "CHAN#" + number + "#2" +
                  (last ? "=USER,128,INV,MFS,1,1.5E+15,SWE,0.3,KEEP,-1E-05,CONS,0,SWE,12345.6789012346,KEEP"
                        : emptyCell));
  }
}

}  // namespace
}  // namespace corlune
