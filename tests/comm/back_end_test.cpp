// What one back-end alone does, and the prompt that ends the program.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interface_rig.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct Rig : InterfaceRig {
  explicit Rig(InterfaceKind wanted) : InterfaceRig(Kinds().at(static_cast<std::size_t>(wanted))) {}
};

// Statuses that the bench does not give. C functions carry no object.
int heldStatus = 0;

TEST(NiGpib, BoardsByName) {
  const std::pair<std::string, CommStatus> rows[] = {
      {"gpib0", kOk}, {"GPIB0", kOk}, {"gpib1", kNoBoard}, {"other", kError}};
  for (const auto& [name, status] : rows) {
    Rig rig(InterfaceKind::NiGpib);
    EXPECT_EQ(rig.Init(",BOARD_NAME=" + name), status) << name;
    EXPECT_EQ(rig.faces.ni488.AutoPoll(), Failed(status));
    EXPECT_EQ(rig.gp->GP_Send_Str(5, "*ESE 60"), Failed(status) ? kNoBoard : kOk);
  }
  Rig other(InterfaceKind::NiGpib);
  ASSERT_EQ(other.Init(",MYADRS=9"), kOk);
  EXPECT_EQ(other.gp->GP_Send_Str(5, "*ESE 60"), kError) << "the board itself is at 0";
}

TEST(NiGpib, StatusWordsOfTheThread) {
  Rig rig(InterfaceKind::NiGpib);
  // Registered by someone else on this thread; refused; not there at all.
  int status[3] = {};
  long count = 0;
  rig.faces.ni488.RegisterGlobals(&status[0], &status[1], &status[2], &count);
  EXPECT_EQ(rig.Init(), kOk);
  EXPECT_EQ(rig.Ask(6), "0");
  rig.Make();
  rig.tables.ni488.RegisterGlobals = [](int*, int*, int*, long*) { return 3; };
  EXPECT_EQ(rig.Init(), kError);
  EXPECT_EQ(rig.TakeLog(), "NI-488.2 library refuses to report its status to this thread|GP_INIT Error");
  rig.tables.ni488.RegisterGlobals = nullptr;
  EXPECT_EQ(rig.Init(), kOk);
  EXPECT_EQ(rig.Ask(6), "0");
  rig.tables.ni488.Status = [] { return heldStatus; };
  const std::pair<int, CommStatus> rows[] = {
      {NI488_TIMO, kTimeOut}, {NI488_TIMO | NI488_ERR, kError}, {NI488_CMPL, kOk}};
  for (const auto& [word, meaning] : rows) {
    heldStatus = word;
    EXPECT_EQ(rig.gp->GP_Send_Str(5, "*CLS"), meaning) << word;
  }
}

TEST(Ieee32m, CommandsOfEveryShape) {
  Rig rig(InterfaceKind::KiGpib);
  rig.tables.ieee32m.BoardPresent = [] { return 0; };
  EXPECT_EQ(rig.Init(), kNoBoard);
  EXPECT_EQ(rig.TakeLog(), "GP_INIT Board does not exit");
  rig.tables.ieee32m.BoardPresent = &_ieee_board_present;
  ASSERT_EQ(rig.Init(",MYADRS=21"), kOk);
  // A quote is a byte value; without a terminator END goes with the last character.
  for (const std::int16_t code : {kTerminatorLf, kTerminatorNone}) {
    rig.gp->GP_MTerm(code);
    for (const std::string text : {"A 'b'", "'", "*", ""}) EXPECT_EQ(rig.gp->GP_Send_Str(5, text), kOk);
  }
  EXPECT_EQ(rig.TakeWire(), "A<A 'b'\n^|A<'\n^|A<*\n^|A<\n^|A<A 'b'^|A<'^|A<*^|");
}

