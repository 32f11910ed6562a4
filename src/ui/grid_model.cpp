#include "ui/grid_model.h"

#include <algorithm>

#include "editing/color_theme.h"
#include "view/to_qcolor.h"

namespace corlune {

namespace {

Qt::Alignment AlignmentOf(CellAlignment alignment) {
  switch (alignment) {
    case CellAlignment::Left:
      return Qt::AlignLeft | Qt::AlignVCenter;
    case CellAlignment::Center:
      return Qt::AlignCenter;
    case CellAlignment::Right:
      break;
  }
  return Qt::AlignRight | Qt::AlignVCenter;
}

}  // namespace

GridModel::GridModel(const GridViews& views, GridArea area, int channel, QObject* parent)
    : QAbstractTableModel(parent),
      views_(views),
      area_(area),
      channel_(channel),
      rows_(RowsNow()),
      columns_(ColumnsNow()) {}

int GridModel::RowsNow() const {
  return (area_ == GridArea::Branch ? views_.BranchRows() : views_.RowCount()) - 1;
}

int GridModel::ColumnsNow() const {
  switch (area_) {
    case GridArea::Common:
      return kCommonColumns;
    case GridArea::Sequence:
      return views_.ChannelColumns();
    case GridArea::Branch:
      break;
  }
  return GridViews::kBranchColumns;
}

CellPlace GridModel::PlaceOf(const QModelIndex& index) const {
  CellPlace place;
  place.Area = area_;
  place.Channel = channel_;
  place.Column = index.column();
  if (area_ == GridArea::Branch) {
    place.Row = step_;
    place.BranchRow = index.row() + 1;
  } else {
    place.Row = {index.row() + 1};
  }
  return place;
}

bool GridModel::ShowStep(GridRow step) {
  if (step == step_) return false;
  step_ = step;
  RowsChanged(1, rows_);
  return true;
}

void GridModel::Reset() {
  beginResetModel();
  rows_ = RowsNow();
  columns_ = ColumnsNow();
  endResetModel();
}

void GridModel::SyncRows() {
  const int rows = RowsNow();
  if (rows > rows_) {
    beginInsertRows({}, rows_, rows - 1);
    rows_ = rows;
    endInsertRows();
  } else if (rows < rows_) {
    beginRemoveRows({}, rows, rows_ - 1);
    rows_ = rows;
    endRemoveRows();
  }
}

void GridModel::RowsChanged(int first, int last) {
  const int top = std::max(first, 1) - 1;
  const int bottom = std::min(last, rows_) - 1;
  if (top > bottom || columns_ == 0) return;
  emit dataChanged(index(top, 0), index(bottom, columns_ - 1));
  if (top == 0) emit headerDataChanged(Qt::Horizontal, 0, columns_ - 1);  // headed by the first step's unit
}

int GridModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

int GridModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columns_;
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  switch (role) {
    case Qt::DisplayRole: {
      const CellView cell = Cell(index);
      const QString text = QString::fromStdString(cell.Text);
      // The running row is marked by more than its colour.
      return cell.Running && index.column() == 0 ? QStringLiteral("▶ ") + text : text;
    }
    case Qt::BackgroundRole:
      return ToQColor(Cell(index).Background);
    case Qt::ForegroundRole:
      return ToQColor(TextColorOn(Cell(index).Background));
    case Qt::TextAlignmentRole:
      return static_cast<int>(AlignmentOf(Cell(index).Alignment));
    case Qt::AccessibleTextRole:
      return QString(Header(index.column()).simplified() + QLatin1Char(' ') +
                     data(index, Qt::DisplayRole).toString());
    default:
      return {};
  }
}

QString GridModel::Header(int column) const {
  switch (area_) {
    case GridArea::Common:
      return QString::fromStdString(views_.CommonHeader(column));
    case GridArea::Sequence:
      return QString::fromStdString(views_.ChannelHeader(channel_, column));
    case GridArea::Branch:
      break;
  }
  // The branch grid is narrow: a word a line.
  return QString::fromStdString(views_.BranchHeader(column)).replace(QLatin1Char(' '), QLatin1Char('\n'));
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role == Qt::TextAlignmentRole) return static_cast<int>(Qt::AlignCenter);
  if (role != Qt::DisplayRole || section < 0) return {};
  if (orientation == Qt::Vertical) return section + 1;
  return section < columns_ ? QVariant(Header(section)) : QVariant();
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const bool spare =
      area_ == GridArea::Branch ? step_.value > views_.StepCount() : index.row() >= views_.StepCount();
  return spare ? Qt::ItemIsEnabled | Qt::ItemNeverHasChildren
               : Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

int GridModel::ColumnTwips(int column) const {
  switch (area_) {
    case GridArea::Common:
      return views_.CommonColumnWidth(column);
    case GridArea::Sequence:
      return views_.ChannelColumnWidth(channel_, column);
    case GridArea::Branch:
      break;
  }
  return GridViews::BranchColumnWidth(column);
}

}  // namespace corlune
