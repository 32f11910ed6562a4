#include "view/run_fields.h"

#include <algorithm>
#include <utility>

#include <QHBoxLayout>
#include <QLabel>

#include "view/flow_layout.h"

namespace corlune {

namespace {

constexpr int kFieldDigits = 5;
constexpr int kFieldFrame = 14;  // pixels beside the digits
constexpr int kSpacing = 12;

}  // namespace

RunFields::RunFields(const MessageCatalogue& catalogue, Checks checks, QWidget* parent) : QWidget(parent) {
  struct Row {
    TextId captionId;
    const char* name;
    const char* labelName;
    EntryField::Check check;
  };
  const std::array<Row, kFields> rows{
      {{TextId::FieldSequenceNumber, "TxtSeq", "LabSeq", std::move(checks.sequenceNumber)},
       {TextId::FieldStartStep, "TxtStrStep", "LabStrStep", std::move(checks.startStep)},
       {TextId::FieldBranchChannel, "TxtBranch", "LabBranch", std::move(checks.branchChannel)}}};
  auto* layout = new FlowLayout(this, kSpacing);
  for (std::size_t i = 0; i < kFields; ++i) {
    groups_[i] = new QWidget(this);
    auto* group = new QHBoxLayout(groups_[i]);
    group->setContentsMargins(0, 0, 0, 0);
    group->setSpacing(kSpacing / 3);
    auto* label = new QLabel(QString::fromStdString(catalogue.GetResString(rows[i].captionId)), groups_[i]);
    label->setObjectName(QString::fromUtf8(rows[i].labelName));
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* field = new EntryField(rows[i].check, groups_[i]);
    field->setObjectName(QString::fromUtf8(rows[i].name));
    field->setAccessibleName(label->text().replace(QLatin1Char('\n'), QLatin1Char(' ')));
    field->setFixedWidth(field->fontMetrics().horizontalAdvance(QLatin1Char('0')) * kFieldDigits +
                         kFieldFrame);
    label->setBuddy(field);
    group->addWidget(label);
    group->addWidget(field);
    layout->addWidget(groups_[i]);
    fields_[i] = field;
  }
  // One line of fields, though some labels have two.
  int height = 0;
  for (const QWidget* group : groups_) height = std::max(height, group->sizeHint().height());
  for (QWidget* group : groups_) group->setMinimumHeight(height);
}

void RunFields::AddBehindSequenceNumber(QWidget* control) {
  groups_[Sequence]->layout()->addWidget(control);
}

void RunFields::ShowTexts(const std::string& sequenceNumber, const std::string& startStep,
                          const std::string& branchChannel) {
  fields_[Sequence]->ShowText(QString::fromStdString(sequenceNumber));
  fields_[StartStep]->ShowText(QString::fromStdString(startStep));
  fields_[Branch]->ShowText(QString::fromStdString(branchChannel));
}

void RunFields::ShowStates(const ControlStates& states) {
  const std::array<ControlState, kFields> of{states.SequenceNumber, states.StartStep, states.BranchChannel};
  for (std::size_t i = 0; i < kFields; ++i) {
    groups_[i]->setVisible(of[i].Visible);
    fields_[i]->setEnabled(of[i].Enabled);
  }
}

bool RunFields::Enter(EntryEnd end) {
  for (EntryField* field : fields_) {
    if (window()->focusWidget() == field && !field->Enter(end)) return false;
  }
  bool accepted = true;
  for (EntryField* field : fields_) accepted = accepted && field->Enter(end);
  return accepted;
}

}  // namespace corlune