TEST(UsbTmc, OpensTheDeviceOfTheOption) {
  Rig rig(InterfaceKind::UsbTmc);
  ASSERT_EQ(rig.Init(",USBTMC_DEVNO=1"), kOk);
  EXPECT_EQ(rig.Ask(kSameDevice), "0");
  EXPECT_EQ(rig.TakeWire(), "B<*ESE?\n^|B>0\n^|");
  // An instrument without remote state is used all the same.
  rig.tables.visa.GpibControlREN = [](ViSession, ViUInt16) { return ViStatus{VI_ERROR_NSUP_OPER}; };
  EXPECT_EQ(rig.Init(), kOk);
  EXPECT_THAT(rig.TakeLog(), HasSubstr("ALL < GP_REN Error|ALL < GP_MTerm\"LF\"|GP_INIT"));
  // One that refuses its time-out is closed again.
  rig.tables.visa.SetAttribute = [](ViObject, ViAttr, ViAttrState) { return ViStatus{VI_ERROR_NSUP_ATTR}; };
  EXPECT_EQ(rig.gp->GP_Send_Str(1, "*CLS"), kError);
  EXPECT_EQ(rig.faces.visa.OpenObjects(), 2U) << "the resource manager and device 0";
  EXPECT_EQ(rig.gp->GP_Send_Str(21, "*CLS"), kError) << "index beyond the list";
}

TEST(UsbTmc, AnEndlessReplyIsGivenUp) {
  Rig rig(InterfaceKind::UsbTmc);
  ASSERT_EQ(rig.Init(), kOk);
  rig.tables.visa.Read = [](ViSession, ViPBuf, ViUInt32 size, ViPUInt32 count) {
    *count = size;
    return ViStatus{VI_SUCCESS_MAX_CNT};
  };
  EXPECT_EQ(rig.Receive(0), "status 8");
}

TEST(UsbTmc, AnUnpluggedInstrumentIsNamed) {
  Rig rig(InterfaceKind::UsbTmc);
  rig.Use();
  rig.Faults("timeout=1;gone=1");
  rig.gp->GP_Send_Str(0, "*CLS");
  EXPECT_FALSE(rig.gp->ConnectionLost(0)) << "a time-out";
  rig.gp->GP_DCL();
  EXPECT_TRUE(rig.gp->ConnectionLost(0));
  EXPECT_EQ(rig.gp->LibraryProblem(), rig.kind.firstName + " was unplugged: status BFFF00A6");
  EXPECT_EQ(rig.Init(), kError);
  EXPECT_THAT(rig.TakeLog(), HasSubstr(rig.kind.firstName + " does not open: status BFFF0011|GP_INIT Error"));
}

TEST(UsbTmc, SearchesInstruments) {
  Rig rig(InterfaceKind::UsbTmc);
  auto& search = dynamic_cast<UsbTmcMdl&>(*rig.gp);
  EXPECT_EQ(search.GP_Find_Devices("USB0::0x3A1F::0x2210::?*INSTR"), 1);
  EXPECT_THAT(search.Found(), ElementsAre(FoundInstrument{"USB0::0x3A1F::0x2210::B::INSTR", "B"}));
  for (int i = 0; i < 28; ++i) rig.bench.Add({"QM2220", "S" + std::to_string(i), 2});
  EXPECT_EQ(search.GP_Find_Devices("?*"), 30);
  EXPECT_EQ(search.Found().size(), 21U);
  rig.tables.visa.FindNext = [](ViFindList, ViChar*) { return ViStatus{VI_ERROR_RSRC_NFOUND}; };
  EXPECT_EQ(search.GP_Find_Devices("?*"), 1) << "a list that breaks off";
  EXPECT_EQ(search.GP_Find_Devices("nobody"), 0);
  EXPECT_TRUE(search.Found().empty());
  EXPECT_EQ(rig.faces.visa.OpenObjects(), 0U);
}

