#include "ui/channel_tabs.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QTabBar>
#include <QVBoxLayout>

namespace corlune {

namespace {

constexpr int kGap = 6;  // pixels between the channels, and beside a caption

}  // namespace

ChannelTabs::ChannelTabs(const std::array<QWidget*, MAX_CHANNELS>& grids, QWidget* parent)
    : QWidget(parent), bar_(new QTabBar(this)), grids_(grids) {
  bar_->setObjectName(QStringLiteral("SSTab1Bar"));
  bar_->setDrawBase(false);
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  whole->setSpacing(0);
  whole->addWidget(bar_, 0, Qt::AlignLeft);
  auto* pages = new QHBoxLayout;
  pages->setSpacing(kGap);
  whole->addLayout(pages, 1);
  for (std::size_t i = 0; i < pages_.size(); ++i) {
    bar_->addTab(QString());
    visible_[i] = true;
    pages_[i] = new QWidget(this);
    captions_[i] = new QLabel(pages_[i]);
    captions_[i]->setTextFormat(Qt::PlainText);
    captions_[i]->setContentsMargins(kGap, 0, kGap, 0);
    rows_[i] = new QVBoxLayout(pages_[i]);
    rows_[i]->setSpacing(0);
    rows_[i]->addWidget(captions_[i]);
    rows_[i]->addWidget(grids_[i], 1);
    pages->addWidget(pages_[i], 1);
  }
  connect(bar_, &QTabBar::currentChanged, this, &ChannelTabs::setCurrentIndex);
  Arrange();
}

void ChannelTabs::setCurrentIndex(int channel) {
  if (channel < 0 || channel >= MAX_CHANNELS || channel == current_ || !visible_[At(channel)]) return;
  const QWidget* focus = window()->focusWidget();
  const bool takesFocus = !sideBySide_ && focus != nullptr && pages_[At(current_)]->isAncestorOf(focus);
  current_ = channel;
  // Shown before the other one goes, so that the focus has where to go.
  pages_[At(channel)]->show();
  if (takesFocus) grids_[At(channel)]->setFocus(Qt::OtherFocusReason);
  Arrange();
  emit currentChanged(channel);
}

QString ChannelTabs::tabText(int channel) const {
  return bar_->tabText(channel);
}

void ChannelTabs::setTabText(int channel, const QString& caption) {
  bar_->setTabText(channel, caption);
  captions_[At(channel)]->setText(caption);
}

void ChannelTabs::setTabVisible(int channel, bool visible) {
  visible_[At(channel)] = visible;
  // A bar shows another tab when its current one goes; a window without channels keeps the first.
  for (int other = 0; other < MAX_CHANNELS && !visible_[At(current_)]; ++other) setCurrentIndex(other);
  Arrange();
}

void ChannelTabs::ShowSideBySide(bool on) {
  if (on == sideBySide_) return;
  sideBySide_ = on;
  Arrange();
}

void ChannelTabs::SetMargin(int pixels) {
  margin_ = pixels;
  Arrange();
}

int ChannelTabs::CaptionHeight() const {
  return sideBySide_ ? captions_[0]->sizeHint().height() : bar_->sizeHint().height();
}

void ChannelTabs::Arrange() {
  const QSignalBlocker own(bar_);
  for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
    const std::size_t at = At(channel);
    // Said again, the same would make the bar forget that it has to be laid out.
    if (bar_->isTabVisible(channel) != visible_[at]) bar_->setTabVisible(channel, visible_[at]);
    QFont font;
    font.setBold(channel == current_);
    captions_[at]->setFont(font);
    captions_[at]->setVisible(sideBySide_);
    const int margin = sideBySide_ ? 0 : margin_;
    rows_[at]->setContentsMargins(0, 0, margin, 0);
    pages_[at]->setVisible(visible_[at] && (sideBySide_ || channel == current_));
  }
  bar_->setCurrentIndex(current_);
  bar_->updateGeometry();  // a tab that comes or goes does not say so itself
  bar_->setVisible(!sideBySide_);
}

}  // namespace corlune
