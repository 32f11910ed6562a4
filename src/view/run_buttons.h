// RunButtons: the row of run buttons CmdBtn1[0..5] with the model's colours.
#pragma once

#include <array>
#include <functional>

#include <QWidget>

#include "core/app_state.h"
#include "core/catalogue.h"
#include "editing/control_states.h"
#include "modeldef/model_definition.h"

class QPushButton;

namespace corlune {

class RunButtons : public QWidget {
  Q_OBJECT

 public:
  // `pressed` gets the button's index.
  RunButtons(const MessageCatalogue& catalogue, const std::function<void(int)>& pressed,
             QWidget* parent = nullptr);

  void ShowStates(const ControlStates& states, const AppState& state, const ModelDefinition& definition);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  std::array<Color, kPanelButtonCount> faces_{};
  std::array<QPushButton*, kPanelButtonCount> buttons_{};
};

}  // namespace corlune
