// The fixed dialogues that frame every download and waveform transfer. All talk to the current instrument
// through the command layer and pump events while they wait.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "comm/command_layer.h"
#include "core/catalogue.h"

namespace corlune {

class InstrumentDialogues {
 public:
  InstrumentDialogues(CommandLayer& commands, Prompts& prompts, const MessageCatalogue& catalogue);

  // "*CLS", then one serial poll whose byte is discarded.
  void ClearStatus();
  // Error number of the instrument's error query, 0 for none, after a failed exchange and for an empty reply;
  // nullopt for a reply that does not begin with a number, which may mean anything.
  std::optional<std::int32_t> QueryErrorNumber();
  // Sequence operation on, a running or held sequence stopped. False when a query or the stop failed.
  [[nodiscard]] bool PrepareSequenceMode();
  // The instrument is stopped and can start as it is; false also when the query fails.
  [[nodiscard]] bool HoldsCompiledSequence();
  // Waits for the instrument's own compilation after ":TRIG:COMP", about 20 s at most, and no longer once it
  // was unplugged or `goOn`, asked about every 100 ms, says no. Shows message RefusedByInstrument when the
  // instrument refused the sequence (error -222).
  [[nodiscard]] bool WaitCompileDone(const std::function<bool()>& goOn = {});

 private:
  std::int32_t Address() const;  // of the current instrument (instrument 0)
  // Leading number of a state query's reply; false when the exchange failed.
  bool QueryNumber(const std::string& query, std::int32_t wait, std::int32_t& number);
  std::int16_t SerialPoll();  // status byte, 0 when the poll failed

  CommandLayer& commands_;
  Prompts& prompts_;
  const MessageCatalogue& catalogue_;
};

}  // namespace corlune
