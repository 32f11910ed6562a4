// frmPrgrs: the progress window of long transfers.
#pragma once

#include <memory>
#include <string>

#include <QPointer>

#include "core/ports.h"

class QWidget;

namespace corlune {

// Progress as a window over the main window. It can neither be closed nor cancelled: a transfer that was cut
// off would leave half a sequence in the instrument. It does not block the main window, whose controls are
// disabled by whoever transfers.
class FrmPrgrs : public Progress {
 public:
  FrmPrgrs();
  ~FrmPrgrs() override;

  // The window to stand over; none before there is one.
  void SetOwner(QWidget* owner);

  void Begin(const std::string& text, int steps) override;
  void Advance() override;
  void End() override;

 private:
  class Window;
  QPointer<QWidget> owner_;
  QPointer<Window> window_;
};

}  // namespace corlune
