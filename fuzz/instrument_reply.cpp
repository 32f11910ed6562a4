// Replies of an instrument, as every query of a run and of a download reads them.
#include <memory>

#include "commands/instrument_dialogues.h"
#include "compile/waveform_transfer.h"
#include "execution/measure.h"
#include "execution/queries.h"
#include "fuzz/fuzz_input.h"

using namespace corlune;

namespace {

// Answers every query with the next piece of the input, every serial poll with its first byte.
class FuzzedInstrument : public GpFamily {
 public:
  explicit FuzzedInstrument(std::string_view& input) : input_(input) {}
  CommStatus GP_Init(const std::string&, bool) override { return CommStatus::Success; }
  CommStatus GP_End() override { return CommStatus::Success; }
  CommStatus GP_Send_Str(std::int16_t, const std::string&) override { return CommStatus::Success; }
  CommStatus GP_Receive_Str(std::int16_t, std::string& reply) override {
    const std::size_t end = input_.find('\n');
    reply = input_.substr(0, end).substr(0, kReceiveBuffer);
    input_.remove_prefix(end == std::string_view::npos ? input_.size() : end + 1);
    if (!reply.empty() && reply[0] == '\x01') return CommStatus::TimeOut;
    if (!reply.empty() && reply[0] == '\x02') return CommStatus::Error;
    return CommStatus::Success;
  }
  CommStatus GP_IFC() override { return CommStatus::Success; }
  CommStatus GP_DCL() override { return CommStatus::Success; }
  CommStatus GP_Spoll(std::int16_t, std::int16_t& statusByte) override {
    statusByte = input_.empty() ? std::int16_t{0x20} : static_cast<unsigned char>(input_.front());
    return CommStatus::Success;
  }
  CommStatus GP_Time_Out(std::int16_t) override { return CommStatus::Success; }
  CommStatus GP_MTerm(std::int16_t) override { return CommStatus::Success; }
  CommStatus GP_Send_AsciiBinary_Data(const std::string&, std::span<const std::uint8_t>, std::int16_t,
                                      std::int16_t, bool) override {
    return CommStatus::Success;
  }
  CommStatus Gp_Recv_ToFile(std::int16_t, const std::string&, std::uint32_t, std::uint32_t&) override {
    return CommStatus::Error;
  }

 private:
  std::string_view& input_;
};

// A person who always answers, a clock that jumps, displays nobody looks at.
struct QuietWorld : Prompts, TickClock, EventPump, TickSource, RunDisplay, ViewDisplay {
  PromptAnswer Message(const MessageRequest& request) override {
    return request.buttons == PromptButtons::YesNo || request.buttons == PromptButtons::YesNoCancel
               ? PromptAnswer::Yes
               : PromptAnswer::Ok;
  }
  std::optional<std::string> Input(const InputRequest&) override { return std::nullopt; }
  std::uint32_t Now() const override { return now; }
  void HandlePending() override {}
  void SleepUntil(std::uint32_t tick) override { now = tick; }
  void Enable(bool) override {}
  void RefreshControls() override {}
  void ShowModeLayout(int) override {}
  void HighlightRow(GridRow row, bool) override {
    fuzz::Require(row.value >= 1 && row.value <= MAX_STEPS, "only a step's row is highlighted");
  }
  void ScrollTo(GridRow) override {}
  void ShowTotalTime(double) override {}
  void ShowElapsedTime(std::int32_t) override {}
  void PicDisp() override {}
  void MoveShape(std::uint32_t) override {}
  void MeasureStart() override {}
  void MeasureEnd() override {}
  std::uint32_t now = 0;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input = fuzz::Text(data, size);
  QuietWorld world;
  AppState state;
  state.Online = 1;
  state.Instruments[0].InterfaceKind = InterfaceKind::UsbTmc;
  static const ModelDefinition definition = [] {
    ModelDefinition made;
    made.Commands.OutputQuery = {":OUTP1?;:OUTP2?", 0};
    made.Commands.CurrentStep = {":STEP?", 0};
    made.Commands.Status = {":COND?", 0};
    made.Commands.Stop = {":STOP", 0};
    made.Commands.ErrorQuery = ":SYST:ERR?";
    return made;
  }();
  static const auto sequence = [] {
    auto made = std::make_unique<SequenceData>();
    made->StepCount = 5;
    return made;
  }();
  static const MessageCatalogue catalogue(10000);
  std::array<std::unique_ptr<GpFamily>, 5> backends;
  backends[3] = std::make_unique<FuzzedInstrument>(input);
  GpFrontEnd gp(state, std::move(backends), nullptr);
  CommandLayer commands(state, definition, gp, world, world);
  InstrumentDialogues dialogues(commands, world, catalogue);
  const RunContext run{state, *sequence, commands, catalogue, world, world, world, world};
  Measure measure(run);
  RunQueries queries(run, measure);
  WaveformTransfer waveforms(commands, dialogues, world, catalogue);

  const int output = queries.OutputQuery(0);
  fuzz::Require(output >= -32768 && output <= 32767, "an output reply is 16 bits");
  queries.StepQuery(0);
  queries.StatusQuery(0);
  dialogues.QueryErrorNumber();
  static_cast<void>(dialogues.PrepareSequenceMode());
  ArbFileEntry entry;
  const ArbFileEntry before = entry;
  if (!waveforms.QueryArbInfo(entry, 1)) fuzz::Require(entry == before, "a bad reply leaves the entry alone");
  static_cast<void>(dialogues.WaitCompileDone());
  return 0;
}
