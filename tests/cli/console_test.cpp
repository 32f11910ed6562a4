// The console program as a process: exit codes, what it says, what it leaves behind.
#include <cstdio>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

#include "support/temp_folder.h"

namespace corlune {
namespace {

using corlune::testing::TempFolder;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

struct Outcome {
  int exitCode = -1;
  std::string text;  // standard output and standard error
};

// A shell command in which $cli is the program. Its temporary files stand below `folder`.
Outcome RunShell(const TempFolder& folder, const std::string& command) {
  fs::create_directory(folder.File("temporary"));
  const std::string line = "export TMPDIR='" + folder.File("temporary") +
                           "' LC_ALL=C cli='" CORLUNE_BIN "/corlune-cli'; cd '" + folder.Path() +
                           "'; exec 2>&1; " + command;
  Outcome outcome;
  FILE* pipe = popen(line.c_str(), "r");
  if (pipe == nullptr) return outcome;
  char buffer[4096];
  while (const std::size_t got = fread(buffer, 1, sizeof buffer, pipe)) outcome.text.append(buffer, got);
  const int status = pclose(pipe);
  outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

std::string Example(const std::string& name) {
  return TempFolder::Read(std::string(CORLUNE_DATA "/examples/") + name);
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

// An application folder of its own, with an example in it.
class ConsoleTest : public ::testing::Test {
 protected:
  ConsoleTest() {
    folder.Write("Corlune_Std.ini", TempFolder::Read(CORLUNE_DATA "/Corlune_Std.ini"));
    folder.Write("ramp.dat", Example("ramp.dat"));
    folder.Write("tour.dat", Example("quick-tour.dat"));
  }
  TempFolder folder;
};

TEST_F(ConsoleTest, ExitCodes) {
  struct Row {
    const char* command;
    int exitCode;
    const char* text;
  };
  const Row rows[] = {
      {"$cli --folder . check ramp.dat", 0, "QM2210: steps 7"},
      {"$cli --folder . --lang ja check ramp.dat", 0, "ステップ数 7"},
      {"$cli --folder . times ramp.dat", 0, "\n26000\n"},
      {"$cli --folder . check ramp.dat > /dev/full", 1, "output could not be written"},
      {"$cli --folder . --lang ja wave none.txt -o out", 1, "ファイルが存在しないか"},
      {"$cli --folder . save ramp.dat -o notes && ls", 0, "\nnotes\n"},
      {"$cli --folder . save ramp.dat -o /dev/full", 1, "/dev/full"},
      {"$cli --folder . save ramp.dat -o ''", 2, "the file name is empty"},
      {"sed -i 's/SERIALNO0=/&S7/' notes && $cli --folder . save notes -o n && grep S7 n", 0,
       "SS_SERIALNO0=S7"},
      {"sed -i s/INTERFACE0=0/INTERFACE0=1/ n; $cli --folder . --virtual-instrument run n", 1,
       "NI-488.2: switched off"},
      {"trap '' XFSZ; ulimit -f 99; $cli --folder . --virtual-instrument read 3", 1, "recvdata.bin"},
      {"trap '' XFSZ; ulimit -f 9; $cli --folder . compile ramp.dat", 1, "sendata.bin"},
      {"mkdir odd; sed '42,334s/CM_STAR=/&x,y,/;335,$s/SC_STARTSTP=1,1/SC_STARTSTP=1,3/' Corlune_Std.ini "
       "> odd/Corlune_Std.ini; $cli --folder odd times tour.dat | head -1",
       0, "3 "},
      {"$cli --folder odd --virtual-instrument read 3", 1, "SPEC QM2210: key CM_STAR"},
      {"$cli --folder . check absent.dat", 1, "The file could not be read. absent.dat"},
      {"$cli --folder . check Corlune_Std.ini", 1, "The sequence data file error."},
      {"$cli --folder absent check ramp.dat", 1, "Initialization file doesn't exist"},
      {"$cli --folder . --virtual-instrument --visa none devices", 1, "VISA: switched off"},
      {"sed 's/MYADRS=0/&,RESPONSE_DIALOG=1/' Corlune_Std.ini > odd/Corlune_Std.ini; "
       "$cli --folder odd --simulated run ramp.dat --name 'q\"t'",
       1, "Input value Error!"},
      {"$cli", 2, "a command is needed"},
      {"$cli check", 2, "file is required"},
  };
  for (const Row& row : rows) {
    const Outcome outcome = RunShell(folder, row.command);
    EXPECT_EQ(outcome.exitCode, row.exitCode) << row.command << '\n' << outcome.text;
    EXPECT_THAT(outcome.text, HasSubstr(row.text)) << row.command;
  }
  // What a killed program left goes; a folder that holds anything else stays.
  fs::create_directory(folder.File("temporary/corlune-cli-killed"));
  folder.Write("temporary/corlune-cli-killed/sendata.bin", "");
  fs::create_directories(folder.File("temporary/corlune-cli-others/notes"));
  EXPECT_EQ(RunShell(folder, "$cli --folder . times ramp.dat > out; ls temporary").text,
            "corlune-cli-others\n");
}

TEST_F(ConsoleTest, CompilesWithoutTouchingTheFilesOfOthers) {
  // The editor may be downloading from the same folder.
  folder.Write("sendata.bin", "of another program");
  Outcome outcome = RunShell(folder, "$cli --folder . compile ramp.dat -o out.bin");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.text;
  const std::string compiled = TempFolder::Read(folder.File("out.bin"));
  EXPECT_THAT(outcome.text, HasSubstr("out.bin: " + std::to_string(compiled.size()) + " bytes"));
  EXPECT_THAT(compiled, Not(HasSubstr("[DATA]")));
  EXPECT_EQ(TempFolder::Read(folder.File("sendata.bin")), "of another program");

  outcome = RunShell(folder, "$cli --folder . compile ramp.dat");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.text;
  EXPECT_EQ(TempFolder::Read(folder.File("sendata.bin")), compiled);
  EXPECT_TRUE(fs::is_empty(folder.File("temporary")));
}

TEST_F(ConsoleTest, ARefusedSequenceGivesNoCompiledFile) {
  // Waveform 99 of step 1; an amplitude of 99 V in step 1.
  const std::string odd = Replaced(Example("ramp.dat"), "SE_SETVAL#0#0=0,3,", "SE_SETVAL#0#0=0,99,");
  const std::string loud =
      Replaced(Example("ramp.dat"), "SE_SETVAL#0#0=0,3,0,0,1,0,0,1000,0,0,0,0,0,0,0,0,0,",
               "SE_SETVAL#0#0=0,3,0,0,1,0,0,1000,0,0,0,0,0,0,0,0,99,");
  for (const std::string& text : {odd, loud}) {
    folder.Write("refused.dat", text);
    folder.Write("out.bin", "of the last time");
    const Outcome outcome = RunShell(folder, "$cli --folder . compile refused.dat -o out.bin");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.text, AllOf(HasSubstr("The error was detected in the sequence data. Ch:1 Step:1"),
                                    Not(HasSubstr("bytes"))));
    EXPECT_EQ(TempFolder::Read(folder.File("out.bin")), "of the last time");
    EXPECT_TRUE(fs::is_empty(folder.File("temporary")));
  }
}

}  // namespace
}  // namespace corlune
