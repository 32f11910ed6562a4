// The signal of a step: levels at given times, lines and stretches for pixel columns, waveform files.
#include <cmath>
#include <filesystem>

#include "graph/graph_rig.h"
#include "graph/signal_picture.h"
#include "support/temp_folder.h"

namespace corlune {
namespace {

using testing::GraphRig;
using testing::TempFolder;

constexpr std::int32_t kPoints = 524288;

const MessageCatalogue& English() {
  static const MessageCatalogue catalogue(10000);
  return catalogue;
}

SignalSubject SubjectOf(const GraphRig& rig, int step = 0, int channels = 1) {
  return BuildSignalSubject(rig.sequence, rig.definition, English(), {channels, step, false, "/waves"});
}

void PutLittleEndian(std::string& bytes, std::size_t at, std::uint32_t value, int size) {
  for (int i = 0; i < size; ++i) bytes[at + static_cast<std::size_t>(i)] = static_cast<char>(value >> 8 * i);
}

TEST(SignalTest, HasItsLevelAtEveryTime) {
  struct Case {
    const char* what;
    WaveformCode waveform;
    SignalRamp frequency, amplitude, offset, phase;
    double duty, range;
    std::vector<std::pair<double, double>> levels;  // s, V
  };
  const double half = std::sqrt(0.5);
  // A step of 1 s. A value that differs at its ends is swept.
  const std::vector<Case> cases{
      {"sine", kWaveSine, {1, 1}, {4, 4}, {1, 1}, {0, 0}, 50, 0, {{0, 1}, {0.25, 3}, {0.75, -1}, {1, 1}}},
      {"phase", kWaveSine, {1, 1}, {2, 2}, {0, 0}, {90, 90}, 50, 0, {{0, 1}, {0.25, 0}, {0.5, -1}}},
      {"inverted", kWaveSine, {1, 1}, {2, 2}, {0, 0}, {0, 0}, 50, 3, {{0.25, -1}, {0.75, 1}}},
      // The grid shows half of the stored amplitude, all of it on one side.
      {"upwards", kWaveSine, {1, 1}, {4, 4}, {1, 1}, {0, 0}, 50, 1, {{0, 2}, {0.25, 3}, {0.75, 1}}},
      {"downwards, inverted", kWaveSine, {1, 1}, {4, 4}, {1, 1}, {0, 0}, 50, 5, {{0.25, -1}, {0.75, 1}}},
      {"swept level", kWaveSine, {1, 1}, {0, 4}, {0, 2}, {0, 0}, 50, 0, {{0.25, 1}, {0.75, 0}, {1, 2}}},
      // Half way a sweep from 0 to 2 Hz has made a quarter of a period.
      {"swept frequency", kWaveSine, {0, 2}, {2, 2}, {0, 0}, {0, 0}, 50, 0, {{0.5, 1}, {1, 0}}},
      {"swept phase", kWaveSine, {1, 1}, {2, 2}, {0, 0}, {0, -360}, 50, 0, {{0.3, 0}, {0.9, 0}}},
      {"phase of 45", kWaveSine, {2, 2}, {2, 2}, {0, 0}, {45, 45}, 50, 0, {{0, half}, {0.125, half}}},
      {"square",
       kWaveSquare,
       {2, 2},
       {2, 2},
       {0, 0},
       {0, 0},
       20,
       0,
       {{0, 1}, {0.09, 1}, {0.11, -1}, {0.59, 1}}},
      {"DC", kWaveDc, {1, 1}, {4, 4}, {1, 2}, {0, 0}, 50, 0, {{0, 1}, {0.5, 1.5}, {1, 2}}},
      {"noise", kWaveNoise, {1, 1}, {4, 4}, {1, 1}, {0, 0}, 50, 0, {{0.3, 1}}},
  };
  for (const Case& c : cases) {
    GraphRig rig(2);
    const auto set = [&](Slot slot, const SignalRamp& ramp) {
      rig.Set(0, slot, ramp.From);
      rig.Set(1, slot, ramp.To, ramp.From == ramp.To ? kModeKeep : kModeSweep);
    };
    for (int step = 0; step < 2; ++step) {
      rig.SetWaveform(step, c.waveform);
      rig.Set(step, kSlotPolarityRange, c.range);
    }
    set(kSlotFrequency, c.frequency);
    set(kSlotAmplitude, c.amplitude);
    set(kSlotOffset, c.offset);
    set(kSlotPhase, c.phase);
    rig.Set(0, kSlotDuty, c.duty);
    rig.Set(1, kSlotDuty, c.duty);
    for (const bool loaded : {false, true}) {
      if (loaded) rig.sequence.Channels.Loads[0] = {1, 50};  // a matched load halves every voltage
      const SignalSubject subject = SubjectOf(rig, 1);
      ASSERT_TRUE(subject.Note.empty() && subject.Channels.at(0).Note.empty()) << c.what;
      for (const auto& [time, level] : c.levels) {
        EXPECT_NEAR(SignalAt(subject.Channels[0], nullptr, time, subject.Length), loaded ? level / 2 : level,
                    1e-9)
            << c.what << " at " << time << (loaded ? " into 50 ohms" : "");
      }
    }
  }
}

TEST(SignalTest, SaysInWordsWhatItShows) {
  GraphRig rig(3);
  rig.sequence.StartStep = 101;
  rig.sequence.Steps[1].StepTime = 0.5;
  rig.Set(0, kSlotFrequency, 1000);
  rig.Set(0, kSlotAmplitude, 2);
  rig.Set(1, kSlotFrequency, 5000, kModeSweep);
  rig.Set(1, kSlotAmplitude, 9, kModeKeep);
  rig.Set(1, kSlotExternal, 1);
  rig.sequence.Channels.Loads[0] = {1, 50};
  const SignalSubject subject = SubjectOf(rig, 1, 2);
  EXPECT_EQ(subject.StepText, "Step 102: 0.5 s");
  ASSERT_EQ(subject.Channels.size(), 2U);
  EXPECT_EQ(subject.Channels[0].Caption, "CH1  V into 50 ohm");
  EXPECT_EQ(subject.Channels[1].Caption, "CH2  V into High-Z");
  EXPECT_EQ(subject.Channels[0].Legend,
            "SIN  1000 → 5000 Hz  1 Vp-p (kept)  0 V  0 deg  + external signal (not shown)");
  EXPECT_NE(subject.Description.find("Frequency: 1000 to 5000 Hz"), std::string::npos) << subject.Description;
  rig.sequence.Channels.UserUnits[0][kSlotAmplitude] = {1, 0, "kV", 10, 0};
  rig.sequence.Channels.UserUnits[0][kSlotOffset] = {1, 0, "kV", 10, 0};
  const ChannelSignal amplified = SubjectOf(rig, 1).Channels.at(0);
  EXPECT_EQ(amplified.Caption, "CH1  kV into 50 ohm");
  EXPECT_EQ(SignalRange(amplified), (ValueRange{-5, 5}));
  EXPECT_EQ(SubjectOf(rig, 3).Note, "No step is selected.");
  rig.sequence.Steps[1].StepTime = 0;
  EXPECT_EQ(SubjectOf(rig, 1).Note, "The step has no duration.");
}

TEST(SignalTest, IsALineWhereItsPeriodsCanBeToldApart) {
  GraphRig rig(1);
  rig.Set(0, kSlotFrequency, 1000);
  rig.Set(0, kSlotFrequency, 2000, kModeConst, 1);
  rig.Set(0, kSlotAmplitude, 2);
  const SignalSubject subject = SubjectOf(rig, 0, 2);
  const AxisWindow first = FirstPeriods(subject);
  EXPECT_EQ(first.Start, 0);
  EXPECT_NEAR(first.End, 0.005, 1e-12);  // five periods of a thousand, which the slower channel has
  const SignalPicture picture =
      BuildSignalPicture(subject, {nullptr, nullptr}, English(), first, {300, 200, 100});
  ASSERT_EQ(picture.Panes.size(), 2U);
  EXPECT_EQ(picture.Panes[0].Caption, "Time [ms]  first 5 ms of 1 s");
  const SignalTrace& part = picture.Panes[0].Traces[0];
  EXPECT_EQ(part.Columns.size(), 200U);
  ASSERT_EQ(part.Lines.size(), 1U);
  for (const SignalPoint& point : part.Lines[0]) {
    EXPECT_NEAR(point.Value, std::sin(2 * M_PI * 1000 * point.Time), 1e-6);
  }
  const SignalTrace& whole = picture.Panes[1].Traces[0];
  EXPECT_TRUE(whole.Lines.empty());
  ASSERT_EQ(whole.Columns.size(), 100U);
  for (const SignalColumn& column : whole.Columns) {
    EXPECT_EQ(column.Kind, ColumnKind::Shade);
    EXPECT_EQ(ValueRange({column.Low, column.High}), ValueRange({-1, 1}));
  }
  // Ten columns a period: they reach to the crests, and no further.
  const auto strokes = TraceOf(subject.Channels[0], nullptr, 1, {0, 0.01}, 100).Columns;
  for (std::size_t i = 0; i < strokes.size(); ++i) {
    EXPECT_EQ(strokes[i].Kind, ColumnKind::Stroke);
    EXPECT_EQ(strokes[i].Low == -1, i % 10 == 7) << i;
    EXPECT_EQ(strokes[i].High == 1, i % 10 == 2) << i;
  }
  rig.Set(0, kSlotFrequency, 20);
  EXPECT_EQ(FirstPeriods(SubjectOf(rig)), (AxisWindow{0, 1}));
}

TEST(SignalTest, LosesNoEdgeOfASquareWave) {
  GraphRig rig(1);
  rig.SetWaveform(0, kWaveSquare);
  rig.Set(0, kSlotAmplitude, 2);
  rig.Set(0, kSlotDuty, 0.1);
  rig.Set(0, kSlotFrequency, 10);
  // A pulse is far narrower than a column: one stroke each.
  const SignalTrace trace = TraceOf(SubjectOf(rig).Channels.at(0), nullptr, 1, {0.045, 0.945}, 90);
  int strokes = 0;
  for (const SignalColumn& column : trace.Columns) strokes += column.Kind == ColumnKind::Stroke ? 1 : 0;
  EXPECT_EQ(strokes, 9);
}

TEST(SignalTest, ShowsTheShapesOfWaveformFiles) {
  const TempFolder folder;
  std::string text;
  for (int i = 0; i < kPoints; ++i) text += i == 400000 ? "32767\n" : i % 2 == 0 ? "-100\n" : "-200\n";
  std::string pairs(1048928 + 8 * 3, '\0');
  PutLittleEndian(pairs, 342, 1, 2);
  PutLittleEndian(pairs, 344, 3, 4);
  // Not in order, and not from 0.
  const std::vector<std::pair<int, int>> points{{600, -32767}, {-200, 0}, {200, 32767}};
  for (std::size_t i = 0; i < points.size(); ++i) {
    PutLittleEndian(pairs, 1048928 + 8 * i, static_cast<std::uint32_t>(points[i].first), 4);
    PutLittleEndian(pairs, 1048932 + 8 * i, static_cast<std::uint32_t>(points[i].second), 2);
  }
  WaveCache cache;
  EXPECT_EQ(cache.Find(folder.File("spike.txt")), nullptr);
  const auto spike = cache.Read(folder.Write("spike.txt", text));
  ASSERT_TRUE(spike->Wave);
  EXPECT_EQ(cache.Find(spike->Path), spike);
  EXPECT_NEAR(spike->Wave->At(1 - 0.25 / kPoints), -125 / 32767.0, 1e-9) << "on the way to the first point";
  const auto lines = cache.Read(folder.Write("lines.wdb", pairs));
  ASSERT_TRUE(lines->Wave && lines->Wave->Pairs());
  for (const auto& [phase, value] :
       {std::pair{0.0, 0.0}, {0.25, 0.5}, {0.5, 1.0}, {0.75, 0.0}, {0.875, -0.5}, {1.0, -1.0}}) {
    EXPECT_NEAR(lines->Wave->At(phase), value, 1e-9) << phase;
  }
  EXPECT_EQ(lines->Wave->Between(0.4, 0.75), (WaveRange{0, 1}));

  GraphRig rig(1);
  rig.SetWaveform(0, kWaveUser);
  rig.Set(0, kSlotArbNumber, 7);
  rig.Set(0, kSlotFrequency, 2);
  rig.Set(0, kSlotAmplitude, 2);
  EXPECT_EQ(SubjectOf(rig).Channels.at(0).Note.substr(0, 6), "ARB 7 ");
  rig.sequence.Channels.ArbFiles[6].FilePath = spike->Path;
  const SignalSubject subject = SubjectOf(rig);
  EXPECT_EQ(WavePathsOf(subject), std::vector<std::string>{spike->Path});
  const auto pictureOf = [&](const std::shared_ptr<const WaveFile>& file) {
    return BuildSignalPicture(subject, {file}, English(), {0, 1}, {64, 1, 1});
  };
  EXPECT_EQ(pictureOf(nullptr).Notes.at(0), "Reading spike.txt ...");
  const std::vector<SignalColumn> columns = pictureOf(spike).Panes.at(0).Traces.at(0).Columns;
  ASSERT_EQ(columns.size(), 64U);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    // One point of 16,384 in its column, in both periods.
    EXPECT_EQ(columns[i].High == 1, i % 32 == 400000 / 16384) << i;
    EXPECT_NEAR(columns[i].Low, -200 / 32767.0, 1e-12) << i;
  }

  rig.sequence.Channels.ArbFiles[6].FilePath = lines->Path;
  const SignalPicture drawn = BuildSignalPicture(SubjectOf(rig), {lines}, English(), {0, 1}, {64, 1, 1});
  EXPECT_EQ(drawn.Panes.at(0).Caption,
            "Time [s]  whole step (1 s)  one period from the first point to the last");

  // A changed file is read again, and says why when it is of no use.
  std::filesystem::last_write_time(spike->Path, {});
  EXPECT_EQ(cache.Find(spike->Path), nullptr) << "as long as before";
  std::filesystem::resize_file(spike->Path, text.size() - 6);
  const auto cut = cache.Read(spike->Path);
  EXPECT_EQ(pictureOf(cut).Notes.at(0).substr(0, 26), "ARB 7, spike.txt: Values: ");
  for (const char* other : {"a", "b", "c"}) cache.Read(folder.File(other));
  EXPECT_EQ(cache.Find(lines->Path), nullptr) << "four files are kept";
  EXPECT_EQ(cache.Find(cut->Path), cut);
}

}  // namespace
}  // namespace corlune
