// The program below its windows, connected to a virtual instrument in the same process on a clock that only
// waits move; no communication log.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bench/samples.h"
#include "comm/ieee32m_backend.h"
#include "comm/make_front_end.h"
#include "comm/ni_gpib_backend.h"
#include "comm/simulated_backend.h"
#include "comm/usb488_backend.h"
#include "comm/usbtmc_backend.h"
#include "session/session.h"
#include "standins/virtual_instrument/virtual_faces.h"
#include "support/bench_tables.h"
#include "support/fake_ports.h"
#include "support/program_doubles.h"
#include "support/temp_folder.h"

namespace corlune::bench {

// Agrees to everything.
class AgreeingPrompts : public Prompts {
 public:
  PromptAnswer Message(const MessageRequest& request) override {
    if (request.icon == PromptIcon::Exclamation || request.icon == PromptIcon::Critical) Fail(request.text);
    const bool yesNo =
        request.buttons == PromptButtons::YesNo || request.buttons == PromptButtons::YesNoCancel;
    return yesNo ? PromptAnswer::Yes : PromptAnswer::Ok;
  }
  std::optional<std::string> Input(const InputRequest& request) override { return request.defaultText; }
};

class InstrumentBench {
 public:
  // `instruments`: as in CORLUNE_VI_INSTRUMENTS. `simulated`: replies come from a file.
  explicit InstrumentBench(const std::string& instruments = "QM2220:QM000001", bool simulated = false)
      : simulated_(simulated) {
    std::string problem;
    if (!bench.AddFromText(instruments, "", &problem)) Fail(problem);
    folder.Write("replies.ini", "[ADRS0]\n*IDN?=TAVRIN,QM2220,QM000001,1.00\n:SYST:ERR?=0,\"No error\"\n");
    folder.Write("Corlune_Std.ini", testing::TempFolder::Read(CORLUNE_DATA "/Corlune_Std.ini"));
    SessionOptions options;
    options.appFolder = folder.Path();
    options.english = true;
    options.writeSettings = false;
    options.simulated = simulated;
    const SessionPorts ports{prompts, clock, pump, timer, progress,
                             display, view,  end,  files, sessionDisplay};
    session = std::make_unique<Session>(ports, options, [this](AppState& state, EndProgram& endProgram) {
      return OutsideParts{MakeFrontEnd(state, endProgram), std::make_unique<testing::LinkedCompiler>()};
    });
    if (!session->StartUpWithoutFile()) Fail(session->LoadProblem());
    if (session->Connect(std::nullopt) != ConnectResult::Connected) Fail("no connection");
  }
  ~InstrumentBench() { session.reset(); }
  InstrumentBench(const InstrumentBench&) = delete;
  InstrumentBench& operator=(const InstrumentBench&) = delete;

  // All instruments of the bench, over the interfaces and at the addresses (of GPIB and USB488) that are
  // named.
  struct Place {
    InterfaceKind Kind;
    std::int16_t Address;
  };
  void SetUp(const std::vector<Place>& places) {
    SystemSettings setup = SettingsOf(session->State());
    setup.InstrumentCount = static_cast<std::int16_t>(places.size());
    for (std::size_t i = 0; i < places.size(); ++i) {
      setup.Instruments[i] = setup.Instruments[0];
      setup.Instruments[i].Interface = IndexOf(places[i].Kind);
      setup.Instruments[i].InterfaceKind = places[i].Kind;
      setup.Instruments[i].Address = places[i].Address;
      setup.Instruments[i].SerialNo = bench.At(i).Identity().serial;
    }
    if (!session->ApplySetup(setup) || session->State().Online != 1) Fail("the set-up does not go on-line");
  }

  testing::TempFolder folder;
  testing::FakeClock clock{1000};
  testing::FakePump pump{clock};
  AgreeingPrompts prompts;
  testing::RecordedTickSource timer;
  testing::RecordedProgress progress;
  testing::RecordedDisplay display;
  testing::RecordedView view;
  testing::RecordedEnd end;
  testing::ScriptedFiles files;
  SessionDisplay sessionDisplay;
  VirtualBench bench{[this] { return clock.Now(); }};
  VirtualFaces faces{bench, [this](std::uint32_t milliseconds) { clock.Advance(milliseconds); }};
  testing::BenchTables tables;
  std::unique_ptr<Session> session;

 private:
  // In the model's list of interfaces.
  std::int16_t IndexOf(InterfaceKind kind) const {
    const auto& names = session->Definition().InterfaceOf(session->State().ModelIndex).InterfaceNames;
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (KindOfInterface(names[i]) == kind) return static_cast<std::int16_t>(i);
    }
    return 0;
  }
  std::unique_ptr<GpFrontEnd> MakeFrontEnd(AppState& state, EndProgram& endProgram) {
    const BackendServices services{state, prompts, endProgram, clock};
    auto usbTmc = std::make_unique<UsbTmcMdl>(services, testing::LoaderOf(tables.visa));
    InstrumentSearch* search = usbTmc.get();
    std::array<std::unique_ptr<GpFamily>, 5> backends;
    const auto put = [&](InterfaceKind kind, std::unique_ptr<GpFamily> backend) {
      backends[static_cast<std::size_t>(kind)] = std::move(backend);
    };
    put(InterfaceKind::NiGpib, std::make_unique<NiGpibMdl>(services, testing::LoaderOf(tables.ni488)));
    put(InterfaceKind::KiGpib, std::make_unique<Ieee32mMdl>(services, testing::LoaderOf(tables.ieee32m)));
    put(InterfaceKind::Usb488, std::make_unique<Usb488Mdl>(services, testing::LoaderOf(tables.usb488)));
    put(InterfaceKind::Simulated, std::make_unique<SimulatedMdl>(services, folder.File("replies.ini")));
    backends[static_cast<std::size_t>(InterfaceKind::UsbTmc)] = std::move(usbTmc);
    auto frontEnd = std::make_unique<GpFrontEnd>(state, std::move(backends), simulated_ ? nullptr : search);
    if (simulated_) frontEnd->RouteAllTo(InterfaceKind::Simulated);
    return frontEnd;
  }

  const bool simulated_;
};

}  // namespace corlune::bench
