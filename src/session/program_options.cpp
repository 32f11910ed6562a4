#include "session/program_options.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "comm/make_front_end.h"
#include "core/files.h"

namespace corlune {
namespace {

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

}  // namespace

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
           options.simulatedResponses = values.empty() ? std::string() : values.front();
         },
         "Simulated interface for every instrument; replies from the profile file RESPONSES")
      ->expected(0, 1)
      ->type_name("RESPONSES");
}

std::optional<int> ParseWindowOptions(int argc, char** argv, ProgramOptions& options, std::string& file) {
  constexpr int kExitOptions = 2;
  CLI::App app("Corlune: edits, downloads and runs step sequences", "corlune");
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
