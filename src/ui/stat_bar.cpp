#include "ui/stat_bar.h"

#include <algorithm>

#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/output_state.h"
#include "core/step_numbering.h"
#include "editing/window_commands.h"
#include "ui/elided_label.h"
#include "ui/notice_bar.h"
#include "ui/output_panel.h"
#include "view/time_panel.h"
#include "view/warning_line.h"

namespace corlune {

namespace {

constexpr int kPanelMargin = 1;  // pixels

}  // namespace

StatBar::StatBar(const MessageCatalogue& catalogue, QWidget* parent)
    : QWidget(parent), catalogue_(catalogue), warning_(new WarningLine(catalogue, this)) {
  setObjectName(QStringLiteral("StatBar1"));
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(2);
  rows->addWidget(warning_);

  bar_ = new QFrame(this);
  auto* bar = bar_;
  bar->setObjectName(QStringLiteral("StatusBar1"));
  auto* layout = new QHBoxLayout(bar);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  for (int i = 0; i < kPanels; ++i) {
    QLabel* panel = nullptr;
    if (i == Total) {
      panel = total_ = new TimePanel(catalogue, TextId::TotalTime, bar);
    } else if (i == Elapsed) {
      panel = elapsed_ = new TimePanel(catalogue, TextId::ElapsedTime, bar);
    } else if (i == Output) {
      panel = output_ = new OutputPanel(catalogue, bar);
    } else {
      panel = i == Device || i == Mode ? new ElidedLabel(bar) : new QLabel(bar);
    }
    panel->setObjectName(QStringLiteral("Panel%1").arg(i + 1));
    panel->setTextFormat(Qt::PlainText);
    panel->setFrameStyle(static_cast<int>(QFrame::Panel) | static_cast<int>(QFrame::Sunken));
    panel->setMargin(kPanelMargin);
    panel->setIndent(0);  // six of them have to fit into the narrowest window
    panels_[static_cast<std::size_t>(i)] = panel;
    layout->addWidget(panel, i == Device ? 1 : 0);
    if (i == Connection) layout->addWidget(connect_ = MakeConnectButton());
  }
  rows->addWidget(bar);
  // In the narrowest window the others need all the room; its tip says the same.
  panels_[Device]->setMinimumWidth(1);
  notice_ = new NoticeBar(catalogue, bar);
  connect(notice_, &NoticeBar::Said, this, &StatBar::PlaceNotice);
  connect(notice_, &NoticeBar::ListWanted, this, &StatBar::NoticesWanted);
  bar->installEventFilter(this);
}

QToolButton* StatBar::MakeConnectButton() {
  auto* button = new QToolButton(bar_);
  button->setObjectName(QStringLiteral("CmdConnect"));
  button->setText(QString::fromStdString(PlainCaption(catalogue_.GetResString(TextId::MenuConnect))));
  button->setToolTip(QString::fromStdString(catalogue_.GetResString(TextId::TipConnect)));
  button->setFocusPolicy(Qt::TabFocus);
  button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
  button->hide();
  connect(button, &QToolButton::clicked, this, &StatBar::ConnectWanted);
  return button;
}

// Over the panels at the left. What the outputs do stays in sight, the times as long as there is room.
void StatBar::PlaceNotice() {
  const int wanted = notice_->WantedWidth();
  const int room = panels_[Total]->x() - 1;
  const int width = std::min(wanted, wanted <= room ? room : panels_[Output]->x() - 1);
  notice_->setGeometry(0, 0, width, bar_->height());
}

bool StatBar::eventFilter(QObject* watched, QEvent* event) {
  if (watched == bar_ && event->type() == QEvent::Resize) {
    // Behind the layout of the panels.
    QMetaObject::invokeMethod(this, &StatBar::PlaceNotice, Qt::QueuedConnection);
  }
  return QWidget::eventFilter(watched, event);
}

void StatBar::Show(Panel panel, const std::string& text) {
  QLabel* label = panels_[static_cast<std::size_t>(panel)];
  const QString shown = QString::fromStdString(text);
  if (label->text() != shown) label->setText(shown);
}

void StatBar::Refresh(const AppState& state, const StatusFacts& facts) {
  connect_->setVisible(facts.mayConnect);
  Show(Connection, catalogue_.GetResString(state.Online == 1 ? TextId::StateOnLine : TextId::StateOffLine));
  std::string mode = catalogue_.GetResString(
      state.OperationMode == OperationMode::Execution ? TextId::StateExecutionMode : TextId::StateEditMode);
  // No row of the grids shows a step of the instrument's own sequence.
  if (RunsHeldSequence(state) && state.RunState != RunState::Stopped) {
    mode += ": " + catalogue_.GetResString(TextId::StepWord) + " " +
            std::to_string(NumberOf(StepIndex{state.CurrentStep}).value);
  }
  Show(Mode, mode);
  Show(Device, catalogue_.GetResString(TextId::StateDevice) + ":" + facts.device);
  panels_[Connection]->setToolTip(QString::fromStdString(facts.connectionTip));
  panels_[Connection]->setAccessibleDescription(panels_[Connection]->toolTip());
  panels_[Device]->setToolTip(QString::fromStdString(facts.deviceTip));
  panels_[Device]->setAccessibleDescription(panels_[Device]->toolTip());
  output_->ShowState(OutputStateOf(state), facts.outputOn);
  ElapsTime(state.ElapsedTime);
  warning_->ShowState(state);
}

void StatBar::TotalTime(double milliseconds) {
  total_->ShowTime(milliseconds);
}

void StatBar::ElapsTime(std::int32_t milliseconds) {
  elapsed_->ShowTime(milliseconds);
}

void StatBar::ShowNotice(NoticeLevel level, const std::string& text) {
  notice_->Say(level, text);
}

void StatBar::CloseNotice() {
  notice_->Clear();
}

QString StatBar::Notice() const {
  return notice_->Text();
}

const std::deque<corlune::Notice>& StatBar::LastNotices() const {
  return notice_->Last();
}

QString StatBar::PanelText(Panel panel) const {
  return panels_[static_cast<std::size_t>(panel)]->text();
}

}  // namespace corlune
