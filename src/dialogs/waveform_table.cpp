#include "dialogs/waveform_table.h"

#include <algorithm>
#include <utility>

#include <QApplication>
#include <QMimeData>
#include <QStyle>
#include <QTextDocument>
#include <QTimer>
#include <QUrl>

namespace corlune {

namespace {

std::vector<std::string> LocalFiles(const QMimeData* data) {
  std::vector<std::string> paths;
  for (const QUrl& url : data->urls()) {
    if (url.isLocalFile()) paths.push_back(url.toLocalFile().toStdString());
  }
  return paths;
}

}  // namespace

WaveformTable::WaveformTable(WaveformForm& form, const MessageCatalogue& catalogue, QObject* parent)
    : QAbstractTableModel(parent), form_(form), catalogue_(catalogue) {
  for (int number = 1; number <= kArbNumbers; ++number) {
    rows_[static_cast<std::size_t>(number - 1)] = form_.Row(number);
  }
}

void WaveformTable::Refresh(int number) {
  rows_[static_cast<std::size_t>(number - 1)] = form_.Row(number);
  emit dataChanged(index(number - 1, 0), index(number - 1, kColumns - 1));
}

void WaveformTable::RefreshAll() {
  for (int number = 1; number <= kArbNumbers; ++number) {
    rows_[static_cast<std::size_t>(number - 1)] = form_.Row(number);
  }
  emit dataChanged(index(0, 0), index(kArbNumbers - 1, kColumns - 1));
}

void WaveformTable::OnDrop(std::function<void(int, const std::vector<std::string>&)> handler) {
  drop_ = std::move(handler);
}

int WaveformTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kArbNumbers;
}

int WaveformTable::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QString WaveformTable::TextOf(const WaveformRow& row, int number, int column) const {
  switch (column) {
    case kNumber:
      return QString::number(number);
    case kUse:
      return QString::fromStdString(row.Use);
    case kFile:
      return QString::fromStdString(row.Path);
    case kForm:
      return QString::fromStdString(row.Form);
    case kPoints:
      return QString::fromStdString(row.Points);
    default:
      return QString::fromStdString(row.PlaceText);
  }
}

QVariant WaveformTable::data(const QModelIndex& index, int role) const {
  const int number = NumberOf(index);
  const WaveformRow& row = Row(number);
  const bool odd = row.Place == WavePlace::Changed || row.Place == WavePlace::NotSent;
  switch (role) {
    case Qt::DisplayRole:
      return TextOf(row, number, index.column());
    case Qt::ToolTipRole: {
      std::string tip = index.column() == kUse ? row.UseSteps : std::string();
      if (index.column() == kFile && !form_.Path(number).empty()) tip = form_.FileOf(number);
      if (!row.Problem.empty()) tip += (tip.empty() ? "" : "\n") + row.Problem;
      // Names come from files: never taken as markup.
      return tip.empty() ? QVariant() : Qt::convertFromPlainText(QString::fromStdString(tip));
    }
    case Qt::TextAlignmentRole: {
      const bool right = index.column() == kNumber || index.column() == kPoints;
      return QVariant::fromValue((right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    case Qt::DecorationRole:
      if (index.column() == kFile && !row.Problem.empty()) {
        return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
      }
      if (index.column() == kPlace && odd) {
        return QApplication::style()->standardIcon(QStyle::SP_MessageBoxInformation);
      }
      return {};
    case Qt::AccessibleDescriptionRole:
      return QString::fromStdString(row.Problem);
    default:
      return {};
  }
}

QVariant WaveformTable::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  constexpr std::array kHeads{TextId::ArbColumnNumber, TextId::ArbColumnUse,    TextId::ArbColumnFile,
                              TextId::ArbColumnForm,   TextId::ArbColumnPoints, TextId::ArbColumnPlace};
  return QString::fromStdString(catalogue_.GetResString(kHeads.at(static_cast<std::size_t>(section))));
}

Qt::ItemFlags WaveformTable::flags(const QModelIndex& index) const {
  return QAbstractTableModel::flags(index) | Qt::ItemIsDropEnabled;
}

QStringList WaveformTable::mimeTypes() const {
  return {QStringLiteral("text/uri-list")};
}

bool WaveformTable::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                    const QModelIndex& parent) const {
  return parent.isValid() && !LocalFiles(data).empty();
}

bool WaveformTable::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                 const QModelIndex& parent) {
  if (!canDropMimeData(data, action, row, column, parent)) return false;
  // The program that the files come from waits until the drop is over; a message must not hold it up.
  QTimer::singleShot(0, this,
                     [this, number = NumberOf(parent), paths = LocalFiles(data)] { drop_(number, paths); });
  return true;
}

}  // namespace corlune
