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

class TimePanel;
class WarningLine;

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

  // All panels but the total time anew from the application state.
  void Refresh(const AppState& state, const StatusFacts& facts);
  // Milliseconds; -1: endless.
  void TotalTime(double milliseconds);
  void ElapsTime(std::int32_t milliseconds);
  // Shows a line above the panels; an empty text takes it away.
  void ShowNotice(const std::string& text);
  QString Notice() const;
  QString PanelText(Panel panel) const;

 private:
  void Show(Panel panel, const std::string& text);

  const MessageCatalogue& catalogue_;
  WarningLine* warning_;
  QLabel* notice_;
  std::array<QLabel*, kPanels> panels_{};
  TimePanel* total_ = nullptr;
  TimePanel* elapsed_ = nullptr;
};

}  // namespace corlune
