// The shared library with the C interfaces of all four I/O libraries: one bench of virtual instruments on the
// real clock, chosen by the environment when the library is loaded. However many of the interfaces a program
// loads it for, it is loaded once, so that all of them reach the same instruments.
//   CORLUNE_VI_INSTRUMENTS  instruments and their connectors, see virtual_bench.h; absent: one QM2220 with
//                           serial number QM000001
//   CORLUNE_VI_FAULTS       faults, see fault_plan.h; absent: none

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <thread>

#include "standins/virtual_instrument/virtual_faces.h"

namespace corlune {
namespace {

constexpr const char* kDefaultInstruments = "QM2220:QM000001";

std::uint32_t SteadyMilliseconds() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

void SleepMilliseconds(std::uint32_t milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

const char* Environment(const char* name, const char* absent) {
  const char* const value = std::getenv(name);
  return value == nullptr ? absent : value;
}

// Lives as long as the library is loaded. When the environment is malformed there are no faces, and every
// operation fails: there is no board, no device, no resource manager.
class LoadedLibrary {
 public:
  LoadedLibrary() {
    std::string error;
    try {
      if (bench_.AddFromText(Environment("CORLUNE_VI_INSTRUMENTS", kDefaultInstruments),
                             Environment("CORLUNE_VI_FAULTS", ""), &error)) {
        faces_.emplace(bench_, SleepMilliseconds);
        return;
      }
    } catch (const std::exception& problem) {
      error = problem.what();
    }
    std::fprintf(stderr, "virtual instrument: %s\n", error.c_str());
  }

 private:
  VirtualBench bench_{SteadyMilliseconds};
  std::optional<VirtualFaces> faces_;
};

LoadedLibrary loadedLibrary;

}  // namespace
}  // namespace corlune
