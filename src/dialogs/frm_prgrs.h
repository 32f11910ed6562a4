// frmPrgrs: the progress window of long transfers.
#pragma once

#include <memory>
#include <string>

#include <QPointer>

#include "core/ports.h"

class QWidget;

namespace corlune {

// Progress as a window over the main window. A transfer can neither be closed nor cancelled: cut off it would
// leave half a sequence in the instrument. A wait (ShowWait) can: by its button, Escape or closing. The
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
  bool Cancelled() const override;

 private:
  class Window;
  void Open(const std::string& text);

  QPointer<QWidget> owner_;
  QPointer<Window> window_;
};

}  // namespace corlune
