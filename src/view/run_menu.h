// RunMenu: the run menu mnuRun of the main window and the sequence view, with its keys.
#pragma once

#include <array>
#include <functional>

#include <QMenu>

#include "core/app_state.h"
#include "core/catalogue.h"
#include "editing/control_states.h"

namespace corlune {

class RunMenu : public QMenu {
  Q_OBJECT

 public:
  // `chosen` gets the item's index (Run's order).
  RunMenu(const MessageCatalogue& catalogue, const std::function<void(int)>& chosen,
          QWidget* parent = nullptr);

  void ShowStates(const ControlStates& states, const AppState& state);

 private:
  std::array<QAction*, kMenuItemCounts[static_cast<std::size_t>(Menu::Run)]> items_{};
};

}  // namespace corlune
