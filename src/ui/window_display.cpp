#include "ui/window_display.h"

#include "ui/grid_panel.h"
#include "ui/main_window.h"
#include "view/frm_preview.h"

namespace corlune {

WindowDisplay::WindowDisplay() = default;
WindowDisplay::~WindowDisplay() = default;

void WindowDisplay::Attach(MainWindow* window) {
  window_ = window;
}

void WindowDisplay::RefreshControls() {
  if (window_) window_->RefreshControls();
}
void WindowDisplay::ShowModeLayout(int operationMode) {
  if (window_) window_->ShowModeLayout(operationMode);
}
void WindowDisplay::HighlightRow(GridRow row, bool on) {
  if (!window_) return;
  window_->Grids().HighlightRow(row, on);
  window_->ShowSignal();
}
void WindowDisplay::ScrollTo(GridRow top) {
  if (window_) window_->Grids().ScrollTo(top);
}
void WindowDisplay::ShowTotalTime(double milliseconds) {
  if (window_) window_->ShowTotalTime(milliseconds);
}
void WindowDisplay::ShowNotice(NoticeLevel level, const std::string& text) {
  if (window_) window_->ShowNotice(level, text);
}
void WindowDisplay::ShowElapsedTime(std::int32_t milliseconds) {
  if (window_) window_->ShowElapsedTime(milliseconds);
}

void WindowDisplay::PicDisp() {
  if (window_ && window_->Preview()) window_->Preview()->PicDisp();
}
void WindowDisplay::MoveShape(std::uint32_t tick) {
  if (window_ && window_->Preview()) window_->Preview()->MoveShape(tick);
}
void WindowDisplay::MeasureStart() {
  if (window_ && window_->Preview()) window_->Preview()->MeasureStart();
}
void WindowDisplay::MeasureEnd() {
  if (window_ && window_->Preview()) window_->Preview()->MeasureEnd();
}

void WindowDisplay::HideEditors() {
  if (window_) window_->Grids().HideEditors();
}
void WindowDisplay::SequenceReplaced(SequenceChange change) {
  if (window_) window_->SequenceReplaced(change);
}
void WindowDisplay::ShowCaption(const std::string&) {
  if (window_) window_->RefreshCaption();
}
void WindowDisplay::ShowWaitCursor(bool on) {
  if (window_) window_->ShowWaitCursor(on);
}
void WindowDisplay::ConnectionChanged() {
  if (window_) window_->RefreshControls();
}

}  // namespace corlune
