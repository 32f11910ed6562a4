// GridSide: the row buttons and the branch area beside the common grid.
#pragma once

#include <functional>

#include <QPushButton>

#include "editing/window_commands.h"
#include "ui/grid_table.h"

class QGroupBox;
class QLineEdit;

namespace corlune {

class RowButton : public QPushButton {
  Q_OBJECT

 public:
  RowButton(const char* name, const QString& caption, const std::function<void()>& run,
            QWidget* parent = nullptr);
  void ShowState(const ControlState& state);
};

class GridSide : public QWidget {
  Q_OBJECT

 public:
  // `views` and `branchModel` must outlive it. `run` gets the command of a button.
  GridSide(const GridViews& views, GridModel& branchModel, const std::function<void(Command)>& run,
           QWidget* parent = nullptr);

  GridTable& Branch() const { return *branch_; }
  // Width that its texts and the columns of the branch grid need, in pixels.
  int WidthOfTexts() const;
  void ShowStates(const ControlStates& states);
  // The branch area belongs to the step that its model shows.
  void Refresh();

 private:
  QWidget* BuildBranch(GridModel& model);
  QString Text(TextId id) const { return QString::fromStdString(views_.Catalogue().GetResString(id)); }

  const GridViews& views_;
  RowButton* insert_;
  RowButton* delete_;
  RowButton* up_;
  RowButton* down_;
  QGroupBox* branchFrame_ = nullptr;
  QLineEdit* stepNumber_ = nullptr;
  GridTable* branch_ = nullptr;
};

}  // namespace corlune
