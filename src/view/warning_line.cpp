#include "view/warning_line.h"

#include <string>

namespace corlune {

namespace {

constexpr QColor kFace(255, 192, 0);  // amber, as the lamps of test benches
constexpr int kMargin = 4;            // pixels

}  // namespace

WarningLine::WarningLine(const MessageCatalogue& catalogue, QWidget* parent)
    : QLabel(parent), catalogue_(catalogue) {
  setObjectName(QStringLiteral("LabWarning"));
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  setMargin(kMargin);
  QPalette amber = palette();
  amber.setColor(QPalette::Window, kFace);
  amber.setColor(QPalette::WindowText, Qt::black);
  setPalette(amber);
  setAutoFillBackground(true);
  QFont bold = font();
  bold.setBold(true);
  setFont(bold);
  hide();
}

void WarningLine::ShowState(const AppState& state) {
  std::string text;
  if (state.MayStillRun) text = catalogue_.GetResString(TextId::MayStillRun);
  for (std::size_t i = 0; i < state.Lost.size(); ++i) {
    if (!state.Lost[i]) continue;
    if (!text.empty()) text += ' ';
    text += catalogue_.GetResString(TextId::ConnectionLost, {std::to_string(i + 1)});
  }
  const QString shown = QString::fromStdString(text);
  if (shown != this->text()) setText(shown);
  setVisible(!text.empty());
}

}  // namespace corlune
