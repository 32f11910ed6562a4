#include "dialogs/frm_arb_file.h"

#include <algorithm>

#include <QCollator>
#include <QFontMetrics>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>
#include <QVBoxLayout>

#include "dialogs/wave_preview.h"
#include "dialogs/waveform_table.h"
#include "editing/window_commands.h"
#include "view/theme.h"

namespace corlune {

namespace {

constexpr int kQuiet = 60;      // ms without another number before its file is read
constexpr int kFirstRows = 12;  // rows of the grid in the first size
constexpr int kFileWidth = 34;  // digits of the file column in the first size
constexpr int kCellPad = 14;    // pixels at 96 dpi beside a text
constexpr int kProgressSteps = 1000;

}  // namespace

FrmArbFile::FrmArbFile(const ArbFileParts& parts, QWidget* parent)
    : FormDialog(parts.session.Catalogue(), parts.prompts,
                 {"FrmArbFile", TextId::ArbTitle, TextId::ButtonClose, TextId::ArbCancel}, parent),
      parts_(parts),
      form_(parts.form),
      table_(new WaveformTable(form_, Catalogue(), this)),
      grid_(MakeGrid()),
      preview_(new WavePreview(Caption(TextId::ArbPreviewName), this)) {
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
  connect(&count_, &QTimer::timeout, this, [this] { Count(); });
  quiet_.setSingleShot(true);
  connect(&quiet_, &QTimer::timeout, this, [this] { ReadPreview(); });
  FitColumns();
  Select(1);
  ShowMemory();
  ShowStates();
  count_.start(0);
}

FrmArbFile::~FrmArbFile() = default;

QTableView* FrmArbFile::MakeGrid() {
  auto* grid = new QTableView(this);
  grid->setObjectName(QStringLiteral("grdArb"));
  grid->setModel(table_);
  grid->setAccessibleName(windowTitle());
  grid->setSelectionBehavior(QAbstractItemView::SelectRows);
  grid->setSelectionMode(QAbstractItemView::ExtendedSelection);
  grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grid->setTabKeyNavigation(false);
  grid->setWordWrap(false);
  grid->setTextElideMode(Qt::ElideLeft);  // the end of a path names the file
  grid->setAcceptDrops(true);
  grid->setDragDropMode(QAbstractItemView::DropOnly);
  grid->setDropIndicatorShown(true);
  grid->verticalHeader()->hide();
  grid->horizontalHeader()->setHighlightSections(false);
  grid->installEventFilter(this);
  connect(grid, &QTableView::doubleClicked, this, [this] { ChooseFiles(); });
  return grid;
}

// By what can stand in the columns, so that 128 rows need not be measured.
void FrmArbFile::FitColumns() {
  const QFontMetrics metrics = grid_->fontMetrics();
  const int pad = kCellPad * logicalDpiX() / 96;
  const std::array<QStringList, WaveformTable::kColumns> samples{
      QStringList{QStringLiteral("128")},
      {form_.Channels() > 1 ? QStringLiteral("CH1 CH2") : QStringLiteral("CH1")},
      {},
      Captions({TextId::ArbFormArray, TextId::ArbFormPairs}),
      QStringList{QStringLiteral("524,288"), Caption(TextId::ArbCounting)},
      Captions({TextId::ArbPlaceFile, TextId::ArbPlaceInstrument, TextId::ArbPlaceBoth,
                TextId::ArbPlaceNotSent, TextId::ArbPlaceChanged})};
  QHeaderView* header = grid_->horizontalHeader();
  int all = metrics.horizontalAdvance(QLatin1Char('0')) * kFileWidth;
  for (int column = 0; column < WaveformTable::kColumns; ++column) {
    if (column == WaveformTable::kFile) continue;
    int width = header->sectionSizeHint(column);
    for (const QString& text : samples.at(static_cast<std::size_t>(column))) {
      width = std::max(width, metrics.horizontalAdvance(text) + pad);
    }
    if (column == WaveformTable::kPlace) width += metrics.height() + pad;  // the mark
    grid_->setColumnWidth(column, width);
    all += width;
  }
  header->setSectionResizeMode(WaveformTable::kFile, QHeaderView::Stretch);
  const int row = metrics.height() + kCellPad / 2 * logicalDpiY() / 96;
  grid_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  grid_->verticalHeader()->setDefaultSectionSize(row);
  grid_->setMinimumSize(all, row * (kFirstRows + 1));
}

QWidget* FrmArbFile::MakeButtons() {
  auto* side = new QWidget(this);
  auto* rows = new QVBoxLayout(side);
  rows->setContentsMargins(0, 0, 0, 0);
  const auto frame = [&](TextId caption) {
    auto* box = new QGroupBox(Caption(caption), side);
    rows->addWidget(box);
    return new QVBoxLayout(box);
  };
  const auto add = [&](QVBoxLayout* box, const char* name, TextId caption, TextId tip,
                       std::function<void()> pressed) {
    QPushButton* button = MakeButton(name, caption, std::move(pressed));
    button->setToolTip(Caption(tip));
    button->setAccessibleDescription(Caption(tip));
    box->addWidget(button);
    return button;
  };
  QVBoxLayout* file = frame(TextId::ArbFile);
  specify_ = add(file, "cmdFile", TextId::ArbSpecifyFile, TextId::ArbSpecifyTip, [this] { ChooseFiles(); });
  removeFile_ =
      add(file, "cmdFileClear", TextId::ArbClearRow, TextId::ArbClearFileTip, [this] { RemoveFiles(); });
  QVBoxLayout* instrument = frame(TextId::ArbTransferFrame);
  for (const WaveformAction action : form_.Actions()) {
    switch (action) {
      case WaveformAction::Transfer:
        transfer_ = add(instrument, "cmdRmt_0", TextId::ArbTransfer, TextId::ArbTransferTip,
                        [this] { Transfer(form_.WithFile(Selected())); });
        transferUsed_ = add(instrument, "cmdRmtUsed", TextId::ArbTransferUsed, TextId::ArbTransferTip,
                            [this] { Transfer(form_.UsedToSend()); });
        break;
      case WaveformAction::Clear:
        clear_ = add(instrument, "cmdRmt_1", TextId::ArbClearMemory, TextId::ArbClearTip,
                     [this] { Clear(Selected()); });
        break;
      case WaveformAction::ClearAll:
        clearAll_ = add(instrument, "cmdAllClear", TextId::ArbClearAll, TextId::ArbClearAllTip,
                        [this] { Clear(AllArbNumbers()); });
        break;
      case WaveformAction::Update:
        update_ =
            add(instrument, "cmdUpdate", TextId::ButtonUpdate, TextId::ArbUpdateTip, [this] { Update(); });
        break;
    }
  }
  clearMemory_ =
      add(instrument, "cmdMemory", TextId::ArbMemoryTitle, TextId::ArbMemoryTitle, [this] { ClearMemory(); });
  clearMemory_->setText(clearMemory_->text() + QStringLiteral("..."));
  return side;
}

QWidget* FrmArbFile::MakeMemory() {
  auto* side = new QWidget(this);
  auto* rows = new QVBoxLayout(side);
  rows->setContentsMargins(0, 0, 0, 0);
  for (int channel = 0; channel < form_.Channels(); ++channel) {
    MemoryBar bar{new QProgressBar(side), new QLabel(side)};
    bar.bar->setObjectName(QStringLiteral("barMemory_%1").arg(channel));
    bar.bar->setRange(0, kWaveformMemory);
    bar.bar->setTextVisible(false);
    bar.text->setWordWrap(true);
    rows->addWidget(bar.text);
    rows->addWidget(bar.bar);
    memory_.push_back(bar);
  }
  return side;
}

QWidget* FrmArbFile::MakeProgress() {
  progress_ = new QWidget(this);
  auto* row = new QHBoxLayout(progress_);
  row->setContentsMargins(0, 0, 0, 0);
  progressText_ = new QLabel(progress_);
  progressText_->setObjectName(QStringLiteral("labProgress"));
  progressBar_ = new QProgressBar(progress_);
  progressBar_->setObjectName(QStringLiteral("barProgress"));
  progressBar_->setRange(0, kProgressSteps);
  progressBar_->setTextVisible(false);
  end_ = MakeButton("cmdEnd", TextId::ButtonCancelTransfer, [this] { EndWork(); });
  row->addWidget(progressText_, 1);
  row->addWidget(progressBar_, 1);
  row->addWidget(end_);
  // What stands above it does not jump.
  QSizePolicy policy = progress_->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  progress_->setSizePolicy(policy);
  progress_->hide();
  return progress_;
}

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
      table_->RefreshAll();
      ShowStates();
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
  // "wave2" comes before "wave10".
  QCollator order;
  order.setNumericMode(true);
  order.setCaseSensitivity(Qt::CaseInsensitive);
  std::vector<std::string> sorted = paths;
  std::sort(sorted.begin(), sorted.end(), [&](const std::string& one, const std::string& other) {
    return order.compare(QString::fromStdString(one), QString::fromStdString(other)) < 0;
  });
  const WaveformForm::Assigned assigned = form_.Assign(number, sorted);
  for (const int changed : assigned.Numbers) table_->Refresh(changed);
  if (!assigned.Numbers.empty()) {
    Select(assigned.Numbers.front());
    for (const int changed : assigned.Numbers) {
      grid_->selectionModel()->select(table_->index(changed - 1, 0),
                                      QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
    grid_->scrollTo(table_->index(assigned.Numbers.back() - 1, 0));
  }
  count_.start(0);
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
    count_.stop();
    return;
  }
  for (int number = 1; number <= kArbNumbers; ++number) {
    if (form_.Path(number) == form_.Path(counted)) table_->Refresh(number);
  }
  ShowMemory();
}

void FrmArbFile::ShowMemory() {
  for (std::size_t channel = 0; channel < memory_.size(); ++channel) {
    const WaveformMemory memory = form_.Memory(static_cast<int>(channel));
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
    quiet_.stop();
    preview_->Show(nullptr, QString::fromStdString(
                                Catalogue().GetResString(TextId::SignalNoFile, {std::to_string(number)})));
  } else if (!row.Problem.empty()) {
    quiet_.stop();
    preview_->Show(
        nullptr, QString::fromStdString(Catalogue().GetResString(
                     TextId::SignalFileRefused, {std::to_string(number), form_.Path(number), row.Problem})));
  } else if (cache_.Find(form_.FileOf(number))) {
    ReadPreview();
  } else {
    preview_->Show(nullptr, {});
    quiet_.start(kQuiet);
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
  if (event->type() == QEvent::FontChange) FitColumns();
  FormDialog::changeEvent(event);
}

bool FrmArbFile::eventFilter(QObject* watched, QEvent* event) {
  if (watched == grid_ && event->type() == QEvent::KeyPress) {
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
  return FormDialog::eventFilter(watched, event);
}

}  // namespace corlune
