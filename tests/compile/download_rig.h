// A download over scripted instruments: a small sequence, a compiler that obeys, replies of an instrument
// that takes everything.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "compile/download.h"
#include "support/instrument_rig.h"
#include "support/temp_folder.h"

namespace corlune {

// Leaves `binary` in the work file and notes what it was given.
class ObedientCompiler : public CompilerLibrary {
 public:
  CompilerCall CompileSeqData(const std::string& workFile, const std::array<ArbInformation, 128>& arbs,
                              CompileErrorRecord& record, std::int32_t& result) override {
    ++calls;
    text = corlune::testing::TempFolder::Read(workFile);
    table = arbs;
    if (missing) return CompilerCall::Missing;
    std::ofstream(workFile, std::ios::binary | std::ios::trunc) << binary;
    record = error;
    result = code;
    return CompilerCall::Done;
  }
  std::string Problem() const override { return missing ? "libCmplSeq.so: not found" : ""; }

  bool missing = false;
  std::string binary = "123456789";
  CompileErrorRecord error{};
  std::int32_t code = 0;
  int calls = 0;
  std::string text;
  std::array<ArbInformation, 128> table{};
};

struct DownloadRig : corlune::testing::InstrumentRig {
  DownloadRig() {
    state.AppFolder = folder.Path();
    sequence->StepCount = 2;
    sequence->SequenceNumber = 2;
    sequence->Steps[0].StepTime = 1.5;
    sequence->Steps[1].StepTime = 0.5;
    script.Reply(":SOUR1:SEQ:STAT?", {"1"});
    script.Reply(":STAT:OPER:CH1:COND?", {"0"});
    script.Reply(":SYST:ERR?", {"0,\"No error\""});
    script.Reply(":STAT?", {"2"});
    script.Reply("*ESR?", {"0"});
    script.StatusBytes({0, 0x80});
  }
  // Step `slot` of a channel plays ARB `number`.
  void PlayArb(int channel, int slot, int number) {
    sequence->Cell(channel, slot, kSlotWaveform).Value = kWaveUser;
    sequence->Cell(channel, slot, kSlotArbNumber).Value = number;
  }
  // A waveform file of `count` zeros for ARB `number`.
  void GiveFile(int number, int count = 4096) {
    const std::string name = "wave" + std::to_string(number) + ".txt";
    std::string values;
    for (int i = 0; i < count; ++i) values += "0\r\n";
    folder.Write(name, values);
    Entry(number).FilePath = folder.File(name);
  }
  ArbFileEntry& Entry(int number) {
    return sequence->Channels.ArbFiles[static_cast<std::size_t>(number - 1)];
  }
  std::string Text(int id) const { return catalogue.GetResString(TextId{id}); }
  // The messages shown, without the name question.
  std::vector<std::string> Messages() const {
    std::vector<std::string> texts;
    for (const MessageRequest& message : prompts.messages) texts.push_back(message.text);
    return texts;
  }

  corlune::testing::TempFolder folder;
  std::unique_ptr<SequenceData> sequence = std::make_unique<SequenceData>();
  corlune::testing::RecordedProgress progress{&events};
  corlune::testing::RecordedDisplay display{&events};
  InstrumentDialogues dialogues{commands, prompts, catalogue};
  ObedientCompiler compiler;
  Activity activity;
  Downloader downloader{state,     definition, *sequence, commands,
                        dialogues, compiler,   catalogue, {prompts, progress, display, activity}};
};

}  // namespace corlune
