// CellTexts: the texts of a grid's cells, laid out once. Laying a text out costs many times what drawing it
// costs, and a grid shows the same few texts again and again.
#pragma once

#include <QFont>
#include <QHash>
#include <QPainter>
#include <QStaticText>
#include <QString>

namespace corlune {

class CellTexts {
 public:
  // On one line in the painter's font and pen, vertically centred; sticks out of a `room` that is too narrow.
  void Draw(QPainter& painter, const QRect& room, Qt::Alignment alignment, const QString& text);

  // Ends with an ellipsis where `room` is too narrow.
  void DrawCut(QPainter& painter, const QRect& room, Qt::Alignment alignment, const QString& text);

  // Pixels, in the painter's font.
  int Width(const QPainter& painter, const QString& text);

 private:
  struct OneFont {
    QFont Font;
    QHash<QString, QStaticText> Texts;
  };
  const QStaticText& LaidOut(const QPainter& painter, const QString& text);

  QList<OneFont> fonts_;
};

}  // namespace corlune
