#include "compile/download.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "compile/download_rig.h"
#include "core/files.h"

namespace corlune {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

// clang-format off
const std::vector<std::string> kWholeDownload{
    "0 < :DEV:PREP", "0 < :SOUR1:SEQ:STAT?", "0 > 1", "0 < :STAT:OPER:CH1:COND?", "0 > 0",
    "timeout 14", "0 < *CLS", "0 block :TRACe:DATA 3,\"Arb3\",#48200 (8200 bytes)",
    "0 < :SYST:ERR?", "0 > 0,\"No error\"", "timeout 12",
    "0 block :TRAC:SEQ 2,\"Ramp 1\",#19 (9 bytes)", "0 < :SYST:ERR?", "0 > 0,\"No error\"",
    "0 < :TRAC:SEQ:REC 2", "0 < :SYST:ERR?", "0 > 0,\"No error\"",
    "0 < *CLS", "0 spoll 0", "0 < :TRIG:COMP", "0 spoll 128", "0 < :STAT?", "0 > 2"};
// clang-format on

TEST(Download, WholeExchangeInOrder) {
  DownloadRig rig;
  rig.PlayArb(0, 1, 3);
  rig.GiveFile(3);
  rig.prompts.Type("Ramp 1").WhileOpen([&] { EXPECT_FALSE(rig.downloader.DownloadSequence()); });
  rig.pump.OnEveryCall([&] { EXPECT_FALSE(rig.downloader.DownloadSequence()); });
  ASSERT_TRUE(rig.downloader.DownloadSequence());
  rig.pump.OnEveryCall({});
  EXPECT_THAT(rig.script.Log(), ElementsAreArray(kWholeDownload));
  EXPECT_THAT(rig.events,
              ElementsAre("refresh", "input: " + rig.Text(9208), "progress 0: Preparing the instrument.",
                          "progress 1: Transmitting the arbitrary wave data.....ARB 3",
                          "progress 10: Transmitting the sequence data.",
                          "progress 5: Transmitting the sequence data.", "refresh", "total 2000"));
  // 200 preparation, 2 x 100 queries, 1000 waveform, 10000 block, 5000 record, 100 *CLS, 100 poll
  EXPECT_EQ(rig.clock.Now(), 1000u + 16600u);
  EXPECT_EQ(rig.progress.advances, 16);
  EXPECT_EQ(rig.downloader.Outcome().End, DownloadEnd::Done);
  EXPECT_EQ(rig.sequence->SequenceName, "Ramp 1");
  ASSERT_EQ(rig.script.Blocks().size(), 2u);
  const auto& block = rig.script.Blocks()[1];
  EXPECT_EQ(std::string(block.data.begin(), block.data.end()), "123456789");
  EXPECT_EQ(block.elementFormat, 0);
  EXPECT_EQ(rig.compiler.text.substr(0, 8), "[FILE]\r\n");
  EXPECT_EQ(rig.compiler.table[2].PointPairs, 0);
  EXPECT_EQ(rig.compiler.table[2].KiloPoints, 4);
  EXPECT_EQ(rig.compiler.table[0].PointPairs, 1);  // an empty entry
  EXPECT_TRUE(FileExists(rig.folder.File("UseStep.txt")));

  // An unchanged waveform is sent once; the name given before is offered again.
  rig.script.ClearLog();
  rig.script.StatusBytes({0, 0x80});
  rig.prompts.Type("Ramp 1");
  ASSERT_TRUE(rig.downloader.DownloadSequence());
  EXPECT_EQ(rig.prompts.inputRequests[1].defaultText, "Ramp 1");
  EXPECT_EQ(rig.script.CountOf("0 block :TRACe:DATA"), 0);
}

TEST(Download, NameQuestion) {
  struct Case {
    std::vector<std::optional<std::string>> typed;
    bool done;
    std::size_t messages;
    const char* name;
  };
  const Case cases[] = {
      {{"Seq 1"}, true, 0, "Seq 1"},
      {{std::string(20, 'a')}, true, 0, "aaaaaaaaaaaaaaaaaaaa"},
      {{std::string(21, 'a'), "b"}, true, 0, "b"},
      {{"a\"b", "a\tb", "a\x7F", "\xC3\xA9", "ok"}, true, 4, "ok"},
      {{std::string(30, '"'), std::nullopt}, false, 1, "old"},
      {{""}, false, 0, "old"},
  };
  for (const Case& c : cases) {
    DownloadRig rig;
    rig.sequence->SequenceName = "old";
    for (const auto& text : c.typed) rig.prompts.Type(text);
    for (std::size_t i = 0; i < c.messages; ++i) rig.prompts.Answer(PromptAnswer::Ok);
    EXPECT_EQ(rig.downloader.DownloadSequence(), c.done);
    EXPECT_EQ(rig.sequence->SequenceName, c.name);
    EXPECT_THAT(rig.Messages(), ElementsAreArray(std::vector<std::string>(c.messages, rig.Text(9108))));
    for (const InputRequest& request : rig.prompts.inputRequests) {
      EXPECT_EQ(request.prompt, rig.Text(9208));
      EXPECT_EQ(request.defaultText, "old");
    }
    EXPECT_FALSE(rig.activity.Busy());
    if (c.done) continue;
    EXPECT_EQ(rig.downloader.Outcome().End, DownloadEnd::NoName);
    EXPECT_EQ(rig.script.Count(), 0u);
  }
}

TEST(Download, InterfacesWithoutBlocksAskFirst) {
  for (const InterfaceKind kind : {InterfaceKind::NiGpib, InterfaceKind::KiGpib, InterfaceKind::Usb488}) {
    DownloadRig cancelled;
    cancelled.state.Instruments[0].InterfaceKind = kind;
    cancelled.prompts.Answer(PromptAnswer::Cancel);
    EXPECT_FALSE(cancelled.downloader.DownloadSequence());
    EXPECT_EQ(cancelled.downloader.Outcome().End, DownloadEnd::Cancelled);
    EXPECT_EQ(cancelled.script.Count(), 0u);
    EXPECT_THAT(cancelled.events, ElementsAre("message question: " + cancelled.Text(9600)));

    DownloadRig agreed;
    agreed.state.Instruments[0].InterfaceKind = kind;
    agreed.prompts.Answer(PromptAnswer::Ok).Type("x");
    EXPECT_TRUE(agreed.downloader.DownloadSequence());
    EXPECT_EQ(agreed.script.Blocks().size(), 1u);
  }
}

}  // namespace
}  // namespace corlune
