#include "dialogs/frm_mode_set.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

namespace corlune {

namespace {

// Above the single ones stands the choice of all.
constexpr int kFirstSingle = 1;

}  // namespace

FrmModeSet::FrmModeSet(const MessageCatalogue& catalogue, Prompts& prompts, ModeForm& form, QWidget* parent)
    : FormDialog(catalogue, prompts,
                 {"frmModeSet", TextId::ModeSetTitle, TextId::ModeSetOk, TextId::ModeSetCancel}, parent),
      form_(form) {
  BuildPlaces();
  BuildSets();
  AddLine("LabModes")->setText(Caption(TextId::ModesNotSent));
  Body().addStretch();
  ShowSelections();
}

void FrmModeSet::BuildPlaces() {
  QFormLayout& rows = *AddFrame(TextId::ModeSetDeviceSelection);
  QStringList devices{Caption(TextId::ModeSetAllDevices)};
  for (int i = 1; i <= form_.Devices(); ++i) {
    devices << Caption(TextId::ModeSetDevice) + QString::number(i);
  }
  QComboBox* device = MakeList("cmbDevice", devices, [this](int entry) {
    form_.SelectDevice(entry - kFirstSingle);
    FillChannels();
    ShowSelections();
  });
  device->setCurrentIndex(form_.Device() + kFirstSingle);
  AddRow(rows, TextId::ModeSetDevice, {device});
  if (!form_.PerChannel()) return;
  channel_ = MakeList("cmbChannel", {}, [this](int entry) {
    form_.SelectChannel(entry - kFirstSingle);
    ShowSelections();
  });
  AddRow(rows, TextId::ModeSetChannel, {channel_});
  FillChannels();
}

void FrmModeSet::FillChannels() {
  if (channel_ == nullptr) return;
  channel_->clear();
  channel_->addItem(Caption(TextId::ModeSetAllChannels));
  for (int i = 1; i <= form_.Channels(); ++i) {
    channel_->addItem(Caption(TextId::ModeSetChannel) + QString::number(i));
  }
  channel_->setCurrentIndex(form_.Channel() + kFirstSingle);
}

void FrmModeSet::BuildSets() {
  QFormLayout& rows = *AddFrame(TextId::ModeSetSetting);
  for (const int set : form_.Sets()) {
    const ModeSetSpec& spec = form_.Set(set);
    QStringList choices;
    for (const std::string& text : spec.Choices.Texts) choices << QString::fromStdString(text);
    QComboBox* list = MakeList(("cmbMode_" + std::to_string(set)).c_str(), choices,
                               [this, set](int choice) { form_.Choose(set, choice); });
    list->setPlaceholderText(Caption(TextId::ModesDiffer));
    sets_ << list;
    AddRow(rows,
           spec.Name.empty() ? Catalogue().GetResString(TextId::ModeWithoutName, {std::to_string(set + 1)})
                             : spec.Name,
           {list});
  }
}

void FrmModeSet::ShowSelections() {
  const std::vector<int> sets = form_.Sets();
  for (std::size_t i = 0; i < sets.size(); ++i) {
    sets_[static_cast<qsizetype>(i)]->setCurrentIndex(form_.Selection(sets[i]).value_or(-1));
  }
}

}  // namespace corlune
