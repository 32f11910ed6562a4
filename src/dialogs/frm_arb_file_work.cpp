// FrmArbFile: the work on the instrument's waveforms.
#include <algorithm>

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>

#include "dialogs/frm_arb_file.h"
#include "dialogs/frm_arb_memory.h"
#include "dialogs/waveform_table.h"

namespace corlune {

WaveformOutcome FrmArbFile::Work(const std::function<WaveformOutcome(const WaveformWatch&)>& work) {
  if (working_) return {};
  working_ = true;
  ended_ = false;
  ShowNote(NoticeLevel::Information, {});
  ShowStates();
  const WaveformOutcome outcome = work([this](const WaveformStep& step) {
    ShowStep(step);
    return !ended_;
  });
  working_ = false;
  progress_->hide();
  if (outcome.Number != 0) Select(outcome.Number);
  ShowAll();
  return outcome;
}

void FrmArbFile::ShowStep(const WaveformStep& step) {
  QString text = QString::fromStdString(
      reading_ ? Catalogue().GetResString(TextId::ReadingArbDirectory,
                                          {std::to_string(step.Done + 1), std::to_string(step.Count)})
               : form_.ProgressText(step));
  if (ended_) text += QLatin1Char('\n') + Caption(TextId::EndsAfterTransfer);
  progressText_->setText(text);
  progressBar_->setAccessibleName(text);
  // One file is a large part of the whole: between two the time goes on.
  if (step.TimeLeft > 0 && step.Done == 0 && step.BytesDone == 0) {
    allTime_ = std::max(allTime_, step.TimeLeft);
  }
  const bool byTime = step.BytesAll > 0 && allTime_ > 0;
  const std::int64_t done = byTime ? allTime_ - step.TimeLeft : step.Done;
  const std::int64_t all = byTime ? allTime_ : step.Count;
  progressBar_->setValue(static_cast<int>(progressBar_->maximum() * done / std::max<std::int64_t>(all, 1)));
  progress_->show();
}

// The button, Escape, closing.
void FrmArbFile::EndWork() {
  if (ended_) return;
  ended_ = true;
  end_->setEnabled(false);
  progressText_->setText(progressText_->text() + QLatin1Char('\n') + Caption(TextId::EndsAfterTransfer));
}

void FrmArbFile::Transfer(const std::vector<int>& numbers) {
  form_.PrepareToSend(numbers);
  allTime_ = 0;
  const WaveformOutcome outcome = Work([&](const WaveformWatch& watch) {
    return parts_.session.SendWaveforms(form_.Instrument(), numbers, form_.Facts(), watch);
  });
  if (outcome.End == WaveformEnd::Refused) return;
  const bool all = outcome.End == WaveformEnd::Done;
  ShowNote(all ? NoticeLevel::Information : NoticeLevel::Warning,
           Catalogue().GetResString(all ? TextId::ArbSent : TextId::ArbEndedEarly,
                                    {std::to_string(outcome.Done), std::to_string(numbers.size())}));
}

void FrmArbFile::Clear(const std::vector<int>& numbers) {
  Delete(form_.Instrument(), form_.Held(numbers), 0);
}

void FrmArbFile::Delete(ArbEntries& entries, const std::vector<int>& held, int instrument) {
  const std::string name = parts_.instruments[instrument].toStdString();
  if (held.empty()) {
    return ShowNote(NoticeLevel::Information, Catalogue().GetResString(TextId::ArbNothingHeld, {name}));
  }
  if (ShowMessage(Messages(), Catalogue(), TextId::ArbClearQuestion, PromptIcon::Question,
                  PromptButtons::OkCancel, {NumberList(held), name},
                  PromptAnswer::Cancel) != PromptAnswer::Ok) {
    return;
  }
  const WaveformOutcome outcome = Work([&](const WaveformWatch& watch) {
    return parts_.session.ClearWaveforms(entries, held, instrument, watch);
  });
  if (outcome.Done == 0) return;
  const std::vector<int> deleted(held.begin(), held.begin() + outcome.Done);
  ShowNote(outcome.End == WaveformEnd::Done ? NoticeLevel::Information : NoticeLevel::Warning,
           Catalogue().GetResString(TextId::ArbCleared, {name, NumberList(deleted)}));
}

WaveformOutcome FrmArbFile::Ask(ArbEntries& entries, const std::vector<int>& numbers, int instrument) {
  reading_ = true;
  const WaveformOutcome outcome = Work([&](const WaveformWatch& watch) {
    return parts_.session.AskForWaveforms(entries, numbers, instrument, watch);
  });
  reading_ = false;
  return outcome;
}

void FrmArbFile::Update() {
  Ask(form_.Instrument(), AllArbNumbers(), 0);
}

void FrmArbFile::ClearMemory() {
  FrmArbMemory panel(Catalogue(), Messages(), parts_.instruments, this);
  if (panel.exec() != QDialog::Accepted) return;
  const std::vector<int> numbers = panel.Number() == 0 ? AllArbNumbers() : std::vector{panel.Number()};
  ArbEntries others{};
  ArbEntries& entries = panel.Instrument() == 0 ? form_.Instrument() : others;
  if (Ask(entries, numbers, panel.Instrument()).End != WaveformEnd::Done) return;
  std::vector<int> held;
  for (const int number : numbers) {
    if (entries[static_cast<std::size_t>(number - 1)].InInstrument != 0) held.push_back(number);
  }
  Delete(entries, held, panel.Instrument());
}

}  // namespace corlune
