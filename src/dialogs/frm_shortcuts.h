// FrmShortcuts: the page that lists every command of the windows with its keys.
#pragma once

#include <string>
#include <vector>

#include <QDialog>

#include "core/catalogue.h"

namespace corlune {

struct ShortcutLine {
  std::string caption;
  std::string keys;  // in portable spelling, "; " between several
};

class FrmShortcuts : public QDialog {
  Q_OBJECT

 public:
  // The table of commands, menu by menu, and behind it what the keys do in `cells`.
  FrmShortcuts(const MessageCatalogue& catalogue, const std::vector<ShortcutLine>& cells,
               QWidget* parent = nullptr);
};

}  // namespace corlune
