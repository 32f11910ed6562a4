// corlune-cli: the console program. Options and commands are described in the user guide.
#include <CLI/CLI.hpp>
#include <iostream>

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
  CLI::App app("Corlune console: checks, compiles, downloads and runs sequence files", "corlune-cli");
  app.require_subcommand(0, 1);  // its absence is reported after unknown options
  app.fallthrough();
  ProgramOptions options;
  AddProgramOptions(app, options);

  std::string file;
  std::string out;
  bool work = false;
  RunOptions run;
  ReadOptions read;
  DevicesOptions list;
  ConsoleAnswers answers;
  const auto addOutput = [](CLI::App* sub, std::string& value, const char* what) {
    return sub->add_option("-o,--output", value, what)
        ->check(
            [](const std::string& name) { return std::string(name.empty() ? "the file name is empty" : ""); })
        ->type_name("OUT");
  };
  const auto command = [&app](const char* name, const char* what) { return app.add_subcommand(name, what); };
  const auto addFile = [](CLI::App* sub, std::string& value) {
    sub->add_option("file", value, "Sequence file, in either form")->required()->type_name("FILE");
  };
  const auto addNumber = [](CLI::App* sub, const char* name, int& value, const char* what) {
    return sub->add_option(name, value, what)->check(CLI::Range(0, 10))->type_name("N");
  };

  CLI::App* check = command("check", "Reads a sequence file and its waveforms and says what is wrong");
  addFile(check, file);
  CLI::App* text = command("text", "Writes the sequence text");
  addFile(text, file);
  addOutput(text, out, "File to write; absent: standard output");
  CLI::App* compile = command("compile", "Compiles the sequence");
  addFile(compile, file);
  addOutput(compile, out, "File to write; absent: sendata.bin in the application folder");
  CLI::App* save = command("save", "Rewrites a sequence file");
  addFile(save, file);
  save->add_flag("--work", work, "In the work-file form");
  addOutput(save, out, "File to write, named as it stands")->required();
  CLI::App* times = command("times", "Run time of each step and in total, in ms (-1: endless)");
  addFile(times, file);
  CLI::App* wave = command("wave", "Writes the transfer block of a waveform file");
  wave->add_option("file", file, "Waveform file, .txt or .wdb")->required()->type_name("FILE");
  addOutput(wave, out, "File to write")->required();
  CLI::App* runApp = command("run", "Downloads a sequence, runs it and follows it to its end");
  addFile(runApp, run.file);
  runApp->add_option("--name", answers.Name, "Sequence name, at most 20 characters")->type_name("NAME");
  addNumber(runApp, "--number", run.number, "Sequence memory of the instrument, 0 to 10");
  runApp->add_option("--serial", run.serial, "Serial number of the USBTMC instrument")->type_name("S");
  runApp->add_flag("--yes", answers.Yes, "Answers every question with OK or Yes");
  runApp->add_flag("--offline", run.offline, "Computes the run times only");
  CLI::App* readApp = command("read", "Reads a sequence back from the instrument");
  addNumber(readApp, "number", read.number, "Sequence memory of the instrument, 0 to 10")->required();
  addOutput(readApp, read.out, "Sequence file to write; absent: the sequence text");
  readApp->add_option("--setup", read.setup, "Sequence file that names model and set-up")->type_name("FILE");
  readApp->add_option("--serial", read.serial, "Serial number of the USBTMC instrument")->type_name("S");
  CLI::App* devices = command("devices", "Lists the instruments found, or why none could be");
  devices->add_flag("--verbose", list.verbose,
                    "Also the I/O libraries: the file of each, or why none serves");
  devices->add_option("--setup", list.setup, "Sequence file; its GPIB and USB488 addresses are asked, too")
      ->type_name("FILE");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
      return CheckOutput(MessageCatalogue(CheckLanguage() ? 10000 : 0), app.exit(error));
    }
    std::cerr << "corlune-cli: " << error.what() << std::endl;
    return kExitOptions;
  }
  if (app.get_subcommands().empty()) {
    std::cerr << "corlune-cli: a command is needed, see --help" << std::endl;
    return kExitOptions;
  }
  ResolveProgramOptions(options, ProgramFolder());

  if (wave->parsed()) {
    const bool english = options.english.value_or(CheckLanguage());
    return WaveCommand(MessageCatalogue(english ? 10000 : 0), file, out);
  }
  ConsoleProgram program(options, answers);
  int code = kExitOptions;
  if (check->parsed()) code = CheckCommand(program, file);
  if (text->parsed()) code = TextCommand(program, file, out);
  if (compile->parsed()) code = CompileCommand(program, file, out);
  if (save->parsed()) code = SaveCommand(program, file, work, out);
  if (times->parsed()) code = TimesCommand(program, file);
  if (runApp->parsed()) code = RunSequenceCommand(program, run);
  if (readApp->parsed()) code = ReadCommand(program, read);
  if (devices->parsed()) code = DevicesCommand(program, list);
  return CheckOutput(program.Catalogue(), code);
}

}  // namespace
}  // namespace corlune

int main(int argc, char** argv) {
  return corlune::Main(argc, argv);
}
