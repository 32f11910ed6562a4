// The one function that the sequence compiler library offers.
#include "check_sequence.h"
#include "compile_file.h"
#include "core/files.h"
#include "platform/abi/cmplseq.h"

#if defined(_WIN32)
#define CMPLSEQ_EXPORT extern "C" __declspec(dllexport)
#else
#define CMPLSEQ_EXPORT extern "C" __attribute__((visibility("default")))
#endif

CMPLSEQ_EXPORT std::int32_t CompileSeqData(const char* path, const ArbInformation* arbs,
                                           CompileErrorRecord* record) {
  using corlune::CompileResult;
  constexpr std::size_t kArbCount = 128;
  if (path == nullptr || arbs == nullptr || record == nullptr) {
    return static_cast<std::int32_t>(CompileResult::BadCall);
  }
  // No exception may cross the C interface.
  try {
    const std::string file = corlune::DecodeText(path);
    return static_cast<std::int32_t>(corlune::CompileSequenceFile(file, {arbs, kArbCount}, *record));
  } catch (...) {
    *record = {0, 0, 0, 0, static_cast<std::int32_t>(corlune::SequenceRefusal::OutOfMemory)};
    return static_cast<std::int32_t>(CompileResult::OutOfMemory);
  }
}
