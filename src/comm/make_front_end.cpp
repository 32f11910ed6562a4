#include "comm/make_front_end.h"

#include <array>
#include <cstddef>
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
  auto usbTmc = std::make_unique<UsbTmcMdl>(services, VisaLoader(options.visa, folder));
  InstrumentSearch* search = usbTmc.get();

  std::array<std::unique_ptr<GpFamily>, 5> backends;
  const auto place = [&](InterfaceKind kind, std::unique_ptr<GpFamily> backend) {
    backends[static_cast<std::size_t>(kind)] = std::move(backend);
  };
  place(InterfaceKind::NiGpib, std::make_unique<NiGpibMdl>(services, Ni488Loader(options.gpib, folder)));
  place(InterfaceKind::KiGpib,
        std::make_unique<Ieee32mMdl>(services, Ieee32mLoader(options.ieee32m, folder)));
  place(InterfaceKind::Usb488, std::make_unique<Usb488Mdl>(services, Usb488Loader(options.usb488, folder)));
  place(InterfaceKind::UsbTmc, std::move(usbTmc));
  place(InterfaceKind::Simulated, std::make_unique<SimulatedMdl>(services, options.simulatedResponses));

  auto frontEnd =
      std::make_unique<GpFrontEnd>(state, std::move(backends), options.simulated ? nullptr : search);
  if (options.simulated) frontEnd->RouteAllTo(InterfaceKind::Simulated);
  return frontEnd;
}

}  // namespace corlune
