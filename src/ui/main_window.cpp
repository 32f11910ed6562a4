#include "ui/main_window.h"

#include <algorithm>
#include <utility>

#include <QApplication>
#include <QCloseEvent>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include "dialogs/app_icon.h"
#include "sequence/channel_tabs.h"
#include "sequence/run_times.h"
#include "sequence/waveform_path.h"
#include "ui/grid_panel.h"
#include "ui/stat_bar.h"
#include "ui/ui_font.h"
#include "ui/view_pane.h"
#include "view/flow_layout.h"
#include "view/frm_preview.h"
#include "view/run_buttons.h"
#include "view/run_fields.h"
#include "view/signal_strip.h"
#include "view/window_focus.h"

namespace corlune {

namespace {

constexpr int kTimer2Interval = 100;  // ms
constexpr int kMargin = 8;            // pixels
constexpr int kControlGap = 20;       // pixels between run buttons and fields

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
      responses_(parts.responses) {
  editedChannels_ = EditedChannels(session_.State());
  setObjectName(QStringLiteral("frmMain"));
  setAcceptDrops(true);
  setFont(UiFont(session_.State()));
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
  BuildFields(central);
  // In one row where the window is wide enough.
  auto* controls = new FlowLayout(nullptr, kControlGap);
  controls->addWidget(runButtons_);
  controls->addWidget(fields_);
  rows->addLayout(controls);
  grids_ = new GridPanel(editor_, prompts_, central);
  grids_->setObjectName(QStringLiteral("GridPanel"));
  grids_->SetBeforeCommand([this] { return CommitEntries(); });
  rows->addWidget(BuildMiddle(central), 1);
  whole->addLayout(rows, 1);
  statBar_ = new StatBar(session_.Catalogue(), central);
  whole->addWidget(statBar_);
  setCentralWidget(central);
  BuildMenus();
  focus_ = std::make_unique<WindowFocus>(*this, *grids_, [this] { grids_->FocusCell(); });
  focus_->AddHome(*pane_);

  connect(grids_, &GridPanel::Changed, this, &MainWindow::RefreshControls);
  connect(grids_, &GridPanel::WindowCommand, this, &MainWindow::Do);
  connect(grids_, &GridPanel::NoticeGiven, this,
          [this](const std::string& text) { ShowNotice(NoticeLevel::Warning, text); });
  connect(
      statBar_, &StatBar::NoticesWanted, this, [this] { Do(Command::Notices); }, Qt::QueuedConnection);
  connect(
      statBar_, &StatBar::ConnectWanted, this, [this] { Do(Command::Connect); }, Qt::QueuedConnection);
  // Fields and cells with an entry to take back keep the key.
  connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, statBar_, &StatBar::CloseNotice);
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
  ShowViewStates();
  const auto output = static_cast<std::size_t>(PanelButton::Output);
  statBar_->Refresh(session_.State(),
                    {ConnectionTip(), DeviceText(), DeviceTip(), session_.Definition().Buttons[output].Color2,
                     states_.Connect.Enabled});
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

void MainWindow::ShowViewStates() {
  if (!preview_ || !session_.State().SequenceViewShown) return;
  const bool steps = session_.Sequence().StepCount > 0;
  preview_->ShowSelectedStep(steps ? std::optional(editor_.Cursor().CurrentRow - 1) : std::nullopt);
  preview_->ShowStates(states_);
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

void MainWindow::ShowNotice(NoticeLevel level, const std::string& text) {
  statBar_->ShowNotice(level, text);
}

void MainWindow::SequenceReplaced(SequenceChange change) {
  const bool anotherSequence = change == SequenceChange::New || change == SequenceChange::Opened;
  const int channels = EditedChannels(session_.State());
  const bool otherChannels = std::exchange(editedChannels_, channels) != channels;
  grids_->HideEditors();
  // An entry of a channel that nobody sees any more is not to be taken back.
  if (otherChannels) editor_.Restart();
  if (anotherSequence) {
    // A docked view is a part of this window, and shows the new sequence.
    if (preview_ && !preview_->Docked()) ClosePreview();
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
  KeepPlace();
  ClosePreview();
}

}  // namespace corlune
