// frmModeSet: the choices of the model's mode sets, for one instrument and channel or for several at once.
#pragma once

#include "dialogs/form_dialog.h"
#include "forms/mode_form.h"

namespace corlune {

class FrmModeSet : public FormDialog {
  Q_OBJECT

 public:
  // Edits `form`, which must outlive the dialog, and shows the instrument and channel chosen there.
  FrmModeSet(const MessageCatalogue& catalogue, Prompts& prompts, ModeForm& form, QWidget* parent = nullptr);

 private:
  void BuildPlaces();
  void BuildSets();
  void FillChannels();
  void ShowSelections();

  ModeForm& form_;
  QComboBox* channel_ = nullptr;
  QList<QComboBox*> sets_;
};

}  // namespace corlune
