// Instruments of two kinds beside each other: USBTMC, and a simulated one.
#include "support/program_rig.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

int Count(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(SeveralKinds, AreOpenedAddressedAndClosedEachByItsOwnLibrary) {
  ProgramRig rig("QM2220:QM000001,QM2220:QM000002", {.communicationLog = true});
  ASSERT_TRUE(rig.session->StartUpWithoutFile());
  ASSERT_EQ(rig.session->Connect("QM000001"), ConnectResult::Connected);
  AppState& state = rig.session->State();
  state.InstrumentCount = 3;
  state.Instruments[1] = state.Instruments[2] = state.Instruments[0];
  state.Instruments[1].InterfaceKind = InterfaceKind::Simulated;
  state.Instruments[1].Address = 5;
  state.Instruments[2].SerialNo = "USB0::0x3A1F::0x2220::QM000002::INSTR";  // a resource name stays as it is
  rig.Forget();
  ASSERT_TRUE(rig.session->Reconnect());
  EXPECT_THAT(rig.recorder.connections, ElementsAre("1 close", "1 open", "2 open"));
  EXPECT_EQ(Count(rig.Log(), "GP_INIT"), 2) << "the second kind keeps the log";
  EXPECT_EQ(state.CurrentInterface, InterfaceKind::UsbTmc);

  CommandLayer& commands = rig.session->Commands();
  std::vector<std::pair<std::int32_t, InterfaceKind>> selected;
  for (int i = 0; i < 3; ++i) {
    const std::int32_t address = commands.SelectInstrument(i);
    selected.emplace_back(address, state.CurrentInterface);
  }
  EXPECT_THAT(selected,
              ElementsAre(std::pair(0, InterfaceKind::UsbTmc), std::pair(5, InterfaceKind::Simulated),
                          std::pair(1, InterfaceKind::UsbTmc)));

  // A handler that addresses another instrument during a wait does not redirect what follows. An empty answer
  // and one that is no number do not mean "not busy".
  rig.pump.OnEveryCall([&] { commands.SendCommand(commands.SelectInstrument(1), "HOLD", 0); });
  rig.Faults("text=1:1@BUSY?;text=2:@BUSY?;text=3:ready@BUSY?", 1);
  rig.Forget();
  const std::uint32_t before = rig.clock.Now();
  EXPECT_EQ(commands.SendCommand(commands.SelectInstrument(2), ":OUTP1 ON", -1), CommStatus::Success);
  EXPECT_EQ(rig.clock.Now() - before, 1500U);
  const std::string busy = "2 < :SYST:BUSY?";
  rig.ExpectSent({"2 < :OUTP1 ON", busy, busy, busy, busy});
  EXPECT_THAT(rig.Log(), HasSubstr("5 <  GP_Send_Str \"HOLD\""));
  commands.DelayMs(10);
  EXPECT_EQ(state.CurrentInterface, InterfaceKind::UsbTmc);
  rig.pump.OnEveryCall({});

  rig.session->Definition().Commands.Busy = {};  // without a query there is nothing to wait for
  EXPECT_EQ(commands.SendCommand(commands.SelectInstrument(2), ":OUTP1 OFF", -1), CommStatus::Success);
  rig.ExpectSent({"2 < :OUTP1 OFF"});
  state.CurrentInterface = static_cast<InterfaceKind>(5);
  EXPECT_EQ(commands.SendCommand(1, "*RST", 0), CommStatus::Error);

  // The set-up changes before the connection is closed: what was opened is closed.
  state.InstrumentCount = 1;
  state.Instruments[0].InterfaceKind = InterfaceKind::Usb488;
  rig.session->Disconnect();
  EXPECT_THAT(rig.recorder.connections, ElementsAre("1 close", "2 close"));
  EXPECT_EQ(Count(rig.Log(), "GP_END"), 2);
}

}  // namespace
}  // namespace corlune::testing
