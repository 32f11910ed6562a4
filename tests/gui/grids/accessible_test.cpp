// The grids as assistive tools see them, and on a dark desktop.
#include <QAccessible>
#include <QToolTip>

#include "editing/color_theme.h"
#include "gui/grids/grids_rig.h"
#include "view/theme.h"
#include "view/window_colors.h"

namespace corlune::testing {
namespace {

std::string NameOf(QWidget& widget) {
  return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Name).toStdString();
}

QAccessibleInterface& CellOf(QTableView& grid, int row, int column) {
  return *QAccessible::queryAccessibleInterface(&grid)->tableInterface()->cellAt(row - 1, column);
}

TEST(Accessible, CellsTellColumnStepValueAndState) {
  GridsRig rig(5);
  rig.Step(4).JumpOn = 1;
  rig.Step(4).JumpTo = 2;
  rig.Step(4).JumpCountOn = 1;
  rig.Step(4).JumpCount = 5;
  rig.panel->Rebuild();
  rig.panel->HighlightRow({3}, true);
  for (const auto& [grid, name] : {std::pair{&rig.Common(), "Common area"}, std::pair{&rig.Channel(0), "Ch1"},
                                   std::pair{&rig.Branch(), "Branch Step"}}) {
    EXPECT_EQ(QAccessible::queryAccessibleInterface(grid)->role(), QAccessible::Table);
    EXPECT_EQ(NameOf(*grid), name);
  }
  const std::string loop = "Steps 2 to 4 are repeated 5 times (6 passes)";
  struct Row {
    QTableView* grid;
    int row;
    int column;
    std::string name;
    std::string state;
  };
  const Row rows[] = {{&rig.Common(), 1, 0, "Step: 1", ""},
                      {&rig.Common(), 4, 6, "Jump To, step 4: 2", loop},
                      {&rig.Common(), 3, 3, "Stop Phs[deg], step 3: - - - -", "not in use, running, " + loop},
                      {&rig.Channel(0), 3, 3, "Frequency Hz, step 3: 1000", "running, " + loop},
                      {&rig.Common(), 6, 1, "Step Time, step 6: ", "empty row"},
                      {&rig.Branch(), 2, 1, "Branch channel 2, step 3: 0", ""}};
  for (const Row& row : rows) {
    QAccessibleInterface& cell = CellOf(*row.grid, row.row, row.column);
    EXPECT_EQ(cell.text(QAccessible::Name).toStdString(), row.name);
    EXPECT_EQ(cell.text(QAccessible::Description).toStdString(), row.state) << row.name;
  }
  rig.panel->HighlightRow({3}, false);
  QApplication::processEvents();
  EXPECT_EQ(CellOf(rig.Common(), 1, 1).text(QAccessible::Description), QStringLiteral("current step"));
}

TEST(Accessible, TheEditorHasTheNameOfItsCell) {
  GridsRig rig(3);
  rig.GoTo(GridArea::Common, 1, 1);
  rig.Press(Qt::Key_Return);
  EXPECT_EQ(NameOf(*rig.Focus()), "Step Time, step 2");
  rig.Press(Qt::Key_Tab);
  EXPECT_EQ(rig.Focus()->accessibleName(), QStringLiteral("Auto Hold, step 2"));
  const auto* list = QAccessible::queryAccessibleInterface(rig.Focus());
  EXPECT_EQ(list->text(QAccessible::Description), QStringLiteral("Auto Hold, step 2"));
  rig.GoTo(GridArea::Common, 2, 6);
  EXPECT_EQ(NameOf(rig.Named<QRadioButton>("OptModeSet5")), "Jump To, step 2: ON");
  for (auto* button : rig.window.findChildren<QPushButton*>()) EXPECT_FALSE(NameOf(*button).empty());
}

// As Windows' black desktop with high contrast.
QPalette HighContrast() {
  QPalette palette(Qt::black);
  for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button})
    palette.setColor(role, Qt::black);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(role, Qt::yellow);
  }
  palette.setColor(QPalette::Highlight, Qt::cyan);
  return palette;
}

// The palette changes under the open window, with an editor over a cell.
TEST(DarkColours, EveryCellAndControlFollows) {
  GridsRig rig(5);
  rig.GoTo(GridArea::Common, 2, 6);
  for (const bool high : {false, true}) {
    ShowColors(WindowColors::Dark);
    EXPECT_EQ(QToolTip::palette(), QApplication::palette());
    if (high) QApplication::setPalette(HighContrast());
    QApplication::processEvents();
    const ColorTheme theme = ThemeOf(rig.Common().palette());
    EXPECT_TRUE(theme.Dark);
    EXPECT_EQ(theme.HighContrast, high);
    for (QTableView* grid : {&rig.Common(), &rig.Channel(0), &rig.Branch()}) {
      const QImage image = grid->viewport()->grab().toImage();
      for (int row = 0; row < grid->model()->rowCount(); ++row) {
        for (int column = 0; column < grid->model()->columnCount(); ++column) {
          const QRect cell = grid->visualRect(grid->model()->index(row, column));
          // Between text and frame.
          const QPoint at(cell.right() - 3, cell.top() + 4);
          if (!image.rect().contains(at) || grid->viewport()->childAt(at) != nullptr) continue;
          EXPECT_GE(ContrastRatio(ToColor(image.pixelColor(at)), theme.Text), theme.Contrast())
              << grid->objectName().toStdString() << " " << row << "," << column;
        }
      }
    }
    const auto ratio = [](const QWidget& control, QPalette::ColorRole back, QPalette::ColorRole text) {
      const QPalette& colors = control.palette();
      return ContrastRatio(ToColor(colors.color(QPalette::Active, back)),
                           ToColor(colors.color(QPalette::Active, text)));
    };
    const auto& add = rig.Named<QPushButton>("CmdRowAdd");
    const auto& option = rig.Named<QRadioButton>("OptModeSet5");
    EXPECT_LT(ContrastRatio(ToColor(add.palette().color(QPalette::Button)), {}), 4);
    EXPECT_GE(ratio(add, QPalette::Button, QPalette::ButtonText), theme.Contrast());
    EXPECT_LT(ContrastRatio(ToColor(option.palette().color(QPalette::Window)), {}), 4);
    EXPECT_GE(ratio(option, QPalette::Window, QPalette::WindowText), theme.Contrast());
  }
  ShowColors(WindowColors::Desktop);
  QApplication::processEvents();
  EXPECT_FALSE(ThemeOf(rig.Text(1).palette()).Dark);
}

}  // namespace
}  // namespace corlune::testing
