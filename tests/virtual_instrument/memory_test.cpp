// Sequence memories, compilation and waveform memory.

#include <functional>
#include <gtest/gtest.h>

#include "tests/virtual_instrument/instrument_rig.h"

namespace corlune::testing {
namespace {

TEST(SequenceMemory, KeepsItsSequenceWhenATransferIsRefused) {
  InstrumentRig rig;
  std::string bytes = CompiledBytes(Steps({2}));
  rig.Tell(":TRAC:SEQ 7,\"First\"," + BlockOf(bytes));  // always fills the working memory
  const std::string held = rig.Ask(":TRACe:SEQuence? 0");
  bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
  rig.Tell(":TRAC:SEQ 0,\"Second\"," + BlockOf(bytes));
  EXPECT_EQ(rig.Error(), "-230,\"Data corrupt or stale\"");
  EXPECT_EQ(rig.Ask(":TRAC:SEQ? 0"), held);
  EXPECT_EQ(held + "\n", WriteSequenceText(Steps({2})));
}

TEST(Compile, TakesOverWhatTheInstrumentCanRun) {
  const struct {
    const char* name;
    std::function<void(CompiledSequence&)> change;
    std::string model;
    bool accepted;
    // clang-format off
  } rows[] = {
      {"two channels for one", [](CompiledSequence&) {}, "QM2210", false},
      {"waveform that is stored", [](CompiledSequence& s) { s.Cells[1][1].Waveform = SeqWaveform::User;
       s.Cells[1][1].ArbNumber = 9; }, "QM2220", true},
      {"waveform that is not", [](CompiledSequence& s) { s.Cells[1][1].Waveform = SeqWaveform::User;
       s.Cells[1][1].ArbNumber = 10; }, "QM2220", false},
      {"the same in a step that is never reached", [](CompiledSequence& s) { s.Cells[1][2] = s.Cells[1][1];
       s.Cells[1][2].Waveform = SeqWaveform::User; }, "QM2220", true},
      {"start in a slot that nobody filled", [](CompiledSequence& s) { s.StartStep = 5; }, "QM2220", false},
  };
  // clang-format on
  for (const auto& row : rows) {
    InstrumentRig rig(row.model, row.model == "QM2210" ? 1 : 2);
    CompiledSequence sequence = Steps({0.1, 0.1}, 2);
    row.change(sequence);
    rig.Tell(":TRAC:DATA 9,\"A\"," + BlockOf(WaveformBlock(0, 4096)));
    rig.Tell("*ESE 60;:SOUR1:SEQ:STAT 1;:TRAC:SEQ 0,\"A\"," + BlockOf(CompiledBytes(sequence)));
    rig.Tell("*CLS;:TRIG:COMP");
    rig.Pass(kCompileMs - 1);
    EXPECT_EQ(rig.instrument.SerialPoll(), 0) << row.name;
    rig.Pass(1);
    EXPECT_EQ(rig.instrument.SerialPoll(), row.accepted ? 0x80 : 0x24) << row.name;
    EXPECT_EQ(rig.instrument.Condition(), row.accepted ? 2 : 0) << row.name;
    EXPECT_EQ(rig.Error(), row.accepted ? kNoError : "-222,\"Data out of range\"") << row.name;
  }
}

TEST(WaveformMemory, StoresDescribesAndGivesBack) {
  InstrumentRig rig;
  const std::string pairs = WaveformBlock(1, 100);
  rig.Tell(":TRACe:DATA 128,\"a \"\"b\"\"\"," + BlockOf(pairs));
  rig.Tell(":TRACe:DATA 2,\"Arb2\",#0" + WaveformBlock(0, 8192));
  EXPECT_EQ(rig.Ask(":TRAC:INF? 128;INF? 2;INF? 3"), "\"a \"\"b\"\"\",0,100;\"Arb2\",1,8192;\"\",0,0");
  EXPECT_EQ(rig.Ask(":TRAC:DATA? 128"), BlockOf(pairs));
  rig.Tell(":TRACe:DELete 2");
  EXPECT_EQ(rig.instrument.WaveformPoints(), 100U);
  rig.Tell(":TRAC:DEL:ALL");
  EXPECT_EQ(rig.Ask(":TRAC:DATA? 128"), "(none)");
}

// The last byte of a block belongs to it, also when it looks like the end of a message or of a unit.
TEST(WaveformMemory, TakesAnyLastByteOfABlock) {
  InstrumentRig rig;
  const std::string header = ":TRAC:DATA 1,\"A\",";
  for (const char last : {'\n', '\r', ' ', ';', ',', '"', '#'}) {
    std::string block = WaveformBlock(0, 4096);
    block.back() = last;
    for (const char* behind : {"", "\n", ";*CLS"}) {
      rig.Tell(":TRAC:DEL 1");
      rig.Tell(header + BlockOf(block) + behind);
      EXPECT_EQ(rig.Ask(":TRAC:DATA? 1"), BlockOf(block)) << int{last} << " before " << behind;
    }
    // As the program sends it: the header first, END with the last byte of the data.
    rig.Tell(":TRAC:DEL 1");
    rig.instrument.Write(header + BlockOf(block).substr(0, 6), false);
    rig.Tell(block);
    EXPECT_EQ(rig.Ask(":TRAC:DATA? 1"), BlockOf(block)) << int{last};
  }
  EXPECT_EQ(rig.Error(), kNoError);
}

TEST(WaveformMemory, RefusesMalformedBlocks) {
  const std::string good = WaveformBlock(0, 4096);
  const struct {
    const char* name;
    std::string block;
    const char* error;
  } rows[] = {
      {"header only", good.substr(0, 8), "-161,\"Invalid block data\""},
      {"a byte short", good.substr(0, good.size() - 1), "-161,\"Invalid block data\""},
      {"a byte too many", good + "x", "-161,\"Invalid block data\""},
      {"no power of two", WaveformBlock(0, 6144), "-222,\"Data out of range\""},
      {"unknown form", WaveformBlock(2, 4096), "-222,\"Data out of range\""},
  };
  for (const auto& row : rows) {
    InstrumentRig rig;
    rig.Tell(":TRAC:DATA 1,\"Old\"," + BlockOf(good));
    rig.Tell(":TRAC:DATA 1,\"New\"," + BlockOf(row.block));
    EXPECT_EQ(rig.Error(), row.error) << row.name;
    EXPECT_EQ(rig.Ask(":TRAC:INF? 1"), "\"Old\",1,4096") << row.name;
  }
}

}  // namespace
}  // namespace corlune::testing
