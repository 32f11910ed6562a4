// The grids of the main window with 256 steps on two channels, offscreen, each turn with its repaint. The
// reference repaints table views of the same size over empty models: what the toolkit needs at least.
#include <array>
#include <benchmark/benchmark.h>
#include <memory>
#include <string>

#include <QAbstractTableModel>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QTableView>
#include <QVBoxLayout>

#include "bench/samples.h"
#include "support/fake_ports.h"
#include "ui/grid_panel.h"

namespace corlune::bench {
namespace {

constexpr QSize kWindow(733, 700);
constexpr int kSteps = MAX_STEPS - 1;  // room for an inserted row

class EmptyModel : public QAbstractTableModel {
 public:
  EmptyModel(int rows, int columns) : rows_(rows), columns_(columns) {}
  int rowCount(const QModelIndex& = {}) const override { return rows_; }
  int columnCount(const QModelIndex& = {}) const override { return columns_; }
  QVariant data(const QModelIndex&, int) const override { return {}; }

 private:
  int rows_, columns_;
};

// The panel as the main window holds it.
class Grids {
 public:
  explicit Grids(int steps = kSteps) : sequence(std::make_unique<SequenceData>(FullSequence(steps))) {
    // Values that belong together: a sine everywhere, within its limits, and jumps that colour many rows.
    for (int slot = 0; slot < steps; ++slot) {
      for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
        sequence->Cell(channel, slot, kSlotWaveform).Value = kWaveSine;
        sequence->Cell(channel, slot, kSlotPolarityRange).Value = 0;
        sequence->Cell(channel, slot, kSlotOffset).Value = 0;
      }
    }
    editor = std::make_unique<SequenceEditor>(state, ShippedDefinition(), *sequence, catalogue, prompts);
    editor->Restart();
    auto* layout = new QVBoxLayout(&window);
    panel = new GridPanel(*editor, prompts);
    layout->addWidget(panel);
    ControlConditions conditions;
    conditions.StepCount = steps;
    conditions.CanUndo = true;
    panel->ShowStates(ControlStatesOf(state, {}, ShippedDefinition(), conditions));
    window.resize(kWindow);
    window.show();
    window.activateWindow();
    panel->SelectFirstCell();
    Paint();
  }
  void Paint() const { QApplication::processEvents(); }
  void Expect(const EditOutcome& outcome) const {
    if (!outcome.Accepted) Fail("refused: " + (outcome.Message ? outcome.Message->Text : std::string()));
    if (!outcome.Changed) Fail("nothing changed");
  }

  AppState state = TwoChannelState();
  MessageCatalogue catalogue{10000};
  testing::ScriptedPrompts prompts;
  std::unique_ptr<SequenceData> sequence;
  std::unique_ptr<SequenceEditor> editor;
  QWidget window;
  GridPanel* panel = nullptr;
};

void grids_rebuild(benchmark::State& state) {
  const Grids grids(MAX_STEPS);
  for (auto _ : state) {
    grids.panel->Rebuild();
    grids.Paint();
  }
}
BENCHMARK(grids_rebuild);

// One value, stored and shown, with every row coloured anew.
void grids_cell_entry(benchmark::State& state) {
  const Grids grids(MAX_STEPS);
  StepRow& row = grids.sequence->Steps[200];
  row.JumpOn = row.JumpCountOn = 1;
  const CellPlace place{GridArea::Common, 0, GridRow{201}, 6, 0};
  bool other = false;
  for (auto _ : state) {
    other = !other;
    const EditOutcome outcome = grids.editor->EnterText(place, other ? "1" : "190");
    grids.Expect(outcome);
    grids.panel->Apply(outcome);
    grids.Paint();
  }
}
BENCHMARK(grids_cell_entry);

void grids_insert_and_undo(benchmark::State& state, bool measureUndo) {
  const Grids grids;
  for (auto _ : state) {
    if (measureUndo) state.PauseTiming();
    grids.panel->Run(Command::InsertRow);
    grids.Paint();
    if (measureUndo) {
      state.ResumeTiming();
    } else {
      state.PauseTiming();
    }
    if (grids.sequence->StepCount != kSteps + 1) Fail("no row was inserted");
    grids.panel->Run(Command::Undo);
    grids.Paint();
    if (grids.sequence->StepCount != kSteps) Fail("the row was not taken back");
    if (!measureUndo) state.ResumeTiming();
  }
}
void grids_insert(benchmark::State& state) {
  grids_insert_and_undo(state, false);
}
BENCHMARK(grids_insert);
void grids_undo(benchmark::State& state) {
  grids_insert_and_undo(state, true);
}
BENCHMARK(grids_undo);

// All columns of a channel, from text.
void grids_paste(benchmark::State& state) {
  const Grids grids(MAX_STEPS);
  std::array<std::string, 2> texts;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    for (int row = 0; row < MAX_STEPS; ++row) {
      texts[i] += "SIN\t- - - -\t" + std::to_string(100 + row + static_cast<int>(i)) +
                  "\t1.5\tNORM FS\t0\t0\t- - - -\tOFF\n";
    }
  }
  GridCursor& cursor = grids.editor->Cursor();
  cursor.ActiveGrid = GridArea::Sequence;
  bool other = false;
  for (auto _ : state) {
    other = !other;
    const EditOutcome outcome = grids.editor->PasteText(texts[other ? 1 : 0]);
    grids.Expect(outcome);
    grids.panel->Apply(outcome);
    grids.Paint();
  }
}
BENCHMARK(grids_paste);

void grids_highlight(benchmark::State& state) {
  const Grids grids(MAX_STEPS);
  int row = 1;
  for (auto _ : state) {
    grids.panel->HighlightRow({row}, false);
    row = row % 8 + 1;
    grids.panel->HighlightRow({row}, true);
    grids.Paint();
  }
}
BENCHMARK(grids_highlight);

// One repaint of what is visible.
void grids_reference(benchmark::State& state) {
  QWidget window;
  auto* layout = new QVBoxLayout(&window);
  EmptyModel common(MAX_STEPS, 10);
  EmptyModel channel(MAX_STEPS, 10);
  std::array<QTableView, 2> views;
  views[0].setModel(&common);
  views[1].setModel(&channel);
  for (QTableView& view : views) {
    view.verticalHeader()->hide();
    view.verticalHeader()->setDefaultSectionSize(22);
    view.horizontalHeader()->setDefaultSectionSize(65);
    layout->addWidget(&view);
  }
  window.resize(kWindow);
  window.show();
  QApplication::processEvents();
  for (auto _ : state) {
    for (QTableView& view : views) view.viewport()->update();
    QApplication::processEvents();
  }
  // The layout must not own what lives on the stack.
  for (QTableView& view : views) view.setParent(nullptr);
}
BENCHMARK(grids_reference);

}  // namespace
}  // namespace corlune::bench
