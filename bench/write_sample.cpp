// Makes a folder an application folder whose work file holds 256 steps on two channels.
//   write_sample FOLDER      every value at something of its own
//   write_sample FOLDER run  what the instrument takes, and goes round without end
#include <iostream>
#include <memory>
#include <string>

#include "bench/samples.h"
#include "core/files.h"
#include "sequence/sequence_file.h"

namespace {

// Steps so short that the highlight moves at every poll.
corlune::SequenceData EndlessRun() {
  using namespace corlune;
  SequenceData sequence;
  ResetSequence(sequence, bench::ShippedDefinition());
  sequence.StepCount = MAX_STEPS;
  for (int slot = 0; slot < MAX_STEPS; ++slot) {
    sequence.Steps[static_cast<std::size_t>(slot)].StepTime = 0.1;
    sequence.Steps[static_cast<std::size_t>(slot)].StepTerm = 0;
    for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
      sequence.Cell(channel, slot, kSlotFrequency).Value = 1000 + slot;
      sequence.Cell(channel, slot, kSlotAmplitude).Value = 1;
    }
  }
  StepRow& last = sequence.Steps[MAX_STEPS - 1];
  last.JumpOn = 1;
  last.JumpTo = 1;
  last.JumpCountOn = 0;
  ComputeStartValues(sequence);
  ComputeRunTimes(sequence, bench::ShippedDefinition());
  return sequence;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace corlune;
  const bool run = argc == 3 && std::string(argv[2]) == "run";
  if (argc != 2 && !run) {
    std::cerr << "write_sample FOLDER [run]" << std::endl;
    return 2;
  }
  const std::string folder = argv[1];
  const auto sequence = std::make_unique<SequenceData>(run ? EndlessRun() : bench::FullSequence(MAX_STEPS));
  const std::string work = EncodeText(FormatSequenceFile(*sequence, bench::TwoChannelState(),
                                                         bench::ShippedDefinition(), SequenceFileForm::Work));
  const std::string definition = ReadWholeFile(CORLUNE_DATA "/Corlune_Std.ini").value_or(std::string());
  if (!ReplaceFile(JoinPath(folder, "Corlune_QM2220.ini"), work) ||
      !ReplaceFile(JoinPath(folder, "Corlune_Std.ini"), definition) ||
      !ReplaceFile(JoinPath(folder, "Corlune.ini"), "[EDIT]\r\nEDIT_MODEL=1,QM2220\r\n")) {
    bench::Fail("cannot write into " + folder);
  }
  return 0;
}
