#include "session/program_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>

#include "comm/make_front_end.h"
#include "core/files.h"

namespace corlune {
namespace {

constexpr int kExitOptions = 2;
constexpr const char* kVirtualInstrument =
#ifdef _WIN32
    "corlune-virtual-instrument.dll";
#else
    "libcorlune-virtual-instrument.so";
#endif

void AddLibrary(CLI::App& app, const std::string& name, const std::string& what, LibraryChoice& option,
                bool mayBeBuiltin = false) {
  app.add_option_function<std::string>(
         name,
         [&option, mayBeBuiltin](const std::string& file) {
           option.none = file == "none";
           option.builtin = mayBeBuiltin && file == "builtin";
           option.file = option.none || option.builtin ? std::string() : file;
         },
         what + " library to load, or \"none\"" + (mayBeBuiltin ? ", or \"builtin\"" : ""))
      ->type_name("FILE");
}

void AddProgramOptions(CLI::App& app, ProgramOptions& options) {
  app.add_option("--folder", options.folder, "Application folder: profile files, work files, logs")
      ->type_name("DIR");
  app.add_option_function<std::string>(
         "--lang", [&options](const std::string& language) { options.english = language == "en"; },
         "Language of the texts")
      ->check(CLI::IsMember({"ja", "en"}))
      ->type_name("ja|en");
  AddLibrary(app, "--visa", "VISA", options.visa, true);
  AddLibrary(app, "--gpib", "NI-488.2", options.gpib);
  AddLibrary(app, "--usb488", "USB488", options.usb488);
  AddLibrary(app, "--ieee32m", "IEEE_32M", options.ieee32m);
  AddLibrary(app, "--compiler", "Sequence compiler", options.compiler);
  app.add_flag("--virtual-instrument", options.virtualInstrument,
               "Use the virtual instrument for all interfaces");
  app.add_option_function<std::vector<std::string>>(
         "--simulated",
         [&options](const std::vector<std::string>& values) {
           options.simulated = true;
           *options.simulatedResponses = values.empty() ? std::string() : values.front();
         },
         "Simulated interface for every instrument; replies from the profile file RESPONSES")
      ->expected(0, 1)
      ->type_name("RESPONSES");
}

void AddOption(CLI::App& app, const CommandOption& option) {
  CLI::Option* added = nullptr;
  if (bool* const* flag = std::get_if<bool*>(&option.value)) {
    app.add_flag(option.name, **flag, option.what);
    return;
  }
  if (int* const* number = std::get_if<int*>(&option.value)) {
    added = app.add_option(option.name, **number, option.what)->check(CLI::Range(0, 10));
  } else if (std::string* const* text = std::get_if<std::string*>(&option.value)) {
    added = app.add_option(option.name, **text, option.what);
  } else {
    added = app.add_option(option.name, *std::get<std::optional<std::string>*>(option.value), option.what);
  }
  if (!option.mayBeEmpty) {
    added->check(
        [](const std::string& name) { return std::string(name.empty() ? "the file name is empty" : ""); });
  }
  added->type_name(option.type);
  added->required(option.need == CommandOption::Need::Required);
}

}  // namespace

ConsoleLine ParseConsoleOptions(int argc, char** argv, ProgramOptions& options,
                                const std::vector<ConsoleCommand>& commands) {
  CLI::App app("Corlune console: checks, compiles, sends and runs sequence files", "corlune-cli");
  app.require_subcommand(0, 1);  // its absence is reported after unknown options
  app.fallthrough();
  AddProgramOptions(app, options);
  std::vector<const CLI::App*> subcommands;
  for (const ConsoleCommand& command : commands) {
    CLI::App* sub = app.add_subcommand(command.name, command.what);
    for (const CommandOption& option : command.options) AddOption(*sub, option);
    subcommands.push_back(sub);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) return {app.exit(error), 0};
    std::cerr << "corlune-cli: " << error.what() << std::endl;
    return {kExitOptions, 0};
  }
  const auto given =
      std::find_if(subcommands.begin(), subcommands.end(), [](const CLI::App* sub) { return sub->parsed(); });
  if (given == subcommands.end()) {
    std::cerr << "corlune-cli: a command is needed, see --help" << std::endl;
    return {kExitOptions, 0};
  }
  return {std::nullopt, static_cast<std::size_t>(given - subcommands.begin())};
}

std::optional<int> ParseWindowOptions(int argc, char** argv, ProgramOptions& options, std::string& file) {
  CLI::App app("Corlune: edits, sends and runs step sequences", "corlune");
  AddProgramOptions(app, options);
  app.add_option("file", file, "Sequence file to open")->type_name("FILE");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error, std::cout, std::cerr) == 0 ? 0 : kExitOptions;
  }
  return std::nullopt;
}

void ResolveProgramOptions(ProgramOptions& options, const std::string& programFolder) {
  if (!options.virtualInstrument) return;
  for (LibraryChoice* library : {&options.visa, &options.gpib, &options.usb488, &options.ieee32m}) {
    if (library->file.empty() && !library->none && !library->builtin)
      library->file = JoinPath(programFolder, kVirtualInstrument);
  }
}

MakeOutsideParts MakeParts(const ProgramOptions& options, const std::string& programFolder, Prompts& prompts,
                           const TickClock& clock) {
  return [options, programFolder, &prompts, &clock](AppState& state, EndProgram& end) {
    const CommOptions comm{programFolder,
                           options.visa,
                           options.gpib,
                           options.usb488,
                           options.ieee32m,
                           options.simulated,
                           options.simulatedResponses};
    return OutsideParts{MakeGpFrontEnd(state, comm, prompts, end, clock),
                        std::make_unique<LoadedCompiler>(programFolder, options.compiler.file)};
  };
}

}  // namespace corlune
