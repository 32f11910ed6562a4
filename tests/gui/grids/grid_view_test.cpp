// What the grids show, and how little they repaint.
#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTabBar>

#include "gui/grids/grids_rig.h"
#include "ui/cell_editors.h"
#include "ui/grid_delegate.h"
#include "ui/grid_model.h"
#include "view/to_qcolor.h"

namespace corlune::testing {
namespace {

using Mode = QAbstractItemModelTester::FailureReportingMode;

// Every cell shows what a rebuild from scratch would.
void ExpectShownAsRebuilt(const GridsRig& rig) {
  const GridViews fresh(rig.state, rig.definition, rig.sequence, rig.catalogue);
  for (const QTableView* grid : {&rig.Common(), &rig.Channel(0), &rig.Channel(1), &rig.Branch()}) {
    const auto& model = dynamic_cast<const GridModel&>(*grid->model());
    const bool branch = model.Area() == GridArea::Branch;
    ASSERT_EQ(model.rowCount(), (branch ? fresh.BranchRows() : fresh.RowCount()) - 1);
    for (int row = 0; row < model.rowCount(); ++row) {
      for (int column = 0; column < model.columnCount(); ++column) {
        const QModelIndex index = model.index(row, column);
        const CellView cell = fresh.Cell(model.PlaceOf(index));
        ASSERT_EQ(index.data().toString().toStdString(), cell.Text) << row << "," << column;
        ASSERT_EQ(index.data(Qt::BackgroundRole).value<QColor>(), ToQColor(cell.Background));
      }
    }
  }
}

TEST(GridModels, FollowEveryOperationUpToTheLimit) {
  GridsRig rig(0);
  std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;
  for (QTableView* grid : {&rig.Common(), &rig.Channel(0), &rig.Channel(1), &rig.Branch()}) {
    testers.push_back(std::make_unique<QAbstractItemModelTester>(grid->model(), Mode::Fatal));
  }
  const auto run = [&](Command command) {
    rig.panel->Run(command);
    QApplication::processEvents();
  };
  using enum Command;
  run(AddRow);
  run(InsertRow);
  run(AddRow);
  rig.GoTo(GridArea::Common, 2, 1);
  for (const Command command :
       {RowUp, RowDown, RowDown, InsertRow, DeleteRow, DeleteRow, DeleteRow, DeleteRow})
    run(command);
  EXPECT_EQ(rig.sequence.StepCount, 0);
  ExpectShownAsRebuilt(rig);
  rig.panel->Run(Undo);
  rig.panel->Run(Undo);
  ExpectShownAsRebuilt(rig);
  while (rig.sequence.StepCount < 255) rig.panel->Run(DuplicateRows);
  auto& add = rig.Named<QPushButton>("CmdRowAdd");
  EXPECT_TRUE(add.isVisible());
  EXPECT_EQ(add.palette().color(QPalette::Button), QColor(0xED, 0xEF, 0xF2));
  add.setDown(true);
  emit add.pressed();
  EXPECT_EQ(add.palette().color(QPalette::Button), QColor(0xD6, 0xE9, 0xFA));
  add.setDown(false);
  run(AddRow);
  EXPECT_EQ(rig.sequence.StepCount, MAX_STEPS);
  EXPECT_EQ(rig.Common().model()->rowCount(), MAX_STEPS) << "no spare row at the limit";
  EXPECT_FALSE(rig.Named<QPushButton>("CmdRowAdd").isVisible());
  EXPECT_FALSE(rig.Named<QPushButton>("CmdInsert").isEnabled());
  run(AddRow);
  rig.panel->Run(DuplicateRows);
  EXPECT_EQ(rig.sequence.StepCount, MAX_STEPS);
  run(DeleteRow);
  EXPECT_TRUE(rig.Named<QPushButton>("CmdRowAdd").isVisible());
  ExpectShownAsRebuilt(rig);
}

TEST(GridModels, ADefinitionWithOneChannelHidesTheOtherTab) {
  GridsRig rig(3);
  auto& tabs = rig.Named<ChannelTabs>("SSTab1");
  rig.GoTo(GridArea::Sequence, 2, 3, 1);
  rig.state.Instruments[0].ChannelCount = 1;
  rig.panel->Rebuild();
  EXPECT_FALSE(tabs.isTabVisible(1));
  EXPECT_EQ(rig.editor->Cursor().CurrentChannel, 0);
  EXPECT_TRUE(tabs.isTabVisible(0));
  EXPECT_EQ(tabs.tabText(0), QStringLiteral("Ch1"));
  // A second one that comes back has its place in the bar.
  QApplication::processEvents();
  rig.state.Instruments[0].ChannelCount = 2;
  rig.panel->Rebuild();
  QApplication::processEvents();
  const auto& bar = rig.Named<QTabBar>("SSTab1Bar");
  EXPECT_TRUE(bar.rect().contains(bar.tabRect(1))) << bar.width();
}

TEST(Repaints, ARebuildPaintsOnce) {
  GridsRig rig(MAX_STEPS);
  PaintCounter common(*rig.Common().viewport());
  PaintCounter channel(*rig.Channel(0).viewport());
  rig.panel->Rebuild();
  EXPECT_EQ(common.count, 0) << "not before the event loop comes round";
  QApplication::processEvents();
  EXPECT_EQ(common.count, 1);
  EXPECT_EQ(channel.count, 1);
}

TEST(Repaints, AHighlightMovePaintsTwoRows) {
  GridsRig rig(50);
  rig.panel->HighlightRow({3}, true);
  PaintCounter common(*rig.Common().viewport());
  PaintCounter channel(*rig.Channel(0).viewport());
  rig.panel->HighlightRow({3}, false);
  rig.panel->HighlightRow({4}, true);
  QApplication::processEvents();
  for (const auto& [grid, paint] :
       {std::pair{&rig.Common(), &common}, std::pair{&rig.Channel(0), &channel}}) {
    const QRect rows =
        grid->visualRect(grid->model()->index(2, 0)) | grid->visualRect(grid->model()->index(3, 0));
    EXPECT_EQ(paint->count, 1);
    EXPECT_EQ(paint->region.boundingRect().top(), rows.top());
    EXPECT_LE(paint->region.boundingRect().height(), rows.height() + 1);
    EXPECT_GE(paint->region.boundingRect().height(), rows.height());
  }
}

TEST(Highlight, MarksAndGivesBackExactly) {
  GridsRig rig(5);
  rig.Step(4).JumpOn = 1;
  rig.Step(4).JumpTo = 2;
  rig.panel->Rebuild();
  const auto colors = [&](int row) {
    std::vector<QColor> all;
    for (const QTableView* grid : {&rig.Common(), &rig.Channel(0), &rig.Channel(1)}) {
      for (int column = 0; column < grid->model()->columnCount(); ++column) {
        all.push_back(grid->model()->index(row - 1, column).data(Qt::BackgroundRole).value<QColor>());
      }
    }
    return all;
  };
  const auto before = colors(3);
  rig.panel->HighlightRow({3}, true);
  for (const QColor& color : colors(3)) EXPECT_EQ(color, ToQColor(rig.definition.Common.CurrentCell));
  EXPECT_EQ(rig.CellText(rig.Common(), 3, 0), "▶ 3") << "not by colour alone";
  EXPECT_EQ(rig.CellText(rig.Channel(1), 3, 0), "▶ 3");
  rig.panel->HighlightRow({2}, false);  // another row
  EXPECT_EQ(rig.CellText(rig.Common(), 3, 0), "▶ 3");
  rig.panel->HighlightRow({3}, false);
  EXPECT_EQ(colors(3), before);
  rig.panel->HighlightRow({200}, true);  // beyond the last step
  rig.panel->HighlightRow({200}, false);
}

// The colours that reach the screen: the cell's own, the selection over it, the mark of the running row.
TEST(Painting, SelectionNeverHidesTheCellColour) {
  GridsRig rig(5);
  rig.GoTo(GridArea::Common, 2, 3);
  rig.Press(Qt::Key_Down, Qt::ShiftModifier);
  rig.panel->HighlightRow({5}, true);
  QApplication::processEvents();
  const QTableView& grid = rig.Common();
  const QImage image = grid.viewport()->grab().toImage();
  const auto corner = [&](int row, int column) {
    const QRect cell = grid.visualRect(grid.model()->index(row - 1, column));
    return image.pixelColor(cell.right() - 3, cell.top() + 3);
  };
  const QColor cell = ToQColor(rig.editor->Views().CommonCell({3}, 3).Background);
  EXPECT_EQ(corner(3, 3), SelectedColor(cell, grid.palette().color(QPalette::Highlight)));
  EXPECT_EQ(corner(4, 3), cell);
  const QRect number = grid.visualRect(grid.model()->index(4, 0));
  bool mark = false;  // beside the number
  for (int x = number.left(); x < number.center().x() - 8; ++x) {
    mark |= image.pixelColor(x, number.center().y()) == QColor(Qt::black);
  }
  EXPECT_TRUE(mark);
}

TEST(Layout, WidthsAndHeights) {
  GridsRig rig(3);
  rig.window.layout()->setContentsMargins(0, 0, 0, 0);
  for (const auto& [window, common, channel, tab] :
       {std::array{7680, 5580, 7175, 7435}, std::array{10995, 8415, 10215, 10575}}) {
    rig.window.resize(TwipsToPixels(window, &rig.window) - 16, 600);
    QApplication::processEvents();
    EXPECT_EQ(rig.Common().width(), TwipsToPixels(common, rig.panel));
    EXPECT_NEAR(rig.Channel(0).width(), TwipsToPixels(channel, rig.panel), 1);
    EXPECT_EQ(rig.Named<ChannelTabs>("SSTab1").width(), TwipsToPixels(tab, rig.panel));
  }
  EXPECT_EQ(rig.Common().columnWidth(1), TwipsToPixels(1000, rig.panel));
  rig.window.resize(1480, 700);
  QApplication::processEvents();
  EXPECT_LT(rig.Named<QPushButton>("CmdInsert").width(), 200) << "the grids take the rest";
  EXPECT_GT(rig.Common().columnWidth(1), TwipsToPixels(1200, rig.panel));
  EXPECT_GE(rig.Common().horizontalHeader()->height(), TwipsToPixels(500, rig.panel));
  EXPECT_EQ(rig.Common().rowHeight(0), rig.Combo(1).sizeHint().height());
}

// What is typed, the cursor and the focus stay when the channels move beside each other and back.
TEST(Layout, AWideWindowShowsTheChannelsSideBySide) {
  GridsRig rig(40);
  rig.GoTo(GridArea::Sequence, 30, 3, 1);
  rig.Type("12");
  auto& tabs = rig.Named<ChannelTabs>("SSTab1");
  const auto wide = [&](bool on) {
    rig.window.resize(on ? 1520 : 900, 700);
    QApplication::processEvents();
    EXPECT_EQ(tabs.SideBySide(), on);
    EXPECT_EQ(rig.Channel(0).isVisible(), on);
    EXPECT_EQ(rig.FocusName() + " " + rig.Text(2).text().toStdString(), "Text2 12");
    EXPECT_EQ(rig.At(), "30,3");
    const int top = rig.Common().verticalScrollBar()->value();
    EXPECT_EQ(rig.Channel(1).verticalScrollBar()->value(), top);
    EXPECT_TRUE(!on || rig.Channel(0).verticalScrollBar()->value() == top);
    const QRect cell = rig.Channel(1).visualRect(rig.Channel(1).model()->index(29, 3));
    EXPECT_EQ(rig.Text(2).geometry(), cell);
    EXPECT_TRUE(rig.Channel(1).viewport()->rect().contains(cell));
  };
  for (const bool on : {true, false, true}) wide(on);
  // From grid to grid as on tabs; the one that had no tab in front takes part in everything.
  rig.Press(Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_EQ(rig.Cell(1, 30, kSlotFrequency).Value, 12);
  EXPECT_EQ(rig.editor->Cursor().CurrentChannel, 0);
  EXPECT_EQ(tabs.currentIndex(), 0);
  EXPECT_TRUE(rig.Channel(1).isVisible());
  rig.Channel(1).verticalScrollBar()->setValue(3);
  EXPECT_EQ(rig.Channel(0).verticalScrollBar()->value(), 3);
  EXPECT_EQ(rig.Common().verticalScrollBar()->value(), 3);
  rig.state.Instruments[0].ChannelCount = 1;
  rig.panel->Rebuild();
  EXPECT_FALSE(rig.Channel(1).isVisible());
}

TEST(Scrolling, TheCurrentRowIsInSightInEveryGrid) {
  for (const int steps : {8, 12, 40}) {
    GridsRig rig(steps);
    const auto inSight = [&](int row) {
      for (const QTableView* grid : {&rig.Common(), &rig.Channel(0)}) {
        const QRect cell = grid->visualRect(grid->model()->index(row - 1, 0));
        EXPECT_TRUE(grid->viewport()->rect().contains(cell)) << steps << " steps, row " << row;
      }
    };
    for (const int height : {600, 420}) {
      for (int row = 1; row <= steps; ++row) {
        rig.panel->HighlightRow({row}, true);
        inSight(row);
        rig.panel->ScrollTo({std::max(1, steps - 10)});
        inSight(row);
      }
      rig.window.resize(733, height);
      inSight(steps);
      rig.panel->HighlightRow({steps}, false);
      rig.panel->SelectFirstCell();
      for (int row = 2; row <= steps; ++row) {
        rig.Press(Qt::Key_Return);
        inSight(row);
      }
    }
  }
}

TEST(BranchFrame, ShowsTheStepOfTheCursor) {
  GridsRig rig(5);
  rig.Step(4).BranchStep = {1, 2, 3, 4, 5};
  rig.sequence.StartStep = 10;
  rig.panel->Rebuild();
  rig.GoTo(GridArea::Common, 4, 1);
  EXPECT_EQ(rig.Named<QLineEdit>("TxtStepNo").text(), QStringLiteral("13"));
  EXPECT_EQ(rig.CellText(rig.Branch(), 5, 1), "14");
  rig.Press(Qt::Key_Up);
  EXPECT_EQ(rig.Named<QLineEdit>("TxtStepNo").text(), QStringLiteral("12"));
  EXPECT_EQ(rig.CellText(rig.Branch(), 5, 1), "0");
  // A run takes it along, and gives it back.
  rig.panel->HighlightRow({4}, true);
  EXPECT_EQ(rig.Named<QLineEdit>("TxtStepNo").text(), QStringLiteral("13"));
  EXPECT_EQ(rig.CellText(rig.Branch(), 5, 1), "14");
  rig.panel->HighlightRow({4}, false);
  rig.panel->HighlightRow({5}, true);
  EXPECT_EQ(rig.Named<QLineEdit>("TxtStepNo").text(), QStringLiteral("14"));
  rig.panel->HighlightRow({5}, false);
  QApplication::processEvents();
  EXPECT_EQ(rig.Named<QLineEdit>("TxtStepNo").text(), QStringLiteral("12"));
}

TEST(Headers, CutTextsShowInATooltip) {
  GridsRig rig(2);
  for (const QTableView* grid : {&rig.Common(), &rig.Channel(0), &rig.Branch()}) {
    const QHeaderView* header = grid->horizontalHeader();
    for (int column = 0; column < header->count(); ++column) {
      const QString text = header->model()->headerData(column, Qt::Horizontal).toString();
      const int needed = header->fontMetrics().size(0, text).width() * 3 / 4;
      EXPECT_LE(needed, header->sectionSize(column)) << text.toStdString();
    }
  }
}

}  // namespace
}  // namespace corlune::testing
