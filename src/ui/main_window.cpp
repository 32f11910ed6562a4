#include "ui/main_window.h"

#include <algorithm>

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "ui/app_icon.h"
#include "ui/entry_field.h"
#include "ui/form_style.h"
#include "ui/grid_panel.h"
#include "ui/stat_bar.h"
#include "ui/ui_font.h"
#include "view/frm_preview.h"
#include "view/run_buttons.h"

namespace corlune {

namespace {

constexpr int kTimer2Interval = 100;  // ms
constexpr int kMargin = 8;            // pixels

}  // namespace

MainWindow::MainWindow(const MainWindowParts& parts, QWidget* parent)
    : QMainWindow(parent),
      session_(parts.session),
      editor_(parts.editor),
      prompts_(parts.prompts),
      files_(parts.files),
      settings_(parts.settings),
      version_(parts.version),
      programDate_(parts.programDate),
      place_(parts.settings.Place()) {
  setObjectName(QStringLiteral("frmMain"));
  setAcceptDrops(true);
  setFont(UiFont(session_.State()));
  setMinimumSize(TwipsToPixels(kLeastWidth, this), TwipsToPixels(kLeastHeight, this));
  recentFiles_ = settings_.RecentFiles();
  SetAppIcon(this, QString::fromUtf8(kApplicationIcon), true);

  auto* central = new QWidget(this);
  auto* whole = new QVBoxLayout(central);
  whole->setContentsMargins(1, 0, 1, 1);
  whole->setSpacing(0);
  auto* rows = new QVBoxLayout;
  rows->setContentsMargins(kMargin - 1, kMargin / 2, kMargin - 1, kMargin / 4);
  rows->setSpacing(kMargin / 2);
  rows->addWidget(BuildButtonRow());
  rows->addWidget(BuildFieldRow());
  grids_ = new GridPanel(editor_, prompts_, central);
  grids_->setObjectName(QStringLiteral("GridPanel"));
  rows->addWidget(grids_, 1);
  whole->addLayout(rows, 1);
  statBar_ = new StatBar(session_.Catalogue(), central);
  whole->addWidget(statBar_);
  setCentralWidget(central);
  BuildMenus();

  connect(grids_, &GridPanel::Changed, this, &MainWindow::RefreshControls);
  connect(grids_, &GridPanel::ImportRequested, this, &MainWindow::ImportCsv);
  connect(grids_, &GridPanel::ExportRequested, this, &MainWindow::ExportCsv);
  timer2_.setObjectName(QStringLiteral("Timer2"));
  timer2_.setInterval(kTimer2Interval);
  timer2_.setSingleShot(true);
  connect(&timer2_, &QTimer::timeout, this, [this] { grids_->SelectFirstCell(); });

  ShowFields();
  RefreshControls();
  grids_->Rebuild();
  if (session_.Sequence().StepCount > 0) timer2_.start();
}

MainWindow::~MainWindow() = default;

QWidget* MainWindow::BuildButtonRow() {
  auto* row = new QWidget(this);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(kMargin / 2);
  for (int i = 0; i < kPanelButtonCount; ++i) {
    auto* button = new QPushButton(Caption(8000 + i), row);
    button->setObjectName(QStringLiteral("CmdBtn1_%1").arg(i));
    button->setAutoDefault(false);
    ReserveBoldWidth(button);
    connect(button, &QPushButton::clicked, this, [this, i] { RunButton(i); });
    buttons_[static_cast<std::size_t>(i)] = button;
    layout->addWidget(button);
  }
  layout->addStretch();
  return row;
}

void MainWindow::ShowButtonStates() {
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    QPushButton* button = buttons_[i];
    ShowRunButtonState(button, RunButtonApplies(static_cast<PanelButton>(i), session_.State()),
                       session_.Definition().Buttons[i]);
    button->setVisible(states_.Buttons[i].Visible);
    button->setEnabled(states_.Buttons[i].Enabled);
  }
}

void MainWindow::RefreshControls() {
  states_ = ControlStatesOf(session_.State(), session_.Activity(), session_.Definition(),
                            {session_.Sequence().StepCount, editor_.CopyBufferFilled()});
  ShowMenuStates();
  ShowButtonStates();
  sequenceNumber_->setEnabled(states_.SequenceNumber.Enabled);
  startStep_->setEnabled(states_.StartStep.Enabled);
  branchChannel_->setEnabled(states_.BranchChannel.Enabled);
  for (QWidget* part : startStepParts_) part->setVisible(states_.StartStep.Visible);
  for (QWidget* part : branchChannelParts_) part->setVisible(states_.BranchChannel.Visible);
  read_->setEnabled(states_.Read.Enabled);
  grids_->ShowStates(states_);
  if (preview_ && session_.State().SequenceViewShown) preview_->ShowStates(states_);
  statBar_->Refresh(session_.State(), {ConnectionTip(), DeviceTip()});
  RefreshCaption();
}

