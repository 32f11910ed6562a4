// ChannelTabs: SSTab1, the channels' grids. On tabs, of which one is in front, or side by side under their
// captions where the window is wide enough. Either way one channel is the current one.
#pragma once

#include <array>

#include <QWidget>

#include "sequence/sequence_data.h"

class QLabel;
class QTabBar;
class QVBoxLayout;

namespace corlune {

class ChannelTabs : public QWidget {
  Q_OBJECT

 public:
  // Channels count from 0; the grids become children.
  explicit ChannelTabs(const std::array<QWidget*, MAX_CHANNELS>& grids, QWidget* parent = nullptr);

  int currentIndex() const { return current_; }
  // Brings a channel to the front; the focus of the one behind goes along. Nothing for a channel that is not
  // shown.
  void setCurrentIndex(int channel);
  QString tabText(int channel) const;
  void setTabText(int channel, const QString& caption);
  bool isTabVisible(int channel) const { return visible_[At(channel)]; }
  void setTabVisible(int channel, bool visible);

  bool SideBySide() const { return sideBySide_; }
  // Neither the current channel nor the focus changes.
  void ShowSideBySide(bool on);
  // Free pixels to the right of a grid in its tab.
  void SetMargin(int pixels);
  // Height of the tabs or captions above the grids.
  int CaptionHeight() const;

 signals:
  void currentChanged(int channel);

 private:
  static std::size_t At(int channel) { return static_cast<std::size_t>(channel); }
  void Arrange();

  QTabBar* bar_;
  std::array<QWidget*, MAX_CHANNELS> pages_{};
  std::array<QVBoxLayout*, MAX_CHANNELS> rows_{};
  std::array<QLabel*, MAX_CHANNELS> captions_{};
  std::array<QWidget*, MAX_CHANNELS> grids_{};
  std::array<bool, MAX_CHANNELS> visible_{};
  int current_ = 0;
  int margin_ = 0;
  bool sideBySide_ = false;
};

}  // namespace corlune
