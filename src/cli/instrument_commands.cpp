#include <algorithm>
#include <iostream>

#include "cli/commands.h"
#include "comm/gp_codes.h"
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

namespace {

// Asks the addresses of the set-up that no search finds; the number of those that answered.
int AskAddresses(ConsoleProgram& program) {
  Session& session = program.GetSession();
  AppState& state = session.State();
  const CommandTable& commands = session.Definition().Commands;
  int answered = 0;
  for (int i = 0; i < state.InstrumentCount; ++i) {
    const InstrumentEntry& entry = state.Instruments[static_cast<std::size_t>(i)];
    if (entry.InterfaceKind == InterfaceKind::UsbTmc) continue;
    const auto address = static_cast<std::int16_t>(session.Commands().SelectInstrument(i));
    GpFrontEnd& gp = session.Gp();
    std::string reply;
    const bool answers = !Failed(gp.GP_Init(commands.LibraryInit, i == 0)) &&
                         !Failed(gp.GP_Time_Out(kTimeOut3s)) &&
                         !Failed(gp.GP_Send_Str(address, commands.Model.Template)) &&
                         !Failed(gp.GP_Receive_Str(address, reply));
    std::string problem = gp.OwnLibraryProblem();
    if (problem.empty()) problem = program.Catalogue().GetResString(TextId::DeviceSilent);
    gp.GP_End();
    answered += answers;
    const auto& names = session.Definition().InterfaceOf(state.ModelIndex).InterfaceNames;
    const auto index = static_cast<std::size_t>(std::max<std::int16_t>(entry.Interface, 0));
    std::cout << (index < names.size() ? names[index] : std::string()) << "  " << address << "  "
              << (answers ? reply : problem) << std::endl;
  }
  return answered;
}

}  // namespace

int DevicesCommand(ConsoleProgram& program, const DevicesOptions& options) {
  Session& session = program.GetSession();
  if (options.setup.empty() ? !program.StartWithoutFile() : !program.Load(options.setup)) return kExitFailed;
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
  if (!options.setup.empty()) found += AskAddresses(program);
  if (options.verbose) {
    for (const std::string& line : session.Gp().LibraryLines(true)) std::cout << line << std::endl;
  }
  if (found > 0) return kExitSuccess;
  return Fail(program.Catalogue().GetResString(TextId::NoInstrument) +
              (problem.empty() ? std::string() : "\n" + problem));
}

}  // namespace corlune
