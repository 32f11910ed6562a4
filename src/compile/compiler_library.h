// CompilerLibrary: the sequence compiler "CmplSeq", loaded when first used.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "platform/abi/cmplseq.h"

namespace corlune {

enum class CompilerCall {
  Done,     // the library ran; see result and record
  Missing,  // library or its function not found, or the file name cannot be passed to it
};

class CompilerLibrary {
 public:
  virtual ~CompilerLibrary() = default;
  // Translates the sequence text in `workFile` into the instrument's binary form, in place.
  virtual CompilerCall CompileSeqData(const std::string& workFile,
                                      const std::array<ArbInformation, 128>& arbs, CompileErrorRecord& record,
                                      std::int32_t& result) = 0;
  // Why the library could not be used; empty when it could.
  virtual std::string Problem() const = 0;
};

}  // namespace corlune
