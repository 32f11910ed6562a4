#include "ui/stat_bar.h"

#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>

#include "core/time_text.h"

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
constexpr QColor kWarningFace(255, 192, 0);  // amber, as the lamps of test benches

}  // namespace

StatBar::StatBar(const MessageCatalogue& catalogue, QWidget* parent)
    : QWidget(parent), catalogue_(catalogue), warning_(new QLabel(this)), notice_(new QLabel(this)) {
  setObjectName(QStringLiteral("StatBar1"));
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(2);
  warning_->setObjectName(QStringLiteral("LabWarning"));
  warning_->setTextFormat(Qt::PlainText);
  warning_->setWordWrap(true);
  warning_->setMargin(2 * kPanelMargin);
  QPalette amber = warning_->palette();
  amber.setColor(QPalette::Window, kWarningFace);
  amber.setColor(QPalette::WindowText, Qt::black);
  warning_->setPalette(amber);
  warning_->setAutoFillBackground(true);
  QFont bold = warning_->font();
  bold.setBold(true);
  warning_->setFont(bold);
  warning_->hide();
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
    QLabel* panel = i == Device ? new ElidedLabel(bar) : new QLabel(bar);
    panel->setObjectName(QStringLiteral("Panel%1").arg(i + 1));
    panel->setTextFormat(Qt::PlainText);
    panel->setFrameStyle(static_cast<int>(QFrame::Panel) | static_cast<int>(QFrame::Sunken));
    panel->setMargin(kPanelMargin);
    panels_[static_cast<std::size_t>(i)] = panel;
    layout->addWidget(panel, i == Device ? 1 : 0);
  }
  rows->addWidget(bar);
  TotalTime(0);
  ElapsTime(0);
  FixTimeWidths();
}

void StatBar::FixTimeWidths() {
  // The digits change ten times a second; the panels keep their places.
  for (const Panel panel : {Total, Elapsed}) {
    QLabel* label = panels_[static_cast<std::size_t>(panel)];
    const std::string widest = TimePanelText(catalogue_, panel == Total ? 1405 : 1406, 0);
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QString::fromStdString(widest)) +
                           2 * (kPanelMargin + label->frameWidth()));
  }
}

void StatBar::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange && panels_[Elapsed]) FixTimeWidths();
}

void StatBar::Show(Panel panel, const std::string& text) {
  QLabel* label = panels_[static_cast<std::size_t>(panel)];
  const QString shown = QString::fromStdString(text);
  if (label->text() != shown) label->setText(shown);
}

void StatBar::Refresh(const AppState& state, const StatusFacts& facts) {
  Show(Connection, catalogue_.GetResString(state.Online == 1 ? 1401 : 1400));
  Show(Mode, catalogue_.GetResString(state.OperationMode == OperationMode::Execution ? 1403 : 1402));
  Show(Device, catalogue_.GetResString(1404) + ":" + state.ModelName);
  panels_[Connection]->setToolTip(QString::fromStdString(facts.connectionTip));
  panels_[Connection]->setAccessibleDescription(panels_[Connection]->toolTip());
  panels_[Device]->setToolTip(QString::fromStdString(facts.deviceTip));
  TotalTime(state.TotalTime);
  ElapsTime(state.ElapsedTime);
  ShowWarning(state);
}

void StatBar::ShowWarning(const AppState& state) {
  std::string text;
  if (state.MayStillRun) text = catalogue_.GetResString(8290);
  for (std::size_t i = 0; i < state.Lost.size(); ++i) {
    if (!state.Lost[i]) continue;
    if (!text.empty()) text += ' ';
    text += catalogue_.GetResString(8291, {std::to_string(i + 1)});
  }
  const QString shown = QString::fromStdString(text);
  if (warning_->text() != shown) warning_->setText(shown);
  warning_->setVisible(!text.empty());
}

QString StatBar::Warning() const {
  return warning_->text();
}

void StatBar::TotalTime(double milliseconds) {
  Show(Total, TimePanelText(catalogue_, 1405, milliseconds));
}

void StatBar::ElapsTime(std::int32_t milliseconds) {
  Show(Elapsed, TimePanelText(catalogue_, 1406, milliseconds));
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
