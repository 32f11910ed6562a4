// SequenceData: the one sequence that the editor holds in memory, as fixed-capacity tables. Plain values;
// the rules that protect them stand where data enters (sequence file, value entry, read-back).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/step_numbering.h"
#include "modeldef/model_definition.h"
#include "sequence/file_stamp.h"

namespace corlune {

inline constexpr int MAX_STEPS = 256;
inline constexpr int MAX_CHANNELS = 2;
inline constexpr int MAX_PARAMS = kAreaParams;
inline constexpr int kArbNumbers = 128;  // ARB numbers 1..128, number n at index n - 1
inline constexpr int kBranchEntries = 5;
inline constexpr int kViewAreas = 5;
inline constexpr int kModeDevices = 6;  // device rows of ModeSettings
inline constexpr int kModeSlots = 6;    // channel slots of one mode set

// Parameter slots of a ParamCell table.
enum Slot : int {
  kSlotWaveform = 0,
  kSlotArbNumber = 1,
  kSlotFrequency = 2,  // base units: Hz
  kSlotAmplitude = 3,  // Vp-p
  kSlotPolarityRange = 4,
  kSlotOffset = 5,  // V
  kSlotPhase = 6,   // degrees
  kSlotDuty = 7,    // %
  kSlotExternal = 8,
};

enum WaveformCode : int { kWaveSine = 0, kWaveSquare = 1, kWaveNoise = 2, kWaveDc = 3, kWaveUser = 4 };

enum ChangeModeCode : std::int16_t { kModeConst = 0, kModeKeep = 1, kModeSweep = 2 };

struct StepRow {
  double StepTime = 0;        // in the unit of TimeUnit; sequence/units.h converts
  std::int16_t TimeUnit = 0;  // index into the unit list of the step-time column
  std::int16_t AutoHold = 0;
  std::int16_t StopPhaseOn = 0;
  double StopPhase = 0;       // degrees
  std::int16_t StepTerm = 0;  // 0 continue; 1 ends the flow; 2 ends with the end message
  std::int16_t JumpOn = 0;
  std::int16_t JumpTo = 0;       // stored step number, 1-based, 0 none
  std::int16_t JumpCountOn = 0;  // 0: the jump repeats without limit
  std::int16_t JumpCount = 0;
  std::int16_t EventBranchOn = 0;
  std::int16_t EventBranchStep = 0;  // stored step number
  std::int16_t StateBranchOn = 0;
  std::int16_t StateBranchStep = 0;  // stored step number
  std::int16_t StepCode = 0;
  std::array<std::int16_t, kBranchEntries> BranchStep{};  // stored step numbers
  double StepRunTime = 0;  // ms, working value of ComputeRunTimes, never stored
  bool operator==(const StepRow&) const = default;
};

struct ParamCell {
  std::int16_t ChangeMode = 0;  // kModeConst, kModeKeep, kModeSweep
  std::int16_t UnitIndex = 0;
  double Value = 0;       // in the unit of UnitIndex
  double StartValue = 0;  // derived: the value with which the step begins, same unit
  bool operator==(const ParamCell&) const = default;
};

struct CommonParams {
  std::int16_t StartStepNo = 1;  // 1..255
  std::int32_t Trigger = 0;      // 0 rise, 1 fall, 2 off
  std::int32_t ExtCtrl = 0;      // 0 disable, 1 enable
  std::int32_t MultiIo = 0;      // pin 14: 0 start, 1 state branch
  std::int32_t SyncOut = 0;      // 0 sync, 1 step code (LSB)
  bool operator==(const CommonParams&) const = default;
};

struct OutputLoad {
  std::int32_t LoadType = 0;  // 0 "High-Z", 1 "Variable"
  double LoadValue = 10000;   // ohms
  bool operator==(const OutputLoad&) const = default;
};

// The capability stands in ModelDefinition::UserUnitCapability.
struct UserUnitDef {
  std::int32_t UseUserUnit = 0;
  std::int32_t Form = 0;  // 0 "(h+n)*m", 1 "(Log(h)+n)*m"
  std::string UnitText = "usr";
  double M = 1;  // a stored 0 counts as 1
  double N = 0;
  bool operator==(const UserUnitDef&) const = default;
};

struct ArbFileEntry {
  std::string FilePath;  // ".wdb" or ".txt"; empty: none
  // Known while the program runs only:
  std::int16_t UseFlag = 0;       // a step uses this number
  std::int16_t Transferred = 0;   // the file was sent under this number
  std::int16_t ArrayForm = 0;     // 1 plain array of points, 0 point pairs
  std::int32_t PointCount = 0;    // points or pairs; 0 not known
  std::int16_t InInstrument = 0;  // the instrument holds a waveform under this number
  FileStamp Sent = {};            // with Transferred: the file as it was then
  bool operator==(const ArbFileEntry&) const = default;
};

struct ChannelSettings {
  // Not constexpr: one compiler of ours cannot evaluate nested arrays of texts at compile time.
  ChannelSettings() {}
  std::array<OutputLoad, kChannelSlots> Loads{};
  std::array<std::array<UserUnitDef, MAX_PARAMS>, kChannelSlots> UserUnits{};
  std::array<ArbFileEntry, kArbNumbers> ArbFiles{};
  bool operator==(const ChannelSettings&) const = default;
};

struct SequenceData {
  std::int16_t StepCount = 0;      // used steps, 0..256; slots beyond keep what they hold
  std::int16_t StartStep = 1;      // number shown for the first step
  std::int16_t BranchChannel = 1;  // 1-based
  CommonParams Common;
  std::array<StepRow, MAX_STEPS> Steps{};
  // By parameter, step, channel (channel fastest); use Cell().
  std::array<ParamCell, MAX_PARAMS * MAX_STEPS * MAX_CHANNELS> Cells{};
  ChannelSettings Channels;
  // Selections of the mode sets: [device][mode set * kModeSlots + channel slot].
  std::array<std::array<std::int16_t, kModeSets * kModeSlots>, kModeDevices> ModeSettings{};
  std::array<std::array<std::int16_t, 4>, kViewAreas> ViewAreas{};  // sequence view, file key FV_AREASET
  std::string SequenceName;
  std::int16_t SequenceNumber = 0;  // instrument memory 0..10

  // Slot 0..255; not checked.
  StepRow& Step(int slot) { return Steps[static_cast<std::size_t>(slot)]; }
  const StepRow& Step(int slot) const { return Steps[static_cast<std::size_t>(slot)]; }
  StepRow& Step(StepIndex index) { return Step(index.value); }
  const StepRow& Step(StepIndex index) const { return Step(index.value); }
  // channel 0..1, step slot 0..255, parameter slot 0..10; not checked.
  ParamCell& Cell(int channel, int step, int param) { return Cells[CellIndex(channel, step, param)]; }
  const ParamCell& Cell(int channel, int step, int param) const {
    return Cells[CellIndex(channel, step, param)];
  }
  bool operator==(const SequenceData&) const = default;

 private:
  static constexpr std::size_t CellIndex(int channel, int step, int param) {
    const int index = (param * MAX_STEPS + step) * MAX_CHANNELS + channel;
    return static_cast<std::size_t>(index);
  }
};

}  // namespace corlune
