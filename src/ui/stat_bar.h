// StatBar: the bar at the bottom of the main window. Connection, mode, device, total and elapsed time and
// what the outputs do; over the panels what must be said without interrupting, above them a line that warns
// of an instrument that nobody sees any more.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <string>

#include <QWidget>

#include "core/app_state.h"
#include "core/catalogue.h"
#include "dialogs/frm_notices.h"
#include "modeldef/model_definition.h"

class QFrame;
class QLabel;
class QToolButton;

namespace corlune {

class NoticeBar;
class OutputPanel;
class TimePanel;
class WarningLine;

// What the application state does not hold.
struct StatusFacts {
  std::string connectionTip;  // who is connected, or why nobody is
  std::string device;         // model, interface and who it is
  std::string deviceTip;
  Color outputOn;  // of the output button while an output is on
  bool mayConnect = false;
};

class StatBar : public QWidget {
  Q_OBJECT

 public:
  enum Panel { Connection, Mode, Device, Total, Elapsed, Output };
  static constexpr int kPanels = 6;

  explicit StatBar(const MessageCatalogue& catalogue, QWidget* parent = nullptr);

  // All panels but the total time anew from the application state.
  void Refresh(const AppState& state, const StatusFacts& facts);
  // Milliseconds; -1: endless.
  void TotalTime(double milliseconds);
  void ElapsTime(std::int32_t milliseconds);
  void ShowNotice(NoticeLevel level, const std::string& text);
  void CloseNotice();
  // What is shown; empty when nothing is.
  QString Notice() const;
  // The latest first.
  const std::deque<corlune::Notice>& LastNotices() const;
  QString PanelText(Panel panel) const;

 signals:
  void NoticesWanted();
  void ConnectWanted();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QToolButton* MakeConnectButton();
  void Show(Panel panel, const std::string& text);
  void PlaceNotice();

  const MessageCatalogue& catalogue_;
  WarningLine* warning_;
  QToolButton* connect_ = nullptr;
  QFrame* bar_ = nullptr;
  NoticeBar* notice_ = nullptr;
  std::array<QLabel*, kPanels> panels_{};
  TimePanel* total_ = nullptr;
  TimePanel* elapsed_ = nullptr;
  OutputPanel* output_ = nullptr;
};

}  // namespace corlune
