#include "ui/grid_panel.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QHBoxLayout>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QVBoxLayout>

#include "core/files.h"
#include "ui/channel_tabs.h"
#include "ui/form_style.h"
#include "ui/grid_control.h"
#include "ui/grid_side.h"
#include "ui/grid_split.h"
#include "view/command_menu.h"
#include "view/theme.h"

namespace corlune {

namespace {

constexpr int kSpacing = 4;        // pixels between the controls
constexpr int kRowAddBelow = 550;  // twips from the top of the last step row to CmdRowAdd
constexpr int kRowAddRows = 12;    // from this number of rows on CmdRowAdd stays where it is
constexpr int kWindowSides = 16;   // pixels by which the window is wider than the panel

}  // namespace

class GridPanel::Impl {
 public:
  Impl(GridPanel& panel, SequenceEditor& editor, Prompts& prompts);

  void Build();
  void Connect();
  void BuildRowAdd();
  void Run(Command command);
  void ShowMenu(const QPoint& global);
  void Refresh();
  void PlaceRowAdd();
  void ColorRowAdd();
  void SyncScroll(GridTable* from, int value);
  void ShowSameRows(int tab);
  void FitWidths();
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
  GridSplit* split_ = nullptr;
  QWidget* top_ = nullptr;
  QWidget* rowAddStrip_ = nullptr;
  GridSide* side_ = nullptr;
  RowButton* rowAdd_ = nullptr;
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
  top_ = new QWidget;
  auto* topLayout = new QHBoxLayout(top_);
  topLayout->setContentsMargins(0, 0, 0, 0);
  topLayout->setSpacing(kSpacing);
  tables_.Common = new GridTable(commonModel_);
  tables_.Common->setObjectName(QStringLiteral("MSFlexGrid1"));
  BuildRowAdd();
  side_ = new GridSide(editor_.Views(), branchModel_, [this](Command command) { Run(command); });
  tables_.Branch = &side_->Branch();
  topLayout->addWidget(tables_.Common, 1);
  topLayout->addWidget(rowAddStrip_);
  topLayout->addWidget(side_);
  topLayout->addStretch(0);

