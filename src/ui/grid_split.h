// GridSplit: the splitter between the common grid with what stands beside it and the channels' grids. Until
// its handle is moved both halves show the same number of whole rows.
#pragma once

#include "ui/grid_tables.h"
#include "ui/share_split.h"

namespace corlune {

class GridSplit : public ShareSplit {
  Q_OBJECT

 public:
  // `top` holds the common grid; the channels' tabs are those of `tables`.
  GridSplit(QWidget* top, const GridTables& tables, QWidget* parent = nullptr);

  // Height at which both halves show `rows` whole step rows, in pixels.
  int HeightFor(int rows) const;

 protected:
  int FirstPart(int length) const override;

 private:
  // What a half needs besides its rows.
  int TopExtra() const;
  int BottomExtra() const;

  GridTables tables_;
};

}  // namespace corlune
