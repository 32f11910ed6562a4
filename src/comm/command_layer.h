// The command layer: how every room above sends commands. Off-line nothing is sent and every operation
// succeeds.
//
// Re-entry: SendCommand with a wait, WaitWhileBusy and DelayMs pump events, so handlers (buttons, the
// monitor's tick) can run inside and may send commands of their own. A send and the receive that follows it
// without a wait are never parted. After a wait CurrentInterface is what it was before, whatever a handler
// addressed meanwhile; pass the address again instead of kSameDevice.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "comm/comm_status.h"
#include "comm/gp_front_end.h"
#include "core/app_state.h"
#include "core/ports.h"
#include "modeldef/model_definition.h"

namespace corlune {

// What an instrument that was asked alone has answered.
struct AnswerAlone {
  CommStatus Status = CommStatus::Success;
  std::string Reply;        // empty unless Status is Success
  std::string Problem;      // what the library says about a failure, perhaps nothing
  bool Opened = false;      // false: it is the opening that failed
  bool Reopened = true;     // false: the connection of its kind that was open before is lost
  std::string LossProblem;  // what the library says about that
};

class CommandLayer {
 public:
  // All references must outlive the object.
  CommandLayer(AppState& state, const ModelDefinition& definition, GpFrontEnd& gp, TickClock& clock,
               EventPump& pump);

  // Opens the kind of instrument 0, then every further kind in use once, and sets the time-out to 3 s.
  // All USBTMC instruments are listed in instrument order; such an instrument's address is its index in
  // that list. Sets CurrentInterface. `failedInstrument` (may be null) gets the 0-based index of the first
  // instrument whose kind failed to open, `problem` (may be null) what its library says, perhaps nothing.
  [[nodiscard]] bool OpenInstrumentInterface(int* failedInstrument = nullptr, std::string* problem = nullptr);
  // One GP_End for each kind that was opened, nothing for the others; the status of the first.
  CommStatus CloseInstrumentInterface();

  // Asks `query` of an instrument that need not belong to the set-up, also off-line, through an opening of
  // its own with the options and the resource prefix of `definition`'s model `modelIndex`. What is open of
  // its kind is closed meanwhile. Pumps events when the query has a wait.
  AnswerAlone AskAlone(const InstrumentEntry& entry, const ModelDefinition& definition, int modelIndex,
                       const CommandEntry& query);

  // Points CurrentInterface at instrument `index` (0..4) and returns its address for SendCommand; outside the
  // range it changes nothing and returns kSameDevice.
  std::int32_t SelectInstrument(int index);

  // Sequences and waveforms reach instrument 0.
  bool CarriesBlocks();
  // Instrument `index` was unplugged since the opening: every exchange with it fails.
  bool InstrumentLost(int index);

  // wait > 0: ms to wait afterwards; < 0: poll until not busy; 0: none. Returns the failing send's status,
  // TimeOut when busy polling fails or runs out of time.
  CommStatus SendCommand(std::int32_t address, const std::string& command, std::int32_t wait);
  // Off-line `reply` stays as it is.
  CommStatus ReceiveReply(std::int32_t address, std::string& reply);
  CommStatus SendBlockData(const std::string& header, std::span<const std::uint8_t> data,
                           std::int32_t address, std::int16_t elementFormat = 0);
  // 0 when (reply AND mask) = 0, TimeOut when `limit` ms pass first, else the failing status. A reply that is
  // no number counts as busy. Without a busy query in the command table: 0 at once.
  CommStatus WaitWhileBusy(std::int32_t address, const std::string& mask, std::int32_t limit);
  // Returns after `milliseconds` on the clock; handlers run meanwhile.
  void DelayMs(std::int32_t milliseconds);

  bool Online() const { return state_.Online == 1; }
  GpFrontEnd& Gp() { return gp_; }
  AppState& State() { return state_; }
  const ModelDefinition& Definition() const { return definition_; }
  TickClock& Clock() { return clock_; }
  EventPump& Pump() { return pump_; }

 private:
  // Runs a wait; handlers inside may address other instruments.
  void KeepingInterface(const std::function<void()>& wait);
  CommStatus Open(InterfaceKind kind, bool emptyLog);
  void AskOpened(const InstrumentEntry& entry, const CommandEntry& query, AnswerAlone& answer);

  AppState& state_;
  const ModelDefinition& definition_;
  GpFrontEnd& gp_;
  TickClock& clock_;
  EventPump& pump_;
  std::vector<InterfaceKind> openKinds_;  // that of instrument 0 at the opening first
};

}  // namespace corlune
