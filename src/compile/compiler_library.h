// CompilerLibrary: the sequence compiler "CmplSeq", loaded when first used.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/abi/cmplseq.h"
#include "platform/shared_library.h"

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

// The library as a file: searched at the first call, and again at every call until it is found.
class LoadedCompiler final : public CompilerLibrary {
 public:
  // Looks for the library's usual names in `programFolder`, then where the system loads libraries from. With
  // a `file`, only that one is tried.
  explicit LoadedCompiler(std::string programFolder, std::string file = {});

  CompilerCall CompileSeqData(const std::string& workFile, const std::array<ArbInformation, 128>& arbs,
                              CompileErrorRecord& record, std::int32_t& result) override;
  // Names every file tried, with the reason for each.
  std::string Problem() const override { return problem_; }

 private:
  bool Load();

  std::string programFolder_;
  std::string file_;
  std::optional<SharedLibrary> library_;
  CompileSeqDataFunction compile_ = nullptr;
  std::string problem_;
};

}  // namespace corlune
