#include "platform/shared_library.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace corlune {
namespace {

using ::testing::StartsWith;
using testing::TempFolder;

const std::string kModules = CORLUNE_TEST_MODULES;

// The table of pointers as the program's rooms keep it.
struct Functions {
  int (*first)() = nullptr;
  int (*second)() = nullptr;
  int (*extra)() = nullptr;

  std::vector<SymbolRow> Rows() {
    return {{"corlune_test_first", reinterpret_cast<void**>(&first)},
            {"corlune_test_second", reinterpret_cast<void**>(&second)},
            {"corlune_test_extra", reinterpret_cast<void**>(&extra), true}};
  }
};

TEST(SharedLibrary, LoadsEverySymbolOrNone) {
  std::string error;
  std::string missing;
  const auto whole = SharedLibrary::Open(kModules + "/corlune_test_whole.so", &error);
  ASSERT_TRUE(whole) << error;
  Functions functions;
  functions.extra = functions.first;
  ASSERT_TRUE(LoadSymbols(*whole, functions.Rows(), &missing)) << missing;
  EXPECT_EQ(functions.first(), 1);
  EXPECT_EQ(functions.second(), 2);
  EXPECT_EQ(functions.extra, nullptr);

  const auto partial = SharedLibrary::Open(kModules + "/corlune_test_partial.so", nullptr);
  ASSERT_TRUE(partial);
  EXPECT_FALSE(LoadSymbols(*partial, functions.Rows(), &missing));
  EXPECT_EQ(missing, "corlune_test_second");
  EXPECT_EQ(functions.first, nullptr);
  EXPECT_EQ(functions.second, nullptr);
}

TEST(OpenFirst, LooksInTheProgramFolderBeforeTheSystem) {
  const TempFolder folder;
  std::filesystem::copy_file(kModules + "/corlune_test_partial.so", folder.File("libc.so.6"));
  std::vector<std::string> attempts;
  // The system has a library of that name, too; the one beside the program wins.
  const auto own = OpenFirst(std::vector<std::string>{"libc.so.6"}, folder.Path(), &attempts);
  ASSERT_TRUE(own);
  EXPECT_EQ(own->Path(), folder.File("libc.so.6"));
  EXPECT_TRUE(attempts.empty());

  // What is there but unusable has a line of its own.
  const std::string unusable = folder.Write("libcorlune-none.so", "no library");
  const auto fromSystem =
      OpenFirst(std::vector<std::string>{"libcorlune-none.so", "libm.so.6"}, folder.Path(), &attempts);
  ASSERT_TRUE(fromSystem);
  EXPECT_EQ(fromSystem->Path(), "libm.so.6");
  EXPECT_THAT(attempts,
              ::testing::ElementsAre(StartsWith(unusable + ": "), StartsWith("libcorlune-none.so: ")));
  EXPECT_FALSE(SharedLibrary::Open("", nullptr)) << "not the program itself";
}

}  // namespace
}  // namespace corlune