void MainWindow::RefreshCaption() {
  // "[*]" in a path would be taken for the place of the mark.
  const QString caption =
      QString::fromStdString(session_.Caption()).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
  setWindowTitle(caption + QStringLiteral("[*]"));
  setWindowModified(session_.State().Modified);
}

void MainWindow::ShowModeLayout(int operationMode) {
  grids_->HideEditors();
  RefreshControls();
  grids_->Rebuild();
  if (operationMode != 0) grids_->ReduceSelection();
}

void MainWindow::ShowTotalTime(double milliseconds) {
  statBar_->TotalTime(milliseconds);
  if (preview_) preview_->ShowTotalTime(milliseconds);
}

void MainWindow::ShowElapsedTime(std::int32_t milliseconds) {
  statBar_->ElapsTime(milliseconds);
  if (preview_) preview_->ShowElapsedTime(milliseconds);
}

void MainWindow::SequenceReplaced(SequenceChange change) {
  const bool anotherSequence = change == SequenceChange::New || change == SequenceChange::Opened;
  grids_->HideEditors();
  if (anotherSequence) {
    ClosePreview();
    editor_.Restart();
  }
  // The set-up may have brought another model along: its menus and buttons.
  RefreshControls();
  grids_->Rebuild();
  ShowFields();
  if (preview_ && session_.State().SequenceViewShown) preview_->PicDisp();
}

void MainWindow::ShowWaitCursor(bool on) {
  if (on == waiting_) return;
  waiting_ = on;
  if (on) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
  RefreshControls();
}

void MainWindow::FormStyleNomal() {
  showNormal();
  move(screen()->availableGeometry().topLeft());
  resize(TwipsToPixels(kNormalStyle.Window, this), height());
}

void MainWindow::FormStyleAlign() {
  showNormal();
  move(screen()->availableGeometry().topLeft());
  resize(TwipsToPixels(kAlignedStyle.Window, this), height());
}

void MainWindow::PlaceInitially() {
  QList<QRect> screens;
  for (const QScreen* screen : QApplication::screens()) screens.append(screen->availableGeometry());
  const QPoint corner = screen()->availableGeometry().topLeft();
  const QRect wanted = place_ ? place_->geometry
                              : QRect(corner, QSize(TwipsToPixels(kNormalStyle.Window, this),
                                                    TwipsToPixels(kNormalHeight, this)));
  const QRect placed = ClampToScreens(wanted, screens, minimumSize());
  resize(placed.size());
  move(placed.topLeft());
}

void MainWindow::ShowAtPlace() {
  PlaceInitially();
  if (place_ && place_->maximized) {
    showMaximized();
  } else {
    show();
  }
}

void MainWindow::AdaptWidths() {
  // Back from pixels to twips by the factor that TwipsToPixels uses.
  constexpr int kProbe = 15000;
  const int pixels = std::max(1, TwipsToPixels(kProbe, this));
  const auto window = static_cast<int>(static_cast<long long>(width()) * kProbe / pixels);
  const FormStyle style = StyleForWidth(window);
  grids_->SetWidths(style.CommonGrid, style.ChannelGrid, style.Tabs);
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  AdaptWidths();
}

bool MainWindow::EndOfDesktopSession(bool mayAsk) {
  if (closed_) return true;
  if (!session_.Idle() || QApplication::activeModalWidget()) return false;
  if (mayAsk) return close();
  return session_.WriteFile(session_.State().WorkFilePath, false);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (closed_) return;
  if (!CommitEntries() || !session_.RequestClose()) {
    event->ignore();
    RefreshControls();
    return;
  }
  FinishClosing();
  event->accept();
  emit Closed();
}

void MainWindow::FinishClosing() {
  closed_ = true;
  timer2_.stop();
  grids_->HideEditors();
  ClosePreview();
  // The frame belongs to the window manager; the place is that of move().
  const bool normal = !isMaximized() && !isFullScreen() && !isMinimized();
  const QRect place = normal ? QRect(pos(), size()) : normalGeometry();
  settings_.Write(WindowPlace{place, isMaximized()}, recentFiles_);
}

}  // namespace corlune
