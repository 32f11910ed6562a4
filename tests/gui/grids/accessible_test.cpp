// The grids as assistive tools see them, and on a dark desktop.
#include <QAccessible>

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

// What had the focus, in order.
std::vector<std::string>& FocusNames() {
  static std::vector<std::string> names;
  return names;
}
void NoteFocus(QAccessibleEvent* event) {
  if (event->type() != QAccessible::Focus || event->accessibleInterface() == nullptr) return;
  FocusNames().push_back(event->accessibleInterface()->text(QAccessible::Name).toStdString());
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
                      {&rig.Common(), 6, 1, "Step Time[s], step 6: ", "empty row"},
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

TEST(Accessible, TheFocusIsToldWithColumnAndStep) {
  GridsRig rig(3);
  QAccessible::setActive(true);
  const auto before = QAccessible::installUpdateHandler(NoteFocus);
  rig.GoTo(GridArea::Common, 1, 1);
  FocusNames().clear();
  rig.Press(Qt::Key_Return);
  rig.Press(Qt::Key_Tab);
  rig.GoTo(GridArea::Common, 2, 6);
  QAccessible::installUpdateHandler(before);
  QAccessible::setActive(false);
  ASSERT_GE(FocusNames().size(), 3U);
  EXPECT_EQ(FocusNames()[0], "Step Time[s], step 2");
  EXPECT_EQ(FocusNames()[1], "Auto Hold, step 2");
  EXPECT_EQ(FocusNames().back(), "Jump To, step 2");
  EXPECT_EQ(NameOf(rig.Named<QRadioButton>("OptModeSet5")), "Jump To, step 2: ON");
  for (const auto* button : rig.window.findChildren<QPushButton*>()) EXPECT_FALSE(NameOf(*button).empty());
}

// The palette changes under the open window, with an editor over a cell.
TEST(DarkColours, EveryCellAndControlFollows) {
  GridsRig rig(5);
  rig.GoTo(GridArea::Common, 2, 6);
  ShowColors(WindowColors::Dark);
  QApplication::processEvents();
  for (QTableView* grid : {&rig.Common(), &rig.Channel(0), &rig.Branch()}) {
    const QImage image = grid->viewport()->grab().toImage();
    for (int row = 0; row < grid->model()->rowCount(); ++row) {
      for (int column = 0; column < grid->model()->columnCount(); ++column) {
        const QRect cell = grid->visualRect(grid->model()->index(row, column));
        if (!image.rect().contains(cell)) continue;
        // Behind the editors, cells and texts alike: nothing light but the texts and lines.
        const Color corner = ToColor(image.pixelColor(cell.right() - 3, cell.center().y() - 6));
        EXPECT_GE(ContrastRatio(corner, {0xFF, 0xFF, 0xFF}), kTextContrast) << row << "," << column;
      }
    }
  }
  for (QWidget* control : {static_cast<QWidget*>(&rig.Named<QPushButton>("CmdRowAdd")),
                           static_cast<QWidget*>(&rig.Named<QRadioButton>("OptModeSet5")),
                           static_cast<QWidget*>(&rig.Text(1))}) {
    const QPalette& colors = control->palette();
    for (const auto& [back, text] :
         {std::pair{QPalette::Button, QPalette::ButtonText}, std::pair{QPalette::Base, QPalette::Text}}) {
      const Color face = ToColor(colors.color(QPalette::Active, back));
      EXPECT_TRUE(ThemeOf(colors).Dark);
      EXPECT_GE(ContrastRatio(face, ToColor(colors.color(QPalette::Active, text))), kTextContrast);
      EXPECT_LT(ContrastRatio(face, {}), 6) << control->objectName().toStdString();
    }
  }
  ShowColors(WindowColors::Desktop);
  EXPECT_FALSE(ThemeOf(rig.Text(1).palette()).Dark);
}

}  // namespace
}  // namespace corlune::testing
