// Waveform files: the transfer block byte for byte, and every way in which a file is refused.
#include "sequence/waveform_file.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>

#include "support/temp_folder.h"

namespace corlune {
namespace {

using testing::TempFolder;
using Problem = WaveformProblem;

constexpr std::size_t kEditorArrayEnd = 352 + 1048576;

std::string Values(int count, const std::string& separator = ",", const std::string& value = "0") {
  std::string text = value;
  for (int i = 1; i < count; ++i) text += separator + value;
  return text;
}

// A waveform editor file of `size` bytes with its form word and pair count.
std::string EditorFile(int form, std::uint32_t pairs, std::size_t size) {
  std::string bytes(std::max<std::size_t>(size, 352), '\x55');
  bytes[342] = static_cast<char>(form);
  bytes[343] = static_cast<char>(form >> 8);
  for (int i = 0; i < 4; ++i) bytes[static_cast<std::size_t>(344 + i)] = static_cast<char>(pairs >> (8 * i));
  bytes.resize(size);
  return bytes;
}

std::vector<int> Points(const WaveformRead& read) {
  std::vector<int> points;
  const std::uint8_t* bytes = read.block.data();
  for (std::size_t i = 8; i + 1 < read.block.size(); i += 2) {
    points.push_back(static_cast<std::int16_t>(bytes[i] << 8 | bytes[i + 1]));
  }
  return points;
}

class WaveformFileTest : public ::testing::Test {
 protected:
  WaveformRead Read(const std::string& name, const std::string& bytes) {
    const std::string path = folder.Write(name, bytes);
    WaveformRead read = ReadArbFile(path);
    WaveformRead header;
    EXPECT_EQ(ReadArbHeader(path, header), name != "a.txt" && name != "a.TXT" && name != "long.txt");
    if (name.ends_with("db")) {
      EXPECT_EQ(std::tie(header.problem, header.arrayForm, header.pointCount),
                std::tie(read.problem, read.arrayForm, read.pointCount));
    }
    return read;
  }
  TempFolder folder;
};

TEST_F(WaveformFileTest, TextBecomesAnArrayBlock) {
  const WaveformRead read = Read("a.txt", "-32767,32767\n1,-2," + Values(4092));
  ASSERT_EQ(read.problem, Problem::None) << ReasonText(read.reason, MessageCatalogue(10000));
  EXPECT_TRUE(read.arrayForm);
  EXPECT_EQ(read.pointCount, 4096);
  ASSERT_EQ(read.block.size(), 8u + 2 * 4096);
  const std::vector<std::uint8_t> head(read.block.begin(), read.block.begin() + 16);
  EXPECT_THAT(head,
              ::testing::ElementsAre(0, 0, 0, 0, 0, 0, 0x10, 0, 0x80, 0x01, 0x7F, 0xFF, 0, 1, 0xFF, 0xFE));
}

TEST_F(WaveformFileTest, WaysToWriteTheSameText) {
  const std::string rest = "," + Values(4093);
  for (const std::string& text :
       {"1,2,-3" + rest, "1\n2\r\n-3" + rest,
        "\xEF\xBB\xBF"
        "1,2,-3" +
            rest,
        " 1 ,\t2 , -3 " + rest, "1,\r\n2,\r\n-3" + rest, "+1,002,-3.0" + rest,
        "\r\n\r\n1,2\r\n\r\n-3" + rest + "\n", "1,2,-3" + rest + ",", "1\r2\r-3" + rest + ",\r\n\r\n",
        "1e0,0.2E+1,-30e-1" + rest, "1\n,2\n,-3" + rest}) {
    const WaveformRead read = Read("a.TXT", text);
    ASSERT_EQ(read.problem, Problem::None) << ReasonText(read.reason, MessageCatalogue(10000)) << "\n"
                                           << text.substr(0, 30);
    EXPECT_EQ(read.pointCount, 4096);
    const std::vector<int> points = Points(read);
    EXPECT_THAT(std::vector<int>(points.begin(), points.begin() + 4), ::testing::ElementsAre(1, 2, -3, 0))
        << text.substr(0, 30);
  }
}

TEST_F(WaveformFileTest, TextIsRefused) {
  struct Row {
    const char* name;
    std::string text;
    Problem problem;
    const char* reason;  // part of it
  };
  for (const Row& row : {
           Row{"empty", "", Problem::BadCount, "Values: 0"},
           Row{"4095", Values(4095), Problem::BadCount, "4095"},
           Row{"6144", Values(6144), Problem::BadCount, "6144"},
           Row{"1048576", Values(1048576), Problem::BadCount, "> 524288"},
           Row{"a wrong count goes before a wrong value", Values(4095, "\n", "x"), Problem::BadCount, "4095"},
           Row{"too small", "-32768," + Values(4095), Problem::Invalid, "Value 1 "},
           Row{"too large", Values(4095) + ",32768", Problem::Invalid, "Value 4096 "},
           Row{"no integer", "1.5," + Values(4095), Problem::Invalid, "Value 1 "},
           Row{"no number", "a," + Values(4095), Problem::Invalid, "Value 1 "},
           Row{"two values in one", "1 2," + Values(4095), Problem::Invalid, "Value 1 "},
           Row{"an empty place", "1,," + Values(4094), Problem::Invalid, "Value 2 "},
           Row{"an empty place across lines", "1,\n," + Values(4094), Problem::Invalid, "Value 2 "},
           Row{"a comma first", "," + Values(4095), Problem::Invalid, "Value 1 "},
           Row{"a NUL", std::string("1\0", 2) + "," + Values(4095), Problem::Invalid, "Value 1 "},
           Row{"no separator at all", std::string(600000, '1'), Problem::Invalid, "separator"},
       }) {
    SCOPED_TRACE(row.name);
    const WaveformRead read = Read("a.txt", row.text);
    EXPECT_EQ(read.problem, row.problem);
    EXPECT_THAT(ReasonText(read.reason, MessageCatalogue(10000)), ::testing::HasSubstr(row.reason));
    EXPECT_EQ(read.block.size(), 0u);
    EXPECT_EQ(read.pointCount, 0);
  }
}

TEST_F(WaveformFileTest, LongTextsComeBackValueByValue) {
  constexpr unsigned kSeed = 20240613;
  std::mt19937 random(kSeed);
  const std::vector<std::string> separators = {",", "\n", "\r\n", " ,", ", ", ",\r\n", "\n\n"};
  for (const int count : {8192, 65536, 524288}) {
    std::vector<int> values;
    std::string text;
    for (int i = 0; i < count; ++i) {
      values.push_back(static_cast<int>(random() % 65535) - 32767);
      if (random() % 3 == 0) values.back() /= 1000;
      text += std::to_string(values.back()) + separators[random() % separators.size()];
    }
    const WaveformRead read = Read("long.txt", text);
    ASSERT_EQ(read.problem, Problem::None) << ReasonText(read.reason, MessageCatalogue(10000));
    EXPECT_TRUE(Points(read) == values) << "seed " << kSeed << ", " << count;
  }
}

TEST_F(WaveformFileTest, EditorArrayIsSwappedIntoTheBlock) {
  std::string bytes = EditorFile(0, 12345, kEditorArrayEnd + 10);
  std::vector<int> values;
  for (int i = 0; i < kMaxWaveformPoints; ++i) {
    values.push_back(static_cast<std::int16_t>(i * 31 - 32768));
    bytes[static_cast<std::size_t>(352 + 2 * i)] = static_cast<char>(values.back());
    bytes[static_cast<std::size_t>(353 + 2 * i)] = static_cast<char>(values.back() >> 8);
  }
  const WaveformRead read = Read("a.Wdb", bytes);
  ASSERT_EQ(read.problem, Problem::None) << ReasonText(read.reason, MessageCatalogue(10000));
  EXPECT_TRUE(read.arrayForm);
  EXPECT_EQ(read.pointCount, kMaxWaveformPoints);
  ASSERT_EQ(read.block.size(), 1048584u);
  const std::vector<std::uint8_t> head(read.block.begin(), read.block.begin() + 8);
  EXPECT_THAT(head, ::testing::ElementsAre(0, 0, 0, 0, 0, 8, 0, 0));
  EXPECT_TRUE(Points(read) == values);
}

TEST_F(WaveformFileTest, EditorPairsLoseTheirReservedBytes) {
  constexpr std::uint32_t kPairs = kMaxWaveformPoints;  // the most that are accepted
  std::string bytes = EditorFile(1, kPairs, 1048928 + 8 * kPairs);
  bytes.replace(bytes.size() - 8, 8, "\x04\x03\x02\x01\xFE\xFF\xAA\xBB");
  const WaveformRead read = Read("p.wdb", bytes);
  ASSERT_EQ(read.problem, Problem::None) << ReasonText(read.reason, MessageCatalogue(10000));
  EXPECT_FALSE(read.arrayForm);
  EXPECT_EQ(read.pointCount, static_cast<int>(kPairs));
  ASSERT_EQ(read.block.size(), 8u + 6 * kPairs);
  const std::vector<std::uint8_t> head(read.block.begin(), read.block.begin() + 8);
  EXPECT_THAT(head, ::testing::ElementsAre(0, 0, 0, 1, 0, kPairs >> 16, 0, 0));
  const std::vector<std::uint8_t> lastPair(read.block.end() - 6, read.block.end());
  EXPECT_THAT(lastPair, ::testing::ElementsAre(1, 2, 3, 4, 0xFF, 0xFE));
}

TEST_F(WaveformFileTest, EditorFilesAreRefused) {
  struct Row {
    const char* name;
    std::string bytes;
    Problem problem;
  };
  for (const Row& row : {
           Row{"empty", "", Problem::Insufficient},
           Row{"cut in the pair count", EditorFile(1, 1, 347), Problem::Insufficient},
           Row{"one byte of the array missing", EditorFile(2, 0, kEditorArrayEnd - 1), Problem::Insufficient},
           Row{"one byte of the pairs missing", EditorFile(1, 100, 1048928 + 799), Problem::Insufficient},
           Row{"far more pairs than bytes", EditorFile(1, 0xFFFFFFFF, 1048928 + 800), Problem::Insufficient},
           Row{"no pairs", EditorFile(1, 0, 1048928), Problem::BadCount},
           Row{"more pairs than points", EditorFile(1, 524289, 1048928 + 8 * 524289), Problem::BadCount},
       }) {
    SCOPED_TRACE(row.name);
    const WaveformRead read = Read("x.wdb", row.bytes);
    EXPECT_EQ(read.problem, row.problem);
    EXPECT_TRUE(read.reason.text);
    EXPECT_EQ(read.block.size(), 0u);
  }
}

TEST_F(WaveformFileTest, WhatIsNoWaveformFileIsRefusedAtOnce) {
  std::filesystem::create_directories(folder.File("folder.txt"));
  ASSERT_EQ(mkfifo(folder.File("pipe.txt").c_str(), 0600), 0);
  std::filesystem::create_symlink(folder.File("pipe.txt"), folder.File("link.wdb"));
  for (const std::string& path :
       {std::string(), folder.File("missing.txt"), folder.File("folder.txt"), folder.File("pipe.txt"),
        folder.File("link.wdb"), std::string("/dev/zero")}) {
    const WaveformRead read = ReadArbFile(path);
    EXPECT_EQ(read.problem, Problem::CannotAccess) << path;
    EXPECT_EQ(MessageOf(read.problem), TextId{9300});
  }
  EXPECT_EQ(Read("a.csv", Values(4096)).problem, Problem::BadExtension);
}

}  // namespace
}  // namespace corlune
