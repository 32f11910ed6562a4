#include "comm/init_options.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "comm/comm_log.h"
#include "comm_fixture.h"

namespace corlune::testing {
namespace {

TEST(InitOptions, Lookup) {
  struct Row {
    std::string text;
    std::string key;
    bool present;
    std::string value;
    std::string asWritten;
    int number;
  };
  const std::vector<Row> rows{
      {"board_name=gpib1", "BOARD_NAME", true, "GPIB1", "gpib1", 0},
      {"A=1,LOG_FILE = C:\\Log.txt ,B", "LOG_FILE", true, "C:\\LOG.TXT", "C:\\Log.txt", 0},
      {"LOG_FILE=", "LOG_FILE", true, "", "", 0},
      {"VIEW_ERR_DIALOG=0,X", "VIEW_ERR_DIALOG", true, "0", "0", 0},
      {"", "LOG_FILE", false, "", "", 0},
      {"MYADRS= 7x", "MYADRS", true, "7X", "7x", 7},
      {"MYADRS=99999", "MYADRS", true, "99999", "99999", 32767},
      // Found inside a longer key; the first place counts.
      {"OLD_LOG_FILE=a,LOG_FILE=b", "LOG_FILE", true, "A", "a", 0},
      // A second "=" belongs to the value.
      {"LOG_FILE=a=b", "LOG_FILE", true, "A=B", "a=b", 0},
      // Only ASCII letters change; the name keeps its bytes.
      {"log_file=ログ.txt", "LOG_FILE", true, "ログ.TXT", "ログ.txt", 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    const InitOptions options(row.text);
    EXPECT_EQ(options.Has(row.key), row.present);
    EXPECT_EQ(options.Value(row.key), row.value);
    EXPECT_EQ(options.ValueAsWritten(row.key), row.asWritten);
    EXPECT_EQ(options.Number(row.key), row.number);
  }
}

TEST(CommLog, StatusOrderDiffersFromThePrompt) {
  struct Row {
    int status;
    std::string prompt;
    std::string suffix;
  };
  const std::vector<Row> rows{
      {1, "Time Out", " Time Out"},       {4, "Board is Northing", " Board does not exit"},
      {8, "Buffer Over", " Buffer over"}, {3, "Error", " Time Out"},
      {5, "Time Out", " Time Out"},       {12, "Board is Northing", " Board does not exit"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.status);
    CommWorld world;
    const auto status = static_cast<CommStatus>(row.status);
    world.prompts.Answer(PromptAnswer::No);
    EXPECT_FALSE(CheckStatus("OP", status, true, world.prompts, world.endProgram));
    EXPECT_EQ(world.prompts.messages.at(0).text, "OP\n" + row.prompt + "\nアプリケーションを終了しますか?");
    WriteCommLog(world.folder.File("comm.log"), "line", status);
    EXPECT_EQ(TempFolder::Read(world.folder.File("comm.log")), "line" + row.suffix + "\r\n");
  }
}

}  // namespace
}  // namespace corlune::testing
