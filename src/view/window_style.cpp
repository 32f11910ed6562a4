#include "view/window_style.h"

#include <QPainter>
#include <QStyleOption>

#include "view/theme.h"

namespace corlune {

WindowStyle::WindowStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

// Fusion draws the frame darker than the window, which disappears where that is dark.
void WindowStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  const bool frame = element == PE_FrameLineEdit && !option->state.testFlag(State_HasFocus);
  if (!frame || !ThemeOf(option->palette).Dark) return;
  constexpr double kCorner = 2;  // pixels, as Fusion's
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  const QColor base = option->palette.color(QPalette::Base);
  QColor line = LineOn(base, base);
  if (!option->state.testFlag(State_Enabled)) line.setAlphaF(0.5F);
  painter->setPen(line);
  painter->setBrush(Qt::NoBrush);
  painter->drawRoundedRect(QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5), kCorner, kCorner);
  painter->restore();
}

}  // namespace corlune
