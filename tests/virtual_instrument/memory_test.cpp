// Sequence memories, compilation and waveform memory.

#include <functional>
#include <gtest/gtest.h>

#include "tests/virtual_instrument/instrument_rig.h"

namespace corlune::testing {
namespace {

TEST(SequenceMemory, KeepsWhatIsRecorded) {
  InstrumentRig rig;
  const CompiledSequence first = Steps({0.5, 0.25}, 2);
  const CompiledSequence second = Steps({2});
  // The number of the transfer does not matter: it always fills the working memory.
  rig.Tell(":TRAC:SEQ 7,\"First\"," + BlockOf(CompiledBytes(first)));
  rig.Tell(":TRAC:SEQ:REC 3");
  rig.Tell(":TRAC:SEQ 0,\"Second\"," + BlockOf(CompiledBytes(second)));
  EXPECT_EQ(rig.Ask(":TRACe:SEQuence? 3") + "\n", WriteSequenceText(first));
  EXPECT_EQ(rig.Ask(":TRACe:SEQuence? 0") + "\n", WriteSequenceText(second));
  EXPECT_EQ(rig.Ask(":TRACe:SEQuence? 7"), "(none)");
  EXPECT_EQ(rig.Error(), "-256,\"File name not found\"");
  // A refused transfer leaves the memory as it was.
  std::string bytes = CompiledBytes(first);
  bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
  rig.Tell(":TRAC:SEQ 0,\"Third\"," + BlockOf(bytes));
  EXPECT_EQ(rig.Error(), "-230,\"Data corrupt or stale\"");
  EXPECT_EQ(rig.Ask(":TRAC:SEQ? 0") + "\n", WriteSequenceText(second));
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
    EXPECT_EQ(rig.instrument.Condition(), 0) << row.name;
    rig.Pass(1);
    if (row.accepted) {
      EXPECT_EQ(rig.instrument.SerialPoll(), 0x80) << row.name;
      EXPECT_EQ(rig.instrument.Condition(), 2) << row.name;
      EXPECT_EQ(rig.Error(), kNoError) << row.name;
      rig.Tell("*CLS");
    } else {
      EXPECT_EQ(rig.instrument.SerialPoll(), 0x24) << row.name;
      EXPECT_EQ(rig.instrument.Condition(), 0) << row.name;
      EXPECT_EQ(rig.Ask("*ESR?"), "16") << row.name;
      EXPECT_EQ(rig.Error(), "-222,\"Data out of range\"") << row.name;
    }
    EXPECT_EQ(rig.instrument.SerialPoll(), 0) << row.name;
  }
}

TEST(WaveformMemory, StoresDescribesAndGivesBack) {
  InstrumentRig rig;
  const std::string array = WaveformBlock(0, 8192);
  const std::string pairs = WaveformBlock(1, 100);
  rig.Tell(":TRACe:DATA 1,\"Arb1\"," + BlockOf(array));
  rig.Tell(":TRACe:DATA 128,\"a \"\"b\"\"\"," + BlockOf(pairs));
  rig.Tell(":TRACe:DATA 2,\"Arb2\",#0" + array);
  EXPECT_EQ(rig.Error(), kNoError);
  EXPECT_EQ(rig.Ask(":TRAC:INF? 1;INF? 128;INF? 2;INF? 3"),
            "\"Arb1\",1,8192;\"a \"\"b\"\"\",0,100;\"Arb2\",1,8192;\"\",0,0");
  EXPECT_EQ(rig.Ask(":TRAC:DATA? 1"), BlockOf(array));
  EXPECT_EQ(rig.Ask(":TRAC:DATA? 128"), BlockOf(pairs));
  rig.Tell(":TRACe:DELete 1");
  EXPECT_EQ(rig.Ask(":TRAC:INF? 1"), "\"\",0,0");
  EXPECT_EQ(rig.Ask(":TRAC:DATA? 1"), "(none)");
  EXPECT_EQ(rig.instrument.WaveformPoints(), 8192U + 100U);
  rig.Tell(":TRAC:DEL:ALL");
  EXPECT_EQ(rig.instrument.WaveformPoints(), 0U);
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

TEST(WaveformMemory, HoldsSoManyPointsAChannelAndNoMore) {
  for (const int channels : {1, 2}) {
    InstrumentRig rig(channels == 1 ? "QM2210" : "QM2220", channels);
    const std::string large = BlockOf(WaveformBlock(0, kPointsPerChannel));
    for (int number = 1; number <= kWaveformNumbers; ++number) {
      rig.Tell(":TRAC:DATA " + std::to_string(number) + ",\"A\"," + large);
      EXPECT_EQ(rig.Error(), number <= channels ? kNoError : "-225,\"Out of memory\"") << number;
      EXPECT_LT(rig.instrument.InputBytes(), std::size_t{1} << 17);
    }
    EXPECT_EQ(rig.instrument.WaveformPoints(), kPointsPerChannel * static_cast<std::uint32_t>(channels));
    // What is replaced or deleted makes room.
    rig.Tell(":TRAC:DATA 1,\"B\"," + large);
    EXPECT_EQ(rig.Error(), kNoError);
    rig.Tell(":TRAC:DEL 1;:TRAC:DATA 128,\"C\"," + large);
    EXPECT_EQ(rig.Error(), kNoError);
  }
}

}  // namespace
}  // namespace corlune::testing
