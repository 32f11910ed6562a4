// The shared library: virtual instruments on the real clock, chosen by the environment when it is loaded.
//   CORLUNE_VI_INSTRUMENTS  "QM2220:QM000001,QM2210:QM000002"; absent: one QM2220 with serial QM000001
//   CORLUNE_VI_FAULTS       faults, see fault_plan.h; absent: none

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <thread>

#include "standins/virtual_instrument/visa_face.h"

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

// Lives as long as the library is loaded. When the environment is malformed no face is set, and every
// operation fails with VI_ERROR_SYSTEM_ERROR.
class LoadedLibrary {
 public:
  LoadedLibrary() {
    std::string error;
    try {
      if (bench_.AddFromText(Environment("CORLUNE_VI_INSTRUMENTS", kDefaultInstruments),
                             Environment("CORLUNE_VI_FAULTS", ""), &error)) {
        SetVisaFace(&face_);
        return;
      }
    } catch (const std::exception& problem) {
      error = problem.what();
    }
    std::fprintf(stderr, "virtual instrument: %s\n", error.c_str());
  }
  ~LoadedLibrary() { SetVisaFace(nullptr); }
  LoadedLibrary(const LoadedLibrary&) = delete;
  LoadedLibrary& operator=(const LoadedLibrary&) = delete;

 private:
  VirtualBench bench_{SteadyMilliseconds};
  VisaFace face_{bench_, SleepMilliseconds};
};

LoadedLibrary loadedLibrary;

}  // namespace
}  // namespace corlune
