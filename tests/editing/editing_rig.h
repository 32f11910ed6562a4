// A sequence editor over the shipped definition of the two-channel model, off-line, in edit mode.
#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "editing/param_rules.h"
#include "editing/sequence_editor.h"
#include "sequence/defaults.h"
#include "support/fake_ports.h"
#include "support/samples.h"

namespace corlune::testing {

// Columns of the channel grids.
inline constexpr int kColWaveform = kSlotWaveform + 1;
inline constexpr int kColArb = kSlotArbNumber + 1;
inline constexpr int kColFrequency = kSlotFrequency + 1;
inline constexpr int kColAmplitude = kSlotAmplitude + 1;
inline constexpr int kColRange = kSlotPolarityRange + 1;
inline constexpr int kColOffset = kSlotOffset + 1;
inline constexpr int kColDuty = kSlotDuty + 1;

inline CellPlace Common(int row, int column) {
  return {GridArea::Common, 0, GridRow{row}, column, 0};
}
inline CellPlace Channel(int channel, int row, int column) {
  return {GridArea::Sequence, channel, GridRow{row}, column, 0};
}
inline CellPlace Branch(int row, int branchRow) {
  return {GridArea::Branch, 0, GridRow{row}, 1, branchRow};
}

class EditingRig {
 public:
  explicit EditingRig(int steps = 0, const ModelDefinition& shipped = ShippedDefinition())
      : definition(shipped) {
    sequence = std::make_unique<SequenceData>();
    ResetSequence(*sequence, definition);
    editor = std::make_unique<SequenceEditor>(state, definition, *sequence, catalogue, prompts);
    for (int i = 0; i < steps; ++i) editor->AddRow();
    state.Modified = false;
    editor->Restart();
  }

  std::string Text(const CellPlace& place) const { return editor->Views().Cell(place).Text; }
  // 0 when the entry was taken, the message id when it was refused, -1 when refused without a message.
  int Enter(const CellPlace& place, const std::string& text) { return IdOf(editor->EnterText(place, text)); }
  int IdOf(const EditOutcome& outcome) {
    last = outcome;
    if (outcome.Accepted) return 0;
    return outcome.Message ? static_cast<int>(outcome.Message->Id) : -1;
  }
  // Makes rows first..last and the columns of the area the selection.
  void Select(GridArea area, int channel, int firstRow, int lastRow, int firstColumn, int lastColumn) {
    GridCursor& cursor = editor->Cursor();
    cursor.ActiveGrid = area;
    cursor.CurrentChannel = channel;
    cursor.CurrentRow = firstRow;
    cursor.SelEndRow = lastRow;
    (area == GridArea::Sequence ? cursor.CurrentCol2 : cursor.CurrentCol1) = firstColumn;
    cursor.SelEndCol = lastColumn;
  }
  StepRow& Step(int row) { return sequence->Steps[static_cast<std::size_t>(row) - 1]; }
  ParamCell& Cell(int channel, int row, int slot) { return sequence->Cell(channel, row - 1, slot); }

  AppState state = TwoChannelState();
  ModelDefinition definition;
  MessageCatalogue catalogue{10000};
  ScriptedPrompts prompts;
  std::unique_ptr<SequenceData> sequence;
  std::unique_ptr<SequenceEditor> editor;
  EditOutcome last;
};

}  // namespace corlune::testing
