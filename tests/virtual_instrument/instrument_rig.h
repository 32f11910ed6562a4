// A virtual instrument on a clock that stands still until a test moves it.
#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "standins/virtual_instrument/virtual_instrument.h"

namespace corlune::testing {

inline constexpr std::string_view kNoError = "0,\"No error\"";

// A sequence of one channel whose first slots last `seconds` each; the last of them stops.
inline CompiledSequence Steps(std::initializer_list<double> seconds, int channels = 1) {
  CompiledSequence sequence;
  sequence.Model = channels == 1 ? "QM2210" : "QM2220";
  sequence.Channels = channels;
  std::size_t slot = 0;
  for (const double time : seconds) {
    sequence.Steps[slot].StepTime = time;
    for (int channel = 0; channel < channels; ++channel) {
      sequence.Cells[static_cast<std::size_t>(channel)][slot].Frequency.Value = 1000;
    }
    ++slot;
  }
  sequence.Steps[slot - 1].Stop = true;
  return sequence;
}

inline std::string BlockOf(std::string_view bytes) {
  const std::string length = std::to_string(bytes.size());
  return "#" + std::to_string(length.size()) + length + std::string(bytes);
}

inline std::string CompiledBytes(const CompiledSequence& sequence) {
  const auto bytes = EncodeCompiledSequence(sequence);
  return {bytes.begin(), bytes.end()};
}

// Transfer block of a waveform: form 0 array, 1 pairs.
inline std::string WaveformBlock(std::uint32_t form, std::uint32_t count) {
  std::string block;
  for (const std::uint32_t word : {form, count}) {
    for (int shift = 24; shift >= 0; shift -= 8) block += static_cast<char>(word >> shift & 0xFF);
  }
  for (std::uint32_t i = 0; i < count * (form == 0 ? 2 : 6); ++i) block += static_cast<char>(i * 7);
  return block;
}

struct InstrumentRig {
  std::uint32_t now = 0xFFFFFF00;  // the clock wraps in mid-test
  VirtualInstrument instrument;

  explicit InstrumentRig(std::string model = "QM2220", int channels = 2)
      : instrument({std::move(model), "QM000001", channels}, [this] { return now; }) {}

  void Tell(std::string_view message) { instrument.Write(message, true); }
  // The whole reply without its line feed; "(none)" when none comes, "(late)" when it is not there yet.
  std::string Reply() {
    const auto delay = instrument.ReplyDelay();
    if (!delay) return "(none)";
    if (*delay > 0) return "(late)";
    std::string reply;
    char part[37];
    for (;;) {
      const auto read = instrument.Read(part, std::nullopt);
      reply.append(part, read.count);
      if (read.end) break;
    }
    if (reply.ends_with('\n')) reply.pop_back();
    return reply;
  }
  std::string Ask(std::string_view message) {
    Tell(message);
    return Reply();
  }
  std::string Error() { return Ask(":SYST:ERR?"); }
  void Pass(std::uint32_t milliseconds) { now += milliseconds; }

  // Downloads and compiles, as the program does.
  void Prepare(const CompiledSequence& sequence) {
    Tell(":SYST:REM;*ESE 60;:SOUR1:SEQ:STAT 1");
    Tell(":TRAC:SEQ 0,\"Test\"," + BlockOf(CompiledBytes(sequence)));
    ASSERT_EQ(Error(), kNoError);
    Tell("*CLS;:TRIG:COMP");
    Pass(kCompileMs);
    ASSERT_EQ(instrument.SerialPoll() & 0x80, 0x80);
  }
  void Start(const CompiledSequence& sequence) {
    Prepare(sequence);
    Tell(":TRIG1:SEL:EXEC STAR");
    ASSERT_EQ(Error(), kNoError);
  }
};

}  // namespace corlune::testing