  std::array<QWidget*, MAX_CHANNELS> grids{};
  for (std::size_t channel = 0; channel < MAX_CHANNELS; ++channel) {
    auto* table = new GridTable(channelModels_[channel]);
    tables_.Channels[channel] = table;
    table->setObjectName(QStringLiteral("MSFlexGrid2_%1").arg(channel));
    grids[channel] = table;
  }
  tables_.Tabs = new ChannelTabs(grids);
  tables_.Tabs->setObjectName(QStringLiteral("SSTab1"));
  split_ = new GridSplit(top_, tables_);
  layout->addWidget(split_);
  // Before the cursor is shown there, which scrolls only as far as it has to.
  QObject::connect(tables_.Tabs, &ChannelTabs::currentChanged, &panel_,
                   [this](int tab) { ShowSameRows(tab); });
}

void GridPanel::Impl::BuildRowAdd() {
  rowAddStrip_ = new QWidget;
  rowAdd_ = new RowButton(
      "CmdRowAdd", QStringLiteral("+"), [this] { Run(Command::AddRow); }, rowAddStrip_);
  const QString addRow =
      QString::fromStdString(PlainCaption(editor_.Views().Catalogue().GetResString(TextId::MenuAddRow)));
  rowAdd_->setToolTip(addRow);
  rowAdd_->setAccessibleName(addRow);
  QObject::connect(rowAdd_, &QPushButton::pressed, &panel_, [this] { ColorRowAdd(); });
  QObject::connect(rowAdd_, &QPushButton::released, &panel_, [this] { ColorRowAdd(); });
}

void GridPanel::Impl::Connect() {
  QObject::connect(control_.get(), &GridControl::Refreshed, &panel_, [this] { Refresh(); });
  QObject::connect(control_.get(), &GridControl::Changed, &panel_, &GridPanel::Changed);
  QObject::connect(control_.get(), &GridControl::NoticeGiven, &panel_, &GridPanel::NoticeGiven);
  QObject::connect(control_.get(), &GridControl::CommandRequested, &panel_,
                   [this](Command command) { Run(command); });
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
  side_->Refresh();
  for (GridTable* table : {tables_.Common, tables_.Channels[0], tables_.Channels[1], tables_.Branch}) {
    const GridModel& model = table->Model();
    QString name = model.Area() == GridArea::Branch ? Text(TextId::BranchGridTitle).simplified() : QString();
    if (model.Area() == GridArea::Sequence) name = tables_.Tabs->tabText(model.Channel());
    if (model.Area() == GridArea::Common) name = Text(TextId::GridCommonArea);
    table->setAccessibleName(name);
  }
  PlaceRowAdd();
  ColorRowAdd();
}

void GridPanel::Impl::ColorRowAdd() {
  const Color face = editor_.Views().Definition().Common.ButtonColors[rowAdd_->isDown() ? 1 : 0];
  ColorButton(*rowAdd_, panel_.palette(), face);
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

// The widths of the two styles and between them; beyond the normal one the side keeps that of its texts, and
// the grids take what their columns can use.
void GridPanel::Impl::FitWidths() {
  // Back from pixels to twips by the factor that TwipsToPixels uses.
  constexpr int kProbe = 15000;
  const int pixels = std::max(1, TwipsToPixels(kProbe, &panel_));
  const int width = std::max(panel_.width(), 1);
  const auto window = static_cast<int>(static_cast<long long>(width + kWindowSides) * kProbe / pixels);
  const FormStyle style = StyleForWidth(window);
  const auto inPixels = [this](int twips) { return TwipsToPixels(twips, &panel_); };
  const int tab = inPixels(style.Tabs);
  const int common = inPixels(style.CommonGrid);
  tables_.Common->PreferWidth(common);
  tables_.Common->setMaximumWidth(std::max(tables_.Common->MostWidth(), common));
  const int side = tab - common - rowAddStrip_->width() - 2 * kSpacing;
  side_->setFixedWidth(std::clamp(side, 1, std::max(side_->WidthOfTexts(), 1)));
  panel_.layout()->setContentsMargins(0, 0, std::max(width - tab, 0), 0);
  tables_.Tabs->SetMargin(std::max(tab - inPixels(style.ChannelGrid), 0));
  const bool sideBySide = window >= kSideBySideWindow && editor_.Views().ChannelGrids() > 1;
  if (sideBySide != tables_.Tabs->SideBySide()) {
    control_->Rearrange([&] { tables_.Tabs->ShowSideBySide(sideBySide); });
  }
  split_->PlaceHandle();
}

void GridPanel::Impl::Run(Command command) {
  const CommandRow& row = RowOf(command);
  if (!StateOf(row, states_).Enabled) return;
  if (beforeCommand_ ? !beforeCommand_() : !control_->Commit()) return;
  switch (command) {
    case Command::Copy:
      if (editor_.Copy()) emit panel_.Changed();
      return;
    case Command::SelectAll:
      if (editor_.SelectAll()) control_->ShowCursor(false);
      emit panel_.Changed();
      return;
    case Command::CopyText:
      QApplication::clipboard()->setText(QString::fromStdString(editor_.CopyText()));
      return;
    case Command::PasteText:
      control_->CloseEditors();
      control_->Apply(editor_.PasteText(QApplication::clipboard()->text().toStdString()));
      return;
    default:
      control_->CloseEditors();
      control_->Apply((editor_.*row.edit)());
  }
}

void GridPanel::Impl::ShowMenu(const QPoint& global) {
  if (!control_->Commit()) return;
  const auto chosen = [this](Command command) {
    if (RowOf(command).menu == MenuPlace::Edit) {
      Run(command);
    } else {
      emit panel_.WindowCommand(command);
    }
  };
  CommandMenu menu(editor_.Views().Catalogue(), MenuPlace::Edit, chosen, &panel_);
  menu.addSeparator();
  menu.Add(RowOf(Command::ImportCsv));
  menu.Add(RowOf(Command::ExportCsv));
  if (editor_.Cursor().ActiveGrid == GridArea::Sequence) {
    menu.addSeparator();
    menu.Add(RowOf(Command::ModeSetting));
  }
  menu.ShowStates(states_);
  menu.ShowUndoNames(editor_);
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
  impl_->FitWidths();
}

void GridPanel::Apply(const EditOutcome& outcome) {
  impl_->control_->Apply(outcome);
  if (outcome.WholeWindow) impl_->FitWidths();
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
  impl_->rowAdd_->ShowState(states.RowAdd);
  impl_->side_->ShowStates(states);
  impl_->control_->AllowEditing(states.EditCells);
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

void GridPanel::SelectRow(GridRow row) {
  impl_->control_->SelectRow(row);
}

void GridPanel::SelectCell(const CellPlace& place) {
  impl_->control_->SelectCell(place);
}

void GridPanel::ReduceSelection() {
  impl_->control_->ReduceSelection();
}

QSize GridPanel::SizeFor(int rows, bool sideBySide) const {
  const GridTables& tables = impl_->tables_;
  const int channels = sideBySide ? impl_->editor_.Views().ChannelGrids() : 1;
  const int channel = std::max(tables.Channels[0]->MostWidth(), tables.Channels[1]->MostWidth());
  const int top = tables.Common->MostWidth() + impl_->rowAddStrip_->width() + impl_->side_->WidthOfTexts();
  return {std::max(top + 2 * kSpacing, channels * (channel + kWindowSides)), impl_->split_->HeightFor(rows)};
}

std::optional<int> GridPanel::Share() const {
  return impl_->split_->Share();
}

void GridPanel::SetShare(std::optional<int> permille) {
  impl_->split_->SetShare(permille);
}

void GridPanel::Run(Command command) {
  impl_->Run(command);
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
  impl_->FitWidths();
  impl_->PlaceRowAdd();
}

void GridPanel::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
    impl_->control_->LayOut();
    impl_->FitWidths();
  }
  if (event->type() == QEvent::PaletteChange) impl_->ColorRowAdd();
}

bool GridPanel::event(QEvent* event) {
  // Another screen can have another resolution.
  if (event->type() == QEvent::ScreenChangeInternal) {
    impl_->control_->LayOut();
    impl_->FitWidths();
  }
  return QWidget::event(event);
}

}  // namespace corlune
