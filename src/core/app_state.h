// AppState: the facts about the running program that more than one room needs. Plain fields without
// behaviour; one object in session/ owns it and hands out references.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace corlune {

// How an instrument is reached. The codes are stored in files and must not change.
enum class InterfaceKind : std::int16_t {
  NiGpib = 0,     // GPIB through the NI-488.2 library
  KiGpib = 1,     // GPIB through the IEEE_32M library
  Usb488 = 2,     // USB488
  UsbTmc = 3,     // USBTMC through VISA
  Simulated = 4,  // log and response file only
};

enum class OperationMode : std::int16_t { Edit = 0, Execution = 1 };
enum class RunState : std::int16_t { Stopped = 2, Running = 4, Held = 8 };
// A run command that waits for the monitor's next tick.
enum class PendingRequest : std::int16_t { None = 0, Stop = 2, Hold = 3, Branch = 4 };

inline constexpr int kMaxInstruments = 5;

// One configured instrument.
struct InstrumentEntry {
  std::int16_t Interface = 0;  // index into the model's InterfaceNames
  std::string SerialNo;        // serial number of a USBTMC instrument
  std::int32_t Address = 0;    // GPIB address or USB488 id
  std::int16_t ChannelCount = 1;
  // Derived from the interface name; renamed from its type so that both can be used in one scope.
  corlune::InterfaceKind InterfaceKind = corlune::InterfaceKind::NiGpib;
  bool operator==(const InstrumentEntry&) const = default;
};

struct AppState {
  // Paths and language
  std::string AppFolder;     // application folder, without a trailing separator
  std::string StdIniPath;    // Corlune_Std.ini, the model definition file
  std::string WorkFilePath;  // Corlune_<model>.ini
  std::string SysIniPath;    // Corlune.ini
  // Where the files of a transfer stand. Empty: the application folder, which one editor has to itself. A
  // console program gives every run a folder of its own, so that runs side by side do not mix their data.
  std::string TransferFolder;
  bool UseEnglish = true;
  std::int32_t LangOffset = 10000;  // added to every message id: 10000 English, 0 Japanese
  std::string UiFontName = "Arial";
  float UiFontSize = 9;  // points

  // Model and set-up
  std::string ProgId;
  std::string VerNo;
  std::string ModelName;
  std::int16_t ModelIndex = 0;
  std::int16_t InstrumentCount = 1;
  std::array<InstrumentEntry, kMaxInstruments> Instruments{};

  // Connection
  std::int16_t Online = 0;  // 1: an instrument is connected
  bool Connected = false;   // the connection has been opened
  InterfaceKind CurrentInterface = InterfaceKind::UsbTmc;

  // Editing
  bool Modified = false;
  bool StartupDone = false;
  std::string CurrentFilePath;  // the user's file, empty when the sequence has none

  // Run
  corlune::OperationMode OperationMode = corlune::OperationMode::Edit;
  corlune::RunState RunState = corlune::RunState::Stopped;
  std::int16_t CurrentStep = 0;  // slot index, 0-based; the end of a run can leave it beyond the last step
  bool OutputOn = false;         // as far as it is known
  // Nobody can say whether an output is on: no answer yet since the connection was opened, a failed exchange,
  // a lost connection. Until an answer, or a switch that every instrument took.
  bool OutputInDoubt = false;
  corlune::PendingRequest PendingRequest = corlune::PendingRequest::None;
  bool BranchRequested = false;
  std::int16_t BranchTarget = 0;  // stored step number, 1-based
  bool SequenceViewShown = false;
  // A run ended otherwise than by its own end or by a stop that every instrument took: an instrument may
  // still be running or held. Until a Stop is taken by every instrument, or the program goes off-line.
  bool MayStillRun = false;
  // The last change to execution mode was over an interface without blocks: what the instrument runs was not
  // sent by the program, and the steps of the sequence say nothing about it. See RunsHeldSequence.
  bool HeldSequence = false;
  // Instruments that were unplugged while connected; only opening the connection again brings them back.
  std::array<bool, kMaxInstruments> Lost{};

  // Run clock: ticks and milliseconds of TickClock
  std::uint32_t RunStartTime = 0;
  std::uint32_t StepChangedAt = 0;
  std::uint32_t StepDeadline = 0;
  std::uint32_t HoldStartTime = 0;
  std::int32_t ElapsedTime = 0;
  double TotalTime = 0;        // ms, -1: endless
  double TotalTimeSecond = 0;  // set together with TotalTime, -1: endless
};

// The instrument runs, or waits to run, a sequence that the program does not know.
inline bool RunsHeldSequence(const AppState& state) {
  return state.HeldSequence && state.OperationMode == OperationMode::Execution;
}

}  // namespace corlune
