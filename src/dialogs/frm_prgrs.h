// frmPrgrs: the progress window of long transfers.
#pragma once

#include <memory>
#include <string>

#include <QPointer>

#include "core/ports.h"

class QWidget;

namespace corlune {

// Progress as a window over the main window. It can be closed only where a button to cancel is offered: by
// that button, Escape or closing, and stays until what is under way has come to a good place to end. The
// window does not block the main window, whose controls are disabled by whoever transfers.
class FrmPrgrs : public Progress {
 public:
  FrmPrgrs();
  ~FrmPrgrs() override;

  // The window to stand over; none before there is one.
  void SetOwner(QWidget* owner);

  void Begin(const std::string& text, int steps) override;
  void Advance() override;
  void End() override;
  void ShowWait(const std::string& text, const std::string& cancel, int done, int steps) override;
  void OfferCancel(const std::string& cancel, const std::string& pressed) override;
  bool Cancelled() const override;
  bool Painted() const override;

 private:
  class Window;
  void Open(const std::string& text);

  QPointer<QWidget> owner_;
  QPointer<Window> window_;
};

}  // namespace corlune
