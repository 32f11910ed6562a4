// TimePanel: total or elapsed time in a status bar.
#pragma once

#include <QLabel>

#include "core/catalogue.h"

namespace corlune {

class TimePanel : public QLabel {
  Q_OBJECT

 public:
  // `captionId` stands before the time. `catalogue` must outlive the panel.
  TimePanel(const MessageCatalogue& catalogue, TextId captionId, QWidget* parent = nullptr);
  // Milliseconds; -1: endless.
  void ShowTime(double milliseconds);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void FixWidth();

  const MessageCatalogue& catalogue_;
  TextId captionId_;
};

}  // namespace corlune
