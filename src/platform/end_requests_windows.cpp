#ifdef _WIN32

#include <atomic>
#include <windows.h>

#include "platform/end_requests.h"

namespace corlune {
namespace {

std::atomic<bool> came = false;

// On a thread of the system's own.
BOOL WINAPI Note(DWORD event) {
  came = true;
  // The system ends the process when this returns from any of the others; the program ends before that.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(INFINITE);
  return TRUE;
}

}  // namespace

struct EndRequests::State {};

EndRequests::EndRequests() {
  came = false;
  SetConsoleCtrlHandler(&Note, TRUE);
}

EndRequests::~EndRequests() {
  SetConsoleCtrlHandler(&Note, FALSE);
}

int EndRequests::Fd() const {
  return -1;
}

bool EndRequests::Came() const {
  return came;
}

}  // namespace corlune

#endif
