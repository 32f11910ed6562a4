// What the compiler refuses, and what a refusal leaves behind.
#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "core/files.h"
#include "standins/cmplseq/check_sequence.h"
#include "standins/cmplseq/compile_file.h"
#include "support/temp_folder.h"

namespace corlune {
namespace {
using testing::TempFolder;

using ArbTable = std::array<ArbInformation, 128>;

ArbTable NoArbs() {
  ArbTable arbs{};
  arbs.fill({1, 0});
  return arbs;
}

// One step of a 1 kHz sine, 1 Vp-p, that stops; step 2 is its continuation for the tests that want one.
CompiledSequence OneStep() {
  CompiledSequence sequence;
  sequence.Model = "QM2220";
  sequence.Channels = 2;
  for (const std::size_t slot : {0U, 1U}) {
    sequence.Steps[slot].StepTime = 1;
    sequence.Steps[slot].Stop = true;
    for (auto& cells : sequence.Cells) {
      cells[slot].Frequency.Value = 1000;
      cells[slot].Amplitude.Value = 1;
      cells[slot].Duty.Value = 50;
    }
  }
  return sequence;
}

int CodeOf(const CompiledSequence& sequence, const ArbTable& arbs = NoArbs()) {
  CompileErrorRecord record{9, 9, 9, 9, 9};
  const auto refusal = CheckSequence(sequence, arbs, record);
  EXPECT_EQ(record.Code, static_cast<std::int32_t>(refusal));
  return record.Code;
}

TEST(CompilerChecks, ValuesAtTheirLimits) {
  constexpr SeqWaveform sine = SeqWaveform::Sine;
  constexpr SeqWaveform square = SeqWaveform::Square;
  constexpr SeqWaveform noise = SeqWaveform::Noise;
  constexpr SeqWaveform dc = SeqWaveform::Dc;
  constexpr SeqWaveform user = SeqWaveform::User;
  struct Row {
    SeqWaveform waveform;
    double frequency, amplitude, offset, duty;
    int code;
  };
  // clang-format off
  const Row rows[] = {
      {sine, 20e6, 1, 0, 50, 0}, {sine, 20000000.000001, 1, 0, 50, 40}, {sine, 1e-6, 1, 0, 50, 0},
      {sine, 0, 1, 0, 50, 40}, {square, 10.1e6, 1, 0, 50, 40}, {user, 10.1e6, 1, 0, 50, 40},
      {dc, 0, 30, 0, 0, 0}, {sine, 1, 20, 0, 50, 0}, {sine, 1, 20.001, 0, 50, 41},
      {sine, 1, 0.1, 9.95, 50, 0}, {sine, 1, 0.1, 9.951, 50, 41}, {sine, 1, 0.1, -9.951, 50, 41},
      {noise, 1, 10, 5.1, 50, 41}, {sine, 1, -1, 0, 50, 41}, {dc, 1, 0, -10.001, 50, 41},
      {square, 1, 1, 0, 0.1, 0}, {square, 1, 1, 0, 0.09, 42}, {square, 1, 1, 0, 99.9, 0},
      {square, 1, 1, 0, 99.91, 42}, {square, 10e6, 1, 0, 20, 0}, {square, 10e6, 1, 0, 19.9, 42},
      {square, 10e6, 1, 0, 80, 0}, {square, 10e6, 1, 0, 80.1, 42}, {sine, 10e6, 1, 0, 0, 0},
      {square, 20e6, 30, 0, 0, 40},
  };
  // clang-format on
  for (const Row& row : rows) {
    CompiledSequence sequence = OneStep();
    SeqCell& cell = sequence.Cells[1][0];
    cell.Waveform = row.waveform;
    cell.ArbNumber = 1;
    cell.Frequency.Value = row.frequency;
    cell.Amplitude.Value = row.amplitude;
    cell.Offset.Value = row.offset;
    cell.Duty.Value = row.duty;
    EXPECT_EQ(CodeOf(sequence), row.code)
        << static_cast<int>(row.waveform) << " " << row.frequency << " Hz, " << row.amplitude << " Vp-p, "
        << row.offset << " V, " << row.duty << " %";
  }
}

TEST(CompilerChecks, ReportWhereTheyStopped) {
  CompiledSequence sequence = OneStep();
  sequence.Steps[0].Stop = false;
  sequence.Cells[1][1].Waveform = SeqWaveform::Square;
  sequence.Cells[1][1].Duty.Value = 0;
  CompileErrorRecord record{};
  CheckSequence(sequence, NoArbs(), record);
  EXPECT_EQ(std::tie(record.Code, record.Channel, record.PositionB, record.PositionA, record.PositionC),
            std::make_tuple(42, 1, 2, 14, 14));

  sequence.Cells[0][1].Frequency.Value = 0;
  sequence.Cells[1][0].Offset.Value = -11;
  CheckSequence(sequence, NoArbs(), record);
  EXPECT_EQ(std::tie(record.Code, record.Channel, record.PositionB, record.PositionC),
            std::make_tuple(41, 1, 1, 10))
      << "the earlier step comes first";
}

// A fault in step 2 counts when, and only when, the flow gets there.
TEST(CompilerChecks, OnlyReachableStepsCount) {
  struct Row {
    const char* name;
    void (*lead)(SeqStep& first, CompiledSequence& sequence);
    int code;
  };
  // clang-format off
  const Row rows[] = {
      {"step 1 stops", [](SeqStep&, CompiledSequence&) {}, 0},
      {"step 1 continues", [](SeqStep& s, CompiledSequence&) { s.Stop = false; }, 40},
      {"start at step 2", [](SeqStep&, CompiledSequence& all) { all.StartStep = 2; }, 40},
      {"jump", [](SeqStep& s, CompiledSequence&) { s.JumpOn = 1; s.JumpTo = 2; }, 40},
      {"jump to no step", [](SeqStep& s, CompiledSequence&) { s.JumpOn = 1; s.Stop = false; }, 40},
      {"endless jump to itself never goes on",
       [](SeqStep& s, CompiledSequence&) { s.JumpOn = s.JumpTo = 1; s.Stop = false; }, 0},
      {"counted jump goes on",
       [](SeqStep& s, CompiledSequence&) { s.JumpOn = s.JumpTo = 1; s.JumpCounted = true; s.Stop = false; }, 40},
      {"event branch", [](SeqStep& s, CompiledSequence&) { s.EventBranchOn = 1; s.EventBranchStep = 2; }, 40},
      {"state branch", [](SeqStep& s, CompiledSequence&) { s.StateBranchOn = 1; s.StateBranchStep = 2; }, 40},
      {"one channel only", [](SeqStep& s, CompiledSequence& all) { s.Stop = false; all.Channels = 1; }, 0},
  };
  // clang-format on
  for (const Row& row : rows) {
    CompiledSequence sequence = OneStep();
    sequence.Cells[1][1].Frequency.Value = 0;
    row.lead(sequence.Steps[0], sequence);
    EXPECT_EQ(CodeOf(sequence), row.code) << row.name;
  }
}

TEST(CompilerChecks, ValuesFollowTheFlow) {
  struct Row {
    const char* name;
    SeqValue first, second;  // amplitude of steps 1 and 2, beside 5 V offset in step 2
    int code;
  };
  const Row rows[] = {
      {"kept value fits", {10}, {99, SeqChange::Keep}, 0},
      {"kept value does not fit", {10.1}, {0, SeqChange::Keep}, 41},
      {"sweep starts too high", {10.1}, {0, SeqChange::Sweep}, 41},
      {"sweep ends too high", {0}, {10.1, SeqChange::Sweep}, 41},
      {"a swept value is kept where it ended", {20, SeqChange::Sweep}, {0, SeqChange::Keep}, 41},
  };
  for (const Row& row : rows) {
    CompiledSequence sequence = OneStep();
    sequence.Steps[0].Stop = false;
    sequence.Cells[0][0].Amplitude = row.first;
    sequence.Cells[0][1].Amplitude = row.second;
    sequence.Cells[0][1].Offset.Value = 5;
    EXPECT_EQ(CodeOf(sequence), row.code) << row.name;
  }

  CompiledSequence sequence = OneStep();
  sequence.Cells[0][0].Frequency = {1000, SeqChange::Keep};
  EXPECT_EQ(CodeOf(sequence), 40) << "nothing plays before the first step";
  // Entered from step 3 with a value that does not fit, though the step in front of it fits.
  sequence = OneStep();
  sequence.Steps[2] = sequence.Steps[0];
  sequence.Cells[0][2] = sequence.Cells[0][0];
  sequence.Cells[1][2] = sequence.Cells[1][0];
  sequence.Cells[0][2].Amplitude.Value = 16;
  sequence.Cells[0][1].Amplitude = {0, SeqChange::Keep};
  sequence.Cells[0][1].Offset.Value = 5;
  sequence.Steps[0].Stop = false;
  EXPECT_EQ(CodeOf(sequence), 0);
  sequence.Steps[1].EventBranchOn = 1;
  sequence.Steps[1].EventBranchStep = 3;
  sequence.Steps[2].JumpOn = 1;
  sequence.Steps[2].JumpTo = 2;
  EXPECT_EQ(CodeOf(sequence), 41);
}

TEST(CompilerChecks, WaveformMemory) {
  struct Row {
    const char* name;
    double first, second;  // ARB numbers of channel 1's steps 1 and 2; 0: a sine
    ArbInformation arb1, arb2;
    int dutySweep;  // channel in whose step 2
    int code;
  };
  const ArbInformation pairs{1, 0};
  const Row rows[] = {
      {"missing number", 129, 1, {0, 4}, pairs, 0, 4100},
      {"array without points", 1, 1, {0, 0}, pairs, 0, 4099},
      {"unknown form", 1, 2, {0, 4}, {2, 4}, 0, 4099},
      {"unused entries do not count", 1, 1, {0, 512}, {0, 0}, 0, 0},
      {"full memory", 1, 1, {0, 512}, {0, 512}, 0, 0},
      {"two that do not fit", 1, 2, {0, 512}, {0, 4}, 0, 4101},
      {"no room for a sine", 1, 0, {0, 512}, pairs, 0, 4101},
      {"room for a sine", 1, 0, {0, 508}, pairs, 0, 0},
      {"point pairs have no fixed size", 1, 128, {0, 512}, pairs, 0, 0},
      {"the other channel's work area", 1, 1, {0, 512}, pairs, 2, 0},
      {"no room for the work area", 1, 0, {0, 508}, pairs, 1, 4101},
  };
  for (const Row& row : rows) {
    CompiledSequence sequence = OneStep();
    sequence.Steps[0].Stop = false;
    const std::array<double, 2> numbers{row.first, row.second};
    for (const std::size_t slot : {0U, 1U}) {
      if (numbers[slot] == 0) continue;
      sequence.Cells[0][slot].Waveform = SeqWaveform::User;
      sequence.Cells[0][slot].ArbNumber = numbers[slot];
    }
    if (row.dutySweep != 0) {
      SeqCell& cell = sequence.Cells[static_cast<std::size_t>(row.dutySweep) - 1][1];
      cell.Waveform = SeqWaveform::Square;
      cell.Duty.Change = SeqChange::Sweep;
    }
    ArbTable arbs = NoArbs();
    arbs[0] = row.arb1;
    arbs[1] = row.arb2;
    EXPECT_EQ(CodeOf(sequence, arbs), row.code) << row.name;
  }
}

// Ten layers of three steps, each of which replaces one value and keeps the others: 3^10 different outcomes.
TEST(CompilerChecks, GiveUpOnTooManyOutcomes) {
  for (const int layers : {7, 10}) {
    CompiledSequence sequence = OneStep();
    const SeqStep step = sequence.Steps[0];
    const SeqCell cell = sequence.Cells[0][0];
    const auto fan = [&](SeqStep& from, int target) {
      from.JumpOn = from.EventBranchOn = from.StateBranchOn = 1;
      from.JumpTo = static_cast<std::int16_t>(target + 1);
      from.EventBranchStep = static_cast<std::int16_t>(target + 2);
      from.StateBranchStep = static_cast<std::int16_t>(target + 3);
    };
    fan(sequence.Steps[0], 1);
    for (int layer = 0; layer < layers; ++layer) {
      for (int choice = 0; choice < 3; ++choice) {
        const auto slot = static_cast<std::size_t>(1 + 3 * layer + choice);
        sequence.Steps[slot] = step;
        if (layer + 1 < layers) fan(sequence.Steps[slot], 4 + 3 * layer);
        for (int channel = 0; channel < 2; ++channel) {
          SeqCell& kept = sequence.Cells[static_cast<std::size_t>(channel)][slot];
          kept = cell;
          int index = 5 * channel;
          for (SeqValue* value : {&kept.Frequency, &kept.Amplitude, &kept.Offset, &kept.Phase, &kept.Duty}) {
            if (index++ == layer) {
              value->Value = 1 + choice;
            } else {
              value->Change = SeqChange::Keep;
            }
          }
        }
      }
    }
    EXPECT_EQ(CodeOf(sequence), layers == 10 ? 4102 : 0);
  }
}

TEST(CompileFile, ReplacesTheTextOrLeavesIt) {
  const TempFolder folder;
  const std::string path = folder.File("sendata.bin");
  struct Row {
    std::string text;
    CompileResult result;
    int code;
    int step = 0;  // position B
    int channel = 0;
  };
  CompiledSequence tooLoud = OneStep();
  tooLoud.Cells[0][0].Amplitude.Value = 21;
  const auto without = [](const std::string& line) {
    CompiledSequence sequence = OneStep();
    sequence.Channels = 2;
    std::string text = WriteSequenceText(sequence);
    return text.erase(text.find(line), line.size());
  };
  const Row rows[] = {
      {WriteSequenceText(OneStep()), CompileResult::Done, 0},
      {WriteSequenceText(tooLoud), CompileResult::Refused, 41, 1},
      {"[FILE]\r\n", CompileResult::Malformed, 1},
      {without("CHAN#2#2="), CompileResult::Malformed, 1, 3, 1},
      {WriteSequenceText(OneStep()) + "\r\n", CompileResult::Malformed, 1},
  };
  for (const Row& row : rows) {
    ASSERT_TRUE(ReplaceFile(path, row.text));
    CompileErrorRecord record{1, 1, 1, 1, 1};
    EXPECT_EQ(CompileSequenceFile(path, NoArbs(), record), row.result);
    EXPECT_EQ(record.Code, row.code);
    EXPECT_EQ(record.PositionB, row.step);
    EXPECT_EQ(record.Channel, row.channel);
    const std::string after = ReadWholeFile(path).value();
    if (row.result != CompileResult::Done) {
      EXPECT_EQ(after, row.text);
      continue;
    }
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(after.data());
    const auto compiled = DecodeCompiledSequence({bytes, after.size()});
    ASSERT_TRUE(compiled);
    EXPECT_EQ(WriteSequenceText(*compiled), row.text);
  }
  CompileErrorRecord record{1, 1, 1, 1, 1};
  EXPECT_EQ(CompileSequenceFile(folder.File("absent.bin"), NoArbs(), record), CompileResult::FileError);
  EXPECT_EQ(record.Code, 2);
}

}  // namespace
}  // namespace corlune
