// InstrumentState: everything a virtual instrument holds, and how it changes as time passes. Commands
// (instrument_commands.h) read and change it; VirtualInstrument feeds them.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "standins/cmplseq/compiled_sequence.h"
#include "standins/virtual_instrument/fault_plan.h"
#include "standins/virtual_instrument/run_engine.h"
#include "standins/virtual_instrument/status_model.h"
#include "standins/virtual_instrument/waveform_memory.h"

namespace corlune {

inline constexpr int kSequenceMemories = 11;  // 0 the working memory, 1..10 kept
inline constexpr std::uint32_t kCompileMs = 200;

struct InstrumentIdentity {
  std::string model = "QM2220";
  std::string serial = "QM000001";
  int channels = 2;  // 1 or 2
};

struct StoredSequence {
  std::string name;
  CompiledSequence content;
};

class InstrumentState {
 public:
  explicit InstrumentState(InstrumentIdentity who) : identity(std::move(who)), waveforms(identity.channels) {}

  void Advance(std::uint32_t milliseconds);

  // A command that needs time is under way; ms until its end, 0 when there is none.
  std::uint32_t PendingMs() const;
  bool Compiling() const { return compileLeft_.has_value(); }
  void Reply(std::string_view text);  // appends one query's answer, separated by ";"
  void KeepBusy();                    // after an output or memory command: the slow-busy fault
  void StartRun();                    // arms the output-trip fault
  void BeginCompile();
  void SetAllOutputs(bool on) { outputs.fill(on); }
  void Reset();  // *RST

  InstrumentIdentity identity;
  StatusModel status;
  RunEngine engine;
  WaveformMemory waveforms;
  FaultPlan faults;
  std::array<std::optional<StoredSequence>, kSequenceMemories> sequences;
  std::array<bool, kSequenceChannels> outputs{};
  bool sequenceMode = false;
  bool remote = false;

  // Of the message under way
  std::string reply;
  std::uint32_t replyDelay = 0;  // ms until the reply can be read
  bool completeWanted = false;   // *OPC: the event bit follows the pending command
  bool waitWanted = false;       // *WAI: what follows waits for the pending command

 private:
  void FinishCompile();
  bool CompileAllowed() const;

  std::optional<std::uint32_t> compileLeft_;  // ms
  std::uint32_t busyLeft_ = 0;                // ms
  std::optional<std::uint32_t> tripLeft_;     // ms
};

}  // namespace corlune
