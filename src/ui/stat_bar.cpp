#include "ui/stat_bar.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>

#include "core/step_numbering.h"
#include "view/time_panel.h"
#include "view/warning_line.h"

namespace corlune {

namespace {

// A label that may be narrower than its text and then ends in "...".
class ElidedLabel : public QLabel {
 public:
  using QLabel::QLabel;
  QSize minimumSizeHint() const override {
    return {fontMetrics().averageCharWidth() * 4, QLabel::minimumSizeHint().height()};
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    drawFrame(&painter);
    const QRect area = contentsRect().adjusted(margin(), 0, -margin(), 0);
    style()->drawItemText(&painter, area, static_cast<int>(alignment()), palette(), isEnabled(),
                          fontMetrics().elidedText(text(), Qt::ElideRight, area.width()),
                          QPalette::WindowText);
  }
};

constexpr int kPanelMargin = 2;

}  // namespace

StatBar::StatBar(const MessageCatalogue& catalogue, QWidget* parent)
    : QWidget(parent),
      catalogue_(catalogue),
      warning_(new WarningLine(catalogue, this)),
      notice_(new QLabel(this)) {
  setObjectName(QStringLiteral("StatBar1"));
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(2);
  rows->addWidget(warning_);
  notice_->setObjectName(QStringLiteral("LabNotice"));
  notice_->setTextFormat(Qt::PlainText);
  notice_->setWordWrap(true);
  notice_->setMargin(kPanelMargin);
  notice_->hide();
  rows->addWidget(notice_);

  auto* bar = new QFrame(this);
  bar->setObjectName(QStringLiteral("StatusBar1"));
  auto* layout = new QHBoxLayout(bar);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(1);
  for (int i = 0; i < kPanels; ++i) {
    QLabel* panel = nullptr;
    if (i == Total) {
      panel = total_ = new TimePanel(catalogue, TextId::TotalTime, bar);
    } else if (i == Elapsed) {
      panel = elapsed_ = new TimePanel(catalogue, TextId::ElapsedTime, bar);
    } else {
      panel = i == Device ? new ElidedLabel(bar) : new QLabel(bar);
    }
    panel->setObjectName(QStringLiteral("Panel%1").arg(i + 1));
    panel->setTextFormat(Qt::PlainText);
    panel->setFrameStyle(static_cast<int>(QFrame::Panel) | static_cast<int>(QFrame::Sunken));
    panel->setMargin(kPanelMargin);
    panels_[static_cast<std::size_t>(i)] = panel;
    layout->addWidget(panel, i == Device ? 1 : 0);
  }
  rows->addWidget(bar);
}

void StatBar::Show(Panel panel, const std::string& text) {
  QLabel* label = panels_[static_cast<std::size_t>(panel)];
  const QString shown = QString::fromStdString(text);
  if (label->text() != shown) label->setText(shown);
}

void StatBar::Refresh(const AppState& state, const StatusFacts& facts) {
  Show(Connection, catalogue_.GetResString(state.Online == 1 ? TextId::StateOnLine : TextId::StateOffLine));
  std::string mode = catalogue_.GetResString(
      state.OperationMode == OperationMode::Execution ? TextId::StateExecutionMode : TextId::StateEditMode);
  // No row of the grids shows a step of the instrument's own sequence.
  if (RunsHeldSequence(state) && state.RunState != RunState::Stopped) {
    mode += ": " + catalogue_.GetResString(TextId::StepWord) + " " +
            std::to_string(NumberOf(StepIndex{state.CurrentStep}).value);
  }
  Show(Mode, mode);
  Show(Device, catalogue_.GetResString(TextId::StateDevice) + ":" + state.ModelName);
  panels_[Connection]->setToolTip(QString::fromStdString(facts.connectionTip));
  panels_[Connection]->setAccessibleDescription(panels_[Connection]->toolTip());
  panels_[Device]->setToolTip(QString::fromStdString(facts.deviceTip));
  ElapsTime(state.ElapsedTime);
  warning_->ShowState(state);
}

void StatBar::TotalTime(double milliseconds) {
  total_->ShowTime(milliseconds);
}

void StatBar::ElapsTime(std::int32_t milliseconds) {
  elapsed_->ShowTime(milliseconds);
}

void StatBar::ShowNotice(const std::string& text) {
  notice_->setText(QString::fromStdString(text));
  notice_->setVisible(!text.empty());
}

QString StatBar::Notice() const {
  return notice_->text();
}

QString StatBar::PanelText(Panel panel) const {
  return panels_[static_cast<std::size_t>(panel)]->text();
}

}  // namespace corlune
