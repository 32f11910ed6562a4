// FlagGuard: a flag that is up for as long as the object lives.
#pragma once

namespace corlune {

class FlagGuard {
 public:
  explicit FlagGuard(bool& flag) : flag_(flag) { flag_ = true; }
  ~FlagGuard() { flag_ = false; }
  FlagGuard(const FlagGuard&) = delete;
  FlagGuard& operator=(const FlagGuard&) = delete;

 private:
  bool& flag_;
};

}  // namespace corlune
