#include "dialogs/frm_cmn_prm.h"

#include <QComboBox>
#include <QFormLayout>

namespace corlune {

FrmCmnPrm::FrmCmnPrm(const MessageCatalogue& catalogue, Prompts& prompts, CommonForm& form, bool changeable,
                     QWidget* parent)
    : FormDialog(catalogue, prompts,
                 {"FrmCmnPrm", TextId::CommonTitle, TextId::SettingOk, TextId::SettingCancel}, parent) {
  QFormLayout& rows = *AddRows();
  EntryField* start = MakeField(
      "txtVal", FieldKind::Number, [&form](const std::string& text) { return form.EnterStartStep(text); },
      TextId::HintStartStep);
  start->ShowText(QString::number(form.Edited().StartStepNo));
  start->selectAll();
  AddRow(rows, TextId::CommonStartStep, {start});
  for (const CommonList& list : CommonForm::Lists()) {
    QComboBox* choices = MakeList(list.name, Captions(list.choices),
                                  [&form, &list](int choice) { form.Choose(list, choice); });
    choices->setCurrentIndex(form.Edited().*list.field);
    AddRow(rows, list.caption, {choices});
  }
  Body().addStretch();
  if (!changeable) Lock(TextId::FormReadOnly);
}

}  // namespace corlune
