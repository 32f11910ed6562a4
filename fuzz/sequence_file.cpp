// Sequence files: a refused file changes nothing; an accepted one, written and read again, gives the same
// text.
#include "sequence/sequence_file.h"

#include <memory>

#include "fuzz/fuzz_input.h"
#include "modeldef/read_model_definition.h"
#include "sequence/defaults.h"

using namespace corlune;

namespace {

const ModelDefinition& Definition() {
  static const ModelDefinition definition = [] {
    ModelDefinition loaded;
    fuzz::Require(
        ReadModelDefinition(CORLUNE_DATA "/Corlune_Std.ini", "QM2220", false, loaded) == DefinitionLoad::Ok,
        "the shipped definition loads");
    return loaded;
  }();
  return definition;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::Text(data, size);
  const ModelDefinition& definition = Definition();
  static const auto fresh = [&] {
    auto sequence = std::make_unique<SequenceData>();
    ResetSequence(*sequence, definition);
    return sequence;
  }();
  const SequenceFileForm form = DetectForm(text).value_or(SequenceFileForm::User);
  auto sequence = std::make_unique<SequenceData>(*fresh);
  SystemSettings settings;
  const ReadResult read = ParseSequenceFile(text, form, OneDefinition(definition), *sequence, settings);
  if (read.Problem != SequenceFileProblem::None) {
    fuzz::Require(*sequence == *fresh, "a refused file leaves the sequence alone");
    fuzz::Require(settings == SystemSettings{}, "a refused file leaves the set-up alone");
    return 0;
  }
  fuzz::Require(sequence->StepCount >= 0 && sequence->StepCount <= MAX_STEPS, "the step count is in range");
  AppState state;
  ApplySettings(state, settings);
  const std::string written = FormatSequenceFile(*sequence, state, definition, form);
  auto again = std::make_unique<SequenceData>(*fresh);
  SystemSettings settingsAgain;
  fuzz::Require(ParseSequenceFile(written, form, OneDefinition(definition), *again, settingsAgain).Problem ==
                    SequenceFileProblem::None,
                "a written file is accepted");
  AppState stateAgain;
  ApplySettings(stateAgain, settingsAgain);
  fuzz::Require(FormatSequenceFile(*again, stateAgain, definition, form) == written,
                "writing what was read gives the same text");
  return 0;
}
