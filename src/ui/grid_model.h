// GridModel: one area of the sequence as a table model. It maps the cells of GridViews to roles and holds no
// rules and no values; model row r shows grid row r + 1, the header row is the horizontal header.
#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QString>

#include "editing/grid_views.h"
#include "view/to_qcolor.h"

namespace corlune {

class GridModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  // `views` must outlive the model. `channel` counts only in the sequence area.
  GridModel(const GridViews& views, GridArea area, int channel, QObject* parent = nullptr);

  GridArea Area() const { return area_; }
  int Channel() const { return channel_; }
  // The cell behind an index.
  CellPlace PlaceOf(const QModelIndex& index) const;
  CellView Cell(const QModelIndex& index) const { return views_.Cell(PlaceOf(index)); }

  // The step that the window is at, as its row in the step grids: there it is marked, the branch area shows
  // its branches. Returns true when it is another one now.
  bool ShowStep(GridRow step);
  GridRow Step() const { return step_; }
  // Cell of a step row that is marked.
  bool IsMarked(const QModelIndex& index) const;
  const GridViews& Views() const { return views_; }

  // Everything may be different.
  void Reset();
  // Takes over a new number of rows, by adding or removing rows at the end.
  void SyncRows();
  // Cells of grid rows first..last (1-based, both included) changed; rows outside the model are ignored.
  void RowsChanged(int first, int last);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
  // The spare row can be neither selected nor made current.
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  static Qt::Alignment AlignmentOf(CellAlignment alignment);
  // Column and step of a cell, for assistive tools.
  QString CellName(const QModelIndex& index) const;
  // Width of a column in twips.
  int ColumnTwips(int column) const;

 private:
  int RowsNow() const;
  int ColumnsNow() const;
  void CellsChanged(int first, int last);
  QString Header(int column) const;
  QString Text(TextId id, const std::vector<std::string>& arguments = {}) const;
  QString State(const QModelIndex& index) const;

  const GridViews& views_;
  GridArea area_;
  int channel_;
  GridRow step_{1};
  int rows_;
  int columns_;
};

}  // namespace corlune
