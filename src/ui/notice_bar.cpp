#include "ui/notice_bar.h"

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QStyle>
#include <QTimer>
#include <QToolButton>

#include "ui/elided_label.h"

namespace corlune {

namespace {
constexpr int kMargin = 2;   // pixels
constexpr int kSpacing = 4;  // pixels
// Long enough to be read twice; the panels below are needed too.
constexpr int kInformationStays = 15000;  // ms
}  // namespace

NoticeBar::NoticeBar(const MessageCatalogue& catalogue, QWidget* parent)
    : QFrame(parent),
      catalogue_(catalogue),
      icon_(new QLabel(this)),
      text_(new ElidedLabel(this)),
      leave_(new QTimer(this)) {
  setObjectName(QStringLiteral("NoticeBar"));
  setFrameStyle(static_cast<int>(QFrame::Box) | static_cast<int>(QFrame::Plain));
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::Base);
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(kSpacing, 0, kMargin, 0);
  layout->setSpacing(kSpacing);
  layout->addWidget(icon_);
  text_->setObjectName(QStringLiteral("LabNotice"));
  text_->setTextFormat(Qt::PlainText);
  text_->setForegroundRole(QPalette::Text);
  layout->addWidget(text_, 1);
  QToolButton* list = AddButton("CmdNotices", QStringLiteral("\u2026"), TextId::ShowNotices);
  connect(list, &QToolButton::clicked, this, &NoticeBar::ListWanted);
  QToolButton* close = AddButton("CmdCloseNotice", QStringLiteral("\u00d7"), TextId::CloseNotice);
  connect(close, &QToolButton::clicked, this, &NoticeBar::Clear);
  leave_->setSingleShot(true);
  leave_->setInterval(kInformationStays);
  connect(leave_, &QTimer::timeout, this, &NoticeBar::Leave);
  hide();
}

// Not from under the pointer or the keyboard.
void NoticeBar::Leave() {
  if (underMouse() || isAncestorOf(QApplication::focusWidget())) {
    leave_->start();
  } else {
    Clear();
  }
}

// Signs rather than pictures: they have the colour of the text in every palette.
QToolButton* NoticeBar::AddButton(const char* name, const QString& sign, TextId meaning) {
  auto* button = new QToolButton(this);
  button->setObjectName(QString::fromUtf8(name));
  button->setText(sign);
  button->setAutoRaise(true);
  button->setFocusPolicy(Qt::TabFocus);
  button->setToolTip(QString::fromStdString(catalogue_.GetResString(meaning)));
  button->setAccessibleName(button->toolTip());
  button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
  layout()->addWidget(button);
  return button;
}

void NoticeBar::Say(NoticeLevel level, const std::string& text) {
  last_.push_front({level, text, QTime::currentTime()});
  if (last_.size() > kKept) last_.pop_back();
  const int size = fontMetrics().height();
  icon_->setPixmap(NoticeIcon(level, *this).pixmap(QSize(size, size), devicePixelRatioF()));
  text_->setText(QString::fromStdString(text));
  setToolTip(text_->text());
  setAccessibleName(QString::fromStdString(catalogue_.GetResString(NoticeWord(level)) + ": " + text));
  if (level == NoticeLevel::Information) {
    leave_->start();
  } else {
    leave_->stop();
  }
  emit Said();
  raise();
  show();
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

QString NoticeBar::Text() const {
  return isHidden() ? QString() : text_->text();
}

int NoticeBar::WantedWidth() const {
  return sizeHint().width() - text_->sizeHint().width() +
         text_->fontMetrics().horizontalAdvance(text_->text().simplified()) + 2 * kSpacing;
}

}  // namespace corlune
