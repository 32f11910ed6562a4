#include "sequence/sequence_file.h"

#include <memory>

#include "core/ascii_case.h"
#include "core/files.h"
#include "sequence/profile_lines.h"
#include "sequence/waveform_path.h"

namespace corlune {

namespace {

// A line break or NUL inside a text would come back as another line: such a file must not be written.
bool HasLineBreak(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

std::string UnwritableText(const SequenceData& sequence, const AppState& state) {
  for (const ArbFileEntry& entry : sequence.Channels.ArbFiles) {
    if (HasLineBreak(entry.FilePath)) return "a waveform path holds a line break";
  }
  for (const auto& channel : sequence.Channels.UserUnits) {
    for (const UserUnitDef& unit : channel) {
      if (HasLineBreak(unit.UnitText)) return "a unit text holds a line break";
    }
  }
  for (const InstrumentEntry& instrument : state.Instruments) {
    if (HasLineBreak(instrument.SerialNo)) return "a serial number holds a line break";
  }
  return {};
}

}  // namespace

bool SequenceFileHolds(const std::string& path) {
  if (HasLineBreak(path)) return false;
  const std::string file = DecodeText(EncodeText("[COMMON]\r\nCP_ARBFILE#0=" + path + "\r\n"));
  ProfileSections sections(file);
  std::string_view name;
  std::string_view body;
  ProfileLine line;
  return sections.Next(name, body) && ProfileLines(body).Next(line) && line.RawValue == path;
}

bool HasSequenceFileEnding(std::string_view path) {
  return EndsWithIgnoringCase(path, ".dat") || EndsWithIgnoringCase(path, ".daf");
}

DefinitionFor OneDefinition(const ModelDefinition& definition) {
  return [&definition](const std::string& model) -> std::optional<const ModelDefinition*> {
    if (definition.IndexOfModel(model) < 0) return std::nullopt;
    return &definition;
  };
}

bool WriteSeqFile(const std::string& path, SequenceFileForm form, const AppState& state,
                  const ModelDefinition& definition, SequenceData& sequence, std::string* error) {
  const bool user = form == SequenceFileForm::User;
  if (std::string problem = UnwritableText(sequence, state); !problem.empty()) {
    if (error) *error = std::move(problem);
    return false;
  }
  std::unique_ptr<SequenceData> moved;
  if (HasRelativeWaveformPath(sequence)) {
    moved = std::make_unique<SequenceData>(sequence);
    if (!KeepWaveformPaths(*moved, WaveformFolder(state), FolderOf(path))) moved.reset();
  }
  const std::string text = FormatSequenceFile(moved ? *moved : sequence, state, definition, form);
  if (!ReplaceFile(path, EncodeText(text), error)) return false;
  if (user && moved) sequence.Channels.ArbFiles = moved->Channels.ArbFiles;
  return true;
}

ReadResult ReadSeqFile(const std::string& path, SequenceFileForm form, const DefinitionFor& definitions,
                       AppState& state, SequenceData& sequence) {
  const auto bytes = ReadWholeFile(path);
  if (!bytes) return {SequenceFileProblem::Malformed, {}, {}, 0};
  SystemSettings settings = SettingsOf(state);
  ReadResult result = ParseSequenceFile(DecodeText(*bytes), form, definitions, sequence, settings);
  if (result.Problem == SequenceFileProblem::None) ApplySettings(state, settings);
  return result;
}

}  // namespace corlune
