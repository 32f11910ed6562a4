// Options that the window program and the console program share.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "comm/io_libraries.h"
#include "session/session_ports.h"

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
  // Response file; empty: none. Shared with the parts that were made, where the next opening reads it.
  std::shared_ptr<std::string> simulatedResponses = std::make_shared<std::string>();
};

// The window program's command line: the shared options and the sequence file to open. The exit code when the
// program ends here: after the help, which is printed, or after wrong options.
std::optional<int> ParseWindowOptions(int argc, char** argv, ProgramOptions& options, std::string& file);

// What a command of the console program takes.
struct CommandOption {
  enum class Need { Optional, Required };
  const char* name;  // "-o,--output"; without dashes a position
  const char* what;  // for the help
  const char* type;  // "FILE", shown in the help
  // bool: a flag; int: 0 to 10.
  std::variant<std::string*, std::optional<std::string>*, int*, bool*> value;
  Need need = Need::Optional;
  bool mayBeEmpty = true;
};
struct ConsoleCommand {
  const char* name;
  const char* what;
  std::vector<CommandOption> options;
};
struct ConsoleLine {
  std::optional<int> exitCode;  // the program ends here, see ParseWindowOptions
  std::size_t command = 0;      // index of the one that was given
};
// The console program's command line: the shared options and exactly one of `commands`. Wrong options are
// told on standard error.
ConsoleLine ParseConsoleOptions(int argc, char** argv, ProgramOptions& options,
                                const std::vector<ConsoleCommand>& commands);

// After the parse: --virtual-instrument turns every I/O library that was not named into that of the virtual
// instruments in `programFolder`, which has the interfaces of all four.
void ResolveProgramOptions(ProgramOptions& options, const std::string& programFolder);

// The outside parts that `options` (after ResolveProgramOptions) ask for. `prompts` and `clock` must outlive
// them.
MakeOutsideParts MakeParts(const ProgramOptions& options, const std::string& programFolder, Prompts& prompts,
                           const TickClock& clock);

}  // namespace corlune
