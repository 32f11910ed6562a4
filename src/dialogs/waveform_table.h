// WaveformTable: the 128 ARB numbers of a WaveformForm as the rows of a grid. Files that are dropped onto a
// row are handed on.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include <QAbstractTableModel>

#include "forms/waveform_form.h"

namespace corlune {

class WaveformTable : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kNumber, kUse, kFile, kForm, kPoints, kPlace, kColumns };

  WaveformTable(WaveformForm& form, const MessageCatalogue& catalogue, QObject* parent = nullptr);

  static int NumberOf(const QModelIndex& index) { return index.row() + 1; }
  const WaveformRow& Row(int number) const { return rows_[static_cast<std::size_t>(number - 1)]; }
  // Shows a number anew, or all.
  void Refresh(int number);
  void RefreshAll();
  // What becomes of files that are dropped onto a number. Not called inside the drop.
  void OnDrop(std::function<void(int number, const std::vector<std::string>& paths)> handler);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QStringList mimeTypes() const override;
  Qt::DropActions supportedDropActions() const override { return Qt::CopyAction; }
  bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                       const QModelIndex& parent) const override;
  bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                    const QModelIndex& parent) override;

 private:
  QString TextOf(const WaveformRow& row, int number, int column) const;

  WaveformForm& form_;
  const MessageCatalogue& catalogue_;
  std::array<WaveformRow, kArbNumbers> rows_;
  std::function<void(int, const std::vector<std::string>&)> drop_;
};

}  // namespace corlune
