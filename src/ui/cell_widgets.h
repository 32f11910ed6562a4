// The list and the option button that lie over a cell.
#pragma once

#include <QComboBox>
#include <QElapsedTimer>
#include <QRadioButton>

#include "editing/editor_for.h"

namespace corlune {

// A list over a cell. Typing looks for an entry that begins with the typed characters; the wheel scrolls the
// grid instead of changing the value.
class CellCombo : public QComboBox {
  Q_OBJECT

 public:
  CellCombo(const char* name, QWidget* parent);
  // True: an entry found by typing is reported as chosen; false: it waits until the cell is left.
  void ChooseAtOnce(bool on) { atOnce_ = on; }
  // As low as its text allows: it gives the grids' rows their height.
  QSize sizeHint() const override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void Search(const QString& typed);

  bool atOnce_ = false;
  QString searched_;
  QElapsedTimer sinceKey_;
};

class CellOption : public QRadioButton {
  Q_OBJECT

 public:
  CellOption(const char* name, QWidget* parent);
  void Offer(const EditorOption& option);
  QSize sizeHint() const override;

 protected:
  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  bool hitButton(const QPoint& at) const override;

 private:
  void ShowColors();

  Color background_ = kWindowColor;  // as the definition has it
};

}  // namespace corlune
