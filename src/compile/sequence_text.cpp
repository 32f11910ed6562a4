#include "compile/sequence_text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/files.h"
#include "core/numbers.h"
#include "sequence/units.h"

namespace corlune {

namespace {

// Longest usual line is about 80 characters; two channels have 768 lines.
constexpr std::size_t kTextReserve = 768 * 96;

template <std::size_t N>
std::string_view WordOf(const std::array<std::string_view, N>& words, std::int32_t code) {
  return code >= 0 && code < static_cast<std::int32_t>(N) ? words[static_cast<std::size_t>(code)]
                                                          : std::string_view{};
}

constexpr std::array<std::string_view, 5> kWaveforms{"SIN", "SQU", "NOIS", "DC", "USER"};
constexpr std::array<std::string_view, 3> kRanges{"FS", "PFS", "MFS"};
constexpr std::array<std::string_view, 3> kModes{"CONS", "KEEP", "SWE"};
constexpr std::array<std::string_view, 3> kTriggers{"POS", "NEG", "OFF"};

std::string_view WaveformWord(double value) {
  for (std::size_t code = 0; code < kWaveforms.size(); ++code) {
    if (value == static_cast<double>(code)) return kWaveforms[code];
  }
  return {};
}

void AppendField(std::string& out, std::int32_t value) {
  out += ',';
  AppendInteger(out, value);
}

void AppendCommon(std::string& out, const CommonParams& common) {
  out += "SEQ=";
  AppendInteger(out, common.StartStepNo);
  out += common.SyncOut == 0 ? ",SYNC" : ",SSYN";
  AppendField(out, common.ExtCtrl);
  out += common.MultiIo == 0 ? ",STAR," : ",SBR,";
  out += WordOf(kTriggers, common.Trigger);
  out += "\r\n";
}

void AppendStep(std::string& out, int slot, const StepRow& row, const ModelDefinition& definition) {
  out += "STEP#";
  AppendInteger(out, slot);
  out += '=';
  AppendNumber(out, BaseTime(definition, row));
  out += row.StepTerm == 0 ? ",CONT" : ",STOP";
  AppendField(out, row.AutoHold);
  AppendField(out, row.StepCode);
  AppendField(out, row.StateBranchOn);
  AppendField(out, row.StateBranchStep);
  AppendField(out, row.EventBranchOn);
  AppendField(out, row.EventBranchStep);
  AppendField(out, row.JumpOn);
  AppendField(out, row.JumpTo);
  out += row.JumpCountOn == 0 ? ",INF" : ",ON";
  AppendField(out, row.JumpCount);
  AppendField(out, row.StopPhaseOn);
  out += ',';
  AppendNumber(out, row.StopPhase);
  out += "\r\n";
}

void AppendChannel(std::string& out, const SequenceData& sequence, const ModelDefinition& definition,
                   int channel, int slot) {
  out += "CHAN#";
  AppendInteger(out, slot);
  out += '#';
  AppendInteger(out, channel + 1);
  out += '=';
  out += WaveformWord(sequence.Cell(channel, slot, kSlotWaveform).Value);
  out += ',';
  AppendNumber(out, sequence.Cell(channel, slot, kSlotArbNumber).Value);
  const std::int32_t polarityRange =
      ToInt32(sequence.Cell(channel, slot, kSlotPolarityRange).Value).value_or(-1);
  out += polarityRange / 3 <= 0 ? ",NORM," : ",INV,";
  out += WordOf(kRanges, polarityRange % 3);
  out += ',';
  AppendNumber(out, sequence.Cell(channel, slot, kSlotExternal).Value);
  for (const int param : {kSlotFrequency, kSlotAmplitude, kSlotOffset, kSlotPhase, kSlotDuty}) {
    const ParamCell& cell = sequence.Cell(channel, slot, param);
    out += ',';
    AppendNumber(out, BaseValue(definition, param, cell));
    out += ',';
    out += WordOf(kModes, cell.ChangeMode);
  }
  out += "\r\n";
}

}  // namespace

void AppendSequenceText(std::string& out, const SequenceData& sequence, const ModelDefinition& definition,
                        const std::string& model, int channels) {
  out.reserve(out.size() + kTextReserve);
  out += "[FILE]\r\nVERSION=\"1.00\"\r\n[SYSTEM]\r\nMODEL=\"";
  out += model;
  out += "\"\r\nNCHAN=";
  AppendInteger(out, channels);
  out += "\r\nVERSION=\"1.00\"\r\n[DATA]\r\n";
  AppendCommon(out, sequence.Common);
  for (int slot = 0; slot < MAX_STEPS; ++slot) {
    AppendStep(out, slot, sequence.Step(slot), definition);
  }
  for (int channel = 0; channel < channels; ++channel) {
    for (int slot = 0; slot < MAX_STEPS; ++slot) AppendChannel(out, sequence, definition, channel, slot);
  }
}

void AppendStepLines(std::string& out, const SequenceData& sequence, const ModelDefinition& definition,
                     int slot, int channels) {
  AppendStep(out, slot, sequence.Step(slot), definition);
  for (int channel = 0; channel < channels; ++channel)
    AppendChannel(out, sequence, definition, channel, slot);
}

bool BuildSequenceText(const std::string& path, const SequenceData& sequence,
                       const ModelDefinition& definition, const std::string& model, int channels,
                       std::string* error) {
  std::string text;
  AppendSequenceText(text, sequence, definition, EncodeText(model), channels);
  return ReplaceFile(path, text, error);
}

}  // namespace corlune
