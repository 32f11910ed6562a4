// Sequence data files: a whole sequence with the instrument set-up it was made for, as profile text.
//
// Two forms. User files (".dat", ".daf") are the person's own; the work file ("Corlune_<model>.ini")
// carries the last sequence from run to run and also holds step count, start step and branch channel. They
// differ only in the step section, "[DATA]" or "[FRMEDIT]".
//
// Formatting and parsing work on text in memory (UTF-8, CR LF); a load is all or nothing.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/app_state.h"
#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"
#include "sequence/system_settings.h"

namespace corlune {

enum class SequenceFileForm { Work = 0, User = 1 };

// A waveform path comes back from a sequence file as it was written.
bool SequenceFileHolds(const std::string& path);

// ".dat" or ".daf" in any letter case: the endings of user files.
bool HasSequenceFileEnding(std::string_view path);

// The definition of the named model, with the whole model list and interface table; nullopt when the model is
// not in the list, null when it is but its definition cannot be loaded, which the callee has told. The result
// must live until the load is done.
using DefinitionFor = std::function<std::optional<const ModelDefinition*>(const std::string& model)>;

// `definition` for every model of its list.
DefinitionFor OneDefinition(const ModelDefinition& definition);

enum class SequenceFileProblem {
  None,
  Malformed,     // MalformedSequenceFile: not readable, a section missing, a value that is none, a bad index
  UnknownModel,  // UnknownModel
  NoDefinition,  // the model is known, its definition cannot be loaded; already told
};

struct ReadResult {
  SequenceFileProblem Problem = SequenceFileProblem::None;
  std::string Model;   // the model that the file names, as far as it was read
  std::string Detail;  // the line that was refused, or the section that is missing; empty: not readable
  int Line = 0;        // 1-based; 0: no line of the file is to blame
};

// The form of a file, told by its step section; nullopt when it has none.
std::optional<SequenceFileForm> DetectForm(std::string_view text);

// The text of a file. `definition` says how many mode sets and parameters are written and which branch
// destinations are at their default.
std::string FormatSequenceFile(const SequenceData& sequence, const AppState& state,
                               const ModelDefinition& definition, SequenceFileForm form);

// Replaces `sequence` and `settings` by what the text holds; on any problem both stay as they were.
// Kept from before: start step and branch channel (user form), the user units of parameter slot 10, a serial
// number that instrument 0 has, what the text does not mention of the set-up, and what is known about the
// instrument's waveform memory. Start values and step run times are computed.
ReadResult ParseSequenceFile(std::string_view text, SequenceFileForm form, const DefinitionFor& definitions,
                             SequenceData& sequence, SystemSettings& settings);

// Writes the file, replacing an old one as a whole. `path` is taken as it stands. Relative waveform paths
// stay as they are when the file lies in the folder they count from; otherwise they are written as absolute
// paths, in the user form also in `sequence`. On failure false, and *error (may be null) says why. Shows no
// message.
[[nodiscard]] bool WriteSeqFile(const std::string& path, SequenceFileForm form, const AppState& state,
                                const ModelDefinition& definition, SequenceData& sequence,
                                std::string* error = nullptr);

// Loads the file into `sequence` and the set-up fields of `state`; on a problem both stay as they were. Shows
// no message. Does not touch Modified or CurrentFilePath.
[[nodiscard]] ReadResult ReadSeqFile(const std::string& path, SequenceFileForm form,
                                     const DefinitionFor& definitions, AppState& state,
                                     SequenceData& sequence);

}  // namespace corlune
