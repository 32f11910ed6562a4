#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "comm/simulated_backend.h"
#include "comm_fixture.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;

constexpr const char* kResponses =
    "[ADRS3]\r\n"
    "VOLT?=12.5\r\n"
    "CURR?=two words\r\n"
    "LONG?=0123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456"
    "78\r\n"
    "FITS?=0123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456"
    "7\r\n"
    "spoll=70000\r\n"
    "[ADRS2]\r\n"
    "spoll=64 rest\r\n"
    "[ADRS4]\r\n"
    "spoll=none\r\n";

struct Simulated : ::testing::Test {
  Simulated() {
    world.folder.Write("Replies.ini", kResponses);
    backend.GP_Init("INI_FILE=Replies.ini,LOG_FILE=comm.log", true);
    world.ClearLog();
  }
  std::string Query(std::int16_t address, const std::string& text) {
    EXPECT_EQ(backend.GP_Send_Str(address, text), CommStatus::Success);
    std::string reply = "unchanged";
    EXPECT_EQ(backend.GP_Receive_Str(kSameDevice, reply), CommStatus::Success);
    return reply;
  }

  CommWorld world;
  DebugMdl backend{world.Services(), ""};
};

TEST_F(Simulated, RepliesToTheLastQueryOfAMessage) {
  EXPECT_EQ(Query(3, "OUTP ON; VOLT?"), "12.5");
  EXPECT_EQ(Query(3, "VOLT?;CURR?"), "two words");
  EXPECT_EQ(Query(3, " VOLT? ; OUTP OFF"), "12.5");
  EXPECT_EQ(Query(3, "volt?"), "12.5");
  EXPECT_EQ(Query(3, "OUTP ON"), "");
  EXPECT_EQ(Query(1, "VOLT?"), "");  // no such section
}

TEST_F(Simulated, AReplyIsReadOnce) {
  EXPECT_EQ(Query(3, "VOLT?"), "12.5");
  std::string reply = "unchanged";
  backend.GP_Receive_Str(3, reply);
  EXPECT_EQ(reply, "");
  // Another message, and a serial poll, drop an unread reply.
  backend.GP_Send_Str(3, "VOLT?");
  EXPECT_EQ(Query(3, "OUTP ON"), "");
  backend.GP_Send_Str(3, "VOLT?");
  std::int16_t byte = 0;
  backend.GP_Spoll(2, byte);
  backend.GP_Receive_Str(3, reply);
  EXPECT_EQ(reply, "");
}

TEST_F(Simulated, NinetyNineCharactersAreTooMany) {
  EXPECT_EQ(Query(3, "LONG?"), "Buffer Over");
  EXPECT_EQ(Query(3, "FITS?").size(), 98U);
}

TEST_F(Simulated, SerialPoll) {
  std::int16_t byte = -1;
  EXPECT_EQ(backend.GP_Spoll(2, byte), CommStatus::Success);
  EXPECT_EQ(byte, 64);
  EXPECT_EQ(backend.GP_Spoll(4, byte), CommStatus::Success);
  EXPECT_EQ(byte, 0);
  byte = -1;
  world.prompts.Answer(PromptAnswer::Ok);
  EXPECT_EQ(backend.GP_Spoll(3, byte), CommStatus::Success);
  EXPECT_EQ(byte, 0);
  EXPECT_EQ(world.prompts.messages.at(0).text, "シリアルポールの値が不正です。");
  EXPECT_THAT(world.Log(), ElementsAre("2 < GP_Spoll\"Debug Spoll\"", "4 < GP_Spoll\"Debug Spoll\"",
                                       "3 < GP_Spoll\"Debug Spoll\""));
}

TEST_F(Simulated, AsksWhenThereIsNoReply) {
  backend.GP_Init("RESPONSE_DIALOG,INI_FILE=Replies.ini", true);
  EXPECT_EQ(Query(3, "VOLT?"), "12.5");
  world.prompts.Type("typed").Type("instead").Type(std::nullopt).Type("17");
  EXPECT_EQ(Query(3, "A?;B?"), "typed");
  EXPECT_EQ(Query(3, "LONG?"), "instead");
  EXPECT_EQ(Query(3, "A?"), "");
  std::int16_t byte = 0;
  backend.GP_Spoll(3, byte);
  EXPECT_EQ(byte, 17);
  EXPECT_EQ(world.prompts.inputRequests.at(0).prompt, "A?,B?の応答メッセージを入力してください");
  EXPECT_EQ(world.prompts.inputRequests.at(3).prompt, "シリアルポールの結果(数値)を入力してください");
}

TEST_F(Simulated, LogsAsTheOthersDo) {
  backend.GP_Init("LOG_FILE=comm.log", true);
  EXPECT_THAT(world.Log(), ElementsAre("ALL < GP_REN", "ALL < GP_MTerm\"LF\"", "ALL < GP_EOI",
                                       "ALL < GP_Time_Out\"300ms\"", "GP_INIT"));
  world.ClearLog();
  const std::vector<std::uint8_t> data(16, 7);
  backend.GP_Send_Str(2, "*CLS");
  backend.GP_Send_AsciiBinary_Data("#H", data, kSameDevice, 0, false);
  backend.GP_IFC();
  backend.GP_DCL();
  EXPECT_EQ(backend.GP_Time_Out(99), CommStatus::Success);
  backend.GP_MTerm(2);
  EXPECT_EQ(backend.GP_MTerm(9), CommStatus::Success);
  backend.GP_End();
  EXPECT_THAT(world.Log(), ElementsAre("2 <  GP_Send_Str \"*CLS\"",
                                       "2 <  GP_Send_AsciiBinary_Data \"7,7,7,7,7,7,7,7,7,7,7,7,7,7,7\"",
                                       "ALL < GP_IFC", "ALL < GP_DCL", "ALL < GP_Time_Out\"\"",
                                       "ALL < GP_MTerm\"CR\"", "ALL < GP_MTerm\"CR\"", "ALL < GP_END"));
}

}  // namespace
}  // namespace corlune::testing
