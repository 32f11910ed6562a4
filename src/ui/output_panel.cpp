#include "ui/output_panel.h"

#include <algorithm>

#include <QEvent>
#include <QPainter>

#include "editing/color_theme.h"
#include "view/to_qcolor.h"

namespace corlune {

namespace {

constexpr QColor kDoubt(255, 192, 0);  // amber, as the line that warns
constexpr int kLampShare = 70;         // percent of the text's height
constexpr int kLampGap = 3;            // pixels on each side of the lamp
constexpr double kLampLine = 1.5;      // pixels

struct Words {
  TextId text;
  TextId tip;
};

Words WordsOf(OutputState state) {
  switch (state) {
    case OutputState::None:
      break;
    case OutputState::Unknown:
      return {TextId::OutputUnknown, TextId::TipOutputUnknown};
    case OutputState::Off:
      return {TextId::OutputIsOff, TextId::TipOutputIsOff};
    case OutputState::On:
      return {TextId::OutputIsOn, TextId::TipOutputIsOn};
  }
  return {TextId::OutputNone, TextId::TipOutputNone};
}

}  // namespace

OutputPanel::OutputPanel(const MessageCatalogue& catalogue, QWidget* parent)
    : QLabel(parent), catalogue_(catalogue) {
  setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

int OutputPanel::LampSize() const {
  return fontMetrics().height() * kLampShare / 100;
}

void OutputPanel::ReserveWidth() {
  int widest = 0;
  for (const OutputState state :
       {OutputState::None, OutputState::Unknown, OutputState::Off, OutputState::On}) {
    const QString text = QString::fromStdString(catalogue_.GetResString(WordsOf(state).text));
    widest = std::max(widest, fontMetrics().horizontalAdvance(text));
  }
  setMinimumWidth(widest + LampSize() + 2 * kLampGap + 2 * (margin() + frameWidth()));
}

void OutputPanel::ShowState(OutputState state, const Color& onColor) {
  state_ = state;
  const Words words = WordsOf(state);
  setText(QString::fromStdString(catalogue_.GetResString(words.text)));
  setToolTip(QString::fromStdString(catalogue_.GetResString(words.tip)));
  setAccessibleDescription(toolTip());
  const bool on = state == OutputState::On;
  const bool marked = on || state == OutputState::Unknown;
  QPalette colors;
  if (marked) {
    colors.setColor(QPalette::Window, on ? ToQColor(onColor) : kDoubt);
    colors.setColor(QPalette::WindowText, on ? ToQColor(TextColorOn(onColor)) : QColor(Qt::black));
  }
  setPalette(colors);
  setAutoFillBackground(marked);
  if (minimumWidth() == 0) ReserveWidth();
}

void OutputPanel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::FontChange) ReserveWidth();
}

void OutputPanel::paintEvent(QPaintEvent* event) {
  QLabel::paintEvent(event);
  if (state_ == OutputState::None) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double side = LampSize() - kLampLine;
  const QRectF lamp(contentsRect().left() + kLampGap + kLampLine / 2,
                    contentsRect().center().y() - side / 2 + 0.5, side, side);
  const QColor color = palette().color(QPalette::WindowText);
  painter.setPen(QPen(color, kLampLine));
  painter.setBrush(state_ == OutputState::On ? QBrush(color) : QBrush(Qt::NoBrush));
  painter.drawEllipse(lamp);
  if (state_ != OutputState::Unknown) return;
  constexpr int kQuarter = 90 * 16;  // of the toolkit's sixteenths of a degree
  painter.setBrush(color);
  painter.drawPie(lamp, kQuarter, 2 * kQuarter);
}

}  // namespace corlune
