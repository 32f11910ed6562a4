// frmDlgSetup: model, number of instruments and how each of them is reached. Its OK takes the set-up and
// connects; it stays open while that is under way, and when it was refused.
#pragma once

#include <array>

#include "dialogs/form_dialog.h"
#include "forms/setup_form.h"
#include "session/session.h"

class QGridLayout;

namespace corlune {

class FrmDlgSetup : public FormDialog {
  Q_OBJECT

 public:
  // All must outlive the dialog. `responses`: the response file of simulated instruments, which `files`
  // chooses; null: they are real.
  FrmDlgSetup(Session& session, Prompts& prompts, FileDialogs& files, std::string* responses,
              QWidget* parent = nullptr);

  // What is under way must end first.
  void reject() override;

 protected:
  bool CheckWhole() override;

 private:
  struct Row {
    QLabel* number = nullptr;
    QComboBox* interface = nullptr;
    QComboBox* serial = nullptr;
    EntryField* address = nullptr;
    EntryField* channels = nullptr;
    QPushButton* test = nullptr;
    QLabel* result = nullptr;
  };

  void BuildHead();
  void BuildRow(QGridLayout& grid, int row);
  void BuildSearch();
  void BuildResponses();
  // Controls and their contents as the form has them.
  void ShowRows();
  void ShowRow(int row);
  void ShowFound();
  void FitHeight();
  void ChooseModel(int model);
  void Search();
  void Test(int row);
  void Browse();
  // The first row with which the set-up is refused.
  bool CheckRows();

  Session& session_;
  FileDialogs& files_;
  std::string* responseFile_;
  SetupForm form_;
  QComboBox* models_ = nullptr;
  EntryField* count_ = nullptr;
  QComboBox* counts_ = nullptr;
  QLabel* reachedBy_ = nullptr;  // heading of the column
  QLabel* channelHead_ = nullptr;
  std::array<Row, kMaxInstruments> rows_{};
  QPushButton* search_ = nullptr;
  QLabel* found_ = nullptr;
  EntryField* responses_ = nullptr;
  std::string chosenFile_;
  bool busy_ = false;
};

}  // namespace corlune
