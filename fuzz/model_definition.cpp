// Model definition files: never a crash, and a refused file changes nothing.
#include "fuzz/fuzz_input.h"
#include "modeldef/read_model_definition.h"

using namespace corlune;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::ScratchFile file(".ini");
  file.Set(fuzz::Text(data, size));
  ModelDefinition definition;
  definition.ProgId = "before";
  DefinitionProblem problem;
  const DefinitionLoad load = ReadModelDefinition(file.Path(), "QM2220", false, definition, &problem);
  if (load != DefinitionLoad::Ok) {
    fuzz::Require(!problem.reason.empty(), "a refused file has a reason");
    ModelDefinition untouched;
    untouched.ProgId = "before";
    fuzz::Require(definition == untouched, "a refused file changes nothing");
  }
  return 0;
}
