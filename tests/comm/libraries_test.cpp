// Libraries that are really loaded: that of the virtual instruments, one of another purpose, and none.
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "comm/make_front_end.h"
#include "interface_rig.h"
#include "support/environment.h"

namespace corlune::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::string kVirtual = std::string(CORLUNE_BIN) + "/libcorlune-virtual-instrument.so";

struct Libraries : ::testing::Test {
  std::unique_ptr<GpFrontEnd> With(const LibraryChoice& each) {
    return Make({world.folder.Path(), each, each, each, each, false});
  }
  std::unique_ptr<GpFrontEnd> Make(const CommOptions& options) {
    return MakeGpFrontEnd(world.state, options, world.prompts, world.endProgram, world.clock);
  }
  CommWorld world;
};

// None, missing, no library, one that lacks the first symbol, one that is there but has nothing to offer.
TEST_F(Libraries, OneThatDoesNotServeIsAnOrdinaryStatus) {
  // A copy, because the system does not unload what the other test needs with other instruments.
  const std::string empty = world.folder.File("empty.so");
  std::filesystem::copy_file(kVirtual, empty);
  const std::string broken = world.folder.Write("broken.so", "no library");
  const Environment environment({"CORLUNE_VI_INSTRUMENTS"});
  environment.Set("nonsense");
  const struct {
    LibraryChoice choice;
    std::string says, names;
  } rows[] = {{{true, {}}, ": switched off", ""},
              {{false, world.folder.File("none.so")}, " library not found: ", "none.so: "},
              {{false, broken}, " library found but unusable: ", "broken.so: "},
              {{false, CORLUNE_COMPILER}, " library found but unusable: ", " missing"},
              {{false, empty}, "", ""}};
  for (const auto& row : rows) {
    const auto gp = With(row.choice);
    for (const Kind& kind : Kinds()) {
      SCOPED_TRACE(kind.name + " " + row.choice.file);
      world.state.CurrentInterface = kind.kind;
      std::string reply;
      std::int16_t byte = 0;
      // Without a library nothing works before and after an opening; an empty bench fails in its own words.
      const bool loads = row.choice.file == empty;
      const CommStatus status = loads && kind.kind == InterfaceKind::NiGpib ? kError : kind.noLibrary;
      EXPECT_EQ(gp->GP_Send_Str(1, "A"), kind.noLibrary);
      EXPECT_EQ(gp->GP_Init("LOG_FILE=comm.log,USBTMC_NAME=A/B", true), status);
      if (kind.wired && !loads) {
        EXPECT_THAT(gp->OwnLibraryProblem(), AllOf(HasSubstr(row.says), HasSubstr(row.names)));
        EXPECT_EQ(world.Log().at(0), gp->OwnLibraryProblem());
      }
      EXPECT_EQ(gp->GP_Receive_Str(1, reply), kind.noLibrary);
      EXPECT_EQ(gp->GP_Spoll(1, byte), kind.kind == InterfaceKind::UsbTmc ? kOk : kind.noLibrary);
      EXPECT_EQ(gp->GP_End(), kOk);
    }
    EXPECT_EQ(gp->GP_Find_Devices("?*INSTR"), 0);
    EXPECT_THAT(gp->LibraryProblem(), HasSubstr(row.choice.file == empty ? "BFFF0000" : row.says));
  }
}

// One library for four interfaces is one bench.
TEST_F(Libraries, TheVirtualInstrumentsAreReachedThroughAll) {
  const Environment environment({"CORLUNE_VI_INSTRUMENTS"});
  environment.Set("QM2220:A");
  const auto gp = With({false, kVirtual});
  const std::pair<InterfaceKind, std::int16_t> connectors[] = {{InterfaceKind::UsbTmc, std::int16_t{0}},
                                                               {InterfaceKind::NiGpib, std::int16_t{2}},
                                                               {InterfaceKind::KiGpib, std::int16_t{2}},
                                                               {InterfaceKind::Usb488, std::int16_t{1}}};
  std::string last = "0";
  for (const auto& [kind, address] : connectors) {
    SCOPED_TRACE(static_cast<int>(kind));
    world.state.CurrentInterface = kind;
    ASSERT_EQ(gp->GP_Init("USBTMC_NAME=USB0::0x3A1F::0x2220::A::INSTR", true), kOk) << gp->LibraryProblem();
    std::string reply;
    EXPECT_EQ(gp->GP_Send_Str(address, "*ESE?"), kOk);
    EXPECT_EQ(gp->GP_Receive_Str(address, reply), kOk);
    EXPECT_EQ(reply, last) << "what the one before set";
    last = std::to_string(static_cast<int>(kind) + 1);
    EXPECT_EQ(gp->GP_Send_Str(address, "*ESE " + last), kOk);
  }
}

TEST_F(Libraries, DefaultNamesAreLookedForInTheProgramsFolder) {
  world.folder.Write("libusb488ps.so", "no library");
  world.state.CurrentInterface = InterfaceKind::Usb488;
  const auto gp = With({});
  EXPECT_EQ(gp->GP_Init("", true), kError);
  EXPECT_THAT(gp->OwnLibraryProblem(), HasSubstr(world.folder.File("libusb488ps.so") + ": "));
}

TEST_F(Libraries, SimulatedTakesEveryKind) {
  CommOptions options;
  options.simulated = true;
  options.simulatedResponses =
      std::make_shared<std::string>(world.folder.Write("r.ini", "[ADRS7]\n*IDN?=QM2220\n"));
  const auto gp = Make(options);
  for (const Kind& kind : Kinds()) {
    world.state.CurrentInterface = kind.kind;
    std::string reply;
    EXPECT_EQ(gp->GP_Init("", true), kOk);
    gp->GP_Send_Str(7, "*IDN?");
    EXPECT_EQ(gp->GP_Receive_Str(7, reply), kOk);
    EXPECT_EQ(reply, "QM2220");
  }
  EXPECT_THAT(gp->Found(), IsEmpty());
}

}  // namespace
}  // namespace corlune::testing
