#include "standins/virtual_instrument/instrument_commands.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "core/numbers.h"

namespace corlune {
namespace {

constexpr std::size_t kLongestName = 20;

struct Call {
  const ScpiUnit& unit;
  std::vector<int> suffixes;

  const ScpiArgument& Argument(std::size_t index) const { return unit.arguments[index]; }
};

using Handler = ScpiError (*)(InstrumentState&, const Call&);

struct Command {
  ScpiPattern pattern;
  bool query;
  std::size_t fewest;  // arguments
  std::size_t most;
  Handler handler;
};

// ---- Arguments ----

ScpiError ReadInteger(const ScpiArgument& argument, int lowest, int highest, int& value) {
  if (argument.kind != ScpiArgument::Kind::Number) return ScpiError::DataType;
  const auto rounded = ToInt32(argument.number);
  if (!rounded || *rounded < lowest || *rounded > highest) return ScpiError::OutOfRange;
  value = *rounded;
  return ScpiError::None;
}

ScpiError ReadSwitch(const ScpiArgument& argument, bool& on) {
  if (argument.kind == ScpiArgument::Kind::Number) {
    const auto rounded = ToInt32(argument.number);
    on = !rounded || *rounded != 0;
    return ScpiError::None;
  }
  if (argument.kind != ScpiArgument::Kind::Word) return ScpiError::DataType;
  on = ScpiWordIs(argument.raw, "ON");
  return on || ScpiWordIs(argument.raw, "OFF") ? ScpiError::None : ScpiError::IllegalValue;
}

// `<n>,"<name>",<block>`
struct NamedBlock {
  int number = 0;
  std::string_view name;
  std::string_view block;
};

ScpiError ReadNamedBlock(const Call& call, int lowest, int highest, NamedBlock& out) {
  const ScpiError error = ReadInteger(call.Argument(0), lowest, highest, out.number);
  if (error != ScpiError::None) return error;
  if (call.Argument(1).kind != ScpiArgument::Kind::Text) return ScpiError::DataType;
  if (call.Argument(2).kind != ScpiArgument::Kind::Block) return ScpiError::DataType;
  out.name = call.Argument(1).text;
  out.block = call.Argument(2).block;
  return out.name.size() > kLongestName ? ScpiError::IllegalValue : ScpiError::None;
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    quoted += c;
    if (c == '"') quoted += c;
  }
  return quoted += '"';
}

// ---- IEEE 488.2 ----

ScpiError Identify(InstrumentState& state, const Call&) {
  state.Reply("TAVRIN," + state.identity.model + "," + state.identity.serial + ",1.00");
  return ScpiError::None;
}

ScpiError ClearStatus(InstrumentState& state, const Call&) {
  state.status.Clear();
  state.completeWanted = false;
  return ScpiError::None;
}

ScpiError SetEventEnable(InstrumentState& state, const Call& call) {
  int mask = 0;
  const ScpiError error = ReadInteger(call.Argument(0), 0, 255, mask);
  if (error == ScpiError::None) state.status.SetEventEnable(static_cast<std::uint8_t>(mask));
  return error;
}

ScpiError SetRequestEnable(InstrumentState& state, const Call& call) {
  int mask = 0;
  const ScpiError error = ReadInteger(call.Argument(0), 0, 255, mask);
  if (error == ScpiError::None) state.status.SetRequestEnable(static_cast<std::uint8_t>(mask));
  return error;
}

ScpiError CompleteEvent(InstrumentState& state, const Call&) {
  if (state.PendingMs() == 0) {
    state.status.SetEvent(kEventOperationComplete);
  } else {
    state.completeWanted = true;
  }
  return ScpiError::None;
}

ScpiError CompleteQuery(InstrumentState& state, const Call&) {
  state.Reply("1");
  state.replyDelay = state.PendingMs();
  return ScpiError::None;
}

ScpiError Wait(InstrumentState& state, const Call&) {
  state.waitWanted = state.PendingMs() != 0;
  return ScpiError::None;
}

ScpiError Reset(InstrumentState& state, const Call&) {
  state.Reset();
  return ScpiError::None;
}

// ---- System and outputs ----

ScpiError Remote(InstrumentState& state, const Call& call) {
  state.remote = call.unit.nodes.back().name.starts_with("REM");
  return ScpiError::None;
}

ScpiError SetOutput(InstrumentState& state, const Call& call) {
  const int channel = call.suffixes[0];
  if (channel < 1 || channel > state.identity.channels) return ScpiError::HeaderSuffixRange;
  bool on = false;
  const ScpiError error = ReadSwitch(call.Argument(0), on);
  if (error != ScpiError::None) return error;
  state.outputs[static_cast<std::size_t>(channel - 1)] = on;
  state.KeepBusy();
  return ScpiError::None;
}

ScpiError OutputQuery(InstrumentState& state, const Call& call) {
  const int channel = call.suffixes[0];
  if (channel < 1 || channel > state.identity.channels) return ScpiError::HeaderSuffixRange;
  state.Reply(state.outputs[static_cast<std::size_t>(channel - 1)] ? "1" : "0");
  return ScpiError::None;
}

// ---- Sequences ----

bool ChannelSuffix(const InstrumentState& state, const Call& call) {
  return call.suffixes[0] >= 1 && call.suffixes[0] <= state.identity.channels;
}

ScpiError SetSequenceMode(InstrumentState& state, const Call& call) {
  if (!ChannelSuffix(state, call)) return ScpiError::HeaderSuffixRange;
  bool on = false;
  const ScpiError error = ReadSwitch(call.Argument(0), on);
  if (error != ScpiError::None) return error;
  if (!on) state.engine.Stop(true);
  state.sequenceMode = on;
  return ScpiError::None;
}

ScpiError SequenceModeQuery(InstrumentState& state, const Call& call) {
  if (!ChannelSuffix(state, call)) return ScpiError::HeaderSuffixRange;
  state.Reply(state.sequenceMode ? "1" : "0");
  return ScpiError::None;
}

ScpiError StepQuery(InstrumentState& state, const Call& call) {
  if (!ChannelSuffix(state, call)) return ScpiError::HeaderSuffixRange;
  state.Reply(std::to_string(state.engine.CurrentSlot()));
  return ScpiError::None;
}

ScpiError ConditionQuery(InstrumentState& state, const Call& call) {
  if (!ChannelSuffix(state, call)) return ScpiError::HeaderSuffixRange;
  state.Reply(std::to_string(state.engine.Condition()));
  return ScpiError::None;
}

ScpiError StoreSequence(InstrumentState& state, const Call& call) {
  NamedBlock sent;
  const ScpiError error = ReadNamedBlock(call, 0, kSequenceMemories - 1, sent);
  if (error != ScpiError::None) return error;
  if (state.engine.Phase() != RunPhase::Idle || state.Compiling()) return ScpiError::StillRunning;
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(sent.block.data());
  auto sequence = DecodeCompiledSequence(std::span(bytes, sent.block.size()));
  if (!sequence) return ScpiError::CorruptData;
  state.sequences[0] = StoredSequence{std::string(sent.name), std::move(*sequence)};
  state.KeepBusy();
  return ScpiError::None;
}

ScpiError RecordSequence(InstrumentState& state, const Call& call) {
  int number = 0;
  const ScpiError error = ReadInteger(call.Argument(0), 1, kSequenceMemories - 1, number);
  if (error != ScpiError::None) return error;
  if (!state.sequences[0]) return ScpiError::NotFound;
  state.sequences[static_cast<std::size_t>(number)] = state.sequences[0];
  state.KeepBusy();
  return ScpiError::None;
}

ScpiError ReadSequence(InstrumentState& state, const Call& call) {
  int number = 0;
  const ScpiError error = ReadInteger(call.Argument(0), 0, kSequenceMemories - 1, number);
  if (error != ScpiError::None) return error;
  const auto& stored = state.sequences[static_cast<std::size_t>(number)];
  if (!stored) return ScpiError::NotFound;
  std::string text = WriteSequenceText(stored->content);
  // The text's last line feed is the reply's terminator, too.
  if (text.ends_with('\n')) text.pop_back();
  state.Reply(text);
  return ScpiError::None;
}

ScpiError Compile(InstrumentState& state, const Call& call) {
  if (!ChannelSuffix(state, call)) return ScpiError::HeaderSuffixRange;
  if (state.engine.Phase() != RunPhase::Idle) return ScpiError::StillRunning;
  if (!state.sequenceMode) return ScpiError::SettingsConflict;
  state.BeginCompile();
  return ScpiError::None;
}

ScpiError StartRun(InstrumentState& state) {
  if (state.engine.Phase() != RunPhase::Idle) return ScpiError::StillRunning;
  if (!state.sequenceMode || !state.engine.Start()) return ScpiError::SettingsConflict;
  state.StartRun();
  return ScpiError::None;
}

ScpiError Trigger(InstrumentState& state, const Call&) {
  return StartRun(state);
}

// "BRAN 7", "BRAN,7", or "BRAN" alone for the running step's event branch.
ScpiError Branch(InstrumentState& state, const Call& call, std::string_view inWord) {
  if (call.unit.arguments.size() == 1 && inWord.empty()) {
    return state.engine.EventBranch() ? ScpiError::None : ScpiError::SettingsConflict;
  }
  ScpiArgument number;
  if (inWord.empty()) {
    number = call.Argument(1);
  } else {
    const auto parsed = ParseNumber(inWord);
    if (call.unit.arguments.size() > 1) return ScpiError::ParameterNotAllowed;
    if (!parsed) return ScpiError::DataType;
    number.kind = ScpiArgument::Kind::Number;
    number.number = *parsed;
  }
  int step = 0;
  const ScpiError error = ReadInteger(number, 1, kSequenceSlots, step);
  if (error != ScpiError::None) return error;
  return state.engine.Branch(step) ? ScpiError::None : ScpiError::SettingsConflict;
}

ScpiError Execute(InstrumentState& state, const Call& call) {
  if (!ChannelSuffix(state, call)) return ScpiError::HeaderSuffixRange;
  if (call.Argument(0).kind != ScpiArgument::Kind::Word) return ScpiError::DataType;
  const std::string_view whole = call.Argument(0).raw;
  const std::size_t length = std::min(whole.find_first_of(" \t"), whole.size());
  const std::string_view word = whole.substr(0, length);
  const std::string_view behind = whole.substr(length);
  if (ScpiWordIs(word, "BRANch")) return Branch(state, call, behind);
  if (call.unit.arguments.size() > 1 || !behind.empty()) return ScpiError::ParameterNotAllowed;
  bool done = true;
  if (ScpiWordIs(word, "STARt")) return StartRun(state);
  if (ScpiWordIs(word, "STOP")) {
    state.engine.Stop(false);
  } else if (ScpiWordIs(word, "ISTop")) {
    state.engine.Stop(true);
  } else if (ScpiWordIs(word, "HOLD")) {
    done = state.engine.Hold();
  } else if (ScpiWordIs(word, "RESume")) {
    done = state.engine.Resume();
  } else {
    return ScpiError::IllegalValue;
  }
  return done ? ScpiError::None : ScpiError::SettingsConflict;
}

// ---- Waveforms ----

ScpiError StoreWaveform(InstrumentState& state, const Call& call) {
  NamedBlock sent;
  ScpiError error = ReadNamedBlock(call, 1, kWaveformNumbers, sent);
  if (error != ScpiError::None) return error;
  state.waveforms.PretendFull(state.faults.Standing(FaultKind::MemoryFull) != nullptr);
  error = state.waveforms.Store(sent.number, sent.name, sent.block);
  if (error == ScpiError::None) state.KeepBusy();
  return error;
}

ScpiError ReadWaveform(InstrumentState& state, const Call& call) {
  int number = 0;
  const ScpiError error = ReadInteger(call.Argument(0), 1, kWaveformNumbers, number);
  if (error != ScpiError::None) return error;
  const std::string block = state.waveforms.Block(number);
  if (block.empty()) return ScpiError::NotFound;
  const std::string length = std::to_string(block.size());
  state.Reply("#" + std::to_string(length.size()) + length);
  state.reply += block;
  return ScpiError::None;
}

ScpiError DeleteWaveform(InstrumentState& state, const Call& call) {
  int number = 0;
  const ScpiError error = ReadInteger(call.Argument(0), 1, kWaveformNumbers, number);
  if (error != ScpiError::None) return error;
  state.waveforms.Delete(number);
  state.KeepBusy();
  return ScpiError::None;
}

ScpiError DeleteAllWaveforms(InstrumentState& state, const Call&) {
  state.waveforms.DeleteAll();
  state.KeepBusy();
  return ScpiError::None;
}

ScpiError WaveformInformation(InstrumentState& state, const Call& call) {
  int number = 0;
  const ScpiError error = ReadInteger(call.Argument(0), 1, kWaveformNumbers, number);
  if (error != ScpiError::None) return error;
  const StoredWaveform& waveform = state.waveforms.At(number);
  const bool array = waveform.points != 0 && waveform.array;
  state.Reply(Quoted(waveform.name) + (array ? ",1," : ",0,") + std::to_string(waveform.points));
  return ScpiError::None;
}

// A query that answers one number or text of the state.
template <auto Getter>
ScpiError Answer(InstrumentState& state, const Call&) {
  state.Reply(Getter(state));
  return ScpiError::None;
}

std::string EventEnable(InstrumentState& state) {
  return std::to_string(state.status.EventEnable());
}
std::string Events(InstrumentState& state) {
  return std::to_string(state.status.TakeEvents());
}
std::string RequestEnable(InstrumentState& state) {
  return std::to_string(state.status.RequestEnable());
}
std::string StatusByte(InstrumentState& state) {
  return std::to_string(state.status.Summary(false));
}
std::string SelfTest(InstrumentState&) {
  return "0";
}
std::string NextError(InstrumentState& state) {
  return state.status.NextError();
}
std::string ErrorCount(InstrumentState& state) {
  return std::to_string(state.status.ErrorCount());
}
std::string Busy(InstrumentState& state) {
  return state.PendingMs() != 0 ? "1" : "0";
}
std::string Version(InstrumentState&) {
  return "1999.0";
}

const std::vector<Command>& Commands() {
  using P = ScpiPattern;
  static const std::vector<Command> commands{
      {P("*CLS"), false, 0, 0, ClearStatus},
      {P("*ESE"), false, 1, 1, SetEventEnable},
      {P("*ESE"), true, 0, 0, Answer<EventEnable>},
      {P("*ESR"), true, 0, 0, Answer<Events>},
      {P("*IDN"), true, 0, 0, Identify},
      {P("*OPC"), false, 0, 0, CompleteEvent},
      {P("*OPC"), true, 0, 0, CompleteQuery},
      {P("*RST"), false, 0, 0, Reset},
      {P("*SRE"), false, 1, 1, SetRequestEnable},
      {P("*SRE"), true, 0, 0, Answer<RequestEnable>},
      {P("*STB"), true, 0, 0, Answer<StatusByte>},
      {P("*TRG"), false, 0, 0, Trigger},
      {P("*TST"), true, 0, 0, Answer<SelfTest>},
      {P("*WAI"), false, 0, 0, Wait},
      {P("SYSTem:REMote"), false, 0, 0, Remote},
      {P("SYSTem:LOCal"), false, 0, 0, Remote},
      {P("SYSTem:BUSY"), true, 0, 0, Answer<Busy>},
      {P("SYSTem:ERRor[:NEXT]"), true, 0, 0, Answer<NextError>},
      {P("SYSTem:ERRor:COUNt"), true, 0, 0, Answer<ErrorCount>},
      {P("SYSTem:VERSion"), true, 0, 0, Answer<Version>},
      {P("OUTPut#[:STATe]"), false, 1, 1, SetOutput},
      {P("OUTPut#[:STATe]"), true, 0, 0, OutputQuery},
      {P("SOURce#:SEQuence:STATe"), false, 1, 1, SetSequenceMode},
      {P("SOURce#:SEQuence:STATe"), true, 0, 0, SequenceModeQuery},
      {P("SOURce#:SEQuence:CSTep"), true, 0, 0, StepQuery},
      {P("STATus:OPERation[:CH#]:CONDition"), true, 0, 0, ConditionQuery},
      {P("TRACe:SEQuence"), false, 3, 3, StoreSequence},
      {P("TRACe:SEQuence"), true, 1, 1, ReadSequence},
      {P("TRACe:SEQuence:RECord"), false, 1, 1, RecordSequence},
      {P("TRIGger#:COMPile"), false, 0, 0, Compile},
      {P("TRIGger#:SELected:EXECute"), false, 1, 2, Execute},
      {P("TRACe:DATA"), false, 3, 3, StoreWaveform},
      {P("TRACe:DATA"), true, 1, 1, ReadWaveform},
      {P("TRACe:DELete"), false, 1, 1, DeleteWaveform},
      {P("TRACe:DELete:ALL"), false, 0, 0, DeleteAllWaveforms},
      {P("TRACe:INFormation"), true, 1, 1, WaveformInformation},
  };
  return commands;
}

}  // namespace

ScpiError ExecuteUnit(InstrumentState& state, const ScpiUnit& unit, std::vector<ScpiNode>& path) {
  std::vector<ScpiNode> nodes;
  if (!unit.common && !unit.absolute) nodes = path;
  nodes.insert(nodes.end(), unit.nodes.begin(), unit.nodes.end());
  for (const Command& command : Commands()) {
    if (command.query != unit.query) continue;
    auto suffixes = command.pattern.Match(nodes);
    if (!suffixes) continue;
    if (!unit.common) path.assign(nodes.begin(), nodes.end() - 1);
    if (unit.arguments.size() < command.fewest) return ScpiError::MissingParameter;
    if (unit.arguments.size() > command.most) return ScpiError::ParameterNotAllowed;
    return command.handler(state, Call{unit, std::move(*suffixes)});
  }
  return ScpiError::UndefinedHeader;
}

}  // namespace corlune
