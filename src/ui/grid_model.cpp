#include "ui/grid_model.h"

#include <algorithm>
#include <utility>

#include "view/to_qcolor.h"

namespace corlune {

GridModel::GridModel(const GridViews& views, GridArea area, int channel, QObject* parent)
    : QAbstractTableModel(parent),
      views_(views),
      area_(area),
      channel_(channel),
      rows_(RowsNow()),
      columns_(ColumnsNow()) {}

Qt::Alignment GridModel::AlignmentOf(CellAlignment alignment) {
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
  const GridRow before = std::exchange(step_, step);
  if (area_ == GridArea::Branch) {
    CellsChanged(1, rows_);
  } else {
    CellsChanged(before.value, before.value);
    CellsChanged(step.value, step.value);
  }
  return true;
}

bool GridModel::IsMarked(const QModelIndex& index) const {
  return area_ != GridArea::Branch && index.row() + 1 == step_.value && step_.value <= views_.StepCount();
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
  CellsChanged(first, last);
  // Headed by the first step's unit.
  if (first <= 1 && rows_ > 0 && columns_ > 0) emit headerDataChanged(Qt::Horizontal, 0, columns_ - 1);
}

// Without the header, after which a table lays all its rows out anew.
void GridModel::CellsChanged(int first, int last) {
  const int top = std::max(first, 1) - 1;
  const int bottom = std::min(last, rows_) - 1;
  if (top <= bottom && columns_ > 0) emit dataChanged(index(top, 0), index(bottom, columns_ - 1));
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
    case Qt::TextAlignmentRole:
      return static_cast<int>(AlignmentOf(Cell(index).Alignment));
    case Qt::ToolTipRole:
      return index.column() == 0 && area_ != GridArea::Branch
                 ? QVariant(QString::fromStdString(views_.LoopText({index.row() + 1})))
                 : QVariant();
    case Qt::AccessibleTextRole:
      return Text(TextId::CellWithText, {CellName(index).toStdString(), Cell(index).Text});
    case Qt::AccessibleDescriptionRole:
      return State(index);
    default:
      return {};
  }
}

QString GridModel::Text(TextId id, const std::vector<std::string>& arguments) const {
  return QString::fromStdString(views_.Catalogue().GetResString(id, arguments));
}

QString GridModel::CellName(const QModelIndex& index) const {
  const CellPlace place = PlaceOf(index);
  const std::string step = std::to_string(views_.Sequence().StartStep + IndexOf(place.Row).value);
  if (area_ == GridArea::Branch) {
    return index.column() == 0 ? Header(0).simplified()
                               : Text(TextId::BranchOfStep, {std::to_string(place.BranchRow), step});
  }
  const QString header = Header(index.column()).simplified();
  return index.column() == 0 ? header : Text(TextId::CellOfStep, {header.toStdString(), step});
}

// What the cell tells by its colour, its marks and its brackets.
QString GridModel::State(const QModelIndex& index) const {
  const CellView cell = Cell(index);
  if (cell.State == CellState::Spare) return Text(TextId::CellSpare);
  QStringList states;
  if (cell.State == CellState::NotInUse) states << Text(TextId::CellNotInUse);
  if (cell.Running) {
    states << Text(TextId::CellRunning);
  } else if (IsMarked(index)) {
    states << Text(TextId::CellOfCurrentStep);
  }
  if (area_ != GridArea::Branch) {
    const QString loops = QString::fromStdString(views_.LoopText({index.row() + 1}));
    if (!loops.isEmpty()) states << loops.split(QLatin1Char('\n'));
  }
  return states.join(QStringLiteral(", "));
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
