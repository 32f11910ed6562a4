// The way from the sequence to the compiled work file, and the waveforms that go with it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "compile/download_outcome_text.h"
#include "compile/download_rig.h"
#include "core/files.h"

namespace corlune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(CompileSequence, CompilerErrors) {
  struct Case {
    CompileErrorRecord record;  // position A, channel, B, C, code
    const char* text;
  };
  // clang-format off
  const Case cases[] = {
      {{3, 0, 4, 9, 40},
       "The error was detected in the sequence data. Ch:1 Step:4 , 3 Parameter:Function,Frequency."},
      {{3, 0, 256, 14, 42},
       "The error was detected in the sequence data. Ch:1 Step:256 , 14 Parameter:Function,Frequency,Duty."},
      {{0, 0, 1, 2, 4099},
       "The error was detected in the sequence data. Ch:1 Step:1 , 2 Parameter:Selected ARB loading failed."},
      {{0, 1, 1, 2, 4100},
       "The error was detected in the sequence data. Ch:2 Step:1 , 2 Parameter:Selected ARB is missing."},
      {{0, 0, 0, 0, 4101}, "Too many or too large Functions used"},
      {{0, 0, 0, 0, 4102}, "Too complex to check"},
      {{1, 0, 2, 3, 43}, "The error was detected in the sequence data. Ch:1 Step:2 , 3 Parameter:."},
      {{1, 0, 2, 3, 4103}, ""},
  };
  // clang-format on
  for (const Case& c : cases) {
    DownloadRig rig;
    rig.compiler.error = c.record;
    rig.compiler.code = 1;
    rig.prompts.Type("x").Answer(PromptAnswer::Ok);
    EXPECT_FALSE(rig.downloader.DownloadSequence());
    ASSERT_THAT(rig.Messages(), ElementsAre(c.text)) << c.record.Code;
    EXPECT_EQ(rig.prompts.messages[0].icon, PromptIcon::Critical);
    EXPECT_EQ(rig.downloader.Outcome().End, DownloadEnd::Refused);
    EXPECT_EQ(rig.script.Count(), 0u);
    EXPECT_FALSE(rig.activity.Busy());
  }
}

TEST(CompileSequence, ResultWithoutAnError) {
  for (const std::int32_t code : {0, 268763136, 1, -5}) {
    DownloadRig rig;
    rig.compiler.code = code;
    const bool odd = code == 1 || code == -5;
    if (odd) rig.prompts.Answer(PromptAnswer::Ok);
    EXPECT_EQ(rig.downloader.CompileSequence(rig.folder.File("out.bin")), 0) << code;
    ASSERT_EQ(rig.prompts.messages.size(), odd ? 1u : 0u) << code;
    if (!odd) continue;
    EXPECT_EQ(rig.prompts.messages[0].text, rig.Text(9400));
    EXPECT_EQ(rig.prompts.messages[0].caption, "for Debug");
    EXPECT_EQ(rig.prompts.messages[0].icon, PromptIcon::None);
  }
}

TEST(CompileSequence, WithoutTheLibraryThereIsNoDownload) {
  DownloadRig rig;
  rig.compiler.missing = true;
  rig.prompts.Type("x").Answer(PromptAnswer::Ok);
  EXPECT_FALSE(rig.downloader.DownloadSequence());
  EXPECT_THAT(rig.Messages(), ElementsAre(rig.Text(9400)));
  EXPECT_NE(rig.prompts.messages[0].caption, "for Debug");
  EXPECT_EQ(DownloadOutcomeText(rig.downloader.Outcome(), rig.catalogue), rig.compiler.Problem());
  EXPECT_EQ(rig.script.Count(), 0u);
  EXPECT_FALSE(rig.activity.Busy());
}

// Step `number` plays ARB `number`, which the instrument holds.
void Hold(DownloadRig& rig, int number, int points) {
  rig.PlayArb(0, number - 1, number);
  rig.Entry(number).InInstrument = 1;
  rig.Entry(number).PointCount = points;
}

