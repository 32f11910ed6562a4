#include "ui/grid_panel.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QSplitter>
#include <QTabWidget>
#include <QVBoxLayout>

#include "core/files.h"
#include "ui/grid_control.h"
#include "ui/grid_menu.h"

namespace corlune {

namespace {

constexpr int kSpacing = 4;        // pixels between the controls
constexpr int kRowAddBelow = 550;  // twips from the top of the last step row to CmdRowAdd
constexpr int kRowAddRows = 12;    // from this number of rows on CmdRowAdd stays where it is
constexpr int kTabFrame = 3;       // pixels between a tab page and the edge of the tab control

}  // namespace

class GridPanel::Impl {
 public:
  Impl(GridPanel& panel, SequenceEditor& editor, Prompts& prompts);

  void Build();
  void Connect();
  void BuildSide(QWidget& side);
  QPushButton* MakeButton(const char* name, const QString& caption, GridCommand command);
  void Run(GridCommand command);
  EditOutcome Perform(GridCommand command);
  void ShowMenu(const QPoint& global);
  void Refresh();
  void PlaceRowAdd();
  void ColorRowAdd();
  void SyncScroll(GridTable* from, int value);
  void ShowSameRows(int tab);
  void LimitWidths();
  void ShowFileProblem(TextId id, const std::string& path, const std::string& reason);
  QString Text(TextId id) const {
    return QString::fromStdString(editor_.Views().Catalogue().GetResString(id));
  }

