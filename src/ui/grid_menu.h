// The context menu of the grids.
#pragma once

#include <functional>

#include "core/catalogue.h"
#include "editing/control_states.h"
#include "editing/sequence_editor.h"
#include "ui/grid_keys.h"

class QMenu;

namespace corlune {

struct GridMenuActions {
  std::function<void(GridCommand)> run;
  std::function<void()> importCsv;
  std::function<void()> exportCsv;
};

void FillGridMenu(QMenu& menu, const SequenceEditor& editor, const ControlStates& states,
                  const GridMenuActions& actions);

// State of a command's controls: shown at all, and possible now.
ControlState StateOf(GridCommand command, const SequenceEditor& editor, const ControlStates& states);

}  // namespace corlune
