#include "compile/waveform_transfer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "support/program_rig.h"
#include "support/temp_folder.h"

namespace corlune {
namespace {

std::string Values(int count, const std::string& value) {
  std::string text;
  for (int i = 0; i < count; ++i) text += value + (i % 2 == 0 ? "," : "\r\n");
  return text;
}

// A waveform editor file of `pairs` point pairs.
std::string PairFile(std::uint32_t pairs) {
  std::string file(1048928 + std::size_t{8} * pairs, '\0');
  file[342] = 1;
  for (int i = 0; i < 4; ++i) file[344 + static_cast<std::size_t>(i)] = static_cast<char>(pairs >> (8 * i));
  return file;
}

TEST(WaveformTransfer, TransferTimeGrowsByWholeMebibytes) {
  // points, ms as array, ms as point pairs
  const int cases[][3] = {
      {0, 1000, 1000}, {174762, 1000, 1000}, {174763, 1000, 25000}, {524288, 25000, 75000}};
  for (const auto& [points, array, pairs] : cases) {
    ArbFileEntry entry;
    entry.PointCount = points;
    entry.ArrayForm = 1;
    EXPECT_EQ(TransferTime(entry), array) << points;
    entry.ArrayForm = 0;
    EXPECT_EQ(TransferTime(entry), pairs) << points;
  }
}

TEST(WaveformTransfer, InformationQuery) {
  struct Case {
    std::string reply;
    int form, points, present;
  };
  const Case cases[] = {
      {"\"Arb1\",1,4096", 1, 4096, 1},
      {"\"\",0,0", 0, 0, 0},
      {"\"Arb1\",1,0", 1, 0, 0},
      {"\"a,b \"\"c\"\"\", 1 , 8192 ", 1, 8192, 1},
  };
  testing::ProgramRig rig;
  rig.Connect();
  WaveformTransfer& transfer = rig.session->Waveforms();
  for (const Case& c : cases) {
    rig.Faults("text:" + c.reply + "@:TRAC:INF? 9");
    ArbFileEntry entry;
    EXPECT_TRUE(transfer.QueryArbInfo(entry, 9)) << c.reply;
    EXPECT_EQ(std::tie(entry.ArrayForm, entry.PointCount, entry.InInstrument),
              std::tie(c.form, c.points, c.present))
        << c.reply;
  }
  for (const std::string reply : {"\"Arb1\",1", "\"Arb1\",1,2,3", "\"Arb1\" 1,4096", "\"Arb1,1,4096",
                                  "Arb1,1,4096", "\"Arb1\",1,-5", ""}) {
    rig.Faults("text:" + reply + "@:TRAC:INF? 9");
    ArbFileEntry entry;
    entry.PointCount = 77;
    const ArbFileEntry before = entry;
    EXPECT_FALSE(transfer.QueryArbInfo(entry, 9)) << reply;
    EXPECT_TRUE(entry == before) << reply;
  }
}

struct ResourceCase {
  const char* what;
  std::vector<int> points;  // of the used waveforms, ARB 1 onward; 0: present, size unknown
  int builtIn;
  bool workArea;
  ArbCheck result;
};

TEST(CheckArbResources, Boundaries) {
  constexpr int kAll = 524288;
  const ResourceCase cases[] = {
      {"all built-in waveforms and the work area", {}, 3, true, ArbCheck::Passed},
      {"a full memory", {kAll}, 0, false, ArbCheck::Passed},
      {"two that fill it", {kAll / 2, kAll / 2}, 0, false, ArbCheck::Passed},
      {"one point too many", {kAll, 1}, 0, false, ArbCheck::MemoryFull},
      {"work area, one point too many", {kAll - 32767}, 0, true, ArbCheck::MemoryFull},
      {"full memory and a sine", {kAll}, 1, false, ArbCheck::TooManyWaveforms},
      {"not quite for two", {kAll - 8191}, 2, false, ArbCheck::TooManyWaveforms},
      {"for two", {kAll - 8192}, 2, false, ArbCheck::Passed},
      {"an unknown size counts as one", {kAll - 4096, 0}, 0, false, ArbCheck::Passed},
      {"two unknown sizes", {kAll - 4096, 0, 0}, 0, false, ArbCheck::TooManyWaveforms},
  };
  for (const ResourceCase& c : cases) {
    for (const std::size_t channel : {0u, 1u}) {
      ArbEntries entries{};
      StepFlow flow;
      for (std::size_t i = 0; i < c.points.size(); ++i) {
        entries[i].InInstrument = 1;
        entries[i].PointCount = c.points[i];
        flow.Channels[channel].Arbs[i] = true;
      }
      flow.Channels[channel].BuiltInWaveforms = c.builtIn;
      flow.Channels[channel].WorkArea = c.workArea;
      EXPECT_EQ(CheckArbResources(flow, 2, entries, "."), c.result) << c.what << ", channel " << channel;
    }
  }
}

TEST(CheckArbResources, LooksIntoTheFilesThatWillBeSent) {
  const corlune::testing::TempFolder folder;
  folder.Write("a.txt", Values(8192, "1"));
  folder.Write("b.wdb", PairFile(100));
  folder.Write("bad.txt", Values(5000, "1"));
  ArbEntries entries{};
  entries[0].FilePath = "a.txt";
  entries[1].FilePath = folder.File("b.wdb");
  entries[1].ArrayForm = 1;
  entries[1].PointCount = 524288;  // what the instrument holds until then
  entries[2].FilePath = "bad.txt";
  entries[3].FilePath = "a.txt";
  entries[3].PointCount = 4096;
  entries[3].Transferred = 1;
  entries[3].Sent = StampOf(folder.File("a.txt"));  // as it is now, though its size is on record as another
  entries[4].FilePath = "a.txt";                    // not used
  StepFlow flow;
  for (std::size_t i = 0; i < 4; ++i) flow.Channels[0].Arbs[i] = true;
  EXPECT_EQ(CheckArbResources(flow, 1, entries, folder.Path()), ArbCheck::Passed);
  const std::pair<int, int> expected[] = {{1, 8192}, {0, 100}, {0, 0}, {0, 4096}, {0, 0}};
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(std::make_pair(int{entries[i].ArrayForm}, int{entries[i].PointCount}), expected[i]) << i;
  }

