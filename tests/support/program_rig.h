// The program below its windows with virtual instruments: real session, real USBTMC back-end, real sequence
// compiler, a folder of its own. Time passes only when a wait or a test lets it; it wraps in the middle of
// most scenarios.
#pragma once

#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "comm/ieee32m_backend.h"
#include "comm/ni_gpib_backend.h"
#include "comm/simulated_backend.h"
#include "comm/usb488_backend.h"
#include "comm/usbtmc_backend.h"
#include "session/session.h"
#include "support/bench_tables.h"
#include "support/fake_ports.h"
#include "support/program_doubles.h"
#include "support/temp_folder.h"
#include "support/visa_recorder.h"

namespace corlune::testing {

inline constexpr const char* kSaysEnd = "information: The sequence execution was ended.";
inline constexpr const char* kAsksOutput =
    "information: Output switch truns to 'on' and sequence will start. Is it OK?";
inline constexpr const char* kAsksToGoOn =
    "question: An instrument may still be running. Go on without stopping it?";
inline constexpr const char* kAsksName = "input: Seq0";
inline std::string CommunicationError(int instrument, const char* icon) {
  return std::string(icon) + ": The communication error to the instrument " + std::to_string(instrument) +
         " occurred.";
}
inline std::string OutputTurnedOff(int instrument) {
  return "information: The output of the instrument " + std::to_string(instrument) +
         " was turned off. The sequence execution is discontinued.";
}

struct ProgramOptions {
  bool communicationLog = false;  // "comm.log" in the folder
  bool writeSettings = false;     // as the window program does
  std::string responses = {};     // response file: every instrument is simulated
  bool allInterfaces = false;     // GPIB and USB488 libraries beside VISA
  bool queriesWait = false;       // 20 ms before the reply is read, so that something can come in between
  // The person agrees to everything, and the test says afterwards what was asked; otherwise every answer has
  // to be queued.
  bool agrees = true;
};

class ProgramRig {
 public:
  // `instruments`: "QM2220:QM000001,...", as they are plugged in.
  explicit ProgramRig(const std::string& instruments = "QM2220:QM000001", ProgramOptions programOptions = {})
      : definition(TempFolder::Read(std::string(CORLUNE_DATA) + "/Corlune_Std.ini")),
        options_(std::move(programOptions)) {
    if (!instruments.empty()) Plug(instruments);
    if (options_.communicationLog) Replace(definition, "MYADRS=0\"", "MYADRS=0,LOG_FILE=comm.log\"");
    if (options_.queriesWait) {
      for (const std::string query : {":CST?,", ":COND?,", ":OUTP2?,"})
        Replace(definition, query + "0", query + "20");
    }
    folder.Write("Corlune_Std.ini", definition);
    if (!options_.responses.empty()) folder.Write("responses.ini", options_.responses);
    options.appFolder = folder.Path();
    options.english = true;
    options.writeSettings = options_.writeSettings;
    options.simulated = !options_.responses.empty();
    if (options_.agrees) prompts.AgreeToAll(pump);
    Restart();
  }
  ~ProgramRig() {
    session.reset();
    EXPECT_EQ(faces.visa.OpenObjects(), 0u) << "sessions are left open";
    if (options_.agrees) {
      EXPECT_THAT(prompts.said, ::testing::IsEmpty()) << "messages that the scenario did not expect";
    }
  }
  ProgramRig(const ProgramRig&) = delete;
  ProgramRig& operator=(const ProgramRig&) = delete;

  // A new process over the same folder and bench.
  void Restart() { OpenSession(runDisplay, view, display); }
  void OpenSession(RunDisplay& run, ViewDisplay& sequenceView, SessionDisplay& shown) {
    session.reset();
    Forget();
    const SessionPorts ports{prompts, clock, pump, timer, progress, run, sequenceView, end, files, shown};
    session = std::make_unique<Session>(ports, options, [this](AppState& state, EndProgram& endProgram) {
      sessionEnd = &endProgram;
      auto linked = std::make_unique<LinkedCompiler>();
      compiler = linked.get();
      return OutsideParts{MakeFrontEnd(state, endProgram), std::move(linked)};
    });
  }
  static void Replace(std::string& text, const std::string& from, const std::string& to) {
    std::size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos);
    for (; at != std::string::npos; at = text.find(from, at + to.size())) text.replace(at, from.size(), to);
  }

