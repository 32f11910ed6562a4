// The run state's legal transitions, and what every part of a run works on.
#pragma once

#include "comm/command_layer.h"
#include "core/app_state.h"
#include "core/catalogue.h"
#include "core/ports.h"
#include "sequence/sequence_data.h"

namespace corlune {

// stopped -> running (Start), running -> held (Hold), held -> running (resume), and to stopped from
// everywhere. A state may also be set to itself.
constexpr bool IsLegalRunTransition(RunState from, RunState to) {
  return from == to || to == RunState::Stopped || to == RunState::Running ||
         (from == RunState::Running && to == RunState::Held);
}

// The only place that changes AppState::RunState in a run. False, and no change, for an illegal transition.
bool SetRunState(AppState& state, RunState to);

// References that the rooms of a run share. All must outlive whoever holds a copy.
struct RunContext {
  AppState& state;
  const SequenceData& sequence;
  CommandLayer& commands;
  const MessageCatalogue& catalogue;
  Prompts& prompts;
  TickSource& timer;
  RunDisplay& display;
  ViewDisplay& view;
};

// The step that CurrentStep points at; null where the index has no step (the end of a run can leave it
// beyond the last one) or where the instrument runs a sequence that is not this one. Such an index has run
// time 0, terminal 0, no branch and no highlight.
const StepRow* CurrentStepRow(const RunContext& run);

// Sends `entry` to every instrument from index `first` on, in index order and also behind one that fails:
// what stops a run or switches an output off must reach whoever can be reached. The index of the first that
// failed, -1 when none did. Pumps events.
int SendToEach(const RunContext& run, const CommandEntry& entry, int first = 0);

// An exchange that failed leaves open what the outputs do; OutputOn is then false.
void DoubtOutput(AppState& state);

// Message CommunicationError for instrument `index` (0-based). Pumps events.
void ShowCommunicationError(const RunContext& run, int index, PromptIcon icon);

// RefreshControls of both windows.
void RefreshBoth(const RunContext& run);

}  // namespace corlune
