#include "dialogs/frm_arb_file.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

#include "dialogs/wave_preview.h"
#include "dialogs/waveform_table.h"
#include "editing/window_commands.h"
#include "view/theme.h"

namespace corlune {

namespace {

constexpr int kQuiet = 60;  // ms without another number before its file is read

}  // namespace

FrmArbFile::FrmArbFile(const ArbFileParts& parts, QWidget* parent)
    : FormDialog(parts.session.Catalogue(), parts.prompts,
                 {"FrmArbFile", TextId::ArbTitle, TextId::ButtonClose, TextId::ArbCancel}, parent),
      parts_(parts),
      form_(parts.form),
      table_(new WaveformTable(form_, Catalogue(), this)),
      grid_(MakeGrid()),
      preview_(new WavePreview(Caption(TextId::ArbPreviewName), this)),
      count_(new QTimer(this)),
      quiet_(new QTimer(this)) {
  auto* whole = new QHBoxLayout;
  auto* left = new QVBoxLayout;
  left->addWidget(grid_, 1);
  left->addWidget(preview_);
  whole->addLayout(left, 1);
  auto* side = new QVBoxLayout;
  side->addWidget(MakeButtons());
  side->addWidget(MakeMemory());
  side->addStretch();
  whole->addLayout(side);
  Body().addLayout(whole, 1);
  Body().addWidget(MakeProgress());
  AddSafetyKeys();

  table_->OnDrop([this](int number, const std::vector<std::string>& paths) { Assign(number, paths); });
  connect(grid_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] { ShowPreview(); });
  connect(grid_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { ShowStates(); });
  connect(count_, &QTimer::timeout, this, [this] { Count(); });
  quiet_->setObjectName(QStringLiteral("tmrPreview"));
  quiet_->setSingleShot(true);
  connect(quiet_, &QTimer::timeout, this, [this] { ReadPreview(); });
  FitColumns();
  Select(1);
  ShowMemory();
  ShowStates();
  count_->start(0);
}

FrmArbFile::~FrmArbFile() = default;

// What makes an instrument safe that may still run has its keys here, too.
void FrmArbFile::AddSafetyKeys() {
  for (const auto& [command, item] :
       {std::pair{Command::Stop, Run::Stop}, std::pair{Command::OutputOff, Run::OutputOff}}) {
    auto* key = new QShortcut(QKeySequence(QString::fromUtf8(RowOf(command).keys)), this);
    connect(key, &QShortcut::activated, this, [this, run = item] {
      const AppState& state = parts_.session.State();
      if (!state.MayStillRun && !(run == Run::OutputOff && state.OutputInDoubt)) return;
      ended_ = true;
      const bool connected = state.Online == 1;
      parts_.makeSafe(run);
      if (!connected && state.Online == 1) form_.ForgetInstrument();
      ShowAll();
    });
  }
}

