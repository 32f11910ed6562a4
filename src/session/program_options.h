// Options that the window program and the console program share.
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace corlune {

// Which shared library an interface uses: the default names, one file, or none at all.
struct LibraryOption {
  bool none = false;
  std::string file;  // empty: the default names
};

struct ProgramOptions {
  std::string folder;           // --folder, empty: the default application folder
  std::optional<bool> english;  // --lang
  LibraryOption visa;
  LibraryOption gpib;
  LibraryOption usb488;
  LibraryOption ieee32m;
  LibraryOption compiler;
  bool virtualInstrument = false;
  bool simulated = false;
  std::string simulatedResponses;  // response file; empty: none
};

// Adds the shared options to `app`; `options` is filled by its parse.
void AddProgramOptions(CLI::App& app, ProgramOptions& options);

// After the parse: --virtual-instrument turns every I/O library that was not named into the virtual
// instrument's face in `programFolder`, or into none where it has no face.
void ResolveProgramOptions(ProgramOptions& options, const std::string& programFolder);

}  // namespace corlune
