// MainWindow: the fields beside the grids.
#include <QPushButton>

#include "core/numbers.h"
#include "editing/value_entry.h"
#include "ui/grid_panel.h"
#include "ui/main_window.h"
#include "ui/stat_bar.h"
#include "view/frm_preview.h"
#include "view/run_fields.h"

namespace corlune {

void MainWindow::BuildFields(QWidget* parent) {
  fields_ =
      new RunFields(session_.Catalogue(),
                    {[this](const std::string& text, EntryEnd end) { return EnterSequenceNumber(text, end); },
                     [this](const std::string& text, EntryEnd end) { return EnterStartStep(text, end); },
                     [this](const std::string& text, EntryEnd end) { return EnterBranchChannel(text, end); }},
                    parent);
  read_ = new QPushButton(Caption(TextId::ButtonReadBack), fields_);
  read_->setObjectName(QStringLiteral("CmdRead"));
  // A click leaves the focus in the cell or field.
  read_->setFocusPolicy(Qt::TabFocus);
  read_->setAutoDefault(false);
  connect(read_, &QPushButton::clicked, this, &MainWindow::ReadBack);
  fields_->AddBehindSequenceNumber(read_);
}

void MainWindow::ShowFields() {
  const std::string number = std::to_string(sequenceNumber_);
  const std::string start = std::to_string(session_.Sequence().StartStep);
  const std::string branch = std::to_string(session_.Sequence().BranchChannel);
  fields_->ShowTexts(number, start, branch);
  if (preview_) preview_->ShowFields(number, start, branch);
}

bool MainWindow::Settle(const EditOutcome& outcome, EntryEnd end) {
  if (outcome.Accepted) {
    statBar_->CloseNotice();
    return true;
  }
  if (outcome.Message && end == EntryEnd::Key) {
    MessageRequest request;
    request.text = outcome.Message->Text;
    request.icon = outcome.Message->Icon;
    prompts_.Message(request);
  } else if (outcome.Message) {
    statBar_->ShowNotice(NoticeLevel::Warning, outcome.Message->Text);
  }
  return false;
}

bool MainWindow::EnterSequenceNumber(const std::string& text, EntryEnd end) {
  if (!Settle(editor_.CheckSequenceNumber(text), end)) return false;
  sequenceNumber_ = ParseInt16(PlainEntry(text)).value_or(0);
  ShowFields();
  return true;
}

bool MainWindow::EnterStartStep(const std::string& text, EntryEnd end) {
  // What is being typed in a cell is meant in the present numbering.
  grids_->CommitEntry(end);
  if (!Settle(editor_.EnterStartStep(text), end)) return false;
  // The first column and every target are shown in the new one.
  grids_->Rebuild();
  ShowFields();
  return true;
}

bool MainWindow::EnterBranchChannel(const std::string& text, EntryEnd end) {
  if (!Settle(editor_.EnterBranchChannel(text), end)) return false;
  ShowFields();
  return true;
}

}  // namespace corlune
