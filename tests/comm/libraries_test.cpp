// Libraries that are really loaded: small ones built beside the tests.
#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "comm/make_front_end.h"
#include "comm_fixture.h"

namespace corlune::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

CommOptions NoLibraries() {
  CommOptions options;
  options.visa.none = options.gpib.none = options.usb488.none = options.ieee32m.none = true;
  return options;
}

struct Libraries : ::testing::Test {
  std::unique_ptr<GpFrontEnd> Make(const CommOptions& options) {
    return MakeGpFrontEnd(world.state, options, world.prompts, world.endProgram, world.clock);
  }
  std::unique_ptr<GpFrontEnd> WithVisa(const std::string& file) {
    CommOptions options = NoLibraries();
    options.visa = {false, file};
    world.state.CurrentInterface = InterfaceKind::UsbTmc;
    return Make(options);
  }
  CommWorld world;
};

TEST_F(Libraries, AMissingLibraryIsAnOrdinaryStatus) {
  const auto gp = Make(NoLibraries());
  const std::vector<std::pair<InterfaceKind, CommStatus>> rows{
      {InterfaceKind::NiGpib, CommStatus::NoBoard},
      {InterfaceKind::KiGpib, CommStatus::NoBoard},
      {InterfaceKind::Usb488, CommStatus::Error},
      {InterfaceKind::UsbTmc, CommStatus::Error},
      {InterfaceKind::Simulated, CommStatus::Success}};
  for (const auto& [kind, status] : rows) {
    SCOPED_TRACE(static_cast<int>(kind));
    world.state.CurrentInterface = kind;
    std::string reply;
    std::int16_t byte = 0;
    EXPECT_EQ(gp->GP_Send_Str(0, "A"), status);  // before any GP_Init
    EXPECT_EQ(gp->GP_Init("USBTMC_NAME=A", true), status);
    EXPECT_EQ(gp->GP_Receive_Str(0, reply), status);
    EXPECT_EQ(gp->GP_End(), CommStatus::Success);
    EXPECT_EQ(gp->GP_Spoll(1, byte), kind == InterfaceKind::UsbTmc ? CommStatus::Success : status);
  }
  EXPECT_EQ(gp->GP_Find_Devices("?*"), 0);
}

TEST_F(Libraries, TheProblemIsTold) {
  const std::string broken = world.folder.Write("broken.so", "no library");
  const std::vector<std::array<std::string, 3>> rows{
      {world.folder.File("none.so"), "VISA library not found: ", "none.so: "},
      {broken, "VISA library found but unusable: ", "broken.so: "},
      {CORLUNE_STUB_VISA_PARTIAL, "VISA library found but unusable: ", "symbol viClear missing"},
      {CORLUNE_STUB_VISA, "VISA resource manager does not open", "BFFF0000"}};
  for (const auto& [file, words, names] : rows) {
    SCOPED_TRACE(file);
    const auto gp = WithVisa(file);
    EXPECT_EQ(gp->GP_Find_Devices("?*INSTR"), 0);
    EXPECT_THAT(gp->LibraryProblem(), AllOf(HasSubstr(words), HasSubstr(names)));
    EXPECT_EQ(gp->GP_Init("LOG_FILE=comm.log,USBTMC_NAME=A", true), CommStatus::Error);
    EXPECT_THAT(world.Log().at(0), HasSubstr(words));
    EXPECT_EQ(world.Log().at(1), "GP_INIT Error");
  }
}

TEST_F(Libraries, DefaultNamesAreLookedForInTheProgramsFolder) {
  CommOptions options;
  options.programFolder = world.folder.Path();
  world.folder.Write("libusb488ps.so", "no library");
  world.state.CurrentInterface = InterfaceKind::Usb488;
  const auto gp = Make(options);
  EXPECT_EQ(gp->GP_Init("", true), CommStatus::Error);
  EXPECT_THAT(gp->LibraryProblem(), HasSubstr(world.folder.File("libusb488ps.so") + ": "));
}

TEST_F(Libraries, GpibWithoutThreadRegistrationIsUsable) {
  CommOptions options = NoLibraries();
  options.gpib = {false, CORLUNE_STUB_GPIB};
  world.state.CurrentInterface = InterfaceKind::NiGpib;
  const auto gp = Make(options);
  EXPECT_EQ(gp->GP_Init("", true), CommStatus::Success) << gp->LibraryProblem();
  std::string reply;
  EXPECT_EQ(gp->GP_Receive_Str(5, reply), CommStatus::Success);
  EXPECT_EQ(reply, "stub");
}

TEST_F(Libraries, SimulatedTakesEveryKind) {
  CommOptions options = NoLibraries();
  options.simulated = true;
  options.simulatedResponses = world.folder.Write("r.ini", "[ADRS7]\n*IDN?=QM2220\n");
  const auto gp = Make(options);
  for (const InterfaceKind kind : {InterfaceKind::NiGpib, InterfaceKind::UsbTmc}) {
    world.state.CurrentInterface = kind;
    std::string reply;
    EXPECT_EQ(gp->GP_Init("", true), CommStatus::Success);
    gp->GP_Send_Str(7, "*IDN?");
    EXPECT_EQ(gp->GP_Receive_Str(7, reply), CommStatus::Success);
    EXPECT_EQ(reply, "QM2220");
  }
  EXPECT_THAT(gp->Found(), IsEmpty());
}

}  // namespace
}  // namespace corlune::testing
