#include "compile/compiler_library.h"

#include <array>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "support/temp_folder.h"

namespace corlune {
namespace {

using corlune::testing::TempFolder;
using ::testing::HasSubstr;

#ifdef _WIN32
constexpr const char* kUsualName = "CmplSeq.dll";
#else
constexpr const char* kUsualName = "libCmplSeq.so";
#endif

struct Call {
  CompilerCall call;
  CompileErrorRecord record{};
  std::int32_t result = -99;
};

Call Compile(CompilerLibrary& library, const std::string& path) {
  std::array<ArbInformation, 128> arbs{};
  arbs[0] = {1, 512};
  arbs[127] = {0, 4};
  Call call{};
  call.result = -99;
  call.call = library.CompileSeqData(path, arbs, call.record, call.result);
  return call;
}

void ExpectCalled(const Call& call, const std::string& path) {
  EXPECT_EQ(call.call, CompilerCall::Done);
  EXPECT_EQ(call.result, 4);
  EXPECT_EQ(call.record.PositionA, 1);
  EXPECT_EQ(call.record.Channel, 512);
  EXPECT_EQ(call.record.PositionB, static_cast<std::int32_t>(path.size()));
  EXPECT_EQ(call.record.PositionC, path.back());
  EXPECT_EQ(call.record.Code, 7);
}

TEST(LoadedCompiler, CallsTheLibraryThatIsNamed) {
  const TempFolder empty;
  LoadedCompiler library(empty.Path(), STUB_COMPILER);
  // The file's name is that of the file system, also in a language with a code page of its own.
  setenv("LC_ALL", "ja_JP.UTF-8", 1);
  ExpectCalled(Compile(library, "/表示/sendata.bin"), "/表示/sendata.bin");
  unsetenv("LC_ALL");
  EXPECT_EQ(library.Problem(), "");
}

TEST(LoadedCompiler, FindsItInTheProgramFolderAlsoLater) {
  const TempFolder folder;
  LoadedCompiler library(folder.Path());
  const Call before = Compile(library, "x");
  EXPECT_EQ(before.call, CompilerCall::Missing);
  EXPECT_EQ(before.result, -99);
  EXPECT_EQ(before.record.Code, 0);
  EXPECT_THAT(library.Problem(), HasSubstr(kUsualName));

  std::filesystem::copy_file(STUB_COMPILER, folder.File(kUsualName));
  ExpectCalled(Compile(library, "xy"), "xy");
  EXPECT_EQ(library.Problem(), "");
}

TEST(LoadedCompiler, SaysWhyALibraryIsNotUsed) {
  const TempFolder folder;
  const std::string rubbish = folder.Write("rubbish.so", "no library");
  const std::pair<std::string, const char*> cases[] = {{folder.File("missing.so"), "missing.so"},
                                                       {rubbish, "rubbish.so"},
                                                       {STUB_WITHOUT_FUNCTION, "CompileSeqData"}};
  for (const auto& [file, expected] : cases) {
    LoadedCompiler library(folder.Path(), file);
    EXPECT_EQ(Compile(library, "x").call, CompilerCall::Missing) << file;
    EXPECT_THAT(library.Problem(), HasSubstr(expected));
  }
}

}  // namespace
}  // namespace corlune
