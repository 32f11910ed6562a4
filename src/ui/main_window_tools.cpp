// MainWindow: its tool dialogs.
#include "dialogs/frm_arb_file.h"
#include "dialogs/frm_ch_prm.h"
#include "dialogs/frm_cmn_prm.h"
#include "dialogs/frm_dlg_setup.h"
#include "dialogs/frm_mode_set.h"
#include "dialogs/frm_setup.h"
#include "sequence/channel_tabs.h"
#include "ui/grid_panel.h"
#include "ui/main_window.h"
#include "view/frm_preview.h"

namespace corlune {

void MainWindow::ToolCommand(Command command) {
  switch (command) {
    case Command::ArbitraryWaveform:
      return EditWaveforms();
    case Command::ChannelSetting:
      return EditChannelSettings();
    case Command::CommonSettings:
      return EditCommonParameters();
    case Command::SystemSetup:
      return EditSetup();
    case Command::Connect:
      return Connect();
    case Command::ModeSetting:
      return EditModes();
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

void MainWindow::EditChannelSettings() {
  Perform([&] {
    grids_->HideEditors();
    const GridCursor& cursor = editor_.Cursor();
    ChannelForm form(session_.Sequence(), session_.Definition(), EditedChannels(session_.State()),
                     IndexOf(GridRow{cursor.CurrentRow}).value);
    FrmChPrm dialog(session_.Catalogue(), prompts_, form, states_.CommonDialogOk, this);
    if (ExecInItsSize(dialog, settings_) != QDialog::Accepted) return;
    ApplyForm(TextId::EditChannelSettings, [&] { form.ApplyTo(session_.Sequence()); });
  });
}

void MainWindow::EditModes() {
  Perform([&] {
    grids_->HideEditors();
    ModeForm form(session_.Sequence(), session_.State(), session_.Definition());
    // The channel that is being worked in.
    if (const GridCursor& cursor = editor_.Cursor(); cursor.ActiveGrid == GridArea::Sequence) {
      form.SelectDevice(0);
      form.SelectChannel(cursor.CurrentChannel);
    }
    FrmModeSet dialog(session_.Catalogue(), prompts_, form, this);
    if (ExecInItsSize(dialog, settings_) != QDialog::Accepted) return;
    ApplyForm(TextId::EditModeSettings, [&] { form.ApplyTo(session_.Sequence()); });
  });
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

void MainWindow::EditWaveforms() {
  Perform([&] {
    grids_->HideEditors();
    WaveformForm form(session_.Sequence(), session_.State(), session_.Definition(), waveFacts_,
                      session_.Catalogue());
    QStringList instruments;
    for (int i = 0; i < session_.State().InstrumentCount; ++i) {
      const InstrumentEntry& entry = session_.State().Instruments[static_cast<std::size_t>(i)];
      instruments << QStringLiteral("%1 (%2)").arg(i + 1).arg(QString::fromStdString(InterfaceOf(entry)));
    }
    FrmArbFile dialog({session_, prompts_, files_, form, instruments, [this](Run item) { RunItem(item); }},
                      this);
    if (ExecInItsSize(dialog, settings_) != QDialog::Accepted) {
      return form.KeepInstrument(session_.Sequence());
    }
    ApplyForm(TextId::EditWaveforms, [&] { form.ApplyTo(session_.Sequence()); });
  });
}

// Applied by the dialog itself, which stays open while the instruments are connected.
void MainWindow::EditSetup() {
  Perform([&] {
    grids_->HideEditors();
    FrmDlgSetup dialog(session_, prompts_, files_, responses_.get(), this);
    if (ExecInItsSize(dialog, settings_) != QDialog::Accepted) return;
    if (responses_) settings_.WriteResponses(*responses_);
  });
}

void MainWindow::Connect() {
  Perform([&] { session_.GoOnline([this] { return FrmSetup::Choose(session_, prompts_, this); }); });
}

}  // namespace corlune
