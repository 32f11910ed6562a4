// SavingEndProgram: ending the program at once, but not at the cost of the person's work.
#pragma once

#include <functional>
#include <utility>

#include "core/ports.h"

namespace corlune {

// Saves without a question, then ends through the real port. A save that itself wants to end the program
// does not save again.
class SavingEndProgram : public EndProgram {
 public:
  SavingEndProgram(EndProgram& end, std::function<void()> save) : end_(end), save_(std::move(save)) {}
  // What EndNow does first, once.
  void Save() {
    if (const auto save = std::exchange(save_, nullptr)) save();
  }
  void EndNow(int exitCode) override {
    Save();
    ended_ = true;
    end_.EndNow(exitCode);
  }
  // True after EndNow came back, which only a test's port does: come to a quick end.
  bool Ended() const { return ended_; }

 private:
  EndProgram& end_;
  std::function<void()> save_;
  bool ended_ = false;
};

}  // namespace corlune
