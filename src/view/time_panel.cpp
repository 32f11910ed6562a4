#include "view/time_panel.h"

#include <QEvent>

#include "core/time_text.h"

namespace corlune {

namespace {
constexpr int kMargin = 2;  // pixels
}  // namespace

TimePanel::TimePanel(const MessageCatalogue& catalogue, TextId captionId, QWidget* parent)
    : QLabel(parent), catalogue_(catalogue), captionId_(captionId) {
  setTextFormat(Qt::PlainText);
  setFrameStyle(static_cast<int>(QFrame::Panel) | static_cast<int>(QFrame::Sunken));
  setMargin(kMargin);
  ShowTime(0);
  FixWidth();
}

void TimePanel::ShowTime(double milliseconds) {
  const QString shown = QString::fromStdString(TimePanelText(catalogue_, captionId_, milliseconds));
  if (text() != shown) setText(shown);
}

// The digits change ten times a second; the panel keeps its place.
void TimePanel::FixWidth() {
  const QString widest = QString::fromStdString(TimePanelText(catalogue_, captionId_, 0));
  setMinimumWidth(fontMetrics().horizontalAdvance(widest) + 2 * (kMargin + frameWidth()));
}

void TimePanel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::FontChange) FixWidth();
}

}  // namespace corlune
