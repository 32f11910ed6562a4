// FrmCmnPrm: the common sequence parameters.
#pragma once

#include "dialogs/form_dialog.h"
#include "forms/common_form.h"

namespace corlune {

class FrmCmnPrm : public FormDialog {
  Q_OBJECT

 public:
  // Edits `form`, which must outlive the dialog. `changeable`: false shows the values only.
  FrmCmnPrm(const MessageCatalogue& catalogue, Prompts& prompts, CommonForm& form, bool changeable,
            QWidget* parent = nullptr);
};

}  // namespace corlune
