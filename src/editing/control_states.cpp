#include "editing/control_states.h"

#include <algorithm>

#include "core/output_state.h"
#include "sequence/sequence_data.h"

namespace corlune {

namespace {

// The situations that decide about controls.
struct Situation {
  bool Edit = false;     // edit mode
  bool Stopped = false;  // execution mode, no run
  bool Running = false;
  bool Held = false;
  bool Free = false;    // no download, transfer or other exchange
  bool Output = false;  // no output command either
  bool Start = false;   // a start is under way
  bool Warning =
      false;  // an instrument may still be running: it can be stopped and switched off, not started
  bool OutputOn = false;  // or nobody can say that it is off
  bool MayBeOn = false;   // at an instrument
  bool Online = false;
  bool HasSteps = false;
  bool CanGrow = false;
  bool CopyBuffer = false;
  bool Named = false;  // the sequence has a file
};

Situation SituationOf(const AppState& state, const Activity& activity, const ModelDefinition& definition,
                      const ControlConditions& conditions) {
  Situation now;
  now.Running = state.RunState == RunState::Running;
  now.Held = state.RunState == RunState::Held;
  const bool atRest = !now.Running && !now.Held;
  now.Edit = atRest && state.OperationMode == OperationMode::Edit;
  now.Stopped = atRest && state.OperationMode == OperationMode::Execution;
  now.Free = !activity.Exchanging();
  now.Output = now.Free && !activity.Under(Work::Output) && !activity.Under(Work::Start);
  now.Start = activity.Under(Work::Start);
  now.Warning = state.MayStillRun;
  now.OutputOn = OutputSwitchesOff(state);
  now.MayBeOn = OutputMayBeOn(state);
  now.Online = state.Online != 0;
  now.HasSteps = conditions.StepCount > 0;
  now.CanGrow = conditions.StepCount < std::min<int>(definition.Common.MaxSteps, MAX_STEPS);
  now.CopyBuffer = conditions.CopyBufferFilled;
  now.Named = !state.CurrentFilePath.empty();
  return now;
}

std::array<bool, 9> FileItems(const Situation& now) {
  const bool edit = now.Edit && now.Free;
  const bool atRest = (now.Edit || now.Stopped) && now.Output;
  // New and Open replace what the instrument holds a copy of; saving does not. A file dialog would stand
  // before the stop button of a running sequence.
  const bool dialog = now.Output && !now.Running;
  return {edit, edit, dialog || (now.Free && now.Named), dialog, atRest};
}

std::array<bool, 9> EditItems(const Situation& now) {
  const bool edit = now.Edit && now.Free;
  const bool withSteps = edit && now.HasSteps;
  return {withSteps,
          withSteps && now.CopyBuffer,
          withSteps,
          withSteps,
          edit && now.CanGrow,
          edit && now.CanGrow,
          withSteps,
          withSteps,
          withSteps};
}

std::array<bool, 9> ModeItems(const Situation& now) {
  return {now.Stopped && now.Output, now.Edit && now.Free};
}

bool CanOutput(const Situation& now) {
  return (now.Stopped || now.Running || now.Held || now.MayBeOn) && now.Output;
}

std::array<bool, 9> RunItems(const Situation& now) {
  // Until it has ended a start can only be stopped. A stop under the warning waits for what is under way.
  const bool running = now.Running && now.Free && !now.Start;
  return {(now.Stopped || now.Held) && now.Output && !now.Warning,
          ((now.Running || now.Held || now.Start) && now.Free) || now.Warning,
          running,
          running,
          CanOutput(now) && !now.OutputOn,
          CanOutput(now) && now.OutputOn};
}

std::array<bool, 9> ToolItems(const Situation& now) {
  const bool edit = now.Edit && now.Free;
  // Channel settings and common parameters can be looked at in execution mode. The last entry has no action.
  const bool atRest = (now.Edit || now.Stopped) && now.Output;
  return {edit, atRest, atRest, edit, false};
}

std::array<bool, 9> ItemsOf(Menu menu, const Situation& now) {
  switch (menu) {
    case Menu::File:
      return FileItems(now);
    case Menu::Edit:
      return EditItems(now);
    case Menu::Mode:
      return ModeItems(now);
    case Menu::Run:
      return RunItems(now);
    case Menu::Tool:
      return ToolItems(now);
    case Menu::View:
    case Menu::Help:
      break;
  }
  std::array<bool, 9> all{};
  all.fill(true);
  return all;
}

void FillMenus(ControlStates& states, const ModelDefinition& definition, const Situation& now) {
  for (std::size_t menu = 0; menu < kMenuCount; ++menu) {
    const MenuSpec& spec = definition.Menus[menu];
    states.Menus[menu] = {spec.Visible, true};
    const std::array<bool, 9> enabled = ItemsOf(static_cast<Menu>(menu), now);
    for (std::size_t item = 0; item < static_cast<std::size_t>(kMenuItemCounts[menu]); ++item) {
      states.MenuItems[menu][item] = {spec.Visible && spec.Items[item], enabled[item]};
    }
  }
}

void FillButtons(ControlStates& states, const ModelDefinition& definition, const Situation& now) {
  const std::array<bool, 9> run = RunItems(now);
  const std::array<bool, kPanelButtonCount> enabled{
      (now.Edit || now.Stopped) && now.Output, run[0], run[1], run[2], run[3], CanOutput(now)};
  for (std::size_t i = 0; i < kPanelButtonCount; ++i) {
    states.Buttons[i] = {definition.Buttons[i].Visible, enabled[i]};
  }
}

}  // namespace

ControlStates ControlStatesOf(const AppState& state, const Activity& activity,
                              const ModelDefinition& definition, const ControlConditions& conditions) {
  const Situation now = SituationOf(state, activity, definition, conditions);
  ControlStates states;
  FillMenus(states, definition, now);
  FillButtons(states, definition, now);

  const bool edit = now.Edit && now.Free;
  const bool withSteps = edit && now.HasSteps;
  states.RowAdd = {now.CanGrow, edit && now.CanGrow};
  states.Insert = {true, edit && now.CanGrow};
  states.Delete = states.Up = states.Down = {true, withSteps};
  states.Undo = {true, edit && conditions.CanUndo};
  states.Redo = {true, edit && conditions.CanRedo};
  states.Duplicate = {true, withSteps && now.CanGrow};
  states.FillDown = states.PasteText = {true, withSteps};
  states.ImportCsv = {true, edit};
  const bool atRest = now.Edit || now.Stopped;
  states.CopyText = states.ExportCsv = {true, atRest && now.Free && now.HasSteps};
  const bool modes =
      definition.Menus[static_cast<std::size_t>(Menu::Tool)].Visible && definition.ModeSetCount > 0;
  const bool lost = std::find(state.Lost.begin(), state.Lost.end(), true) != state.Lost.end();
  states.Connect = {true, edit && (!now.Online || lost)};
  states.ModeSetting = {modes, edit};
  states.SequenceNumber = {true, edit};
  states.StartStep = {definition.StartStep.Visible, edit};
  // Which entry a branch takes is chosen during the run.
  states.BranchChannel = {definition.Branch.Visible, now.Free};
  states.Read = {true, edit && now.Online};
  states.EditCells = edit;
  states.Close = atRest && now.Output;
  states.CommonDialogOk = !(now.Online && state.OperationMode == OperationMode::Execution);
  return states;
}

}  // namespace corlune
