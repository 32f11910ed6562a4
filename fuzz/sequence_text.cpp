// Sequence text: the tolerant reader of the program, and the strict one of the compiler with its round trip.
#include <memory>

#include "compile/read_back.h"
#include "fuzz/fuzz_input.h"
#include "standins/cmplseq/compiled_sequence.h"

using namespace corlune;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::Text(data, size);
  static const auto fresh = std::make_unique<SequenceData>();
  auto sequence = std::make_unique<SequenceData>();
  const ReceivedSteps received = ReadSequenceText(text, 2, ModelDefinition{}, *sequence);
  const std::int16_t count = ReceivedStepCount(received, *sequence, *fresh, ModelDefinition{}, 2);
  fuzz::Require(count >= 0 && count <= MAX_STEPS, "the step count is in range");

  auto strict = std::make_unique<CompiledSequence>();
  TextProblem problem;
  if (!ParseSequenceText(text, *strict, &problem)) {
    fuzz::Require(!problem.Reason.empty(), "a refused text has a reason");
    return 0;
  }
  auto again = std::make_unique<CompiledSequence>();
  fuzz::Require(ParseSequenceText(WriteSequenceText(*strict), *again) && *again == *strict,
                "an accepted text survives writing and reading");
  return 0;
}
