// FlowLayout: items side by side, in as many rows as the width asks for; nothing is cut off in a narrow
// window.
#pragma once

#include <memory>
#include <vector>

#include <QLayout>
#include <QRect>

namespace corlune {

class FlowLayout : public QLayout {
 public:
  // Items that do not all fit beside each other go into further rows; those that Shrink first give up width,
  // down to their minimum, where that saves the second row.
  enum class Items { Keep, Shrink };
  FlowLayout(QWidget* parent, int spacing, Items items = Items::Keep);
  ~FlowLayout() override;

  void addItem(QLayoutItem* item) override;
  int count() const override { return static_cast<int>(items_.size()); }
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;
  Qt::Orientations expandingDirections() const override { return {}; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override { return Place(QRect(0, 0, width, 0), false); }
  // All items in one row.
  QSize sizeHint() const override;
  QSize minimumSize() const override;
  void setGeometry(const QRect& rect) override;

 private:
  // Returns the height that the items take.
  int Place(const QRect& rect, bool apply) const;

  QSize SizeIn(int width, QLayoutItem& item) const;

  Items kind_;
  std::vector<std::unique_ptr<QLayoutItem>> items_;
};

}  // namespace corlune
