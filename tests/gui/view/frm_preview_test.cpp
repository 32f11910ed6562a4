// The sequence view as a person meets it: what is painted, what follows a run, keys, fields and lists.
#include "view/frm_preview.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPaintEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QWheelEvent>

#include "gui/view/view_rig.h"
#include "view/graph_painter.h"

namespace corlune {
namespace {

using testing::kAmplitude;
using testing::kEnvelope;
using testing::kFrequency;
using testing::kOffset;
using testing::ViewRig;
using Pressed = std::vector<std::string>;

// What of a widget is painted again.
class PaintWatch : public QObject {
 public:
  explicit PaintWatch(QWidget* watched) {
    QApplication::processEvents();
    watched->installEventFilter(this);
  }
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) painted_ += static_cast<QPaintEvent*>(event)->region();
    return false;
  }
  QRegion Take() {
    QApplication::processEvents();
    return std::exchange(painted_, QRegion());
  }

 private:
  QRegion painted_;
};

QImage Shot(GraphCanvas& canvas) {
  return canvas.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

int Distance(const QColor& a, const QColor& b) {
  return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue());
}

// True when a line of the colour, softened at its edges, runs within two pixels of the place.
bool Near(const QImage& image, double x, double y, const QColor& color) {
  constexpr int kSoftened = 120;
  for (int dy = -2; dy <= 2; ++dy) {
    const QPoint place(static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y)) + dy);
    if (image.rect().contains(place) && Distance(image.pixelColor(place), color) < kSoftened) return true;
  }
  return false;
}

TEST(SequenceViewPaintTest, DrawsLevelRampAndKeptLevelWhereTheirValuesAre) {
  ViewRig rig(4);
  rig.ShowArea(0, kOffset, 0, 1);
  rig.ShowArea(1, kOffset, 1, 1);
  rig.Set(0, kSlotOffset, -5);
  rig.Set(1, kSlotOffset, 5, kModeSweep);
  rig.Set(2, kSlotOffset, -9, kModeKeep);
  rig.Set(3, kSlotOffset, 0);
  rig.Set(0, kSlotOffset, 7.5, kModeConst, 1);
  rig.Open();
  const QImage image = Shot(rig.Canvas());
  const GraphColors colors(rig.Canvas().palette());
  const auto drawn = [&](std::size_t area, double ms, double volts) {
    const PlotScale scale = rig.Canvas().Scale(area);
    return Near(image, scale.XOf(ms), scale.YOf(volts), colors.Channel(static_cast<int>(area)));
  };
  for (const auto& [ms, volts] : std::vector<std::pair<double, double>>{
           {300, -5}, {1250, -2.5}, {1500, 0}, {1750, 2.5}, {2500, 5}, {3600, 0}}) {
    EXPECT_TRUE(drawn(0, ms, volts)) << ms;
    EXPECT_FALSE(drawn(0, ms, volts + 2)) << ms;
  }
  EXPECT_TRUE(drawn(1, 500, 7.5));
  EXPECT_FALSE(drawn(1, 500, -5));
}

TEST(SequenceViewPaintTest, FillsTheEnvelopeBetweenItsEdges) {
  ViewRig rig(1);
  rig.ShowArea(0, kEnvelope, 0, 1);
  rig.Set(0, kSlotAmplitude, 8);
  rig.Open();
  const QImage image = Shot(rig.Canvas());
  const PlotScale scale = rig.Canvas().Scale(0);
  const GraphColors colors(rig.Canvas().palette());
  const auto at = [&](double volts) {
    return image.pixelColor(static_cast<int>(scale.XOf(730)), static_cast<int>(scale.YOf(volts)));
  };
  EXPECT_TRUE(Near(image, scale.XOf(500), scale.YOf(4), colors.Channel(0)));
  EXPECT_TRUE(Near(image, scale.XOf(500), scale.YOf(-4), colors.Channel(0)));
  EXPECT_NE(at(2.7), colors.Background);
  EXPECT_EQ(at(5.7), colors.Background);
}

