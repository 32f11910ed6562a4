// The commands of the console program. Each returns the exit code; what went wrong has been said on
// standard error.
#pragma once

#include <optional>
#include <string>

#include "cli/console_program.h"

namespace corlune {

// Loads the file and reads every waveform that its steps use.
int CheckCommand(ConsoleProgram& program, const std::string& file);
// The sequence text, to standard output or `out`.
int TextCommand(ConsoleProgram& program, const std::string& file, const std::string& out);
// The compiled sequence, to `out`, or to "sendata.bin" in the application folder.
int CompileCommand(ConsoleProgram& program, const std::string& file, const std::string& out);
// Rewrites the file in the user-file form, or the work-file form.
int SaveCommand(ConsoleProgram& program, const std::string& file, bool work, const std::string& out);
// Run time of every step in ms, then the total (-1: endless).
int TimesCommand(ConsoleProgram& program, const std::string& file);
// The same for the sequence that is loaded.
int PrintTimes(ConsoleProgram& program);
// The transfer block of a waveform file.
int WaveCommand(const MessageCatalogue& catalogue, const std::string& file, const std::string& out);

struct RunOptions {
  std::string file;
  std::optional<std::string> serial;
  int number = 0;  // instrument memory 0..10
  bool offline = false;
};
// Downloads the sequence, runs it and follows it to its end.
int RunSequenceCommand(ConsoleProgram& program, const RunOptions& options);

struct ReadOptions {
  int number = 0;
  std::string setup;  // sequence file that names model and set-up; empty: the first USBTMC instrument found
  std::string out;    // user-form sequence file; empty: the sequence text on standard output
  std::optional<std::string> serial;
};
int ReadCommand(ConsoleProgram& program, const ReadOptions& options);

// Lists what the instrument search finds for every model, or why no library could be used. With a set-up also
// what its GPIB and USB488 addresses answer; `verbose`: all I/O libraries, where they were loaded from or why
// not.
struct DevicesOptions {
  std::string setup;  // sequence file; empty: none
  bool verbose = false;
};
int DevicesCommand(ConsoleProgram& program, const DevicesOptions& options);

}  // namespace corlune
