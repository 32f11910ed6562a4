#include "execution/queries.h"

#include <optional>
#include <string_view>

#include "core/numbers.h"
#include "core/profile_file.h"

namespace corlune {

namespace {
// Sum of the first two outputs of a two-channel answer such as "1;1".
int SumOfTwo(const std::string& reply) {
  const auto parts = SplitList(reply, ';');
  int sum = 0;
  for (std::size_t i = 0; i < 2 && i < parts.size(); ++i) sum += ParseInt16(parts[i]).value_or(0);
  return sum;
}

// Whether the outputs of one instrument are on; nullopt when they differ or the reply cannot be read.
std::optional<bool> OutputsOn(const std::string& reply) {
  std::optional<bool> all;
  for (const std::string_view part : SplitList(reply, ';')) {
    const auto on = ParseInt16(part);
    if (!on || (*on != 0 && *on != 1) || (all && *all != (*on == 1))) return std::nullopt;
    all = *on == 1;
  }
  return all;
}
}  // namespace

bool RunQueries::Recover(std::int32_t address, const CommandEntry& query) {
  GpFrontEnd& gp = run_.commands.Gp();
  // The second sending decides; a clear that fails shows itself there.
  gp.GP_IFC();
  gp.GP_DCL();
  const std::int32_t wait = run_.commands.Definition().Commands.OutputQuery.Wait;
  return !Failed(run_.commands.SendCommand(address, query.Template, wait));
}

bool RunQueries::Query(int instrument, const CommandEntry& query, std::string& reply) {
  const std::int32_t address = run_.commands.SelectInstrument(instrument);
  CommStatus status = run_.commands.SendCommand(address, query.Template, query.Wait);
  if (Has(status, CommStatus::TimeOut)) {
    if (!Recover(address, query)) return false;
  } else if (Failed(status)) {
    return false;
  }
  // A handler that ran while the command waited may have addressed another instrument.
  run_.commands.SelectInstrument(instrument);
  status = run_.commands.ReceiveReply(address, reply);
  if (Has(status, CommStatus::TimeOut)) {
    if (!Recover(address, query)) return false;
    run_.commands.SelectInstrument(instrument);
    status = run_.commands.ReceiveReply(address, reply);
  }
  return !Failed(status);
}

void RunQueries::GiveUpRun() {
  // Nobody knows what became of it at the instruments.
  if (measure_.Monitoring()) run_.state.MayStillRun = true;
  run_.state.OutputInDoubt = true;
  measure_.MeasureEnd();
  RefreshBoth(run_);
}

void RunQueries::BackToEditMode() {
  run_.state.OperationMode = OperationMode::Edit;
  run_.display.ShowModeLayout(static_cast<int>(OperationMode::Edit));
  GiveUpRun();
}

void RunQueries::StopAllForOutputOff(int instrument) {
  const CommandEntry& stop = run_.commands.Definition().Commands.Stop;
  const auto stopped = [&](int i) {
    return !Failed(run_.commands.SendCommand(run_.commands.SelectInstrument(i), stop.Template, stop.Wait));
  };
  int failed = -1;
  for (int other = 0; other < run_.state.InstrumentCount; ++other) {
    if (other != instrument && !stopped(other) && failed < 0) failed = other;
  }
  const bool itself = stopped(instrument);
  if (!itself || failed >= 0) run_.state.MayStillRun = true;
  if (failed >= 0) {
    DoubtOutput(run_.state);
    ShowCommunicationError(run_, failed, PromptIcon::Critical);
  } else {
    ShowMessage(run_.prompts, run_.catalogue, TextId::OutputTurnedOff, PromptIcon::Information,
                PromptButtons::Ok, {std::to_string(instrument + 1)});
  }
  measure_.MeasureEnd();
  RefreshBoth(run_);
}

void RunQueries::NoteOutput(std::optional<bool> on) {
  AppState& state = run_.state;
  // The answer of one among several says nothing of the others, unless all were switched alike and it agrees.
  const bool open = state.InstrumentCount > 1 && (state.OutputInDoubt || on != state.OutputOn);
  state.OutputInDoubt = open || !on;
}

int RunQueries::OutputQuery(int instrument, OutputCheck check) {
  if (!run_.commands.Online()) return 1;
  std::string reply;
  if (!Query(instrument, run_.commands.Definition().Commands.OutputQuery, reply)) {
    ShowCommunicationError(run_, instrument, PromptIcon::Exclamation);
    GiveUpRun();
    return kQueryFailed;
  }
  NoteOutput(OutputsOn(reply));
  if (reply.find(';') != std::string::npos) reply = SumOfTwo(reply) == 2 ? "1" : "0";
  const int result = ParseInt16(reply).value_or(0);
  if (result == 0 && check == OutputCheck::WhileRunning && run_.state.RunState == RunState::Running) {
    StopAllForOutputOff(instrument);
  }
  return result;
}

int RunQueries::StatusQuery(int instrument) {
  if (!run_.commands.Online()) return 0;
  std::string reply;
  if (!Query(instrument, run_.commands.Definition().Commands.Status, reply)) {
    ShowCommunicationError(run_, instrument, PromptIcon::Exclamation);
    BackToEditMode();
    return kQueryFailed;
  }
  return ParseInt16(reply).value_or(0);
}

int RunQueries::StepQuery(int instrument) {
  // Without an instrument nothing moves on: the run stays where it is until it is stopped.
  if (!run_.commands.Online()) return measure_.Monitoring() ? run_.state.CurrentStep : 0;
  const CommandEntry& query = run_.commands.Definition().Commands.CurrentStep;
  std::string reply;
  bool answered = Query(instrument, query, reply);
  if (answered && !ParseInt16(reply)) {
    const std::int32_t address = run_.commands.SelectInstrument(instrument);
    reply.clear();
    answered = Recover(address, query);
    if (answered) {
      run_.commands.SelectInstrument(instrument);
      answered = !Failed(run_.commands.ReceiveReply(address, reply));
    }
  }
  if (answered) {
    if (const auto step = ParseInt16(reply)) return *step;
  } else {
    ShowCommunicationError(run_, instrument, PromptIcon::Exclamation);
  }
  BackToEditMode();
  return kStepQueryFailed;
}

}  // namespace corlune