  entries[3].Sent.Time -= 1;  // changed since
  EXPECT_EQ(CheckArbResources(flow, 1, entries, folder.Path()), ArbCheck::Passed);
  EXPECT_EQ(entries[3].PointCount, 8192);

  flow.Channels[0].Arbs[5] = true;  // neither file nor waveform in the instrument
  EXPECT_EQ(CheckArbResources(flow, 1, entries, folder.Path()), ArbCheck::ArbMissing);
  entries[5].InInstrument = 1;
  EXPECT_EQ(CheckArbResources(flow, 1, entries, folder.Path()), ArbCheck::Passed);
  flow.Channels[0].ArbWithoutNumber = true;
  EXPECT_EQ(CheckArbResources(flow, 1, entries, folder.Path()), ArbCheck::NoArbNumber);
}

TEST(ArbInformationTable, FormAndKiloPoints) {
  ArbEntries entries{};
  const std::pair<int, int> given[] = {{0, 0},    {1, 4096}, {1, 524288}, {0, 100},
                                       {1, 1535}, {1, 1536}, {1, 0}};
  const std::pair<int, int> expected[] = {{1, 0}, {0, 4}, {0, 512}, {1, 0}, {0, 1}, {0, 2}, {0, 0}};
  for (std::size_t i = 0; i < std::size(given); ++i) {
    entries[i].ArrayForm = static_cast<std::int16_t>(given[i].first);
    entries[i].PointCount = given[i].second;
  }
  const auto table = ArbInformationTable(entries);
  for (std::size_t i = 0; i < std::size(given); ++i) {
    EXPECT_EQ(std::make_pair(table[i].PointPairs, table[i].KiloPoints), expected[i]) << i;
  }
  EXPECT_EQ(table[127].PointPairs, 1);
}

}  // namespace
}  // namespace corlune
