#include <iostream>

#include "cli/commands.h"
#include "compile/sequence_text.h"
#include "sequence/channel_tabs.h"

namespace corlune {

int ReadCommand(ConsoleProgram& program, const ReadOptions& options) {
  Session& session = program.GetSession();
  if (options.out.empty()) program.ProgressLine().UseStandardError();
  if (options.setup.empty() ? !program.StartWithoutFile() : !program.Load(options.setup)) return kExitFailed;
  // The instrument only waits to be read, so a read can be given up at any time.
  program.Loop().OnInterrupt([&](int) {
    session.Disconnect();
    program.EndNow(kExitFailed);
  });
  if (!program.Connect(options.serial)) return kExitFailed;
  session.Sequence().SequenceNumber = static_cast<std::int16_t>(options.number);
  const bool received = session.ReadBack();
  program.Loop().OnInterrupt({});
  session.Disconnect();
  if (!received) return kExitFailed;
  if (!options.out.empty()) return session.WriteFile(options.out, true) ? kExitSuccess : kExitFailed;
  std::string text;
  AppendSequenceText(text, session.Sequence(), session.Definition(), session.State().ModelName,
                     EditedChannels(session.State()));
  std::cout << text;
  return kExitSuccess;
}

int DevicesCommand(ConsoleProgram& program) {
  Session& session = program.GetSession();
  if (!program.StartWithoutFile()) return kExitFailed;
  int found = 0;
  std::string problem;
  const ModelDefinition& definition = session.Definition();
  for (std::size_t model = 0; model < definition.Models.size(); ++model) {
    const std::string& prefix = definition.Interfaces[model].UsbTmcId;
    if (prefix.empty()) continue;
    session.State().CurrentInterface = InterfaceKind::UsbTmc;
    found += session.Gp().GP_Find_Devices(prefix + "?*INSTR");
    for (const FoundInstrument& instrument : session.Gp().Found()) {
      std::cout << definition.Models[model] << "  " << instrument.SerialNo << "  " << instrument.Resource
                << std::endl;
    }
    problem = session.Gp().LibraryProblem();
  }
  if (found > 0) return kExitSuccess;
  return Fail(program.Catalogue().GetResString(TextId::NoInstrument) +
              (problem.empty() ? std::string() : "\n" + problem));
}

}  // namespace corlune
