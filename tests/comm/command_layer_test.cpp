#include "comm/command_layer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "support/instrument_rig.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Layer : InstrumentRig, ::testing::Test {
  Layer() {
    clock.Set(0xFFFFFF00U);  // every wait below crosses the wrap
    definition.Commands.LibraryInit = "LOG_FILE=a.log";
    definition.Commands.Busy = {"*STB?", "16", 2000};
    ModelInterfaceSpec interfaceSpec;
    interfaceSpec.UsbTmcId = "USB0::0x1::0x2::";
    definition.Interfaces = {interfaceSpec};
  }
  void Use(const std::vector<InterfaceKind>& kinds) {
    state.InstrumentCount = static_cast<std::int16_t>(kinds.size());
    for (std::size_t i = 0; i < kinds.size(); ++i) {
      state.Instruments[i].InterfaceKind = kinds[i];
      state.Instruments[i].Address = static_cast<std::int32_t>(10 + i);
      state.Instruments[i].SerialNo = "S" + std::to_string(i);
    }
  }
};

TEST_F(Layer, OpensInstrument0sKindFirstThenEachFurtherOne) {
  constexpr InterfaceKind ni = InterfaceKind::NiGpib;
  constexpr InterfaceKind tmc = InterfaceKind::UsbTmc;
  Use({ni, tmc, ni, tmc, tmc});
  state.Instruments[3].SerialNo = "USB1::7::8::x::INSTR";
  state.Instruments[4].SerialNo = "";
  EXPECT_TRUE(commands.OpenInstrumentInterface());
  EXPECT_THAT(script.Log(),
              ElementsAre("[0] init LOG_FILE=a.log", "[0] timeout 12",
                          "init LOG_FILE=a.log,USBTMC_DEVNO=0,USBTMC_NAME=USB0::0x1::0x2::S1::INSTR/"
                          "USB1::7::8::x::INSTR/USB0::0x1::0x2::::INSTR (log kept)",
                          "timeout 12"));
  EXPECT_EQ(state.CurrentInterface, InterfaceKind::NiGpib);

  std::vector<std::string> selected;
  for (int i = 0; i < 5; ++i) {
    const std::int32_t address = commands.SelectInstrument(i);
    selected.push_back(std::to_string(static_cast<int>(state.CurrentInterface)) + ":" +
                       std::to_string(address));
  }
  EXPECT_THAT(selected, ElementsAre("0:10", "3:0", "0:12", "3:1", "3:2"));

  // The set-up changes before the connection is closed: what was opened is closed.
  script.ClearLog();
  Use({InterfaceKind::Usb488});
  EXPECT_EQ(commands.CloseInstrumentInterface(), CommStatus::Success);
  EXPECT_THAT(script.Log(), ElementsAre("[0] end", "end"));
}

TEST_F(Layer, AFailedOpeningClosesTheRestAndNamesTheInstrument) {
  Use({InterfaceKind::UsbTmc, InterfaceKind::UsbTmc, InterfaceKind::KiGpib});
  script.FailOn("[1] init", CommStatus::NoBoard);
  int failed = -1;
  EXPECT_FALSE(commands.OpenInstrumentInterface(&failed));
  EXPECT_EQ(failed, 2);
  EXPECT_EQ(script.CountOf("end"), 1);
  EXPECT_EQ(script.CountOf("[1] end"), 0);
  script.ClearLog();
  commands.CloseInstrumentInterface();
  EXPECT_THAT(script.Log(), IsEmpty()) << "nothing is open any more";
  EXPECT_EQ(state.CurrentInterface, InterfaceKind::UsbTmc);
}

TEST_F(Layer, SendWaitsOnTheClock) {
  const std::uint32_t start = clock.Now();
  EXPECT_EQ(commands.SendCommand(65535, "*RST", 400), CommStatus::Success);
  EXPECT_EQ(clock.Now() - start, 400U);
  EXPECT_THAT(script.Log(), ElementsAre("-1 < *RST"));
  script.FailOn("0 < BAD", CommStatus::NoBoard);
  EXPECT_EQ(commands.SendCommand(0, "BAD", 400), CommStatus::NoBoard);
  EXPECT_EQ(clock.Now() - start, 400U);
}

TEST_F(Layer, PollsUntilNotBusy) {
  // An empty reply and one that is no number are not an answer.
  script.Reply("*STB?", {"48", "", "ready", "+32"});
  const std::uint32_t start = clock.Now();
  EXPECT_EQ(commands.SendCommand(2, ":COMP", -1), CommStatus::Success);
  EXPECT_EQ(clock.Now() - start, 1500U);
  EXPECT_EQ(script.CountOf("2 < *STB?"), 4);
}

TEST_F(Layer, BusyForTooLong) {
  script.Reply("*STB?", {"16"});
  const std::uint32_t start = clock.Now();
  EXPECT_EQ(commands.SendCommand(2, ":COMP", -1), CommStatus::TimeOut);
  EXPECT_EQ(clock.Now() - start, 2000U);
  EXPECT_EQ(commands.WaitWhileBusy(2, "16", 700), CommStatus::TimeOut);
  EXPECT_EQ(clock.Now() - start, 3000U);
  definition.Commands.Busy = {};  // without a query there is no poll
  script.ClearLog();
  EXPECT_EQ(commands.SendCommand(2, ":COMP", -1), CommStatus::Success);
  EXPECT_THAT(script.Log(), ElementsAre("2 < :COMP"));
}

TEST_F(Layer, AFailureEndsThePoll) {
  script.Reply("*STB?", {"16"});
  script.FailAt(2, CommStatus::NoBoard);
  EXPECT_EQ(commands.WaitWhileBusy(2, "16", 2000), CommStatus::NoBoard);
  script.FailAt(script.Count() + 1, CommStatus::Error);
  EXPECT_EQ(commands.WaitWhileBusy(2, "16", 2000), CommStatus::Error);
  // Behind a command every failure of the poll is a time-out.
  script.FailAt(script.Count() + 1, CommStatus::Error);
  EXPECT_EQ(commands.SendCommand(2, ":COMP", -1), CommStatus::TimeOut);
}

// A handler that addresses another instrument during a wait must not redirect what follows.
TEST_F(Layer, AWaitKeepsTheInterface) {
  Use({InterfaceKind::UsbTmc, InterfaceKind::NiGpib});
  script.Reply("*STB?", {"16", "0"});
  pump.OnEveryCall([&] { commands.SendCommand(commands.SelectInstrument(1), "HOLD", 0); });
  EXPECT_EQ(commands.SendCommand(commands.SelectInstrument(0), ":COMP", -1), CommStatus::Success);
  EXPECT_THAT(script.Log(), ElementsAre("0 < :COMP", "[0] 11 < HOLD", "0 < *STB?", "0 > 16", "[0] 11 < HOLD",
                                        "[0] 11 < HOLD", "0 < *STB?", "0 > 0"));
  commands.DelayMs(10);
  EXPECT_EQ(state.CurrentInterface, InterfaceKind::UsbTmc);
}

TEST_F(Layer, AnUnknownInterfaceIsAnError) {
  state.CurrentInterface = static_cast<InterfaceKind>(5);
  EXPECT_EQ(commands.SendCommand(1, "*RST", 0), CommStatus::Error);
  state.CurrentInterface = static_cast<InterfaceKind>(-1);
  EXPECT_EQ(gp.GP_IFC(), CommStatus::Error);
  EXPECT_THAT(script.Log(), IsEmpty());
}

}  // namespace
}  // namespace corlune::testing