TEST(SequenceViewPaintTest, StandsOutInEveryScheme) {
  const auto scheme = [](QColor window, QColor base, QColor text) {
    QPalette palette(text, window, window, window, window, text, text, base, window);
    return palette;
  };
  for (const QPalette& palette :
       {QApplication::palette(), scheme(QColor(40, 40, 40), QColor(25, 25, 25), Qt::white),
        scheme(Qt::black, Qt::black, Qt::white), scheme(Qt::white, Qt::white, Qt::black),
        scheme(QColor(90, 90, 90), QColor(120, 120, 120), QColor(230, 230, 230))}) {
    const GraphColors colors(palette);
    const auto contrast = [](const QColor& a, const QColor& b) {
      return ContrastRatio(ToColor(a), ToColor(b));
    };
    for (int channel = 0; channel < 2; ++channel) {
      EXPECT_GE(contrast(colors.Channel(channel), colors.Background), kLineContrast) << channel;
    }
    EXPECT_GE(contrast(colors.Text, colors.Panel), kTextContrast);
    EXPECT_GE(contrast(colors.Faint, colors.Background), kTextContrast);
    for (const Color& loop : {Color{0xFF, 0xF2, 0xB3}, Color{0xE3, 0xD0, 0xF0}}) {
      const QColor fill = colors.Meaning(loop);
      EXPECT_GE(contrast(colors.TextOn(fill), fill), kTextContrast);
    }
  }
}

TEST(SequenceViewPaintTest, RepaintsOnlyWhatChanged) {
  ViewRig rig(4);
  rig.Open();
  PaintWatch watch(rig.Canvas().viewport());
  rig.view->PicDisp();
  rig.ShowStates();
  EXPECT_TRUE(watch.Take().isEmpty());
  rig.Set(2, kSlotFrequency, 123456);
  rig.ShowStates();  // what an edit in the main window brings about
  EXPECT_FALSE(watch.Take().isEmpty());
}

TEST(SequenceViewRunTest, MarkerRunsThroughTheStepAndRepaintsTwoStrips) {
  ViewRig rig(4);
  rig.ShowArea(0, kFrequency);
  rig.Open();
  rig.Run(1, 5000);
  GraphCanvas& canvas = rig.Canvas();
  EXPECT_EQ(canvas.Marker(), 1000);
  PaintWatch watch(canvas.viewport());
  rig.view->MoveShape(5500);
  EXPECT_EQ(canvas.Marker(), 1500);
  const QRegion strips = QRegion(canvas.MarkerStrip(1000)) + canvas.MarkerStrip(1500);
  const QRegion painted = watch.Take();
  EXPECT_EQ(painted, strips);
  EXPECT_LT(canvas.MarkerStrip(1500).width(), 20);
  const PlotScale scale = canvas.Scale(0);
  const auto line = [&](const QImage& image, double ms) {
    return image.pixelColor(static_cast<int>(scale.XOf(ms)), static_cast<int>(scale.Top) + 3) ==
           canvas.palette().color(QPalette::WindowText);
  };
  const QImage image = Shot(canvas);
  EXPECT_TRUE(line(image, 1500));
  EXPECT_FALSE(line(image, 1000));

  rig.view->MoveShape(6100);  // the step should be over
  rig.view->MoveShape(60000);
  EXPECT_EQ(canvas.Marker(), 2000);
  EXPECT_EQ(rig.state.StepChangedAt, 5000U);
  watch.Take();
  rig.view->MoveShape(70000);
  EXPECT_TRUE(watch.Take().isEmpty());
}

TEST(SequenceViewRunTest, MarkersAreThereDuringTheRunOnly) {
  ViewRig rig(3);
  rig.Open();
  rig.view->MoveShape(100);
  EXPECT_EQ(rig.Canvas().Marker(), std::nullopt);
  const QImage idle = Shot(rig.Canvas());
  rig.Run(0, 100);
  const QImage running = Shot(rig.Canvas());
  EXPECT_NE(running, idle);
  rig.definition.CurrentStep = {0, 0, 0xFF};
  rig.view->PicDisp();
  EXPECT_NE(Shot(rig.Canvas()), running) << "CL_CURSTEP marks the step";
  rig.state.CurrentStep = 7;  // no such step
  rig.view->MoveShape(200);
  EXPECT_EQ(rig.Canvas().Marker(), std::nullopt);
  rig.state.CurrentStep = 2;
  rig.view->PicDisp();
  rig.view->MoveShape(200);
  EXPECT_NE(rig.Canvas().Marker(), std::nullopt);
  rig.view->MeasureEnd();
  EXPECT_EQ(rig.Canvas().Marker(), std::nullopt);
  EXPECT_EQ(Shot(rig.Canvas()), idle);
  rig.state.HeldSequence = true;  // what runs is not what is drawn
  rig.sequence.Steps[0].StepRunTime = 5000;
  rig.view->MeasureStart();
  EXPECT_EQ(Shot(rig.Canvas()), idle);
}

