// MainWindow: its tool dialogs.
#include "dialogs/frm_cmn_prm.h"
#include "ui/grid_panel.h"
#include "ui/main_window.h"
#include "view/frm_preview.h"

namespace corlune {

void MainWindow::ToolCommand(Command command) {
  switch (command) {
    case Command::CommonSettings:
      return EditCommonParameters();
    default:
      break;
  }
}

void MainWindow::ApplyForm(TextId action, const std::function<void()>& change) {
  const EditOutcome outcome = editor_.Record(action, change);
  if (!outcome.Changed) return;
  grids_->Apply(outcome);
  if (preview_ && session_.State().SequenceViewShown) preview_->PicDisp();
}

void MainWindow::EditCommonParameters() {
  Perform([&] {
    grids_->HideEditors();
    CommonForm form(session_.Sequence().Common);
    FrmCmnPrm dialog(session_.Catalogue(), prompts_, form, states_.CommonDialogOk, this);
    if (ExecInItsSize(dialog, settings_) != QDialog::Accepted) return;
    ApplyForm(TextId::EditCommonParameters, [&] { form.ApplyTo(session_.Sequence()); });
  });
}

}  // namespace corlune
