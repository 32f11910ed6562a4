// WindowProgram: a session with the ports of the window program, its main window and its claim to the
// application folder. One object a run of the program.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <QSocketNotifier>
#include <QTimer>

#include "app/qt_ports.h"
#include "core/system_ports.h"
#include "dialogs/frm_prgrs.h"
#include "editing/sequence_editor.h"
#include "platform/end_requests.h"
#include "platform/single_instance.h"
#include "session/program_options.h"
#include "session/session.h"
#include "ui/main_window.h"
#include "ui/window_display.h"
#include "ui/window_settings.h"

namespace corlune {

class WindowProgram {
 public:
  // `options` after ResolveProgramOptions; `english`: their language or the system's. `file`: sequence file
  // to open, absolute; may be empty. Needs a QApplication.
  WindowProgram(const ProgramOptions& options, bool english, std::string file);
  ~WindowProgram();
  WindowProgram(const WindowProgram&) = delete;
  WindowProgram& operator=(const WindowProgram&) = delete;

  // Starts up, shows the window and runs until it is closed. Exit code of the program. Pumps events.
  int Run();

 private:
  bool OtherInstance();
  void ShowWindow();
  void ListenToOtherStarts();
  void TakeMessages();
  void ListenToEndRequests();
  void ListenToDesktopSession();
  // Inside whatever handles events just now. Does not return, unless blocks are on their way.
  void EndFromOutside();

  std::string file_;
  std::shared_ptr<std::string> responses_;  // response file of simulated instruments; null: there are none
  SteadyTickClock clock_;
  DialogOwner owner_;
  QtPrompts prompts_;
  QtEventPump pump_;
  QtTickSource timer_;
  FrmPrgrs progress_;
  QtEndProgram end_;
  QtFileDialogs files_;
  WindowDisplay display_;
  std::optional<SingleInstance> instance_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<SequenceEditor> editor_;
  std::unique_ptr<WindowSettings> settings_;
  std::unique_ptr<MainWindow> window_;
  std::unique_ptr<QSocketNotifier> otherStarts_;
  std::unique_ptr<QTimer> otherStartsTimer_;
  EndRequests endRequests_;
  std::unique_ptr<QSocketNotifier> endNotifier_;
  bool ending_ = false;
  QTimer endTimer_;  // looks for an end request, or whether it can be carried out now
};

}  // namespace corlune
