// WindowStyle: the toolkit's Fusion style, in which the colours of the model definition look alike on every
// system, with frames of entry fields that can be seen on a dark background too.
#pragma once

#include <QProxyStyle>

namespace corlune {

class WindowStyle : public QProxyStyle {
 public:
  WindowStyle();
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
};

}  // namespace corlune
