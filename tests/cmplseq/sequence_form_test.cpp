// The three forms of a sequence: text, values, binary.
#include <cmath>
#include <gtest/gtest.h>

#include "standins/cmplseq/compiled_sequence.h"

namespace corlune {
namespace {

// The sequence that an editor without steps would send.
CompiledSequence EmptySequence(int channels) {
  CompiledSequence sequence;
  sequence.Model = channels == 1 ? "QM2210" : "QM2220";
  sequence.Channels = channels;
  return sequence;
}

TEST(SequenceText, RefusesEveryDeviation) {
  const struct {
    const char* from;
    const char* to;
  } rows[] = {
      // clang-format off
      {"[DATA]\r\n", "[DATA]\n"}, {"VERSION=\"1.00\"", "VERSION=\"1.01\""}, {"\"QM2220\"", "QM2220"},
      {"NCHAN=2", "NCHAN=3"}, {"NCHAN=2", "NCHAN=1"}, {"SEQ=1,", "SEQ=257,"}, {"SYNC", "sync"}, {"POS\r\n", "POS,0\r\n"},
      {"STEP#7=0,CONT,0,0,0,0,0,0,0,0,INF,0,0,0\r\n", ""}, {"STEP#7=", "STEP#07="},
      {"STEP#3=0,CONT,0,", "STEP#3=0,CONT,"}, {"STEP#3=0,", "STEP#3=-1,"}, {"STEP#3=0,", "STEP#3= 0,"},
      {"STEP#3=0,", "STEP#3=1E400,"}, {"STEP#3=0,CONT,0,", "STEP#3=0,CONT,0.5,"},
      {"STEP#3=0,CONT,0,", "STEP#3=0,CONT,32768,"},
      {"STEP#3=0,CONT,0,0,0,0,0,0,0,0,", "STEP#3=0,CONT,0,0,0,0,0,0,0,257,"},
      {"CHAN#3#2=SIN", "CHAN#3#2="}, {"CHAN#3#2=SIN,0,NORM,FS,0,0,CONS", "CHAN#3#2=SIN,0,NORM,FS,0,0,"},
      // clang-format on
  };
  const std::string good = WriteSequenceText(EmptySequence(2));
  for (const auto& row : rows) {
    SCOPED_TRACE(row.to);
    std::string text = good;
    const std::size_t at = text.find(row.from);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, std::string(row.from).size(), row.to);
    CompiledSequence untouched = EmptySequence(1);
    EXPECT_FALSE(ParseSequenceText(text, untouched));
    EXPECT_TRUE(untouched == EmptySequence(1));
  }
  CompiledSequence untouched;
  EXPECT_FALSE(ParseSequenceText(good + "\r\n", untouched)) << "text behind the last line";
  EXPECT_FALSE(ParseSequenceText(good.substr(0, good.size() - 2), untouched)) << "last line end missing";
  EXPECT_FALSE(ParseSequenceText("", untouched));
}

TEST(CompiledForm, RefusesDamageAtEveryByte) {
  CompiledSequence sequence = EmptySequence(2);
  sequence.Steps[3].StepTime = 1.5;
  sequence.Cells[1][4].Frequency = {1000, SeqChange::Sweep};
  const std::vector<std::uint8_t> good = EncodeCompiledSequence(sequence);
  ASSERT_LT(good.size(), 600U) << "equal steps are stored once";
  EXPECT_TRUE(DecodeCompiledSequence(good) == sequence);
  for (std::size_t i = 0; i < good.size(); ++i) {
    for (const int flip : {0x01, 0x80, 0xFF}) {
      std::vector<std::uint8_t> bad = good;
      bad[i] = static_cast<std::uint8_t>(bad[i] ^ flip);
      EXPECT_FALSE(DecodeCompiledSequence(bad)) << "byte " << i;
    }
    EXPECT_FALSE(DecodeCompiledSequence(std::span(good).first(i))) << "cut to " << i;
  }
  std::vector<std::uint8_t> longer = good;
  longer.push_back(0);
  EXPECT_FALSE(DecodeCompiledSequence(longer));
}

// A matching checksum does not excuse contents that no encoder writes.
TEST(CompiledForm, RefusesFieldsOutOfRangeBehindAGoodChecksum) {
  struct Row {
    const char* name;
    void (*spoil)(CompiledSequence&);
  };
  const Row rows[] = {
      {"waveform", [](CompiledSequence& s) { s.Cells[0][0].Waveform = static_cast<SeqWaveform>(5); }},
      {"change", [](CompiledSequence& s) { s.Cells[0][9].Duty.Change = static_cast<SeqChange>(3); }},
      {"trigger", [](CompiledSequence& s) { s.Trigger = static_cast<SeqTrigger>(3); }},
      {"start step", [](CompiledSequence& s) { s.StartStep = 0; }},
      {"jump target", [](CompiledSequence& s) { s.Steps[0].JumpTo = 257; }},
      {"step time", [](CompiledSequence& s) { s.Steps[0].StepTime = -1; }},
      {"infinite value", [](CompiledSequence& s) { s.Cells[0][0].Offset.Value = HUGE_VAL; }},
  };
  for (const Row& row : rows) {
    CompiledSequence sequence = EmptySequence(1);
    row.spoil(sequence);
    EXPECT_FALSE(DecodeCompiledSequence(EncodeCompiledSequence(sequence))) << row.name;
  }
}

}  // namespace
}  // namespace corlune
