// Many large waveforms in one process: the memory of one is enough for all of them.
#include <algorithm>
#include <filesystem>

#include "support/program_rig.h"

#if defined(__SANITIZE_ADDRESS__)
#define CORLUNE_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define CORLUNE_ASAN 1
#endif
#endif
#if defined(CORLUNE_ASAN)
// Of the sanitizer's allocator; its header is not everywhere.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#else
#include <malloc.h>
#endif

namespace corlune::testing {
namespace {

constexpr std::size_t kMebibyte = 1048576;
constexpr std::size_t kPointsAt = 352;  // of an array in a ".wdb"

std::size_t HeapInUse() {
#if defined(CORLUNE_ASAN)
  return __sanitizer_get_current_allocated_bytes();
#else
  const auto info = mallinfo2();
  return info.uordblks + info.hblkhd;  // small blocks and those with pages of their own
#endif
}

// 128 names of one array file.
void WriteWaveforms(ProgramRig& rig) {
  const std::string first = rig.folder.Write("1.wdb", std::string(kPointsAt + kMebibyte, '\1'));
  auto& entries = rig.session->Sequence().Channels.ArbFiles;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    entries[i].FilePath = rig.folder.File(std::to_string(i + 1) + ".wdb");
    if (i > 0) std::filesystem::create_hard_link(first, entries[i].FilePath);
    entries[i].UseFlag = 1;
  }
}

TEST(WaveformMemory, OneHundredAndTwentyEightMebibytesThroughTheTransfer) {
  ProgramRig rig;
  rig.Connect();
  WriteWaveforms(rig);
  int blocks = 0;
  std::size_t bytes = 0;
  std::size_t most = 0;
  const std::size_t before = HeapInUse();
  // An instrument with room for everything: what it keeps is not the program's memory.
  rig.recorder.swallow = [&](std::string_view message) {
    most = std::max(most, HeapInUse());
    if (message.size() < kMebibyte) return message.starts_with(":TRACe:DATA");
    ++blocks;
    bytes += message.size();
    return true;
  };
  EXPECT_EQ(rig.session->Download().TransferUsedArbs(), 0);
  EXPECT_EQ(blocks, 128);
  EXPECT_EQ(bytes, 128 * (kMebibyte + 8));
  EXPECT_LE(most - std::min(most, before), 4 * kMebibyte) << "while a waveform is sent";
  const std::size_t after = HeapInUse();
  EXPECT_LE(after - std::min(after, before), 4 * kMebibyte) << "behind the last one";
  RecordProperty("peak_kib", std::to_string((most - std::min(most, before)) / 1024));
  RecordProperty("end_kib", std::to_string((after - std::min(after, before)) / 1024));
  for (const ArbFileEntry& entry : rig.session->Sequence().Channels.ArbFiles) {
    ASSERT_EQ(entry.Transferred, 1);
    ASSERT_EQ(entry.PointCount, 524288);
  }
}

// The instrument holds one array of that size for each channel; the third does not fit.
TEST(WaveformMemory, TheInstrumentTakesTwoAndSaysSo) {
  ProgramRig rig;
  rig.Connect();
  WriteWaveforms(rig);
  EXPECT_EQ(rig.session->Download().TransferUsedArbs(), 0);
  rig.ExpectPrompts(
      {"critical: The total size of ARB data exceeds the upper bound. Transfer cannot be done."});
  auto& entries = rig.session->Sequence().Channels.ArbFiles;
  EXPECT_EQ(entries[1].Transferred, 1);
  EXPECT_EQ(entries[2].Transferred, 0);
  EXPECT_EQ(entries[2].InInstrument, 0);
  EXPECT_EQ(rig.Instrument().WaveformPoints(), 2u * 524288u);
  EXPECT_EQ(rig.CountSent("1 < :TRACe:DATA 4,\"Arb4\",#71048584"), 0);

  // Sent again, one takes its own place; one is deleted, the third one takes its place.
  WaveformTransfer& waveforms = rig.session->Waveforms();
  rig.Faults("late:20000@:SYST:ERR?");  // such a block may take its time
  EXPECT_EQ(waveforms.TransferOne(entries[1], 2), ArbTransfer::Done);
  EXPECT_EQ(rig.recorder.exchanges.back(), "1 > 0,\"No error\"");
  rig.Faults("");
  EXPECT_FALSE(Failed(waveforms.ClearOne(entries[0], 1)));
  EXPECT_EQ(entries[0].InInstrument, 0);
  EXPECT_EQ(waveforms.TransferOne(entries[2], 3), ArbTransfer::Done);
  ArbFileEntry found;
  EXPECT_TRUE(waveforms.QueryArbInfo(found, 3));
  EXPECT_EQ(found.PointCount, 524288);
  EXPECT_TRUE(waveforms.QueryArbInfo(found, 1));
  EXPECT_EQ(found.InInstrument, 0);
}

}  // namespace
}  // namespace corlune::testing
