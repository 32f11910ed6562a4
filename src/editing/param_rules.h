// ParamRules: which fields of the sequence stand behind the columns of the grids, and what they may hold.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "modeldef/model_definition.h"
#include "sequence/defaults.h"
#include "sequence/sequence_data.h"

namespace corlune {

inline constexpr double kPeakLimit = 10.0;  // V, |offset| + amplitude / 2
inline constexpr int kChangeModes = 3;

// Columns of the common area grid: behind the step number stand those of the step table.
enum CommonGridColumn : int {
  kGridStepTime = kColumnStepTime + 1,
  kGridAutoHold = kColumnAutoHold + 1,
  kGridStopPhase = kColumnStopPhase + 1,
  kGridEventBranch = kColumnEventBranch + 1,
  kGridStateBranch = kColumnStateBranch + 1,
  kGridJumpTo = kColumnJumpTo + 1,
  kGridJumpCount = kColumnJumpCount + 1,
  kGridStepTerm = kColumnStepTerm + 1,
  kGridStepCode = kColumnStepCode + 1,
};

struct ValueBounds {
  std::optional<double> Minimum;  // none: no limit
  std::optional<double> Maximum;
  bool Hold(double value) const { return (!Minimum || value >= *Minimum) && (!Maximum || value <= *Maximum); }
  double Nearest(double value) const;
};

// A list column: what it offers and the stored value of each entry.
struct ChoiceList {
  std::vector<std::string> Texts;
  std::vector<std::int16_t> Values;
  int IndexOf(std::int16_t value) const;  // -1: not in the list
};

const ParamDef& CommonDefinition(const ModelDefinition& definition, int column);
inline bool SwitchedByStep(const ParamDef& definition) {
  return definition.ModeKind == 2;
}
// Event branch, state branch and jump to: shown in the numbering of column 0.
inline bool IsTargetColumn(int column) {
  return column >= kGridEventBranch && column <= kGridJumpTo;
}
// Stop phase to jump count: the step carries a switch beside the value.
inline bool HasSwitch(int column) {
  return column >= kGridStopPhase && column <= kGridJumpCount;
}

// The switch of a column that has one, else true.
bool CommonSwitch(const StepRow& row, int column);
void SetCommonSwitch(StepRow& row, int column, bool on);
double CommonValue(const StepRow& row, int column);
// The same in base units, as bounds and defaults are.
double CommonBaseValue(const ModelDefinition& definition, const StepRow& row, int column);
// `value` of an integer column must fit in 16 bits.
void SetCommonValue(StepRow& row, int column, double value);
void SetCommonBaseValue(const ModelDefinition& definition, StepRow& row, int column, double base);
// True when the value applies to the step: always in use, or switched on.
bool CommonInUse(const ModelDefinition& definition, const StepRow& row, int column);
// Copies the column's whole group of fields; the step time is converted into the destination's unit.
void CopyCommonField(const ModelDefinition& definition, const StepRow& from, StepRow& to, int column);
void ResetCommonField(StepRow& row, const ModelDefinition& definition, int column);

// Empty for columns with a text editor.
ChoiceList CommonChoices(const ModelDefinition& definition, int column);
// Base units; a placeholder stands for the number of steps.
ValueBounds CommonBounds(const ModelDefinition& definition, const SequenceData& sequence, int column);
ValueBounds BranchBounds(const ModelDefinition& definition, const SequenceData& sequence);
ChoiceList BranchChoices(const ModelDefinition& definition);

// Number of parameter columns, 0..11.
int ChannelParams(const ModelDefinition& definition);
// Name, unit, modes and default of a parameter.
const ParamDef& ChannelColumn(const ModelDefinition& definition, int param);
// Presence and bounds of a parameter for the waveform of this step and channel.
const ParamDef& ChannelDefinition(const ModelDefinition& definition, const SequenceData& sequence,
                                  int channel, int step, int param);
bool ChannelInUse(const ModelDefinition& definition, const SequenceData& sequence, int channel, int step,
                  int param);
ChoiceList ChannelChoices(const ModelDefinition& definition, int param);
// Base units.
ValueBounds ChannelBounds(const ModelDefinition& definition, const SequenceData& sequence, int channel,
                          int step, int param);
// Amplitude (unless the step is DC) and offset stay within the output's peak.
bool PeakFits(const ModelDefinition& definition, const SequenceData& sequence, int channel, int step);

// Change modes that a parameter offers, as codes in the order of its mode names; empty when the mode is
// fixed.
std::vector<std::int16_t> ChangeModesOf(const ParamDef& definition);

}  // namespace corlune
