#include "compile_file.h"

#include <memory>

#include "check_sequence.h"
#include "compiled_sequence.h"
#include "core/files.h"

namespace corlune {

CompileResult CompileSequenceFile(const std::string& path, std::span<const ArbInformation> arbs,
                                  CompileErrorRecord& record) {
  record = {};
  const std::optional<std::string> text = ReadWholeFile(path);
  if (!text) return CompileResult::FileError;
  const auto sequence = std::make_unique<CompiledSequence>();
  if (!ParseSequenceText(*text, *sequence)) return CompileResult::Malformed;
  if (CheckSequence(*sequence, arbs, record) != SequenceRefusal::None) return CompileResult::Refused;

  const std::vector<std::uint8_t> binary = EncodeCompiledSequence(*sequence);
  const std::string_view bytes(reinterpret_cast<const char*>(binary.data()), binary.size());
  return ReplaceFile(path, bytes) ? CompileResult::Done : CompileResult::FileError;
}

}  // namespace corlune
