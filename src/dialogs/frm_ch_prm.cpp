#include "dialogs/frm_ch_prm.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

#include "core/numbers.h"

namespace corlune {

FrmChPrm::FrmChPrm(const MessageCatalogue& catalogue, Prompts& prompts, ChannelForm& form, bool changeable,
                   QWidget* parent)
    : FormDialog(catalogue, prompts,
                 {"FrmChPrm", TextId::ChannelTitle, TextId::SettingOk, TextId::SettingCancel}, parent),
      form_(form) {
  BuildChannel();
  BuildUserUnit();
  Body().addStretch();
  if (!changeable) Lock(TextId::FormReadOnly, {channel_, quantity_});
  ShowAll();
}

void FrmChPrm::BuildChannel() {
  QFormLayout& rows = *AddFrame(TextId::ChannelFrame);
  std::vector<TextId> channels{TextId::SettingChannel1, TextId::SettingChannel2};
  channels.resize(static_cast<std::size_t>(form_.Channels()));
  channel_ = MakeList("cmbCH_0", Captions(channels), [this](int channel) {
    form_.SelectChannel(channel);
    ShowAll();
  });
  AddRow(rows, TextId::ChannelSelect, {channel_});
  loadType_ = MakeChoice("cmbCH_1", {TextId::LoadHighZ, TextId::LoadVariable}, &ChannelForm::ChooseLoadType);
  load_ = MakeEntry("txtVal_1", FieldKind::Number, &ChannelForm::EnterLoad, TextId::HintLoad);
  AddRow(rows, TextId::ChannelOutputLoad, {loadType_, load_, new QLabel(Caption(TextId::UnitOhm), this)});
}

void FrmChPrm::BuildUserUnit() {
  QFormLayout& rows = *AddFrame(TextId::ChannelUserUnit);
  using enum TextId;
  quantity_ =
      MakeList("cmbUnit_0",
               Captions({QuantityFrequency, QuantityAmplitude, QuantityOffset, QuantityPhase, QuantityDuty}),
               [this](int quantity) {
                 form_.SelectQuantity(quantity);
                 ShowAll();
               });
  AddRow(rows, UnitType, {quantity_});
  use_ = MakeChoice("cmbUnit_1", {UnitOfSystem, UnitOfUser}, &ChannelForm::ChooseUse);
  AddRow(rows, UnitUse, {use_});
  unit_ = MakeEntry("txtVal_2", FieldKind::Text, &ChannelForm::EnterUnitText, HintUnitText);
  AddRow(rows, UnitName, {unit_});
  formula_ = MakeChoice("cmbUnit_2", {UnitFormLinear, UnitFormLogarithmic}, &ChannelForm::ChooseForm);
  formula_->setToolTip(Caption(HintForm));
  AddRow(rows, UnitForm, {formula_});
  factor_ = MakeEntry("txtVal_3", FieldKind::Number, &ChannelForm::EnterFactor, HintFactor);
  AddRow(rows, UnitFactorM, {factor_});
  summand_ = MakeEntry("txtVal_4", FieldKind::Number, &ChannelForm::EnterSummand, HintSummand);
  AddRow(rows, UnitSummandN, {summand_});
  example_ = AddLine("LabExample");
}

EntryField* FrmChPrm::MakeEntry(const char* name, FieldKind kind,
                                EntryResult (ChannelForm::*enter)(std::string_view), TextId hint) {
  const auto take = [this, enter](const std::string& text) {
    EntryResult refusal = (form_.*enter)(text);
    ShowExample();
    return refusal;
  };
  return MakeField(name, kind, take, hint);
}

QComboBox* FrmChPrm::MakeChoice(const char* name, const std::vector<TextId>& choices,
                                void (ChannelForm::*choose)(int)) {
  return MakeList(name, Captions(choices), [this, choose](int choice) {
    (form_.*choose)(choice);
    ShowAll();
  });
}

void FrmChPrm::ShowAll() {
  const UserUnitDef& unit = form_.Unit();
  channel_->setCurrentIndex(form_.Channel());
  quantity_->setCurrentIndex(form_.Quantity());
  loadType_->setCurrentIndex(form_.Load().LoadType);
  use_->setCurrentIndex(unit.UseUserUnit);
  formula_->setCurrentIndex(unit.Form);
  const auto number = [](double value) { return QString::fromStdString(NumberText(value)); };
  load_->ShowText(number(form_.Load().LoadValue));
  unit_->ShowText(QString::fromStdString(unit.UnitText));
  factor_->ShowText(number(unit.M));
  summand_->ShowText(number(unit.N));

  load_->setEnabled(!Locked() && form_.VariableLoad());
  const bool possible = !Locked() && form_.UserUnitPossible();
  use_->setEnabled(possible);
  for (QWidget* control : {static_cast<QWidget*>(unit_), static_cast<QWidget*>(formula_),
                           static_cast<QWidget*>(factor_), static_cast<QWidget*>(summand_)}) {
    control->setEnabled(possible && unit.UseUserUnit == 1);
  }
  ShowExample();
}

void FrmChPrm::ShowExample() {
  if (example_ == nullptr) return;
  std::string text = form_.Example(Catalogue());
  if (!form_.UserUnitPossible()) {
    text += "\n" + Catalogue().GetResString(
                       TextId::UserUnitImpossible,
                       {channel_->currentText().toStdString(), quantity_->currentText().toStdString()});
  }
  example_->setText(QString::fromStdString(text));
}

}  // namespace corlune
