// EditorFor: which editors lie over a cell and what they offer. The window places them: Text1..3, Combo1..3
// by area; OptModeSet4 and 5 for a switch, OptModeSet1 to 3 for the change modes of a channel parameter.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "editing/grid_views.h"

namespace corlune {

struct EditorOption {
  std::string Caption;
  Color Background;
  bool operator==(const EditorOption&) const = default;
};

struct EditorSpec {
  bool Text = false;         // a text editor
  bool TextEnabled = false;  // false: the parameter is switched off, only the options can be used
  std::string TextValue;     // what the text editor shows at first
  bool List = false;         // a list editor
  std::vector<std::string> Choices;
  int Chosen = -1;
  std::vector<EditorOption> Options;  // 0, 2 (off, on) or up to 3 (change modes)
  int ChosenOption = -1;
  std::vector<std::string> Units;  // units to choose from; empty: the unit is fixed
  std::string UnitTitle;           // of that list
  int ChosenUnit = -1;
  bool None() const { return !Text && !List; }
  bool operator==(const EditorSpec&) const = default;
};

// None for headers, column 0, spare rows, parameters that the step's waveform does not have, and outside
// edit mode.
EditorSpec EditorFor(const GridViews& views, const CellPlace& place);

}  // namespace corlune
