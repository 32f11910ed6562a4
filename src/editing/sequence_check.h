// SequenceCheck: one pass over a sequence that says everything the program can know of it without asking the
// instrument: values, codes and targets that are none, waveforms, and what the compiler refuses. Changes
// nothing, shows nothing, pumps no events.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "compile/compiler_library.h"
#include "core/app_state.h"
#include "core/catalogue.h"
#include "editing/grid_place.h"
#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune {

enum class FindingSeverity {
  Warning,  // the instrument takes the sequence, but it is hardly what was meant
  Error,    // prevents a download
};

struct SequenceFinding {
  TextId Id{};  // of the reason
  FindingSeverity Severity = FindingSeverity::Warning;
  std::optional<CellPlace> Place;  // cell of the grids; none: the sequence as a whole
  std::string Where;               // column or field by name; may be empty
  std::string Text;                // the reason
};

struct CheckedParts {
  const AppState& State;
  const ModelDefinition& Definition;
  const SequenceData& Sequence;
  const MessageCatalogue& Catalogue;
  CompilerLibrary& Compiler;
};

// By step, then in the order of the grids; what belongs to no step comes first. Reads waveform files and
// uses the compiler's work file, so not while a download is under way. Off-line, waveforms without a file
// count as held by the instrument.
std::vector<SequenceFinding> CheckSequenceData(const CheckedParts& parts);

// "Error: Step 3, Ch1 Frequency: ...", one line; steps are numbered as in the grids.
std::string FindingLine(const SequenceFinding& finding, const MessageCatalogue& catalogue, int startStep);

bool PreventsDownload(const std::vector<SequenceFinding>& findings);

}  // namespace corlune
