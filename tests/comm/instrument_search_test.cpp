// What a search for VISA instruments finds, and that it closes everything it opened.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "comm/usbtmc_backend.h"
#include "comm_fixture.h"
#include "fake_libraries.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

struct SearchRow {
  std::string what;
  std::vector<Scripted> script;
  int count;
  std::vector<FoundInstrument> found;
  std::vector<std::string> calls;
};

TEST(InstrumentSearch, Cases) {
  const std::string a = "USB0::0x1::0x2::S1::INSTR";
  const std::string b = "USB0::0x1::0x2::S2::0::INSTR";
  const std::string manager = "viOpenDefaultRM";
  const std::string search = "viFindRsrc X?*INSTR";
  // clang-format off
  const std::vector<SearchRow> rows{
      {"two instruments", {{"viFindRsrc", {.text = a, .value = 2}}, {"viFindNext", {.text = b}}}, 2, {{a,
       "S1"}, {b, "S2"}}, {manager, search, "viFindNext", "viClose 2", "viClose 1"}},
      {"a list that breaks off", {{"viFindRsrc", {.text = a, .value = 3}}, {"viFindNext",
       {.status = VI_ERROR_RSRC_NFOUND}}}, 1, {{a, "S1"}}, {manager, search, "viFindNext", "viClose 2",
       "viClose 1"}},
      {"no resource manager", {{"viOpenDefaultRM", {.status = VI_ERROR_SYSTEM_ERROR}}}, 0, {},
       {"viOpenDefaultRM"}},
  };
  // clang-format on
  for (const SearchRow& row : rows) {
    SCOPED_TRACE(row.what);
    CommWorld world;
    FakeLibrary library;
    for (const Scripted& line : row.script) library.Answer(line.call, line.answer);
    UsbTmcMdl backend(world.Services(), library.Visa());
    EXPECT_EQ(backend.GP_Find_Devices("X?*INSTR"), row.count);
    EXPECT_THAT(backend.Found(), ElementsAreArray(row.found));
    EXPECT_THAT(library.calls, ElementsAreArray(row.calls));
  }
}

TEST(InstrumentSearch, KeepsTwentyOne) {
  CommWorld world;
  FakeLibrary library;
  for (int i = 0; i < 30; ++i) library.Answer("viFindNext", {.text = "A::B::C::N::INSTR"});
  library.Answer("viFindRsrc", {.text = "A::B::C::N::INSTR", .value = 30});
  UsbTmcMdl backend(world.Services(), library.Visa());
  EXPECT_EQ(backend.GP_Find_Devices("?*"), 30);
  EXPECT_EQ(backend.Found().size(), 21U);
  // A failing search leaves none of them.
  library.Answer("viFindRsrc", {.status = VI_ERROR_RSRC_NFOUND});
  EXPECT_EQ(backend.GP_Find_Devices("?*"), 0);
  EXPECT_THAT(backend.Found(), IsEmpty());
}

}  // namespace
}  // namespace corlune::testing
