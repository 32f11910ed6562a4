// The ports of the window program: message boxes, the event loop, the monitor's timer, file dialogs.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>

#include "core/ports.h"
#include "session/session_ports.h"

class QFileDialog;

namespace corlune {

// What dialogs stand over: the dialog that is open already, else the window that is being worked in, else (as
// while another program has the focus) the main window; nothing before there is a window.
class DialogOwner {
 public:
  void Set(QWidget* window) { window_ = window; }
  QWidget* Get() const;

 private:
  QPointer<QWidget> window_;
};

// Modal boxes in the application's language.
class QtPrompts : public Prompts {
 public:
  QtPrompts(const DialogOwner& owner, bool english) : owner_(owner), english_(english) {}
  PromptAnswer Message(const MessageRequest& request) override;
  std::optional<std::string> Input(const InputRequest& request) override;
  // Nobody is asked any more: what is open and what would come counts as unanswered.
  void StopAsking();

 private:
  const DialogOwner& owner_;
  bool english_;
  bool asking_ = true;
};

// Waits inside the event loop; the processor sleeps meanwhile.
class QtEventPump : public EventPump {
 public:
  explicit QtEventPump(TickClock& clock) : clock_(clock) {}
  void HandlePending() override;
  void SleepUntil(std::uint32_t tick) override;

 private:
  TickClock& clock_;
};

// Timer1: 100 ms, off until a run starts.
class QtTickSource : public TickSource {
 public:
  QtTickSource();
  void OnTick(std::function<void()> handler);
  void Enable(bool on) override;

 private:
  QTimer timer_;
};

// They open in the folder used last.
class QtFileDialogs : public FileDialogs {
 public:
  explicit QtFileDialogs(const DialogOwner& owner) : owner_(owner) {}
  std::optional<std::string> ChooseOpen(const std::string& filter) override;
  std::vector<std::string> ChooseOpenSeveral(const std::string& filter) override;
  std::optional<std::string> ChooseSave(const std::string& filter, const std::string& suggested) override;
  // The file being edited: until a dialog has been used, dialogs begin in its folder.
  void SetPresentFile(std::function<std::string()> path) { presentFile_ = std::move(path); }
  // Where the next dialog begins: the folder of the last one, that of the present file, or the person's
  // documents.
  QString Folder() const;

 private:
  // False: cancelled.
  bool Choose(QFileDialog& dialog);

  const DialogOwner& owner_;
  std::function<std::string()> presentFile_;
  QString folder_;
};

class QtEndProgram : public EndProgram {
 public:
  void EndNow(int exitCode) override;
};

// "Sequence data(*.dat) | *.dat" in the form that the file dialog takes: "Sequence data (*.dat)". Several
// forms behind each other come out with ";;" between them.
std::string QtFilter(const std::string& filter);
// "dat" of the same filter: the suffix of its first pattern; empty when it has none.
std::string FilterSuffix(const std::string& filter);

}  // namespace corlune