  // ---- The person ----

  // Starts with an empty sequence, or with a shipped example, and connects to the first instrument.
  void Connect(const std::string& example = {}) {
    const std::string path = std::string(CORLUNE_DATA) + "/examples/" + example;
    ASSERT_TRUE(example.empty() ? session->StartUpWithoutFile() : session->StartUpFromFile(path))
        << session->LoadProblem();
    ASSERT_EQ(session->Connect(std::nullopt), ConnectResult::Connected);
    Forget();
  }
  // Sets the program up for all instruments of the bench, instrument 1 first.
  void ConnectAll() {
    Connect();
    SystemSettings setup = SettingsOf(session->State());
    setup.InstrumentCount = static_cast<std::int16_t>(bench.Count());
    for (std::size_t i = 0; i < bench.Count(); ++i) {
      setup.Instruments[i] = session->State().Instruments[0];
      setup.Instruments[i].SerialNo = bench.At(i).Identity().serial;
    }
    ASSERT_TRUE(session->ApplySetup(setup));
    ASSERT_EQ(session->State().Online, 1);
    Forget();
  }
  // Steps of so many seconds each; the last one stops.
  void UseSteps(std::initializer_list<double> seconds) {
    SequenceData& sequence = session->Sequence();
    std::size_t slot = 0;
    for (const double time : seconds) sequence.Steps[slot++].StepTime = time;
    sequence.StepCount = static_cast<std::int16_t>(slot);
    for (std::size_t i = 0; i < slot; ++i) sequence.Steps[i].StepTerm = i + 1 == slot ? 1 : 0;
  }
  // The set-up dialog's OK without a change: closes and opens everything.
  bool Reconnect() {
    return session->ApplySetup(SettingsOf(session->State())) && session->State().Online == 1;
  }
  bool Download() { return session->Control().SetOperationMode(OperationMode::Execution); }
  void Press(Run command) { session->Control().MenuItem(static_cast<int>(command)); }
  // Lets time pass; the monitor's timer fires every 100 ms while it is on.
  void Advance(std::uint32_t milliseconds) {
    for (const std::uint32_t until = clock.Now() + milliseconds; !TickReached(clock.Now(), until);) {
      clock.Advance(std::min<std::uint32_t>(100, until - clock.Now()));
      if (timer.enabled) session->Monitor().Tick();
    }
  }
  // Until nothing runs any more, a minute at most.
  void RunToEnd() {
    for (int tick = 0; tick < 600 && session->State().RunState == RunState::Running; ++tick) Advance(100);
    EXPECT_EQ(session->State().RunState, RunState::Stopped);
  }
  // Downloads and starts; the messages on the way are as usual.
  void DownloadAndStart() {
    ASSERT_TRUE(Download());
    ExpectPrompts({kAsksName});
    Press(Run::Start);
    ExpectPrompts({kAsksOutput});
    ASSERT_EQ(session->State().RunState, RunState::Running);
    Forget();
  }

  // ---- The bench ----

  void Plug(const std::string& instruments) {
    std::string problem;
    EXPECT_TRUE(bench.AddFromText(instruments, "", &problem)) << problem;
  }

  // Faults of the instrument, see docs/virtual-instrument.md; exchanges count from now.
  void Faults(const std::string& text, std::size_t instrument = 0) {
    std::string problem;
    const auto faults = ParseFaults(text, bench.At(instrument).Identity().serial, &problem);
    ASSERT_TRUE(faults) << problem;
    bench.At(instrument).SetFaults(FaultPlan(*faults));
  }
  // Back on the bus, without faults. The bus reset empties the buffers of its interface.
  void Replug(std::size_t instrument = 0) {
    Faults("", instrument);
    bench.At(instrument).DeviceClear();
  }
  VirtualInstrument& Instrument(int number = 1) { return bench.At(static_cast<std::size_t>(number - 1)); }

  // ---- What came of it ----

