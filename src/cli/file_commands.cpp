#include <iostream>
#include <set>

#include "cli/commands.h"
#include "compile/sequence_text.h"
#include "compile/transfer_file.h"
#include "core/files.h"
#include "core/numbers.h"
#include "sequence/channel_tabs.h"
#include "sequence/run_times.h"
#include "sequence/waveform_file.h"
#include "sequence/waveform_path.h"

namespace corlune {
namespace {

int Emit(const std::string& text, const std::string& out) {
  if (!out.empty()) return WriteOutput(out, text);
  std::cout << text << std::flush;
  return std::cout ? kExitSuccess : Fail("standard output: write failed");
}

// What is wrong with a waveform file, as one line.
std::string WaveformComplaint(const MessageCatalogue& catalogue, const std::string& path,
                              const WaveformRead& read) {
  std::string text = path + ": ";
  if (const int message = MessageOf(read.problem); message != 0) text += catalogue.GetResString(message);
  if (!read.reason.empty()) text += (text.back() == ' ' ? "" : " ") + read.reason;
  return text;
}

}  // namespace

int CheckCommand(ConsoleProgram& program, const std::string& file) {
  if (!program.Load(file)) return kExitFailed;
  Session& session = program.GetSession();
  const SequenceData& sequence = session.Sequence();
  const AppState& state = session.State();
  const int channels = EditedChannels(state);

  int exitCode = kExitSuccess;
  std::set<int> arbs;
  for (int channel = 0; channel < channels; ++channel) {
    for (int step = 0; step < sequence.StepCount; ++step) {
      if (sequence.Cell(channel, step, kSlotWaveform).Value != double{kWaveUser}) continue;
      const double number = sequence.Cell(channel, step, kSlotArbNumber).Value;
      if (number >= 1 && number <= kArbNumbers) arbs.insert(static_cast<int>(number));
    }
  }
  for (const int number : arbs) {
    const std::string& stored = sequence.Channels.ArbFiles[static_cast<std::size_t>(number - 1)].FilePath;
    if (stored.empty()) continue;  // may be in the instrument already; the download checks that
    const std::string path = ResolveWaveformPath(stored, state);
    const WaveformRead read = ReadArbFile(path);
    if (read.problem != WaveformProblem::None) {
      exitCode = Fail(WaveformComplaint(program.Catalogue(), path, read));
    }
  }
  if (exitCode != kExitSuccess) return exitCode;
  std::cout << program.Catalogue().GetResString(8103, {state.ModelName, std::to_string(sequence.StepCount),
                                                       std::to_string(channels), std::to_string(arbs.size())})
            << std::endl;
  return kExitSuccess;
}

int TextCommand(ConsoleProgram& program, const std::string& file, const std::string& out) {
  if (!program.Load(file)) return kExitFailed;
  const AppState& state = program.GetSession().State();
  std::string text;
  AppendSequenceText(text, program.GetSession().Sequence(), state.ModelName, EditedChannels(state));
  return Emit(text, out);
}

int CompileCommand(ConsoleProgram& program, const std::string& file, const std::string& out) {
  if (!program.Load(file)) return kExitFailed;
  std::string compiled;
  if (!program.Compile(compiled)) return kExitFailed;
  const std::string path =
      out.empty() ? JoinPath(program.GetSession().State().AppFolder, kSendFileName) : out;
  if (WriteOutput(path, compiled) != kExitSuccess) return kExitFailed;
  std::cout << program.Catalogue().GetResString(8104, {path, std::to_string(compiled.size())}) << std::endl;
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
  const RunTimes times = ComputeRunTimes(sequence);
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