std::vector<int> FrmArbFile::Selected() const {
  std::vector<int> numbers;
  for (const QModelIndex& index : grid_->selectionModel()->selectedRows()) {
    numbers.push_back(WaveformTable::NumberOf(index));
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

int FrmArbFile::Current() const {
  return WaveformTable::NumberOf(grid_->currentIndex());
}

void FrmArbFile::Select(int number) {
  grid_->setCurrentIndex(table_->index(number - 1, WaveformTable::kFile));
}

void FrmArbFile::ChooseFiles() {
  if (working_) return;
  const std::vector<std::string> paths =
      parts_.files.ChooseOpenSeveral(Text(TextId::ArbBothFilter) + "|" + Text(TextId::ArbFileFilter));
  if (!paths.empty()) Assign(Current(), paths);
}

void FrmArbFile::Assign(int number, const std::vector<std::string>& paths) {
  if (working_) return;
  const WaveformForm::Assigned assigned = form_.Assign(number, paths);
  for (const int changed : assigned.Numbers) table_->Refresh(changed);
  if (!assigned.Numbers.empty()) {
    Select(assigned.Numbers.front());
    for (const int changed : assigned.Numbers) {
      grid_->selectionModel()->select(table_->index(changed - 1, 0),
                                      QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
    grid_->scrollTo(table_->index(assigned.Numbers.back() - 1, 0));
  }
  count_->start(0);
  ShowMemory();
  ShowStates();
  ShowPreview();
  if (!assigned.Problem.empty()) {
    MessageRequest request;
    request.text = assigned.Problem;
    request.icon = PromptIcon::Exclamation;
    Messages().Message(request);
  }
}

void FrmArbFile::RemoveFiles() {
  if (working_) return;
  const std::vector<int> numbers = Selected();
  form_.RemoveFiles(numbers);
  for (const int number : numbers) table_->Refresh(number);
  ShowMemory();
  ShowStates();
  ShowPreview();
}

void FrmArbFile::Count() {
  const int counted = form_.CountNext();
  if (counted == 0) {
    count_->stop();
    return;
  }
  for (int number = 1; number <= kArbNumbers; ++number) {
    if (form_.Path(number) == form_.Path(counted)) table_->Refresh(number);
  }
  ShowMemory();
}

void FrmArbFile::ShowAll() {
  table_->RefreshAll();
  count_->start(0);
  ShowMemory();
  ShowPreview();
  ShowStates();
}

void FrmArbFile::ShowMemory() {
  for (std::size_t channel = 0; channel < memory_.size(); ++channel) {
    const ChannelMemory memory = form_.Memory(static_cast<int>(channel));
    const MemoryBar& bar = memory_[channel];
    bar.text->setText(QString::fromStdString(memory.Text));
    bar.bar->setValue(static_cast<int>(std::min<std::int64_t>(memory.Used, kWaveformMemory)));
    bar.bar->setAccessibleName(bar.text->text());
    const std::string used = GroupedNumber(memory.Used);
    bar.bar->setToolTip(QString::fromStdString(
        Catalogue().GetResString(TextId::ArbMemoryTip, {used, GroupedNumber(kWaveformMemory)})));
    QPalette colors = palette();
    if (memory.Check != ArbCheck::Passed) {
      colors.setColor(QPalette::Highlight, LineOn(colors.color(QPalette::Base), QColor(Qt::red)));
    }
    bar.bar->setPalette(colors);
  }
}

void FrmArbFile::ShowStates() {
  const bool online = parts_.session.State().Online == 1;
  const bool free = !working_;
  const std::vector<int> selected = Selected();
  const bool withFile = !form_.WithFile(selected).empty();
  const auto set = [](QPushButton* button, bool enabled) {
    if (button) button->setEnabled(enabled);
  };
  set(specify_, free);
  set(removeFile_, free && withFile);
  set(transfer_, free && online && withFile);
  set(transferUsed_, free && online && !form_.UsedWithFile().empty());
  set(clear_, free && online && !selected.empty());
  for (QPushButton* button : {clearAll_, update_, clearMemory_}) set(button, free && online);
  OkButton().setEnabled(free);
  CancelButton().setEnabled(free);
  end_->setEnabled(working_ && !ended_);
}

void FrmArbFile::ShowPreview() {
  const int number = Current();
  const WaveformRow& row = table_->Row(number);
  if (form_.Path(number).empty()) {
    quiet_->stop();
    preview_->Show(nullptr, QString::fromStdString(
                                Catalogue().GetResString(TextId::SignalNoFile, {std::to_string(number)})));
  } else if (!row.Problem.empty()) {
    quiet_->stop();
    preview_->Show(
        nullptr, QString::fromStdString(Catalogue().GetResString(
                     TextId::SignalFileRefused, {std::to_string(number), form_.Path(number), row.Problem})));
  } else if (cache_.Find(form_.FileOf(number))) {
    ReadPreview();
  } else {
    preview_->Show(nullptr, {});
    quiet_->start(kQuiet);
  }
}

void FrmArbFile::ReadPreview() {
  const int number = Current();
  const std::string path = form_.FileOf(number);
  std::shared_ptr<const WaveFile> file = cache_.Find(path);
  if (!file) file = cache_.Read(path);
  if (file->Wave) {
    const std::string text = "ARB " + std::to_string(number) + ": " + form_.PeakText(*file->Wave);
    preview_->Show(std::move(file), QString::fromStdString(text));
  } else {
    preview_->Show(nullptr, QString::fromStdString(Catalogue().GetResString(
                                TextId::SignalFileRefused, {std::to_string(number), form_.Path(number),
                                                            ReasonText(file->Reason, Catalogue())})));
  }
}

void FrmArbFile::accept() {
  if (working_) return EndWork();
  FormDialog::accept();
}

void FrmArbFile::reject() {
  if (working_) return EndWork();
  FormDialog::reject();
}

void FrmArbFile::showEvent(QShowEvent* event) {
  grid_->setFocus();
  FormDialog::showEvent(event);
}

void FrmArbFile::changeEvent(QEvent* event) {
  FormDialog::changeEvent(event);
  if (event->type() == QEvent::FontChange) FitColumns();
  // Another program may have written the files meanwhile.
  if (event->type() == QEvent::ActivationChange && isActiveWindow() && !working_) ShowAll();
}

bool FrmArbFile::eventFilter(QObject* watched, QEvent* event) {
  if (watched != grid_) return FormDialog::eventFilter(watched, event);
  if (event->type() == QEvent::KeyPress) {
    switch (static_cast<QKeyEvent*>(event)->key()) {
      case Qt::Key_Return:
      case Qt::Key_Enter:
      case Qt::Key_F2:
        ChooseFiles();
        return true;
      case Qt::Key_Delete:
        RemoveFiles();
        return true;
      default:
        break;
    }
  }
  return false;
}

}  // namespace corlune