TEST(SequenceViewRunTest, ScrollsToTheStepUnderWay) {
  ViewRig rig(256);
  rig.Open();
  GraphCanvas& canvas = rig.Canvas();
  EXPECT_EQ(canvas.TopRow(), 1);
  rig.Run(0, 0);
  rig.state.CurrentStep = 200;
  rig.view->PicDisp();
  const AxisWindow window = canvas.Window();
  EXPECT_LT(window.Start, 200e3);
  EXPECT_GT(window.End, 201e3);
  const int top = canvas.TopRow();
  rig.view->MoveShape(400);
  QTest::keyClick(&canvas, Qt::Key_Home);  // looking elsewhere during the step is left alone
  rig.view->PicDisp();
  rig.view->MoveShape(500);
  EXPECT_EQ(canvas.TopRow(), 1);
  rig.state.CurrentStep = 201;
  rig.view->PicDisp();
  EXPECT_GE(canvas.TopRow(), top);
  rig.state.CurrentStep = 5;  // a jump back
  rig.view->PicDisp();
  EXPECT_LE(canvas.TopRow(), 6);
}

TEST(SequenceViewRunTest, ClosingNeverTouchesTheRun) {
  ViewRig rig(3);
  rig.Open();
  EXPECT_TRUE(rig.state.SequenceViewShown);
  rig.Run(1, 0);
  rig.view->close();
  EXPECT_FALSE(rig.state.SequenceViewShown);
  EXPECT_EQ(rig.TakePressed(), (Pressed{"closed"}));
  EXPECT_EQ(rig.state.RunState, RunState::Running);
  EXPECT_EQ(rig.Canvas().Marker(), std::nullopt);
  rig.view->show();
  EXPECT_TRUE(rig.state.SequenceViewShown);
  rig.view.reset();
  EXPECT_FALSE(rig.state.SequenceViewShown);
}

TEST(SequenceViewControlsTest, ForwardRunButtonsItemsAndKeys) {
  ViewRig rig(3);
  rig.Open();
  EXPECT_FALSE(rig.Find<QPushButton>("CmdBtn1_2")->isEnabled());
  rig.state.OperationMode = OperationMode::Execution;
  rig.ShowStates();
  QTest::mouseClick(rig.Find<QPushButton>("CmdBtn1_1"), Qt::LeftButton);
  rig.Find<QAction>("mnuRunItem_0")->trigger();
  QTest::keyClick(&rig.Canvas(), Qt::Key_F5);
  QTest::keyClick(&rig.Canvas(), Qt::Key_F6);  // nothing to hold
  QTest::keyClick(&rig.Canvas(), Qt::Key_F8);
  EXPECT_EQ(rig.TakePressed(), (Pressed{"button 1", "item 0", "item 0", "item 4"}));
  rig.state.RunState = RunState::Running;
  rig.state.OutputOn = true;
  rig.ShowStates();
  for (const auto key : {Qt::Key_F5, Qt::Key_F6, Qt::Key_F7, Qt::Key_F8}) QTest::keyClick(&rig.Canvas(), key);
  QTest::keyClick(&rig.Canvas(), Qt::Key_F5, Qt::ShiftModifier);
  EXPECT_EQ(rig.TakePressed(), (Pressed{"item 2", "item 3", "item 5", "item 1"}));
  rig.definition.Buttons[4].Visible = false;
  rig.ShowStates();
  EXPECT_FALSE(rig.Find<QPushButton>("CmdBtn1_4")->isVisible());
}

void Choose(QComboBox* list, int index) {
  list->setFocus();
  QTest::keyClick(list, Qt::Key_Home);
  for (int i = 0; i < index; ++i) QTest::keyClick(list, Qt::Key_Down);
}

TEST(SequenceViewAreasTest, ChoicesAreHandedOverAndDrawn) {
  ViewRig rig(3);
  rig.ShowArea(0, kFrequency);
  rig.Open();
  Choose(rig.Find<QComboBox>("CmbArea"), 1);
  EXPECT_EQ(rig.Find<QComboBox>("CmbDisplay")->currentText(), "OFF");
  Choose(rig.Find<QComboBox>("CmbContent"), kOffset);
  Choose(rig.Find<QComboBox>("CmbDisplay"), 1);
  EXPECT_EQ(rig.sequence.ViewAreas[1], (std::array<std::int16_t, 4>{1, 0, kOffset, 0}));
  ASSERT_EQ(rig.Canvas().Picture().Areas.size(), 2U);
  EXPECT_EQ(rig.Canvas().Picture().Areas[1].Title, "Area2  1-CH1  Offset");
  rig.accept = false;
  Choose(rig.Find<QComboBox>("CmbObject"), 1);
  EXPECT_EQ(rig.Find<QComboBox>("CmbObject")->currentText(), "1-CH1");
  Choose(rig.Find<QComboBox>("CmbTimeAxis"), 1);
  const QPoint first = QPointF(rig.Canvas().Scale(0).XOf(0.5), rig.Canvas().Scale(0).Top + 9).toPoint();
  EXPECT_EQ(rig.Canvas().TipAt(first).left(11), "Step 1: 1 s") << "time, though the axis counts steps";
  EXPECT_EQ(rig.sequence.ViewAreas[1][kAreaTarget], 0);
}

