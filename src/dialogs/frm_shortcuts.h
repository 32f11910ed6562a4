// FrmShortcuts: the page that lists every command of the windows with its keys.
#pragma once

#include <string>
#include <vector>

#include <QDialog>

#include "core/catalogue.h"
#include "editing/control_states.h"

namespace corlune {

struct ShortcutLine {
  std::string caption;
  std::string keys;        // in portable spelling, "; " between several
  std::string words = {};  // in place of keys: what the mouse does
};

// What keys do in one part of the windows.
struct ShortcutSection {
  TextId title{};
  std::vector<ShortcutLine> lines;
};

class FrmShortcuts : public QDialog {
  Q_OBJECT

 public:
  // The table of commands, menu by menu, and `sections` behind it.
  // Without the commands that `states` hides.
  FrmShortcuts(const MessageCatalogue& catalogue, const std::vector<ShortcutSection>& sections,
               const ControlStates& states, QWidget* parent = nullptr);
};

}  // namespace corlune
