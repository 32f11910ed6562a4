// Which controls of the main window (and run controls of the sequence view) are shown and enabled.
#pragma once

#include <array>

#include "core/activity.h"
#include "core/app_state.h"
#include "modeldef/model_definition.h"

namespace corlune {

struct ControlState {
  bool Visible = false;
  bool Enabled = false;
  bool operator==(const ControlState&) const = default;
};

struct ControlStates {
  std::array<ControlState, kMenuCount> Menus{};
  std::array<std::array<ControlState, 9>, kMenuCount> MenuItems{};
  std::array<ControlState, kPanelButtonCount> Buttons{};
  ControlState RowAdd, Insert, Delete, Up, Down;  // CmdRowAdd, CmdInsert, ...
  ControlState Undo, Redo, Duplicate, FillDown, CopyText, PasteText, ImportCsv, ExportCsv;
  ControlState Connect;                                   // opening the connection again
  ControlState ModeSetting;                               // the dialog of the mode sets
  ControlState SequenceNumber, StartStep, BranchChannel;  // TxtSeq, TxtStrStep, TxtBranch
  ControlState Read;                                      // CmdRead
  bool EditCells = false;                                 // editors open on a click
  bool Close = false;                                     // closing the window is possible
  bool CommonDialogOk = false;  // OK of the common sequence parameters and of the channel settings
  bool operator==(const ControlStates&) const = default;
};

// What neither the application state nor the record of what is under way holds.
struct ControlConditions {
  int StepCount = 0;
  bool CopyBufferFilled = false;
  bool CanUndo = false;
  bool CanRedo = false;
};

ControlStates ControlStatesOf(const AppState& state, const Activity& activity,
                              const ModelDefinition& definition, const ControlConditions& conditions);

}  // namespace corlune
