#include "dialogs/frm_dlg_setup.h"

#include <QComboBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScreen>
#include <QTimer>

#include "dialogs/blocking_call.h"

namespace corlune {

namespace {

constexpr int kSerialSigns = 22;  // the field shows a serial number of 20

QString Name(const char* control, int row) {
  return QString::fromUtf8(control) + QString::number(row);
}

QStringList List(const std::vector<std::string>& texts) {
  QStringList list;
  for (const std::string& text : texts) list << QString::fromStdString(text);
  return list;
}

// A list that may be in use stays as it is unless its choices are others.
void ShowList(QComboBox& list, const QStringList& choices) {
  QStringList shown;
  for (int i = 0; i < list.count(); ++i) shown << list.itemText(i);
  if (shown == choices) return;
  list.clear();
  list.addItems(choices);
}

QString RangeTip(const RangeSpec& range) {
  return QStringLiteral("%1-%2").arg(range.Minimum).arg(range.Maximum);
}

}  // namespace

FrmDlgSetup::FrmDlgSetup(Session& session, Prompts& prompts, FileDialogs& files, std::string* responses,
                         QWidget* parent)
    : FormDialog(session.Catalogue(), prompts,
                 {"frmDlgSetup", TextId::SystemTitle, TextId::SystemOk, TextId::SystemCancel}, parent),
      session_(session),
      files_(files),
      responseFile_(responses),
      form_(SettingsOf(session.State()), session.Definition()) {
  BuildHead();
  auto* grid = new QGridLayout;
  reachedBy_ = new QLabel(this);
  channelHead_ = new QLabel(Caption(TextId::HeadChannelCount), this);
  grid->addWidget(new QLabel(Caption(TextId::HeadDevice), this), 0, 1);
  grid->addWidget(reachedBy_, 0, 2);
  grid->addWidget(channelHead_, 0, 3);
  grid->setColumnStretch(2, 1);
  for (int row = 0; row < kMaxInstruments; ++row) BuildRow(*grid, row);
  Body().addLayout(grid);
  BuildSearch();
  if (responseFile_ != nullptr) BuildResponses();
  Body().addStretch();
  models_->setFocus();
  form_.OfferFound(session_.Gp().Found());
  ShowFound();
  ShowRows();
}

void FrmDlgSetup::BuildHead() {
  QFormLayout& rows = *AddRows();
  models_ = MakeList("cmbModel", List(form_.Models()), [this](int model) { ChooseModel(model); });
  models_->setCurrentIndex(form_.Model());
  AddRow(rows, TextId::HeadModelName, {models_});

  const RangeSpec& range = form_.CountRange();
  count_ = MakeField(
      "Text1", FieldKind::Number,
      [this](const std::string& text) {
        EntryResult refusal = form_.EnterCount(text);
        if (!refusal) ShowRows();
        return refusal;
      },
      TextId::HeadDeviceCount);
  count_->setToolTip(RangeTip(range));
  QStringList counts;
  for (int count = range.Minimum; count <= range.Maximum; ++count) counts << QString::number(count);
  counts_ = MakeList("Combo1", counts, [this](int index) {
    count_->ShowText(counts_->itemText(index));
    ShowRows();
  });
  counts_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  AddRow(rows, TextId::HeadDeviceCount, {count_, counts_});
}

void FrmDlgSetup::BuildRow(QGridLayout& grid, int row) {
  Row& controls = rows_[static_cast<std::size_t>(row)];
  const int line = 1 + 2 * row;
  controls.number = new QLabel(QStringLiteral("&%1").arg(row + 1), this);
  controls.interface = MakeList(Name("cmbIF", row).toUtf8().constData(), {}, [this, row](int interface) {
    form_.ChooseInterface(row, interface);
    rows_[static_cast<std::size_t>(row)].result->clear();  // it was another one
    ShowRows();
  });
  controls.number->setBuddy(controls.interface);
  controls.serial = new QComboBox(this);
  controls.serial->setObjectName(Name("cmbSerial", row));
  controls.serial->setEditable(true);
  controls.serial->setFocusPolicy(Qt::StrongFocus);
  controls.serial->installEventFilter(this);  // the wheel, as over the other lists
  controls.serial->setInsertPolicy(QComboBox::NoInsert);
  controls.serial->setMinimumContentsLength(kSerialSigns);
  controls.serial->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  connect(controls.serial, &QComboBox::editTextChanged, this,
          [this, row](const QString& text) { form_.EnterSerial(row, text.toStdString()); });
  controls.address = MakeField(
      Name("TxtAdrs", row).toUtf8().constData(), FieldKind::Number,
      [this, row](const std::string& text) { return form_.EnterAddress(row, text); }, TextId::HeadAddress);
  controls.channels = MakeField(
      Name("TxtCH", row).toUtf8().constData(), FieldKind::Number,
      [this, row](const std::string& text) { return form_.EnterChannels(row, text); },
      TextId::HeadChannelCount);
  controls.test = new QPushButton(Caption(TextId::ButtonTestConnection), this);
  controls.test->setObjectName(Name("CmdTest", row));
  controls.test->setFocusPolicy(Qt::TabFocus);
  connect(controls.test, &QPushButton::clicked, this, [this, row] { Test(row); });
  controls.result = new QLabel(this);
  controls.result->setObjectName(Name("LabTest", row));
  controls.result->setTextFormat(Qt::PlainText);
  controls.result->setWordWrap(true);
  controls.result->setTextInteractionFlags(Qt::TextSelectableByMouse);
  controls.result->hide();

  grid.addWidget(controls.number, line, 0);
  grid.addWidget(controls.interface, line, 1);
  grid.addWidget(controls.serial, line, 2);
  grid.addWidget(controls.address, line, 2);
  grid.addWidget(controls.channels, line, 3);
  grid.addWidget(controls.test, line, 4);
  grid.addWidget(controls.result, line + 1, 1, 1, 4);
  const std::pair<QWidget*, TextId> named[] = {{controls.interface, TextId::HeadDevice},
                                               {controls.serial, TextId::HeadSerial},
                                               {controls.address, TextId::HeadAddress},
                                               {controls.channels, TextId::HeadChannelCount},
                                               {controls.test, TextId::ButtonTestConnection}};
  for (const auto& [control, what] : named) {
    control->setAccessibleName(QStringLiteral("%1 %2").arg(row + 1).arg(Caption(what)));
  }
}

void FrmDlgSetup::BuildSearch() {
  auto* line = new QHBoxLayout;
  search_ = new QPushButton(Caption(TextId::ButtonSearchAgain), this);
  search_->setObjectName(QStringLiteral("CmdSearch"));
  search_->setFocusPolicy(Qt::TabFocus);
  connect(search_, &QPushButton::clicked, this, &FrmDlgSetup::Search);
  line->addWidget(search_);
  line->addStretch();
  Body().addLayout(line);
  found_ = AddLine("LabFound");
}

void FrmDlgSetup::BuildResponses() {
  QFormLayout& rows = *AddRows();
  chosenFile_ = *responseFile_;
  responses_ = MakeField(
      "TxtResponses", FieldKind::Text,
      [this](const std::string& text) -> EntryResult {
        const bool usable = text.empty() || QFileInfo(QString::fromStdString(text)).isFile();
        if (!usable) return EntryRefusal{TextId::WaveCannotOpen, {}};
        chosenFile_ = text;
        return std::nullopt;
      },
      TextId::ResponseFile);
  responses_->ShowText(QString::fromStdString(chosenFile_));
  auto* browse = new QPushButton(Caption(TextId::ButtonBrowse), this);
  browse->setFocusPolicy(Qt::TabFocus);
  connect(browse, &QPushButton::clicked, this, &FrmDlgSetup::Browse);
  AddRow(rows, TextId::ResponseFile, {responses_, browse});
}

void FrmDlgSetup::ShowRows() {
  bool serials = false;
  bool addresses = false;
  for (int row = 0; row < kMaxInstruments; ++row) {
    ShowRow(row);
    if (row >= form_.Count()) continue;
    (form_.ReachedBy(row) == SetupForm::Reached::BySerial ? serials : addresses) = true;
  }
  QString head = Caption(serials ? TextId::HeadSerial : TextId::HeadAddress);
  if (serials && addresses) head = Caption(TextId::HeadAddress) + QStringLiteral(" / ") + head;
  reachedBy_->setText(head);
  channelHead_->setVisible(form_.ChannelsShown());
  // What is being typed can be taken back.
  if (!count_->hasFocus()) count_->ShowText(QString::number(form_.Count()));
  counts_->setCurrentIndex(form_.Count() - form_.CountRange().Minimum);
  search_->setVisible(serials);
  found_->setVisible(serials);
  FitHeight();
}

void FrmDlgSetup::ShowRow(int row) {
  const Row& controls = rows_[static_cast<std::size_t>(row)];
  const bool shown = row < form_.Count();
  const bool bySerial = form_.ReachedBy(row) == SetupForm::Reached::BySerial;
  const InstrumentEntry& entry = form_.Row(row);
  ShowList(*controls.interface, List(form_.Interfaces()));
  controls.interface->setCurrentIndex(entry.Interface);
  if (!bySerial) {
    controls.address->ShowText(QString::number(entry.Address));
    controls.address->setToolTip(RangeTip(form_.AddressRange(row)));
  }
  controls.serial->setEditText(QString::fromStdString(entry.SerialNo));
  controls.channels->ShowText(QString::number(entry.ChannelCount));
  controls.channels->setToolTip(RangeTip(form_.ChannelRange()));
  // Nobody is asked for a field that is not there.
  const auto show = [](QWidget* control, bool on) {
    control->setVisible(on);
    control->setEnabled(on);
  };
  controls.number->setVisible(shown);
  show(controls.interface, shown);
  show(controls.serial, shown && bySerial);
  show(controls.address, shown && !bySerial);
  show(controls.channels, shown && form_.ChannelsShown());
  show(controls.test, shown && !form_.Interfaces().empty());
  controls.result->setVisible(shown && !controls.result->text().isEmpty());
}

void FrmDlgSetup::FitHeight() {
  if (!isVisible()) return;
  QTimer::singleShot(0, this, [this] {
    Body().activate();
    for (QWidget* part = Body().parentWidget(); part != this; part = part->parentWidget()) {
      part->updateGeometry();
    }
    layout()->activate();
    const int room = screen()->availableSize().height() - frameGeometry().height() + height();
    resize(std::max(width(), minimumSizeHint().width()), std::min(sizeHint().height(), room));
  });
}

void FrmDlgSetup::ShowFound() {
  const std::vector<FoundInstrument> found =
      SetupForm::OfModel(session_.Gp().Found(), session_.Definition().InterfaceOf(form_.Model()));
  QStringList serials;
  for (const FoundInstrument& one : found) serials << QString::fromStdString(one.SerialNo);
  for (const Row& row : rows_) {
    const QString typed = row.serial->currentText();
    const QSignalBlocker quiet(row.serial);
    row.serial->clear();
    row.serial->addItems(serials);
    row.serial->setEditText(typed);
  }
  const std::string model = form_.Setup().ModelName;
  std::string text =
      found.empty() ? Catalogue().GetResString(TextId::NoneOfModelFound, {model})
                    : Catalogue().GetResString(TextId::InstrumentsFound,
                                               {model, serials.join(QStringLiteral(", ")).toStdString()});
  if (found.empty() && !session_.Gp().LibraryProblem().empty()) text += "\n" + session_.Gp().LibraryProblem();
  found_->setText(QString::fromStdString(text));
}

void FrmDlgSetup::ChooseModel(int model) {
  form_.ChooseModel(model);
  for (const Row& row : rows_) row.result->clear();
  ShowRows();
  if (SetupForm::OfModel(session_.Gp().Found(), session_.Definition().InterfaceOf(model)).empty()) {
    Search();
  } else {
    form_.OfferFound(session_.Gp().Found());
    ShowFound();
    ShowRows();
  }
}

void FrmDlgSetup::Search() {
  if (busy_) return;
  const QScopedValueRollback<bool> busy(busy_, true);
  const BlockingCall call(*found_, Caption(TextId::SearchingInstruments));
  session_.SearchInstruments(form_.Setup().ModelName);
  form_.OfferFound(session_.Gp().Found());
  ShowFound();
  ShowRows();
}

void FrmDlgSetup::Test(int row) {
  if (busy_) return;
  const QScopedValueRollback<bool> busy(busy_, true);
  QLabel& result = *rows_[static_cast<std::size_t>(row)].result;
  const BlockingCall call(result, Caption(TextId::AskingInstrument));
  const auto test = session_.TestInstrument(form_.Setup(), row);
  result.setText(test ? QString::fromStdString(test->Text) : QString());
  result.setVisible(test.has_value());
  FitHeight();
}

void FrmDlgSetup::Browse() {
  const auto path = files_.ChooseOpen(Text(TextId::ResponseFilter));
  if (path && !path->empty()) responses_->setText(QString::fromStdString(*path));
}

bool FrmDlgSetup::CheckRows() {
  if (const auto fault = form_.Check()) {
    Refuse(fault->Refusal, *rows_[static_cast<std::size_t>(fault->Row)].serial);
    return false;
  }
  SystemSettings part = form_.Setup();
  for (int count = 1; count <= form_.Count(); ++count) {
    part.InstrumentCount = static_cast<std::int16_t>(count);
    const auto message = session_.CheckSetup(part);
    if (!message) continue;
    const Row& row = rows_[static_cast<std::size_t>(count - 1)];
    QWidget* reachedBy = row.address;
    if (form_.ReachedBy(count - 1) == SetupForm::Reached::BySerial) reachedBy = row.serial;
    Refuse({*message, {}}, *message == TextId::TooManyChannels ? *row.channels : *reachedBy);
    return false;
  }
  return true;
}

bool FrmDlgSetup::CheckWhole() {
  if (busy_ || !CheckRows()) return false;
  const QScopedValueRollback<bool> busy(busy_, true);
  ShowNote(NoticeLevel::Information, Text(TextId::ApplyingSetup));
  if (responseFile_ != nullptr) std::swap(*responseFile_, chosenFile_);
  const bool taken = session_.ApplySetup(form_.Setup());
  if (!taken && responseFile_ != nullptr) std::swap(*responseFile_, chosenFile_);
  ShowNote(NoticeLevel::Information, {});
  return taken;
}

void FrmDlgSetup::reject() {
  if (!busy_) FormDialog::reject();
}

}  // namespace corlune
