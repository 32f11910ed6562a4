// FrmArbMemory: which waveform is to be deleted in which instrument. It only asks; the deletion is the
// business of the dialog that shows it.
#pragma once

#include <QStringList>

#include "dialogs/form_dialog.h"

namespace corlune {

class FrmArbMemory : public FormDialog {
  Q_OBJECT

 public:
  // `instruments`: their names in order.
  FrmArbMemory(const MessageCatalogue& catalogue, Prompts& prompts, const QStringList& instruments,
               QWidget* parent);

  int Instrument() const { return instrument_; }  // 0-based
  int Number() const { return number_; }          // ARB number; 0: all

 private:
  int instrument_ = 0;
  int number_ = 0;
};

}  // namespace corlune
