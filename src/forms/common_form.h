// CommonForm: the common sequence parameters while their dialog is open. A copy is edited; nothing reaches
// the sequence before ApplyTo.
#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "editing/value_entry.h"

namespace corlune {

// One parameter that is chosen from a list: what is stored is the position in the list.
struct CommonList {
  const char* name;  // of the control
  TextId caption;
  std::vector<TextId> choices;
  std::int32_t CommonParams::*field;
};

class CommonForm {
 public:
  // A choice that is in none of the lists (a file may hold any number) becomes the first one.
  explicit CommonForm(const CommonParams& stored);

  // In the order in which they are shown.
  static const std::array<CommonList, 4>& Lists();

  const CommonParams& Edited() const { return edited_; }
  // 1..255, digits only; a refused text leaves the number as it was.
  EntryResult EnterStartStep(std::string_view text);
  void Choose(const CommonList& list, int choice) { edited_.*list.field = choice; }
  void ApplyTo(SequenceData& sequence) const { sequence.Common = edited_; }

 private:
  CommonParams edited_;
};

}  // namespace corlune
