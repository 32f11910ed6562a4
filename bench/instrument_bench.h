// The program below its windows, connected to a virtual instrument in the same process on a clock that only
// waits move; no communication log.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "bench/samples.h"
#include "comm/make_front_end.h"
#include "comm/simulated_backend.h"
#include "comm/usbtmc_backend.h"
#include "session/session.h"
#include "standins/virtual_instrument/chosen_face.h"
#include "standins/virtual_instrument/visa_face.h"
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
  InstrumentBench() {
    std::string problem;
    if (!bench.AddFromText("QM2220:QM000001", "", &problem)) Fail(problem);
    SetFace(&face);
    folder.Write("Corlune_Std.ini", testing::TempFolder::Read(CORLUNE_DATA "/Corlune_Std.ini"));
    SessionOptions options;
    options.appFolder = folder.Path();
    options.english = true;
    options.writeSettings = false;
    const SessionPorts ports{prompts, clock, pump, timer, progress,
                             display, view,  end,  files, sessionDisplay};
    session = std::make_unique<Session>(ports, options, [this](AppState& state, EndProgram& endProgram) {
      return OutsideParts{MakeFrontEnd(state, endProgram), std::make_unique<testing::LinkedCompiler>()};
    });
    if (!session->StartUpWithoutFile()) Fail(session->LoadProblem());
    if (session->Connect(std::nullopt) != ConnectResult::Connected) Fail("no connection");
  }
  ~InstrumentBench() {
    session.reset();
    SetFace<VisaFace>(nullptr);
  }
  InstrumentBench(const InstrumentBench&) = delete;
  InstrumentBench& operator=(const InstrumentBench&) = delete;

  // The library as it is bound, in this process.
  static const VisaTable& Visa() {
    static const VisaTable table{&viOpenDefaultRM, &viFindRsrc,     &viFindNext, &viOpen,
                                 &viClose,         &viSetAttribute, &viRead,     &viWrite,
                                 &viReadToFile,    &viReadSTB,      &viClear,    &viGpibControlREN};
    return table;
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
  VisaFace face{bench, [this](std::uint32_t milliseconds) { clock.Advance(milliseconds); }};
  std::unique_ptr<Session> session;

 private:
  std::unique_ptr<GpFrontEnd> MakeFrontEnd(AppState& state, EndProgram& endProgram) {
    const BackendServices services{state, prompts, endProgram, clock};
    auto usbTmc = std::make_unique<UsbTmcMdl>(services, [](std::string*) { return &Visa(); });
    InstrumentSearch* search = usbTmc.get();
    std::array<std::unique_ptr<GpFamily>, 5> backends;
    backends[static_cast<std::size_t>(InterfaceKind::UsbTmc)] = std::move(usbTmc);
    return std::make_unique<GpFrontEnd>(state, std::move(backends), search);
  }
};

}  // namespace corlune::bench
