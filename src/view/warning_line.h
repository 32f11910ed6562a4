// WarningLine: the line of a status bar that warns, in words and colour, of an instrument that may still be
// running and of lost connections. Hidden when there is nothing to warn of.
#pragma once

#include <QLabel>

#include "core/app_state.h"
#include "core/catalogue.h"

namespace corlune {

class WarningLine : public QLabel {
  Q_OBJECT

 public:
  // `catalogue` must outlive the line.
  explicit WarningLine(const MessageCatalogue& catalogue, QWidget* parent = nullptr);
  // What stands in MayStillRun and Lost.
  void ShowState(const AppState& state);

 private:
  const MessageCatalogue& catalogue_;
};

}  // namespace corlune
