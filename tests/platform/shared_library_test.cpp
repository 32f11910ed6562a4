#include "platform/shared_library.h"

#include <cmath>
#include <dlfcn.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace corlune {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using testing::TempFolder;

// What becomes of a library that is there shows at those who load one.
TEST(OpenFirst, LooksInTheProgramFolderBeforeTheSystem) {
  const TempFolder folder;
  Dl_info loaded{};
  ASSERT_NE(dladdr(reinterpret_cast<void*>(&cbrtf), &loaded), 0);
  std::filesystem::copy_file(loaded.dli_fname, folder.File("libc.so.6"));
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
              ::testing::ElementsAre(AllOf(StartsWith(unusable + ": "), Not(HasSubstr(": " + unusable))),
                                     StartsWith("libcorlune-none.so: ")));

  // All symbols or none.
  void* found = nullptr;
  void* none = nullptr;
  std::string missing;
  EXPECT_FALSE(
      LoadSymbols(*fromSystem, std::vector<SymbolRow>{{"cbrtf", &found}, {"cbrtx", &none}}, &missing));
  EXPECT_EQ(std::tie(found, missing), std::make_tuple(nullptr, "cbrtx"));
  EXPECT_FALSE(SharedLibrary::Open("", nullptr)) << "not the program itself";
}

}  // namespace
}  // namespace corlune
