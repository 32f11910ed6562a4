#ifndef _WIN32

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include "platform/end_requests.h"
#include "platform/file_descriptor.h"

namespace corlune {
namespace {

constexpr std::array<int, 3> kSignals{SIGTERM, SIGHUP, SIGINT};

// All that the handler may touch.
volatile sig_atomic_t came = 0;
volatile sig_atomic_t wakeFd = -1;

void Note(int) {
  const int kept = errno;
  came = 1;
  const char byte = 1;
  [[maybe_unused]] const auto written = write(wakeFd, &byte, 1);
  errno = kept;
}

}  // namespace

struct EndRequests::State {
  FileDescriptor read;
  FileDescriptor write;
  std::array<struct sigaction, kSignals.size()> before{};
};

EndRequests::EndRequests() : state_(std::make_unique<State>()) {
  int ends[2];
  if (pipe2(ends, O_NONBLOCK | O_CLOEXEC) == 0) {
    state_->read = FileDescriptor(ends[0]);
    state_->write = FileDescriptor(ends[1]);
  }
  came = 0;
  wakeFd = state_->write.Get();
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    struct sigaction action {};
    action.sa_handler = Note;
    action.sa_flags = SA_RESTART;  // libraries of instruments need not expect interrupted calls
    sigaction(kSignals[i], nullptr, &state_->before[i]);
    // Started so that it survives its terminal, or in the background of a script.
    if (state_->before[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
  }
}

EndRequests::~EndRequests() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &state_->before[i], nullptr);
  wakeFd = -1;
}

int EndRequests::Fd() const {
  return state_->read.Get();
}

bool EndRequests::Came() const {
  return came != 0;
}

}  // namespace corlune

#endif
