// CompileSequenceFile: the work of the library function CompileSeqData.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/abi/cmplseq.h"

namespace corlune {

enum class CompileResult : std::int32_t {
  Done = 0,
  Refused = 1,    // the record says why
  Malformed = 2,  // the file holds no sequence text
  FileError = 3,  // the file cannot be read or replaced
  BadCall = 4,    // a null pointer; record untouched
  OutOfMemory = 5,
};

// Replaces the sequence text in the file at `path` (UTF-8) by its compiled form. Any other result than Done
// leaves the file as it was and, but for BadCall, sets the record's code.
CompileResult CompileSequenceFile(const std::string& path, std::span<const ArbInformation> arbs,
                                  CompileErrorRecord& record);

}  // namespace corlune
