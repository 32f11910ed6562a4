#include "ui/cell_widgets.h"

#include <algorithm>

#include <QApplication>
#include <QKeyEvent>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <QWheelEvent>

#include "view/theme.h"

namespace corlune {

namespace {

constexpr int kOptionPadding = 4;  // pixels

}  // namespace

CellCombo::CellCombo(const char* name, QWidget* parent) : QComboBox(parent) {
  setObjectName(QLatin1String(name));
  setFocusPolicy(Qt::ClickFocus);
  setContextMenuPolicy(Qt::NoContextMenu);
  setMaxVisibleItems(16);
  hide();
}

QSize CellCombo::sizeHint() const {
  const int height = std::max(fontMetrics().height() + 1, QFontInfo(font()).pixelSize() * 8 / 5);
  return {QComboBox::sizeHint().width(), height};
}

void CellCombo::keyPressEvent(QKeyEvent* event) {
  const bool plain = (event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == Qt::NoModifier;
  const QString text = event->text();
  if (plain && !text.isEmpty() && text.at(0).isPrint() && !text.at(0).isSpace()) {
    Search(text);
    return;
  }
  QComboBox::keyPressEvent(event);
}

void CellCombo::Search(const QString& typed) {
  const bool goesOn = sinceKey_.isValid() && !sinceKey_.hasExpired(QApplication::keyboardInputInterval());
  sinceKey_.start();
  // The same character again: the next entry that begins with it, unless an entry begins with both.
  const auto startingWith = [&](const QString& text, int from) {
    for (int i = 0; i < count(); ++i) {
      const int index = (from + i) % count();
      if (itemText(index).startsWith(text, Qt::CaseInsensitive)) return index;
    }
    return -1;
  };
  if (count() == 0) return;
  searched_ = goesOn ? searched_ + typed : typed;
  int found = startingWith(searched_, std::max(currentIndex(), 0));
  if (found < 0 || (!goesOn && found == currentIndex())) {
    searched_ = typed;
    const int next = startingWith(typed, currentIndex() + 1);
    if (next >= 0) found = next;
  }
  if (found < 0 || found == currentIndex()) return;
  setCurrentIndex(found);
  if (atOnce_) emit activated(found);
}

void CellCombo::wheelEvent(QWheelEvent* event) {
  event->ignore();
}

CellOption::CellOption(const char* name, QWidget* parent) : QRadioButton(parent) {
  setObjectName(QLatin1String(name));
  setFocusPolicy(Qt::ClickFocus);
  setContextMenuPolicy(Qt::NoContextMenu);
  setAutoFillBackground(true);
  hide();
}

void CellOption::Offer(const EditorOption& option) {
  QString caption = QString::fromStdString(option.Caption);
  setText(caption.replace(QLatin1Char('&'), QLatin1String("&&")));
  background_ = option.Background;
  ShowColors();
}

void CellOption::ShowColors() {
  const DefinitionColors::Look look = DefinitionColors().Of(QApplication::palette(), background_);
  QPalette colors = palette();
  for (const auto role : {QPalette::Window, QPalette::Button, QPalette::Base}) {
    colors.setColor(role, look.Background);
  }
  for (const auto role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text}) {
    colors.setColor(role, look.Text);
  }
  if (colors != palette()) setPalette(colors);
}

void CellOption::changeEvent(QEvent* event) {
  QRadioButton::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) ShowColors();
}

void CellOption::paintEvent(QPaintEvent*) {
  QStylePainter painter(this);
  QStyleOptionButton option;
  initStyleOption(&option);
  option.rect.setLeft(kOptionPadding);
  painter.drawControl(QStyle::CE_RadioButton, option);
  painter.setPen(LineOn(palette().color(QPalette::Window),
                        palette().color(hasFocus() ? QPalette::Highlight : QPalette::Mid)));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

QSize CellOption::sizeHint() const {
  return QRadioButton::sizeHint() + QSize(2 * kOptionPadding, 0);
}

bool CellOption::hitButton(const QPoint& at) const {
  return rect().contains(at);
}

}  // namespace corlune
