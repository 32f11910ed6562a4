// Changes of a sequence with 256 steps on two channels, below the widgets: the value is checked and stored,
// the rows recoloured, the undo entry recorded. The reference copies the sequence once, what any undo by
// copies would do at least.
#include <benchmark/benchmark.h>
#include <memory>
#include <string>

#include "bench/samples.h"
#include "editing/param_rules.h"
#include "editing/sequence_editor.h"
#include "support/fake_ports.h"

namespace corlune::bench {
namespace {

class Editing {
 public:
  explicit Editing(int steps) : sequence(std::make_unique<SequenceData>(FullSequence(steps))) {
    // Values that belong together: a sine everywhere, within its limits.
    for (int slot = 0; slot < steps; ++slot) {
      for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
        sequence->Cell(channel, slot, kSlotWaveform).Value = kWaveSine;
        sequence->Cell(channel, slot, kSlotPolarityRange).Value = 0;
        sequence->Cell(channel, slot, kSlotOffset).Value = 0;
      }
    }
    editor = std::make_unique<SequenceEditor>(state, ShippedDefinition(), *sequence, catalogue, prompts);
    editor->Restart();
  }

  void Select(GridArea area, int channel, int firstRow, int lastRow, int firstColumn, int lastColumn) {
    GridCursor& cursor = editor->Cursor();
    cursor.ActiveGrid = area;
    cursor.CurrentChannel = channel;
    cursor.CurrentRow = firstRow;
    cursor.SelEndRow = lastRow;
    cursor.CurrentCol1 = firstColumn;
    cursor.CurrentCol2 = firstColumn;
    cursor.SelEndCol = lastColumn;
  }
  static void Expect(const EditOutcome& outcome) {
    if (!outcome.Accepted) Fail("refused: " + (outcome.Message ? outcome.Message->Text : std::string()));
    if (!outcome.Changed) Fail("nothing changed");
  }

  AppState state = TwoChannelState();
  MessageCatalogue catalogue{10000};
  testing::ScriptedPrompts prompts;
  std::unique_ptr<SequenceData> sequence;
  std::unique_ptr<SequenceEditor> editor;
};

void cell_entry(benchmark::State& state) {
  Editing editing(MAX_STEPS);
  const CellPlace place{GridArea::Sequence, 0, GridRow{1}, kSlotFrequency + 1, 0};
  bool other = false;
  for (auto _ : state) {
    other = !other;
    Editing::Expect(editing.editor->EnterText(place, other ? "1234.567" : "7654.321"));
  }
}
BENCHMARK(cell_entry);

// A jump's target moves between the first and the last step, and with it the colours of all rows.
void jump_entry(benchmark::State& state) {
  Editing editing(MAX_STEPS);
  editing.sequence->Steps[MAX_STEPS - 1].JumpOn = 1;
  const CellPlace place{GridArea::Common, 0, GridRow{MAX_STEPS}, kColumnJumpTo + 1, 0};
  bool other = false;
  for (auto _ : state) {
    other = !other;
    Editing::Expect(editing.editor->EnterText(place, other ? "2" : "1"));
  }
}
BENCHMARK(jump_entry);

// Inserting at step 1, and undoing that: two operations a turn, so that the sequence stays below its limit.
void insert_row_and_undo(benchmark::State& state) {
  Editing editing(MAX_STEPS - 1);
  for (auto _ : state) {
    editing.Select(GridArea::Common, 0, 1, 1, 1, 1);
    Editing::Expect(editing.editor->InsertRow());
    Editing::Expect(editing.editor->Undo());
  }
  if (editing.sequence->StepCount != MAX_STEPS - 1) Fail("the undo did not take the row back");
}
BENCHMARK(insert_row_and_undo);

constexpr int kPastedColumns = 9;

// Copies of one channel's 256 x 9 cells onto the other one; undone outside the time.
void paste_cells(benchmark::State& state) {
  Editing editing(MAX_STEPS);
  editing.Select(GridArea::Sequence, 0, 1, MAX_STEPS, 1, kPastedColumns);
  if (!editing.editor->Copy()) Fail("nothing copied");
  editing.Select(GridArea::Sequence, 1, 1, MAX_STEPS, 1, kPastedColumns);
  for (auto _ : state) {
    Editing::Expect(editing.editor->Paste());
    state.PauseTiming();
    Editing::Expect(editing.editor->Undo());
    state.ResumeTiming();
  }
}
BENCHMARK(paste_cells);

// The same cells as text from a spreadsheet.
void paste_text(benchmark::State& state) {
  Editing editing(MAX_STEPS);
  editing.Select(GridArea::Sequence, 0, 1, MAX_STEPS, 1, kPastedColumns);
  const std::string text = editing.editor->CopyText();
  editing.Select(GridArea::Sequence, 1, 1, MAX_STEPS, 1, kPastedColumns);
  for (auto _ : state) {
    Editing::Expect(editing.editor->PasteText(text));
    state.PauseTiming();
    Editing::Expect(editing.editor->Undo());
    state.ResumeTiming();
  }
}
BENCHMARK(paste_text);

void editing_reference(benchmark::State& state) {
  const auto from = std::make_unique<SequenceData>(FullSequence(MAX_STEPS));
  const auto to = std::make_unique<SequenceData>();
  for (auto _ : state) {
    *to = *from;
    benchmark::DoNotOptimize(to.get());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(editing_reference);

}  // namespace
}  // namespace corlune::bench

BENCHMARK_MAIN();
