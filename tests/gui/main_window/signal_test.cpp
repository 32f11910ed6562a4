// The signal strip of the main window: switched on, following the cursor and the run, reading files when
// idle.
#include "gui/main_window/window_rig.h"
#include "view/signal_strip.h"

namespace corlune::testing {
namespace {

TEST(WindowSignal, FollowsCursorAndRunAndIsRemembered) {
  WindowRig rig(WindowRig::Bus::OneInstrument);
  rig.Start();
  rig.AddSteps(3);
  const auto strip = [&] { return rig.window->findChild<SignalStrip*>(); };
  EXPECT_FALSE(strip()->isVisible());
  rig.window->Grids().SelectFirstCell();
  rig.Key(Qt::Key_G, Qt::ControlModifier);
  EXPECT_TRUE(strip()->isVisible());
  EXPECT_EQ(strip()->Subject().StepText, "Step 1: 1 s");
  EXPECT_TRUE(rig.window->Grids().isAncestorOf(QApplication::focusWidget()));
  rig.Type("2.5");
  rig.Key(Qt::Key_Down);
  EXPECT_EQ(strip()->Subject().StepText, "Step 2: 1 s");
  rig.Key(Qt::Key_Up);
  EXPECT_EQ(strip()->Subject().StepText, "Step 1: 2.5 s");
  EXPECT_TRUE(strip()->accessibleDescription().contains(QStringLiteral("Frequency: 1000 Hz")));

  // The wheel over the middle of the part zooms into it.
  const AxisWindow before = strip()->Window();
  const QPointF at = strip()->rect().center();
  QWheelEvent wheel(at, strip()->mapToGlobal(at), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                    Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(strip(), &wheel);
  EXPECT_NEAR(strip()->Window().Start, before.End * 0.1, before.End * 0.05) << "both ends come closer";
  EXPECT_NEAR(strip()->Window().End - strip()->Window().Start, before.End / 1.25, 1e-9);
  rig.Key(Qt::Key_Down);
  EXPECT_EQ(strip()->Window().Start, 0) << "another step is shown from its beginning";
  rig.Key(Qt::Key_Up);

  // A file is read when no further step was chosen.
  std::string ramp;
  for (int i = 0; i < 4096; ++i) ramp += std::to_string(8 * i) + ",";
  SequenceData& sequence = rig.session->Sequence();
  sequence.Channels.ArbFiles[0].FilePath = rig.folder.Write("ramp.txt", ramp);
  sequence.Cell(0, 0, kSlotWaveform).Value = kWaveUser;
  sequence.Cell(0, 0, kSlotArbNumber).Value = 1;
  rig.window->RefreshControls();
  EXPECT_EQ(strip()->Picture().Notes.at(0), "Reading ramp.txt ...");
  strip()->findChild<QTimer*>()->start(0);
  rig.Settle();
  EXPECT_EQ(strip()->Picture().Notes.at(0), "");
  EXPECT_FALSE(strip()->Picture().Panes.at(0).Traces.at(0).Columns.empty());
  rig.folder.Write("ramp.txt", ramp + "1");  // by another program
  QEvent back(QEvent::WindowActivate);
  QApplication::sendEvent(strip(), &back);
  EXPECT_EQ(strip()->Picture().Notes.at(0), "Reading ramp.txt ...");
  sequence.Cell(0, 0, kSlotWaveform).Value = kWaveSine;

  rig.EnterExecution();
  rig.StartRun();
  rig.Faults("text:2@:SOUR1:SEQ:CST?");
  rig.Tick();
  EXPECT_EQ(strip()->Subject().StepText, "Running step 3: 1 s");
  rig.Key(Qt::Key_F5, Qt::ShiftModifier);
  rig.Tick();
  EXPECT_EQ(strip()->Subject().StepText, "Step 1: 2.5 s");

  rig.session->State().Modified = false;
  rig.Start();
  EXPECT_TRUE(strip()->isVisible());
  EXPECT_TRUE(rig.Item("mnuSignalStrip")->isChecked());
}

}  // namespace
}  // namespace corlune::testing
