// FrmArbFile: the dialog of the arbitrary waveforms. 128 ARB numbers with their files, a preview of the one
// that is chosen, the memory that the channels need, and the work on the instrument's waveforms. Close
// applies the files, Cancel and Escape drop them; what was sent or deleted stays so.
//
// While the instrument is worked on, everything but the end of that work is disabled; events are handled, so
// that closing then means: end behind the waveform under way.
#pragma once

#include <array>
#include <functional>
#include <vector>

#include "dialogs/form_dialog.h"
#include "forms/waveform_form.h"
#include "graph/wave_cache.h"
#include "session/session.h"

class QGroupBox;
class QProgressBar;
class QTableView;
class QTimer;

namespace corlune {

class WaveformTable;
class WavePreview;

// All must outlive the dialog.
struct ArbFileParts {
  Session& session;
  Prompts& prompts;
  FileDialogs& files;
  WaveformForm& form;
  // Names of the instruments in order, as the status bar has them.
  QStringList instruments;
  // Carries out a Stop or an Output OFF of the main window.
  std::function<void(Run)> makeSafe;
};

class FrmArbFile : public FormDialog {
  Q_OBJECT

 public:
  FrmArbFile(const ArbFileParts& parts, QWidget* parent);
  ~FrmArbFile() override;

  void accept() override;
  void reject() override;

 protected:
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // frm_arb_file.cpp
  QTableView* MakeGrid();
  void FitColumns();
  QWidget* MakeButtons();
  QWidget* MakeMemory();
  QWidget* MakeProgress();
  void AddSafetyKeys();
  std::vector<int> Selected() const;
  int Current() const;
  void Select(int number);
  void ChooseFiles();
  void Assign(int number, const std::vector<std::string>& paths);
  void RemoveFiles();
  void Count();
  void ShowAll();
  void ShowMemory();
  void ShowStates();
  void ShowPreview();
  void ReadPreview();

  // frm_arb_file_work.cpp
  // The work on the instrument: with the watch that shows how far it is, the form's controls disabled.
  WaveformOutcome Work(const std::function<WaveformOutcome(const WaveformWatch&)>& work);
  void ShowStep(const WaveformStep& step);
  void EndWork();
  void Transfer(const std::vector<int>& numbers);
  void Clear(const std::vector<int>& numbers);
  void Delete(ArbEntries& entries, const std::vector<int>& held, int instrument);
  WaveformOutcome Ask(ArbEntries& entries, const std::vector<int>& numbers, int instrument);
  void Update();
  void ClearMemory();

  ArbFileParts parts_;
  WaveformForm& form_;
  WaveformTable* table_;
  QTableView* grid_;
  WavePreview* preview_;
  struct MemoryBar {
    QProgressBar* bar;
    QLabel* text;
  };
  std::vector<MemoryBar> memory_;  // of the channels
  QPushButton* specify_ = nullptr;
  QPushButton* removeFile_ = nullptr;
  QPushButton* transfer_ = nullptr;
  QPushButton* transferUsed_ = nullptr;
  QPushButton* clear_ = nullptr;
  QPushButton* clearAll_ = nullptr;
  QPushButton* update_ = nullptr;
  QPushButton* clearMemory_ = nullptr;
  QWidget* progress_ = nullptr;
  QProgressBar* progressBar_ = nullptr;
  QLabel* progressText_ = nullptr;
  QPushButton* end_ = nullptr;
  WaveCache cache_;
  QTimer* count_;  // counts the values of one file in each turn of the event loop
  QTimer* quiet_;  // runs out when no further number was chosen
  bool working_ = false;
  bool ended_ = false;        // the work is to end
  bool reading_ = false;      // the work only asks the instrument
  std::int32_t allTime_ = 0;  // ms that the transfer under way takes as a whole
};

}  // namespace corlune
