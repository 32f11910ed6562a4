// What a download asks, checks and understands. What becomes of an exchange that fails is in the scenarios.
#include "compile/download.h"

#include "compile/download_outcome_text.h"
#include "core/files.h"
#include "support/program_rig.h"

namespace corlune::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

struct DownloadRig : ProgramRig {
  DownloadRig() {
    Connect();
    UseSteps({1.5, 0.5});
  }
  Downloader& Sender() { return session->Download(); }
  // Step `slot` of a channel plays ARB `number`.
  void PlayArb(int channel, int slot, int number) {
    session->Sequence().Cell(channel, slot, kSlotWaveform).Value = kWaveUser;
    session->Sequence().Cell(channel, slot, kSlotArbNumber).Value = number;
  }
  ArbFileEntry& Entry(int number) {
    return session->Sequence().Channels.ArbFiles[static_cast<std::size_t>(number - 1)];
  }
  // A waveform that the instrument holds, and step `number` plays it.
  void Hold(int number, int points) {
    PlayArb(0, number - 1, number);
    Entry(number).InInstrument = 1;
    Entry(number).PointCount = points;
  }
  std::string Text(TextId id) const { return session->Catalogue().GetResString(id); }
  // The download ends like this, before anything is sent.
  void ExpectRefused(EventList said) {
    EXPECT_FALSE(Download());
    EXPECT_EQ(Sender().Outcome().End, DownloadEnd::Refused);
    said.insert(said.begin(), lastName);
    ExpectPrompts(said);
    ExpectSent({});
    ExpectAtRest(OperationMode::Edit, false);
  }

  std::string lastName = "input: Seq0";
};

TEST(Compiling, ErrorsOfTheCompiler) {
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
  DownloadRig rig;
  for (const Case& c : cases) {
    rig.compiler->answer = {c.record, 1};
    rig.ExpectRefused({std::string("critical: ") + c.text});
    rig.lastName = "input: E2E";
  }
  // A result without an error is told, and does no harm.
  for (const std::int32_t code : {0, 268763136, 1, -5}) {
    rig.compiler->answer = {CompileErrorRecord{}, code};
    EXPECT_EQ(rig.Sender().CompileSequence(rig.folder.File("out.bin")), 0) << code;
    const bool odd = code == 1 || code == -5;
    rig.ExpectPrompts(odd ? EventList{"none: " + rig.Text(TextId::CompilerDataIllegal)} : EventList{});
    EXPECT_EQ(rig.prompts.messages.back().caption == "for Debug", odd);
    rig.prompts.messages.resize(1);
  }
  rig.compiler->problem = "libCmplSeq.so: not found";
  rig.ExpectRefused({"critical: " + rig.Text(TextId::CompilerDataIllegal)});
  EXPECT_EQ(DownloadOutcomeText(rig.Sender().Outcome(), rig.session->Catalogue()), rig.compiler->problem);
}

TEST(Compiling, WaveformChecks) {
  struct Case {
    const char* what;
    std::function<void(DownloadRig&)> edit;
    std::int32_t code;
    TextId message;
  };
  using enum TextId;
  // clang-format off
  const Case cases[] = {
      {"no file", [](DownloadRig& rig) { rig.PlayArb(1, 1, 8); }, 4100, SelectedArbMissing},
      {"number 0", [](DownloadRig& rig) { rig.PlayArb(0, 0, 0); }, 4104, ArbNumberZero},
      {"too large", [](DownloadRig& rig) { rig.Hold(1, 262145); rig.Hold(2, 262145); }, 4097, FunctionsTooLarge},
      {"too many", [](DownloadRig& rig) { rig.Hold(1, 524288); }, 4096, FunctionsTooLarge},
      {"in the instrument", [](DownloadRig& rig) { rig.Hold(1, 4096); }, 0, {}},
      {"out of reach", [](DownloadRig& rig) {
       rig.PlayArb(0, 1, 8); rig.session->Sequence().Steps[0].StepTerm = 1; }, 0, {}},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    DownloadRig rig;
    c.edit(rig);
    EXPECT_EQ(rig.Sender().CompileSequence(rig.folder.File("out.bin")), c.code);
    EXPECT_EQ(FileExists(rig.folder.File("out.bin")), c.code == 0);
    rig.ExpectPrompts(c.code == 0 ? EventList{} : EventList{"critical: " + rig.Text(c.message)});
  }
}

