// What the program's own layers cost in an exchange with an instrument: a query, a tick of the run monitor, a
// block. All pass through the command layer, the USBTMC back-end and the virtual instrument's VISA face.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstring>
#include <string>
#include <vector>

#include "bench/instrument_bench.h"

namespace corlune::bench {
namespace {

constexpr const char* kQuery = ":SYST:ERR?";
constexpr const char* kReply = "0,\"No error\"";

void Query(benchmark::State& state, InstrumentBench& bench) {
  CommandLayer& commands = bench.session->Commands();
  std::string reply;
  for (auto _ : state) {
    const std::int32_t address = commands.SelectInstrument(0);
    if (Failed(commands.SendCommand(address, kQuery, 0)) || Failed(commands.ReceiveReply(address, reply))) {
      Fail("the query failed");
    }
  }
  if (reply != kReply) Fail("unexpected reply: " + reply);
}
void query(benchmark::State& state) {
  InstrumentBench bench;
  Query(state, bench);
}
BENCHMARK(query);

// The same over the other kinds of interface.
template <InterfaceKind kKind, std::int16_t kAddress>
void query_by(benchmark::State& state) {
  InstrumentBench bench("QM2220:QM000001:usbtmc+gpib=5+usb488=3");
  bench.SetUp({{kKind, kAddress}});
  Query(state, bench);
  if (bench.session->State().CurrentInterface != kKind) Fail("another interface");
}
BENCHMARK(query_by<InterfaceKind::NiGpib, 5>)->Name("query_ni_gpib");
BENCHMARK(query_by<InterfaceKind::KiGpib, 5>)->Name("query_ieee32m");
BENCHMARK(query_by<InterfaceKind::Usb488, 3>)->Name("query_usb488");

void query_simulated(benchmark::State& state) {
  InstrumentBench bench("QM2220:QM000001", true);
  Query(state, bench);
  if (bench.session->State().CurrentInterface != InterfaceKind::Simulated) Fail("another interface");
}
BENCHMARK(query_simulated);

// The same exchange by the library's own calls.
void query_reference(benchmark::State& state) {
  InstrumentBench bench;
  bench.session->Disconnect();
  ViSession manager = 0;
  ViSession device = 0;
  viOpenDefaultRM(&manager);
  const std::string name = VirtualBench::ResourceName(bench.bench.At(0).Identity());
  if (viOpen(manager, name.c_str(), VI_NO_LOCK, 0, &device) < VI_SUCCESS) Fail("no device");
  const std::string message = std::string(kQuery) + "\n";
  std::vector<ViByte> buffer(kReceiveBuffer);
  ViUInt32 count = 0;
  for (auto _ : state) {
    if (viWrite(device, reinterpret_cast<ViConstBuf>(message.data()), static_cast<ViUInt32>(message.size()),
                &count) < VI_SUCCESS ||
        viRead(device, buffer.data(), static_cast<ViUInt32>(buffer.size()), &count) < VI_SUCCESS) {
      Fail("the exchange failed");
    }
    benchmark::DoNotOptimize(buffer.data());
  }
  if (count != std::strlen(kReply) + 1) Fail("unexpected length of the reply");
  viClose(manager);
}
BENCHMARK(query_reference);

// A run that never ends: two steps, the second jumps back to the first without limit.
void StartEndlessRun(InstrumentBench& bench) {
  Session& session = *bench.session;
  SequenceData& sequence = session.Sequence();
  sequence.StepCount = 2;
  for (int slot = 0; slot < 2; ++slot) {
    StepRow& row = sequence.Steps[static_cast<std::size_t>(slot)];
    row.StepTime = 1;
    row.StepTerm = 0;
  }
  sequence.Steps[1].JumpOn = 1;
  sequence.Steps[1].JumpTo = 1;
  sequence.Steps[1].JumpCountOn = 0;
  if (!session.Control().SetOperationMode(OperationMode::Execution)) Fail("the download failed");
  session.Control().MenuItem(static_cast<int>(Run::Start));
  if (session.State().RunState != RunState::Running) Fail("the run does not start");
}

// Each tick polls output, step and status.
void monitor_tick(benchmark::State& state) {
  InstrumentBench bench;
  StartEndlessRun(bench);
  for (auto _ : state) {
    bench.clock.Advance(101);
    bench.session->Monitor().Tick();
  }
  if (bench.session->State().RunState != RunState::Running || bench.session->State().CurrentStep > 1) {
    Fail("the run was not followed");
  }
}
BENCHMARK(monitor_tick);

// Start and stop of five instruments of four kinds; the waits between are the clock's, who asks for them.
void five_instruments(benchmark::State& state) {
  InstrumentBench bench(
      "QM2220:QM000001:usbtmc,QM2220:QM000002:usbtmc,QM2220:QM000003:gpib=5,QM2220:QM000004:gpib=6,"
      "QM2220:QM000005:usb488=3");
  bench.SetUp({{InterfaceKind::UsbTmc, 0},
               {InterfaceKind::UsbTmc, 0},
               {InterfaceKind::NiGpib, 5},
               {InterfaceKind::NiGpib, 6},
               {InterfaceKind::Usb488, 3}});
  StartEndlessRun(bench);
  Session& session = *bench.session;
  const auto end = [&] {
    session.Control().MenuItem(static_cast<int>(Run::Stop));
    bench.clock.Advance(101);
    session.Monitor().Tick();
    if (session.State().RunState != RunState::Stopped) Fail("the run does not stop");
  };
  end();
  const std::uint32_t before = bench.clock.Now();
  for (auto _ : state) {
    session.Control().MenuItem(static_cast<int>(Run::Start));
    if (session.State().RunState != RunState::Running) Fail("the run does not start");
    end();
  }
  state.counters["waited_us"] =
      benchmark::Counter(1000.0 * (bench.clock.Now() - before), benchmark::Counter::kAvgIterations);
}
BENCHMARK(five_instruments);

// A waveform of the largest size, header and data.
void block_to_instrument(benchmark::State& state) {
  InstrumentBench bench;
  const std::size_t points = kMaxWaveformPoints;
  std::vector<std::uint8_t> block(8 + 2 * points);
  block[5] = static_cast<std::uint8_t>(points >> 16);
  for (std::size_t i = 8; i < block.size(); ++i) block[i] = static_cast<std::uint8_t>(i * 37);
  for (std::size_t i = 8; i < block.size(); i += 2) block[i] &= 0x7F;
  const std::string header = ":TRACe:DATA 1,\"Arb1\",#7" + std::to_string(block.size());
  CommandLayer& commands = bench.session->Commands();
  for (auto _ : state) {
    const std::int32_t address = commands.SelectInstrument(0);
    if (Failed(commands.SendBlockData(header, block, address))) Fail("the block was not sent");
  }
  if (bench.bench.At(0).WaveformPoints() != points) Fail("the block did not arrive");
  if (bench.session->Dialogues().QueryErrorNumber() != 0) Fail("the instrument refused the block");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(block.size()));
}
BENCHMARK(block_to_instrument);

void block_to_instrument_reference(benchmark::State& state) {
  const std::vector<std::uint8_t> from(8 + 2 * std::size_t{kMaxWaveformPoints}, 1);
  std::vector<std::uint8_t> to(from.size());
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), from.size());
    benchmark::DoNotOptimize(to.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(from.size()));
}
BENCHMARK(block_to_instrument_reference);

}  // namespace
}  // namespace corlune::bench

BENCHMARK_MAIN();
