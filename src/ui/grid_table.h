// GridTable: the view of one grid. It reports presses, drags and requests by cell and leaves cursor,
// selection and keys to GridControl. Rows are grid rows (1 is the first below the header).
#pragma once

#include <QHeaderView>
#include <QTableView>

#include "ui/grid_model.h"

namespace corlune {

// A header with texts of two lines. A text that does not fit is written narrower; one that is cut all the
// same shows in a tooltip.
class GridHeader : public QHeaderView {
  Q_OBJECT

 public:
  explicit GridHeader(QWidget* parent = nullptr);
  // Height that two lines need.
  int TwoLines() const;

 protected:
  void paintSection(QPainter* painter, const QRect& rect, int section) const override;
  bool viewportEvent(QEvent* event) override;

 private:
  // How much narrower the text of a section has to be to fit, in percent; 100: as it is.
  int StretchOf(int section) const;
};

class GridTable : public QTableView {
  Q_OBJECT

 public:
  // `model` must outlive the view.
  GridTable(GridModel& model, QWidget* parent = nullptr);

  GridModel& Model() const { return model_; }
  // Lays rows, header and columns out for the present font, screen and model.
  void LayOut(int rowHeight);
  // The width the layouts ask for, in pixels.
  void PreferWidth(int pixels);
  // Width that shows every column, with frame and scroll bar. In more room the columns of a step grid grow
  // along, up to MostWidth.
  int ContentWidth() const;
  int MostWidth() const;
  int RowHeight() const { return rowHeight_; }
  // Header, frame and the bar below the rows, where there is one.
  int HeightBesideRows() const;
  // Rows that fit below the header.
  int VisibleRows() const;
  QModelIndex At(int row, int column) const { return model_.index(row - 1, column); }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
  // Also within the area around the table.
  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

 signals:
  // `row` 0: a press below or beside the step rows.
  void Pressed(int row, int column, bool extend);
  void Dragged(int row, int column);  // the nearest cell
  void Released();
  void MenuRequested(const QPoint& global, int row, int column);  // row 0: by key, or outside the cells
  void Resized(int rowsBefore);                                   // rows that were in sight
  void Moved();  // scrolled, or cells have another place or size

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void updateGeometries() override;
  void resizeEvent(QResizeEvent* event) override;
  bool focusNextPrevChild(bool next) override;
  void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                   const QList<int>& roles = {}) override;

 public slots:
  // Reports the cell at a point of the screen as dragged to.
  void DragTo(const QPoint& global);

 private:
  void FitToFrame();
  // The sum of the columns' own widths.
  int NaturalLength() const;
  int SidesWidth() const;

  GridModel& model_;
  GridHeader* header_;
  int rowHeight_ = 20;
  int preferredWidth_ = 0;
};

}  // namespace corlune
