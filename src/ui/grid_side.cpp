#include "ui/grid_side.h"

#include <algorithm>

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QVBoxLayout>

namespace corlune {

namespace {

constexpr int kSpacing = 4;  // pixels between the controls

}  // namespace

RowButton::RowButton(const char* name, const QString& caption, const std::function<void()>& run,
                     QWidget* parent)
    : QPushButton(caption, parent) {
  setObjectName(QLatin1String(name));
  // A click leaves the focus in the cell; the keyboard can still reach the button.
  setFocusPolicy(Qt::TabFocus);
  setAutoDefault(false);
  setMinimumWidth(1);
  connect(this, &QPushButton::clicked, this, run);
}

void RowButton::ShowState(const ControlState& state) {
  setVisible(state.Visible);
  setEnabled(state.Enabled);
}

GridSide::GridSide(const GridViews& views, GridModel& branchModel, const std::function<void(Command)>& run,
                   QWidget* parent)
    : QWidget(parent), views_(views) {
  const bool english = views.Catalogue().English();
  const auto add = [&](const char* name, const QString& caption, Command command) {
    return new RowButton(
        name, caption, [run, command] { run(command); }, this);
  };
  insert_ = add("CmdInsert", Text(TextId::ButtonInsertRow), Command::InsertRow);
  delete_ = add("CmdDelete", Text(TextId::ButtonDeleteRow), Command::DeleteRow);
  up_ = add("CmdUp", english ? QStringLiteral("Up") : QStringLiteral("△"), Command::RowUp);
  down_ = add("CmdDown", english ? QStringLiteral("Dn") : QStringLiteral("▽"), Command::RowDown);
  up_->setToolTip(Text(TextId::EditRowUp));
  up_->setAccessibleName(Text(TextId::EditRowUp));
  down_->setToolTip(Text(TextId::EditRowDown));
  down_->setAccessibleName(Text(TextId::EditRowDown));

  // In a very low window the side scrolls; the grids need every row there is.
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  auto* scroll = new QScrollArea;
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->setFocusPolicy(Qt::NoFocus);
  scroll->setWidgetResizable(true);
  whole->addWidget(scroll);
  auto* content = new QWidget;
  auto* layout = new QVBoxLayout(content);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(kSpacing);
  auto* moves = new QHBoxLayout;
  moves->addWidget(up_);
  moves->addWidget(down_);
  layout->addWidget(insert_);
  layout->addWidget(delete_);
  layout->addLayout(moves);
  layout->addWidget(BuildBranch(branchModel), 1);
  layout->addStretch(0);
  scroll->setWidget(content);
}

int GridSide::WidthOfTexts() const {
  const int branch =
      std::max(branch_->ContentWidth() + 2 * kSpacing, branchFrame_->minimumSizeHint().width());
  return std::max({branch, insert_->sizeHint().width(), delete_->sizeHint().width()});
}

QWidget* GridSide::BuildBranch(GridModel& model) {
  branchFrame_ = new QGroupBox;
  branchFrame_->setObjectName(QStringLiteral("FrmBranch"));
  branchFrame_->setAccessibleName(Text(TextId::BranchGridTitle).simplified());
  auto* branchLabel = new QLabel(Text(TextId::BranchGridTitle));
  branchLabel->setObjectName(QStringLiteral("LabBranchStep"));
  auto* stepLabel = new QLabel(Text(TextId::BranchGridStepNumber));
  stepLabel->setObjectName(QStringLiteral("LabStepNo"));
  for (QLabel* label : {branchLabel, stepLabel}) {
    label->setWordWrap(true);
    // Between words only; a text without blanks stays in one piece.
    int widest = 1;
    for (const QString& word : label->text().simplified().split(QLatin1Char(' '))) {
      widest = std::max(widest, label->fontMetrics().horizontalAdvance(word));
    }
    label->setMinimumWidth(widest);
  }
  stepNumber_ = new QLineEdit;
  stepNumber_->setObjectName(QStringLiteral("TxtStepNo"));
  stepNumber_->setReadOnly(true);
  stepNumber_->setFocusPolicy(Qt::NoFocus);
  // Three digits; the label needs the rest.
  stepNumber_->setFixedWidth(stepNumber_->fontMetrics().horizontalAdvance(QStringLiteral("000")) +
                             3 * kSpacing);
  stepNumber_->setAccessibleName(stepLabel->text());
  branch_ = new GridTable(model);
  branch_->setObjectName(QStringLiteral("MSFlexGrid3"));
  auto* rows = new QVBoxLayout(branchFrame_);
  rows->setContentsMargins(kSpacing, kSpacing, kSpacing, kSpacing);
  rows->setSpacing(kSpacing / 2);
  auto* number = new QHBoxLayout;
  number->setSpacing(kSpacing / 2);
  number->addWidget(stepLabel, 1);
  number->addWidget(stepNumber_);
  rows->addWidget(branchLabel);
  rows->addLayout(number);
  rows->addWidget(branch_, 1);
  return branchFrame_;
}

void GridSide::ShowStates(const ControlStates& states) {
  insert_->ShowState(states.Insert);
  delete_->ShowState(states.Delete);
  up_->ShowState(states.Up);
  down_->ShowState(states.Down);
}

void GridSide::Refresh() {
  stepNumber_->setText(QString::fromStdString(views_.BranchStepNumber(branch_->Model().Step())));
  branchFrame_->setVisible(views_.BranchVisible());
}

}  // namespace corlune
