#include "ui/main_window.h"

#include <algorithm>

#include <QApplication>
#include <QCloseEvent>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "sequence/channel_tabs.h"
#include "sequence/run_times.h"
#include "sequence/waveform_path.h"
#include "ui/app_icon.h"
#include "ui/form_style.h"
#include "ui/grid_panel.h"
#include "ui/stat_bar.h"
#include "ui/ui_font.h"
#include "view/frm_preview.h"
#include "view/run_buttons.h"
#include "view/run_fields.h"
#include "view/signal_strip.h"
#include "view/window_focus.h"

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
  runButtons_ = new RunButtons(
      session_.Catalogue(), [this](int index) { RunButton(index); }, central);
  rows->addWidget(runButtons_);
  BuildFields(central);
  rows->addWidget(fields_);
  grids_ = new GridPanel(editor_, prompts_, central);
  grids_->setObjectName(QStringLiteral("GridPanel"));
  grids_->SetBeforeCommand([this] { return CommitEntries(); });
  rows->addWidget(grids_, 1);
  signal_ = new SignalStrip(session_.Catalogue(), central);
  signal_->setVisible(settings_.SignalShown());
  rows->addWidget(signal_);
  whole->addLayout(rows, 1);
  statBar_ = new StatBar(session_.Catalogue(), central);
  whole->addWidget(statBar_);
  setCentralWidget(central);
  BuildMenus();
  focus_ = std::make_unique<WindowFocus>(*this, *grids_, [this] { grids_->FocusCell(); });

  connect(grids_, &GridPanel::Changed, this, &MainWindow::RefreshControls);
  connect(grids_, &GridPanel::WindowCommand, this, &MainWindow::Do);
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

void MainWindow::RefreshControls() {
  states_ = ControlStatesOf(
      session_.State(), session_.Activity(), session_.Definition(),
      {session_.Sequence().StepCount, editor_.CopyBufferFilled(), editor_.CanUndo(), editor_.CanRedo()});
  focus_->Keep([this] {
    ShowMenuStates();
    runButtons_->ShowStates(states_, session_.State(), session_.Definition());
    fields_->ShowStates(states_);
    read_->setEnabled(states_.Read.Enabled);
    grids_->ShowStates(states_);
  });
  if (preview_ && session_.State().SequenceViewShown) preview_->ShowStates(states_);
  statBar_->Refresh(session_.State(), {ConnectionTip(), DeviceTip()});
  // On a copy: the run times of the steps belong to what was sent last. How long a sequence of the
  // instrument's own takes nobody knows.
  ShowTotalTime(
      RunsHeldSequence(session_.State())
          ? -1
          : ComputeRunTimes(*std::make_unique<SequenceData>(session_.Sequence()), session_.Definition())
                .Total);
  RefreshCaption();
  ShowSignal();
}

void MainWindow::ShowSignal() {
  if (signal_->isHidden()) return;
  const AppState& state = session_.State();
  const bool running = state.RunState != RunState::Stopped;
  const int step = running ? state.CurrentStep : IndexOf(GridRow{editor_.Cursor().CurrentRow}).value;
  signal_->Show(BuildSignalSubject(session_.Sequence(), session_.Definition(), session_.Catalogue(),
                                   {EditedChannels(state), step, running, WaveformFolder(state)}));
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

bool MainWindow::EndOfDesktopSession() {
  if (closed_) return true;
  return session_.Idle() && !QApplication::activeModalWidget() && close();
}

bool MainWindow::EndFromOutside() {
  if (!closed_) {
    grids_->CommitEntry(EntryEnd::Left);
    fields_->Enter(EntryEnd::Left);
    if (preview_) preview_->EnterFields(EntryEnd::Left);
    KeepPlace();
  }
  return session_.EndFromOutside();
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
  KeepPlace();
}

void MainWindow::KeepPlace() const {
  // The frame belongs to the window manager; the place is that of move().
  const bool normal = !isMaximized() && !isFullScreen() && !isMinimized();
  const QRect place = normal ? QRect(pos(), size()) : normalGeometry();
  settings_.Write(WindowPlace{place, isMaximized()}, recentFiles_);
}

}  // namespace corlune
