#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "comm/simulated_backend.h"
#include "comm_fixture.h"

namespace corlune::testing {
namespace {

using ::testing::ElementsAre;

const std::string kResponses =
    "[ADRS3]\r\n"
    "VOLT?=12.5\r\n"
    "CURR?=two words\r\n"
    "spoll=70000\r\n"
    "[ADRS2]\r\n"
    "spoll=64 rest\r\n"
    "[ADRS4]\r\n"
    "spoll=none\r\n";

struct Simulated : ::testing::Test {
  Simulated() {
    const std::string fits(98, '7');
    world.folder.Write("Replies.ini",
                       "[ADRS5]\r\nFITS?=" + fits + "\r\nLONG?=7" + fits + "\r\n" + kResponses);
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
  SimulatedMdl backend{world.Services(), std::make_shared<std::string>()};
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
  EXPECT_EQ(Query(5, "LONG?"), "Buffer Over");
  EXPECT_EQ(Query(5, "FITS?").size(), 98U);
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
  EXPECT_EQ(Query(5, "LONG?"), "instead");
  EXPECT_EQ(Query(3, "A?"), "");
  std::int16_t byte = 0;
  backend.GP_Spoll(3, byte);
  EXPECT_EQ(byte, 17);
  EXPECT_EQ(world.prompts.inputRequests.at(0).prompt, "A?,B?の応答メッセージを入力してください");
  EXPECT_EQ(world.prompts.inputRequests.at(3).prompt, "シリアルポールの結果(数値)を入力してください");
}

}  // namespace
}  // namespace corlune::testing
