// RunFields: the fields TxtSeq, TxtStrStep and TxtBranch with their labels, in the main window and in the
// sequence view.
#pragma once

#include <array>
#include <string>

#include <QWidget>

#include "core/catalogue.h"
#include "editing/control_states.h"
#include "view/entry_field.h"

namespace corlune {

class RunFields : public QWidget {
  Q_OBJECT

 public:
  struct Checks {
    EntryField::Check sequenceNumber;
    EntryField::Check startStep;
    EntryField::Check branchChannel;
  };
  RunFields(const MessageCatalogue& catalogue, Checks checks, QWidget* parent = nullptr);

  // A control of the window's own behind the sequence number.
  void AddBehindSequenceNumber(QWidget* control);
  void ShowTexts(const std::string& sequenceNumber, const std::string& startStep,
                 const std::string& branchChannel);
  void ShowStates(const ControlStates& states);
  // Enters what stands in the fields, the one with the focus first. False: one was refused.
  bool Enter(EntryEnd end);

 private:
  enum Field : std::size_t { Sequence, StartStep, Branch };
  static constexpr std::size_t kFields = 3;

  std::array<EntryField*, kFields> fields_{};
  std::array<QWidget*, kFields> groups_{};
};

}  // namespace corlune
