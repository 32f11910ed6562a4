// What an editing operation did.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "core/ports.h"
#include "core/text_id.h"

namespace corlune {

// Shown with an OK button under the application title.
struct EditMessage {
  TextId Id{};
  std::string Text;  // filled in, in the chosen language
  PromptIcon Icon = PromptIcon::Exclamation;
  bool operator==(const EditMessage&) const = default;
};

struct EditOutcome {
  // False: the entry was refused and nothing changed; the editor stays open (EditCancel). A message is given
  // unless the person was already asked.
  bool Accepted = true;
  std::optional<EditMessage> Message;
  bool Changed = false;  // the sequence changed (also set for Undo and Redo)
  // Step rows (1-based, both included) whose cells may have changed in the step grids; none: First > Last.
  int FirstRow = 1;
  int LastRow = 0;
  bool CountChanged = false;      // rows were added or removed
  bool RowColorsChanged = false;  // rows outside First..Last may have a new row colour
  bool WholeWindow = false;       // headers, tabs or fields may have changed: rebuild everything

  static EditOutcome Refused(EditMessage message) {
    EditOutcome outcome;
    outcome.Accepted = false;
    outcome.Message = std::move(message);
    return outcome;
  }
};

}  // namespace corlune
