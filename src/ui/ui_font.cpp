#include "ui/ui_font.h"

#include <QStringList>

namespace corlune {

QFont UiFont(const AppState& state) {
  QStringList families{QString::fromStdString(state.UiFontName)};
  if (state.UseEnglish) {
    families << QStringLiteral("Liberation Sans") << QStringLiteral("Helvetica");
  } else {
    families << QStringLiteral("MS PGothic") << QStringLiteral("IPAPGothic")
             << QStringLiteral("Noto Sans CJK JP");
  }
  families << QStringLiteral("sans-serif");
  QFont font;
  font.setFamilies(families);
  font.setPointSizeF(static_cast<qreal>(state.UiFontSize));
  return font;
}

}  // namespace corlune