TEST(Waveforms, MarksEveryNumberOfTheTable) {
  DownloadRig rig;
  const auto marked = [&] {
    rig.Sender().MarkUsedArbs();
    std::vector<int> numbers;
    for (int number = 1; number <= kArbNumbers; ++number) {
      if (rig.Entry(number).UseFlag != 0) numbers.push_back(number);
    }
    return numbers;
  };
  rig.Entry(9).UseFlag = 1;
  rig.PlayArb(0, 0, 1);
  rig.PlayArb(1, 255, 128);
  EXPECT_EQ(marked(), (std::vector<int>{1, 128}));
  rig.PlayArb(0, 100, 0);  // a slot that is not used
  EXPECT_EQ(marked(), (std::vector<int>{1, 128}));
  rig.ExpectPrompts({"critical: " + rig.Text(TextId::ArbNumberZero)});
  rig.session->State().Instruments[0].ChannelCount = 1;
  rig.PlayArb(0, 100, 5);
  EXPECT_EQ(marked(), (std::vector<int>{1, 5}));
}

std::string Values(int count, const std::string& value) {
  std::string text;
  for (int i = 0; i < count; ++i) text += value + (i % 2 == 0 ? "," : "\r\n");
  return text;
}

TEST(Waveforms, AFileThatIsNoWaveformEndsTheDownload) {
  std::string cut(1049000, '\0');  // of 100 point pairs
  cut[342] = 1;
  cut[344] = 100;
  struct Case {
    const char* name;
    std::string content;
    std::vector<TextId> said;  // before the last message
  };
  const Case cases[] = {
      {"gone.txt", "", {TextId::ArbCannotAccess}}, {"large.txt", Values(4096, "32768"), {TextId::ArbInvalid}},
      {"count.txt", Values(4097, "1"), {}},        {"short.wdb", cut, {TextId::ArbTooShort}},
      {"other.csv", Values(4096, "1"), {}},
  };
  DownloadRig rig;
  rig.PlayArb(0, 0, 4);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    if (!c.content.empty()) rig.folder.Write(c.name, c.content);
    rig.Entry(4).FilePath = rig.folder.File(c.name);
    EXPECT_FALSE(rig.Download());
    EventList said{rig.lastName};
    for (const TextId id : c.said) said.push_back("exclamation: " + rig.Text(id));
    said.push_back("exclamation: " + rig.Text(TextId::WrongFileName));
    rig.ExpectPrompts(said);
    rig.lastName = "input: E2E";
    EXPECT_EQ(rig.Sender().Outcome().End, DownloadEnd::Refused);
    EXPECT_THAT(DownloadOutcomeText(rig.Sender().Outcome(), rig.session->Catalogue()),
                StartsWith(rig.Entry(4).FilePath + ": "));
    EXPECT_EQ(rig.CountSent("1 < :TRAC"), 0);
  }
}

TEST(Asking, ForAName) {
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
    rig.session->Sequence().SequenceName = "old";
    for (const auto& text : c.typed) rig.prompts.Type(text);
    EXPECT_EQ(rig.Sender().DownloadSequence(), c.done);
    EXPECT_EQ(rig.session->Sequence().SequenceName, c.name);
    EXPECT_EQ(std::erase(rig.prompts.said, "exclamation: " + rig.Text(TextId::InputError)) +
                  std::erase(rig.prompts.said, "critical: " + rig.Text(TextId::InputError)),
              c.messages);
    rig.ExpectPrompts(EventList(c.typed.size(), "input: old"));
    EXPECT_EQ(rig.prompts.inputRequests[0].prompt, rig.Text(TextId::SequenceNamePrompt));
    if (c.done) continue;
    EXPECT_EQ(rig.Sender().Outcome().End, DownloadEnd::NoName);
    rig.ExpectSent({});
  }
}

