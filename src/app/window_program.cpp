#include "app/window_program.h"

#include <algorithm>
#include <utility>

#include <QApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QSessionManager>

#include "dialogs/frm_setup.h"
#include "platform/folders.h"
#include "platform/window_list.h"
#include "ui/ui_font.h"

namespace corlune {

namespace {
// Where the system has no descriptor to wait for, messages of other starts are looked for this often.
constexpr int kLookInterval = 500;  // ms
constexpr int kEndInterval = 50;    // ms between two attempts to end
}  // namespace

WindowProgram::WindowProgram(const ProgramOptions& options, bool english, std::string file)
    : file_(std::move(file)), prompts_(owner_, english), pump_(clock_), files_(owner_) {
  SessionOptions sessionOptions;
  sessionOptions.programFolder = ProgramFolder();
  sessionOptions.appFolder = options.folder.empty() ? DefaultApplicationFolder() : options.folder;
  sessionOptions.english = english;
  sessionOptions.simulated = options.simulated;
  settings_ = std::make_unique<WindowSettings>(sessionOptions.appFolder);
  if (options.simulated) {
    responses_ = options.simulatedResponses;
    if (responses_->empty()) *responses_ = settings_->Responses();
  }
  sessionOptions.writeSettings = true;
  const SessionPorts ports{prompts_, clock_,   pump_, timer_, progress_,
                           display_, display_, end_,  files_, display_};
  session_ = std::make_unique<Session>(ports, sessionOptions,
                                       MakeParts(options, sessionOptions.programFolder, prompts_, clock_));
  editor_ = std::make_unique<SequenceEditor>(session_->State(), session_->Definition(), session_->Sequence(),
                                             session_->Catalogue(), prompts_);
  timer_.OnTick([this] {
    session_->Monitor().Tick();
    session_->NoticeLostConnection();
  });
  files_.SetPresentFile([this] { return session_->State().CurrentFilePath; });
  ShowColors(settings_->Colors());
  QApplication::setFont(UiFont(session_->State()));
  ListenToEndRequests();
  ListenToDesktopSession();
}

WindowProgram::~WindowProgram() {
  display_.Attach(nullptr);
}

bool WindowProgram::OtherInstance() {
  const std::string& folder = session_->State().AppFolder;
  // Without the folder there is nothing to share; the missing model definition ends the start.
  if (!QFileInfo(QString::fromStdString(folder)).isDir()) return false;
  instance_.emplace(SingleInstance::Acquire(folder));
  if (instance_->IsFirst()) return false;
  // Of another person perhaps, who then is not disturbed.
  (void)instance_->Notify(file_);
  return true;
}

int WindowProgram::Run() {
  StartUpChecks checks;
  checks.otherInstance = [this] { return OtherInstance(); };
  checks.siblingRunning = [](const std::string& title) { return IsSiblingRunning(title); };
  checks.chooseInstrument = [this] { return FrmSetup::Choose(*session_, prompts_, nullptr); };
  switch (session_->StartUp(checks)) {
    case StartUpResult::ActivateOther:
      return 0;
    case StartUpResult::EndProcess:
      return 1;
    case StartUpResult::Show:
      break;
  }
  ShowWindow();
  return QApplication::exec();
}

void WindowProgram::ShowWindow() {
  editor_->Restart();
  const QString programFile = QString::fromStdString(ProgramFile());
  window_ = std::make_unique<MainWindow>(
      MainWindowParts{*session_, *editor_, prompts_, files_, *settings_, CORLUNE_VERSION,
                      QFileInfo(programFile).lastModified().date(), responses_});
  display_.Attach(window_.get());
  owner_.Set(window_.get());
  progress_.SetOwner(window_.get());
  // The last window of the start may have been a message: only the main window ends the program.
  QObject::connect(window_.get(), &MainWindow::Closed, qApp, [] { QApplication::exit(0); });
  window_->ShowAtPlace();
  ListenToOtherStarts();
  if (!file_.empty()) {
    QMetaObject::invokeMethod(
        window_.get(), [this] { window_->OpenPath(file_); }, Qt::QueuedConnection);
  }
}

void WindowProgram::ListenToOtherStarts() {
  if (!instance_) return;
  if (const int descriptor = instance_->ListenFd(); descriptor >= 0) {
    otherStarts_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    QObject::connect(otherStarts_.get(), &QSocketNotifier::activated, window_.get(),
                     [this] { TakeMessages(); });
  } else {
    otherStartsTimer_ = std::make_unique<QTimer>();
    QObject::connect(otherStartsTimer_.get(), &QTimer::timeout, window_.get(), [this] { TakeMessages(); });
    otherStartsTimer_->start(kLookInterval);
  }
}

void WindowProgram::ListenToEndRequests() {
  if (endRequests_.Fd() >= 0) {
    endNotifier_ = std::make_unique<QSocketNotifier>(endRequests_.Fd(), QSocketNotifier::Read);
    QObject::connect(endNotifier_.get(), &QSocketNotifier::activated, &endTimer_, [this] {
      endNotifier_->setEnabled(false);
      EndFromOutside();
    });
  } else {
    endTimer_.start(kLookInterval);
  }
  QObject::connect(&endTimer_, &QTimer::timeout, &endTimer_, [this] {
    if (ending_ || endRequests_.Came()) EndFromOutside();
  });
}

void WindowProgram::ListenToDesktopSession() {
  QObject::connect(
      qApp, &QGuiApplication::commitDataRequest, &endTimer_,
      [this](QSessionManager& manager) {
        if (!window_ || !manager.allowsInteraction()) {
          EndFromOutside();
        } else if (!window_->EndOfDesktopSession()) {
          manager.cancel();
        }
        manager.release();
      },
      Qt::DirectConnection);
}

void WindowProgram::EndFromOutside() {
  ending_ = true;
  prompts_.StopAsking();
  const bool ended = window_ ? window_->EndFromOutside() : session_->EndFromOutside();
  if (!ended) endTimer_.start(kEndInterval);
}

void WindowProgram::TakeMessages() {
  // Opening a file can show messages, in which the next start arrives: each message is handed on from the
  // event loop, after this handler has ended.
  while (const auto message = instance_->TakeMessage()) {
    QMetaObject::invokeMethod(
        window_.get(), [this, path = *message] { window_->ActivatedByOtherStart(path); },
        Qt::QueuedConnection);
  }
}

}  // namespace corlune
