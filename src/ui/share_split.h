// ShareSplit: a splitter of two parts that keeps the share of its first part when it gets another size.
#pragma once

#include <optional>

#include <QSplitter>

namespace corlune {

class ShareSplit : public QSplitter {
  Q_OBJECT

 public:
  explicit ShareSplit(Qt::Orientation orientation, QWidget* parent = nullptr);

  // Share of the first part in permille, as it was set or as the handle was moved; nullopt: left to the
  // splitter.
  std::optional<int> Share() const { return share_; }
  // A share outside 1 to 999 counts as none.
  void SetShare(std::optional<int> permille);
  // Places the handle anew, after a change of sizes.
  void PlaceHandle();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  // Pixels of the first part where no share is set; `length`: of both.
  virtual int FirstPart(int length) const;

 private:
  std::optional<int> share_;
};

}  // namespace corlune
