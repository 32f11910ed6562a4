// WindowDisplay: the session's displays before and after there is a main window. The session is built first
// and starts up without a window; from Attach on every call is forwarded.
#pragma once

#include <QPointer>

#include "core/ports.h"
#include "session/session_ports.h"

namespace corlune {

class MainWindow;

class WindowDisplay : public RunDisplay, public ViewDisplay, public SessionDisplay {
 public:
  WindowDisplay();
  ~WindowDisplay() override;
  void Attach(MainWindow* window);

  // RunDisplay
  void RefreshControls() override;
  void ShowModeLayout(int operationMode) override;
  void HighlightRow(GridRow row, bool on) override;
  void ScrollTo(GridRow top) override;
  void ShowTotalTime(double milliseconds) override;
  void ShowNotice(NoticeLevel level, const std::string& text) override;
  void ShowElapsedTime(std::int32_t milliseconds) override;
  // ViewDisplay
  void PicDisp() override;
  void MoveShape(std::uint32_t tick) override;
  void MeasureStart() override;
  void MeasureEnd() override;
  // SessionDisplay
  void HideEditors() override;
  void SequenceReplaced(SequenceChange change) override;
  void ShowCaption(const std::string& caption) override;
  void ShowWaitCursor(bool on) override;
  void ConnectionChanged() override;

 private:
  QPointer<MainWindow> window_;
};

}  // namespace corlune
