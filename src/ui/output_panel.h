// OutputPanel: what the outputs of the instruments do, as a lamp and a word. A full lamp, an empty one and a
// half one can be told without colour; colour says it to whoever looks from afar.
#pragma once

#include <QLabel>

#include "core/catalogue.h"
#include "core/output_state.h"
#include "modeldef/model_definition.h"

namespace corlune {

class OutputPanel : public QLabel {
 public:
  explicit OutputPanel(const MessageCatalogue& catalogue, QWidget* parent = nullptr);

  // `onColor`: of the output button while an output is on.
  void ShowState(OutputState state, const Color& onColor);

 protected:
  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  // The panel keeps its place whatever it says.
  void ReserveWidth();
  int LampSize() const;

  const MessageCatalogue& catalogue_;
  OutputState state_ = OutputState::None;
};

}  // namespace corlune
