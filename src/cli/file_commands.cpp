#include <iostream>
#include <set>

#include "cli/commands.h"
#include "compile/sequence_text.h"
#include "compile/step_flow.h"
#include "compile/transfer_file.h"
#include "core/files.h"
#include "core/numbers.h"
#include "editing/sequence_check.h"
#include "sequence/channel_tabs.h"
#include "sequence/run_times.h"
#include "sequence/waveform_file.h"

namespace corlune {
namespace {

int Emit(const std::string& text, const std::string& out) {
  if (!out.empty()) return WriteOutput(out, text);
  std::cout << text;
  return kExitSuccess;
}

// What is wrong with a waveform file, as one line.
std::string WaveformComplaint(const MessageCatalogue& catalogue, const std::string& path,
                              const WaveformRead& read) {
  std::string text = path + ": ";
  if (const auto message = MessageOf(read.problem)) text += catalogue.GetResString(*message);
  return text + (text.back() == ' ' ? "" : " ") + ReasonText(read.reason, catalogue);
}

}  // namespace

int CheckCommand(ConsoleProgram& program, const std::string& file) {
  if (!program.Load(file)) return kExitFailed;
  Session& session = program.GetSession();
  const SequenceData& sequence = session.Sequence();
  const AppState& state = session.State();
  const MessageCatalogue& catalogue = program.Catalogue();
  const auto findings =
      CheckSequenceData({state, session.Definition(), sequence, catalogue, session.Compiler()});
  for (const SequenceFinding& finding : findings) Fail(FindingLine(finding, catalogue, sequence.StartStep));
  if (PreventsDownload(findings)) return kExitFailed;

  const int channels = EditedChannels(state);
  std::set<int> arbs;
  for (int channel = 0; channel < channels; ++channel) {
    for (int step = 0; step < sequence.StepCount; ++step) {
      const int number = ArbNumberOf(sequence.Cell(channel, step, kSlotArbNumber));
      if (WaveformOf(sequence, channel, step) == kWaveUser && number != 0) arbs.insert(number);
    }
  }
  return Emit(catalogue.GetResString(TextId::SequenceSummary,
                                     {state.ModelName, std::to_string(sequence.StepCount),
                                      std::to_string(channels), std::to_string(arbs.size())}) +
                  "\n",
              {});
}

int TextCommand(ConsoleProgram& program, const std::string& file, const std::string& out) {
  if (!program.Load(file)) return kExitFailed;
  Session& session = program.GetSession();
  const AppState& state = session.State();
  std::string text;
  AppendSequenceText(text, session.Sequence(), session.Definition(), state.ModelName, EditedChannels(state));
  return Emit(text, out);
}

int CompileCommand(ConsoleProgram& program, const std::string& file, const std::string& out) {
  if (!program.Load(file)) return kExitFailed;
  std::string compiled;
  if (!program.Compile(compiled)) return kExitFailed;
  const std::string path =
      out.empty() ? JoinPath(program.GetSession().State().AppFolder, kSendFileName) : out;
  if (WriteOutput(path, compiled) != kExitSuccess) return kExitFailed;
  std::cout << program.Catalogue().GetResString(TextId::FileSize, {path, std::to_string(compiled.size())})
            << std::endl;
  return kExitSuccess;
}

int SaveCommand(ConsoleProgram& program, const std::string& file, bool work, const std::string& out) {
  if (!program.Load(file)) return kExitFailed;
  return program.GetSession().WriteFile(out, !work) ? kExitSuccess : kExitFailed;
}

int TimesCommand(ConsoleProgram& program, const std::string& file) {
  return program.Load(file) ? PrintTimes(program) : kExitFailed;
}

int PrintTimes(ConsoleProgram& program) {
  SequenceData& sequence = program.GetSession().Sequence();
  const RunTimes times = ComputeRunTimes(sequence, program.GetSession().Definition());
  std::string lines;
  for (int step = 0; step < sequence.StepCount; ++step) {
    AppendInteger(lines, sequence.StartStep + step);
    lines += ' ';
    AppendNumber(lines, sequence.Step(step).StepRunTime);
    lines += '\n';
  }
  AppendNumber(lines, times.Total);
  lines += '\n';
  return Emit(lines, {});
}

int WaveCommand(const MessageCatalogue& catalogue, const std::string& file, const std::string& out) {
  const WaveformRead read = ReadArbFile(file);
  if (read.problem != WaveformProblem::None) return Fail(WaveformComplaint(catalogue, file, read));
  return WriteOutput(out,
                     std::string_view(reinterpret_cast<const char*>(read.block.data()), read.block.size()));
}

}  // namespace corlune
