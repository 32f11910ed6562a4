// Options that the window program and the console program share.
#pragma once

#include <optional>
#include <string>

#include "comm/io_libraries.h"
#include "session/session_ports.h"

namespace CLI {
class App;
}

namespace corlune {

struct ProgramOptions {
  std::string folder;           // --folder, empty: the default application folder
  std::optional<bool> english;  // --lang
  LibraryChoice visa;
  LibraryChoice gpib;
  LibraryChoice usb488;
  LibraryChoice ieee32m;
  LibraryChoice compiler;
  bool virtualInstrument = false;
  bool simulated = false;
  std::string simulatedResponses;  // response file; empty: none
};

// Adds the shared options to `app`; `options` is filled by its parse.
void AddProgramOptions(CLI::App& app, ProgramOptions& options);

// The window program's command line: the shared options and the sequence file to open. The exit code when the
// program ends here: after the help, which is printed, or after wrong options.
std::optional<int> ParseWindowOptions(int argc, char** argv, ProgramOptions& options, std::string& file);

// After the parse: --virtual-instrument turns every I/O library that was not named into that of the virtual
// instruments in `programFolder`, which has the interfaces of all four.
void ResolveProgramOptions(ProgramOptions& options, const std::string& programFolder);

// The outside parts that `options` (after ResolveProgramOptions) ask for. `prompts` and `clock` must outlive
// them.
MakeOutsideParts MakeParts(const ProgramOptions& options, const std::string& programFolder, Prompts& prompts,
                           const TickClock& clock);

}  // namespace corlune
