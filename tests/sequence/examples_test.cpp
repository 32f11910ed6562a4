// The shipped example sequences: whole, playable within the shipped bounds, and written as the program does.
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>

#include "core/files.h"
#include "modeldef/read_model_definition.h"
#include "sequence/channel_tabs.h"
#include "sequence/run_times.h"
#include "sequence/sequence_file.h"
#include "sequence/waveform_file.h"
#include "sequence/waveform_path.h"
#include "support/fake_ports.h"

namespace corlune {
namespace {

constexpr const char* kFolder = CORLUNE_DATA "/examples";
constexpr double kPeak = 10;  // V

ModelDefinition ShippedDefinition(const std::string& model) {
  ModelDefinition definition;
  EXPECT_EQ(ReadModelDefinition(CORLUNE_DATA "/Corlune_Std.ini", model, false, definition),
            DefinitionLoad::Ok)
      << model;
  return definition;
}

struct Example {
  const char* name;
  const char* model;
  double seconds;
};

class ExampleTest : public ::testing::TestWithParam<Example> {
 protected:
  void SetUp() override {
    path = std::string(kFolder) + "/" + GetParam().name;
    testing::ScriptedPrompts prompts;
    const auto definitions = [this](const std::string& model) {
      definition = ShippedDefinition(model);
      return &definition;
    };
    ASSERT_TRUE(ReadSeqFile(path, SequenceFileForm::User, definitions, state, sequence, prompts,
                            MessageCatalogue(10000)));
    state.ProgId = definition.ProgId;
    state.VerNo = definition.VerNo;
    state.CurrentFilePath = path;
  }

  std::string path;
  AppState state;
  ModelDefinition definition;
  SequenceData sequence;
};

TEST_P(ExampleTest, IsWrittenAsTheProgramWritesIt) {
  EXPECT_EQ(state.ModelName, GetParam().model);
  const auto bytes = ReadWholeFile(path);
  ASSERT_TRUE(bytes);
  EXPECT_EQ(FormatSequenceFile(sequence, state, definition, SequenceFileForm::User), *bytes);
}

TEST_P(ExampleTest, EndsByItselfAfterItsTime) {
  EXPECT_NEAR(ComputeRunTimes(sequence, definition).Total, GetParam().seconds * 1000, 1e-6);
  ASSERT_GT(sequence.StepCount, 0);
  EXPECT_EQ(sequence.Steps[static_cast<std::size_t>(sequence.StepCount - 1)].StepTerm, 1);
}

TEST_P(ExampleTest, StaysWithinTheBoundsOfItsWaveforms) {
  for (int channel = 0; channel < EditedChannels(state); ++channel) {
    for (int step = 0; step < sequence.StepCount; ++step) {
      SCOPED_TRACE("channel " + std::to_string(channel + 1) + ", step " + std::to_string(step + 1));
      const auto value = [&](int slot) { return sequence.Cell(channel, step, slot).Value; };
      const auto group = static_cast<std::size_t>(value(kSlotWaveform));
      ASSERT_LE(group, 4u);
      if (group == kWaveUser) {
        const auto arb = static_cast<std::size_t>(value(kSlotArbNumber) - 1);
        EXPECT_NE(sequence.Channels.ArbFiles.at(arb).FilePath, "");
      }
      for (int slot = 0; slot < definition.Sequence.ParamCount; ++slot) {
        const ParamDef& column = definition.Sequence.Params[group][static_cast<std::size_t>(slot)];
        if (!column.InUse) continue;
        const double low = column.ValueKind == 0 ? column.Minimum : 0;
        const double high =
            column.ValueKind == 0 ? column.Maximum : static_cast<double>(column.Choices.size()) - 1;
        EXPECT_GE(value(slot), low) << "parameter " << slot;
        EXPECT_LE(value(slot), high) << "parameter " << slot;
      }
      const double amplitude = group == kWaveDc ? 0 : value(kSlotAmplitude);
      EXPECT_LE(std::fabs(value(kSlotOffset)) + amplitude / 2, kPeak);
    }
  }
}

TEST_P(ExampleTest, HasItsWaveforms) {
  for (const ArbFileEntry& entry : sequence.Channels.ArbFiles) {
    if (entry.FilePath.empty()) continue;
    const WaveformRead read = ReadArbFile(ResolveWaveformPath(entry.FilePath, state));
    EXPECT_EQ(read.problem, WaveformProblem::None)
        << entry.FilePath << ": " << ReasonText(read.reason, MessageCatalogue(10000));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Shipped, ExampleTest,
    ::testing::Values(Example{"quick-tour.dat", "QM2220", 10}, Example{"ramp.dat", "QM2210", 26},
                      Example{"frequency-sweep.dat", "QM2220", 9.5},
                      Example{"voltage-dip.dat", "QM2220", 30.16}, Example{"cranking.dat", "QM2220", 13.17},
                      Example{"phase-shift.dat", "QM2220", 20}, Example{"arb-burst.dat", "QM2220", 3.9}),
    [](const auto& example) {
      std::string name;
      for (const char* c = example.param.name; *c != '.'; ++c) {
        if (*c != '-') name += *c;
      }
      return name;
    });

TEST(Examples, EveryShippedSequenceIsInTheTable) {
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(kFolder))
    files += entry.path().extension() == ".dat";
  EXPECT_EQ(files, 7);
}

}  // namespace
}  // namespace corlune
