// MainWindow: what menu items, buttons and other programs ask for.
#include <algorithm>

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

#include "comm/init_options.h"
#include "compile/download_outcome_text.h"
#include "core/output_state.h"
#include "dialogs/frm_about.h"
#include "dialogs/frm_comm_log.h"
#include "dialogs/frm_notices.h"
#include "dialogs/frm_shortcuts.h"
#include "sequence/sequence_file.h"
#include "ui/grid_keys.h"
#include "ui/grid_panel.h"
#include "ui/main_window.h"
#include "ui/stat_bar.h"
#include "view/command_menu.h"
#include "view/frm_preview.h"
#include "view/run_fields.h"
#include "view/signal_strip.h"
#include "view/window_focus.h"

namespace corlune {

namespace {

// The only file of a drag when it is a sequence file by its name; empty otherwise.
QString SequenceFileIn(const QMimeData* data) {
  const QList<QUrl> urls = data->urls();
  if (urls.size() != 1 || !urls.front().isLocalFile()) return {};
  const QString path = urls.front().toLocalFile();
  return HasSequenceFileEnding(path.toStdString()) ? path : QString();
}

void BringForward(QWidget& window) {
  window.setWindowState((window.windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
  window.show();
  window.raise();
  window.activateWindow();
}

}  // namespace

void MainWindow::Perform(const std::function<void()>& command, Entries entries) {
  if (entries == Entries::Taken && !CommitEntries()) return;
  statBar_->CloseNotice();
  command();
  if (closed_) return;
  session_.NoticeLostConnection();
  RefreshControls();
  focus_->Return();
  if (preview_) preview_->ReturnFocus();
}

// Entries that are still being typed are part of what a command saves, runs or leaves. False: one was
// refused, after its message, and has the focus; the command is not carried out.
bool MainWindow::CommitEntries() {
  const auto settle = [](bool taken, QWidget& window) {
    if (!taken) BringForward(window);
    return taken;
  };
  const auto own = [&] { return settle(fields_->Enter(EntryEnd::Key), *this); };
  const auto views = [&] { return !preview_ || settle(preview_->EnterFields(EntryEnd::Key), *preview_); };
  if (!settle(grids_->CommitEntry(), *this)) return false;
  // The entries of the active window are the latest.
  return preview_ && preview_->isActiveWindow() ? views() && own() : own() && views();
}

void MainWindow::Do(Command command) {
  switch (command) {
    case Command::Exit:
      close();
      return;
    case Command::ImportCsv:
      return ImportCsv();
    case Command::ExportCsv:
      return ExportCsv();
    case Command::ReadBack:
      return ReadBack();
    case Command::EditMode:
      return ChangeMode(OperationMode::Edit);
    case Command::ExecutionMode:
      return ChangeMode(OperationMode::Execution);
    case Command::ColorsDesktop:
      return ChooseColors(WindowColors::Desktop);
    case Command::ColorsLight:
      return ChooseColors(WindowColors::Light);
    case Command::ColorsDark:
      return ChooseColors(WindowColors::Dark);
    case Command::About:
      return ShowAbout();
    case Command::Shortcuts:
      return ShowShortcuts();
    case Command::Notices:
      return ShowNotices();
    case Command::CommLog:
      return ShowCommLog();
    default:
      break;
  }
  const CommandRow& row = RowOf(command);
  if (row.menu == MenuPlace::File) FileCommand(command);
  if (row.menu == MenuPlace::Edit) grids_->Run(command);
  if (row.menu == MenuPlace::View) ViewCommand(command);
  if (row.menu == MenuPlace::Tool) ToolCommand(command);
  if (row.menu == MenuPlace::Run) RunItem(static_cast<Run>(row.item));
}

void MainWindow::FileCommand(Command command) {
  Perform([&] {
    grids_->HideEditors();
    bool named = false;
    if (command == Command::New) session_.NewSequence();
    if (command == Command::Open) named = session_.OpenWithDialog();
    if (command == Command::Save) named = session_.Save();
    if (command == Command::SaveAs) named = session_.SaveAs();
    if (named) RememberRecent();
  });
}

bool MainWindow::CanOpenNow() const {
  return session_.Idle() && session_.State().OperationMode == OperationMode::Edit && !closed_ &&
         !QApplication::activeModalWidget();
}

void MainWindow::OpenPath(const std::string& path) {
  if (!CanOpenNow()) {
    statBar_->ShowNotice(NoticeLevel::Warning,
                         session_.Catalogue().GetResString(TextId::NotOpenedNow, {path}));
    return;
  }
  Perform([&] {
    const bool missing = !QFileInfo(QString::fromStdString(path)).isFile();
    if (session_.OpenFile(path)) {
      RememberRecent();
    } else if (missing && recentFiles_.removeAll(QString::fromStdString(path)) > 0) {
      QMetaObject::invokeMethod(this, &MainWindow::ShowRecentFiles, Qt::QueuedConnection);
    }
  });
}

void MainWindow::ActivatedByOtherStart(const std::string& path) {
  BringForward(*this);
  if (!path.empty()) OpenPath(path);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (CanOpenNow() && !SequenceFileIn(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  const QString path = SequenceFileIn(event->mimeData());
  if (path.isEmpty()) return;
  event->acceptProposedAction();
  // The program that the file comes from waits until the drop is over; the save question must not hold it up.
  QMetaObject::invokeMethod(
      this, [this, path] { OpenPath(path.toStdString()); }, Qt::QueuedConnection);
}

FrmPreview& MainWindow::NeedPreview() {
  if (!preview_) {
    PreviewHandlers handlers;
    handlers.runButton = [this](int index) { RunButton(index); };
    handlers.command = [this](Command command) { Do(command); };
    handlers.enterSequenceNumber = [this](const std::string& text, EntryEnd end) {
      return EnterSequenceNumber(text, end);
    };
    handlers.enterStartStep = [this](const std::string& text, EntryEnd end) {
      return EnterStartStep(text, end);
    };
    handlers.enterBranchChannel = [this](const std::string& text, EntryEnd end) {
      return EnterBranchChannel(text, end);
    };
    handlers.enterViewAreas = [this](const auto& areas) {
      if (!CommitEntries()) return false;
      editor_.Record(TextId::EditViewAreas, [&] { session_.Sequence().ViewAreas = areas; });
      RefreshControls();
      return session_.Sequence().ViewAreas == areas;
    };
    handlers.graphs = HandlersOfGraphs();
    handlers.closed = [this] { PreviewClosed(); };
    preview_ = std::make_unique<FrmPreview>(session_.State(), session_.Definition(), session_.Sequence(),
                                            session_.Catalogue(), std::move(handlers));
    preview_->setWindowIcon(windowIcon());
    focus_->Watch(preview_->DisplayMenu());
  }
  return *preview_;
}

// The graphs of the view are a third grid: what is selected or dragged there goes the way of a press or an
// entry in a cell.
GraphHandlers MainWindow::HandlersOfGraphs() {
  GraphHandlers handlers;
  handlers.selectStep = [this](int step) {
    if (!CommitEntries()) {
      focus_->Return();  // the press has taken the keyboard into the graphs
      return false;
    }
    grids_->SelectRow(RowOf(StepIndex{step}));
    return true;
  };
  handlers.goToCell = [this] {
    if (preview_->isActiveWindow()) BringForward(*this);
    grids_->FocusCell();
  };
  handlers.enterValue = [this](const CellPlace& place, const std::string& text) {
    if (!CommitEntries()) return focus_->Return();
    if (!states_.EditCells) return;
    grids_->SelectCell(place);
    grids_->Apply(editor_.EnterText(place, text));
  };
  return handlers;
}

void MainWindow::SwitchSignal() {
  const bool shown = signal_->isHidden();
  signal_->setVisible(shown);
  MenuOf(MenuPlace::View).Item(Command::SignalStrip)->setChecked(shown);
  settings_.WriteNumber(WindowSettings::kSignalShown, shown ? 1 : 0);
}

void MainWindow::ChangeMode(OperationMode mode) {
  if (mode == session_.State().OperationMode) return;
  Perform([&] {
    grids_->HideEditors();
    session_.Sequence().SequenceNumber = sequenceNumber_;
    const bool downloads =
        mode == OperationMode::Execution && session_.Sequence().StepCount > 0 && session_.Idle();
    session_.Download().ForgetOutcome();
    if (!session_.Control().SetOperationMode(mode) && downloads) {
      const std::string why = DownloadOutcomeText(session_.Download().Outcome(), session_.Catalogue());
      if (!why.empty()) statBar_->ShowNotice(NoticeLevel::Error, why);
      if (session_.Download().Outcome().End == DownloadEnd::Cancelled) {
        statBar_->ShowNotice(NoticeLevel::Information, Text(TextId::TransferEnded));
      }
    }
  });
}

void MainWindow::RunItem(Run item) {
  const bool ends = item == Run::Stop || item == Run::OutputOff;
  Perform([&] { session_.Control().MenuItem(static_cast<int>(item)); },
          ends ? Entries::Untouched : Entries::Taken);
}

void MainWindow::RunButton(int index) {
  if (index == 0) {
    const bool edit = session_.State().OperationMode == OperationMode::Edit;
    ChangeMode(edit ? OperationMode::Execution : OperationMode::Edit);
  } else if (index == static_cast<int>(PanelButton::Output)) {
    RunItem(OutputSwitchesOff(session_.State()) ? Run::OutputOff : Run::OutputOn);
  } else {
    RunItem(static_cast<Run>(index - 1));  // the others stand as in the menu
  }
}

void MainWindow::ReadBack() {
  Perform([&] {
    grids_->HideEditors();
    session_.Sequence().SequenceNumber = sequenceNumber_;
    const EditOutcome outcome = editor_.Record(TextId::EditReadBack, [this] { session_.ReadBack(); });
    if (outcome.Changed) grids_->Rebuild();
  });
}

void MainWindow::ImportCsv() {
  Perform([&] {
    grids_->HideEditors();
    const auto path = files_.ChooseOpen(Text(TextId::CsvFilter));
    if (path && !path->empty()) grids_->ImportCsv(*path);
  });
}

void MainWindow::ExportCsv() {
  Perform([&] {
    grids_->HideEditors();
    QString suggested = QString::fromStdString(session_.State().CurrentFilePath);
    if (!suggested.isEmpty()) {
      const QFileInfo info(suggested);
      suggested = info.path() + QLatin1Char('/') + info.completeBaseName() + QStringLiteral(".csv");
    }
    const auto path = files_.ChooseSave(Text(TextId::CsvFilter), suggested.toStdString());
    if (path && !path->empty()) grids_->ExportCsv(*path);
  });
}

void MainWindow::ShowAbout() {
  Perform([&] {
    AboutFacts facts;
    facts.version = version_;
    facts.programDate = programDate_;
    facts.instrumentProblem = session_.Gp().LibraryProblem();
    facts.compilerProblem = session_.Compiler().Problem();
    facts.libraries = session_.Gp().LibraryLines(false);
    FrmAbout(session_.Catalogue(), facts, this).exec();
  });
}

void MainWindow::ShowShortcuts() {
  const MessageCatalogue& texts = session_.Catalogue();
  Perform([&] {
    FrmShortcuts(texts,
                 {{TextId::KeysOfGrids, CellKeyLines(texts)}, {TextId::KeysOfView, GraphKeyLines(texts)}},
                 states_, this)
        .exec();
  });
}

void MainWindow::ShowNotices() {
  // As they stand now: the command itself takes the present one away.
  const std::deque<Notice> notices = statBar_->LastNotices();
  Perform([&] { FrmNotices(session_.Catalogue(), notices, this).exec(); });
}

std::string MainWindow::CommLogPath() const {
  return InitOptions(session_.Definition().Commands.LibraryInit).LogPath(session_.State().AppFolder);
}

void MainWindow::ShowCommLog() {
  const std::string path = CommLogPath();
  if (path.empty()) return;
  Perform([&] { FrmCommLog(session_.Catalogue(), path, this).exec(); });
}

std::string MainWindow::ConnectionTip() const {
  std::string tip = session_.State().Online == 1 ? Text(TextId::TipConnected) + "\n" + DeviceTip()
                                                 : Text(TextId::TipNoConnection);
  for (const std::string& problem : {session_.Gp().LibraryProblem(), session_.Compiler().Problem()}) {
    if (!problem.empty()) tip += "\n" + problem;
  }
  return tip;
}

std::string MainWindow::InterfaceOf(const InstrumentEntry& entry) const {
  if (entry.InterfaceKind == InterfaceKind::Simulated) return Text(TextId::SimulatedInterface);
  const auto& names = session_.Definition().InterfaceOf(session_.State().ModelIndex).InterfaceNames;
  const bool listed = entry.Interface >= 0 && entry.Interface < static_cast<int>(names.size());
  const std::string name = listed ? names[static_cast<std::size_t>(entry.Interface)] + " " : "";
  return name +
         (entry.InterfaceKind == InterfaceKind::UsbTmc ? entry.SerialNo : std::to_string(entry.Address));
}

std::string MainWindow::DeviceText() const {
  const AppState& state = session_.State();
  std::string text = state.ModelName + "  " + InterfaceOf(state.Instruments[0]);
  if (state.InstrumentCount > 1) text += "  (+" + std::to_string(state.InstrumentCount - 1) + ")";
  return text;
}

std::string MainWindow::DeviceTip() const {
  const AppState& state = session_.State();
  const auto count = static_cast<std::size_t>(std::clamp<int>(state.InstrumentCount, 0, kMaxInstruments));
  std::string tip;
  for (std::size_t i = 0; i < count; ++i) {
    const InstrumentEntry& entry = state.Instruments[i];
    if (!tip.empty()) tip += "\n";
    tip += session_.Catalogue().GetResString(
        TextId::TipDevice, {std::to_string(i + 1), InterfaceOf(entry), std::to_string(entry.ChannelCount)});
  }
  return tip;
}

}  // namespace corlune
