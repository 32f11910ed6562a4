// corlune-cli: the console program. Options and commands are described in the user guide.
#include <iostream>
#include <string_view>
#include <vector>

#include "cli/commands.h"
#include "platform/folders.h"
#include "platform/language.h"

namespace corlune {
namespace {

// Output that did not arrive is no success.
int CheckOutput(const MessageCatalogue& catalogue, int exitCode) {
  std::cout.flush();
  return std::cout || exitCode != kExitSuccess ? exitCode
                                               : Fail(catalogue.GetResString(TextId::CannotWriteOutput));
}

int Main(int argc, char** argv) {
  constexpr auto kNeeded = CommandOption::Need::Required;
  constexpr auto kOptional = CommandOption::Need::Optional;
  ProgramOptions options;
  std::string file;
  std::string out;
  bool work = false;
  RunOptions run;
  ReadOptions read;
  DevicesOptions list;
  ConsoleAnswers answers;
  const auto sequence = [&](std::string& value) {
    return CommandOption{"file", "Sequence file, in either form", "FILE", &value, kNeeded};
  };
  const auto output = [](std::string& value, const char* what, CommandOption::Need need) {
    return CommandOption{"-o,--output", what, "OUT", &value, need, false};
  };
  const auto memory = [](const char* name, int& value, CommandOption::Need need) {
    return CommandOption{name, "Sequence memory of the instrument, 0 to 10", "N", &value, need};
  };
  const auto serial = [](std::optional<std::string>& value) {
    return CommandOption{"--serial", "Serial number of the USBTMC instrument", "S", &value};
  };
  const std::vector<ConsoleCommand> commands{
      {"check", "Reads a sequence file and its waveforms and says what is wrong", {sequence(file)}},
      {"text",
       "Writes the sequence text",
       {sequence(file), output(out, "File to write; absent: standard output", kOptional)}},
      {"compile",
       "Compiles the sequence",
       {sequence(file),
        output(out, "File to write; absent: sendata.bin in the application folder", kOptional)}},
      {"save",
       "Rewrites a sequence file",
       {sequence(file),
        {"--work", "In the work-file form", "", &work},
        output(out, "File to write, named as it stands", kNeeded)}},
      {"times", "Run time of each step and in total, in ms (-1: endless)", {sequence(file)}},
      {"wave",
       "Writes the transfer block of a waveform file",
       {{"file", "Waveform file, .txt or .wdb", "FILE", &file, kNeeded},
        output(out, "File to write", kNeeded)}},
      {"run",
       "Sends a sequence to the instrument, runs it and follows it to its end",
       {sequence(run.file),
        {"--name", "Sequence name, at most 20 characters", "NAME", &answers.Name},
        memory("--number", run.number, kOptional),
        serial(run.serial),
        {"--yes", "Answers every question with OK or Yes", "", &answers.Yes},
        {"--offline", "Computes the run times only", "", &run.offline}}},
      {"read",
       "Reads a sequence back from the instrument",
       {memory("number", read.number, kNeeded),
        output(read.out, "Sequence file to write; absent: the sequence text", kOptional),
        {"--setup", "Sequence file that names model and set-up", "FILE", &read.setup},
        serial(read.serial)}},
      {"devices",
       "Lists the instruments found, or why none could be",
       {{"--verbose", "Also the I/O libraries: the file of each, or why none serves", "", &list.verbose},
        {"--setup", "Sequence file; its GPIB and USB488 addresses are asked, too", "FILE", &list.setup}}},
  };
  const ConsoleLine line = ParseConsoleOptions(argc, argv, options, commands);
  if (line.exitCode) return CheckOutput(MessageCatalogue(CheckLanguage() ? 10000 : 0), *line.exitCode);
  ResolveProgramOptions(options, ProgramFolder());
  const std::string_view command = commands[line.command].name;

  if (command == "wave") {
    const bool english = options.english.value_or(CheckLanguage());
    return WaveCommand(MessageCatalogue(english ? 10000 : 0), file, out);
  }
  ConsoleProgram program(options, answers);
  int code = kExitOptions;
  if (command == "check") code = CheckCommand(program, file);
  if (command == "text") code = TextCommand(program, file, out);
  if (command == "compile") code = CompileCommand(program, file, out);
  if (command == "save") code = SaveCommand(program, file, work, out);
  if (command == "times") code = TimesCommand(program, file);
  if (command == "run") code = RunSequenceCommand(program, run);
  if (command == "read") code = ReadCommand(program, read);
  if (command == "devices") code = DevicesCommand(program, list);
  return CheckOutput(program.Catalogue(), code);
}

}  // namespace
}  // namespace corlune

int main(int argc, char** argv) {
  return corlune::Main(argc, argv);
}
