#include "ui/view_pane.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include "view/command_menu.h"

namespace corlune {

namespace {

constexpr int kGap = 4;        // pixels beside the caption
constexpr int kIconSize = 12;  // pixels

}  // namespace

ViewPane::ViewPane(const MessageCatalogue& catalogue, const std::function<void(Command)>& run,
                   QWidget* parent)
    : QWidget(parent) {
  setObjectName(QStringLiteral("ViewPane"));
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(0);
  auto* head = new QHBoxLayout;
  head->setContentsMargins(kGap, 0, 0, 0);
  head->setSpacing(0);
  auto* caption = new QLabel(QString::fromStdString(catalogue.GetResString(TextId::ViewTitle)), this);
  QFont bold;
  bold.setBold(true);
  caption->setFont(bold);
  head->addWidget(caption, 1);
  const auto add = [&](Command command, QStyle::StandardPixmap icon) {
    auto* button = new QToolButton(this);
    button->setObjectName(QString::fromUtf8(RowOf(command).name).replace(QLatin1String("mnu"), "Cmd"));
    button->setAutoRaise(true);
    button->setIconSize({kIconSize, kIconSize});
    icons_.emplace_back(button, icon);
    button->setFocusPolicy(Qt::TabFocus);
    const QString text = QString::fromStdString(PlainCaption(catalogue.GetResString(RowOf(command).caption)));
    const QList<QKeySequence> keys = KeysOf(RowOf(command));
    button->setAccessibleName(text);
    button->setToolTip(text + QStringLiteral(" (%1)").arg(keys[0].toString(QKeySequence::NativeText)));
    connect(button, &QToolButton::clicked, this, [run, command] { run(command); });
    head->addWidget(button);
  };
  add(Command::ViewFloat, QStyle::SP_TitleBarNormalButton);
  add(Command::ViewClose, QStyle::SP_TitleBarCloseButton);
  rows->addLayout(head);
  ShowIcons();
}

// The style's signs are drawn for light windows.
void ViewPane::ShowIcons() {
  for (const auto& [button, icon] : icons_) {
    QPixmap sign = style()->standardIcon(icon).pixmap(button->iconSize(), devicePixelRatioF());
    QPainter painter(&sign);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(sign.rect(), palette().color(QPalette::ButtonText));
    painter.end();
    button->setIcon(sign);
  }
}

void ViewPane::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) ShowIcons();
}

void ViewPane::Take(QWidget& view) {
  auto* rows = static_cast<QVBoxLayout*>(layout());
  rows->addWidget(&view, 1);
}

}  // namespace corlune
