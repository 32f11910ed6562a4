// MainWindow: the fields beside the grids.
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "core/numbers.h"
#include "editing/value_entry.h"
#include "ui/entry_field.h"
#include "ui/grid_panel.h"
#include "ui/main_window.h"
#include "ui/stat_bar.h"
#include "view/frm_preview.h"

namespace corlune {

namespace {

constexpr int kFieldDigits = 5;

EntryField* AddField(QHBoxLayout* layout, QWidget* row, const QString& caption, const char* fieldName,
                     const char* labelName, std::vector<QWidget*>* parts) {
  auto* label = new QLabel(caption, row);
  label->setObjectName(QString::fromUtf8(labelName));
  label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  auto* field = new EntryField(row);
  field->setObjectName(QString::fromUtf8(fieldName));
  field->setAccessibleName(QString(caption).replace(QLatin1Char('\n'), QLatin1Char(' ')));
  field->setFixedWidth(field->fontMetrics().horizontalAdvance(QLatin1Char('0')) * kFieldDigits + 14);
  label->setBuddy(field);
  layout->addWidget(label);
  layout->addWidget(field);
  if (parts) *parts = {label, field};
  return field;
}

}  // namespace

QWidget* MainWindow::BuildFieldRow() {
  auto* row = new QWidget(this);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(4);
  sequenceNumber_ = AddField(layout, row, Caption(8008), "TxtSeq", "LabSeq", nullptr);
  sequenceNumber_->ShowText(QStringLiteral("0"));
  read_ = new QPushButton(Caption(8009), row);
  read_->setObjectName(QStringLiteral("CmdRead"));
  read_->setAutoDefault(false);
  connect(read_, &QPushButton::clicked, this, &MainWindow::ReadBack);
  layout->addWidget(read_);
  layout->addStretch();
  startStep_ = AddField(layout, row, Caption(8006), "TxtStrStep", "LabStrStep", &startStepParts_);
  layout->addStretch();
  branchChannel_ = AddField(layout, row, Caption(8007), "TxtBranch", "LabBranch", &branchChannelParts_);
  layout->addStretch();

  sequenceNumber_->SetCheck(
      [this](const std::string& text, EntryEnd end) { return EnterSequenceNumber(text, end); });
  startStep_->SetCheck([this](const std::string& text, EntryEnd end) { return EnterStartStep(text, end); });
  branchChannel_->SetCheck(
      [this](const std::string& text, EntryEnd end) { return EnterBranchChannel(text, end); });
  return row;
}

void MainWindow::ShowFields() {
  startStep_->ShowText(QString::number(session_.Sequence().StartStep));
  branchChannel_->ShowText(QString::number(session_.Sequence().BranchChannel));
  if (preview_) {
    preview_->ShowFields(sequenceNumber_->OldFieldText().toStdString(), startStep_->text().toStdString(),
                         branchChannel_->text().toStdString());
  }
}

bool MainWindow::Settle(const EditOutcome& outcome, EntryEnd end) {
  if (outcome.Accepted) {
    statBar_->ShowNotice({});
    return true;
  }
  if (outcome.Message && end == EntryEnd::Key) {
    MessageRequest request;
    request.text = outcome.Message->Text;
    request.icon = outcome.Message->Icon;
    prompts_.Message(request);
  } else if (outcome.Message) {
    statBar_->ShowNotice(outcome.Message->Text);
  }
  return false;
}

bool MainWindow::EnterSequenceNumber(const std::string& text, EntryEnd end) {
  if (!Settle(editor_.CheckSequenceNumber(text), end)) return false;
  sequenceNumber_->ShowText(QString::number(ParseInt16(PlainEntry(text)).value_or(0)));
  ShowFields();
  return true;
}

bool MainWindow::EnterStartStep(const std::string& text, EntryEnd end) {
  if (!Settle(editor_.EnterStartStep(text), end)) return false;
  // The first column and every target are shown in the new numbering.
  grids_->Rebuild();
  ShowFields();
  return true;
}

bool MainWindow::EnterBranchChannel(const std::string& text, EntryEnd end) {
  if (!Settle(editor_.EnterBranchChannel(text), end)) return false;
  ShowFields();
  return true;
}

void MainWindow::TakeSequenceNumber() {
  session_.Sequence().SequenceNumber =
      ParseInt16(PlainEntry(sequenceNumber_->OldFieldText().toStdString())).value_or(0);
}

}  // namespace corlune
