// Session: waveforms that a person sends, deletes or looks for one by one, outside a download.
#include <algorithm>

#include "comm/gp_codes.h"
#include "sequence/waveform_path.h"
#include "session/session.h"

namespace corlune {

namespace {

constexpr std::int32_t kSecond = 1000;  // ms

ArbFileEntry& EntryOf(ArbEntries& entries, int number) {
  return entries[static_cast<std::size_t>(number - 1)];
}

}  // namespace

WaveformOutcome Session::SendWaveforms(ArbEntries& entries, std::span<const int> numbers, WaveFacts& facts,
                                       const WaveformWatch& watch) {
  WaveformOutcome outcome;
  if (state_.Online != 1 || !Idle()) return outcome;
  {
    const WorkGuard guard(activity_, Work::Download);
    endWaveforms_ = false;
    std::vector<WaveformPlan> plan;
    if (!PlanWaveforms(entries, numbers, facts, plan, outcome) || !AgreeToGoOn()) return outcome;
    waveforms_->SetTimeOut(kTimeOut30s);
    SendPlanned(entries, plan, watch, outcome);
    waveforms_->SetTimeOut(kTimeOut3s);
  }
  NoticeLostConnection();
  return outcome;
}

// Nothing is sent unless all of it can be.
bool Session::PlanWaveforms(const ArbEntries& entries, std::span<const int> numbers, WaveFacts& facts,
                            std::vector<WaveformPlan>& plan, WaveformOutcome& outcome) {
  if (!commands_->CarriesBlocks()) {
    ShowMessage(ports_.prompts, catalogue_, TextId::CarriesNoBlocks, PromptIcon::Exclamation);
    return false;
  }
  for (const int number : numbers) {
    const std::string& stored = entries[static_cast<std::size_t>(number - 1)].FilePath;
    const WaveFact fact = facts.Count(ResolveWaveformPath(stored, state_));
    if (!fact.Usable()) {
      outcome.Number = number;
      WarnOfWaveform(number, stored, ReasonText(fact.Reason, catalogue_));
      return false;
    }
    ArbFileEntry sent;
    sent.ArrayForm = fact.ArrayForm ? 1 : 0;
    sent.PointCount = fact.Points;
    plan.push_back({number, fact.Stamp.Size, TransferTime(sent)});
    ports_.pump.HandlePending();
    if (endWaveforms_) return false;
  }
  return true;
}

void Session::SendPlanned(ArbEntries& entries, const std::vector<WaveformPlan>& plan,
                          const WaveformWatch& watch, WaveformOutcome& outcome) {
  WaveformStep step;
  step.Count = static_cast<int>(plan.size());
  for (const WaveformPlan& one : plan) {
    step.BytesAll += one.Bytes;
    step.TimeLeft += one.Time;
  }
  bool goesOn = true;
  outcome.End = WaveformEnd::Done;
  for (const WaveformPlan& one : plan) {
    step.Number = one.Number;
    goesOn = watch(step) && goesOn;
    if (!goesOn || endWaveforms_) {
      outcome.End = WaveformEnd::Ended;
      return;
    }
    ArbFileEntry& entry = EntryOf(entries, one.Number);
    const ArbFileEntry before = entry;
    const std::int32_t after = step.TimeLeft - one.Time;
    ArbTransfer result = waveforms_->SendAndCheck(entry, one.Number, [&](std::int32_t left) {
      for (; left > 0; left -= kSecond) {
        step.TimeLeft = after + left;
        goesOn = watch(step) && goesOn;
        commands_->DelayMs(std::min(left, kSecond));
      }
    });
    // A query that nobody answers counts as "no error".
    if (result == ArbTransfer::Done && commands_->InstrumentLost(0)) result = ArbTransfer::NotSent;
    if (result != ArbTransfer::Done) {
      outcome.End = WaveformEnd::Failed;
      outcome.Number = one.Number;
      entry = before;
      // What it holds now only the instrument can tell.
      if (result != ArbTransfer::FileRefused && !commands_->InstrumentLost(0)) {
        waveforms_->QueryArbInfo(entry, one.Number);
      }
      SayTransferFailure(result, one.Number, before.FilePath);
      return;
    }
    outcome.Done = ++step.Done;
    step.BytesDone += one.Bytes;
    step.TimeLeft = after;
  }
  watch(step);
}

// What SendAndCheck has not shown itself.
void Session::SayTransferFailure(ArbTransfer result, int number, const std::string& path) {
  if (result == ArbTransfer::NotSent) {
    ShowMessage(ports_.prompts, catalogue_, TextId::CommunicationError, PromptIcon::Critical,
                PromptButtons::Ok, {"1"});
  } else if (result == ArbTransfer::ReplyUnreadable) {
    ShowMessage(ports_.prompts, catalogue_, TextId::DownloadReplyUnreadable, PromptIcon::Critical);
  } else if (result == ArbTransfer::FileRefused && !MessageOf(waveforms_->Problem())) {
    WarnOfWaveform(number, path, waveforms_->Reason());
  }
}

void Session::WarnOfWaveform(int number, const std::string& path, const std::string& reason) {
  Warn(catalogue_.GetResString(TextId::SignalFileRefused, {std::to_string(number), path, reason}));
}

WaveformOutcome Session::ClearWaveforms(ArbEntries& entries, std::span<const int> numbers, int instrument,
                                        const WaveformWatch& watch) {
  if (state_.Online != 1 || !Idle() || !AgreeToGoOn()) return {};
  return WithEach(numbers, instrument, watch, [&](int number) {
    const CommStatus status = instrument == 0 ? waveforms_->ClearOne(EntryOf(entries, number), number)
                                              : waveforms_->DeleteArb(number, instrument);
    return !Failed(status);
  });
}

WaveformOutcome Session::AskForWaveforms(ArbEntries& entries, std::span<const int> numbers, int instrument,
                                         const WaveformWatch& watch) {
  if (state_.Online != 1 || !Idle()) return {};
  return WithEach(numbers, instrument, watch, [&](int number) {
    return waveforms_->QueryArbInfo(EntryOf(entries, number), number, instrument);
  });
}

// Until one exchange fails. The window answers between them.
WaveformOutcome Session::WithEach(std::span<const int> numbers, int instrument, const WaveformWatch& watch,
                                  const std::function<bool(int)>& exchange) {
  WaveformOutcome outcome{WaveformEnd::Done};
  {
    const WorkGuard guard(activity_, Work::Exchange);
    WaveformStep step;
    step.Count = static_cast<int>(numbers.size());
    for (const int number : numbers) {
      step.Number = number;
      const bool goesOn = watch(step);
      ports_.pump.HandlePending();
      if (!goesOn) {
        outcome.End = WaveformEnd::Ended;
        break;
      }
      if (!exchange(number)) {
        outcome.End = WaveformEnd::Failed;
        outcome.Number = number;
        ShowMessage(ports_.prompts, catalogue_, TextId::CommunicationError, PromptIcon::Critical,
                    PromptButtons::Ok, {std::to_string(instrument + 1)});
        break;
      }
      outcome.Done = ++step.Done;
    }
  }
  NoticeLostConnection();
  return outcome;
}

}  // namespace corlune