TEST(SequenceViewAreasTest, SayWhyThereIsNothingToSee) {
  ViewRig rig(0);
  rig.Open();
  EXPECT_EQ(rig.Canvas().Picture().Note, "The sequence has no steps.");
  EXPECT_EQ(rig.Canvas().TopRow(), 0);
  QTest::keyClick(&rig.Canvas(), Qt::Key_End);
  QTest::keyClick(&rig.Canvas(), Qt::Key_Plus, Qt::ControlModifier);
  rig.sequence.StepCount = 2;
  rig.SetWaveform(0, kWaveDc);
  rig.SetWaveform(1, kWaveDc);
  rig.ShowArea(0, kFrequency);
  rig.sequence.ViewAreas[1] = {1, 0, kAmplitude, 4};
  rig.view->PicDisp();
  const auto& areas = rig.Canvas().Picture().Areas;
  ASSERT_EQ(areas.size(), 2U);
  EXPECT_EQ(areas[0].Note, "No step uses this parameter.");
  EXPECT_EQ(areas[1].Note, "3-CH1: no data in this sequence");
}

TEST(SequenceViewAreasTest, TipNamesStepParameterAndValue) {
  ViewRig rig(3);
  rig.sequence.StartStep = 11;
  rig.ShowArea(0, kAmplitude);
  rig.ShowArea(1, kFrequency);
  rig.Set(1, kSlotAmplitude, 2.5, kModeSweep);
  rig.SetWaveform(2, kWaveDc);
  rig.Set(0, kSlotFrequency, 0.000001);
  rig.Open();
  const auto tip = [&](std::size_t area, double ms) {
    const PlotScale scale = rig.Canvas().Scale(area);
    return rig.Canvas().TipAt(QPointF(scale.XOf(ms), scale.Top + 20).toPoint());
  };
  EXPECT_EQ(tip(0, 1500), "Step 12: 1 s\nAmplitude: 0 to 2.5 Vp-p");
  EXPECT_EQ(tip(0, 2500), "Step 13: 1 s\nAmplitude: not used in this step");
  EXPECT_EQ(tip(1, 500), "Step 11: 1 s\nFrequency: 0.000001 Hz");
  EXPECT_EQ(rig.Canvas().TipAt({2, 2}), "");
  rig.sequence.Steps[1].JumpOn = rig.sequence.Steps[1].JumpTo = rig.sequence.Steps[1].JumpCountOn = 1;
  rig.sequence.Steps[1].JumpCount = 3;
  rig.view->PicDisp();
  EXPECT_EQ(rig.Canvas().TipAt({rig.Canvas().StepRect(0).center().x(), 3}),
            "Steps 11 to 12 are repeated 3 times (4 passes)");
  rig.sequence.Channels.UserUnits[0][kSlotAmplitude] = {1, 0, "Vrms", 0.5, 0};
  rig.view->PicDisp();
  EXPECT_EQ(tip(0, 1500), "Step 12: 1 s\nAmplitude: 0 to 1.25 Vrms");
  EXPECT_EQ(rig.Canvas().Picture().Areas[0].Legends, (std::vector<std::string>{"Amplitude [Vrms]"}));
}

