// Requests to end the program that come from outside: the signals TERM, HUP and INT, or the end of the
// console that it was started from. What the system sends at a logout is the toolkit's part.
#pragma once

#include <memory>

namespace corlune {

// As long as the object lives such a request is only noted and does not end the process. One at a time.
class EndRequests {
 public:
  EndRequests();
  ~EndRequests();
  EndRequests(const EndRequests&) = delete;
  EndRequests& operator=(const EndRequests&) = delete;

  // Becomes and stays readable with the first request. -1 when there is no such descriptor; ask Came from
  // time to time then.
  int Fd() const;
  bool Came() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace corlune
