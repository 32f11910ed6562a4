#include "view/run_fields.h"

#include <utility>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>

#include "view/flow_layout.h"

namespace corlune {

namespace {

constexpr int kFieldCharacters = 6;
constexpr int kSpacing = 12;

}  // namespace

RunField::RunField(Check check, QWidget* parent) : QLineEdit(parent), check_(std::move(check)) {
  setAlignment(Qt::AlignRight);
  const int width = fontMetrics().averageCharWidth() * kFieldCharacters;
  setFixedWidth(width + sizeHint().height());
}

void RunField::ShowText(const QString& text) {
  oldFieldText_ = text;
  if (this->text() != text) setText(text);
}

bool RunField::Enter() {
  if (checking_) return true;
  checking_ = true;
  const QString old = oldFieldText_;
  const QString entered = text();
  const bool accepted = entered == old || !check_ || check_(entered.toStdString());
  checking_ = false;
  // An accepted text may have been shown in its own form by the check.
  if (!accepted) setText(old);
  if (accepted && text() == entered) oldFieldText_ = entered;
  if (!accepted) selectAll();
  return accepted;
}

void RunField::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      Enter();
      selectAll();
      return;
    case Qt::Key_Escape:
      setText(oldFieldText_);
      selectAll();
      return;
    default:
      QLineEdit::keyPressEvent(event);
  }
}

bool RunField::focusNextPrevChild(bool next) {
  if (!Enter()) return true;
  return QLineEdit::focusNextPrevChild(next);
}

void RunField::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  const bool passing =
      event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason;
  if (!checking_ && !passing) setText(oldFieldText_);
}

RunFields::RunFields(const MessageCatalogue& catalogue, Checks checks, QWidget* parent) : QWidget(parent) {
  struct Row {
    int captionId;
    const char* name;
    RunField::Check check;
  };
  const std::array<Row, kFields> rows{{{8008, "TxtSeq", std::move(checks.sequenceNumber)},
                                       {8006, "TxtStrStep", std::move(checks.startStep)},
                                       {8007, "TxtBranch", std::move(checks.branchChannel)}}};
  auto* layout = new FlowLayout(this, kSpacing);
  for (std::size_t i = 0; i < kFields; ++i) {
    groups_[i] = new QWidget(this);
    auto* group = new QHBoxLayout(groups_[i]);
    group->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(QString::fromStdString(catalogue.GetResString(rows[i].captionId)), groups_[i]);
    fields_[i] = new RunField(rows[i].check, groups_[i]);
    fields_[i]->setObjectName(QString::fromUtf8(rows[i].name));
    fields_[i]->setAccessibleName(label->text().replace(QLatin1Char('\n'), QLatin1Char(' ')));
    label->setBuddy(fields_[i]);
    group->addWidget(label);
    group->addWidget(fields_[i]);
    layout->addWidget(groups_[i]);
  }
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

}  // namespace corlune
