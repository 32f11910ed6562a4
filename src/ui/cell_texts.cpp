#include "ui/cell_texts.h"

#include <algorithm>

#include <QtMath>

namespace corlune {

namespace {

// A grid uses a normal, a bold and two small fonts; more come when the desktop's font changes.
constexpr qsizetype kMostFonts = 6;
// Several times what a screen shows.
constexpr qsizetype kMostTexts = 2000;

}  // namespace

const QStaticText& CellTexts::LaidOut(const QPainter& painter, const QString& text) {
  const QFont& font = painter.font();
  auto found =
      std::find_if(fonts_.begin(), fonts_.end(), [&](const OneFont& one) { return one.Font == font; });
  if (found == fonts_.end()) {
    if (fonts_.size() >= kMostFonts) fonts_.clear();
    found = fonts_.insert(fonts_.end(), {font, {}});
  }
  if (const auto known = found->Texts.constFind(text); known != found->Texts.constEnd()) return *known;
  if (found->Texts.size() >= kMostTexts) found->Texts.clear();
  QStaticText laidOut(text);
  laidOut.setTextFormat(Qt::PlainText);
  laidOut.setPerformanceHint(QStaticText::AggressiveCaching);
  laidOut.prepare(painter.transform(), font);
  return *found->Texts.insert(text, laidOut);
}

int CellTexts::Width(const QPainter& painter, const QString& text) {
  return text.isEmpty() ? 0 : qCeil(LaidOut(painter, text).size().width());
}

void CellTexts::Draw(QPainter& painter, const QRect& room, Qt::Alignment alignment, const QString& text) {
  if (text.isEmpty()) return;
  const QStaticText& laidOut = LaidOut(painter, text);
  const QSizeF size = laidOut.size();
  double left = room.left();
  if (alignment.testFlag(Qt::AlignRight)) left += room.width() - size.width();
  if (alignment.testFlag(Qt::AlignHCenter)) left += (room.width() - size.width()) / 2;
  const double top = room.top() + (room.height() - size.height()) / 2;
  painter.drawStaticText(QPointF(qRound(left), qRound(top)), laidOut);
}

void CellTexts::DrawCut(QPainter& painter, const QRect& room, Qt::Alignment alignment, const QString& text) {
  const bool whole = Width(painter, text) <= room.width();
  Draw(painter, room, alignment,
       whole ? text : painter.fontMetrics().elidedText(text, Qt::ElideRight, room.width()));
}

}  // namespace corlune
