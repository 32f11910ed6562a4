#include "comm/make_front_end.h"

#include <array>
#include <cstddef>
#include <memory>
#include <utility>

#include "comm/ieee32m_backend.h"
#include "comm/ni_gpib_backend.h"
#include "comm/simulated_backend.h"
#include "comm/usb488_backend.h"
#include "comm/usbtmc_backend.h"

namespace corlune {

std::unique_ptr<GpFrontEnd> MakeGpFrontEnd(AppState& state, const CommOptions& options, Prompts& prompts,
                                           EndProgram& endProgram, const TickClock& clock) {
  const BackendServices services{state, prompts, endProgram, clock};
  const std::string& folder = options.programFolder;
  std::vector<GpFrontEnd::Library> libraries;
  // The front end tells of each library and can try it without an instrument.
  const auto listed = [&libraries](auto makeLoader, const char* title, const LibraryChoice& choice,
                                   const std::string& where) {
    const auto known = std::make_shared<LibraryState>(LibraryState{title});
    auto loader = makeLoader(choice, where, known);
    libraries.push_back({known, [loader] {
                           std::string problem;
                           loader(&problem);
                         }});
    return loader;
  };
  auto usbTmc = std::make_unique<UsbTmcMdl>(services, listed(VisaLoader, "VISA", options.visa, folder));
  InstrumentSearch* search = usbTmc.get();

  std::array<std::unique_ptr<GpFamily>, 5> backends;
  const auto place = [&](InterfaceKind kind, std::unique_ptr<GpFamily> backend) {
    backends[static_cast<std::size_t>(kind)] = std::move(backend);
  };
  place(InterfaceKind::NiGpib,
        std::make_unique<NiGpibMdl>(services, listed(Ni488Loader, "NI-488.2", options.gpib, folder)));
  place(InterfaceKind::KiGpib,
        std::make_unique<Ieee32mMdl>(services, listed(Ieee32mLoader, "IEEE_32M", options.ieee32m, folder)));
  place(InterfaceKind::Usb488,
        std::make_unique<Usb488Mdl>(services, listed(Usb488Loader, "USB488", options.usb488, folder)));
  place(InterfaceKind::UsbTmc, std::move(usbTmc));
  place(InterfaceKind::Simulated, std::make_unique<SimulatedMdl>(services, options.simulatedResponses));

  auto frontEnd =
      std::make_unique<GpFrontEnd>(state, std::move(backends), options.simulated ? nullptr : search);
  frontEnd->SetLibraries(std::move(libraries));
  if (options.simulated) frontEnd->RouteAllTo(InterfaceKind::Simulated);
  return frontEnd;
}

}  // namespace corlune
