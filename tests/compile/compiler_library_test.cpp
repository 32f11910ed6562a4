#include "compile/compiler_library.h"

#include <array>
#include <cstdlib>
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

TEST(LoadedCompiler, FindsItInTheProgramFolderAlsoLater) {
  const TempFolder folder;
  LoadedCompiler library(folder.Path());
  const Call before = Compile(library, "x");
  EXPECT_EQ(before.call, CompilerCall::Missing);
  EXPECT_EQ(before.result, -99);
  EXPECT_EQ(before.record.Code, 0);
  EXPECT_THAT(library.Problem(), HasSubstr(kUsualName));

  LoadedCompiler other(folder.Path(), "libm.so.6");
  EXPECT_EQ(Compile(other, "x").call, CompilerCall::Missing);
  EXPECT_THAT(other.Problem(), HasSubstr("no function"));

  std::filesystem::copy_file(STUB_COMPILER, folder.File(kUsualName));
  // The path goes over in the file system's encoding, also where the code page is another one.
  setenv("LC_ALL", "ja_JP.UTF-8", 1);
  const std::string path = "/表示/y";
  const Call call = Compile(library, path);
  unsetenv("LC_ALL");
  EXPECT_EQ(call.call, CompilerCall::Done);
  EXPECT_EQ(call.result, 4);
  EXPECT_EQ(std::tie(call.record.PositionA, call.record.Channel, call.record.PositionB, call.record.PositionC,
                     call.record.Code),
            std::make_tuple(1, 512, static_cast<std::int32_t>(path.size()), 'y', 7));
  EXPECT_EQ(library.Problem(), "");
}

}  // namespace
}  // namespace corlune