TEST(CompileSequence, WaveformChecks) {
  struct Case {
    const char* what;
    void (*edit)(DownloadRig&);
    std::int32_t code;
    int message;
  };
  // clang-format off
  const Case cases[] = {
      {"no file", [](DownloadRig& rig) { rig.PlayArb(1, 1, 8); }, 4100, 9319},
      {"number 0", [](DownloadRig& rig) { rig.PlayArb(0, 0, 0); }, 4104, 9209},
      {"too large", [](DownloadRig& rig) { Hold(rig, 1, 262145); Hold(rig, 2, 262145); }, 4097, 9320},
      {"too many", [](DownloadRig& rig) { Hold(rig, 1, 524288); }, 4096, 9320},
      {"in the instrument", [](DownloadRig& rig) { Hold(rig, 1, 4096); }, 0, 0},
      {"out of reach", [](DownloadRig& rig) { rig.PlayArb(0, 1, 8); rig.sequence->Steps[0].StepTerm = 1; },
       0, 0},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    DownloadRig rig;
    c.edit(rig);
    if (c.message != 0) rig.prompts.Answer(PromptAnswer::Ok);
    EXPECT_EQ(rig.downloader.CompileSequence(rig.folder.File("sendata.bin")), c.code);
    EXPECT_EQ(rig.compiler.calls, c.code == 0 ? 1 : 0);
    if (c.message == 0) continue;
    ASSERT_THAT(rig.Messages(), ElementsAre(rig.Text(c.message)));
    EXPECT_EQ(rig.prompts.messages[0].icon, PromptIcon::Critical);
  }
}

TEST(Waveforms, MarksEveryNumberOfTheTable) {
  DownloadRig rig;
  rig.sequence->StepCount = 1;
  rig.Entry(9).UseFlag = 1;
  rig.PlayArb(0, 0, 1);
  rig.PlayArb(1, 255, 128);
  rig.downloader.MarkUsedArbs();
  EXPECT_EQ(rig.Entry(1).UseFlag, 1);
  EXPECT_EQ(rig.Entry(9).UseFlag, 0);
  EXPECT_EQ(rig.Entry(128).UseFlag, 1);

  rig.PlayArb(0, 100, 0);  // a slot that is not used
  rig.prompts.Answer(PromptAnswer::Ok);
  rig.downloader.MarkUsedArbs();
  EXPECT_THAT(rig.Messages(), ElementsAre(rig.Text(9209)));
  EXPECT_EQ(rig.Entry(128).UseFlag, 1);

  rig.state.Instruments[0].ChannelCount = 1;
  rig.PlayArb(0, 100, 5);
  rig.downloader.MarkUsedArbs();
  EXPECT_EQ(rig.Entry(128).UseFlag, 0);
}

TEST(Waveforms, AnotherErrorNumberDoesNotStopTheTransfer) {
  DownloadRig rig;
  rig.GiveFile(1);
  rig.Entry(1).UseFlag = 1;
  rig.script.Reply(":SYST:ERR?", {"-113,\"Undefined header\""});
  EXPECT_EQ(rig.downloader.TransferUsedArbs(), 0);
  EXPECT_EQ(rig.Entry(1).Transferred, 1);
}

TEST(Waveforms, AFileThatIsNoWaveformEndsTheDownload) {
  DownloadRig rig;
  rig.PlayArb(0, 0, 4);
  rig.Entry(4).FilePath = rig.folder.File("gone.txt");
  rig.prompts.Type("x").Answer(PromptAnswer::Ok).Answer(PromptAnswer::Ok);
  EXPECT_FALSE(rig.downloader.DownloadSequence());
  EXPECT_THAT(rig.Messages(), ElementsAre(rig.Text(9300), rig.Text(9306)));
  EXPECT_EQ(rig.downloader.Outcome().End, DownloadEnd::Refused);
  EXPECT_THAT(rig.script.Blocks(), IsEmpty());
  EXPECT_EQ(rig.script.Log().back(), "timeout 12");
  const std::string detail = DownloadOutcomeText(rig.downloader.Outcome(), rig.catalogue);
  EXPECT_EQ(detail.rfind(rig.Entry(4).FilePath + ": ", 0), 0u) << detail;
  EXPECT_FALSE(rig.activity.Busy());
}

}  // namespace
}  // namespace corlune