TEST(SequenceViewScrollTest, KeysAndWheelScrollAndZoom) {
  ViewRig rig(256);
  rig.ShowArea(0, kFrequency);
  rig.Open();
  GraphCanvas& canvas = rig.Canvas();
  QTest::keyClick(&canvas, Qt::Key_End);
  EXPECT_NEAR(canvas.Window().End, 256e3, 1e3);
  const int atEnd = canvas.TopRow();
  QTest::keyClick(&canvas, Qt::Key_PageUp);
  EXPECT_LT(canvas.TopRow(), atEnd);
  EXPECT_GT(canvas.TopRow(), 1);
  QTest::keyClick(&canvas, Qt::Key_Home);
  QTest::keyClick(&canvas, Qt::Key_PageDown);
  EXPECT_GT(canvas.TopRow(), 1);

  const double zoom = canvas.Zoom();
  QTest::keyClick(&canvas, Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_GT(canvas.Zoom(), zoom);
  QTest::keyClick(&canvas, Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_NEAR(canvas.Zoom(), zoom, 1e-9);
  QTest::keyClick(&canvas, Qt::Key_0, Qt::ControlModifier);
  EXPECT_NEAR(canvas.Window().End - canvas.Window().Start, 256e3, 1);

  const double x = canvas.Scale(0).XOf(150e3);
  const auto turn = [&](int angle, Qt::KeyboardModifiers modifiers) {
    QWheelEvent wheel(QPointF(x, 100), canvas.viewport()->mapToGlobal(QPointF(x, 100)), {}, {0, angle},
                      Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(canvas.viewport(), &wheel);
  };
  for (int i = 0; i < 5; ++i) turn(120, Qt::ControlModifier);
  EXPECT_LT(canvas.Window().End - canvas.Window().Start, 100e3);
  EXPECT_NEAR(canvas.Scale(0).PositionAt(x), 150e3, 1e3) << "the place under the pointer stays";
  const double start = canvas.Window().Start;
  turn(-120, Qt::NoModifier);
  const double shown = canvas.Window().Start;
  EXPECT_GT(shown, start);
  rig.Set(0, kSlotFrequency, 5);  // an edit leaves place and zoom alone
  rig.view->PicDisp();
  EXPECT_NEAR(canvas.Window().Start, shown, 1e-6);
}

TEST(SequenceViewLayoutTest, StandsBesideTheMainWindow) {
  ViewRig rig(3);
  rig.Open();
  const QRect screen = rig.view->screen()->availableGeometry();
  rig.view->FormStyleAlign(QRect(screen.left(), screen.top(), 120, 500));
  EXPECT_EQ(rig.view->frameGeometry().topLeft(), screen.topLeft() + QPoint(120, 0));
  EXPECT_EQ(rig.view->frameGeometry().right(), screen.right());
  EXPECT_EQ(rig.view->frameGeometry().height(), 500);
  // Too little room: it stays on the screen.
  rig.view->FormStyleAlign(QRect(screen.left(), screen.top(), screen.width() - 50, 500));
  EXPECT_LE(rig.view->frameGeometry().right(), screen.right());
  EXPECT_GE(rig.view->width(), rig.view->minimumSizeHint().width());
  rig.view->FormStyleNomal(screen);
  EXPECT_TRUE(screen.contains(rig.view->frameGeometry()));
}

TEST(SequenceViewLayoutTest, CutsNothingOffInBothLanguages) {
  for (const bool english : {true, false}) {
    ViewRig rig(4, english);
    rig.definition.ViewSelections[kAreaContent].Texts.push_back("Crest");
    rig.ShowArea(0, kEnvelope);
    rig.Open({420, 700});
    EXPECT_EQ(rig.view->windowTitle(), english ? "Sequence View" : "シーケンスビュー");
    auto* content = rig.Find<QComboBox>("CmbContent");
    EXPECT_EQ(content->itemText(kEnvelope), english ? "Envelope" : "包絡線");
    EXPECT_EQ(content->itemText(content->count() - 1), "Crest") << "not known here";
    EXPECT_EQ(rig.Canvas().Picture().Areas[0].Title,
              english ? "Area1  1-CH1  Envelope" : "エリア１  1-CH1  包絡線");
    const auto check = [&](auto* widget, const QString& text) {
      if (!widget->isVisible() || text.isEmpty()) return;
      const int reserved = widget->minimumWidth();
      EXPECT_GE(widget->width(), reserved > 0 ? reserved : widget->sizeHint().width()) << text.toStdString();
      EXPECT_GE(widget->height(), widget->sizeHint().height()) << text.toStdString();
      EXPECT_TRUE(rig.view->rect().contains(QRect(widget->mapTo(rig.view.get(), QPoint()), widget->size())))
          << text.toStdString();
    };
    int seen = 0;
    for (auto* label : rig.view->findChildren<QLabel*>()) check(label, label->text()), ++seen;
    for (auto* button : rig.view->findChildren<QPushButton*>()) check(button, button->text()), ++seen;
    for (auto* list : rig.view->findChildren<QComboBox*>()) check(list, list->currentText()), ++seen;
    EXPECT_GE(seen, 6 + 6 + 9);
  }
}

}  // namespace
}  // namespace corlune
