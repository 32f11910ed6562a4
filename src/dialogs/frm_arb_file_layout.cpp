// FrmArbFile: its parts and where they stand.
#include <algorithm>

#include <QFontMetrics>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include "dialogs/frm_arb_file.h"
#include "dialogs/waveform_table.h"

namespace corlune {

namespace {

constexpr int kFirstRows = 12;  // rows of the grid at least
constexpr int kFileWidth = 34;  // digits of the file column at least
constexpr int kCellPad = 14;    // pixels at 96 dpi beside a text
constexpr int kProgressSteps = 1000;

}  // namespace

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

}  // namespace corlune
