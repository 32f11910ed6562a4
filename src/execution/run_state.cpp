#include "execution/run_state.h"

#include <string>

namespace corlune {

bool SetRunState(AppState& state, RunState to) {
  if (!IsLegalRunTransition(state.RunState, to)) return false;
  state.RunState = to;
  return true;
}

const StepRow* CurrentStepRow(const RunContext& run) {
  const int step = run.state.CurrentStep;
  if (RunsHeldSequence(run.state) || step < 0 || step >= run.sequence.StepCount || step >= MAX_STEPS)
    return nullptr;
  return &run.sequence.Step(step);
}

int SendToEach(const RunContext& run, const CommandEntry& entry, int first) {
  int failed = -1;
  for (int i = first; i < run.state.InstrumentCount; ++i) {
    const std::int32_t address = run.commands.SelectInstrument(i);
    if (Failed(run.commands.SendCommand(address, entry.Template, entry.Wait)) && failed < 0) failed = i;
  }
  return failed;
}

void DoubtOutput(AppState& state) {
  state.OutputOn = false;
  state.OutputInDoubt = true;
}

void ShowCommunicationError(const RunContext& run, int index, PromptIcon icon) {
  ShowMessage(run.prompts, run.catalogue, TextId::CommunicationError, icon, PromptButtons::Ok,
              {std::to_string(index + 1)});
}

void RefreshBoth(const RunContext& run) {
  run.display.RefreshControls();
}

}  // namespace corlune
