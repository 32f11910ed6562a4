#include "compile_file.h"

#include <memory>

#include "check_sequence.h"
#include "compiled_sequence.h"
#include "core/files.h"

namespace corlune {

namespace {

// A refusal without a code would let the caller go on with a file that is not compiled.
CompileResult Refuse(CompileErrorRecord& record, SequenceRefusal refusal, CompileResult result) {
  record.Code = static_cast<std::int32_t>(refusal);
  return result;
}

}  // namespace

CompileResult CompileSequenceFile(const std::string& path, std::span<const ArbInformation> arbs,
                                  CompileErrorRecord& record) {
  record = {};
  const std::optional<std::string> text = ReadWholeFile(path);
  if (!text) return Refuse(record, SequenceRefusal::File, CompileResult::FileError);
  const auto sequence = std::make_unique<CompiledSequence>();
  TextProblem problem;
  if (!ParseSequenceText(*text, *sequence, &problem)) {
    record.Channel = problem.Channel;
    record.PositionB = problem.Step;
    return Refuse(record, SequenceRefusal::Text, CompileResult::Malformed);
  }
  if (CheckSequence(*sequence, arbs, record) != SequenceRefusal::None) return CompileResult::Refused;

  const std::vector<std::uint8_t> binary = EncodeCompiledSequence(*sequence);
  const std::string_view bytes(reinterpret_cast<const char*>(binary.data()), binary.size());
  if (ReplaceFile(path, bytes)) return CompileResult::Done;
  return Refuse(record, SequenceRefusal::File, CompileResult::FileError);
}

}  // namespace corlune