  GridPanel& panel_;
  SequenceEditor& editor_;
  Prompts& prompts_;
  GridModel commonModel_;
  std::array<GridModel, MAX_CHANNELS> channelModels_;
  GridModel branchModel_;
  GridTables tables_;
  QSplitter* split_ = nullptr;
  QWidget* top_ = nullptr;
  QWidget* rowAddStrip_ = nullptr;
  QWidget* side_ = nullptr;
  std::array<QVBoxLayout*, MAX_CHANNELS> pages_{};
  QPushButton* rowAdd_ = nullptr;
  QPushButton* insert_ = nullptr;
  QPushButton* delete_ = nullptr;
  QPushButton* up_ = nullptr;
  QPushButton* down_ = nullptr;
  QGroupBox* branchFrame_ = nullptr;
  QLineEdit* stepNumber_ = nullptr;
  ControlStates states_;
  std::function<bool()> beforeCommand_;
  int shownTab_ = 0;
  bool syncing_ = false;
  std::unique_ptr<GridControl> control_;  // before the widgets are gone
};

GridPanel::Impl::Impl(GridPanel& panel, SequenceEditor& editor, Prompts& prompts)
    : panel_(panel),
      editor_(editor),
      prompts_(prompts),
      commonModel_(editor.Views(), GridArea::Common, 0),
      channelModels_{{{editor.Views(), GridArea::Sequence, 0}, {editor.Views(), GridArea::Sequence, 1}}},
      branchModel_(editor.Views(), GridArea::Branch, 0) {
  Build();
  control_ = std::make_unique<GridControl>(editor_, prompts_, tables_, panel_);
  Connect();
}

void GridPanel::Impl::Build() {
  auto* layout = new QVBoxLayout(&panel_);
  layout->setContentsMargins(0, 0, 0, 0);
  split_ = new QSplitter(Qt::Vertical);
  split_->setChildrenCollapsible(false);
  layout->addWidget(split_);

  top_ = new QWidget;
  auto* topLayout = new QHBoxLayout(top_);
  topLayout->setContentsMargins(0, 0, 0, 0);
  topLayout->setSpacing(kSpacing);
  tables_.Common = new GridTable(commonModel_);
  tables_.Common->setObjectName(QStringLiteral("MSFlexGrid1"));
  rowAddStrip_ = new QWidget;
  side_ = new QWidget;
  BuildSide(*side_);
  topLayout->addWidget(tables_.Common, 1);
  topLayout->addWidget(rowAddStrip_);
  topLayout->addWidget(side_);
  topLayout->addStretch(0);
  split_->addWidget(top_);

  tables_.Tabs = new QTabWidget;
  tables_.Tabs->setObjectName(QStringLiteral("SSTab1"));
  for (std::size_t channel = 0; channel < MAX_CHANNELS; ++channel) {
    auto* table = new GridTable(channelModels_[channel]);
    tables_.Channels[channel] = table;
    table->setObjectName(QStringLiteral("MSFlexGrid2_%1").arg(channel));
    auto* page = new QWidget;
    pages_[channel] = new QVBoxLayout(page);
    pages_[channel]->setContentsMargins(kTabFrame, kTabFrame, kTabFrame, kTabFrame);
    pages_[channel]->addWidget(table);
    tables_.Tabs->addTab(page, QString::fromStdString(editor_.Views().TabCaption(static_cast<int>(channel))));
  }
  split_->addWidget(tables_.Tabs);
  split_->setStretchFactor(0, 1);
  split_->setStretchFactor(1, 1);
  // Before the cursor is shown there, which scrolls only as far as it has to.
  QObject::connect(tables_.Tabs, &QTabWidget::currentChanged, &panel_,
                   [this](int tab) { ShowSameRows(tab); });
}

QPushButton* GridPanel::Impl::MakeButton(const char* name, const QString& caption, GridCommand command) {
  auto* button = new QPushButton(caption);
  button->setObjectName(QLatin1String(name));
  // A click leaves the focus in the cell; the keyboard can still reach the button.
  button->setFocusPolicy(Qt::TabFocus);
  button->setAutoDefault(false);
  button->setMinimumWidth(1);
  QObject::connect(button, &QPushButton::clicked, &panel_, [this, command] { Run(command); });
  return button;
}

void GridPanel::Impl::BuildSide(QWidget& side) {
  const bool english = editor_.Views().Catalogue().English();
  QString addRow = Text(TextId::MenuAddRow);
  addRow.truncate(addRow.indexOf(QLatin1Char('(')));
  rowAdd_ = MakeButton("CmdRowAdd", QStringLiteral("+"), GridCommand::AddRow);
  rowAdd_->setParent(rowAddStrip_);
  rowAdd_->setToolTip(addRow);
  rowAdd_->setAccessibleName(addRow);
  QObject::connect(rowAdd_, &QPushButton::pressed, &panel_, [this] { ColorRowAdd(); });
  QObject::connect(rowAdd_, &QPushButton::released, &panel_, [this] { ColorRowAdd(); });
  insert_ = MakeButton("CmdInsert", Text(TextId::ButtonInsertRow), GridCommand::InsertRow);
  delete_ = MakeButton("CmdDelete", Text(TextId::ButtonDeleteRow), GridCommand::DeleteRow);
  up_ = MakeButton("CmdUp", english ? QStringLiteral("Up") : QStringLiteral("△"), GridCommand::RowUp);
  down_ = MakeButton("CmdDown", english ? QStringLiteral("Dn") : QStringLiteral("▽"), GridCommand::RowDown);
  up_->setToolTip(Text(TextId::EditRowUp));
  up_->setAccessibleName(Text(TextId::EditRowUp));
  down_->setToolTip(Text(TextId::EditRowDown));
  down_->setAccessibleName(Text(TextId::EditRowDown));

  branchFrame_ = new QGroupBox;
  branchFrame_->setObjectName(QStringLiteral("FrmBranch"));
  branchFrame_->setAccessibleName(Text(TextId::BranchGridTitle).simplified());
  auto* branchLabel = new QLabel(Text(TextId::BranchGridTitle));
  branchLabel->setObjectName(QStringLiteral("LabBranchStep"));
  auto* stepLabel = new QLabel(Text(TextId::BranchGridStepNumber));
  stepLabel->setObjectName(QStringLiteral("LabStepNo"));
  for (QLabel* label : {branchLabel, stepLabel}) {
    label->setWordWrap(true);
    label->setMinimumWidth(1);
  }
  stepNumber_ = new QLineEdit;
  stepNumber_->setObjectName(QStringLiteral("TxtStepNo"));
  stepNumber_->setReadOnly(true);
  stepNumber_->setFocusPolicy(Qt::NoFocus);
  // Three digits; the label needs the rest.
  stepNumber_->setFixedWidth(stepNumber_->fontMetrics().horizontalAdvance(QStringLiteral("000")) +
                             3 * kSpacing);
  stepNumber_->setAccessibleName(stepLabel->text());
  tables_.Branch = new GridTable(branchModel_);
  tables_.Branch->setObjectName(QStringLiteral("MSFlexGrid3"));
  auto* branch = new QVBoxLayout(branchFrame_);
  branch->setContentsMargins(kSpacing, kSpacing, kSpacing, kSpacing);
  branch->setSpacing(kSpacing / 2);
  auto* number = new QHBoxLayout;
  number->setSpacing(kSpacing / 2);
  number->addWidget(stepLabel, 1);
  number->addWidget(stepNumber_);
  branch->addWidget(branchLabel);
  branch->addLayout(number);
  branch->addWidget(tables_.Branch, 1);

  auto* layout = new QVBoxLayout(&side);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(kSpacing);
  auto* moves = new QHBoxLayout;
  moves->addWidget(up_);
  moves->addWidget(down_);
  layout->addWidget(insert_);
  layout->addWidget(delete_);
  layout->addLayout(moves);
  layout->addWidget(branchFrame_, 1);
  layout->addStretch(0);
}

void GridPanel::Impl::Connect() {
  QObject::connect(control_.get(), &GridControl::Refreshed, &panel_, [this] { Refresh(); });
  QObject::connect(control_.get(), &GridControl::Changed, &panel_, &GridPanel::Changed);
  QObject::connect(control_.get(), &GridControl::CommandRequested, &panel_,
                   [this](GridCommand command) { Run(command); });
  QObject::connect(control_.get(), &GridControl::MenuRequested, &panel_,
                   [this](const QPoint& at) { ShowMenu(at); });
  for (GridTable* table : {tables_.Common, tables_.Channels[0], tables_.Channels[1]}) {
    QObject::connect(table->verticalScrollBar(), &QScrollBar::valueChanged, &panel_,
                     [this, table](int value) { SyncScroll(table, value); });
  }
  QObject::connect(tables_.Common, &GridTable::Moved, &panel_, [this] { PlaceRowAdd(); });
}

// The step grids show the same steps.
void GridPanel::Impl::SyncScroll(GridTable* from, int value) {
  if (syncing_) return;
  const QScopedValueRollback<bool> own(syncing_, true);
  for (GridTable* table : {tables_.Common, tables_.Channels[0], tables_.Channels[1]}) {
    if (table != from) table->verticalScrollBar()->setValue(value);
  }
}

// A grid behind another tab has no room to scroll in: it follows when its tab comes to the front.
void GridPanel::Impl::ShowSameRows(int tab) {
  const int before = std::exchange(shownTab_, std::clamp(tab, 0, MAX_CHANNELS - 1));
  if (before == shownTab_) return;
  const QScopedValueRollback<bool> own(syncing_, true);
  GridTable& table = *tables_.Channels[static_cast<std::size_t>(shownTab_)];
  const int value = tables_.Channels[static_cast<std::size_t>(before)]->verticalScrollBar()->value();
  table.doItemsLayout();
  table.verticalScrollBar()->setValue(value);
}

void GridPanel::Impl::Refresh() {
  stepNumber_->setText(
      QString::fromStdString(editor_.Views().BranchStepNumber({editor_.Cursor().CurrentRow})));
  branchFrame_->setVisible(editor_.Views().BranchVisible());
  for (GridTable* table : {tables_.Common, tables_.Channels[0], tables_.Channels[1], tables_.Branch}) {
    const GridModel& model = table->Model();
    QString name = model.Area() == GridArea::Branch ? Text(TextId::BranchGridTitle).simplified() : QString();
    if (model.Area() == GridArea::Sequence) name = tables_.Tabs->tabText(model.Channel());
    if (model.Area() == GridArea::Common) name = model.headerData(0, Qt::Horizontal).toString();
    table->setAccessibleName(name);
  }
  PlaceRowAdd();
  ColorRowAdd();
}

void GridPanel::Impl::ColorRowAdd() {
  const Color face = editor_.Views().Definition().Common.ButtonColors[rowAdd_->isDown() ? 1 : 0];
  const Color text = TextColorOn(face);
  QPalette palette = rowAdd_->palette();
  palette.setColor(QPalette::Button, {face.Red, face.Green, face.Blue});
  palette.setColor(QPalette::Active, QPalette::ButtonText, {text.Red, text.Green, text.Blue});
  palette.setColor(QPalette::Inactive, QPalette::ButtonText, {text.Red, text.Green, text.Blue});
  if (palette != rowAdd_->palette()) rowAdd_->setPalette(palette);
}

// CmdRowAdd follows the end of the grid until that would leave the grid.
void GridPanel::Impl::PlaceRowAdd() {
  if (!control_) return;
  const int rowHeight = control_->RowHeight();
  const int rows = std::min(editor_.Views().RowCount(), kRowAddRows);
  const int below = TwipsToPixels(kRowAddBelow, &panel_);
  const QSize size(rowHeight, rowHeight);
  const int lowest = rowAddStrip_->height() - size.height();
  const int top = std::clamp(rowHeight * (rows - 2) + below, 0, std::max(lowest, 0));
  rowAddStrip_->setFixedWidth(size.width());
  rowAdd_->setGeometry(QRect(QPoint(0, top), size));
}

// The common grid grows with the window until all its columns show.
void GridPanel::Impl::LimitWidths() {
  tables_.Common->setMaximumWidth(
      std::max(tables_.Common->ContentWidth(), tables_.Common->sizeHint().width()));
}

void GridPanel::Impl::Run(GridCommand command) {
  if (!StateOf(command, editor_, states_).Enabled) return;
  if (beforeCommand_ ? !beforeCommand_() : !control_->Commit()) return;
  switch (command) {
    case GridCommand::Copy:
      if (editor_.Copy()) emit panel_.Changed();
      return;
    case GridCommand::SelectAll:
      if (editor_.SelectAll()) control_->ShowCursor(false);
      emit panel_.Changed();
      return;
    case GridCommand::CopyText:
      QApplication::clipboard()->setText(QString::fromStdString(editor_.CopyText()));
      return;
    default:
      control_->CloseEditors();
      control_->Apply(Perform(command));
  }
}

EditOutcome GridPanel::Impl::Perform(GridCommand command) {
  switch (command) {
    case GridCommand::Paste:
      return editor_.Paste();
    case GridCommand::Initialize:
      return editor_.Initialize();
    case GridCommand::AddRow:
      return editor_.AddRow();
    case GridCommand::InsertRow:
      return editor_.InsertRow();
    case GridCommand::DeleteRow:
      return editor_.DeleteRow();
    case GridCommand::RowUp:
      return editor_.RowUp();
    case GridCommand::RowDown:
      return editor_.RowDown();
    case GridCommand::Undo:
      return editor_.Undo();
    case GridCommand::Redo:
      return editor_.Redo();
    case GridCommand::PasteText:
      return editor_.PasteText(QApplication::clipboard()->text().toStdString());
    case GridCommand::DuplicateRows:
      return editor_.DuplicateRows();
    case GridCommand::FillDown:
      return editor_.FillDown();
    case GridCommand::Copy:
    case GridCommand::SelectAll:
    case GridCommand::CopyText:
      break;
  }
  return {};
}

void GridPanel::Impl::ShowMenu(const QPoint& global) {
  if (!control_->Commit()) return;
  QMenu menu(&panel_);
  GridMenuActions actions;
  actions.run = [this](GridCommand command) { Run(command); };
  actions.importCsv = [this] { emit panel_.ImportRequested(); };
  actions.exportCsv = [this] { emit panel_.ExportRequested(); };
  FillGridMenu(menu, editor_, states_, actions);
  menu.exec(global);
}

void GridPanel::Impl::ShowFileProblem(TextId id, const std::string& path, const std::string& reason) {
  ShowMessage(prompts_, editor_.Views().Catalogue(), id, PromptIcon::Exclamation, PromptButtons::Ok,
              {path, reason});
}

GridPanel::GridPanel(SequenceEditor& editor, Prompts& prompts, QWidget* parent)
    : QWidget(parent), impl_(std::make_unique<Impl>(*this, editor, prompts)) {
  Rebuild();
}

GridPanel::~GridPanel() {
  // The widgets show the models, so they go first; the control uses both.
  impl_->control_.reset();
  delete impl_->split_;
}

void GridPanel::Rebuild() {
  impl_->control_->Rebuild();
  impl_->LimitWidths();
}

void GridPanel::Apply(const EditOutcome& outcome) {
  impl_->control_->Apply(outcome);
  if (outcome.WholeWindow) impl_->LimitWidths();
}

bool GridPanel::CommitEntry(EntryEnd end) {
  return impl_->control_->Commit(end);
}

void GridPanel::SetBeforeCommand(std::function<bool()> takeEntries) {
  impl_->beforeCommand_ = std::move(takeEntries);
}

void GridPanel::FocusCell() {
  impl_->control_->FocusCell();
}

void GridPanel::HideEditors() {
  impl_->control_->CloseEditors();
}

void GridPanel::ShowStates(const ControlStates& states) {
  impl_->states_ = states;
  const auto show = [](QPushButton* button, const ControlState& state) {
    button->setVisible(state.Visible);
    button->setEnabled(state.Enabled);
  };
  show(impl_->rowAdd_, states.RowAdd);
  show(impl_->insert_, states.Insert);
  show(impl_->delete_, states.Delete);
  show(impl_->up_, states.Up);
  show(impl_->down_, states.Down);
  impl_->control_->SetStates(states);
}

void GridPanel::HighlightRow(GridRow row, bool on) {
  impl_->control_->HighlightRow(row, on);
}

void GridPanel::ScrollTo(GridRow top) {
  impl_->control_->ScrollTo(top);
}

void GridPanel::SelectFirstCell() {
  impl_->control_->SelectFirstCell();
}

void GridPanel::ReduceSelection() {
  impl_->control_->ReduceSelection();
}

void GridPanel::SetWidths(int commonTwips, int channelTwips, int tabTwips) {
  const int tab = TwipsToPixels(tabTwips, this);
  const int common = TwipsToPixels(commonTwips, this);
  // In a panel as wide as the tab control the common grid has its width when the rest beside it has this one.
  impl_->tables_.Common->PreferWidth(common);
  const int side = tab - common - impl_->rowAddStrip_->width() - 2 * kSpacing;
  impl_->side_->setFixedWidth(std::max(side, 1));
  impl_->LimitWidths();
  const int margins = std::max((tab - TwipsToPixels(channelTwips, this)) / 2 - kTabFrame, 0);
  for (QVBoxLayout* page : impl_->pages_) page->setContentsMargins(margins, kTabFrame, margins, kTabFrame);
  for (GridTable* table : impl_->tables_.Channels) table->PreferWidth(TwipsToPixels(channelTwips, this));
}

void GridPanel::EditCommand(int index) {
  if (index >= 0 && index <= static_cast<int>(GridCommand::RowDown)) {
    impl_->Run(static_cast<GridCommand>(index));
  }
}

void GridPanel::Undo() {
  impl_->Run(GridCommand::Undo);
}

void GridPanel::Redo() {
  impl_->Run(GridCommand::Redo);
}

void GridPanel::CopyText() {
  impl_->Run(GridCommand::CopyText);
}

void GridPanel::PasteText() {
  impl_->Run(GridCommand::PasteText);
}

void GridPanel::DuplicateRows() {
  impl_->Run(GridCommand::DuplicateRows);
}

void GridPanel::FillDown() {
  impl_->Run(GridCommand::FillDown);
}

void GridPanel::ImportCsv(const std::string& path) {
  if (!impl_->control_->Commit()) return;
  const std::optional<std::string> bytes = ReadWholeFile(path);
  if (!bytes) {
    impl_->ShowFileProblem(TextId::CannotReadFile, path, {});
    return;
  }
  impl_->control_->CloseEditors();
  Apply(impl_->editor_.ImportCsv(DecodeText(*bytes)));
}

void GridPanel::ExportCsv(const std::string& path) {
  if (!impl_->control_->Commit()) return;
  std::string error;
  if (!ReplaceFile(path, impl_->editor_.ExportCsv(), &error)) {
    impl_->ShowFileProblem(TextId::CannotWriteFile, path, error);
  }
}

void GridPanel::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  impl_->PlaceRowAdd();
}

void GridPanel::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
    impl_->control_->LayOut();
    impl_->LimitWidths();
  }
}

bool GridPanel::event(QEvent* event) {
  // Another screen can have another resolution.
  if (event->type() == QEvent::ScreenChangeInternal) {
    impl_->control_->LayOut();
    impl_->LimitWidths();
  }
  return QWidget::event(event);
}

}  // namespace corlune