  // Everything that was said since the last look, in order.
  void ExpectPrompts(const EventList& expected) { EXPECT_EQ(std::exchange(prompts.said, {}), expected); }
  // The messages (writes) of all instruments since the last look; replies left out.
  EventList TakeSent() {
    EventList sent;
    for (const std::string& line : std::exchange(recorder.exchanges, {})) {
      if (line.find(" < ") != std::string::npos) sent.push_back(line);
    }
    return sent;
  }
  void ExpectSent(const EventList& expected) { EXPECT_EQ(TakeSent(), expected); }
  // How many exchanges begin like this.
  int CountSent(const std::string& beginning) const {
    return static_cast<int>(
        std::count_if(recorder.exchanges.begin(), recorder.exchanges.end(),
                      [&](const std::string& line) { return line.starts_with(beginning); }));
  }
  void Forget() {
    recorder.exchanges.clear();
    recorder.searches.clear();
    recorder.connections.clear();
  }
  // Nothing is under way, no control is left off, no timer on.
  void ExpectAtRest(OperationMode mode, bool outputOn) {
    const AppState& state = session->State();
    EXPECT_EQ(state.OperationMode, mode);
    EXPECT_EQ(state.RunState, RunState::Stopped);
    EXPECT_EQ(state.OutputOn, outputOn);
    EXPECT_EQ(state.PendingRequest, PendingRequest::None);
    EXPECT_FALSE(state.BranchRequested);
    EXPECT_TRUE(session->Idle());
    EXPECT_FALSE(timer.enabled);
    EXPECT_EQ(progress.depth, 0);
  }
  std::string Log() const { return TempFolder::Read(folder.File("comm.log")); }

  TempFolder folder;
  std::string definition;  // content of the model definition file at the beginning
  FakeClock clock{0xFFFFD000};
  FakePump pump{clock};
  EventList events;  // of prompts and displays, in order
  ScriptedPrompts prompts{&events};
  RecordedTickSource timer{&events};
  RecordedProgress progress{&events};
  RecordedDisplay runDisplay{&events};
  RecordedView view{&events};
  RecordedEnd end;
  ScriptedFiles files;
  RecordedSessionDisplay display;
  VirtualBench bench{[this] { return clock.Now(); }};
  VirtualFaces faces{bench, [this](std::uint32_t milliseconds) { clock.Advance(milliseconds); }};
  BenchTables tables;
  VisaRecorder recorder{bench};
  bool library = true;  // VISA is there
  SessionOptions options;
  std::shared_ptr<std::string> responses = std::make_shared<std::string>(folder.File("responses.ini"));
  EndProgram* sessionEnd = nullptr;
  LinkedCompiler* compiler = nullptr;
  std::unique_ptr<Session> session;

 private:
  std::unique_ptr<GpFrontEnd> MakeFrontEnd(AppState& state, EndProgram& endProgram) {
    const BackendServices services{state, prompts, endProgram, clock};
    auto usbTmc = std::make_unique<UsbTmcMdl>(
        services, [this](std::string*) { return library ? &recorder.Table() : nullptr; });
    InstrumentSearch* search = usbTmc.get();
    const LibraryChoice none{true, {}};
    const auto told = [](const char* title) { return std::make_shared<LibraryState>(LibraryState{title}); };
    const bool all = options_.allInterfaces;
    std::array<std::unique_ptr<GpFamily>, 5> backends;
    backends[0] = std::make_unique<NiGpibMdl>(
        services, all ? LoaderOf(tables.ni488) : Ni488Loader(none, {}, told("NI-488.2")));
    backends[1] = std::make_unique<Ieee32mMdl>(
        services, all ? LoaderOf(tables.ieee32m) : Ieee32mLoader(none, {}, told("IEEE_32M")));
    backends[2] = std::make_unique<Usb488Mdl>(
        services, all ? LoaderOf(tables.usb488) : Usb488Loader(none, {}, told("USB488")));
    backends[3] = std::move(usbTmc);
    backends[4] = std::make_unique<SimulatedMdl>(services, responses);
    auto frontEnd =
        std::make_unique<GpFrontEnd>(state, std::move(backends), options.simulated ? nullptr : search);
    if (options.simulated) frontEnd->RouteAllTo(InterfaceKind::Simulated);
    return frontEnd;
  }

  ProgramOptions options_;
};

}  // namespace corlune::testing
