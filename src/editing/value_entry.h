// Value entry: what may be typed into a cell, and storing it. The functions work on a sequence directly; a
// refused text leaves it unchanged. SequenceEditor wraps them with undo and redraw.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "editing/grid_views.h"

namespace corlune {

struct EntryRefusal {
  TextId Id{};  // ValueOutOfRange, InputError, PeakTooHigh or one of this room
  std::vector<std::string> Arguments;
};
using EntryResult = std::optional<EntryRefusal>;  // nullopt: accepted

enum class EntryMode {
  Typed,  // into the cell's editor: a switched-off value is left alone
  Block,  // pasted or imported text: names of choices, "- - - -" switches off, a number switches on
};

// Full-width digits, signs, points and letters (Japanese input switched on) as their ASCII forms, blanks and
// tabs at both ends removed.
std::string PlainEntry(std::string_view text);

// `step` is a slot below the step count; `column` 1..9, `param` 0..10. The peak rule of amplitude and offset
// is part of StoreChannelText when typing; blocks call SettleChannelStep when a step is complete.
EntryResult StoreCommonText(const GridViews& views, SequenceData& sequence, int step, int column,
                            std::string_view text, EntryMode mode);
EntryResult StoreChannelText(const GridViews& views, SequenceData& sequence, int channel, int step, int param,
                             std::string_view text, EntryMode mode);
// `branchRow` 1..5.
EntryResult StoreBranchText(const GridViews& views, SequenceData& sequence, int step, int branchRow,
                            std::string_view text);

// Turns a switched parameter on or off; a value outside its range that is switched on moves to its nearest
// bound.
void SwitchCommonValue(const GridViews& views, SequenceData& sequence, int step, int column, bool on);
// The unit of a whole column. Does not look at bounds: a time that was typed in the other unit keeps its
// duration.
void ChangeTimeUnit(const ModelDefinition& definition, SequenceData& sequence, int index);
void ChangeColumnUnit(const ModelDefinition& definition, SequenceData& sequence, int channel, int param,
                      int index);

using StepCells = std::array<ParamCell, MAX_PARAMS>;
StepCells CellsOf(const SequenceData& sequence, int channel, int step);

// Checks a step whose cells were replaced: values that changed or that another waveform limits. A value that
// could not be seen before (no parameter of the old waveform) is moved into its bounds instead of refused.
// *param (may be null) is set to the refused parameter.
EntryResult SettleChannelStep(const GridViews& views, SequenceData& sequence, int channel, int step,
                              const StepCells& before, int* param = nullptr);
// The same for a common value that was copied: its bounds, unless it is switched off.
EntryResult CheckCommonValue(const GridViews& views, const SequenceData& sequence, int step, int column);
// A number of a channel grid against the bounds of the step's waveform.
EntryResult CheckChannelValue(const GridViews& views, const SequenceData& sequence, int channel, int step,
                              int param);

}  // namespace corlune
