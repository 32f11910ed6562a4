// Reading the model definition file "Corlune_Std.ini" into a ModelDefinition.
//
// A load parses into a copy of the present values and swaps it in when the file was taken whole: keys that
// the file does not name keep what an earlier load stored, and a refused file changes nothing. The table of
// interfaces and the command lists CM_SNDA and CM_SNDS start empty in every load.
#pragma once

#include <string>

#include "core/app_state.h"
#include "core/catalogue.h"
#include "core/ports.h"
#include "modeldef/model_definition.h"

namespace corlune {

// The first entry that made a load fail. `key` is empty when the section as a whole is at fault, `section`
// too when the file is.
struct DefinitionProblem {
  std::string section;
  std::string key;
  std::string reason;  // one English clause, for logs and the console
};

enum class DefinitionLoad {
  Ok,
  FileMissing,  // no such file, or nothing that can be read as one
  BadValue,     // a value, an item or a whole section is missing or wrong
};

// Reads sections FILE and SYSTEM, "INTERFACE <model>" of every listed model and "SPEC <model>" of
// `modelName`; a name that the file does not list leaves the SPEC values as they are. `japanese` picks the
// language of the column names. `problem` may be null; it is set unless the result is Ok.
[[nodiscard]] DefinitionLoad ReadModelDefinition(const std::string& path, const std::string& modelName,
                                                 bool japanese, ModelDefinition& definition,
                                                 DefinitionProblem* problem = nullptr);

// The same for the file, model and language of `state`, whose ProgId and VerNo it sets on success. Shows
// message NoInitializationFile (which pumps events) when the file is missing; a bad value shows nothing.
[[nodiscard]] bool ReadModelDefinition(AppState& state, ModelDefinition& definition, Prompts& prompts,
                                       const MessageCatalogue& catalogue,
                                       DefinitionProblem* problem = nullptr);

}  // namespace corlune
