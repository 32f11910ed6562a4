// ElidedLabel: a label that may be narrower than its text, which then ends in "...".
#pragma once

#include <QLabel>

namespace corlune {

class ElidedLabel : public QLabel {
 public:
  using QLabel::QLabel;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace corlune
