// What every test of a back-end needs: application state with a folder of its own, a person, a clock, and
// the communication log as lines.
#pragma once

#include <string>
#include <vector>

#include "comm/gp_backend_base.h"
#include "core/app_state.h"
#include "support/fake_ports.h"
#include "support/temp_folder.h"

namespace corlune::testing {

struct CommWorld {
  CommWorld() { state.AppFolder = folder.Path(); }

  BackendServices Services() { return {state, prompts, endProgram, clock}; }
  // Lines of "comm.log" in the application folder; every one must end with CR LF.
  std::vector<std::string> Log(const std::string& name = "comm.log") const {
    const std::string text = TempFolder::Read(folder.File(name));
    std::vector<std::string> lines;
    std::size_t begin = 0;
    for (std::size_t end; (end = text.find("\r\n", begin)) != std::string::npos; begin = end + 2) {
      lines.push_back(text.substr(begin, end - begin));
    }
    if (begin != text.size()) lines.push_back("(no line end) " + text.substr(begin));
    return lines;
  }
  void ClearLog() const { folder.Write("comm.log", ""); }

  TempFolder folder;
  AppState state;
  ScriptedPrompts prompts;
  RecordedEnd endProgram;
  FakeClock clock;
};

}  // namespace corlune::testing
