// What the start of the window program is compared with: a window of the toolkit with three tables over empty
// models as large as the grids of 256 steps on two channels.
//   reference_window WIDTH HEIGHT
#include <array>
#include <cstdlib>

#include <QAbstractTableModel>
#include <QApplication>
#include <QMainWindow>
#include <QTableView>
#include <QVBoxLayout>

namespace {

class EmptyModel : public QAbstractTableModel {
 public:
  EmptyModel(int rows, int columns) : rows_(rows), columns_(columns) {}
  int rowCount(const QModelIndex& /*parent*/) const override { return rows_; }
  int columnCount(const QModelIndex& /*parent*/) const override { return columns_; }
  QVariant data(const QModelIndex& /*index*/, int /*role*/) const override { return {}; }

 private:
  int rows_;
  int columns_;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QMainWindow window;
  QWidget area;
  QVBoxLayout layout(&area);
  EmptyModel common(256, 10);
  EmptyModel channel(256, 10);
  EmptyModel branch(5, 2);
  std::array<QTableView, 3> tables;
  tables[0].setModel(&common);
  tables[1].setModel(&channel);
  tables[2].setModel(&branch);
  for (QTableView& table : tables) layout.addWidget(&table);
  window.setCentralWidget(&area);
  window.resize(argc > 1 ? std::atoi(argv[1]) : 800, argc > 2 ? std::atoi(argv[2]) : 600);
  window.show();
  return QApplication::exec();  // ended by the signal of whoever measures
}
