// What the tests work on: the shipped definition, and the state of a program with one of its instruments.
#pragma once

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>

#include "core/app_state.h"
#include "modeldef/read_model_definition.h"

namespace corlune::testing {

inline const ModelDefinition& ShippedDefinition(bool english = true, const std::string& model = "QM2220") {
  static std::map<std::pair<bool, std::string>, ModelDefinition> definitions;
  const auto [entry, added] = definitions.try_emplace({english, model});
  DefinitionProblem problem;
  if (added && ReadModelDefinition(CORLUNE_DATA "/Corlune_Std.ini", model, !english, entry->second,
                                   &problem) != DefinitionLoad::Ok) {
    ADD_FAILURE() << problem.key << ": " << problem.reason;
  }
  return entry->second;
}

// The two-channel model, off-line, in edit mode.
inline AppState TwoChannelState() {
  AppState state;
  state.ModelName = "QM2220";
  state.ModelIndex = 1;
  state.Instruments[0].ChannelCount = 2;
  return state;
}

}  // namespace corlune::testing
