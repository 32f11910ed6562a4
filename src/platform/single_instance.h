// One running program per application folder, and the wire between a second start and the first.
#pragma once

#include <memory>
#include <optional>
#include <string>

namespace corlune {

// The claim to an application folder. It ends with the object and with the process, however that ends.
class SingleInstance {
 public:
  // Claims `folder`, which must exist. Where the system cannot tell (no lock on that file system) the claim
  // counts as the first one.
  static SingleInstance Acquire(const std::string& folder);

  SingleInstance(SingleInstance&&) noexcept;
  SingleInstance& operator=(SingleInstance&&) noexcept;
  ~SingleInstance();

  bool IsFirst() const;

  // Sends `message` (UTF-8, at most kLongestMessage bytes; empty: come to the front) to the first instance.
  // Waits up to a second for an instance that is just starting. False when it was not delivered, for
  // example because the first instance belongs to another user. Not for the first instance.
  bool Notify(const std::string& message) const;

  // For the first instance: readable when TakeMessage has something. -1 when there is no such descriptor;
  // call TakeMessage from time to time then.
  int ListenFd() const;
  // The next message of another start; nullopt when there is none. Waits at most half a second for a
  // sender that has begun.
  std::optional<std::string> TakeMessage();

  static constexpr std::size_t kLongestMessage = 65536;

 private:
  struct State;
  explicit SingleInstance(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

}  // namespace corlune
