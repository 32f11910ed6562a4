// StatBar: the bar at the bottom of the main window. Connection, mode, device, total and elapsed time, and
// lines of their own for what must be said without interrupting and for an instrument that nobody sees any
// more.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include <QWidget>

#include "core/app_state.h"
#include "core/catalogue.h"

class QLabel;

namespace corlune {

// What the application state does not hold.
struct StatusFacts {
  std::string connectionTip;  // who is connected, or why nobody is
  std::string deviceTip;
};

class StatBar : public QWidget {
  Q_OBJECT

 public:
  enum Panel { Connection, Mode, Device, Total, Elapsed };
  static constexpr int kPanels = 5;

  explicit StatBar(const MessageCatalogue& catalogue, QWidget* parent = nullptr);

  // All panels anew from the application state.
  void Refresh(const AppState& state, const StatusFacts& facts);
  // Milliseconds; -1: endless.
  void TotalTime(double milliseconds);
  void ElapsTime(std::int32_t milliseconds);
  // What stands in AppState::MayStillRun and Lost, in words and colour; empty when there is nothing to warn
  // of.
  QString Warning() const;
  // Shows a line above the panels; an empty text takes it away.
  void ShowNotice(const std::string& text);
  QString Notice() const;
  QString PanelText(Panel panel) const;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void FixTimeWidths();
  void Show(Panel panel, const std::string& text);
  void ShowWarning(const AppState& state);

  const MessageCatalogue& catalogue_;
  QLabel* warning_;
  QLabel* notice_;
  std::array<QLabel*, kPanels> panels_{};
};

}  // namespace corlune
