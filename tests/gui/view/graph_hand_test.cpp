// The graphs under a person's hand: selecting steps, dragging values, and what assistive tools see of them.
#include "view/graph_hand.h"

#include <QAccessible>

#include "core/numbers.h"
#include "gui/view/view_rig.h"

namespace corlune {
namespace {

using testing::kFrequency;
using testing::kOffset;
using testing::ViewRig;
using Pressed = std::vector<std::string>;

QPoint Place(GraphCanvas& canvas, double ms, double value) {
  const PlotScale scale = canvas.Scale(0);
  return QPointF(scale.XOf(ms), scale.YOf(value)).toPoint();
}

TEST(GraphHandTest, SelectsStepsByPressAndKey) {
  ViewRig rig(256);
  rig.ShowArea(0, kFrequency);
  rig.Open();
  GraphCanvas& canvas = rig.Canvas();
  QTest::mouseClick(canvas.viewport(), Qt::LeftButton, {}, Place(canvas, 2500, 500));
  EXPECT_EQ(canvas.SelectedStep(), 2);
  const QColor mark = canvas.palette().color(QPalette::Highlight);
  const QPoint number = canvas.StepRect(2).topLeft() + QPoint(1, 1);
  EXPECT_EQ(canvas.viewport()->grab().toImage().pixelColor(number), mark);
  for (const auto key : {Qt::Key_Right, Qt::Key_End, Qt::Key_Right, Qt::Key_Left, Qt::Key_Enter}) {
    QTest::keyClick(&canvas, key, key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
  }
  EXPECT_GT(canvas.Window().End, 254e3);
  EXPECT_EQ(rig.TakePressed(), (Pressed{"step 2", "step 3", "step 255", "step 255", "step 254", "cell"}));
  rig.view->ShowSelectedStep(9);  // the cursor of the grids
  EXPECT_LT(canvas.Window().Start, 9e3);
  rig.accept = false;
  QTest::keyClick(&canvas, Qt::Key_Home);
  EXPECT_EQ(canvas.SelectedStep(), 9) << "an entry in a cell is refused";
}

TEST(GraphHandTest, DragsValuesAndStepEnds) {
  ViewRig rig(4);
  rig.ShowArea(0, kOffset, 0, 1);  // -10 to 10 V
  rig.ShowArea(1, kOffset);
  rig.Open();
  GraphCanvas& canvas = rig.Canvas();
  QWidget* plot = canvas.viewport();
  const auto drag = [&](QPoint from, QPoint by) {
    QTest::mouseMove(plot, from);
    QTest::mousePress(plot, Qt::LeftButton, {}, from);
    QTest::mouseMove(plot, from + by / 2);
    QTest::mouseMove(plot, from + by);
  };
  const PlotScale scale = canvas.Scale(0);
  const ValueRange fitted = canvas.Scale(1).Values;
  const QPoint level = Place(canvas, 1500, 0);
  const int up = static_cast<int>(scale.YOf(0) - scale.YOf(4));
  drag(level, {0, -up});
  EXPECT_EQ(plot->cursor().shape(), Qt::SizeVerCursor);
  EXPECT_EQ(canvas.Label(), "Offset: 4 V");
  EXPECT_NEAR(canvas.Picture().Areas[0].Graph.Curves[0].Points[2].Y, 4, 1e-9);
  EXPECT_EQ(canvas.Scale(1).Values, fitted);
  QTest::mouseRelease(plot, Qt::LeftButton, {}, level + QPoint(0, -up));
  EXPECT_EQ(rig.TakePressed(), (Pressed{"step 1", "2/6 = 4"}));
  EXPECT_EQ(canvas.Label(), "");
  drag(level, {0, -up});
  QTest::mouseMove(plot, level);
  QTest::mouseRelease(plot, Qt::LeftButton, {}, level);
  EXPECT_EQ(rig.TakePressed(), Pressed{"step 1"}) << "dragged back";

  const QPoint end = Place(canvas, 2000, 7);
  const int second = static_cast<int>(scale.XOf(1000) - scale.XOf(0));
  drag(end, {2 * second, 0});
  EXPECT_EQ(plot->cursor().shape(), Qt::SizeHorCursor);
  const double length = canvas.Picture().Spans[1].End - 1000;  // ms
  EXPECT_NEAR(length, 3000, 10);
  EXPECT_NEAR(canvas.Window().End, 4000, 1e-6) << "the axis holds still";
  QTest::mouseRelease(plot, Qt::LeftButton);
  EXPECT_EQ(rig.TakePressed(), (Pressed{"step 1", "2/1 = " + NumberText(length / 1000)}));
}

TEST(GraphHandTest, AnEscapedOrForbiddenDragEntersNothing) {
  ViewRig rig(4);
  rig.ShowArea(0, kOffset, 0, 1);
  rig.Open();
  GraphCanvas& canvas = rig.Canvas();
  const QImage before = canvas.viewport()->grab().toImage();
  const QPoint level = Place(canvas, 1500, 0);
  const auto drag = [&](const std::function<void()>& inside) {
    QTest::mousePress(canvas.viewport(), Qt::LeftButton, {}, level);
    QTest::mouseMove(canvas.viewport(), level - QPoint(0, 30));
    inside();
    QTest::mouseMove(canvas.viewport(), level - QPoint(0, 40));
    QTest::mouseRelease(canvas.viewport(), Qt::LeftButton, {}, level - QPoint(0, 40));
    EXPECT_EQ(rig.TakePressed(), Pressed{"step 1"});
  };
  drag([&] { QTest::keyClick(&canvas, Qt::Key_Escape); });
  drag([&] { rig.view->PicDisp(); });  // the sequence may have changed meanwhile
  drag([&] { QTest::mouseClick(canvas.viewport(), Qt::RightButton, {}, level); });
  drag([&] { rig.Find<QWidget>("CmbArea")->setFocus(); });
  drag([&] {  // let go outside of the window
    QMouseEvent move(QEvent::MouseMove, level, canvas.mapToGlobal(level), Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(canvas.viewport(), &move);
  });
  rig.state.OperationMode = OperationMode::Execution;
  rig.ShowStates();
  drag([&] { EXPECT_EQ(canvas.Label(), ""); });
  rig.view->ShowSelectedStep(std::nullopt);
  EXPECT_EQ(canvas.viewport()->grab().toImage(), before);
}

TEST(GraphAccessTest, StepsAreAListWithValuesAndStates) {
  ViewRig rig(3);
  rig.sequence.StartStep = 11;
  rig.ShowArea(0, kOffset);
  rig.Set(1, kSlotOffset, 2.5);
  rig.Open();
  rig.Run(1, 0);
  rig.Canvas().setFocus();
  QAccessibleInterface* graphs = QAccessible::queryAccessibleInterface(&rig.Canvas());
  ASSERT_NE(graphs, nullptr);
  EXPECT_EQ(graphs->role(), QAccessible::List);
  EXPECT_EQ(graphs->text(QAccessible::Name), "Graphs of the sequence");
  ASSERT_EQ(graphs->childCount(), 3);
  QAccessibleInterface* step = graphs->child(1);
  EXPECT_EQ(step->text(QAccessible::Name), "Step 12");
  EXPECT_EQ(step->text(QAccessible::Value), "Step 12: 1 s\nArea1  1-CH1  Offset\nOffset: 2.5 V");
  EXPECT_EQ(step->text(QAccessible::Description), "running");
  EXPECT_TRUE(step->state().active && !step->state().selected);
  EXPECT_EQ(graphs->childAt(step->rect().center().x(), step->rect().center().y()), step);
  EXPECT_EQ(graphs->indexOfChild(step), 1);
  step->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(step->state().selected && step->state().focused);
  EXPECT_EQ(graphs->focusChild(), step);
  EXPECT_EQ(rig.TakePressed(), Pressed{"step 1"});
}

}  // namespace
}  // namespace corlune
