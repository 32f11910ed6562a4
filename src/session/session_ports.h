// What a session needs from the program around it.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "comm/gp_front_end.h"
#include "compile/compiler_library.h"
#include "core/app_state.h"
#include "core/catalogue.h"
#include "core/ports.h"

namespace corlune {

// The file dialogs. Both pump events. Paths are UTF-8.
class FileDialogs {
 public:
  virtual ~FileDialogs() = default;
  // `filter`: text with the form "description | pattern". nullopt: cancelled.
  virtual std::optional<std::string> ChooseOpen(const std::string& filter) = 0;
  // Of a filter with several forms, "description | pattern | description | pattern". Empty: cancelled.
  virtual std::vector<std::string> ChooseOpenSeveral(const std::string& filter) {
    const auto one = ChooseOpen(filter);
    return one ? std::vector<std::string>{*one} : std::vector<std::string>{};
  }
  // Asks itself before a file is overwritten. `suggested`: the present path, may be empty.
  virtual std::optional<std::string> ChooseSave(const std::string& filter, const std::string& suggested) = 0;
};

enum class SequenceChange { New, Opened, ReadBack, SetupChanged };

// What the main window shows of the sequence as a whole. The default does nothing: the console shows none
// of it.
class SessionDisplay {
 public:
  virtual ~SessionDisplay() = default;
  // Before a file command: take back cell editors without storing.
  virtual void HideEditors() {}
  // Grids, fields and jump colours anew; after New and Opened also an empty copy buffer and no sequence view.
  virtual void SequenceReplaced(SequenceChange /*change*/) {}
  virtual void ShowCaption(const std::string& /*caption*/) {}
  virtual void ShowWaitCursor(bool /*on*/) {}
  // On-line, off-line or the set-up changed: status bar, controls.
  virtual void ConnectionChanged() {}
};

// All references must outlive the session.
struct SessionPorts {
  Prompts& prompts;
  TickClock& clock;
  EventPump& pump;
  TickSource& timer;
  Progress& progress;
  RunDisplay& runDisplay;
  ViewDisplay& view;
  EndProgram& end;
  FileDialogs& files;
  SessionDisplay& display;
};

struct SessionOptions {
  std::string appFolder;        // application folder: profile files, work files, logs
  std::string programFolder;    // the program's own folder: libraries
  std::optional<bool> english;  // absent: the system's default language
  bool simulated = false;       // every instrument is of the simulated kind
  bool writeSettings = true;    // false: neither Corlune.ini nor the work file is ever written
};

// The parts that talk to the outside. `end` is the session's own: it saves the work file before it ends the
// program.
struct OutsideParts {
  std::unique_ptr<GpFrontEnd> gp;
  std::unique_ptr<CompilerLibrary> compiler;
};
using MakeOutsideParts = std::function<OutsideParts(AppState& state, EndProgram& end)>;

}  // namespace corlune