// The sequence's error query; what comes behind the 128th character does not count.
TEST(Understanding, ErrorNumbers) {
  struct Case {
    std::string reply;
    std::int32_t number;
  };
  DownloadRig rig;
  for (const Case& c :
       {Case{"-222,\"Data out of range\"", -222}, Case{"  +7", 7}, Case{"99999999999", 2147483647},
        Case{std::string(127, ' ') + "12", 1}, Case{"0,\"No error\"", 0}, Case{"", 0}}) {
    rig.Faults("text:" + c.reply + "@:SYST:ERR?");
    EXPECT_EQ(rig.Sender().DownloadSequence(), c.number == 0) << c.reply;
    EXPECT_EQ(rig.Sender().Outcome().ErrorNumber, c.number) << c.reply;
  }
  // Of a waveform, any number but "full" is no reason to end.
  rig.Entry(1).FilePath = std::string(CORLUNE_DATA) + "/examples/chirp.txt";
  rig.Entry(1).UseFlag = 1;
  rig.Faults("text:-113,\"Undefined header\"@:SYST:ERR?");
  EXPECT_EQ(rig.Sender().TransferUsedArbs(), 0);
  EXPECT_EQ(rig.Entry(1).Transferred, 1);
  rig.prompts.said.clear();
}

TEST(Understanding, TheStateBeforeADownload) {
  const std::string stateQuery = "1 < :SOUR1:SEQ:STAT?";
  const std::string on = "1 < :SOUR1:SEQ:STAT 1";
  const std::string conditionQuery = "1 < :STAT:OPER:CH1:COND?";
  const std::string stop = "1 < :TRIG1:SEL:EXEC IST";
  struct Case {
    const char* state;      // reply to the sequence state query
    const char* condition;  // reply to the operation condition query
    EventList sent;
  };
  const Case cases[] = {
      {"0", "0", {stateQuery, on, conditionQuery}},
      {"", "2", {stateQuery, on, conditionQuery}},
      {"1", "4", {stateQuery, conditionQuery, stop}},
      {"1", "8", {stateQuery, conditionQuery, stop}},
      {"1", "12", {stateQuery, conditionQuery}},
      {"1", "                4", {stateQuery, conditionQuery}},  // beyond the 16 characters
      {"0", "4", {stateQuery, on, conditionQuery, stop + " !timeout"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.state) + "/" + c.condition);
    DownloadRig rig;
    const bool fails = c.sent.back().ends_with("!timeout");
    rig.Faults("text=1:" + std::string(c.state) + "@SEQ:STAT?;text=1:" + c.condition + "@:COND?" +
               (fails ? ";timeout@IST" : ""));
    // The instrument takes over only what it has really prepared.
    static_cast<void>(rig.Sender().DownloadSequence());
    EXPECT_EQ(rig.Sender().Outcome().End == DownloadEnd::NotSent, fails);
    rig.ExpectPrompts({rig.lastName});
    EventList sent = rig.TakeSent();
    sent.erase(sent.begin());  // the preparation of the device
    const auto block =
        std::find_if(sent.begin(), sent.end(), [](auto& line) { return line.starts_with("1 < :TRAC"); });
    EXPECT_EQ(block == sent.end(), fails) << "nothing behind a failure";
    sent.erase(block, sent.end());
    EXPECT_EQ(sent, c.sent);
  }
}

TEST(Understanding, WhatBecameOfTheCompilation) {
  struct Case {
    const char* what;
    std::string faults;
    EventList said;
    int polls;
    const char* last;  // message
  };
  DownloadRig rig;
  const EventList refused{"critical: " + rig.Text(TextId::RefusedByInstrument)};
  const Case cases[] = {
      {"status bit missing", "text=2:5@:COND?", {}, 3, "1 < :STAT:OPER:CH1:COND?"},
      {"refused", "refuse", refused, 3, "1 < :SYST:ERR?"},
      {"another error", "refuse;text=2:-225@:SYST:ERR?", {}, 3, "1 < :SYST:ERR?"},
      {"never", "", {}, 200, "1 < :SYST:ERR?"},
      {"polls that time out", "", {}, 20, "1 < :SYST:ERR? !timeout"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    rig.Forget();
    rig.Faults(c.faults);
    if (c.polls > 3)
      rig.recorder.swallow = [](std::string_view message) { return message.starts_with(":TRIG:COMP"); };
    rig.recorder.onExchange = [&](const std::string& line) {
      if (c.polls == 20 && line == "1 < :TRIG:COMP") rig.Faults("timeout");
    };
    EXPECT_FALSE(rig.Download());
    rig.prompts.said.erase(rig.prompts.said.begin());
    rig.ExpectPrompts(c.said);
    EXPECT_EQ(rig.Sender().Outcome().End, DownloadEnd::NotCompiled);
    EXPECT_EQ(rig.CountSent("1 poll") - 1, c.polls);  // one clears the status
    EXPECT_EQ(rig.TakeSent().back(), c.last);
  }
}

}  // namespace
}  // namespace corlune::testing
