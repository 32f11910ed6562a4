// frmSetup: which one of several USBTMC instruments is used. The one that is selected is asked who it is, and
// no other.
#pragma once

#include <optional>

#include <QTimer>

#include "dialogs/form_dialog.h"
#include "session/session.h"

namespace corlune {

class FrmSetup : public FormDialog {
  Q_OBJECT

 public:
  // Of the instruments that the last search has found. Both must outlive the dialog.
  FrmSetup(Session& session, Prompts& prompts, QWidget* parent = nullptr);

  // Shows the dialog; nullopt: cancelled.
  static std::optional<InstrumentChoice> Choose(Session& session, Prompts& prompts, QWidget* parent);

  void reject() override;

 protected:
  bool CheckWhole() override { return !busy_; }

 private:
  const ModelInterfaceSpec& Limits() const;
  InstrumentChoice Choice() const;
  void ShowModel();
  void Search();
  void Identify();

  Session& session_;
  QComboBox* models_ = nullptr;
  QComboBox* interfaces_ = nullptr;
  QComboBox* serials_ = nullptr;
  QLabel* identification_ = nullptr;
  QTimer asks_{this};  // once the selection rests
  bool busy_ = false;
};

}  // namespace corlune
