// Dragging in the sequence view with 256 steps on two channels, offscreen: one move of the mouse with its
// repaint. The reference paints as many level and upright lines as the view shows, and nothing else.
#include <benchmark/benchmark.h>
#include <memory>

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

#include "bench/samples.h"
#include "core/catalogue.h"
#include "editing/control_states.h"
#include "view/frm_preview.h"
#include "view/graph_canvas.h"

namespace corlune::bench {
namespace {

constexpr QSize kWindow(1366, 700);
constexpr int kAreas = 5;

class View {
 public:
  View() : sequence(std::make_unique<SequenceData>(FullSequence(MAX_STEPS))) {
    for (int slot = 0; slot < MAX_STEPS; ++slot) {
      sequence->Step(slot).StepTime = 1;
      for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
        sequence->Cell(channel, slot, kSlotWaveform).Value = kWaveSine;
        for (int param = kSlotFrequency; param < MAX_PARAMS; ++param) {
          sequence->Cell(channel, slot, param).ChangeMode = kModeConst;
        }
      }
    }
    ComputeStartValues(*sequence);
    for (std::int16_t area = 0; area < kAreas; ++area) {
      sequence->ViewAreas[static_cast<std::size_t>(area)] = {1, 0, area, static_cast<std::int16_t>(area % 2)};
    }
    PreviewHandlers handlers;
    handlers.graphs.enterValue = [](const CellPlace&, const std::string&) {};
    form =
        std::make_unique<FrmPreview>(state, ShippedDefinition(), *sequence, catalogue, std::move(handlers));
    form->resize(kWindow);
    form->show();
    form->ShowStates(ControlStatesOf(state, {}, ShippedDefinition(), {MAX_STEPS}));
    QApplication::processEvents();
    canvas = form->findChild<GraphCanvas*>();
    canvas->ShowAll();
    QApplication::processEvents();
  }
  void Mouse(QEvent::Type type, QPointF place) const {
    QMouseEvent event(type, place, canvas->viewport()->mapToGlobal(place),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, Qt::LeftButton, {});
    QApplication::sendEvent(canvas->viewport(), &event);
    QApplication::processEvents();
  }

  AppState state = TwoChannelState();
  MessageCatalogue catalogue{10000};
  std::unique_ptr<SequenceData> sequence;
  std::unique_ptr<FrmPreview> form;
  GraphCanvas* canvas = nullptr;
};

void Drag(benchmark::State& state, bool end) {
  const View view;
  const PlotScale scale = view.canvas->Scale(0);
  constexpr int kStep = 100;
  const StepSpan& span = view.canvas->Picture().Spans[kStep];
  const double value = view.canvas->Picture().Areas[0].Graph.Curves[0].Points[2 * kStep].Y;
  const QPointF grip(end ? scale.XOf(span.End) : scale.XOf((span.Start + span.End) / 2),
                     end ? scale.Top + 2 : scale.YOf(value));
  view.Mouse(QEvent::MouseButtonPress, grip);
  int away = 5;
  for (auto _ : state) {
    away = away % 40 + 5;
    view.Mouse(QEvent::MouseMove, grip + (end ? QPointF(away, 0) : QPointF(0, away)));
    if (view.canvas->Label().isEmpty()) Fail("nothing is dragged");
  }
}
void view_drag_level(benchmark::State& state) {
  Drag(state, false);
}
BENCHMARK(view_drag_level);
void view_drag_end(benchmark::State& state) {
  Drag(state, true);
}
BENCHMARK(view_drag_end);

class Lines : public QWidget {
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    for (int area = 0; area < kAreas; ++area) {
      for (int step = 0; step < MAX_STEPS; ++step) {
        const int x = step * width() / MAX_STEPS;
        painter.fillRect(x, area * height() / kAreas + step % 50, width() / MAX_STEPS, 2, Qt::blue);
        painter.fillRect(x, area * height() / kAreas, 2, 50, Qt::blue);
      }
    }
  }
};

void view_reference(benchmark::State& state) {
  Lines lines;
  lines.resize(kWindow);
  lines.show();
  QApplication::processEvents();
  for (auto _ : state) {
    lines.update();
    QApplication::processEvents();
  }
}
BENCHMARK(view_reference);

}  // namespace
}  // namespace corlune::bench