// The program's own VISA: ids from the system's list, the driver's parts and limits, refused rights.
TEST(BuiltinVisa, FindsAndOpensTheKernelsDevices) {
  InterfaceRig rig(Kinds().at(5));
  auto& search = dynamic_cast<UsbTmcMdl&>(*rig.gp);
  EXPECT_EQ(search.GP_Find_Devices("usb0::0x3a1f::0x2210::?*INSTR"), 1);
  EXPECT_THAT(search.Found(), ElementsAre(FoundInstrument{"USB0::0x3A1F::0x2210::B::INSTR", "B"}));
  EXPECT_EQ(search.GP_Find_Devices("USB0::?*::INSTR"), 2);
  EXPECT_EQ(search.GP_Find_Devices("USB1?*"), 0);
  rig.devices.refused = EACCES;
  EXPECT_EQ(rig.Init(), kError);
  EXPECT_THAT(rig.gp->LibraryProblem(), HasSubstr("60-corlune.rules"));
  rig.devices.refused = 0;
  rig.devices.longestWrite = 7;
  rig.Use();
  EXPECT_EQ(rig.Ask(0), "60");
  EXPECT_EQ(rig.TakeWire(), "A<*ESE?\n^|A>60\n^|");
  rig.devices.longestWrite = 3;
  EXPECT_EQ(rig.Ask(0), "60") << "in three parts";
}

TEST(Log, IsEmptiedOnlyWhenAsked) {
  Rig rig(InterfaceKind::Usb488);
  rig.folder.Write("Comm Log.txt", "old\r\n");
  ASSERT_EQ(rig.gp->GP_Init("LOG_FILE= Comm Log.txt ,X=1", false), kOk);
  EXPECT_THAT(rig.Log("Comm Log.txt"), ElementsAre("old", "GP_INIT"));
  ASSERT_EQ(rig.gp->GP_Init("LOG_FILE=" + rig.folder.File("Comm Log.txt"), true), kOk);
  EXPECT_THAT(rig.Log("Comm Log.txt"), ElementsAre("GP_INIT"));
}

// Two bits: the prompt names the error, the log the time-out. The value of the option does not matter.
TEST(FatalPrompt, ShowsErrorBeforeTimeOut) {
  Rig rig(InterfaceKind::KiGpib);
  rig.tables.ieee32m.Transmit = [](const char*, std::int32_t, std::int32_t* status) { return *status = 1; };
  rig.tables.ieee32m.SetTimeout = [](std::int32_t) { return std::int32_t{-1}; };
  for (int i = 0; i < 3; ++i) rig.prompts.Answer(PromptAnswer::No);
  EXPECT_EQ(rig.Init(",VIEW_ERR_DIALOG=0"), kTimeOut | kError);

  ASSERT_EQ(rig.prompts.messages.size(), 3U);
  EXPECT_THAT(rig.prompts.messages[0].text, HasSubstr("GP_REN\nTime Out\n"));
  const MessageRequest& last = rig.prompts.messages[2];
  EXPECT_EQ(last.text, "GP_Init\nError\nアプリケーションを終了しますか?");
  EXPECT_EQ(last.caption, "NI_GPIB");
  EXPECT_EQ(last.buttons, PromptButtons::YesNo);
  EXPECT_EQ(last.escape, PromptAnswer::No);
  EXPECT_EQ(last.icon, PromptIcon::Question);
  EXPECT_FALSE(rig.endProgram.ended);
  EXPECT_THAT(rig.TakeLog(), HasSubstr("|GP_INIT Time Out"));
}

TEST(FatalPrompt, YesEndsTheProgram) {
  Rig rig(InterfaceKind::Usb488);
  ASSERT_EQ(rig.Init(",VIEW_ERR_DIALOG"), kOk);
  rig.prompts.Answer(PromptAnswer::Yes);
  EXPECT_EQ(rig.gp->GP_Send_Str(9, "A"), kNoBoard);
  EXPECT_EQ(rig.prompts.messages.at(0).text,
            "Device Open Error\nBoard is Northing\nアプリケーションを終了しますか?");
  EXPECT_TRUE(rig.endProgram.ended);
}

}  // namespace
}  // namespace corlune::testing
