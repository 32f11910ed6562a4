// RunFields: the sequence view's copies of the fields TxtSeq, TxtStrStep and TxtBranch.
#pragma once

#include <array>
#include <functional>
#include <string>

#include <QLineEdit>
#include <QWidget>

#include "core/catalogue.h"
#include "editing/control_states.h"

namespace corlune {

// A number field whose text is entered by Enter or Tab. A refused text gives way to the one before and is
// selected; leaving the field otherwise, or Escape, brings the old text back without a message.
class RunField : public QLineEdit {
  Q_OBJECT

 public:
  using Check = std::function<bool(const std::string&)>;
  RunField(Check check, QWidget* parent);
  void ShowText(const QString& text);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  bool Enter();

  Check check_;
  QString oldFieldText_;
  bool checking_ = false;  // the check may show a message, which takes the focus
};

class RunFields : public QWidget {
  Q_OBJECT

 public:
  struct Checks {
    RunField::Check sequenceNumber;
    RunField::Check startStep;
    RunField::Check branchChannel;
  };
  RunFields(const MessageCatalogue& catalogue, Checks checks, QWidget* parent = nullptr);

  void ShowTexts(const std::string& sequenceNumber, const std::string& startStep,
                 const std::string& branchChannel);
  void ShowStates(const ControlStates& states);

 private:
  enum Field : std::size_t { Sequence, StartStep, Branch };
  static constexpr std::size_t kFields = 3;

  std::array<RunField*, kFields> fields_{};
  std::array<QWidget*, kFields> groups_{};
};

}  // namespace corlune
