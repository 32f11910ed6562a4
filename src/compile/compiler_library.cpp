#include "compile/compiler_library.h"

#include <utility>
#include <vector>

#include "platform/code_page.h"

namespace corlune {

namespace {

std::vector<std::string> UsualNames() {
#ifdef _WIN32
  return {"CmplSeq.dll"};
#else
  return {"libCmplSeq.so"};
#endif
}

std::string JoinLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    if (!text.empty()) text += '\n';
    text += line;
  }
  return text;
}

}  // namespace

LoadedCompiler::LoadedCompiler(std::string programFolder, std::string file)
    : programFolder_(std::move(programFolder)), file_(std::move(file)) {}

bool LoadedCompiler::Load() {
  if (compile_ != nullptr) return true;
  const std::vector<std::string> names = file_.empty() ? UsualNames() : std::vector<std::string>{file_};
  std::vector<std::string> attempts;
  std::optional<SharedLibrary> library = OpenFirst(names, programFolder_, &attempts);
  if (!library) {
    problem_ = JoinLines(attempts);
    return false;
  }
  constexpr const char* kFunction = "CompileSeqData";
  void* const address = library->Symbol(kFunction);
  if (address == nullptr) {
    problem_ = library->Path() + ": no function " + kFunction;
    return false;
  }
  compile_ = reinterpret_cast<CompileSeqDataFunction>(address);
  library_ = std::move(library);
  problem_.clear();
  return true;
}

CompilerCall LoadedCompiler::CompileSeqData(const std::string& workFile,
                                            const std::array<ArbInformation, 128>& arbs,
                                            CompileErrorRecord& record, std::int32_t& result) {
  if (!Load()) return CompilerCall::Missing;
#ifdef _WIN32
  // Narrow file names are read in the code page, so a folder outside of it is out of the library's reach.
  const std::optional<std::string> narrow = Utf8ToCodePage(workFile, SystemCodePage());
  if (!narrow) {
    problem_ = workFile + ": not in the code page that " + library_->Path() + " takes";
    return CompilerCall::Missing;
  }
  const std::string& name = *narrow;
#else
  const std::string& name = workFile;  // file names are UTF-8, whatever the code page of the texts in them
#endif
  problem_.clear();
  result = compile_(name.c_str(), arbs.data(), &record);
  return CompilerCall::Done;
}

}  // namespace corlune
