#include "ui/share_split.h"

#include <algorithm>

namespace corlune {

namespace {

constexpr int kWhole = 1000;  // permille

}  // namespace

ShareSplit::ShareSplit(Qt::Orientation orientation, QWidget* parent) : QSplitter(orientation, parent) {
  setChildrenCollapsible(false);
  connect(this, &QSplitter::splitterMoved, this, [this] {
    const QList<int> parts = sizes();
    const int share = parts[0] * kWhole / std::max(parts[0] + parts[1], 1);
    share_ = std::clamp(share, 1, kWhole - 1);
  });
}

void ShareSplit::SetShare(std::optional<int> permille) {
  share_ = permille && *permille > 0 && *permille < kWhole ? permille : std::nullopt;
  PlaceHandle();
}

void ShareSplit::PlaceHandle() {
  const int length = (orientation() == Qt::Vertical ? height() : width()) - handleWidth();
  if (length <= 0 || count() < 2 || widget(1)->isHidden()) return;
  const int first = share_ ? length * *share_ / kWhole : FirstPart(length);
  setSizes({first, length - first});
}

int ShareSplit::FirstPart(int length) const {
  return length / 2;
}

void ShareSplit::resizeEvent(QResizeEvent* event) {
  QSplitter::resizeEvent(event);
  PlaceHandle();
}

}  // namespace corlune
