#include "dialogs/frm_setup.h"

#include <algorithm>

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QStandardItemModel>

#include "core/catalogue.h"
#include "dialogs/app_icon.h"
#include "dialogs/blocking_call.h"
#include "forms/setup_form.h"

namespace corlune {

namespace {
constexpr int kRest = 400;  // ms that a selection stands before its instrument is asked
}  // namespace

FrmSetup::FrmSetup(Session& session, Prompts& prompts, QWidget* parent)
    : FormDialog(session.Catalogue(), prompts,
                 {"frmSetup", TextId::SystemTitle, TextId::SystemOk, TextId::SystemCancel}, parent),
      session_(session) {
  // At the start it is the only window of the program.
  if (parent == nullptr) SetAppIcon(this, QString::fromUtf8(kApplicationIcon), false);
  QFormLayout& rows = *AddRows();
  QStringList models;
  for (const std::string& model : session_.Definition().Models) models << QString::fromStdString(model);
  models_ = MakeList("cmbModel", models, [this](int) {
    ShowModel();
    if (serials_->count() == 0) Search();
  });
  models_->setCurrentIndex(session_.State().ModelIndex);
  AddRow(rows, TextId::SystemModel, {models_});
  interfaces_ = MakeList("cmbIF", {}, [](int) {});
  AddRow(rows, TextId::SystemInterface, {interfaces_});
  serials_ = MakeList("cmbSerial", {}, [this](int) { asks_.start(); });
  auto* search = new QPushButton(Caption(TextId::ButtonSearchAgain), this);
  search->setObjectName(QStringLiteral("CmdSearch"));
  search->setFocusPolicy(Qt::TabFocus);
  connect(search, &QPushButton::clicked, this, &FrmSetup::Search);
  AddRow(rows, TextId::SystemSerialNumber, {serials_, search});
  identification_ = AddLine("LabIdentification");
  identification_->setAccessibleName(Caption(TextId::Identification));
  // Room for the answer, so that nothing moves when it comes.
  identification_->setMinimumHeight(3 * identification_->fontMetrics().height());
  identification_->setAlignment(Qt::AlignTop);
  Body().addStretch();
  serials_->setFocus();

  asks_.setObjectName(QStringLiteral("Asks"));
  asks_.setSingleShot(true);
  asks_.setInterval(kRest);
  connect(&asks_, &QTimer::timeout, this, &FrmSetup::Identify);
  ShowModel();
}

std::optional<InstrumentChoice> FrmSetup::Choose(Session& session, Prompts& prompts, QWidget* parent) {
  FrmSetup dialog(session, prompts, parent);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.Choice();
}

const ModelInterfaceSpec& FrmSetup::Limits() const {
  return session_.Definition().InterfaceOf(models_->currentIndex());
}

InstrumentChoice FrmSetup::Choice() const {
  return {models_->currentText().toStdString(), serials_->currentText().toStdString()};
}

void FrmSetup::ShowModel() {
  interfaces_->clear();
  auto* items = qobject_cast<QStandardItemModel*>(interfaces_->model());
  for (const std::string& name : Limits().InterfaceNames) {
    interfaces_->addItem(QString::fromStdString(name));
    const int last = interfaces_->count() - 1;
    if (name == "USBTMC") {
      interfaces_->setCurrentIndex(last);
    } else {
      // An address is needed there, which is a matter of the system setup.
      items->item(last)->setEnabled(false);
      items->item(last)->setToolTip(Caption(TextId::TipInterfaceElsewhere));
    }
  }
  serials_->clear();
  for (const FoundInstrument& one : SetupForm::OfModel(session_.Gp().Found(), Limits())) {
    serials_->addItem(QString::fromStdString(one.SerialNo));
  }
  const std::string last = session_.LastSerial(models_->currentText().toStdString());
  serials_->setCurrentIndex(std::max(0, serials_->findText(QString::fromStdString(last))));
  OkButton().setEnabled(serials_->count() > 0);
  identification_->clear();
  if (serials_->count() > 0) {
    asks_.start();
    return;
  }
  asks_.stop();
  std::string none =
      Catalogue().GetResString(TextId::NoneOfModelFound, {models_->currentText().toStdString()});
  if (const std::string problem = session_.Gp().LibraryProblem(); !problem.empty()) none += "\n" + problem;
  identification_->setText(QString::fromStdString(none));
}

void FrmSetup::Search() {
  if (busy_) return;
  const QScopedValueRollback<bool> busy(busy_, true);
  const BlockingCall call(*identification_, Caption(TextId::SearchingInstruments));
  session_.SearchInstruments(models_->currentText().toStdString());
  ShowModel();
}

void FrmSetup::Identify() {
  if (busy_ || serials_->count() == 0) return;
  const QScopedValueRollback<bool> busy(busy_, true);
  const BlockingCall call(*identification_, Caption(TextId::AskingInstrument));
  const InstrumentChoice choice = Choice();
  SystemSettings setup;
  setup.ModelName = choice.ModelName;
  setup.Instruments[0].SerialNo = choice.SerialNo;
  setup.Instruments[0].Interface = static_cast<std::int16_t>(interfaces_->currentIndex());
  const auto test = session_.TestInstrument(setup, 0, true);
  identification_->setText(test ? QString::fromStdString(test->Text) : QString());
}

void FrmSetup::reject() {
  if (!busy_) FormDialog::reject();
}

}  // namespace corlune
