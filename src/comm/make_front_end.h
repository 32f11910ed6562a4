// Builds the communication family of the program: the front end with all five back-ends.
#pragma once

#include <memory>
#include <string>

#include "comm/gp_front_end.h"
#include "comm/io_libraries.h"
#include "core/app_state.h"
#include "core/ports.h"

namespace corlune {

struct CommOptions {
  std::string programFolder;  // libraries are searched here first
  LibraryChoice visa;
  LibraryChoice gpib;
  LibraryChoice usb488;
  LibraryChoice ieee32m;
  bool simulated = false;  // every kind goes to the simulated interface
  // Its response file where the options name none; may be empty, and may change before the next opening.
  std::shared_ptr<const std::string> simulatedResponses = std::make_shared<std::string>();
};

// All references must outlive the front end. Relative file names of the GP_Init options start at
// `state.AppFolder`.
std::unique_ptr<GpFrontEnd> MakeGpFrontEnd(AppState& state, const CommOptions& options, Prompts& prompts,
                                           EndProgram& endProgram, const TickClock& clock);

}  // namespace corlune
